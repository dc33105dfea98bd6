// The type that several values take together.
#include "engine/binder/translator.h"
#include "engine/messages/errors.h"

namespace practice {

namespace {

constexpr int maxBytes = 8000;
constexpr int maxUnicode = 4000;
constexpr int maxPrecision = 38;
constexpr int maxFraction = 7;

SqlType sized(SqlType type, const ast::DataType& written)
{
    const int longest = isUnicode(type.id) ? maxUnicode : maxBytes;
    if (written.max) {
        type.length = maxLength;
        return type;
    }
    if (written.facets.empty())
        return type;
    const int length = written.facets.front();
    if (length > longest)
        raise(131, {std::to_string(length), "type", typeName(type.id), std::to_string(longest)});
    if (length < 1)
        raise(1001, {std::to_string(written.source.line), std::to_string(length)});
    type.length = length;
    return type;
}

SqlType exact(SqlType type, const ast::DataType& written)
{
    if (!written.facets.empty()) {
        const int precision = written.facets.front();
        const int scale = written.facets.size() > 1 ? written.facets[1] : 0;
        if (precision < 1 || precision > maxPrecision)
            raise(1001, {std::to_string(written.source.line), std::to_string(precision)});
        if (scale > precision || scale < 0)
            raise(192);
        type.precision = static_cast<std::uint8_t>(precision);
        type.scale = static_cast<std::uint8_t>(scale);
    }
    type.length = decimalStorage(type.precision);
    return type;
}

SqlType fractional(SqlType type, const ast::DataType& written)
{
    if (written.facets.empty())
        return type;
    const int scale = written.facets.front();
    if (scale < 0 || scale > maxFraction)
        raise(1002, {std::to_string(written.source.line), std::to_string(scale)});
    type.scale = static_cast<std::uint8_t>(scale);
    type.length = timeStorage(type.id, scale);
    return type;
}

SqlType floating(const SqlType& type, const ast::DataType& written)
{
    if (written.facets.empty())
        return type;
    const int bits = written.facets.front();
    if (bits < 1 || bits > 53)
        raise(1001, {std::to_string(written.source.line), std::to_string(bits)});
    constexpr int bitsOfReal = 24;
    return defaultType(bits <= bitsOfReal ? TypeId::Real : TypeId::Float, true);
}

} // namespace

SqlType resolveType(const ast::DataType& written, bool declaration)
{
    const SqlType type = defaultType(written.id, declaration);
    switch (written.id) {
    case TypeId::Null:
        if (!sameName(written.name.object, "sysname"))
            raise(243, {writtenName(written.name)});
        return sysNameType(); // the one alias that every database knows
    case TypeId::Char:
    case TypeId::VarChar:
    case TypeId::NChar:
    case TypeId::NVarChar:
    case TypeId::Binary:
    case TypeId::VarBinary:
        return sized(type, written);
    case TypeId::Decimal:
    case TypeId::Numeric:
        return exact(type, written);
    case TypeId::Float:
        return floating(type, written);
    case TypeId::Time:
    case TypeId::DateTime2:
    case TypeId::DateTimeOffset:
        return fractional(type, written);
    default:
        if (!written.facets.empty())
            raise(291, {typeName(written.id)});
        return type;
    }
}

} // namespace practice
