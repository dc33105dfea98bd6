// Expressions: literals, columns, variables, CASE, CAST, unary and binary operators.
#include "engine/binder/translator.h"

#include "engine/binder/globals.h"
#include "engine/messages/errors.h"
#include "engine/store/collation.h"
#include "types/conversion.h"
#include "types/decimal.h"
#include "types/text_encoding.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace practice {

namespace {

constexpr int longestText = 8000;
constexpr int longestUnicode = 4000;

Bytes bytesOfHex(std::string_view digits)
{
    const auto nibble = [](char c) {
        return static_cast<std::uint8_t>(c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10);
    };
    std::string padded(digits);
    if (padded.size() % 2 != 0)
        padded.insert(padded.begin(), '0');
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < padded.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(nibble(padded[i]) << 4 | nibble(padded[i + 1])));
    return bytes;
}

Term exactLiteral(std::string_view text)
{
    bool malformed = false;
    const auto value = parseDecimal(text, malformed);
    if (!value)
        raise(1007, {std::string(text)});
    const int digits = std::max(digitCount(value->magnitude), int{value->scale});
    return constantTerm(Value{*value, {}},
                        {TypeId::Numeric, 0, static_cast<std::uint8_t>(digits), value->scale});
}

/// What is too small for a float is 0, what is too large an error.
Term floatLiteral(const std::string& text)
{
    const double value = std::strtod(text.c_str(), nullptr);
    if (std::isinf(value))
        raise(168, {text, "8"});
    return constantTerm(Value{value, {}}, floatType());
}

Term integerLiteral(const std::string& text)
{
    constexpr std::size_t surelyInt = 9;
    if (text.size() <= surelyInt || (text.size() <= 18 && std::stoll(text) <= INT32_MAX)) {
        Term term = integerTerm(std::stoll(text));
        term.integerLiteral = true;
        return term;
    }
    return exactLiteral(text);
}

Term stringLiteral(const std::string& text, bool national)
{
    const std::size_t units = isAscii(text) ? text.size() : utf16Length(text);
    const auto limit = static_cast<std::size_t>(national ? longestUnicode : longestText);
    const int length = units > limit ? maxLength : std::max(1, static_cast<int>(units));
    return constantTerm(Value{text, {}}, {national ? TypeId::NVarChar : TypeId::VarChar, length});
}

Term moneyLiteral(const std::string& text)
{
    const SqlType from = varCharType(static_cast<int>(std::max<std::size_t>(text.size(), 1)));
    const SqlType money{TypeId::Money, 8};
    return constantTerm(convert(Value{text, {}}, from, money), money);
}

bool isTrue(const std::optional<Value>& constant)
{
    return constant.has_value() && !constant->isNull();
}

} // namespace

Translator::Translator(BindContext context) : context_(std::move(context)) {}

std::string writtenName(const ast::ObjectName& name)
{
    std::string text;
    for (const std::string* part : {&name.server, &name.database, &name.schema}) {
        if (!text.empty() || !part->empty())
            text += *part + ".";
    }
    return text + name.object;
}

Term Translator::literal(const ast::Literal& literal)
{
    switch (literal.literalKind) {
    case ast::LiteralKind::Null:
        return nullTerm();
    case ast::LiteralKind::Integer:
        return integerLiteral(literal.text);
    case ast::LiteralKind::Decimal:
        return exactLiteral(literal.text);
    case ast::LiteralKind::Float:
        return floatLiteral(literal.text);
    case ast::LiteralKind::Money:
        return moneyLiteral(literal.text);
    case ast::LiteralKind::String:
        return stringLiteral(literal.text, false);
    case ast::LiteralKind::NationalString:
        return stringLiteral(literal.text, true);
    case ast::LiteralKind::Binary: {
        Bytes bytes = bytesOfHex(literal.text);
        const int length = std::max(1, static_cast<int>(bytes.size()));
        return constantTerm(Value{std::move(bytes), {}},
                            {TypeId::VarBinary, length > longestText ? maxLength : length});
    }
    }
    return nullTerm();
}

