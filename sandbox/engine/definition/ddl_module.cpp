// CREATE and ALTER of views and procedures.
#include "engine/binder/ddl_types.h"
#include "engine/catalog/catalog_writer.h"
#include "engine/context/permissions.h"
#include "engine/context/standing.h"
#include "engine/definition/ddl.h"
#include "engine/definition/ddl_columns.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"
#include "tsql/parser.h"

#include <algorithm>
#include <set>

namespace practice {
namespace {

/// What views and procedures have in common: one text under one name.
struct Module
{
    SessionContext& session;
    const ast::Statement& statement;
    const ast::ObjectName& name;
    ast::DefinitionMode mode;
    ObjectKind kind;
    const char* words; ///< "CREATE VIEW"
    bool encrypted = false;
};

/// The batch as it was sent, with the word that began the statement turned into CREATE.
std::string moduleText(const Module& module)
{
    std::string text(module.session.batchText());
    if (module.mode == ast::DefinitionMode::Create)
        return text;
    constexpr std::size_t alter = 5;
    const std::size_t begin = module.statement.source.begin;
    if (module.mode == ast::DefinitionMode::Alter)
        return text.replace(begin, alter, "CREATE");
    const std::size_t end = foldName(text).find("alter", begin);
    return text.replace(begin, end + alter - begin, "CREATE");
}

void requireModuleName(const Module& module)
{
    if (!module.name.database.empty() || !module.name.server.empty())
        raise(166, {module.words});
}

NewObject newObject(const Module& module, const ObjectPlace& place)
{
    NewObject object;
    object.name = place.name;
    object.ownerId = place.ownerId;
    object.kind = module.kind;
    object.quotedIdentifier = module.session.options().quotedIdentifier;
    object.ansiNulls = module.session.options().ansiNulls;
    return object;
}

struct StoredModule
{
    int databaseId;
    int id;
};

StoredModule insertModule(const Module& module)
{
    const ObjectPlace place = placeForNew(module.session, module.name, module.words);
    if (isNameTaken(module.session, place.database->id, place.ownerId, place.name)) {
        Message taken = makeMessage(2714, {place.written});
        taken.state = 3;
        throw SqlError{taken};
    }
    const int id = insertObject(module.session.connection(), place.database->id, newObject(module, place));
    return {place.database->id, id};
}

/// Keeps id, owner, creation date and permissions; only what the text says changes.
StoredModule alterModule(const Module& module, const Object& present)
{
    sqlite3* connection = module.session.connection();
    Statement columns(connection, "DELETE FROM cat_column WHERE dbid = ? AND id = ?");
    columns.bind(1, present.databaseId).bind(2, present.id).run();
    touchObject(connection, present.databaseId, present.id);
    return {present.databaseId, present.id};
}

/// The module that ALTER is about, if it is there.
/// @throws SqlError 3701 for one that is not the user's to alter
ObjectPtr presentModule(const Module& module)
{
    ObjectPtr present =
        module.mode == ast::DefinitionMode::Create ? nullptr : findNamed(module.session, module.name);
    if (!present || present->kind != module.kind || present->shipped)
        return nullptr;
    if (!mayChange(module.session, *present))
        raiseNoRight("alter", kindWord(module.kind), plainName(module.name));
    return present;
}

/// Whose the module is or is going to be: its own query is bound with what it will lend.
ModuleOwner ownerOf(const Module& module)
{
    if (const ObjectPtr present = presentModule(module))
        return {present->databaseId, present->ownerId};
    if (module.mode == ast::DefinitionMode::Alter)
        return {module.session.database()->id, module.session.user().id};
    const ObjectPlace place = placeForNew(module.session, module.name, module.words);
    return {place.database->id, place.ownerId};
}

StoredModule storeModule(const Module& module)
{
    requireModuleName(module);
    const ObjectPtr present = presentModule(module);
    if (!present && module.mode == ast::DefinitionMode::Alter) {
        Message missing = makeMessage(208, {plainName(module.name)});
        missing.state = 6;
        throw SqlError{missing};
    }
    const StoredModule stored = present ? alterModule(module, *present) : insertModule(module);
    writeText(module.session.connection(), stored.databaseId, stored.id, moduleText(module),
              module.encrypted);
    return stored;
}

void insertParameters(const Module& module, const StoredModule& stored,
                      const std::vector<ast::ParameterDefinition>& parameters)
{
    int number = 0;
    std::set<std::string> names;
    for (const ast::ParameterDefinition& definition : parameters) {
        ++number;
        if (!names.insert(foldName(definition.name)).second)
            raise(134, {definition.name});
        const SqlType type = resolveDeclaredType(definition.type, number, "parameter", definition.name);
        insertParameter(module.session.connection(), stored.databaseId, stored.id, number,
                        {definition.name, type, definition.output});
    }
}

std::vector<ColumnInfo> describeText(SessionContext& session, const ModuleOwner& owner,
                                     const std::string& text)
{
    ParserOptions options;
    options.quotedIdentifier = session.options().quotedIdentifier;
    const ast::Batch batch = parseBatch(text, options);
    return session.describeQuery(ast::as<ast::SelectStatement>(*batch.statements.front()), owner);
}

void nameColumns(std::vector<ColumnInfo>& columns, const ast::CreateViewStatement& statement)
{
    const std::string view = statement.name.object;
    const auto& names = statement.columns;
    if (names.size() > columns.size())
        raise(4502, {view});
    if (!names.empty() && names.size() < columns.size())
        raise(8158, {view});
    std::set<std::string> seen;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (!names.empty())
            columns[i].name = names[i];
        if (columns[i].name.empty())
            raise(4511, {std::to_string(i + 1)});
        if (!seen.insert(foldName(columns[i].name)).second)
            raise(4506, {columns[i].name, view});
    }
}

void insertColumns(SessionContext& session, const StoredModule& stored,
                   const std::vector<ColumnInfo>& columns)
{
    const DatabasePtr database = session.catalog().database(stored.databaseId);
    int id = 0;
    for (const ColumnInfo& info : columns) {
        Column column;
        column.id = ++id;
        column.name = info.name;
        column.type = info.type;
        column.nullable = info.nullable;
        if (isCharacter(info.type.id))
            column.collation = database->collation;
        insertColumn(session.connection(), stored.databaseId, stored.id, column);
    }
}

void requireUnordered(const ast::CreateViewStatement& statement)
{
    const ast::Query& query = statement.query;
    const bool top = query.body->block && query.body->block->top;
    if (!query.orderBy.empty() && !top && !query.offset)
        raise(1033);
}

} // namespace

void createView(SessionContext& session, const ast::CreateViewStatement& statement)
{
    const Module module{session,          statement,     statement.name,      statement.mode,
                        ObjectKind::View, "CREATE VIEW", statement.encryption};
    requireModuleName(module);
    requireUnordered(statement);
    std::vector<ColumnInfo> columns =
        describeText(session, ownerOf(module), sourceText(session, statement.query.source));
    nameColumns(columns, statement);
    insertColumns(session, storeModule(module), columns);
}

void createProcedure(SessionContext& session, const ast::CreateProcedureStatement& statement)
{
    const Module module{session,
                        statement,
                        statement.name,
                        statement.mode,
                        ObjectKind::Procedure,
                        "CREATE PROCEDURE",
                        statement.encryption};
    insertParameters(module, storeModule(module), statement.parameters);
}

} // namespace practice
