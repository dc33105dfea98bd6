// The table designer against the practice server: opening and saving a wide table against the same statements
// sent bare, and the memory of many designers. Arguments name the parts to run (wide, many).
#include "app/ConsolaSQL_Glo.h"
#include "bare_statements.h"
#include "console_bench.h"

#include "platform/controls/MessageBox.h"

#include <QFile>
#include <QTemporaryDir>

#include <unistd.h>

namespace {

using namespace bench;

constexpr int columns = 200;
constexpr int indexes = 50;
constexpr int relations = 50;
constexpr int designers = 201;

void createDatabase(ado::Connection& connection, const QString& name)
{
    connection.Execute(u"CREATE DATABASE "_s + name);
    connection.Execute(u"use "_s + name);
}

void createWideTable(ado::Connection& connection)
{
    createDatabase(connection, u"Wide"_s);
    QString text = u"CREATE TABLE a (c0 int NOT NULL CONSTRAINT PK_a PRIMARY KEY"_s;
    for (int column = 1; column < columns; ++column)
        text += u", c%1 int NULL"_s.arg(column);
    connection.Execute(text + u")"_s);
    for (int index = 1; index < indexes; ++index)
        connection.Execute(u"CREATE INDEX i%1 ON a (c%1)"_s.arg(index));
    for (int relation = 0; relation < relations; ++relation) {
        connection.Execute(u"CREATE TABLE r%1 (id int NOT NULL PRIMARY KEY)"_s.arg(relation));
        connection.Execute(
            u"ALTER TABLE a ADD CONSTRAINT FK_%1 FOREIGN KEY (c%2) REFERENCES r%1 (id)"_s.arg(relation).arg(
                relation + 100));
    }
}

void createManyTables(ado::Connection& connection)
{
    createDatabase(connection, u"Many"_s);
    for (int number = 0; number < designers; ++number)
        connection.Execute(
            u"CREATE TABLE a%1 (id int NOT NULL PRIMARY KEY, name nvarchar(40) NULL, total decimal(12, 2) NULL)"_s
                .arg(number, 3, 10, QLatin1Char('0')));
}

void showTables(const QString& database)
{
    auto* tree = ::frmAdministrador->trvBD;
    ::frmAdministrador->CapturaBD_SQL();
    tree->Select(tree->Find(u"DT"_s + database));
    ::frmAdministrador->trvBD_Click();
    ::BaseDatosActual = database;
    ::NuevaTabla = false;
}

formularios::frmTabla* openDesigner(int slot)
{
    ::frmAdministrador->ltvTablas->Select(::frmAdministrador->ltvTablas->Item(slot));
    DiseñoTabla();
    formularios::frmTabla* designer = TablasAbiertas.at(static_cast<std::size_t>(slot));
    painted(designer->TDBGridTabla->viewport());
    return designer;
}

void wide(const support::PracticeServer& server)
{
    showTables(u"Wide"_s);
    const Pair pair = compareWithBareStatements(server, [] {
        if (!openDesigner(0)->Unload())
            throw std::runtime_error("the design was not saved");
    });
    report("designer of 200 columns opened and saved", pair.ours / pair.plain, "<= 1.3", pair);
}

double residentMegabytes()
{
    QFile file(u"/proc/self/statm"_s);
    if (!file.open(QIODevice::ReadOnly))
        throw std::runtime_error("no /proc");
    return file.readAll().split(' ').at(1).toDouble() * static_cast<double>(::sysconf(_SC_PAGESIZE)) / 1e6;
}

void many()
{
    showTables(u"Many"_s);
    openDesigner(0);
    const double first = residentMegabytes();
    for (int slot = 1; slot < designers; ++slot)
        openDesigner(slot);
    std::printf("%-52s %6.1f MB  (target <= 40)\n", "200 more designers, beyond the first",
                residentMegabytes() - first);
}

} // namespace

int main(int count, char** arguments)
try {
    const QTemporaryDir settings;
    qputenv("XDG_CONFIG_HOME", settings.path().toUtf8());
    const QApplication program(count, arguments);
    controls::setMessageBoxAnswerer([](const QString& text, int style, const QString&) {
        constexpr int yesNoCancel = 35;
        if (style != yesNoCancel)
            throw std::runtime_error(text.toStdString());
        return controls::Answer::Yes;
    });
    const auto server = support::PracticeServer::start();
    ado::Connection connection;
    connection.Open(server->connectionString());
    createWideTable(connection);
    createManyTables(connection);
    showMainWindow();
    connectConsole(server->port(), QString::fromLatin1(support::PracticeServer::password));
    ::frmAnalizadorConsultas->Unload();
    if (isWanted(u"wide"_s))
        wide(*server);
    if (isWanted(u"many"_s))
        many();
    std::fflush(stdout);
    ::_exit(0); // two hundred designers would ask one by one
} catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
}
