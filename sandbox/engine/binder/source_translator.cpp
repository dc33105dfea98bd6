// FROM: tables, views, derived tables, joins, and the system tables.
#include "engine/binder/parsed_texts.h"
#include "engine/binder/translator.h"
#include "engine/context/permissions.h"
#include "engine/context/standing.h"
#include "engine/context/temporary_names.h"
#include "engine/messages/errors.h"
#include "types/text_encoding.h"

#include <algorithm>

namespace practice {

namespace {

constexpr int deepestView = 32;
constexpr int deepestCommonTable = 64;
/// How often the tables of WITH may be put in place of their names, each with what it names itself.
constexpr int mostCommonTables = 256;

bool isApply(ast::JoinKind kind)
{
    return kind == ast::JoinKind::CrossApply || kind == ast::JoinKind::OuterApply;
}

const char* joinWord(ast::JoinKind kind)
{
    switch (kind) {
    case ast::JoinKind::Inner:
        return " JOIN ";
    case ast::JoinKind::Left:
    case ast::JoinKind::OuterApply:
        return " LEFT JOIN ";
    case ast::JoinKind::Right:
        return " RIGHT JOIN ";
    case ast::JoinKind::Full:
        return " FULL JOIN ";
    default:
        return " CROSS JOIN ";
    }
}

/// Rows that an outer join may fill up with NULLs.
void makeNullable(Scope& scope, std::size_t from, std::size_t to)
{
    for (std::size_t i = from; i < to; ++i) {
        for (SourceColumn& column : scope.sources[i].columns)
            column.term.nullable = true;
    }
}

bool mentions(const ast::QueryBody& body, const std::string& name);

bool mentions(const ast::TableSource& source, const std::string& name)
{
    if (const auto* table = ast::tryAs<ast::NamedTable>(&source))
        return table->name.schema.empty() && table->name.database.empty() &&
               sameName(table->name.object, name);
    if (const auto* join = ast::tryAs<ast::JoinedTable>(&source))
        return mentions(*join->left, name) || mentions(*join->right, name);
    if (const auto* derived = ast::tryAs<ast::DerivedTable>(&source))
        return mentions(*derived->query->body, name);
    return false;
}

bool mentions(const ast::QueryBody& body, const std::string& name)
{
    if (body.block)
        return std::any_of(body.block->from.begin(), body.block->from.end(),
                           [&name](const auto& source) { return mentions(*source, name); });
    return std::any_of(body.operands.begin(), body.operands.end(),
                       [&name](const auto& operand) { return mentions(*operand, name); });
}

} // namespace

ObjectPtr Translator::object(const ast::ObjectName& name)
{
    Catalog& catalog = context_.session.catalog();
    if (isTemporary(name.object)) {
        ObjectPtr found = catalog.object(tempdbId, "", context_.session.temporaryName(name.object));
        if (!found)
            raise(208, {name.object});
        return found;
    }
    DatabasePtr database = context_.database;
    if (!name.database.empty())
        database = catalog.database(name.database);
    if (!database || (!name.server.empty() && !sameName(name.server, context_.session.serverName())))
        raise(208, {writtenName(name)});
    requireOnline(*database);
    requireAccess(context_.session, *database);
    ObjectPtr found = catalog.object(database->id, name.schema, name.object, context_.userId);
    if (!found)
        raise(208, {writtenName(name)});
    return found;
}

std::string Translator::fromClause(const std::vector<ast::TableSourcePtr>& from, Scope& scope)
{
    std::string text;
    for (const auto& source : from) {
        const bool join = source->kind == ast::TableSourceKind::Join;
        const std::string part = tableSource(*source, scope);
        text += (text.empty() ? "" : ", ") + (join && from.size() > 1 ? "(" + part + ")" : part);
    }
    for (std::size_t i = 0; i < scope.sources.size(); ++i) {
        for (std::size_t j = i + 1; j < scope.sources.size(); ++j) {
            const Source& a = scope.sources[i];
            const Source& b = scope.sources[j];
            if (!sameName(a.exposed, b.exposed))
                continue;
            const bool apart =
                !a.aliased && !b.aliased && (a.databaseId != b.databaseId || !sameName(a.schema, b.schema));
            if (a.aliased && b.aliased)
                raise(1011, {b.exposed});
            if (!apart)
                raise(a.aliased || b.aliased ? 1012 : 1013, {a.shown, b.shown});
        }
    }
    return text;
}

std::string Translator::tableSource(const ast::TableSource& source, Scope& scope)
{
    switch (source.kind) {
    case ast::TableSourceKind::Named:
        return namedTable(ast::as<ast::NamedTable>(source), scope);
    case ast::TableSourceKind::Join:
        return joinedTable(ast::as<ast::JoinedTable>(source), scope);
    case ast::TableSourceKind::Derived: {
        const auto& node = ast::as<ast::DerivedTable>(source);
        return derivedTable(node, subquery(*node.query, scope.outer), scope);
    }
    case ast::TableSourceKind::Values:
        return valuesTable(ast::as<ast::ValuesTable>(source), scope);
    case ast::TableSourceKind::Variable: {
        const auto& node = ast::as<ast::VariableTable>(source);
        const std::string stored = context_.tableVariable(lowerCase(node.name));
        ObjectPtr table = stored.empty() ? nullptr : context_.session.catalog().object(tempdbId, "", stored);
        if (!table)
            raise(1087, {node.name});
        const std::string& exposed = node.alias.empty() ? node.name : node.alias;
        return addStoredTable(table, {.exposed = exposed, .shown = exposed, .aliased = true}, scope);
    }
    case ast::TableSourceKind::Function: {
        const auto& node = ast::as<ast::FunctionTable>(source);
        raise(208, {writtenName(node.call->name)});
    }
    }
    return {};
}

std::string Translator::joinedTable(const ast::JoinedTable& node, Scope& scope)
{
    const std::size_t first = scope.sources.size();
    std::string left = tableSource(*node.left, scope);
    const std::size_t middle = scope.sources.size();
    std::string right = tableSource(*node.right, scope);
    const std::size_t last = scope.sources.size();
    if (node.right->kind == ast::TableSourceKind::Join)
        right = "(" + right + ")";
    std::string text = left + joinWord(node.joinKind) + right;
    if (node.on) {
        const Clause before = std::exchange(scope.clause, Clause::On);
        text += " ON " + condition(*node.on, scope);
        scope.clause = before;
    } else if (isApply(node.joinKind) && node.joinKind == ast::JoinKind::OuterApply) {
        text += " ON 1";
    }
    const bool fillsRight = node.joinKind == ast::JoinKind::Left || node.joinKind == ast::JoinKind::Full ||
                            node.joinKind == ast::JoinKind::OuterApply;
    if (fillsRight)
        makeNullable(scope, middle, last);
    if (node.joinKind == ast::JoinKind::Right || node.joinKind == ast::JoinKind::Full)
        makeNullable(scope, first, middle);
    return text;
}

std::string Translator::namedTable(const ast::NamedTable& node, Scope& scope)
{
    const ast::ObjectName& name = node.name;
    const bool bare = name.schema.empty() && name.database.empty() && name.server.empty();
    if (bare) {
        for (auto table = recursive_.rbegin(); table != recursive_.rend(); ++table) {
            if (sameName(table->name, name.object))
                return recursiveReference(*table, node, scope);
        }
        for (std::size_t i = commonTables_.size(); i > 0; --i) {
            if (sameName(commonTables_[i - 1].table->name, name.object))
                return commonTable(VisibleTable(commonTables_[i - 1]), node, scope);
        }
    }
    Source source{.exposed = node.alias.empty() ? name.object : node.alias,
                  .shown = node.alias.empty() ? writtenName(name) : node.alias,
                  .schema = name.schema.empty() ? "dbo" : name.schema,
                  .aliased = !node.alias.empty()};
    if (const SystemTable* system = findSystemTable(name.schema, name.object)) {
        const DatabasePtr database =
            name.database.empty() ? context_.database : context_.session.catalog().database(name.database);
        if (database) {
            requireOnline(*database);
            requireSystemTable(context_.session, *database, *system,
                               context_.session.catalog().object(database->id, "", system->name));
            return systemTable(*system, database->id, std::move(source), scope);
        }
    }
    const ObjectPtr found = object(name);
    if (found->kind != ObjectKind::View && found->kind != ObjectKind::UserTable)
        raise(208, {writtenName(name)});
    source.need = needToRead(found, true);
    return found->kind == ObjectKind::View ? viewTable(found, std::move(source), scope)
                                           : addStoredTable(found, std::move(source), scope);
}

std::string Translator::addStoredTable(const ObjectPtr& table, Source source, Scope& scope)
{
    source.handle = freshHandle();
    source.object = table;
    source.databaseId = table->databaseId;
    source.schema = table->owner;
    for (const Column& column : table->columns) {
        SourceColumn made;
        made.name = column.name;
        made.identity = column.identity;
        made.stored = &column;
        const std::string qualifier = standsAlone ? "" : source.handle + ".";
        made.term = resultTerm(qualifier + storageColumn(column.id), column.type, column.nullable);
        if (isCharacter(column.type.id)) {
            made.term.collation = column.collation.empty() ? defaultCollation : column.collation;
            made.term.coercibility = Coercibility::Implicit;
            made.term.collated = true;
        }
        source.columns.push_back(std::move(made));
    }
    scope.sources.push_back(std::move(source));
    // Computed columns are expressions over the others.
    for (std::size_t i = 0; i < table->columns.size(); ++i) {
        const Column& column = table->columns[i];
        if (!column.computed)
            continue;
        Scope own;
        own.sources.push_back(scope.sources.back());
        own.sources.back().need = noNeed; // the right to the column itself is enough
        const auto tree = parsedExpression(*column.computed);
        Term term = expression(*tree, own);
        term.sql = "(" + term.sql + ")";
        term.collated = false;
        term.constant.reset();
        term.integerLiteral = false;
        scope.sources.back().columns[i].term = std::move(term);
        scope.sources.back().columns[i].stored = nullptr;
    }
    return storageTable(table->databaseId, table->id) + " AS " + scope.sources.back().handle;
}

std::string Translator::systemTable(const SystemTable& table, int databaseId, Source source, Scope& scope)
{
    source.handle = freshHandle();
    source.databaseId = databaseId;
    source.schema = table.schema;
    for (const SystemTable::SystemColumn& column : table.columns) {
        SourceColumn made;
        made.name = column.name;
        made.term = resultTerm(source.handle + "." + quotedName(column.name), column.type, column.nullable);
        if (isCharacter(column.type.id))
            made.term.coercibility = Coercibility::Implicit;
        source.columns.push_back(std::move(made));
    }
    scope.sources.push_back(std::move(source));
    return "(" + table.select(databaseId) + ") AS " + scope.sources.back().handle;
}

std::string Translator::addSource(Source source, const std::vector<QueryColumn>& columns,
                                  const std::string& sql, Scope& scope)
{
    if (source.handle.empty())
        source.handle = freshHandle();
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const QueryColumn& column = columns[i];
        SourceColumn made;
        made.name = column.name;
        made.identity = column.identity;
        made.term = resultTerm(source.handle + ".k" + std::to_string(i + 1), column.type, column.nullable);
        made.term.collation = column.collation;
        made.term.coercibility = column.coercibility;
        source.columns.push_back(std::move(made));
    }
    scope.sources.push_back(std::move(source));
    return sql + " AS " + scope.sources.back().handle;
}

