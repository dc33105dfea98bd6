#include "engine/binder/ddl_types.h"

#include "engine/binder/translator.h"
#include "engine/catalog/catalog_types.h"
#include "engine/messages/errors.h"

namespace practice {
namespace {

constexpr int maximumBytes = 8000;
constexpr int maximumUnicode = 4000;
constexpr int maximumPrecision = 38;
constexpr int maximumFloat = 53;

struct Place
{
    std::string ordinal;
    const char* what;
    const std::string& name;
};

void checkLength(const ast::DataType& type, const Place& place)
{
    const int length = type.facets.front();
    if (length > maximumBytes)
        raise(131, {std::to_string(length), place.what, place.name, std::to_string(maximumBytes)});
    if (isUnicode(type.id) && length > maximumUnicode)
        raise(2717, {std::to_string(length), place.what, place.name, std::to_string(maximumUnicode)});
}

void checkPrecision(const ast::DataType& type, const Place& place)
{
    const int most = type.id == TypeId::Float ? maximumFloat : maximumPrecision;
    const int precision = type.facets.front();
    if (precision > most)
        raise(2750, {place.ordinal, std::to_string(precision), std::to_string(most)});
    if (type.facets.size() > 1 && type.facets[1] > precision && place.what == std::string_view("column"))
        raise(183, {std::to_string(type.facets[1]), place.name, "0", std::to_string(precision)});
}

void checkFacets(const ast::DataType& type, const Place& place)
{
    if (type.facets.empty())
        return;
    switch (type.id) {
    case TypeId::Char:
    case TypeId::VarChar:
    case TypeId::NChar:
    case TypeId::NVarChar:
    case TypeId::Binary:
    case TypeId::VarBinary:
        return checkLength(type, place);
    case TypeId::Decimal:
    case TypeId::Numeric:
    case TypeId::Float:
        return checkPrecision(type, place);
    case TypeId::Time:
    case TypeId::DateTime2:
    case TypeId::DateTimeOffset:
        return;
    default:
        raise(2716, {place.ordinal, typeName(type.id)});
    }
}

} // namespace

SqlType resolveDeclaredType(const ast::DataType& type, int ordinal, const char* what, const std::string& name)
{
    if (!aliasTypeName(type).empty())
        return sysNameType();
    const Place place{std::to_string(ordinal), what, name};
    if (type.id == TypeId::Null)
        raise(2715, {place.ordinal, type.name.object});
    checkFacets(type, place);
    return resolveType(type, true);
}

std::string aliasTypeName(const ast::DataType& type)
{
    return type.id == TypeId::Null && sameName(type.name.object, "sysname") ? "sysname" : "";
}

} // namespace practice
