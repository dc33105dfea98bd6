#include "engine/binder/term.h"

#include "engine/messages/errors.h"
#include "types/conversion.h"
#include "types/decimal.h"
#include "types/text_encoding.h"

#include <algorithm>
#include <array>

namespace practice {

namespace {

/// Lowest first.
constexpr std::array precedence = {
    TypeId::Null,
    TypeId::Binary,
    TypeId::VarBinary,
    TypeId::Char,
    TypeId::VarChar,
    TypeId::NChar,
    TypeId::NVarChar,
    TypeId::UniqueIdentifier,
    TypeId::Timestamp,
    TypeId::Image,
    TypeId::Text,
    TypeId::NText,
    TypeId::Bit,
    TypeId::TinyInt,
    TypeId::SmallInt,
    TypeId::Int,
    TypeId::BigInt,
    TypeId::SmallMoney,
    TypeId::Money,
    TypeId::Decimal,
    TypeId::Numeric,
    TypeId::Real,
    TypeId::Float,
    TypeId::Time,
    TypeId::Date,
    TypeId::SmallDateTime,
    TypeId::DateTime,
    TypeId::DateTime2,
    TypeId::DateTimeOffset,
    TypeId::Xml,
    TypeId::SqlVariant,
};

int rank(TypeId id)
{
    return static_cast<int>(std::find(precedence.begin(), precedence.end(), id) - precedence.begin());
}

bool isOldDateTime(TypeId id)
{
    return id == TypeId::DateTime || id == TypeId::SmallDateTime;
}

enum class Allowed : std::uint8_t
{
    Implicitly,
    Explicitly,
    Never
};

Allowed fromText(const SqlType& from, TypeId to)
{
    if (isLegacyLob(from.id))
        return isCharacter(to) || to == TypeId::Xml ? Allowed::Implicitly : Allowed::Never;
    if (isBinary(to) && to != TypeId::Image)
        return Allowed::Explicitly;
    return Allowed::Implicitly;
}

Allowed fromBytes(TypeId from, TypeId to)
{
    if (isBinary(to))
        return Allowed::Implicitly;
    if (from == TypeId::Image || to == TypeId::Real || to == TypeId::Float || to == TypeId::Text ||
        to == TypeId::NText)
        return Allowed::Never;
    return Allowed::Implicitly;
}

Allowed fromNumber(TypeId to)
{
    if (isNumeric(to) || isOldDateTime(to) || to == TypeId::SqlVariant)
        return Allowed::Implicitly;
    if (isCharacter(to) || isBinary(to))
        return isLegacyLob(to) ? Allowed::Never : Allowed::Implicitly;
    return Allowed::Never;
}

Allowed fromDateTime(TypeId from, TypeId to)
{
    if (isDateTime(to)) {
        const bool nothingShared =
            (from == TypeId::Date && to == TypeId::Time) || (from == TypeId::Time && to == TypeId::Date);
        return nothingShared ? Allowed::Never : Allowed::Implicitly;
    }
    if (isCharacter(to))
        return isLegacyLob(to) ? Allowed::Never : Allowed::Implicitly;
    if (to == TypeId::SqlVariant)
        return Allowed::Implicitly;
    if (isBinary(to))
        return to == TypeId::Image ? Allowed::Never : Allowed::Explicitly;
    return isNumeric(to) && isOldDateTime(from) ? Allowed::Explicitly : Allowed::Never;
}

Allowed conversionOf(const SqlType& from, const SqlType& to)
{
    if (from.id == TypeId::Null || from.id == to.id)
        return Allowed::Implicitly;
    if (from.id == TypeId::SqlVariant)
        return isLegacyLob(to.id) || to.id == TypeId::Timestamp ? Allowed::Never : Allowed::Explicitly;
    if (to.id == TypeId::SqlVariant &&
        (isLegacyLob(from.id) || from.id == TypeId::Timestamp || from.id == TypeId::Xml))
        return Allowed::Never;
    if (isCharacter(from.id))
        return fromText(from, to.id);
    if (isBinary(from.id))
        return fromBytes(from.id, to.id);
    if (isNumeric(from.id))
        return fromNumber(to.id);
    if (isDateTime(from.id))
        return fromDateTime(from.id, to.id);
    if (from.id == TypeId::UniqueIdentifier) {
        const bool bytes = isBinary(to.id) && to.id != TypeId::Image && to.id != TypeId::Timestamp;
        return (isCharacter(to.id) && !isLegacyLob(to.id)) || bytes || to.id == TypeId::SqlVariant
                   ? Allowed::Implicitly
                   : Allowed::Never;
    }
    return isCharacter(to.id) || isBinary(to.id) ? Allowed::Explicitly : Allowed::Never;
}

bool isVariableText(TypeId id)
{
    return id == TypeId::VarChar || id == TypeId::NVarChar;
}

/// A longer or equal length, (max) being the longest.
bool holds(const SqlType& wide, const SqlType& narrow)
{
    if (wide.length == maxLength)
        return true;
    return narrow.length != maxLength && wide.length >= narrow.length;
}

/// True when the storage form stays as it is.
bool sameStorage(const SqlType& from, const SqlType& to)
{
    if (isCharacter(from.id) && isCharacter(to.id)) {
        const bool keepsAlphabet = isUnicode(to.id) || !isUnicode(from.id);
        const bool keepsLength =
            isLegacyLob(to.id) || (!isLegacyLob(from.id) && isVariableText(to.id) && holds(to, from));
        return keepsAlphabet && (keepsLength || (from.id == to.id && from.length == to.length));
    }
    if (isBinary(from.id) && isBinary(to.id))
        return to.id == TypeId::Image ||
               (to.id == TypeId::VarBinary && from.id != TypeId::Image && holds(to, from)) || from == to;
    if (isInteger(from.id) && isInteger(to.id))
        return from.id != TypeId::BigInt && to.id != TypeId::Bit && rank(from.id) <= rank(to.id);
    if (isDecimal(from.id) && isDecimal(to.id))
        return from.scale == to.scale && from.precision <= to.precision &&
               storageClass(from) == storageClass(to);
    if (from.id == TypeId::Real && to.id == TypeId::Float)
        return true;
    if (from.id == TypeId::SmallMoney && to.id == TypeId::Money)
        return true;
    const bool facetsFree = !isDecimal(from.id) && !isCharacter(from.id) && !isBinary(from.id);
    return from.id == to.id && ((facetsFree && !isDateTime(from.id)) || from == to ||
                                isOldDateTime(from.id) || from.id == TypeId::Date);
}

std::string power10(int exponent)
{
    return "1" + std::string(static_cast<std::size_t>(std::max(exponent, 0)), '0');
}

/// Conversions that plain arithmetic of SQLite does without loss.
std::optional<std::string> nativeConversion(const Term& term, const SqlType& to)
{
    const SqlType& from = term.type;
    if (!isInteger(from.id) || from.id == TypeId::BigInt)
        return std::nullopt;
    if (to.id == TypeId::Float)
        return "CAST(" + term.sql + " AS REAL)";
    if (to.id == TypeId::Money)
        return "(" + term.sql + ")*10000";
    const int digits = asDecimalType(from).precision;
    if (isDecimal(to.id) && to.precision <= 18 && to.precision - to.scale >= digits)
        return to.scale == 0 ? term.sql : "(" + term.sql + ")*" + power10(to.scale);
    return std::nullopt;
}

Term foldedConstant(const Term& term, const SqlType& to, Conversion conversion, int style, bool& done)
{
    done = false;
    if (!term.constant)
        return {};
    // Assignments that cut off must go through their function, which knows what may be lost.
    const bool lossy = conversion == Conversion::Assignment && (isCharacter(to.id) || isBinary(to.id));
    // What a date says depends on the session at the time.
    const bool dated =
        (isCharacter(term.type.id) && isDateTime(to.id)) || (isDateTime(term.type.id) && isCharacter(to.id));
    if (lossy || dated)
        return {};
    try {
        Term folded = constantTerm(convert(*term.constant, term.type, to, style), to);
        folded.nullable = term.nullable;
        done = true;
        return folded;
    } catch (const ConversionError&) {
        return {}; // raised when the statement runs
    }
}

SqlType commonText(const SqlType& left, const SqlType& right, TypeId id)
{
    SqlType type{id};
    const bool unlimited = left.length == maxLength || right.length == maxLength;
    const bool variable = left.id != right.id || isVariableText(id);
    if (variable && (id == TypeId::Char || id == TypeId::NChar))
        type.id = id == TypeId::Char ? TypeId::VarChar : TypeId::NVarChar;
    const int longest = isUnicode(type.id) ? 4000 : 8000;
    type.length = unlimited ? maxLength : std::min(std::max(left.length, right.length), longest);
    return type;
}

bool isTextOrBytes(TypeId id)
{
    return isCharacter(id) || isBinary(id);
}

/// The length in characters that a value of any type may take as text.
int textLength(const SqlType& type)
{
    if (isTextOrBytes(type.id))
        return type.length;
    switch (type.id) {
    case TypeId::Null:
    case TypeId::Bit:
        return 1;
    case TypeId::TinyInt:
        return 3;
    case TypeId::SmallInt:
        return 6;
    case TypeId::Int:
        return 12;
    case TypeId::UniqueIdentifier:
        return 36;
    default:
        return 40;
    }
}

SqlType commonPair(const SqlType& left, const SqlType& right, const SqlType& leftDecimal,
                   const SqlType& rightDecimal)
{
    if (left.id == TypeId::Null)
        return right;
    if (right.id == TypeId::Null || left == right)
        return left;
    const TypeId id = rank(left.id) >= rank(right.id) ? left.id : right.id;
    if (isDecimal(id)) {
        SqlType type = isExactNumeric(left.id) && isExactNumeric(right.id)
                           ? commonDecimalType(leftDecimal, rightDecimal)
                           : (isDecimal(left.id) ? left : right);
        type.id = id;
        return type;
    }
    if (isLegacyLob(id))
        return defaultType(id, true);
    if (isCharacter(id)) {
        SqlType a = left;
        SqlType b = right;
        a.length = textLength(left);
        b.length = textLength(right);
        return commonText(a, b, id);
    }
    if (id == TypeId::Binary || id == TypeId::VarBinary) {
        const bool unlimited = left.length == maxLength || right.length == maxLength;
        return {left.id == right.id ? id : TypeId::VarBinary,
                unlimited ? maxLength : std::max(left.length, right.length)};
    }
    SqlType type = left.id == id ? left : right;
    if (isDateTime(id) && left.id == right.id)
        type.scale = std::max(left.scale, right.scale);
    return type;
}

} // namespace

Term constantTerm(Value value, const SqlType& type)
{
    Term term;
    term.sql = storageLiteral(value, type);
    term.type = type;
    term.nullable = value.isNull();
    if (isCharacter(type.id))
        term.collation = defaultCollation;
    term.constant = std::move(value);
    return term;
}

Term nullTerm()
{
    return constantTerm({}, {TypeId::Null});
}
Term integerTerm(std::int64_t value)
{
    return constantTerm(Value{value, {}}, intType());
}

Term textTerm(std::string_view value)
{
    return constantTerm(Value{std::string(value), {}},
                        varCharType(std::max(1, static_cast<int>(utf16Length(value)))));
}

Term resultTerm(std::string sql, const SqlType& type, bool nullable)
{
    Term term{std::move(sql), type};
    term.nullable = nullable;
    if (isCharacter(type.id))
        term.collation = defaultCollation;
    return term;
}

std::string typeArgument(const SqlType& type)
{
    return std::to_string(packType(type));
}

std::string callText(std::string_view function, std::initializer_list<std::string_view> arguments)
{
    std::string text(function);
    text += '(';
    for (const auto& argument : arguments) {
        if (&argument != arguments.begin())
            text += ',';
        text += argument;
    }
    return text + ')';
}

void requireConversion(const SqlType& from, const SqlType& to, Conversion conversion)
{
    const Allowed allowed = conversionOf(from, to);
    if (allowed == Allowed::Implicitly ||
        (allowed == Allowed::Explicitly && conversion == Conversion::Explicit))
        return;
    const std::string source = typeName(from.id);
    const std::string target = typeName(to.id);
    if (allowed == Allowed::Explicitly)
        raise(257, {source, target});
    raise(conversion == Conversion::Explicit ? 529 : 206, {source, target});
}

Term convertTerm(const Term& term, const SqlType& to, Conversion conversion, int style)
{
    requireConversion(term.type, to, conversion);
    Term result = term;
    result.type = to;
    if (term.type.id == TypeId::Null || (term.constant && term.constant->isNull())) {
        result = constantTerm({}, to);
        return result;
    }
    if (isCharacter(to.id) && result.collation.empty())
        result.collation = defaultCollation;
    if (!isCharacter(to.id))
        result.collation.clear();
    if (style == 0 && sameStorage(term.type, to)) {
        result.integerLiteral = false;
        return result;
    }
    bool folded = false;
    Term constant = foldedConstant(term, to, conversion, style, folded);
    if (folded) {
        if (isCharacter(to.id) && !term.collation.empty()) {
            constant.collation = term.collation;
            constant.coercibility = term.coercibility;
        }
        return constant;
    }
    result.constant.reset();
    result.integerLiteral = false;
    result.collated = false;
    if (const auto native = nativeConversion(term, to); native && style == 0) {
        result.sql = *native;
        return result;
    }
    if (conversion == Conversion::Assignment)
        result.sql = callText("t_asg", {term.sql, typeArgument(term.type), typeArgument(to)});
    else
        result.sql =
            callText("t_cvt", {term.sql, typeArgument(term.type), typeArgument(to), std::to_string(style)});
    return result;
}

SqlType decimalTypeOf(const Term& term)
{
    if (term.integerLiteral && term.constant) {
        const auto* value = std::get_if<std::int64_t>(&term.constant->data);
        if (value != nullptr) {
            const std::uint64_t magnitude =
                *value < 0 ? 0 - static_cast<std::uint64_t>(*value) : static_cast<std::uint64_t>(*value);
            return {TypeId::Numeric, 0, static_cast<std::uint8_t>(digitCount(magnitude)), 0};
        }
    }
    return asDecimalType(term.type);
}

SqlType commonType(const Term& left, const Term& right)
{
    const bool exact = isExactNumeric(left.type.id) && isExactNumeric(right.type.id);
    return commonPair(left.type, right.type, exact ? decimalTypeOf(left) : left.type,
                      exact ? decimalTypeOf(right) : right.type);
}

SqlType commonType(std::span<const Term> terms)
{
    SqlType type{TypeId::Null};
    for (const Term& term : terms) {
        const Term gathered{"", type};
        type = commonType(gathered, term);
    }
    return type;
}

Term mergedCollation(const Term& left, const Term& right, std::string_view operation)
{
    if (right.coercibility > left.coercibility || left.collation.empty())
        return right;
    if (left.coercibility > right.coercibility || right.collation.empty() ||
        left.collation == right.collation)
        return left;
    if (left.coercibility == Coercibility::Coercible)
        return left;
    raise(468, {right.collation, left.collation, std::string(operation)});
}

std::string comparable(const Term& term)
{
    if (term.type.id == TypeId::DateTimeOffset)
        return callText("t_offsetkey", {term.sql});
    if (!isCharacter(term.type.id) || term.collated)
        return term.sql;
    return "(" + term.sql + ") COLLATE " +
           quotedName(term.collation.empty() ? defaultCollation : term.collation);
}

std::string_view operatorWording(std::string_view sqlOperator)
{
    if (sqlOperator == "=" || sqlOperator == "IS")
        return "equal to";
    if (sqlOperator == "<>")
        return "not equal to";
    if (sqlOperator == "<")
        return "less than";
    if (sqlOperator == "<=")
        return "less than or equal to";
    return sqlOperator == ">" ? "greater than" : "greater than or equal to";
}

std::string compareTerms(Term left, Term right, std::string_view sqlOperator)
{
    for (const Term* term : {&left, &right}) {
        if (isLegacyLob(term->type.id))
            raise(402, {typeName(left.type.id), typeName(right.type.id),
                        std::string(operatorWording(sqlOperator))});
    }
    std::string collation;
    if (isCharacter(left.type.id) && isCharacter(right.type.id))
        collation = mergedCollation(left, right, operatorWording(sqlOperator)).collation;
    const bool integers = isInteger(left.type.id) && isInteger(right.type.id);
    if (!integers) {
        const SqlType type = commonType(left, right);
        left = convertTerm(left, type, Conversion::Implicit);
        right = convertTerm(right, type, Conversion::Implicit);
    }
    if (!collation.empty()) {
        left.collated = left.collated && left.collation == collation;
        left.collation = collation;
    }
    std::string text = "(";
    text += comparable(left);
    text += ' ';
    text += sqlOperator;
    text += ' ';
    text += isCharacter(right.type.id) ? right.sql : comparable(right);
    return text + ")";
}

} // namespace practice