namespace {

/// Takes over the names in parentheses behind an alias, and holds a derived table to its rules.
void nameColumns(std::vector<QueryColumn>& columns, const std::vector<std::string>& names,
                 const std::string& table)
{
    if (!names.empty() && names.size() != columns.size())
        raise(names.size() < columns.size() ? 8158 : 8159, {table});
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (!names.empty())
            columns[i].name = names[i];
        if (columns[i].name.empty())
            raise(8155, {std::to_string(i + 1), table});
        for (std::size_t j = 0; j < i; ++j) {
            if (sameName(columns[i].name, columns[j].name))
                raise(8156, {columns[i].name, table});
        }
    }
}

} // namespace

std::string Translator::derivedTable(const ast::TableSource& node, const TranslatedQuery& query, Scope& scope)
{
    std::vector<QueryColumn> columns = query.columns;
    nameColumns(columns, node.columnAliases, node.alias);
    return addSource({.exposed = node.alias, .shown = node.alias, .aliased = true}, columns,
                     "(" + query.sql + ")", scope);
}

std::string Translator::valuesTable(const ast::ValuesTable& node, Scope& scope)
{
    Scope scalar(scope.outer);
    std::vector<std::vector<Term>> rows;
    for (const ast::ValueRow& row : node.rows) {
        rows.push_back(terms(row, scalar));
        if (rows.back().size() != rows.front().size())
            raise(10709);
    }
    TranslatedQuery query;
    for (std::size_t i = 0; i < rows.front().size(); ++i) {
        std::vector<Term> column;
        column.reserve(rows.size());
        for (const auto& row : rows)
            column.push_back(row[i]);
        QueryColumn made{"", commonType(column), ""};
        if (isCharacter(made.type.id))
            made.collation = defaultCollation;
        query.columns.push_back(made);
    }
    for (const auto& row : rows) {
        query.sql += query.sql.empty() ? "SELECT " : " UNION ALL SELECT ";
        for (std::size_t i = 0; i < row.size(); ++i) {
            query.sql += (i == 0 ? "" : ", ") +
                         convertTerm(row[i], query.columns[i].type, Conversion::Implicit).sql + " AS k" +
                         std::to_string(i + 1);
        }
    }
    return derivedTable(node, query, scope);
}

