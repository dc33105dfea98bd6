#include "types/sql_type.h"

#include <array>
#include <unordered_map>

namespace practice {

namespace {

struct TypeTraits
{
    const char* name;
    int storage; ///< bytes of a fixed type; 0 where the length is a facet
};

constexpr std::array<TypeTraits, 31> traits{{
    {"null", 4},          {"bit", 1},
    {"tinyint", 1},       {"smallint", 2},
    {"int", 4},           {"bigint", 8},
    {"real", 4},          {"float", 8},
    {"smallmoney", 4},    {"money", 8},
    {"decimal", 0},       {"numeric", 0},
    {"smalldatetime", 4}, {"datetime", 8},
    {"date", 3},          {"time", 0},
    {"datetime2", 0},     {"datetimeoffset", 0},
    {"char", 0},          {"varchar", 0},
    {"text", 16},         {"nchar", 0},
    {"nvarchar", 0},      {"ntext", 16},
    {"binary", 0},        {"varbinary", 0},
    {"image", 16},        {"uniqueidentifier", 16},
    {"timestamp", 8},     {"sql_variant", 8016},
    {"xml", maxLength},
}};
static_assert(traits.size() == static_cast<std::size_t>(TypeId::Xml) + 1,
              "one for each type, in their order");

constexpr bool between(TypeId id, TypeId first, TypeId last)
{
    return id >= first && id <= last;
}

} // namespace

bool isInteger(TypeId id)
{
    return between(id, TypeId::Bit, TypeId::BigInt);
}

bool isExactNumeric(TypeId id)
{
    return isInteger(id) || isMoney(id) || isDecimal(id);
}

bool isNumeric(TypeId id)
{
    return between(id, TypeId::Bit, TypeId::Numeric);
}

bool isMoney(TypeId id)
{
    return id == TypeId::SmallMoney || id == TypeId::Money;
}

bool isDecimal(TypeId id)
{
    return id == TypeId::Decimal || id == TypeId::Numeric;
}

bool isDateTime(TypeId id)
{
    return between(id, TypeId::SmallDateTime, TypeId::DateTimeOffset);
}

bool isOldDate(TypeId id)
{
    return id == TypeId::DateTime || id == TypeId::SmallDateTime;
}

bool isCharacter(TypeId id)
{
    return between(id, TypeId::Char, TypeId::NText);
}

bool isUnicode(TypeId id)
{
    return between(id, TypeId::NChar, TypeId::NText);
}

bool isBinary(TypeId id)
{
    return between(id, TypeId::Binary, TypeId::Image) || id == TypeId::Timestamp;
}

bool isLegacyLob(TypeId id)
{
    return id == TypeId::Text || id == TypeId::NText || id == TypeId::Image;
}

const char* typeName(TypeId id)
{
    return traits.at(static_cast<std::size_t>(id)).name;
}

std::string describe(const SqlType& type)
{
    std::string text = typeName(type.id);
    switch (type.id) {
    case TypeId::Decimal:
    case TypeId::Numeric:
        return text + '(' + std::to_string(type.precision) + ',' + std::to_string(type.scale) + ')';
    case TypeId::Time:
    case TypeId::DateTime2:
    case TypeId::DateTimeOffset:
        return text + '(' + std::to_string(type.scale) + ')';
    case TypeId::Char:
    case TypeId::VarChar:
    case TypeId::NChar:
    case TypeId::NVarChar:
    case TypeId::Binary:
    case TypeId::VarBinary:
        return text + '(' + (type.length == maxLength ? "max" : std::to_string(type.length)) + ')';
    default:
        return text;
    }
}

int decimalStorage(int precision)
{
    if (precision <= 9)
        return 5;
    if (precision <= 19)
        return 9;
    return precision <= 28 ? 13 : 17;
}

int timeStorage(TypeId id, int scale)
{
    const int time = scale <= 2 ? 3 : scale <= 4 ? 4 : 5;
    if (id == TypeId::Time)
        return time;
    return time + (id == TypeId::DateTime2 ? 3 : 5);
}

SqlType defaultType(TypeId id, bool declaration)
{
    switch (id) {
    case TypeId::Decimal:
    case TypeId::Numeric:
        return {id, decimalStorage(18), 18, 0};
    case TypeId::Time:
    case TypeId::DateTime2:
    case TypeId::DateTimeOffset:
        return {id, timeStorage(id, 7), 0, 7};
    case TypeId::Char:
    case TypeId::VarChar:
    case TypeId::NChar:
    case TypeId::NVarChar:
    case TypeId::Binary:
    case TypeId::VarBinary:
        return {id, declaration ? 1 : 30, 0, 0};
    default:
        return {id, traits.at(static_cast<std::size_t>(id)).storage, 0, 0};
    }
}

TypeId typeByName(const std::string& lowerCaseName)
{
    static const auto names = [] {
        std::unordered_map<std::string, TypeId> map{
            {"integer", TypeId::Int},
            {"double precision", TypeId::Float},
            {"dec", TypeId::Decimal},
            {"character", TypeId::Char},
            {"character varying", TypeId::VarChar},
            {"char varying", TypeId::VarChar},
            {"national char", TypeId::NChar},
            {"national character", TypeId::NChar},
            {"national char varying", TypeId::NVarChar},
            {"national character varying", TypeId::NVarChar},
            {"national text", TypeId::NText},
            {"binary varying", TypeId::VarBinary},
            {"rowversion", TypeId::Timestamp},
        };
        for (std::size_t i = 1; i < traits.size(); ++i)
            map.emplace(traits[i].name, static_cast<TypeId>(i));
        return map;
    }();
    const auto found = names.find(lowerCaseName);
    return found == names.end() ? TypeId::Null : found->second;
}

} // namespace practice
