// The program.
#include "app/Main.h"
#include "platform/controls/Theme.h"

#include <QApplication>
#include <QCommandLineParser>

using namespace Qt::Literals::StringLiterals;

int main(int argc, char** argv)
{
    QApplication programa(argc, argv);
    QCoreApplication::setApplicationName(u"quermo"_s);
    QCoreApplication::setApplicationVersion(QUERMO_VERSION);

    QCommandLineParser opciones;
    opciones.setApplicationDescription(u"Administration console for Microsoft SQL Server"_s);
    opciones.addHelpOption();
    opciones.addVersionOption();
    const QCommandLineOption servidor(u"server"_s, u"Server that the connect form proposes."_s, u"text"_s);
    opciones.addOption(servidor);
    opciones.process(programa);
    if (opciones.isSet(servidor))
        qputenv("QUERMO_SERVER", opciones.value(servidor).toUtf8());

    controls::applyTheme();
    // The language form may close before any other window is there; that is not the end.
    QGuiApplication::setQuitOnLastWindowClosed(false);
    Main();
    QGuiApplication::setQuitOnLastWindowClosed(true);
    return QApplication::exec();
}