Term Translator::global(const std::string& name, const SqlType& type, bool nullable)
{
    if (standsAlone)
        return resultTerm(callText("s_global", {quotedText(name), typeArgument(type)}), type, nullable);
    const auto known =
        std::find_if(parameters_.begin(), parameters_.end(), [&name](const ParameterSlot& slot) {
            return slot.kind == ParameterSlot::Kind::Global && slot.name == name;
        });
    const auto place = known - parameters_.begin();
    if (known == parameters_.end())
        parameters_.push_back({ParameterSlot::Kind::Global, name, type});
    return resultTerm("?" + std::to_string(place + 1), type, nullable);
}

Term Translator::variable(const std::string& name)
{
    const std::string folded = lowerCase(name);
    if (folded.starts_with("@@")) {
        const SqlType* type = globalVariableType(folded);
        if (type == nullptr)
            raise(137, {name});
        return global(folded, *type);
    }
    const auto type = context_.variableType(folded);
    if (!type)
        raise(137, {name});
    if (liveVariables.contains(folded))
        return resultTerm(callText("s_variable", {quotedText(folded)}), *type);
    const auto known =
        std::find_if(parameters_.begin(), parameters_.end(), [&folded](const ParameterSlot& slot) {
            return slot.kind == ParameterSlot::Kind::Variable && slot.name == folded;
        });
    const auto place = known - parameters_.begin();
    if (known == parameters_.end())
        parameters_.push_back({ParameterSlot::Kind::Variable, folded, *type});
    return resultTerm("?" + std::to_string(place + 1), *type);
}

Term Translator::expression(const ast::Expression& expression, Scope& scope)
{
    const std::size_t looseBefore = scope.loose.size();
    Term term = expressionNode(expression, scope);
    // What equals a grouping expression as a whole may name its columns freely.
    if (scope.loose.size() > looseBefore &&
        std::find(scope.groups.begin(), scope.groups.end(), comparable(term)) != scope.groups.end())
        scope.loose.resize(looseBefore);
    return term;
}

Term Translator::expressionNode(const ast::Expression& expression, Scope& scope)
{
    switch (expression.kind) {
    case ast::ExpressionKind::Literal:
        return literal(ast::as<ast::Literal>(expression));
    case ast::ExpressionKind::Variable:
        return variable(ast::as<ast::Variable>(expression).name);
    case ast::ExpressionKind::Column:
        return column(ast::as<ast::Column>(expression), scope);
    case ast::ExpressionKind::Unary:
        return unary(ast::as<ast::Unary>(expression), scope);
    case ast::ExpressionKind::Binary:
        return binary(ast::as<ast::Binary>(expression), scope);
    case ast::ExpressionKind::Collate:
        return collate(ast::as<ast::Collate>(expression), scope);
    case ast::ExpressionKind::Case:
        return caseExpression(ast::as<ast::Case>(expression), scope);
    case ast::ExpressionKind::Cast:
        return cast(ast::as<ast::Cast>(expression), scope);
    case ast::ExpressionKind::Function:
        return functionCall(ast::as<ast::Function>(expression), scope);
    case ast::ExpressionKind::Subquery:
        return scalarSubquery(ast::as<ast::Subquery>(expression), scope);
    case ast::ExpressionKind::Default:
        raise(156, {"DEFAULT"});
    default:
        return resultTerm(condition(expression, scope), {TypeId::Bit, 1});
    }
}

std::vector<Term> Translator::terms(const std::vector<ast::ExpressionPtr>& expressions, Scope& scope)
{
    std::vector<Term> result;
    result.reserve(expressions.size());
    for (const auto& node : expressions)
        result.push_back(expression(*node, scope));
    return result;
}

namespace {

std::string columnText(const ast::Column& column)
{
    if (column.role == ast::ColumnRole::Identity)
        return "IDENTITYCOL";
    if (column.role == ast::ColumnRole::RowGuid)
        return "ROWGUIDCOL";
    return column.table.empty() ? column.name : writtenName(column.table) + "." + column.name;
}

bool isQualifiedBy(const Source& source, const ast::ObjectName& qualifier, Catalog& catalog)
{
    if (!sameName(source.exposed, qualifier.object))
        return false;
    if (qualifier.schema.empty() && qualifier.database.empty())
        return true;
    if (source.aliased)
        return false;
    if (!qualifier.schema.empty() && !sameName(source.schema, qualifier.schema))
        return false;
    if (qualifier.database.empty())
        return true;
    const DatabasePtr database = catalog.database(qualifier.database);
    return database != nullptr && database->id == source.databaseId;
}

bool hasRole(const SourceColumn& column, const ast::Column& wanted)
{
    switch (wanted.role) {
    case ast::ColumnRole::Identity:
        return column.identity.has_value();
    case ast::ColumnRole::RowGuid:
        return column.stored != nullptr && column.stored->rowGuid;
    case ast::ColumnRole::Named:
        return sameName(column.name, wanted.name);
    }
    return false;
}

} // namespace