std::string Translator::viewTable(const ObjectPtr& view, Source source, Scope& scope)
{
    if (++viewDepth_ > deepestView)
        raise(217, {std::to_string(deepestView)});
    const ast::Batch batch = parsedBatch(view->text, view->quotedIdentifier);
    const auto* definition = batch.statements.empty()
                                 ? nullptr
                                 : ast::tryAs<ast::CreateViewStatement>(batch.statements.front().get());
    if (definition == nullptr)
        raise(208, {view->name});
    // A view's names mean what they meant where it was created: nothing around it is visible.
    auto outerTables = std::exchange(commonTables_, {});
    auto outerRecursive = std::exchange(recursive_, {});
    const DatabasePtr outerDatabase =
        std::exchange(context_.database, context_.session.catalog().database(view->databaseId));
    const auto outerModule = std::exchange(context_.module, ModuleOwner{view->databaseId, view->ownerId});
    const int outerUser = std::exchange(context_.userId, view->ownerId);
    TranslatedQuery query = subquery(definition->query, nullptr);
    context_.userId = outerUser;
    context_.module = outerModule;
    context_.database = outerDatabase;
    recursive_ = std::move(outerRecursive);
    commonTables_ = std::move(outerTables);
    --viewDepth_;
    for (std::size_t i = 0; i < query.columns.size() && i < definition->columns.size(); ++i)
        query.columns[i].name = definition->columns[i];
    source.databaseId = view->databaseId;
    source.schema = view->owner;
    source.object = view;
    return addSource(std::move(source), query.columns, "(" + query.sql + ")", scope);
}

