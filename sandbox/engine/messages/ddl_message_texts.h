// The messages of definition statements, security and system procedures.
#pragma once

#include "engine/messages/message_text.h"

namespace practice {

/// @return nullptr for a number that is not among them
[[nodiscard]] const MessageText* findDdlMessageText(int number);

} // namespace practice