const SourceColumn* Translator::findColumn(const ast::Column& column, Scope& scope, Scope*& owner)
{
    bool prefixKnown = column.table.empty();
    for (Scope* at = &scope; at != nullptr; at = at->outer) {
        const SourceColumn* found = nullptr;
        const Source* from = nullptr;
        bool prefixHere = false;
        for (const Source& source : at->sources) {
            if (!column.table.empty() && !isQualifiedBy(source, column.table, context_.session.catalog()))
                continue;
            prefixHere = true;
            for (const SourceColumn& candidate : source.columns) {
                if (!hasRole(candidate, column))
                    continue;
                if (found != nullptr)
                    raise(209, {column.name});
                found = &candidate;
                from = &source;
            }
        }
        prefixKnown = prefixKnown || prefixHere;
        if (found != nullptr) {
            owner = at;
            noteColumn(*from, *found, *at);
            noteRead(*from, *found);
            return found;
        }
        if (prefixHere && !column.table.empty())
            break;
    }
    if (!prefixKnown)
        raise(4104, {columnText(column)});
    return nullptr;
}

void Translator::noteColumn(const Source& source, const SourceColumn& column, Scope& scope)
{
    const bool grouping =
        scope.clause == Clause::Select || scope.clause == Clause::Having || scope.clause == Clause::OrderBy;
    if (!grouping || scope.aggregateDepth > 0)
        return;
    if (std::find(scope.groups.begin(), scope.groups.end(), comparable(column.term)) != scope.groups.end())
        return;
    scope.loose.push_back(source.shown.empty() ? column.name : source.shown + "." + column.name);
}

Term Translator::column(const ast::Column& column, Scope& scope)
{
    Scope* owner = nullptr;
    const SourceColumn* found = findColumn(column, scope, owner);
    if (found == nullptr) {
        const bool anySource = [&scope] {
            for (const Scope* at = &scope; at != nullptr; at = at->outer) {
                if (!at->sources.empty())
                    return true;
            }
            return false;
        }();
        if (!anySource && scope.clause == Clause::Scalar)
            raise(128, {columnText(column)});
        raise(207, {column.role == ast::ColumnRole::Named ? column.name : columnText(column)});
    }
    return found->term;
}

Term Translator::unary(const ast::Unary& unary, Scope& scope)
{
    Term operand = expression(*unary.operand, scope);
    if (unary.op == ast::UnaryOperator::Plus)
        return operand;
    if (unary.op == ast::UnaryOperator::BitNot) {
        if (!isInteger(operand.type.id))
            raise(8117, {typeName(operand.type.id), "'~'"});
        if (operand.type.id == TypeId::Bit)
            return resultTerm("(1-" + operand.sql + ")", operand.type, operand.nullable);
        const char* mask = operand.type.id == TypeId::TinyInt ? "&255)" : ")";
        return resultTerm("(~" + operand.sql + mask, operand.type, operand.nullable);
    }
    if (!isNumeric(operand.type.id) && operand.type.id != TypeId::Null)
        raise(8117, {typeName(operand.type.id), "minus"});
    if (isTrue(operand.constant)) {
        Value value = *operand.constant;
        if (auto* integer = std::get_if<std::int64_t>(&value.data))
            *integer = -*integer;
        else if (auto* real = std::get_if<double>(&value.data))
            *real = -*real;
        else if (auto* decimal = std::get_if<Decimal>(&value.data))
            decimal->negative = decimal->magnitude != 0 && !decimal->negative;
        Term term = constantTerm(std::move(value), operand.type);
        term.integerLiteral = operand.integerLiteral;
        return term;
    }
    if (storageClass(operand.type) == StorageClass::Blob)
        return resultTerm(callText("t_neg", {operand.sql, typeArgument(operand.type)}), operand.type,
                          operand.nullable);
    if (operand.type.id == TypeId::TinyInt)
        return resultTerm("(-" + operand.sql + ")", {TypeId::SmallInt, 2}, operand.nullable);
    return resultTerm("(-" + operand.sql + ")", operand.type, operand.nullable);
}

