// What a session tells its client while it runs a request; the wire turns it into tokens, tests
// into lists.
#pragma once

#include "types/value.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace practice {

struct ColumnInfo
{
    std::string name; ///< UTF-8; empty for an expression without alias
    SqlType type;
    bool nullable = true;
    bool identity = false;
    bool updatable = false;
};

/// An error (severity above 10) or an information message (PRINT, 5701, RAISERROR 10 and below).
struct Message
{
    int number = 0;
    int severity = 16; ///< "class" on the wire
    int state = 1;
    std::string text; ///< UTF-8
    std::string procedure;
    int line = 1;
};

/// The wire's current-command tokens, of which clients evaluate these.
namespace commands {
inline constexpr std::uint16_t select = 0xC1; ///< assignments to variables, too
inline constexpr std::uint16_t insertRows = 0xC3;
inline constexpr std::uint16_t deleteRows = 0xC4;
inline constexpr std::uint16_t updateRows = 0xC5;
inline constexpr std::uint16_t rollback = 0xD2;
inline constexpr std::uint16_t begin = 0xD4;
inline constexpr std::uint16_t commit = 0xD5;
inline constexpr std::uint16_t execute = 0xE0;
inline constexpr std::uint16_t other = 0xFD;
} // namespace commands

/// How a statement ended: one DONE, DONEINPROC or DONEPROC each.
struct Completion
{
    enum class Kind
    {
        Statement,
        InProcedure,
        Procedure
    };
    Kind kind = Kind::Statement;
    std::optional<std::uint64_t> rows;       ///< rows affected or returned; none when it counts nothing
    std::uint16_t command = commands::other; ///< what ended
    bool error = false;
    bool omissible = false; ///< goes unsaid unless it ends a result set or follows an error
};

enum class EnvironmentChange : std::uint8_t
{
    Database = 1,
    Language = 2,
    PacketSize = 4,
    Collation = 7,
    BeginTransaction = 8,
    CommitTransaction = 9,
    RollbackTransaction = 10,
    ResetConnection = 18,
};

class ResultSink
{
public:
    virtual ~ResultSink() = default;
    /// Opens a result set; rows follow until `done`.
    virtual void columns(std::span<const ColumnInfo> columns) = 0;
    /// One row, values in column order and already of the column's type.
    virtual void row(std::span<const Value> values) = 0;
    virtual void message(const Message& message) = 0;
    /// `more` is the sink's own affair: the last completion of a request is marked by requestEnd.
    virtual void done(const Completion& completion) = 0;
    virtual void environment(EnvironmentChange kind, const std::string& now, const std::string& before) = 0;
    virtual void returnStatus(int status) = 0;
    virtual void outputParameter(const std::string& name, const SqlType& type, const Value& value) = 0;
};

} // namespace practice
