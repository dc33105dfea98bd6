// Transact-SQL that the server itself runs, asks or translates within a statement.
#include "engine/api/collecting_sink.h"
#include "engine/binder/parsed_texts.h"
#include "engine/session/session_scope.h"
#include "types/text_encoding.h"

#include <algorithm>
#include <cstdint>

namespace practice {

void SessionState::runText(const std::string& text)
{
    runNested_(text);
}

std::vector<std::vector<Value>> SessionState::queryText(const std::string& text)
{
    CollectingSink collected;
    {
        const SinkScope scope(*this, collected);
        runText(text);
    }
    return std::move(collected.rows);
}

namespace {

/// The columns of a table under the names that its rows have in the store, without qualifier.
Scope tableScope(Translator& translator, const Object& table)
{
    Scope scope;
    translator.addStoredTable(std::make_shared<Object>(table), {.exposed = table.name, .shown = table.name},
                              scope);
    return scope;
}

} // namespace

std::string SessionState::translateScalar(const Object* table, const std::string& text, const SqlType& target)
{
    Translator translator(bindContext());
    translator.standsAlone = true;
    Scope scope = table != nullptr ? tableScope(translator, *table) : Scope();
    const auto tree = parsedExpression(text);
    return convertTerm(translator.expression(*tree, scope), target, Conversion::Assignment).sql;
}

std::string SessionState::translateCondition(const Object& table, const std::string& text)
{
    Translator translator(bindContext());
    translator.standsAlone = true;
    Scope scope = tableScope(translator, table);
    const auto tree = parsedCondition(text);
    return translator.condition(*tree, scope);
}

SqlType SessionState::typeOfExpression(const Object* table, const std::string& text)
{
    Translator translator(bindContext());
    translator.standsAlone = true;
    Scope scope = table != nullptr ? tableScope(translator, *table) : Scope();
    const auto tree = parsedExpression(text);
    return translator.expression(*tree, scope).type;
}

std::string SessionState::convertExpression(const std::string& sqlite, const SqlType& from, const SqlType& to)
{
    return convertTerm(resultTerm(sqlite, from), to, Conversion::Assignment).sql;
}

std::vector<ColumnInfo> SessionState::describeQuery(const ast::SelectStatement& query,
                                                    const ModuleOwner& owner)
{
    BindContext context = bindContext();
    context.module = owner;
    context.userId = owner.ownerId;
    Translator translator(std::move(context));
    std::vector<ColumnInfo> columns;
    for (const QueryColumn& column : translator.statement(query.query).columns)
        columns.push_back(
            {column.name, column.type, column.nullable, column.identity.has_value(), column.updatable});
    translator.requireRights();
    return columns;
}

void SessionState::createTableVariable(const ast::Declaration& declaration)
{
    std::uint32_t begin = UINT32_MAX;
    std::uint32_t end = 0;
    const auto cover = [&begin, &end](const ast::SourceRange& range) {
        begin = std::min(begin, range.begin);
        end = std::max(end, range.end);
    };
    for (const ast::ColumnDefinition& column : declaration.table->columns)
        cover(column.source);
    for (const ast::TableConstraint& constraint : declaration.table->constraints)
        cover(constraint.source);
    const std::string name = temporaries_->tableVariableName(declaration.name);
    const std::string elements(batchText().substr(begin, end - begin));
    runText("CREATE TABLE [" + name + "] (" + elements + ")");
    frame().tableVariables[lowerCase(declaration.name)] = name;
}

} // namespace practice