Term Translator::binary(const ast::Binary& binary, Scope& scope)
{
    const Term left = expression(*binary.left, scope);
    const Term right = expression(*binary.right, scope);
    return arithmetic(binary.op, left, right, emptyNulls());
}

Term Translator::collate(const ast::Collate& collate, Scope& scope)
{
    Term term = expression(*collate.operand, scope);
    if (!isCharacter(term.type.id))
        raise(447, {typeName(term.type.id)});
    const bool databaseDefault = lowerCase(collate.collation) == "database_default";
    if (!databaseDefault && !isCollation(collate.collation))
        raise(448, {collate.collation});
    term.collation = databaseDefault ? context_.database->collation : collate.collation;
    term.coercibility = Coercibility::Explicit;
    term.collated = false;
    return term;
}

Term Translator::caseExpression(const ast::Case& node, Scope& scope)
{
    std::optional<Term> operand;
    if (node.operand)
        operand = expression(*node.operand, scope);
    std::vector<Term> results;
    std::vector<std::string> conditions;
    for (const ast::CaseBranch& branch : node.branches) {
        if (operand)
            conditions.push_back(compareTerms(*operand, expression(*branch.when, scope), "="));
        else
            conditions.push_back(condition(*branch.when, scope));
        results.push_back(expression(*branch.then, scope));
    }
    results.push_back(node.otherwise ? expression(*node.otherwise, scope) : nullTerm());
    const SqlType type = commonType(results);
    if (type.id == TypeId::Null)
        raise(8133);
    Term result = resultTerm("", type, false);
    result.sql = "CASE";
    for (std::size_t i = 0; i < conditions.size(); ++i)
        result.sql +=
            " WHEN " + conditions[i] + " THEN " + convertTerm(results[i], type, Conversion::Implicit).sql;
    result.sql += " ELSE " + convertTerm(results.back(), type, Conversion::Implicit).sql + " END";
    for (const Term& branch : results) {
        result.nullable = result.nullable || branch.nullable;
        if (isCharacter(type.id) && isCharacter(branch.type.id)) {
            const Term merged = mergedCollation(result, branch, "CASE");
            result.collation = merged.collation;
            result.coercibility = merged.coercibility;
        }
    }
    return result;
}

Term Translator::cast(const ast::Cast& cast, Scope& scope)
{
    const SqlType type = resolveType(cast.type, false);
    const Term operand = expression(*cast.operand, scope);
    int style = 0;
    if (cast.style) {
        const Term styleTerm = expression(*cast.style, scope);
        const auto* value =
            styleTerm.constant ? std::get_if<std::int64_t>(&styleTerm.constant->data) : nullptr;
        if (value == nullptr) {
            requireConversion(operand.type, type, Conversion::Explicit);
            const std::string wanted = convertTerm(styleTerm, intType(), Conversion::Implicit).sql;
            return resultTerm(callText(cast.attempt ? "t_trycvt" : "t_cvt",
                                       {operand.sql, typeArgument(operand.type), typeArgument(type), wanted}),
                              type);
        }
        style = static_cast<int>(*value);
    }
    if (cast.attempt) {
        requireConversion(operand.type, type, Conversion::Explicit);
        return resultTerm(callText("t_trycvt", {operand.sql, typeArgument(operand.type), typeArgument(type),
                                                std::to_string(style)}),
                          type);
    }
    return convertTerm(operand, type, Conversion::Explicit, style);
}

Term Translator::scalarSubquery(const ast::Subquery& subquery, Scope& scope)
{
    if (scope.clause == Clause::GroupBy)
        raise(144);
    const TranslatedQuery inner = singleColumn(*subquery.query, scope);
    const QueryColumn& column = inner.columns.front();
    Term term = resultTerm("", column.type);
    term.collation = column.collation;
    term.coercibility = column.coercibility;
    term.sql = inner.atMostOneRow ? "(" + inner.sql + ")" : "(SELECT t_one(k1) FROM (" + inner.sql + "))";
    return term;
}

} // namespace practice
