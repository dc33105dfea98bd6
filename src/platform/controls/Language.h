// The language of the platform's own texts: errors, buttons, dialogs, pop-ups.
#pragma once

#include "platform/basic/Language.h"

namespace controls {

using basic::uiText;

/// Caption of the entry with which every grid's pop-up copies.
[[nodiscard]] inline QString copyCaption()
{
    return uiText("&Copiar", "&Copy");
}

/// Spanish for 0, English for anything else. The toolkit's dialogs, buttons and menus follow when its
/// translations are installed.
void setUiLanguage(int language);

} // namespace controls
