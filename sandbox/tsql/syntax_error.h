// What SQL Server says about a batch that it cannot read.
#pragma once

#include <string>

namespace practice {

/// Severity is 15.
struct SyntaxError
{
    int number = 102;
    std::string text;
    int line = 1;
    int state = 1;
};

} // namespace practice
