#include "types/conversion.h"

#include "types/text_encoding.h"

namespace practice {

namespace {

ConversionRule allowIf(bool allowed, ConversionRule rule = ConversionRule::Implicit)
{
    return allowed ? rule : ConversionRule::Forbidden;
}

ConversionRule ruleFromLob(TypeId from, TypeId to)
{
    if (from == TypeId::Image)
        return allowIf(isBinary(to));
    return allowIf(isCharacter(to) || to == TypeId::Xml);
}

ConversionRule ruleToLob(TypeId from, TypeId to)
{
    if (to == TypeId::Image)
        return allowIf(isBinary(from) || from == TypeId::Char || from == TypeId::VarChar);
    return allowIf(isCharacter(from));
}

ConversionRule ruleToNumber(TypeId from, TypeId to)
{
    if (isOldDate(from))
        return ConversionRule::Explicit;
    if (isBinary(from))
        return allowIf(to != TypeId::Real && to != TypeId::Float);
    return allowIf(isNumeric(from) || isCharacter(from));
}

ConversionRule ruleToDate(TypeId from, TypeId to)
{
    if (isDateTime(from))
        return allowIf(!(from == TypeId::Date && to == TypeId::Time) &&
                       !(from == TypeId::Time && to == TypeId::Date));
    if (isCharacter(from))
        return ConversionRule::Implicit;
    return allowIf(isOldDate(to) && (isNumeric(from) || isBinary(from)));
}

ConversionRule ruleToBinary(TypeId from, TypeId to)
{
    if (isBinary(from))
        return ConversionRule::Implicit;
    if (isCharacter(from))
        return allowIf(!(to == TypeId::Timestamp && isUnicode(from)), ConversionRule::Explicit);
    if (from == TypeId::Real || from == TypeId::Float)
        return allowIf(to != TypeId::Timestamp, ConversionRule::Explicit);
    if (isExactNumeric(from))
        return ConversionRule::Implicit;
    if (isOldDate(from) || from == TypeId::Xml)
        return ConversionRule::Explicit;
    return allowIf(from == TypeId::UniqueIdentifier && to != TypeId::Timestamp);
}

} // namespace

ConversionRule conversionRule(TypeId from, TypeId to)
{
    if (from == to || from == TypeId::Null)
        return ConversionRule::Implicit;
    if (isLegacyLob(from))
        return ruleFromLob(from, to);
    if (isLegacyLob(to))
        return ruleToLob(from, to);
    if (to == TypeId::SqlVariant)
        return allowIf(from != TypeId::Timestamp && from != TypeId::Xml);
    if (from == TypeId::SqlVariant)
        return allowIf(to != TypeId::Timestamp && to != TypeId::Xml, ConversionRule::Explicit);
    if (from == TypeId::Xml)
        return allowIf(isCharacter(to) || isBinary(to), ConversionRule::Explicit);
    if (to == TypeId::Xml)
        return allowIf(isCharacter(from) || isBinary(from));
    if (isNumeric(to))
        return ruleToNumber(from, to);
    if (isDateTime(to))
        return ruleToDate(from, to);
    if (isBinary(to))
        return ruleToBinary(from, to);
    if (to == TypeId::UniqueIdentifier)
        return allowIf(isCharacter(from) || (isBinary(from) && from != TypeId::Timestamp));
    return ConversionRule::Implicit; // all else goes to text
}

void failConversion(int number, std::initializer_list<std::string_view> parts)
{
    ConversionError error{number, {}};
    for (const auto part : parts)
        error.text += part;
    throw error;
}

void failOverflow(std::string_view what, TypeId to)
{
    failConversion(8115,
                   {"Arithmetic overflow error converting ", what, " to data type ", numericName(to), "."});
}

std::string numericName(TypeId id)
{
    return isDecimal(id) ? "numeric" : typeName(id);
}

Value toVariant(const Value& value, const SqlType& type)
{
    Value variant = value;
    if (type.id != TypeId::SqlVariant && !value.isNull())
        variant.variantType = type;
    return variant;
}

Value convert(const Value& value, const SqlType& from, const SqlType& to, int style,
              const DateSettings& dates)
{
    if (conversionRule(from.id, to.id) == ConversionRule::Forbidden)
        failConversion(529, {"Explicit conversion from data type ", typeName(from.id), " to ",
                             typeName(to.id), " is not allowed."});
    if (value.isNull())
        return {};
    if (to.id == TypeId::SqlVariant)
        return toVariant(value, from);
    if (from.id == TypeId::SqlVariant) {
        Value inner = value;
        inner.variantType = {};
        return convert(inner, value.variantType, to, style, dates);
    }
    if (isInteger(to.id))
        return convertToInteger(value, from, to);
    if (isMoney(to.id))
        return convertToMoney(value, from, to);
    if (isDecimal(to.id))
        return convertToDecimal(value, from, to);
    if (to.id == TypeId::Real || to.id == TypeId::Float)
        return convertToFloat(value, from, to);
    if (isDateTime(to.id))
        return convertToDate(value, from, to, style, dates);
    if (isBinary(to.id))
        return convertToBinary(value, from, to, style);
    if (to.id == TypeId::UniqueIdentifier)
        return convertToGuid(value, from);
    if (to.id == TypeId::Null)
        return value;
    return convertToText(value, from, to, style, *dates.language);
}

std::string toText(const Value& value, const SqlType& type)
{
    if (value.isNull())
        return {};
    const SqlType wide{isUnicode(type.id) || type.id == TypeId::SqlVariant || type.id == TypeId::Xml
                           ? TypeId::NVarChar
                           : TypeId::VarChar,
                       maxLength, 0, 0};
    if (type.id == TypeId::Image)
        return std::get<std::string>(
            convertToText(value, {TypeId::VarBinary, maxLength, 0, 0}, wide, 0).data);
    return std::get<std::string>(convert(value, type, wide).data);
}

Value convertForColumn(const Value& value, const SqlType& from, const SqlType& to)
{
    switch (conversionRule(from.id, to.id)) {
    case ConversionRule::Forbidden:
        failConversion(
            206, {"Operand type clash: ", typeName(from.id), " is incompatible with ", typeName(to.id)});
    case ConversionRule::Explicit:
        failConversion(257,
                       {"Implicit conversion from data type ", typeName(from.id), " to ", typeName(to.id),
                        " is not allowed. Use the CONVERT function to run this query."});
    default:
        break;
    }
    if (value.isNull() || to.length <= 0 || from.id == TypeId::SqlVariant)
        return convert(value, from, to);
    const auto room = static_cast<std::size_t>(to.length);
    constexpr auto* truncation = "String or binary data would be truncated.";
    if (isCharacter(from.id) && isCharacter(to.id) && !isLegacyLob(to.id)) {
        std::string_view text = std::get<std::string>(value.data);
        if (utf16Length(text) > room) {
            const auto last = text.find_last_not_of(' ');
            if (utf16Length(text.substr(0, last == std::string_view::npos ? 0 : last + 1)) > room)
                failConversion(8152, {truncation});
        }
    }
    if (isBinary(from.id) && isBinary(to.id) && !isLegacyLob(to.id)) {
        const Bytes& bytes = std::get<Bytes>(value.data);
        for (std::size_t i = room; i < bytes.size(); ++i) {
            if (bytes[i] != 0)
                failConversion(8152, {truncation});
        }
    }
    return convert(value, from, to);
}

} // namespace practice
