// The server's messages by their numbers.
#pragma once

#include "engine/messages/message_text.h"

namespace practice {

/// @return nullptr for a number that the catalogue doesn't know
[[nodiscard]] const MessageText* findMessageText(int number);

} // namespace practice
