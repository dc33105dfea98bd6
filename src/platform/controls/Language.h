// The language of the platform's own texts: buttons, dialogs, pop-ups.
#pragma once

#include <QString>

namespace controls {

/// Spanish for 0, English for anything else. The toolkit's dialogs and menus follow when its translations
/// are installed.
void setUiLanguage(int language);

[[nodiscard]] QString uiText(const char* spanish, const char* english);

} // namespace controls
