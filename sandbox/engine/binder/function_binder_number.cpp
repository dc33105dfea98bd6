// The functions of numbers.
#include "engine/binder/function_binder.h"
#include "engine/messages/errors.h"

namespace practice {

namespace {

/// The numeric type that an argument counts as: texts are read as floats.
Term numeric(const FunctionCall& call, std::size_t i, const char* function)
{
    Term given = call.term(i);
    if (isCharacter(given.type.id) || given.type.id == TypeId::Null)
        return convertTerm(given, given.type.id == TypeId::Null ? intType() : floatType(),
                           Conversion::Implicit);
    if (isBinary(given.type.id))
        return convertTerm(given, intType(), Conversion::Implicit);
    if (!isNumeric(given.type.id))
        raise(8116, {typeName(given.type.id), std::to_string(i + 1), function});
    return given;
}

/// What ABS, ROUND, SIGN and their like give back: small integers grow to int, real to float.
Term widened(const Term& term)
{
    switch (term.type.id) {
    case TypeId::Bit:
    case TypeId::TinyInt:
    case TypeId::SmallInt:
        return convertTerm(term, intType(), Conversion::Implicit);
    case TypeId::SmallMoney:
        return convertTerm(term, {TypeId::Money, 8}, Conversion::Implicit);
    case TypeId::Real:
        return convertTerm(term, floatType(), Conversion::Implicit);
    default:
        return term;
    }
}

/// As wide as a number of these digits behind the point can be.
Term widest(const Term& term, int leastScale = 0)
{
    if (!isDecimal(term.type.id))
        return term;
    const int scale = std::max<int>(term.type.scale, leastScale);
    return convertTerm(term, widestDecimal(term.type.id, scale), Conversion::Implicit);
}

Term absolute(const FunctionCall& call)
{
    const Term number = widened(numeric(call, 0, "abs"));
    return resultTerm(callText("t_abs", {number.sql, typeArgument(number.type)}), number.type,
                      number.nullable);
}

Term sign(const FunctionCall& call)
{
    const Term number = widest(widened(numeric(call, 0, "sign")));
    return resultTerm(callText("t_sign", {number.sql, typeArgument(number.type)}), number.type,
                      number.nullable);
}

Term whole(const FunctionCall& call, const char* function, const char* name)
{
    const Term number = widened(numeric(call, 0, name));
    SqlType type = number.type;
    if (isDecimal(type.id))
        type.scale = 0;
    return resultTerm(callText(function, {number.sql, typeArgument(number.type), typeArgument(type)}), type,
                      number.nullable);
}

Term ceiling(const FunctionCall& call)
{
    return whole(call, "t_ceiling", "ceiling");
}
Term floorOf(const FunctionCall& call)
{
    return whole(call, "t_floor", "floor");
}

Term round(const FunctionCall& call)
{
    const Term number = widened(numeric(call, 0, "round"));
    const std::string truncate = call.has(2) ? call.integer(2).sql : "0";
    return resultTerm(
        callText("t_round", {number.sql, call.integer(1).sql, truncate, typeArgument(number.type)}),
        number.type, true);
}

/// The type in which a function of reals gives its result back: that of its argument, with room.
Term inReals(const Term& term, int leastScale = 0)
{
    if (term.type.id == TypeId::Bit)
        return convertTerm(term, floatType(), Conversion::Implicit);
    return widest(widened(term), leastScale);
}

Term power(const FunctionCall& call)
{
    // The result has the type of the base.
    const Term base = inReals(numeric(call, 0, "power"));
    const Term exact = convertTerm(base, floatType(), Conversion::Implicit);
    const Term result = resultTerm(callText("t_power", {exact.sql, call.real(1).sql}), floatType());
    return convertTerm(result, base.type, Conversion::Explicit);
}

template <const char* const& function>
Term realFunction(const FunctionCall& call)
{
    return resultTerm(callText(function, {call.real(0).sql}), floatType());
}

constexpr const char* acosFunction = "t_acos";
constexpr const char* asinFunction = "t_asin";
constexpr const char* atanFunction = "t_atan";
constexpr const char* cosFunction = "t_cos";
constexpr const char* cotFunction = "t_cot";
constexpr const char* expFunction = "t_exp";
constexpr const char* log10Function = "t_log10";
constexpr const char* sinFunction = "t_sin";
constexpr const char* sqrtFunction = "t_sqrt";
constexpr const char* squareFunction = "t_square";
constexpr const char* tanFunction = "t_tan";

Term inOwnType(const FunctionCall& call, const char* function, const char* name)
{
    constexpr int angleScale = 18;
    const Term number = inReals(numeric(call, 0, name), angleScale);
    const Term real = convertTerm(number, floatType(), Conversion::Implicit);
    return convertTerm(resultTerm(callText(function, {real.sql}), floatType()), number.type,
                       Conversion::Explicit);
}

Term degrees(const FunctionCall& call)
{
    return inOwnType(call, "t_degrees", "degrees");
}
Term radians(const FunctionCall& call)
{
    return inOwnType(call, "t_radians", "radians");
}

Term logarithm(const FunctionCall& call)
{
    if (call.has(1))
        return resultTerm(callText("t_logbase", {call.real(0).sql, call.real(1).sql}), floatType());
    return resultTerm(callText("t_log", {call.real(0).sql}), floatType());
}

Term arcTangent2(const FunctionCall& call)
{
    return resultTerm(callText("t_atn2", {call.real(0).sql, call.real(1).sql}), floatType());
}

Term pi(const FunctionCall&)
{
    return constantTerm(Value{3.141592653589793, {}}, floatType());
}

Term random(const FunctionCall& call)
{
    // One draw for the whole statement, as the server does it.
    const std::string seed = call.has(0) ? call.integer(0).sql : "";
    return resultTerm("(SELECT t_rand(" + seed + "))", floatType(), false);
}

Term isNumber(const FunctionCall& call)
{
    const Term given = call.term(0);
    if (isNumeric(given.type.id))
        return resultTerm("(" + given.sql + " IS NOT NULL)", intType(), false);
    if (!isCharacter(given.type.id))
        return integerTerm(0);
    return resultTerm(callText("t_isnumeric", {given.sql}), intType(), false);
}

constexpr FunctionEntry numberFunctions[] = {
    {"abs", 1, 1, absolute},
    {"acos", 1, 1, realFunction<acosFunction>},
    {"asin", 1, 1, realFunction<asinFunction>},
    {"atan", 1, 1, realFunction<atanFunction>},
    {"atn2", 2, 2, arcTangent2},
    {"ceiling", 1, 1, ceiling},
    {"cos", 1, 1, realFunction<cosFunction>},
    {"cot", 1, 1, realFunction<cotFunction>},
    {"degrees", 1, 1, degrees},
    {"exp", 1, 1, realFunction<expFunction>},
    {"floor", 1, 1, floorOf},
    {"isnumeric", 1, 1, isNumber},
    {"log", 1, 2, logarithm},
    {"log10", 1, 1, realFunction<log10Function>},
    {"pi", 0, 0, pi},
    {"power", 2, 2, power},
    {"radians", 1, 1, radians},
    {"rand", 0, 1, random},
    {"round", 2, 3, round},
    {"sign", 1, 1, sign},
    {"sin", 1, 1, realFunction<sinFunction>},
    {"sqrt", 1, 1, realFunction<sqrtFunction>},
    {"square", 1, 1, realFunction<squareFunction>},
    {"tan", 1, 1, realFunction<tanFunction>},
};

} // namespace

std::span<const FunctionEntry> numberFunctionEntries()
{
    return numberFunctions;
}

} // namespace practice
