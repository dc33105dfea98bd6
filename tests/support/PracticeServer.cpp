#include "support/PracticeServer.h"

#include <QFile>
#include <array>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdexcept>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

using namespace Qt::StringLiterals;

extern char** environ;

namespace support {

namespace {

constexpr int startMilliseconds = 60'000;
constexpr auto logName = "statements.log"_L1;

/// A pipe whose ends no other child inherits.
struct Pipe
{
    Pipe()
    {
        if (pipe2(ends.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe for the practice server");
    }
    std::array<int, 2> ends{-1, -1};
};

} // namespace

std::unique_ptr<PracticeServer> PracticeServer::start(const QStringList& options)
{
    std::unique_ptr<PracticeServer> server(new PracticeServer(options));
    server->startAgain();
    return server;
}

PracticeServer::~PracticeServer()
{
    stop();
}

void PracticeServer::startAgain()
{
    launch();
    m_port = readPort();
}

QString PracticeServer::storePath() const
{
    return m_directory.filePath(u"store"_s);
}

void PracticeServer::launch()
{
    const QStringList arguments = QStringList{QStringLiteral(PRACTICE_SERVER_PROGRAM),
                                              u"--port"_s,
                                              u"0"_s,
                                              u"--parent-watch"_s,
                                              u"--data"_s,
                                              storePath(),
                                              u"--log"_s,
                                              m_directory.filePath(logName)} +
                                  m_options;
    std::vector<std::string> words;
    for (const QString& argument : arguments)
        words.push_back(argument.toStdString());
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);

    const Pipe input;
    const Pipe output;
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input.ends[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output.ends[1], STDOUT_FILENO);
    const int failure = posix_spawn(&m_process, pointers[0], &actions, nullptr, pointers.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(input.ends[0]);
    ::close(output.ends[1]);
    m_input = input.ends[1];
    m_output = output.ends[0];
    if (failure != 0) {
        m_process = -1;
        throw std::runtime_error("the practice server could not be started: " + words[0]);
    }
}

int PracticeServer::readPort() const
{
    std::string line;
    while (!line.ends_with('\n')) {
        pollfd ready{m_output, POLLIN, 0};
        char sign = 0;
        if (poll(&ready, 1, startMilliseconds) != 1 || read(m_output, &sign, 1) != 1)
            throw std::runtime_error("the practice server did not come up");
        line += sign;
    }
    int port = 0;
    if (std::sscanf(line.c_str(), "Listening on 127.0.0.1:%d", &port) != 1)
        throw std::runtime_error("the practice server does not tell its port: " + line);
    return port;
}

QString PracticeServer::connectionString(const QString& database) const
{
    return u"Provider=SQLOLEDB.1;Data Source=127.0.0.1,%1;Initial Catalog=%2;User Id=%3;Password=%4;"_s.arg(
        QString::number(m_port), database, QString::fromLatin1(user), QString::fromLatin1(password));
}

QStringList PracticeServer::statementLog() const
{
    qint64 place = 0;
    return statementsFrom(place);
}

QStringList PracticeServer::statementsFrom(qint64& place) const
{
    QFile file(m_directory.filePath(logName));
    if (!file.open(QIODevice::ReadOnly) || !file.seek(place))
        return {};
    QStringList statements;
    while (!file.atEnd()) {
        // "KIND SESSION BYTES [NAME TYPE]", that many bytes, a line feed; a null has no bytes.
        const QList<QByteArray> head = file.readLine().trimmed().split(' ');
        if (head.size() < 3)
            break;
        const QByteArray text = file.read(head[2].toLongLong());
        file.read(1);
        if (head[0] == "batch")
            statements += QString::fromUtf8(text);
    }
    place = file.pos();
    return statements;
}

void PracticeServer::signalAndWait(int signal)
{
    if (m_process > 0) {
        ::kill(m_process, signal);
        ::kill(m_process, SIGCONT);
        waitpid(m_process, nullptr, 0);
        m_process = -1;
    }
    for (int* const end : {&m_input, &m_output})
        if (*end >= 0)
            ::close(std::exchange(*end, -1));
}

void PracticeServer::stop()
{
    signalAndWait(SIGTERM);
}

void PracticeServer::kill()
{
    signalAndWait(SIGKILL);
}

void PracticeServer::freeze()
{
    ::kill(m_process, SIGSTOP);
}

void PracticeServer::thaw()
{
    ::kill(m_process, SIGCONT);
}

QString testConnectionString(const QString& database)
{
    const QString given = qEnvironmentVariable("QUERMO_TEST_SERVER");
    if (!given.isEmpty())
        return "Provider=SQLOLEDB.1;"_L1 + given + ";Initial Catalog="_L1 + database + u';';
    static const auto shared = PracticeServer::start();
    return shared->connectionString(database);
}

} // namespace support
