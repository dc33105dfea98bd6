// The properties of a database with many files and users against the practice server: opening them against
// the same statements sent bare.
#include "app/ConsolaSQL_Glo.h"
#include "bare_statements.h"
#include "console_bench.h"
#include "databasedesigner/frmPropiedadesBD.h"

#include "platform/controls/MessageBox.h"

#include <QTemporaryDir>

#include <unistd.h>

namespace {

using namespace bench;

constexpr int dataFiles = 200; // with the primary one
constexpr int users = 1000;
const auto database = u"Large"_s;

void createLargeDatabase(ado::Connection& connection, const QString& folder)
{
    connection.Execute(u"CREATE DATABASE "_s + database);
    for (int file = 1; file < dataFiles; ++file)
        connection.Execute(
            u"ALTER DATABASE %1 ADD FILE (NAME = f%2, FILENAME = 'C:%3\\f%2.ndf', SIZE = 1MB)"_s.arg(
                database, QString::number(file), QString(folder).replace(u'/', u'\\')));
    connection.Execute(u"use "_s + database);
    for (int user = 0; user < users; ++user) {
        connection.Execute(u"EXEC sp_addlogin 'user%1', 'Practice1!'"_s.arg(user));
        connection.Execute(u"EXEC sp_grantdbaccess 'user%1'"_s.arg(user));
    }
}

void properties(const support::PracticeServer& server)
{
    ::BaseDatosActual = database;
    ::NuevaBD = false;
    const Pair pair = compareWithBareStatements(server, [] {
        ::frmPropiedadesBD->Show();
        painted(&*::frmPropiedadesBD);
        ::frmPropiedadesBD->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    });
    report("properties of 200 files and 1,000 users opened", pair.ours / pair.plain, "<= 1.3", pair);
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
    connection.Open(server->connectionString());
    createLargeDatabase(connection, settings.path());
    showMainWindow();
    connectConsole(server->port(), QString::fromLatin1(support::PracticeServer::password));
    ::frmAnalizadorConsultas->Unload();
    properties(*server);
} catch (const std::exception& failure) {
    std::fprintf(stderr, "%s\n", failure.what());
    return 1;
}
