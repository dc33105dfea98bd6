// The console against the practice server, which has to find its answers: the browser with 5,000 databases
// and 20,000 tables (making those takes some minutes), and how long the window is dead after F5.
// Arguments name the parts to run (browser, window).
#include "console_bench.h"

#include "platform/controls/MessageBox.h"
#include "sandbox/raw_client.h"
#include "support/PracticeServer.h"

#include <QTemporaryDir>

#include <stdexcept>

namespace {

using namespace bench;
using namespace Qt::StringLiterals;
using practice::test::RawClient;

constexpr int databases = 5'000;
constexpr int tables = 20'000;
constexpr int tablesPerBatch = 50;
constexpr int mostRows = 1'000'000;

void createObjects(ado::Connection& connection)
{
    for (int number = 0; number < databases; ++number)
        connection.Execute(u"CREATE DATABASE Database%1"_s.arg(number));
    connection.Execute(u"use Database0"_s);
    for (int first = 0; first < tables; first += tablesPerBatch) {
        QString batch = u"begin transaction"_s;
        for (int number = first; number < first + tablesPerBatch; ++number)
            batch += u" CREATE TABLE TableOfTheList%1 (id int)"_s.arg(number);
        connection.Execute(batch + u" commit"_s);
    }
}

void createRows(ado::Connection& connection)
{
    connection.Execute(u"use tempdb"_s);
    connection.Execute(u"CREATE TABLE Rows (id int NOT NULL PRIMARY KEY, total decimal(12, 2), share float, "
                       "changed datetime, name nvarchar(60), note varchar(200))"_s);
    connection.Execute(
        u"SET NOCOUNT ON DECLARE @i int SET @i = 0 BEGIN TRANSACTION WHILE @i < %1 BEGIN "
        "INSERT Rows VALUES (@i, @i / 100.0, @i / 7.0, '20240229 12:34:56', "
        "N'José Núñez Ibáñez', 'a note of some thirty letters.') SET @i = @i + 1 END COMMIT"_s.arg(mostRows));
}

/// From F5 to the painted grid nothing else is done; the server's share is what a client waits for that
/// throws the answer away.
void deadWindow(int port, int rows)
{
    const QString text = u"select top %1 * from tempdb..Rows"_s.arg(rows);
    RawClient client(static_cast<std::uint16_t>(port));
    static_cast<void>(
        client.ask(practice::test::loginPacket({support::PracticeServer::password, 16'384, "tempdb"})));
    ::frmAnalizadorConsultas->SetFocus();
    ::frmAnalizadorConsultas->txtSQL->setText(text);
    const Pair pair = compare(
        [] {
            ::frmAnalizadorConsultas->Ejecuta();
            painted(::frmAnalizadorConsultas->GridSQL->viewport());
        },
        [&] {
            client.send(practice::test::batchPacket(text.toStdString()));
            static_cast<void>(client.drain());
        },
        rows < mostRows ? manyRepetitions : repetitions);
    const std::string what = "window dead after F5 against the answer, " + std::to_string(rows) + " rows";
    report(what.c_str(), pair.ours / pair.plain, "<= 1.1", pair);
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
    ado::Connection connection;
    connection.setCommandTimeout(0);
    connection.Open(server->connectionString());
    if (isWanted(u"browser"_s))
        createObjects(connection);
    if (isWanted(u"window"_s))
        createRows(connection);
    showMainWindow();
    connectConsole(server->port(), QString::fromLatin1(support::PracticeServer::password));
    if (isWanted(u"browser"_s))
        browser(connection);
    for (const int rows : {10'000, 100'000, mostRows})
        if (isWanted(u"window"_s))
            deadWindow(server->port(), rows);
    ::frmAnalizadorConsultas->Unload();
    ::frmAdministrador->Unload();
    ::ConexionSQL = ado::Connection();
    ::mdiPrincipal->Unload();
    return 0;
} catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
}
