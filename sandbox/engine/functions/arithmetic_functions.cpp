// Arithmetic with the ranges and errors of Transact-SQL.
#include "engine/functions/sql_functions.h"

#include "types/date_time.h"
#include "types/decimal.h"

#include <cmath>
#include <limits>

namespace practice {

namespace {

struct Range
{
    std::int64_t low;
    std::int64_t high;
};

Range rangeOf(TypeId id)
{
    switch (id) {
    case TypeId::Bit:
        return {0, 1};
    case TypeId::TinyInt:
        return {0, 255};
    case TypeId::SmallInt:
        return {-32768, 32767};
    case TypeId::Int:
    case TypeId::SmallMoney:
        return {std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()};
    default:
        return {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()};
    }
}

[[noreturn]] void overflow(TypeId id)
{
    raise(8115, {isDecimal(id) ? "numeric" : typeName(id)});
}

TypeId typeIdAt(const Call& call, int i)
{
    return static_cast<TypeId>(call.integer(i));
}

// rng(value, type id): an integer that must fit its type
void rng(const Call& call)
{
    const std::int64_t value = call.integer(0);
    const TypeId id = typeIdAt(call, 1);
    const Range range = rangeOf(id);
    // SQLite turns an integer result that left 64 bits into a real one.
    if (sqlite3_value_type(call.argument(0)) == SQLITE_FLOAT || value < range.low || value > range.high)
        overflow(id);
    call.result(value);
}

// fin(value): a float that must be finite
void fin(const Call& call)
{
    const double value = call.real(0);
    if (!std::isfinite(value))
        overflow(TypeId::Float);
    call.result(value);
}

// divi(dividend, divisor, type id)
void divi(const Call& call)
{
    const std::int64_t divisor = call.integer(1);
    if (divisor == 0)
        raise(8134);
    if (divisor == -1 && call.integer(0) == rangeOf(typeIdAt(call, 2)).low)
        overflow(typeIdAt(call, 2));
    call.result(call.integer(0) / divisor);
}

void modi(const Call& call)
{
    const std::int64_t divisor = call.integer(1);
    if (divisor == 0)
        raise(8134);
    call.result(divisor == -1 ? std::int64_t{0} : call.integer(0) % divisor);
}

void divf(const Call& call)
{
    if (call.real(1) == 0)
        raise(8134);
    const double quotient = call.real(0) / call.real(1);
    if (!std::isfinite(quotient))
        overflow(TypeId::Float);
    call.result(quotient);
}

__int128 roundedQuotient(__int128 dividend, __int128 divisor)
{
    const __int128 quotient = dividend / divisor;
    const __int128 rest = dividend % divisor;
    const __int128 twice = (rest < 0 ? -rest : rest) * 2;
    const bool away = twice >= (divisor < 0 ? -divisor : divisor);
    return away ? quotient + ((dividend < 0) == (divisor < 0) ? 1 : -1) : quotient;
}

void moneyResult(const Call& call, __int128 value, TypeId id)
{
    const Range range = rangeOf(id);
    if (value < range.low || value > range.high)
        overflow(id);
    call.result(static_cast<std::int64_t>(value));
}

// mulm, divm(left, right, type id): money by money
void mulm(const Call& call)
{
    moneyResult(call, roundedQuotient(static_cast<__int128>(call.integer(0)) * call.integer(1), 10'000),
                typeIdAt(call, 2));
}

void divm(const Call& call)
{
    if (call.integer(1) == 0)
        raise(8134);
    moneyResult(call, static_cast<__int128>(call.integer(0)) * 10'000 / call.integer(1), typeIdAt(call, 2));
}

// dec(operator, left, right, left type, right type, result type)
void dec(const Call& call)
{
    const SqlType type = call.type(5);
    const auto left = std::get<Decimal>(call.value(1, call.type(3)).data);
    const auto right = std::get<Decimal>(call.value(2, call.type(4)).data);
    const char operation = call.text(0).front();
    if ((operation == '/' || operation == '%') && right.magnitude == 0)
        raise(8134);
    std::optional<Decimal> result;
    switch (operation) {
    case '+':
        result = add(left, right, type.scale);
        break;
    case '-':
        result = subtract(left, right, type.scale);
        break;
    case '*':
        result = multiply(left, right, type.scale);
        break;
    case '/':
        result = divide(left, right, type.scale);
        break;
    default:
        result = modulo(left, right, type.scale);
    }
    if (!result || !fits(*result, type.precision))
        overflow(TypeId::Numeric);
    call.result(Value{*result, {}}, type);
}

// neg(value, type)
void neg(const Call& call)
{
    const SqlType type = call.type(1);
    Value value = call.value(0, type);
    if (auto* decimal = std::get_if<Decimal>(&value.data))
        decimal->negative = !decimal->negative && decimal->magnitude != 0;
    call.result(value, type);
}

// dtadd(datetime, days as float, sign, type): datetime + number
void dtadd(const Call& call)
{
    const SqlType type = call.type(3);
    const auto value = std::get<DateTimeValue>(call.value(0, type).data);
    const auto moved =
        dateTimeFromDays(daysSince1900(value) + call.real(1) * static_cast<double>(call.integer(2)));
    const auto fitted = moved ? fitToType(*moved, type) : std::nullopt;
    if (!fitted)
        raise(8115, {typeName(type.id)});
    call.result(Value{*fitted, {}}, type);
}

// days(datetime, type): as a float
void days(const Call& call)
{
    call.result(daysSince1900(std::get<DateTimeValue>(call.value(0, call.type(1)).data)));
}

} // namespace

void registerArithmeticFunctions(sqlite3* connection)
{
    defineFunction(connection, "t_rng", 2, rng);
    defineFunction(connection, "t_fin", 1, fin);
    defineFunction(connection, "t_divi", 3, divi);
    defineFunction(connection, "t_modi", 3, modi);
    defineFunction(connection, "t_divf", 2, divf);
    defineFunction(connection, "t_mulm", 3, mulm);
    defineFunction(connection, "t_divm", 3, divm);
    defineFunction(connection, "t_dec", 6, dec);
    defineFunction(connection, "t_neg", 2, neg);
    defineFunction(connection, "t_dtadd", 4, dtadd);
    defineFunction(connection, "t_days", 2, days);
}

} // namespace practice
