// SQL Server's error numbers with their severities and wordings, and the exception that carries one
// out of a statement.
#pragma once

#include "engine/api/result_sink.h"

#include <initializer_list>
#include <string>
#include <vector>

namespace practice {

/// Ends the running statement (and, from severity 20 or for batch-aborting numbers, the batch).
struct SqlError
{
    Message message;
    int cause = 0;               ///< number of the message sent ahead of it, which tells what really failed
    bool confined = false;       ///< ends its statement alone, whatever the number does elsewhere
    bool placed = false;         ///< its line is that of the statement that failed
    std::vector<Message> more{}; ///< what is told behind it
};

/// The message of a number with its place holders filled in order. State 1 unless the catalogue of
/// messages knows a better one.
[[nodiscard]] Message makeMessage(int number, std::initializer_list<std::string> arguments = {});

/// @throws SqlError always
[[noreturn]] void raise(int number, std::initializer_list<std::string> arguments = {});

/// True for errors after which SQL Server gives up the whole batch, not only the statement
/// (conversion faults, missing objects at run time, deadlock victims ...).
[[nodiscard]] bool abortsBatch(int number);

/// State of 8115 when an identity column has run out of numbers.
inline constexpr int identityOverflow = 1;

} // namespace practice
