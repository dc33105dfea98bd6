#include "platform/controls/Language.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QTranslator>

namespace controls {

namespace {

constexpr int Spanish = 0;

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
    basic::setLanguage(language == Spanish ? basic::Language::Spanish : basic::Language::English);
    for (const char* catalogue : {"qtbase_es", "qscintilla_es"})
        translateToolkit(QLatin1String(catalogue), language == Spanish);
}

} // namespace controls
