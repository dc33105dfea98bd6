#pragma once

#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <memory>
#include <sys/types.h>

namespace support {

/// A practice server of its own, with a fresh store in a temporary directory, on a free port of
/// 127.0.0.1. It ends with this object, and also when the test program dies.
class PracticeServer
{
public:
    static constexpr auto user = "sa";
    static constexpr auto password = "Practice1!";

    /// Starts the program with further options ("--sample"). Throws std::runtime_error when it does not
    /// come up.
    static std::unique_ptr<PracticeServer> start(const QStringList& options = {});
    ~PracticeServer();
    PracticeServer(const PracticeServer&) = delete;
    PracticeServer& operator=(const PracticeServer&) = delete;

    [[nodiscard]] int port() const { return m_port; }
    /// OLE DB's connection string for `database` as the administrator.
    [[nodiscard]] QString connectionString(const QString& database = QStringLiteral("master")) const;
    /// The batches that clients have sent so far, exactly as received.
    [[nodiscard]] QStringList statementLog() const;
    /// Those from a place in the log on, which moves to its end; 0 is the beginning.
    [[nodiscard]] QStringList statementsFrom(qint64& place) const;
    /// Ends the program in order, and waits for it.
    void stop();
    /// Ends it as a power failure would.
    void kill();
    /// Starts it again over its store, with the same options and mostly on another port.
    void startAgain();
    /// Where it keeps its store.
    [[nodiscard]] QString storePath() const;
    /// Stops it from running, and lets it go on.
    void freeze();
    void thaw();

private:
    explicit PracticeServer(const QStringList& options) : m_options(options) {}
    void launch();
    [[nodiscard]] int readPort() const;
    void signalAndWait(int signal);

    QStringList m_options;
    QTemporaryDir m_directory;
    pid_t m_process = -1;
    int m_input = -1;  ///< the program ends when this is closed
    int m_output = -1; ///< where it tells its port
    int m_port = 0;
};

/// The connection string that tests connect with, for `database`: the environment's QUERMO_TEST_SERVER
/// ("Data Source=...;User Id=...;Password=...") when set, so that they can run against any SQL Server,
/// else a practice server that all tests of the program share.
QString testConnectionString(const QString& database = QStringLiteral("master"));

} // namespace support
