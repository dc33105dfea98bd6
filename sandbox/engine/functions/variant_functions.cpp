// SQL_VARIANT_PROPERTY: what a sql_variant knows of the value it holds.
#include "engine/functions/sql_functions.h"

#include "types/text_encoding.h"

namespace practice {

namespace {

/// Bytes that a value of the type takes at most, as its column would.
int mostBytes(const SqlType& type)
{
    if (isCharacter(type.id))
        return type.length * (isUnicode(type.id) ? 2 : 1);
    return isDecimal(type.id) ? decimalStorage(type.precision) : type.length;
}

int heldBytes(const Value& value, const SqlType& type)
{
    if (const auto* bytes = std::get_if<Bytes>(&value.data))
        return static_cast<int>(bytes->size());
    if (const auto* text = std::get_if<std::string>(&value.data))
        return static_cast<int>(utf16Length(*text)) * (isUnicode(type.id) ? 2 : 1);
    return mostBytes(type);
}

/// What is stored beside the value: its type and version, and the facets that this type has.
int facetBytes(const SqlType& type)
{
    constexpr int lengthAndCollation = 6;
    if (isCharacter(type.id))
        return 2 + lengthAndCollation;
    if (isBinary(type.id) || isDecimal(type.id))
        return 2 + 2;
    const bool scaled =
        type.id == TypeId::Time || type.id == TypeId::DateTime2 || type.id == TypeId::DateTimeOffset;
    return scaled ? 2 + 1 : 2;
}

/// Characters that the value takes as text: the fraction comes with its point.
int lengthOfTime(const SqlType& type)
{
    const int whole = type.id == TypeId::Time ? 8 : type.id == TypeId::DateTime2 ? 19 : 26;
    return whole + (type.scale > 0 ? type.scale + 1 : 0);
}

int digitsOf(const SqlType& type)
{
    switch (type.id) {
    case TypeId::Bit:
        return 1;
    case TypeId::TinyInt:
        return 3;
    case TypeId::SmallInt:
        return 5;
    case TypeId::Int:
    case TypeId::SmallMoney:
    case TypeId::Date:
        return 10;
    case TypeId::BigInt:
    case TypeId::Money:
        return 19;
    case TypeId::Real:
        return 24;
    case TypeId::Float:
        return 53;
    case TypeId::SmallDateTime:
        return 16;
    case TypeId::DateTime:
        return 23;
    case TypeId::Time:
    case TypeId::DateTime2:
    case TypeId::DateTimeOffset:
        return lengthOfTime(type);
    default:
        return type.precision;
    }
}

int scaleOf(const SqlType& type)
{
    if (isMoney(type.id))
        return 4;
    return type.id == TypeId::DateTime ? 3 : type.scale;
}

// variantproperty(variant, property, collation)
void variantProperty(const Call& call)
{
    const SqlType variant{TypeId::SqlVariant, 8016};
    const Value value = call.value(0, variant);
    const SqlType& type = value.variantType;
    const auto text = [&call, &variant](std::string_view answer) {
        call.result(Value{std::string(answer), {TypeId::NVarChar, 128}}, variant);
    };
    const auto number = [&call, &variant](int answer) {
        call.result(Value{std::int64_t{answer}, SqlType{TypeId::Int, 4}}, variant);
    };
    const std::string property = lowerCase(call.text(1));
    if (property == "basetype")
        return text(typeName(type.id));
    if (property == "precision")
        return number(digitsOf(type));
    if (property == "scale")
        return number(scaleOf(type));
    if (property == "totalbytes")
        return number(heldBytes(value, type) + facetBytes(type));
    if (property == "maxlength")
        return number(mostBytes(type));
    if (property == "collation" && isCharacter(type.id))
        return text(call.text(2));
}

} // namespace

void registerVariantFunctions(sqlite3* connection)
{
    defineFunction(connection, "t_variantproperty", 3, variantProperty);
}

} // namespace practice
