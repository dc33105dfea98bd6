// The console's times as ratios, each to something plain that is measured beside it in the same run.
// Prints one line each with the target. Arguments name the parts to run (recordset, browser, query,
// start); "--start" shows the main window and ends.
#include "console_bench.h"
#include "platform/controls/MessageBox.h"
#include "rows_server.h"

#include <QProcess>
#include <QTemporaryDir>

#include <array>
#include <linux/tcp.h>
#include <netinet/in.h>
#include <sql.h>
#include <sqlext.h>
#include <stdexcept>
#include <sys/socket.h>

using namespace Qt::StringLiterals;

namespace {

using namespace bench;

constexpr std::int64_t manyRows = 1'000'000;

/// Reads a result as the simplest program would: each column bound as text, one row a call.
class PlainReader
{
public:
    explicit PlainReader(int port)
    {
        SQLAllocHandle(SQL_HANDLE_ENV, SQL_NULL_HANDLE, &m_environment);
        SQLSetEnvAttr(m_environment, SQL_ATTR_ODBC_VERSION, reinterpret_cast<SQLPOINTER>(SQL_OV_ODBC3), 0);
        SQLAllocHandle(SQL_HANDLE_DBC, m_environment, &m_connection);
        std::string text = "DRIVER=FreeTDS;SERVER=127.0.0.1;PORT=" + std::to_string(port) +
                           ";UID=sa;PWD=x;TDS_Version=7.4;ClientCharset=UTF-8;";
        if (!SQL_SUCCEEDED(SQLDriverConnect(m_connection, nullptr, reinterpret_cast<SQLCHAR*>(text.data()),
                                            SQL_NTS, nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT)))
            throw std::runtime_error("no connection");
    }
    ~PlainReader()
    {
        SQLDisconnect(m_connection);
        SQLFreeHandle(SQL_HANDLE_DBC, m_connection);
        SQLFreeHandle(SQL_HANDLE_ENV, m_environment);
    }
    PlainReader(const PlainReader&) = delete;
    PlainReader& operator=(const PlainReader&) = delete;

    void read(std::int64_t expected)
    {
        SQLHSTMT statement = nullptr;
        SQLAllocHandle(SQL_HANDLE_STMT, m_connection, &statement);
        std::string text = std::to_string(expected);
        SQLExecDirect(statement, reinterpret_cast<SQLCHAR*>(text.data()), SQL_NTS);
        for (std::size_t column = 0; column < m_cells.size(); ++column)
            SQLBindCol(statement, static_cast<SQLUSMALLINT>(column + 1), SQL_C_CHAR,
                       m_cells.at(column).data(), static_cast<SQLLEN>(m_cells.at(column).size()),
                       &m_lengths.at(column));
        std::int64_t rows = 0;
        while (SQL_SUCCEEDED(SQLFetch(statement)))
            ++rows;
        SQLFreeHandle(SQL_HANDLE_STMT, statement);
        if (rows != expected)
            throw std::runtime_error("rows are missing");
    }

private:
    SQLHENV m_environment = nullptr;
    SQLHDBC m_connection = nullptr;
    std::array<std::array<char, 256>, 6> m_cells{};
    std::array<SQLLEN, 6> m_lengths{};
};

/// What this process has received from the port so far over the connections that are open.
std::uint64_t bytesFrom(int port)
{
    std::uint64_t bytes = 0;
    for (int descriptor = 0; descriptor < 256; ++descriptor) {
        sockaddr_in peer = {};
        socklen_t size = sizeof peer;
        if (::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) != 0 ||
            peer.sin_family != AF_INET || ntohs(peer.sin_port) != port)
            continue;
        tcp_info info = {};
        size = sizeof info;
        ::getsockopt(descriptor, IPPROTO_TCP, TCP_INFO, &info, &size);
        bytes += info.tcpi_bytes_received;
    }
    return bytes;
}

