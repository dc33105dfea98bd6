// Functions of numbers.
#include "engine/functions/sql_functions.h"

#include "types/conversion.h"
#include "types/decimal.h"

#include <cmath>
#include <cstdlib>
#include <numbers>
#include <optional>
#include <random>

namespace practice {

namespace {

[[noreturn]] void overflow(const SqlType& type)
{
    raise(8115, {isDecimal(type.id) ? "numeric" : typeName(type.id)});
}

void decimalResult(const Call& call, const std::optional<Decimal>& value, const SqlType& type)
{
    if (!value || !fits(*value, type.precision))
        overflow(type);
    call.result(Value{*value, {}}, type);
}

// abs(value, type)
void absolute(const Call& call)
{
    const SqlType type = call.type(1);
    Value value = call.value(0, type);
    if (auto* decimal = std::get_if<Decimal>(&value.data))
        decimal->negative = false;
    else if (auto* real = std::get_if<double>(&value.data))
        *real = std::fabs(*real);
    else if (auto* integer = std::get_if<std::int64_t>(&value.data)) {
        if (*integer == INT64_MIN || (type.id == TypeId::Int && *integer == INT32_MIN))
            overflow(type);
        *integer = std::abs(*integer);
    }
    call.result(value, type);
}

/// 1 below zero is wanted away from it, -1 towards it: what CEILING and FLOOR do to a fraction.
Decimal toInteger(const Decimal& value, bool up)
{
    const unsigned __int128 unit = powerOfTen(value.scale);
    unsigned __int128 whole = value.magnitude / unit;
    if (value.magnitude % unit != 0 && up != value.negative)
        ++whole;
    return {whole, 0, value.negative && whole != 0};
}

// ceiling, floor(value, type, result type)
void toWhole(const Call& call, bool up)
{
    const SqlType type = call.type(1);
    const SqlType resultType = call.type(2);
    const Value value = call.value(0, type);
    if (const auto* decimal = std::get_if<Decimal>(&value.data))
        return decimalResult(call, toInteger(*decimal, up), resultType);
    if (const auto* real = std::get_if<double>(&value.data))
        return call.result(up ? std::ceil(*real) : std::floor(*real));
    if (isMoney(type.id)) {
        const Decimal whole = toInteger(decimalFromMoney(std::get<std::int64_t>(value.data)), up);
        const auto units = static_cast<std::int64_t>(whole.magnitude) * 10'000;
        return call.result(whole.negative ? -units : units);
    }
    call.result(value, resultType);
}

void ceiling(const Call& call)
{
    toWhole(call, true);
}
void floorOf(const Call& call)
{
    toWhole(call, false);
}

/// To `places` digits behind the point, before it when negative.
std::optional<Decimal> rounded(const Decimal& value, std::int64_t places, bool truncate)
{
    if (places >= value.scale)
        return value;
    const std::int64_t digits = value.scale - places;
    if (digits > maxPrecision)
        return Decimal{0, value.scale, false};
    const unsigned __int128 unit = powerOfTen(static_cast<int>(digits));
    const unsigned __int128 rest = value.magnitude % unit;
    unsigned __int128 magnitude = value.magnitude - rest;
    if (!truncate && rest >= unit - rest)
        magnitude += unit;
    return Decimal{magnitude, value.scale, value.negative && magnitude != 0};
}

double roundedReal(double value, std::int64_t places, bool truncate)
{
    const double unit = std::pow(10.0, static_cast<double>(places));
    const double scaled = value * unit;
    if (!std::isfinite(scaled) || unit == 0)
        return unit == 0 ? 0 : value;
    return (truncate ? std::trunc(scaled) : std::round(scaled)) / unit;
}

// round(value, places, truncate, type)
void roundTo(const Call& call)
{
    const SqlType type = call.type(3);
    const std::int64_t places = call.integer(1);
    const bool truncate = call.integer(2) != 0;
    const Value value = call.value(0, type);
    if (const auto* real = std::get_if<double>(&value.data))
        return call.result(roundedReal(*real, places, truncate));
    if (const auto* decimal = std::get_if<Decimal>(&value.data))
        return decimalResult(call, rounded(*decimal, places, truncate), type);
    const std::int64_t integer = std::get<std::int64_t>(value.data);
    const Decimal exact = isMoney(type.id) ? decimalFromMoney(integer) : decimalFromInteger(integer);
    const Decimal result = *rounded(exact, places, truncate);
    const auto limit = static_cast<unsigned __int128>(type.id == TypeId::Int ? INT32_MAX : INT64_MAX);
    if (result.magnitude > limit)
        overflow(type);
    const auto magnitude = static_cast<std::int64_t>(result.magnitude);
    call.result(result.negative ? -magnitude : magnitude);
}

// sign(value, type): 1, 0 or -1 in the argument's type
void sign(const Call& call)
{
    const SqlType type = call.type(1);
    Value value = call.value(0, type);
    if (auto* decimal = std::get_if<Decimal>(&value.data))
        decimal->magnitude = decimal->magnitude == 0 ? 0 : powerOfTen(decimal->scale);
    else if (auto* real = std::get_if<double>(&value.data))
        *real = static_cast<double>((*real > 0) - (*real < 0));
    else if (auto* integer = std::get_if<std::int64_t>(&value.data))
        *integer = std::int64_t{(*integer > 0) - (*integer < 0)} * (isMoney(type.id) ? 10'000 : 1);
    call.result(value, type);
}

void realResult(const Call& call, double value)
{
    if (std::isnan(value))
        raise(3623);
    if (!std::isfinite(value))
        overflow({TypeId::Float});
    call.result(value);
}

using RealFunction = double (*)(double);

template <RealFunction function>
void apply(const Call& call)
{
    realResult(call, function(call.real(0)));
}

double logarithm(double x)
{
    return x <= 0 ? std::nan("") : std::log(x);
}
double logarithm10(double x)
{
    return x <= 0 ? std::nan("") : std::log10(x);
}
double square(double x)
{
    return x * x;
}
double cotangent(double x)
{
    return 1 / std::tan(x);
}
double degrees(double x)
{
    return x * 180 / std::numbers::pi;
}
double radians(double x)
{
    return x * std::numbers::pi / 180;
}
double squareRoot(double x)
{
    return std::sqrt(x);
}
double exponential(double x)
{
    return std::exp(x);
}
double sine(double x)
{
    return std::sin(x);
}
double cosine(double x)
{
    return std::cos(x);
}
double tangent(double x)
{
    return std::tan(x);
}
double arcSine(double x)
{
    return std::asin(x);
}
double arcCosine(double x)
{
    return std::acos(x);
}
double arcTangent(double x)
{
    return std::atan(x);
}

void power(const Call& call)
{
    realResult(call, std::pow(call.real(0), call.real(1)));
}
void arcTangent2(const Call& call)
{
    realResult(call, std::atan2(call.real(0), call.real(1)));
}
void logarithmToBase(const Call& call)
{
    realResult(call, logarithm(call.real(0)) / logarithm(call.real(1)));
}

// rand(seed): the same seed gives the same number; without one the next of the thread's sequence
void random(const Call& call)
{
    thread_local std::mt19937_64 generator{std::random_device{}()};
    if (call.count() == 1 && !call.isNull(0))
        generator.seed(static_cast<std::uint64_t>(call.integer(0)));
    call.result(std::uniform_real_distribution<double>(0, 1)(generator));
}

// isnumeric(text)
void isNumber(const Call& call)
{
    if (call.isNull(0))
        return call.result(0);
    const Value text{std::string(call.text(0)), {}};
    const SqlType from{TypeId::NVarChar, maxLength};
    const auto converts = [&text, &from](const SqlType& to) {
        try {
            return !convert(text, from, to).isNull();
        } catch (const ConversionError&) {
            return false;
        }
    };
    const bool blank = call.text(0).find_first_not_of(' ') == std::string_view::npos;
    call.result(!blank && (converts({TypeId::Float, 8}) || converts({TypeId::Money, 8})) ? 1 : 0);
}

// newid(): in storage form
void newId(const Call& call)
{
    thread_local std::mt19937_64 generator{std::random_device{}()};
    Guid guid{};
    for (std::size_t i = 0; i < guid.size(); ++i)
        guid[i] = static_cast<std::uint8_t>(generator());
    guid[6] = static_cast<std::uint8_t>((guid[6] & 0x0f) | 0x40);
    guid[8] = static_cast<std::uint8_t>((guid[8] & 0x3f) | 0x80);
    call.result(Value{guid, {}}, {TypeId::UniqueIdentifier, 16});
}

} // namespace

void registerNumberFunctions(sqlite3* connection)
{
    defineFunction(connection, "t_abs", 2, absolute);
    defineFunction(connection, "t_ceiling", 3, ceiling);
    defineFunction(connection, "t_floor", 3, floorOf);
    defineFunction(connection, "t_round", 4, roundTo);
    defineFunction(connection, "t_sign", 2, sign);
    defineFunction(connection, "t_power", 2, power);
    defineFunction(connection, "t_atn2", 2, arcTangent2);
    defineFunction(connection, "t_logbase", 2, logarithmToBase);
    defineFunction(connection, "t_isnumeric", 1, isNumber, Nulls::Handle);
    defineFunction(connection, "t_rand", -1, random, Nulls::Handle, Purity::Volatile);
    defineFunction(connection, "t_newid", 0, newId, Nulls::Handle, Purity::Volatile);
    defineFunction(connection, "t_sqrt", 1, apply<squareRoot>);
    defineFunction(connection, "t_square", 1, apply<square>);
    defineFunction(connection, "t_exp", 1, apply<exponential>);
    defineFunction(connection, "t_log", 1, apply<logarithm>);
    defineFunction(connection, "t_log10", 1, apply<logarithm10>);
    defineFunction(connection, "t_sin", 1, apply<sine>);
    defineFunction(connection, "t_cos", 1, apply<cosine>);
    defineFunction(connection, "t_tan", 1, apply<tangent>);
    defineFunction(connection, "t_cot", 1, apply<cotangent>);
    defineFunction(connection, "t_asin", 1, apply<arcSine>);
    defineFunction(connection, "t_acos", 1, apply<arcCosine>);
    defineFunction(connection, "t_atan", 1, apply<arcTangent>);
    defineFunction(connection, "t_degrees", 1, apply<degrees>);
    defineFunction(connection, "t_radians", 1, apply<radians>);
}

} // namespace practice
