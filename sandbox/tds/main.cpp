// The practice server's program: options, life and death. All else is in the libraries.
#include "engine/api/session.h"
#include "sample/sample.h"
#include "tds/data_directory.h"
#include "tds/server.h"
#include "tds/shutdown_wait.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <optional>

namespace {

constexpr const char* defaultPassword = "Practice1!";
constexpr const char* passwordVariable = "QUERMO_SA_PASSWORD";

struct Options
{
    std::string dataDirectory;
    std::uint16_t port = 1433;
    std::string logFile;
    std::string passwordFile;
    bool sample = false;
    bool parentWatch = false;
};

std::string firstLine(const std::string& file)
{
    std::ifstream in(file);
    std::string line;
    if (!std::getline(in, line))
        throw std::runtime_error("cannot read a password from " + file);
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return line;
}

/// Never from the command line, which everybody on the machine can read.
std::string saPassword(const Options& options)
{
    if (!options.passwordFile.empty())
        return firstLine(options.passwordFile);
    const char* given = std::getenv(passwordVariable);
    std::string password = given == nullptr ? defaultPassword : given;
    unsetenv(passwordVariable);
    return password;
}

void addOptions(CLI::App& app, Options& options)
{
    app.add_option("--data", options.dataDirectory,
                   "Directory of the store, made when missing.\n"
                   "Without it the store is temporary and removed at the end.");
    app.add_option("--port", options.port, "Port on 127.0.0.1; 0 picks a free one")->capture_default_str();
    app.add_option("--log", options.logFile,
                   "File to which every statement is written as it comes. A record is a line\n"
                   "  batch SESSION BYTES\n"
                   "then that many bytes of UTF-8 exactly as received, then a line feed. A\n"
                   "procedure call is\n"
                   "  call SESSION BYTES\n"
                   "with the procedure's name, then for each parameter\n"
                   "  parameter SESSION BYTES NAME TYPE\n"
                   "with its value as text; 'null' stands for BYTES of a NULL, '-' for NAME of a\n"
                   "nameless one.");
    app.add_option(
        "--sa-password-file", options.passwordFile,
        std::string("File whose first line is the password of sa for a fresh store.\nOtherwise it is the "
                    "environment's ") +
            passwordVariable + ", else " + defaultPassword);
    app.add_flag("--sample", options.sample, "Creates the sample database when it is not there yet");
    app.add_flag("--parent-watch", options.parentWatch,
                 "Ends when standard input is closed, as it is when a launcher dies");
}

int serve(const Options& options)
{
    // Before any thread starts, so that signals reach the wait below and nothing else.
    practice::tds::ShutdownWait shutdown(options.parentWatch);
    const practice::tds::DataDirectory directory(options.dataDirectory);
    practice::ServerOptions serverOptions;
    serverOptions.dataDirectory = directory.path();
    serverOptions.saPassword = saPassword(options);
    const auto engine = practice::openServer(serverOptions);
    if (options.sample)
        practice::buildSample(*engine);
    std::optional<practice::tds::StatementLog> log;
    if (!options.logFile.empty())
        log.emplace(options.logFile);
    practice::tds::ListenOptions listen;
    listen.port = options.port;
    listen.log = log ? &*log : nullptr;
    const practice::tds::TdsServer server(*engine, listen);
    std::printf("Listening on 127.0.0.1:%u\n", unsigned{server.port()});
    std::fflush(stdout);
    shutdown.wait();
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    Options options;
    CLI::App app("Practice server: speaks SQL Server's protocol on 127.0.0.1 and keeps its data in SQLite.");
    app.name("quermo-practice-server");
    addOptions(app, options);
    CLI11_PARSE(app, argc, argv);
    try {
        return serve(options);
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "quermo-practice-server: %s\n", failure.what());
        return EXIT_FAILURE;
    }
}
