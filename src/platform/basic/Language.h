// The language in which the platform words what it says itself: errors, buttons, pop-ups.
#pragma once

#include <QString>

namespace basic {

enum class Language
{
    Spanish,
    English
};

/// English until the program chooses.
void setLanguage(Language language);
[[nodiscard]] Language language();

/// The wording of the language, from UTF-8.
[[nodiscard]] QString uiText(const char* spanish, const char* english);

} // namespace basic
