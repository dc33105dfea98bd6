#include "engine/binder/function_binder.h"

#include "engine/messages/errors.h"
#include "types/text_encoding.h"

#include <algorithm>
#include <array>
#include <unordered_map>

namespace practice {

namespace {

using FunctionMap = std::unordered_map<std::string_view, const FunctionEntry*>;

const FunctionMap& functions()
{
    static const FunctionMap map = [] {
        FunctionMap made;
        for (const auto entries : {textFunctionEntries(), numberFunctionEntries(), dateFunctionEntries(),
                                   systemFunctionEntries()}) {
            for (const FunctionEntry& entry : entries)
                made.emplace(entry.name, &entry);
        }
        return made;
    }();
    return map;
}

void requireCount(const FunctionEntry& entry, std::size_t count)
{
    const int given = static_cast<int>(count);
    if (given >= entry.least && (entry.most < 0 || given <= entry.most))
        return;
    if (entry.least == entry.most)
        raise(174, {std::string(entry.name), std::to_string(entry.least)});
    raise(189, {std::string(entry.name), std::to_string(entry.least),
                entry.most < 0 ? "254" : std::to_string(entry.most)});
}

std::string frameBound(const FunctionCall& call, const ast::FrameBound& bound)
{
    const auto counted = [&call, &bound](const char* word) {
        return call.translator().expression(*bound.count, call.scope()).sql + word;
    };
    switch (bound.kind) {
    case ast::FrameBoundKind::UnboundedPreceding:
        return "UNBOUNDED PRECEDING";
    case ast::FrameBoundKind::Preceding:
        return counted(" PRECEDING");
    case ast::FrameBoundKind::CurrentRow:
        return "CURRENT ROW";
    case ast::FrameBoundKind::Following:
        return counted(" FOLLOWING");
    case ast::FrameBoundKind::UnboundedFollowing:
        return "UNBOUNDED FOLLOWING";
    }
    return {};
}

/// An aggregate is refused where its clause forbids it.
void requireAggregateAllowed(const Scope& scope)
{
    switch (scope.clause) {
    case Clause::Where:
        raise(147);
    case Clause::On:
        raise(1015);
    case Clause::GroupBy:
        raise(144);
    case Clause::Set:
        raise(157);
    default:
        break;
    }
}

struct AggregateShape
{
    std::string_view name;
    std::string_view sqlite; ///< "" when it takes more than a name
};

constexpr std::array aggregateNames = {
    AggregateShape{"avg", ""},          AggregateShape{"checksum_agg", "t_checksumagg"},
    AggregateShape{"count", "count"},   AggregateShape{"count_big", "count"},
    AggregateShape{"max", "max"},       AggregateShape{"min", "min"},
    AggregateShape{"stdev", "t_stdev"}, AggregateShape{"stdevp", "t_stdevp"},
    AggregateShape{"string_agg", ""},   AggregateShape{"sum", ""},
    AggregateShape{"var", "t_var"},     AggregateShape{"varp", "t_varp"},
};

const AggregateShape* aggregateShape(std::string_view name)
{
    const auto* const found =
        std::find_if(aggregateNames.begin(), aggregateNames.end(),
                     [name](const AggregateShape& shape) { return shape.name == name; });
    return found == aggregateNames.end() ? nullptr : found;
}

struct AggregateText
{
    std::string_view distinct; ///< "" or "DISTINCT "
    std::string over;          ///< " OVER (...)" or ""

