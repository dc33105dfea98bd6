// The types of arithmetic and of comparisons.
#include "engine/binder/translator.h"

#include "engine/messages/errors.h"
#include "types/decimal.h"

#include <algorithm>

namespace practice {

namespace {

using Operator = ast::BinaryOperator;

const char* wording(Operator op)
{
    switch (op) {
    case Operator::Add:
        return "add";
    case Operator::Subtract:
        return "subtract";
    case Operator::Multiply:
        return "multiply";
    case Operator::Divide:
        return "divide";
    case Operator::Modulo:
        return "modulo";
    case Operator::BitAnd:
        return "'&'";
    case Operator::BitOr:
        return "'|'";
    case Operator::BitXor:
        return "'^'";
    }
    return "";
}

const char* symbol(Operator op)
{
    constexpr const char* symbols[] = {"+", "-", "*", "/", "%", "&", "|", "^"};
    return symbols[static_cast<std::size_t>(op)];
}

[[noreturn]] void incompatible(Operator op, const Term& left, const Term& right)
{
    raise(402, {typeName(left.type.id), typeName(right.type.id), wording(op)});
}

[[noreturn]] void invalidOperand(Operator op, TypeId id)
{
    raise(8117, {typeName(id), wording(op)});
}

bool isPlainText(TypeId id)
{
    return isCharacter(id) && !isLegacyLob(id);
}
bool isPlainBytes(TypeId id)
{
    return isBinary(id) && id != TypeId::Image;
}

bool eitherNullable(const Term& left, const Term& right)
{
    return left.nullable || right.nullable;
}

Term concatenated(const Term& left, const Term& right, bool emptyNulls)
{
    SqlType type = commonType(left, right);
    const bool text = isCharacter(type.id);
    const auto lengthOf = [&type](const Term& term) {
        return term.type.id == TypeId::Null ? 1
               : term.type.id == type.id || isCharacter(term.type.id) == isCharacter(type.id)
                   ? term.type.length
                   : type.length;
    };
    const int limit = isUnicode(type.id) ? 4000 : 8000;
    const bool unlimited = left.type.length == maxLength || right.type.length == maxLength;
    if (text)
        type.id = isUnicode(type.id) ? TypeId::NVarChar : TypeId::VarChar;
    else
        type.id = TypeId::VarBinary;
    type.length = unlimited ? maxLength : limit;
    const auto prepared = [&type](const Term& term) {
        return isCharacter(term.type.id) && !isLegacyLob(term.type.id)
                   ? term
                   : convertTerm(term, type, Conversion::Implicit);
    };
    const Term a = prepared(left);
    const Term b = prepared(right);
    if (!unlimited)
        type.length = std::min(lengthOf(left) + lengthOf(right), limit);
    // Two literals stay a literal, so that long texts can be broken over lines.
    if (text && a.constant && b.constant && !a.constant->isNull() && !b.constant->isNull()) {
        const auto* first = std::get_if<std::string>(&a.constant->data);
        const auto* second = std::get_if<std::string>(&b.constant->data);
        if (first != nullptr && second != nullptr)
            return constantTerm(Value{*first + *second, {}}, type);
    }
    const bool filled = text && emptyNulls;
    const auto joined = [filled](const Term& term) {
        return filled && term.nullable ? "ifnull(" + term.sql + ",'')" : term.sql;
    };
    Term result =
        resultTerm("(" + joined(a) + "||" + joined(b) + ")", type, !filled && eitherNullable(left, right));
    if (text) {
        const Term merged = mergedCollation(a, b, "add");
        result.collation = merged.collation;
        result.coercibility = merged.coercibility;
    } else {
        // SQLite's || makes text even of two blobs.
        result.sql = "CAST(" + result.sql + " AS BLOB)";
    }
    return result;
}

SqlType numberOf(const Term& term, const Term& other)
{
    if (isCharacter(term.type.id) || isBinary(term.type.id) || term.type.id == TypeId::Null)
        return isNumeric(other.type.id) ? other.type : intType();
    return term.type;
}

Term integerArithmetic(Operator op, const Term& left, const Term& right, const SqlType& type)
{
    const std::string id = std::to_string(static_cast<int>(type.id));
    const bool nullable = eitherNullable(left, right);
    if (op == Operator::Divide)
        return resultTerm(callText("t_divi", {left.sql, right.sql, id}), type, nullable);
    if (op == Operator::Modulo)
        return resultTerm(callText("t_modi", {left.sql, right.sql, id}), type, nullable);
    return resultTerm(callText("t_rng", {left.sql + symbol(op) + right.sql, id}), type, nullable);
}

Term moneyArithmetic(Operator op, const Term& left, const Term& right, const SqlType& type)
{
    const Term a = convertTerm(left, type, Conversion::Implicit);
    const Term b = convertTerm(right, type, Conversion::Implicit);
    const std::string id = std::to_string(static_cast<int>(type.id));
    const bool nullable = eitherNullable(left, right);
    switch (op) {
    case Operator::Multiply:
        return resultTerm(callText("t_mulm", {a.sql, b.sql, id}), type, nullable);
    case Operator::Divide:
        return resultTerm(callText("t_divm", {a.sql, b.sql, id}), type, nullable);
    default:
        return integerArithmetic(op, a, b, type);
    }
}

SqlType decimalResult(Operator op, const SqlType& left, const SqlType& right)
{
    switch (op) {
    case Operator::Multiply:
        return multiplicationType(left, right);
    case Operator::Divide:
        return divisionType(left, right);
    case Operator::Modulo:
        return moduloType(left, right);
    default:
        return additionType(left, right);
    }
}

Term decimalArithmetic(Operator op, const Term& left, const Term& right)
{
    const auto operandType = [](const Term& term, const Term& other) {
        return isExactNumeric(term.type.id) ? decimalTypeOf(term) : decimalTypeOf(other);
    };
    const SqlType leftType = operandType(left, right);
    const SqlType rightType = operandType(right, left);
    const SqlType type = decimalResult(op, leftType, rightType);
    const Term a = convertTerm(left, leftType, Conversion::Implicit);
    const Term b = convertTerm(right, rightType, Conversion::Implicit);
    return resultTerm(callText("t_dec", {quotedText(symbol(op)), a.sql, b.sql, typeArgument(leftType),
                                         typeArgument(rightType), typeArgument(type)}),
                      type, eitherNullable(left, right));
}

Term floatArithmetic(Operator op, const Term& left, const Term& right, const SqlType& type)
{
    if (op == Operator::Modulo)
        incompatible(op, left, right);
    const Term a = convertTerm(left, type, Conversion::Implicit);
    const Term b = convertTerm(right, type, Conversion::Implicit);
    const bool nullable = eitherNullable(left, right);
    if (op == Operator::Divide)
        return resultTerm(callText("t_divf", {a.sql, b.sql}), type, nullable);
    const std::string text = a.sql + symbol(op) + b.sql;
    return resultTerm(op == Operator::Multiply ? callText("t_fin", {text}) : "(" + text + ")", type,
                      nullable);
}

Term dateArithmetic(Operator op, const Term& left, const Term& right)
{
    if (op != Operator::Add && op != Operator::Subtract)
        isDateTime(left.type.id) ? invalidOperand(op, left.type.id) : invalidOperand(op, right.type.id);
    const TypeId id = isDateTime(left.type.id) ? left.type.id : right.type.id;
    if (id != TypeId::DateTime && id != TypeId::SmallDateTime) {
        if (isNumeric(left.type.id) || isNumeric(right.type.id))
            raise(206, {typeName(left.type.id), typeName(right.type.id)});
        isDateTime(left.type.id) && isDateTime(right.type.id) ? incompatible(op, left, right)
                                                              : invalidOperand(op, id);
    }
    const SqlType type = defaultType(id, true);
    const auto asDays = [&type](const Term& term) {
        if (isNumeric(term.type.id))
            return convertTerm(term, floatType(), Conversion::Implicit).sql;
        const Term date = convertTerm(term, type, Conversion::Implicit);
        return callText("t_days", {date.sql, typeArgument(type)});
    };
    const Term base = convertTerm(left, type, Conversion::Implicit);
    return resultTerm(
        callText("t_dtadd", {base.sql, asDays(right), op == Operator::Add ? "1" : "-1", typeArgument(type)}),
        type, eitherNullable(left, right));
}

Term bitArithmetic(Operator op, const Term& left, const Term& right)
{
    const auto usable = [](const Term& term) {
        return isInteger(term.type.id) || isPlainBytes(term.type.id) || term.type.id == TypeId::Null;
    };
    if (!usable(left) || !usable(right) || (isBinary(left.type.id) && isBinary(right.type.id)))
        incompatible(op, left, right);
    const SqlType type = commonType(left, right);
    const SqlType whole = isInteger(type.id) ? type : intType();
    const Term a = convertTerm(left, whole, Conversion::Implicit);
    const Term b = convertTerm(right, whole, Conversion::Implicit);
    const bool nullable = eitherNullable(left, right);
    if (op == Operator::BitXor)
        return resultTerm("((" + a.sql + "|" + b.sql + ")-(" + a.sql + "&" + b.sql + "))", whole, nullable);
    return resultTerm("(" + a.sql + symbol(op) + b.sql + ")", whole, nullable);
}

void requireOperands(Operator op, const Term& left, const Term& right)
{
    for (const Term* term : {&left, &right}) {
        const TypeId id = term->type.id;
        if (isLegacyLob(id) || id == TypeId::Xml)
            incompatible(op, left, right);
        if (id == TypeId::UniqueIdentifier || id == TypeId::SqlVariant || id == TypeId::Timestamp)
            incompatible(op, left, right);
    }
}

} // namespace

Term arithmetic(Operator op, const Term& left, const Term& right, bool emptyNulls)
{
    if (op >= Operator::BitAnd)
        return bitArithmetic(op, left, right);
    const auto concatenates = [](const Term& a, const Term& b) {
        const bool text = isPlainText(a.type.id) && (isPlainText(b.type.id) || b.type.id == TypeId::Null);
        const bool bytes = isPlainBytes(a.type.id) && (isPlainBytes(b.type.id) || b.type.id == TypeId::Null);
        return text || bytes;
    };
    if (op == Operator::Add && (concatenates(left, right) || concatenates(right, left)))
        return concatenated(left, right, emptyNulls);
    requireOperands(op, left, right);
    if (isDateTime(left.type.id) || isDateTime(right.type.id))
        return dateArithmetic(op, left, right);
    if (isPlainText(left.type.id) && isPlainText(right.type.id))
        invalidOperand(op, left.type.id);
    if (left.type.id == TypeId::Bit && right.type.id == TypeId::Bit)
        invalidOperand(op, TypeId::Bit);
    const SqlType leftType = numberOf(left, right);
    const SqlType rightType = numberOf(right, left);
    const SqlType type = commonType(Term{"", leftType}, Term{"", rightType});
    if (type.id == TypeId::Float || type.id == TypeId::Real)
        return floatArithmetic(op, left, right, type);
    if (isDecimal(type.id))
        return decimalArithmetic(op, left, right);
    if (isMoney(type.id))
        return moneyArithmetic(op, left, right, type);
    const SqlType whole = type.id == TypeId::Bit ? intType() : type;
    return integerArithmetic(op, convertTerm(left, whole, Conversion::Implicit),
                             convertTerm(right, whole, Conversion::Implicit), whole);
}

} // namespace practice
