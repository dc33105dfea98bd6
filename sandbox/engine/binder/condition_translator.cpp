// Conditions: comparisons, LIKE, IN, BETWEEN, EXISTS, AND, OR, NOT.
#include "engine/binder/translator.h"
#include "engine/messages/errors.h"
#include "engine/store/collation.h"
#include "types/text_encoding.h"

#include <algorithm>
#include <span>

namespace practice {

namespace {

std::string_view sqlOperator(ast::ComparisonOperator op)
{
    switch (op) {
    case ast::ComparisonOperator::Equal:
        return "=";
    case ast::ComparisonOperator::NotEqual:
        return "<>";
    case ast::ComparisonOperator::Less:
        return "<";
    case ast::ComparisonOperator::LessOrEqual:
        return "<=";
    case ast::ComparisonOperator::Greater:
        return ">";
    case ast::ComparisonOperator::GreaterOrEqual:
        return ">=";
    case ast::ComparisonOperator::LeftOuter:
    case ast::ComparisonOperator::RightOuter:
        break;
    }
    raise(4147);
}

std::string negatedIf(bool negated, const std::string& condition)
{
    return negated ? "(NOT " + condition + ")" : condition;
}

Term asText(const Term& term)
{
    if (isCharacter(term.type.id))
        return term;
    return convertTerm(term, term.type.id == TypeId::UniqueIdentifier ? varCharType(36) : varCharType(50),
                       Conversion::Implicit);
}

Term columnTerm(const QueryColumn& column, std::string sql)
{
    Term term = resultTerm(std::move(sql), column.type, column.nullable);
    term.collation = column.collation;
    term.coercibility = column.coercibility;
    return term;
}

std::string memberOfList(const Term& operand, const std::vector<Term>& values)
{
    std::vector<Term> all = values;
    all.push_back(operand);
    const bool integers =
        std::all_of(all.begin(), all.end(), [](const Term& t) { return isInteger(t.type.id); });
    const SqlType type = integers ? operand.type : commonType(all);
    std::string list;
    Term left = integers ? operand : convertTerm(operand, type, Conversion::Implicit);
    for (const Term& value : values) {
        if (isLegacyLob(operand.type.id) || isLegacyLob(value.type.id))
            raise(402, {typeName(operand.type.id), typeName(value.type.id), "equal to"});
        const Term right = integers ? value : convertTerm(value, type, Conversion::Implicit);
        if (isCharacter(operand.type.id) && isCharacter(value.type.id)) {
            const std::string collation = mergedCollation(left, right, "equal to").collation;
            left.collated = left.collated && left.collation == collation;
            left.collation = collation;
        }
        list += (list.empty() ? "" : ",") + (isCharacter(type.id) ? right.sql : comparable(right));
    }
    return "((" + comparable(left) + ") IN (" + list + "))";
}

/// A chain in halves of halves: SQLite, which makes a level of each operator, bears a thousand levels.
std::string joined(std::span<const std::string> parts, const char* word)
{
    if (parts.size() == 1)
        return parts.front();
    const std::size_t half = parts.size() / 2;
    return "(" + joined(parts.first(half), word) + word + joined(parts.subspan(half), word) + ")";
}

} // namespace

std::string Translator::condition(const ast::Expression& node, Scope& scope)
{
    switch (node.kind) {
    case ast::ExpressionKind::Comparison:
        return comparison(ast::as<ast::Comparison>(node), scope);
    case ast::ExpressionKind::QuantifiedComparison:
        return quantified(ast::as<ast::QuantifiedComparison>(node), scope);
    case ast::ExpressionKind::Logical:
        return logical(ast::as<ast::Logical>(node), scope);
    case ast::ExpressionKind::Not:
        return "(NOT " + condition(*ast::as<ast::Not>(node).operand, scope) + ")";
    case ast::ExpressionKind::Between:
        return between(ast::as<ast::Between>(node), scope);
    case ast::ExpressionKind::Like:
        return like(ast::as<ast::Like>(node), scope);
    case ast::ExpressionKind::In:
        return membership(ast::as<ast::In>(node), scope);
    case ast::ExpressionKind::IsNull: {
        const auto& test = ast::as<ast::IsNull>(node);
        return "(" + expression(*test.operand, scope).sql + (test.negated ? " IS NOT NULL)" : " IS NULL)");
    }
    case ast::ExpressionKind::Exists:
        return exists(ast::as<ast::Exists>(node), scope);
    case ast::ExpressionKind::FullText:
        raise(7601, {"table or indexed view"});
    default:
        raise(4145, {")"});
    }
}

std::string Translator::comparison(const ast::Comparison& node, Scope& scope)
{
    const Term left = expression(*node.left, scope);
    const Term right = expression(*node.right, scope);
    return compareTerms(left, right, sqlOperator(node.op));
}

TranslatedQuery Translator::singleColumn(const ast::Query& query, Scope& scope)
{
    TranslatedQuery inner = subquery(query, &scope);
    if (inner.columns.size() != 1)
        raise(116);
    return inner;
}

std::string Translator::quantified(const ast::QuantifiedComparison& node, Scope& scope)
{
    const Term left = expression(*node.left, scope);
    const TranslatedQuery inner = singleColumn(*node.query, scope);
    const std::string handle = freshHandle();
    const Term right = columnTerm(inner.columns.front(), handle + ".k1");
    const std::string compared = compareTerms(left, right, sqlOperator(node.op));
    const std::string from = " FROM (" + inner.sql + ") AS " + handle + " WHERE ";
    if (node.all)
        return "(NOT EXISTS (SELECT 1" + from + compared + " IS NOT 1))";
    return "(EXISTS (SELECT 1" + from + compared + "))";
}

std::string Translator::logical(const ast::Logical& node, Scope& scope)
{
    std::vector<std::string> parts;
    for (const auto& operand : node.operands)
        parts.push_back(condition(*operand, scope));
    return joined(parts, node.conjunction ? " AND " : " OR ");
}

std::string Translator::between(const ast::Between& node, Scope& scope)
{
    const Term operand = expression(*node.operand, scope);
    const std::string low = compareTerms(operand, expression(*node.low, scope), ">=");
    const std::string high = compareTerms(operand, expression(*node.high, scope), "<=");
    return negatedIf(node.negated, "(" + low + " AND " + high + ")");
}

std::string Translator::like(const ast::Like& node, Scope& scope)
{
    const Term operand = asText(expression(*node.operand, scope));
    const Term pattern = asText(expression(*node.pattern, scope));
    std::string escape = "''";
    if (node.escape) {
        const Term term = asText(expression(*node.escape, scope));
        const auto* text = term.constant ? std::get_if<std::string>(&term.constant->data) : nullptr;
        if (text != nullptr && utf16Length(*text) != 1)
            raise(506, {*text, "LIKE"});
        escape = term.sql;
    }
    const Term merged = mergedCollation(operand, pattern, "like");
    const char* caseSensitive = isCaseSensitive(merged.collation) ? "1" : "0";
    const char* unicode = isUnicode(operand.type.id) || isUnicode(pattern.type.id) ? "1" : "0";
    return negatedIf(node.negated,
                     callText("t_like", {operand.sql, pattern.sql, escape, caseSensitive, unicode}));
}

std::string Translator::membership(const ast::In& node, Scope& scope)
{
    const Term operand = expression(*node.operand, scope);
    if (!node.query)
        return negatedIf(node.negated, memberOfList(operand, terms(node.values, scope)));
    const TranslatedQuery inner = singleColumn(*node.query, scope);
    const std::string handle = freshHandle();
    const Term member = columnTerm(inner.columns.front(), handle + ".k1");
    const bool integers = isInteger(operand.type.id) && isInteger(member.type.id);
    const SqlType type = integers ? operand.type : commonType(operand, member);
    Term left = integers ? operand : convertTerm(operand, type, Conversion::Implicit);
    const Term right = integers ? member : convertTerm(member, type, Conversion::Implicit);
    if (isCharacter(type.id) && isCharacter(operand.type.id) && isCharacter(member.type.id)) {
        left.collation = mergedCollation(operand, member, "equal to").collation;
        left.collated = left.collated && left.collation == operand.collation;
    }
    const bool asIs = right.sql == member.sql;
    const std::string list =
        asIs ? inner.sql : "SELECT " + right.sql + " FROM (" + inner.sql + ") AS " + handle;
    return negatedIf(node.negated, "((" + comparable(left) + ") IN (" + list + "))");
}

std::string Translator::exists(const ast::Exists& node, Scope& scope)
{
    return "(EXISTS (" + subquery(*node.query, &scope).sql + "))";
}

} // namespace practice