void recordsets(bench::RowsServer& server, ado::Connection& connection)
{
    PlainReader plain(server.port());
    const Pair pair =
        compare([&] { opened(connection, QString::number(manyRows)); }, [&] { plain.read(manyRows); });
    report("recordset against plain ODBC, rows a second", pair.plain / pair.ours, ">= 2", pair);
    const Pair alone = compare([&] { opened(connection, QString::number(manyRows)); },
                               [&] { plain.read(manyRows); }, repetitions, true);
    report("the same, the client's processor time alone", alone.plain / alone.ours, ">= 2", alone);

    const std::uint64_t before = bytesFrom(server.port());
    const ado::Recordset recordset = opened(connection, QString::number(manyRows));
    const auto wire = static_cast<double>(bytesFrom(server.port()) - before);
    const auto memory = static_cast<double>(recordset.memoryUsed());
    std::printf("%-52s %6.2f  (target <= 1.5; %.0f bytes a row against %.0f)\n",
                "recordset's memory against bytes on the wire", memory / wire, memory / manyRows,
                wire / manyRows);
}

void queryWindow(ado::Connection& connection, std::int64_t rows, int times)
{
    const QString text = QString::number(rows);
    ::frmAnalizadorConsultas->SetFocus();
    ::frmAnalizadorConsultas->txtSQL->setText(text);
    const Pair pair = compare(
        [&] {
            ::frmAnalizadorConsultas->Ejecuta();
            painted(::frmAnalizadorConsultas->GridSQL->viewport());
        },
        [&] { opened(connection, text); }, times);
    const std::string what = "F5 to painted grid against recordset, " + std::to_string(rows) + " rows";
    report(what.c_str(), pair.ours / pair.plain, "<= 1.1", pair);
    const auto each = [rows](double whole) { return whole / static_cast<double>(rows); };
    const auto memory = static_cast<double>(opened(connection, text).memoryUsed());
    std::printf("%-52s %6.2f  us a row, %.1f bytes a row\n", "", each(pair.ours * 1e6), each(memory));
}

void start(const QString& self)
{
    const auto run = [](const QString& program, const QStringList& arguments) {
        return [=] {
            if (QProcess::execute(program, arguments) != 0)
                throw std::runtime_error("a program did not start");
        };
    };
    const Pair pair = compare(run(self, {u"--start"_s}),
                              run(QCoreApplication::applicationDirPath() + u"/bench_empty_window"_s, {}), 11);
    report("start to painted window against an empty one", pair.ours / pair.plain, "<= 1.5", pair);
}

} // namespace

int main(int count, char** arguments)
try {
    const QTemporaryDir settings;
    if (!qEnvironmentVariableIsSet("XDG_CONFIG_HOME"))
        qputenv("XDG_CONFIG_HOME", settings.path().toUtf8());
    const QApplication program(count, arguments);
    if (QCoreApplication::arguments().contains(u"--start"_s)) {
        showMainWindow();
        return 0;
    }
    controls::setMessageBoxAnswerer([](const QString& text, int, const QString&) -> controls::Answer {
        throw std::runtime_error(text.toStdString());
    });
    bench::RowsServer server;
    {
        ado::Connection connection;
        connection.Open(u"Data Source=127.0.0.1,%1;User Id=sa;Password=x;"_s.arg(server.port()));
        if (isWanted(u"recordset"_s))
            recordsets(server, connection);
        showMainWindow();
        connectConsole(server.port(), u"x"_s);
        if (isWanted(u"browser"_s))
            browser(connection);
        for (const std::int64_t rows : {10'000, 100'000, 1'000'000, 10'000'000})
            if (isWanted(u"query"_s))
                queryWindow(connection, rows,
                            rows > manyRows   ? 1
                            : rows < manyRows ? manyRepetitions
                                              : repetitions);
        ::frmAnalizadorConsultas->Unload();
        ::frmAdministrador->Unload();
        ::ConexionSQL = ado::Connection();
    }
    ::mdiPrincipal->Unload();
    if (isWanted(u"start"_s))
        start(QCoreApplication::applicationFilePath());
    return 0;
} catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
}
