#include "platform/basic/Language.h"

#include <atomic>

namespace basic {

namespace {

std::atomic<Language> current =
    Language::English; // errors are worded on threads that wait for the network too

} // namespace

void setLanguage(Language language)
{
    current = language;
}

Language language()
{
    return current;
}

QString uiText(const char* spanish, const char* english)
{
    return QString::fromUtf8(current == Language::Spanish ? spanish : english);
}

} // namespace basic
