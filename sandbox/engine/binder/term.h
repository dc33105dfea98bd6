// A translated expression: SQLite text over storage forms together with what Transact-SQL knows
// about it; and the rules by which such terms convert, compare and combine.
#pragma once

#include "engine/store/storage.h"
#include "types/value.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace practice {

/// How firmly a text holds its collation when it meets another.
enum class Coercibility : std::uint8_t
{
    Coercible,
    Implicit,
    Conflict,
    Explicit
};

struct Term
{
    std::string sql;
    SqlType type;
    std::string collation{};         ///< of character types
    std::optional<Value> constant{}; ///< of a literal
    Coercibility coercibility = Coercibility::Coercible;
    bool nullable = true;
    /// SQLite compares it under its collation of itself: a column of a stored table.
    bool collated = false;
    /// Literal integers count with as many digits as they have when they meet a decimal.
    bool integerLiteral = false;
};

enum class Conversion : std::uint8_t
{
    Implicit,
    Explicit,
    Assignment
};

/// A literal in storage form.
[[nodiscard]] Term constantTerm(Value value, const SqlType& type);
[[nodiscard]] Term nullTerm();
[[nodiscard]] Term integerTerm(std::int64_t value);
[[nodiscard]] Term textTerm(std::string_view value);
/// The outcome of a function of ours: `sql` with a result that may be NULL.
[[nodiscard]] Term resultTerm(std::string sql, const SqlType& type, bool nullable = true);

[[nodiscard]] inline SqlType intType()
{
    return {TypeId::Int, 4};
}
[[nodiscard]] inline SqlType bigIntType()
{
    return {TypeId::BigInt, 8};
}
[[nodiscard]] inline SqlType floatType()
{
    return {TypeId::Float, 8};
}
[[nodiscard]] inline SqlType dateTimeType()
{
    return {TypeId::DateTime, 8};
}
[[nodiscard]] inline SqlType varCharType(int length)
{
    return {TypeId::VarChar, length};
}
[[nodiscard]] inline SqlType nVarCharType(int length)
{
    return {TypeId::NVarChar, length};
}
[[nodiscard]] inline SqlType sysNameType()
{
    return nVarCharType(128);
}

/// The packed type as SQL text.
[[nodiscard]] std::string typeArgument(const SqlType& type);
[[nodiscard]] std::string callText(std::string_view function,
                                   std::initializer_list<std::string_view> arguments);

/// Raises when no such conversion exists: 206, 257, 529.
void requireConversion(const SqlType& from, const SqlType& to, Conversion conversion);
[[nodiscard]] Term convertTerm(const Term& term, const SqlType& to, Conversion conversion, int style = 0);

/// The type in which two operands meet, by SQL Server's precedence.
[[nodiscard]] SqlType commonType(const Term& left, const Term& right);
[[nodiscard]] SqlType commonType(std::span<const Term> terms);
/// The type that a term has where digits of literals count: int literals as small decimals.
[[nodiscard]] SqlType decimalTypeOf(const Term& term);

/// The collation under which two texts meet. @throws SqlError 468
[[nodiscard]] Term mergedCollation(const Term& left, const Term& right, std::string_view operation);
/// The text with its collation spelled out, where SQLite needs it to compare, sort or group.
[[nodiscard]] std::string comparable(const Term& term);

/// left operation right as a condition; `sqlOperator` is SQLite's: =, <>, <, <=, >, >=, IS.
[[nodiscard]] std::string compareTerms(Term left, Term right, std::string_view sqlOperator);
/// "equal to", "less than" ... as messages name an operator.
[[nodiscard]] std::string_view operatorWording(std::string_view sqlOperator);

} // namespace practice
