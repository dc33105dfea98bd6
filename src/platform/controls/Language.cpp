#include "platform/controls/Language.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace controls {

namespace {

constexpr int Spanish = 0;

int& current()
{
    static int language = Spanish;
    return language;
}

void translateToolkit(const QString& catalogue, bool wanted)
{
    auto* application = QCoreApplication::instance();
    auto* translator = application->findChild<QTranslator*>(catalogue);
    if (wanted == (translator != nullptr))
        return;
    if (!wanted) {
        delete translator; // takes itself out of the application
        return;
    }
    translator = new QTranslator(application);
    translator->setObjectName(catalogue);
    if (translator->load(catalogue, QLibraryInfo::path(QLibraryInfo::TranslationsPath)))
        QCoreApplication::installTranslator(translator);
}

} // namespace

void setUiLanguage(int language)
{
    current() = language;
    for (const char* catalogue : {"qtbase_es", "qscintilla_es"})
        translateToolkit(QLatin1String(catalogue), language == Spanish);
}

QString uiText(const char* spanish, const char* english)
{
    return QString::fromUtf8(current() == Spanish ? spanish : english);
}

} // namespace controls
