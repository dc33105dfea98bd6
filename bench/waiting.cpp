// What the window does while the server works: the longest time without a paint during a statement of five
// seconds and during a million rows, and what a short statement pays for being called on a thread of its own.
#include "console_bench.h"

#include "platform/ado/DriverThread.h"
#include "platform/controls/MessageBox.h"
#include "platform/controls/SqlEditor.h"
#include "platform/controls/Waiting.h"
#include "support/PracticeServer.h"

#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>

#include <unistd.h>

namespace {

using namespace bench;

/// Asks a widget for a paint every few milliseconds, and keeps the longest time that one took to come.
class Heartbeat : public QObject
{
public:
    explicit Heartbeat(QWidget* widget) : m_widget(widget)
    {
        widget->installEventFilter(this);
        connect(&m_timer, &QTimer::timeout, this, [this] { m_widget->update(); });
        m_timer.start(5);
        m_since.start();
    }
    bool eventFilter(QObject* /*watched*/, QEvent* event) override
    {
        if (event->type() == QEvent::Paint)
            m_longest = std::max(m_longest, m_since.restart());
        return false;
    }
    /// In milliseconds; up to now.
    [[nodiscard]] qint64 longest() const { return std::max(m_longest, m_since.elapsed()); }

private:
    QWidget* m_widget;
    QTimer m_timer;
    QElapsedTimer m_since;
    qint64 m_longest = 0;
};

void paints(const char* what, const QString& statement)
{
    auto* query = &*::frmAnalizadorConsultas;
    query->txtSQL->setText(statement);
    const Heartbeat heart(::mdiPrincipal->menuBar());
    const double took = seconds([] { ::frmAnalizadorConsultas->cmdEjecuta_Click(); });
    std::printf("%-52s %6.0f ms (target <= 100; of %.1f s)\n", what, static_cast<double>(heart.longest()),
                took);
}

void shortStatements(const support::PracticeServer& server)
{
    constexpr int statements = 2000;
    const auto run = [&](ado::Connection& connection) {
        return seconds([&] {
            for (int number = 0; number < statements; ++number)
                connection.Execute(u"set nocount on"_s);
        });
    };
    ado::Connection connection;
    connection.Open(server.connectionString());
    const auto waits = [](bool does) {
        ado::setWaiter(does ? ado::Waiter{controls::waitPainting, controls::wakeWaiting} : ado::Waiter{});
    };
    std::vector<double> more;
    for (int time = 0; time < repetitions; ++time) {
        waits(false);
        const double plain = run(connection);
        waits(true);
        more.push_back((run(connection) - plain) / statements * 1e6);
    }
    std::ranges::sort(more);
    std::printf("%-52s %6.1f microseconds\n", "a short statement pays", more[more.size() / 2]);
}

} // namespace

int main(int count, char** arguments)
try {
    const QTemporaryDir settings;
    qputenv("XDG_CONFIG_HOME", settings.path().toUtf8());
    const QApplication program(count, arguments);
    controls::setMessageBoxAnswerer([](const QString& text, int, const QString&) -> controls::Answer {
        throw std::runtime_error(text.toStdString());
    });
    const auto server = support::PracticeServer::start();
    showMainWindow();
    connectConsole(server->port(), QString::fromLatin1(support::PracticeServer::password));
    paints("longest time without a paint, WAITFOR of 5 seconds", u"waitfor delay '0:0:5'"_s);
    paints("longest time without a paint, a million rows",
           u"set nocount on declare @t table (n int identity, t varchar(20)) insert @t select top 1000 "
           u"'text' from "
           "master..spt_values a, master..spt_values b select a.n, a.t, b.n from @t a cross join @t b"_s);
    shortStatements(*server);
    std::fflush(stdout);
    ::_exit(0);
} catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
}