    [[nodiscard]] std::string call(std::string_view function, const std::string& argument) const
    {
        return std::string(function) + "(" + std::string(distinct) + argument + ")" + over;
    }
};

SqlType sumType(const SqlType& type, std::string_view name)
{
    switch (type.id) {
    case TypeId::TinyInt:
    case TypeId::SmallInt:
    case TypeId::Int:
        return intType();
    case TypeId::BigInt:
        return bigIntType();
    case TypeId::SmallMoney:
    case TypeId::Money:
        return {TypeId::Money, 8};
    case TypeId::Real:
    case TypeId::Float:
        return floatType();
    case TypeId::Decimal:
    case TypeId::Numeric: {
        const bool average = name == "avg";
        const int scale = average ? std::max<int>(type.scale, 6) : type.scale;
        return widestDecimal(TypeId::Decimal, scale);
    }
    default:
        raise(8117, {typeName(type.id), std::string(name)});
    }
}

/// SUM and AVG by the family of their argument's type.
Term bindSum(const Term& argument, std::string_view name, const AggregateText& text)
{
    if (argument.type.id == TypeId::Null)
        raise(8117, {"NULL", std::string(name)});
    const SqlType type = sumType(argument.type, name);
    const bool average = name == "avg";
    if (isDecimal(type.id)) {
        const SqlType widest = widestDecimal(TypeId::Decimal, argument.type.scale);
        const std::string value = convertTerm(argument, widest, Conversion::Implicit).sql;
        const std::string sum = text.call("t_sumdec", value);
        if (!average)
            return resultTerm(sum, type);
        const SqlType count{TypeId::Decimal, 9, 18, 0};
        return resultTerm(callText("t_dec", {"'/'", sum, text.call("count", value), typeArgument(widest),
                                             typeArgument(count), typeArgument(type)}),
                          type);
    }
    if (type.id == TypeId::Float)
        return resultTerm(text.call(average ? "avg" : "sum", argument.sql), type);
    const std::string sum = text.call("sum", argument.sql);
    if (average)
        return resultTerm("(" + sum + "/" + text.call("count", argument.sql) + ")", type);
    return resultTerm(callText("t_rng", {sum, std::to_string(static_cast<int>(type.id))}), type);
}

Term bindStringAggregate(const FunctionCall& call, const Term& argument, const AggregateText& text)
{
    const Term value = isCharacter(argument.type.id)
                           ? argument
                           : convertTerm(argument, nVarCharType(4000), Conversion::Implicit);
    const Term separator = call.text(1);
    return textResult("group_concat(" + value.sql + "," + separator.sql + ")" + text.over, value,
                      isUnicode(value.type.id) ? 4000 : 8000);
}

} // namespace

std::string windowText(const FunctionCall& call)
{
    const ast::Function& node = call.node();
    if (!node.over)
        return {};
    if (call.scope().clause != Clause::Select && call.scope().clause != Clause::OrderBy)
        raise(4108);
    std::string text;
    for (const auto& expression : node.over->partitionBy)
        text += (text.empty() ? "PARTITION BY " : ", ") +
                comparable(call.translator().expression(*expression, call.scope()));
    bool first = true;
    for (const ast::OrderItem& item : node.over->orderBy) {
        Term term = call.translator().expression(*item.expression, call.scope());
        if (term.constant)
            raise(term.integerLiteral ? 5308 : 5309);
        text += (text.empty() ? "ORDER BY "
                 : first      ? " ORDER BY "
                              : ", ") +
                comparable(term) + (item.descending ? " DESC" : "");
        first = false;
    }
    if (node.over->frame) {
        const ast::WindowFrame& frame = *node.over->frame;
        text += frame.rows ? " ROWS " : " RANGE ";
        text += frame.end
                    ? "BETWEEN " + frameBound(call, frame.start) + " AND " + frameBound(call, *frame.end)
                    : frameBound(call, frame.start);
    }
    return " OVER (" + text + ")";
}

bool isAggregateName(std::string_view name)
{
    return aggregateShape(name) != nullptr;
}

Term bindAggregate(const FunctionCall& call, std::string_view name)
{
    const ast::Function& node = call.node();
    Scope& scope = call.scope();
    const bool windowed = node.over.has_value();
    if (!windowed) {
        requireAggregateAllowed(scope);
        if (scope.aggregateDepth > 0)
            raise(130);
        scope.hasAggregate = true;
        ++scope.aggregateDepth;
    }
    if (!node.star && call.count() != (name == "string_agg" ? 2U : 1U))
        raise(174, {std::string(name), name == "string_agg" ? "2" : "1"});
    Term argument;
    if (!node.star) {
        if (node.arguments.front()->kind == ast::ExpressionKind::Subquery)
            raise(130);
        argument = call.term(0);
    }
    if (!windowed)
        --scope.aggregateDepth;
    const AggregateText text{node.distinct ? "DISTINCT " : "", windowText(call)};
    const bool counts = name == "count" || name == "count_big";
    if (counts) {
        const std::string counted = node.star ? "*" : node.distinct ? comparable(argument) : argument.sql;
        return resultTerm(text.call("count", counted), name == "count" ? intType() : bigIntType(), false);
    }
    if (node.star)
        raise(102, {"*"});
    if (isLegacyLob(argument.type.id) || argument.type.id == TypeId::Xml)
        raise(8117, {typeName(argument.type.id), std::string(name)});
    if (name == "string_agg")
        return bindStringAggregate(call, argument, text);
    if (name == "sum" || name == "avg")
        return bindSum(argument, name, text);
    const AggregateShape& shape = *aggregateShape(name);
    if (name == "min" || name == "max") {
        if (argument.type.id == TypeId::Bit || argument.type.id == TypeId::Null)
            raise(8117, {argument.type.id == TypeId::Bit ? "bit" : "NULL", std::string(name)});
        Term result = argument;
        result.constant.reset();
        result.collated = false;
        result.integerLiteral = false;
        result.nullable = true;
        result.sql =
            text.call(shape.sqlite, isCharacter(argument.type.id) ? comparable(argument) : argument.sql);
        return result;
    }
    if (name == "checksum_agg")
        return resultTerm(text.call(shape.sqlite, convertTerm(argument, intType(), Conversion::Implicit).sql),
                          intType());
    if (!isNumeric(argument.type.id))
        raise(8117, {typeName(argument.type.id), std::string(name)});
    return resultTerm(text.call(shape.sqlite, convertTerm(argument, floatType(), Conversion::Implicit).sql),
                      floatType());
}

bool isRankingName(std::string_view name)
{
    constexpr std::array<std::string_view, 8> names = {"row_number", "rank", "dense_rank",  "ntile",
                                                       "lag",        "lead", "first_value", "last_value"};
    return std::find(names.begin(), names.end(), name) != names.end();
}

Term bindRanking(const FunctionCall& call, std::string_view name)
{
    const std::string function(name);
    if (!call.node().over)
        raise(10753, {function});
    if (call.node().over->orderBy.empty())
        raise(4112, {function});
    const std::string over = windowText(call);
    if (name == "ntile") {
        const Term groups = call.integer(0);
        const auto known = constantInteger(groups);
        if (known && *known < 1)
            raise(4116, {function});
        return resultTerm("ntile(" + groups.sql + ")" + over, bigIntType(), false);
    }
    if (name == "row_number" || name == "rank" || name == "dense_rank")
        return resultTerm(function + "()" + over, bigIntType(), false);
    if (!call.has(0))
        raise(174, {function, "1"});
    Term result = call.term(0);
    result.constant.reset();
    result.nullable = true;
    result.collated = false;
    std::string arguments = result.sql;
    if (call.has(1))
        arguments += "," + call.integer(1).sql;
    if (call.has(2))
        arguments += "," + call.converted(2, result.type).sql;
    result.sql = function + "(" + arguments + ")" + over;
    return result;
}

Term FunctionCall::text(std::size_t i) const
{
    Term given = term(i);
    if (isCharacter(given.type.id))
        return given;
    if (given.type.id == TypeId::Null)
        return convertTerm(given, varCharType(1), Conversion::Implicit);
    if (given.type.id == TypeId::Image || given.type.id == TypeId::Timestamp)
        raise(8116, {typeName(given.type.id), std::to_string(i + 1), lowerCase(node_.name.object)});
    const int length = isBinary(given.type.id) ? given.type.length : 50;
    return convertTerm(given, varCharType(length), Conversion::Implicit);
}

SqlType variableText(const SqlType& type, int length)
{
    if (length == maxLength || isLegacyLob(type.id))
        return {isUnicode(type.id) ? TypeId::NVarChar : TypeId::VarChar, maxLength};
    const int limit = isUnicode(type.id) ? 4000 : 8000;
    return {isUnicode(type.id) ? TypeId::NVarChar : TypeId::VarChar, std::clamp(length, 1, limit)};
}

Term textResult(std::string sql, const Term& like, int length, bool nullable)
{
    Term term = resultTerm(std::move(sql), variableText(like.type, length), nullable);
    if (!like.collation.empty())
        term.collation = like.collation;
    term.coercibility = like.coercibility;
    return term;
}

std::optional<std::int64_t> constantInteger(const Term& term)
{
    const auto* value = term.constant ? std::get_if<std::int64_t>(&term.constant->data) : nullptr;
    return value == nullptr ? std::nullopt : std::optional(*value);
}

std::optional<std::string> constantText(const Term& term)
{
    const auto* value = term.constant ? std::get_if<std::string>(&term.constant->data) : nullptr;
    return value == nullptr ? std::nullopt : std::optional(*value);
}

Term Translator::functionCall(const ast::Function& function, Scope& scope)
{
    const FunctionCall call(*this, function, scope);
    const ast::ObjectName& written = function.name;
    const std::string name = lowerCase(written.object);
    if (!written.schema.empty() || !written.database.empty())
        raise(4121, {written.schema, writtenName(written)});
    if (isAggregateName(name))
        return bindAggregate(call, name);
    if (isRankingName(name))
        return bindRanking(call, name);
    const auto found = functions().find(name);
    if (found == functions().end())
        raise(195, {written.object, "built-in function name"});
    requireCount(*found->second, call.count());
    return found->second->bind(call);
}

} // namespace practice
