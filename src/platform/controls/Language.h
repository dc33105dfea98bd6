// The language of the platform's own texts: errors, buttons, dialogs, pop-ups.
#pragma once

#include "platform/basic/Language.h"

namespace controls {

using basic::uiText;

/// Spanish for 0, English for anything else. The toolkit's dialogs, buttons and menus follow when its
/// translations are installed.
void setUiLanguage(int language);

} // namespace controls