std::string Translator::commonTable(const VisibleTable& visible, const ast::NamedTable& node, Scope& scope)
{
    const ast::CommonTable& table = *visible.table;
    if (++commonTableUses_ > mostCommonTables || commonTableDepth_ == deepestCommonTable)
        raise(8623);
    const std::string& exposed = node.alias.empty() ? table.name : node.alias;
    Source source{.exposed = exposed, .shown = exposed, .aliased = true};
    auto after = std::vector<VisibleTable>(
        commonTables_.begin() + static_cast<std::ptrdiff_t>(visible.visible), commonTables_.end());
    commonTables_.resize(visible.visible);
    ++commonTableDepth_;
    const auto restore = [this, &after] {
        --commonTableDepth_;
        commonTables_.insert(commonTables_.end(), after.begin(), after.end());
    };
    const ast::QueryBody& body = *table.query->body;
    if (body.block || !mentions(body, table.name)) {
        TranslatedQuery query = subquery(*table.query, nullptr);
        restore();
        nameColumns(query.columns, table.columns, table.name);
        return addSource(std::move(source), query.columns, "(" + query.sql + ")", scope);
    }
    if (body.op != ast::SetOperator::UnionAll)
        raise(252, {table.name});
    std::vector<const ast::QueryBody*> anchors;
    std::vector<const ast::QueryBody*> steps;
    for (const auto& operand : body.operands)
        (mentions(*operand, table.name) ? steps : anchors).push_back(operand.get());
    if (anchors.empty())
        raise(252, {table.name});
    std::string text;
    RecursiveTable own{.name = table.name, .handle = freshHandle()};
    for (const auto* anchor : anchors) {
        const TranslatedQuery query = this->body(*anchor, nullptr, nullptr);
        if (own.columns.empty()) {
            own.columns = query.columns;
            nameColumns(own.columns, table.columns, table.name);
        }
        text += (text.empty() ? "" : " UNION ALL ") + ("SELECT *, 0 FROM (" + query.sql + ")");
    }
    for (QueryColumn& column : own.columns)
        column.nullable = true;
    recursive_.push_back(own);
    for (const auto* step : steps) {
        const TranslatedQuery query = this->body(*step, nullptr, nullptr);
        if (query.columns.size() != own.columns.size())
            raise(205);
        text += " UNION ALL " + query.sql;
    }
    recursive_.pop_back();
    restore();
    std::string list;
    for (std::size_t i = 0; i < own.columns.size(); ++i)
        list += (i == 0 ? "k" : ", k") + std::to_string(i + 1);
    const std::string sql = "(WITH RECURSIVE " + own.handle + "(" + list + ", depth) AS (" + text +
                            ") SELECT " + list + " FROM " + own.handle + ")";
    return addSource(std::move(source), own.columns, sql, scope);
}

std::string Translator::recursiveReference(RecursiveTable& table, const ast::NamedTable& node, Scope& scope)
{
    const std::string& exposed = node.alias.empty() ? table.name : node.alias;
    std::string text = addSource({.exposed = exposed, .shown = exposed, .aliased = true}, table.columns,
                                 table.handle, scope);
    scope.sources.back().depth = scope.sources.back().handle + ".depth";
    return text;
}

} // namespace practice
