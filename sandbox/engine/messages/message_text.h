// One of the server's messages: number, severity, state, wording. Placeholders are %s, filled in order.
#pragma once

#include <string_view>

namespace practice {

struct MessageText
{
    int number;
    int severity;
    int state;
    std::string_view text;
};

} // namespace practice
