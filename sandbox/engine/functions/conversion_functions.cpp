// Conversions between types.
#include "engine/functions/sql_functions.h"

#include "engine/store/store.h"
#include "types/conversion.h"
#include "types/text_encoding.h"

#include <algorithm>
#include <cmath>

namespace practice {

namespace {

std::size_t unitsOf(std::string_view text)
{
    return isAscii(text) ? text.size() : utf16Length(text);
}

bool isFixedLength(TypeId id)
{
    return id == TypeId::Char || id == TypeId::NChar;
}

std::string padded(std::string_view text, std::size_t units, const SqlType& type)
{
    std::string result(text);
    if (isFixedLength(type.id) && type.length > 0 && units < static_cast<std::size_t>(type.length))
        result.append(static_cast<std::size_t>(type.length) - units, ' ');
    return result;
}

SqlType unbounded(const SqlType& type)
{
    SqlType wide = type;
    wide.id = isUnicode(type.id)     ? TypeId::NVarChar
              : isCharacter(type.id) ? TypeId::VarChar
                                     : TypeId::VarBinary;
    wide.length = maxLength;
    return wide;
}

/// Text into a column: what exceeds it may only be blanks.
std::string assignText(std::string text, const SqlType& target)
{
    const std::size_t units = unitsOf(text);
    if (target.length == maxLength || isLegacyLob(target.id) ||
        units <= static_cast<std::size_t>(target.length))
        return padded(text, units, target);
    const auto room = static_cast<std::size_t>(target.length);
    const std::size_t blanks = text.size() - (text.find_last_not_of(' ') + 1);
    if (units - blanks > room)
        raise(8152);
    text.resize(text.size() - (units - room));
    return text;
}

Value assignBytes(Value value, const SqlType& target)
{
    auto& bytes = std::get<Bytes>(value.data);
    const bool bounded = target.length != maxLength && !isLegacyLob(target.id);
    if (bounded && bytes.size() > static_cast<std::size_t>(target.length))
        raise(8152);
    if (target.id == TypeId::Binary)
        bytes.resize(static_cast<std::size_t>(target.length), 0);
    return value;
}

Value assigned(const Value& value, const SqlType& from, const SqlType& to, const DateSettings& dates)
{
    const bool fromTextOrBytes = isCharacter(from.id) || isBinary(from.id) || from.id == TypeId::SqlVariant;
    if (isCharacter(to.id)) {
        if (!fromTextOrBytes)
            return convert(value, from, to, 0, dates);
        Value text = convert(value, from, unbounded(to), 0, dates);
        if (auto* held = std::get_if<std::string>(&text.data))
            *held = assignText(std::move(*held), to);
        return text;
    }
    if (isBinary(to.id) && to.id != TypeId::Timestamp && fromTextOrBytes) {
        Value bytes = convert(value, from, unbounded(to), 0, dates);
        return bytes.isNull() ? bytes : assignBytes(std::move(bytes), to);
    }
    return convert(value, from, to, 0, dates);
}

// cvt(value, from type, to type, style)
void cvt(const Call& call, const DateSettings& dates)
{
    const SqlType from = call.type(1);
    const SqlType to = call.type(2);
    call.result(convert(call.value(0, from), from, to, static_cast<int>(call.integer(3)), dates), to);
}

// trycvt(value, from type, to type, style): NULL where cvt fails
void tryConversion(const Call& call, const DateSettings& dates)
{
    try {
        cvt(call, dates);
    } catch (const ConversionError&) {
        sqlite3_result_null(call.context());
    }
}

// rowlimit(count): of TOP and OFFSET
void rowLimit(const Call& call)
{
    if (call.isNull(0))
        raise(1060);
    if (call.integer(0) < 0)
        raise(127);
    call.result(call.integer(0));
}

// percentage(total, percent): of TOP n PERCENT, rounded up
void percentage(const Call& call)
{
    const double percent = call.real(1);
    if (percent < 0 || percent > 100)
        raise(1031);
    call.result(static_cast<std::int64_t>(std::ceil(static_cast<double>(call.integer(0)) * percent / 100)));
}

// depth(level): of a recursive common table
void depth(const Call& call)
{
    constexpr std::int64_t deepest = 100;
    if (call.integer(0) > deepest)
        raise(530, {std::to_string(deepest)});
    call.result(call.integer(0));
}

// asg(value, from type, to type): as an INSERT or UPDATE converts
void asg(const Call& call, const DateSettings& dates)
{
    const SqlType from = call.type(1);
    const SqlType to = call.type(2);
    if (sqlite3_value_type(call.argument(0)) == SQLITE_TEXT && isCharacter(from.id) && isCharacter(to.id)) {
        const std::string_view text = call.text(0);
        if (isAscii(text)) {
            const bool fits = to.length == maxLength || isLegacyLob(to.id) ||
                              text.size() <= static_cast<std::size_t>(to.length);
            if (fits && !isFixedLength(to.id))
                return call.resultArgument(0);
            return call.result(std::string_view(assignText(std::string(text), to)));
        }
    }
    call.result(assigned(call.value(0, from), from, to, dates), to);
}

// pad(text, type): to the length of a char or nchar
void pad(const Call& call)
{
    const std::string_view text = call.text(0);
    call.result(std::string_view(padded(text, unitsOf(text), call.type(1))));
}

// required(value, column, table, statement): error 515 for NULL
void required(const Call& call)
{
    if (call.isNull(0))
        raise(515, {std::string(call.text(1)), std::string(call.text(2)), std::string(call.text(3))});
    call.resultArgument(0);
}

// fail(number, argument...): a fault known when the statement was bound, raised when it is reached
void fail(const Call& call)
{
    const auto argument = [&call](int i) {
        return i < call.count() ? std::string(call.text(i)) : std::string();
    };
    raise(static_cast<int>(call.integer(0)), {argument(1), argument(2), argument(3)});
}

std::int64_t storedSize(const Call& call, int argument, const SqlType& type)
{
    if (isCharacter(type.id) || type.id == TypeId::Xml) {
        const auto units = static_cast<std::int64_t>(unitsOf(call.text(argument)));
        return isUnicode(type.id) || type.id == TypeId::Xml ? units * 2 : units;
    }
    if (isBinary(type.id))
        return static_cast<std::int64_t>(call.blob(argument).size());
    if (isDecimal(type.id))
        return decimalStorage(type.precision);
    if (type.id == TypeId::SqlVariant) {
        const Value value = call.value(argument, type);
        if (const auto* text = std::get_if<std::string>(&value.data))
            return static_cast<std::int64_t>(unitsOf(*text)) * (isUnicode(value.variantType.id) ? 2 : 1);
        if (const auto* bytes = std::get_if<Bytes>(&value.data))
            return static_cast<std::int64_t>(bytes->size());
        return defaultType(value.variantType.id, true).length;
    }
    return defaultType(type.id, true).length;
}

// datalength(value, type)
void dataLength(const Call& call)
{
    call.result(storedSize(call, 0, call.type(1)));
}

// offsetkey(value): the part of a datetimeoffset that comparisons look at
void offsetKey(const Call& call)
{
    call.resultBlob(call.blob(0).substr(0, 8));
}

std::uint64_t rotated(std::uint64_t value)
{
    return (value << 4 | value >> 28) & 0xffffffffU;
}

// checksum(value...): equal for values that compare equal
void checksum(const Call& call)
{
    std::uint64_t sum = 0;
    for (int i = 0; i < call.count(); ++i) {
        if (call.isNull(i)) {
            sum = rotated(sum) ^ 0x7fffffffU;
            continue;
        }
        std::string bytes(call.blob(i));
        if (sqlite3_value_type(call.argument(i)) == SQLITE_TEXT) {
            bytes.erase(bytes.find_last_not_of(' ') + 1);
            std::transform(bytes.begin(), bytes.end(), bytes.begin(),
                           [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; });
        } else if (sqlite3_value_type(call.argument(i)) == SQLITE_INTEGER) {
            sum = rotated(sum) ^ (static_cast<std::uint64_t>(call.integer(i)) & 0xffffffffU);
            continue;
        }
        for (const char byte : bytes)
            sum = rotated(sum) ^ static_cast<std::uint8_t>(byte);
    }
    call.result(static_cast<std::int64_t>(static_cast<std::int32_t>(static_cast<std::uint32_t>(sum))));
}

// one(value): the value of a subquery that may give one row only
void oneStep(sqlite3_context* context, int, sqlite3_value** arguments)
{
    auto** held =
        static_cast<sqlite3_value**>(sqlite3_aggregate_context(context, 2 * sizeof(sqlite3_value*)));
    if (held == nullptr)
        return;
    if (*held != nullptr) {
        resultError(context, makeMessage(512));
        return;
    }
    *held = sqlite3_value_dup(arguments[0]);
}

void oneFinal(sqlite3_context* context)
{
    auto** held = static_cast<sqlite3_value**>(sqlite3_aggregate_context(context, 0));
    if (held == nullptr || *held == nullptr)
        return;
    sqlite3_result_value(context, *held);
    sqlite3_value_free(*held);
    *held = nullptr;
}

} // namespace

void registerConversionFunctions(sqlite3* connection, const DateSettings& dates)
{
    defineFunction(connection, "t_checksum", -1, checksum, Nulls::Handle);
    defineDatedFunction(connection, "t_cvt", 4, cvt, dates);
    defineDatedFunction(connection, "t_trycvt", 4, tryConversion, dates);
    defineFunction(connection, "t_rowlimit", 1, rowLimit, Nulls::Handle);
    defineFunction(connection, "t_percentage", 2, percentage);
    defineFunction(connection, "t_depth", 1, depth);
    defineDatedFunction(connection, "t_asg", 3, asg, dates);
    defineFunction(connection, "t_pad", 2, pad);
    defineFunction(connection, "t_required", 4, required, Nulls::Handle);
    defineFunction(connection, "t_fail", -1, fail, Nulls::Handle, Purity::Volatile);
    defineFunction(connection, "t_datalength", 2, dataLength);
    defineFunction(connection, "t_offsetkey", 1, offsetKey);
    sqlite3_create_function_v2(connection, "t_one", 1, SQLITE_UTF8, nullptr, nullptr, &oneStep, &oneFinal,
                               nullptr);
}

} // namespace practice
