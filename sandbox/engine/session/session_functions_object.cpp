// Functions that tell of objects, columns and types.
#include "engine/context/standing.h"
#include "engine/context/temporary_names.h"
#include "engine/messages/errors.h"
#include "engine/session/session_functions.h"
#include "tsql/parser.h"
#include "types/text_encoding.h"

#include <algorithm>
#include <array>

namespace practice {

namespace {

ObjectPtr objectNamed(SessionState& session, std::string_view text)
{
    const ast::ObjectName name = parseObjectName(text);
    if (name.empty())
        return nullptr;
    Catalog& catalog = session.catalog();
    if (isTemporary(name.object))
        return catalog.object(tempdbId, "", session.temporaryName(name.object));
    const DatabasePtr database = name.database.empty() ? session.database() : catalog.database(name.database);
    // What the login may not enter is not there for it.
    if (!database || !userIn(session, database->id))
        return nullptr;
    return catalog.object(database->id, name.schema, name.object, session.user().id);
}

ObjectPtr objectNumbered(SessionState& session, std::int64_t id)
{
    return session.catalog().object(session.database()->id, static_cast<int>(id));
}

// object_id(name, type)
void objectId(SessionState& session, const Call& call)
{
    const ObjectPtr found = objectNamed(session, call.text(0));
    if (!found)
        return null(call);
    if (call.count() > 1) {
        std::string wanted(call.text(1));
        wanted.erase(wanted.find_last_not_of(' ') + 1);
        if (!sameName(wanted, xtypeOf(found->kind)))
            return null(call);
    }
    call.result(found->id);
}

void objectName(SessionState& session, const Call& call)
{
    const int database = call.count() > 1 ? static_cast<int>(call.integer(1)) : session.database()->id;
    const ObjectPtr found = userIn(session, database)
                                ? session.catalog().object(database, static_cast<int>(call.integer(0)))
                                : nullptr;
    return found ? call.result(std::string_view(found->name)) : null(call);
}

bool isConstraint(ObjectKind kind)
{
    return kind == ObjectKind::PrimaryKey || kind == ObjectKind::UniqueConstraint ||
           kind == ObjectKind::ForeignKey || kind == ObjectKind::Check || kind == ObjectKind::Default;
}

bool hasClusteredIndex(const Object& table)
{
    return std::any_of(table.indexes.begin(), table.indexes.end(),
                       [](const Index& index) { return index.clustered; });
}

struct ObjectProperty
{
    std::string_view name; ///< lower case
    bool (*holds)(const Object& object);
};

template <ObjectKind kind>
bool isOfKind(const Object& object)
{
    return object.kind == kind;
}

constexpr std::array objectProperties = {
    ObjectProperty{"isusertable", isOfKind<ObjectKind::UserTable>},
    ObjectProperty{"istable",
                   [](const Object& object) {
                       return object.kind == ObjectKind::UserTable || object.kind == ObjectKind::SystemTable;
                   }},
    ObjectProperty{"issystemtable", isOfKind<ObjectKind::SystemTable>},
    ObjectProperty{"isview", isOfKind<ObjectKind::View>},
    ObjectProperty{"isprocedure", isOfKind<ObjectKind::Procedure>},
    ObjectProperty{"istrigger", isOfKind<ObjectKind::Trigger>},
    ObjectProperty{"isconstraint", [](const Object& object) { return isConstraint(object.kind); }},
    ObjectProperty{"isprimarykey", isOfKind<ObjectKind::PrimaryKey>},
    ObjectProperty{"isforeignkey", isOfKind<ObjectKind::ForeignKey>},
    ObjectProperty{"isuniquecnst", isOfKind<ObjectKind::UniqueConstraint>},
    ObjectProperty{"ischeckcnst", isOfKind<ObjectKind::Check>},
    ObjectProperty{"isdefaultcnst", isOfKind<ObjectKind::Default>},
    ObjectProperty{"isscalarfunction", isOfKind<ObjectKind::ScalarFunction>},
    ObjectProperty{"ismsshipped", [](const Object& object) { return object.shipped; }},
    ObjectProperty{"isansinullson", [](const Object& object) { return object.ansiNulls; }},
    ObjectProperty{"execisansinullson", [](const Object& object) { return object.ansiNulls; }},
    ObjectProperty{"isquotedidenton", [](const Object& object) { return object.quotedIdentifier; }},
    ObjectProperty{"execisquotedidenton", [](const Object& object) { return object.quotedIdentifier; }},
};

/// Of users' tables; NULL for any other object.
constexpr std::array tableProperties = {
    ObjectProperty{"tablehasidentity", [](const Object& table) { return table.identityColumn() != nullptr; }},
    ObjectProperty{"tablehasprimarykey", [](const Object& table) { return table.primaryKey() != nullptr; }},
    ObjectProperty{"tablehasforeignkey", [](const Object& table) { return !table.foreignKeys.empty(); }},
    ObjectProperty{"tablehasforeignref", [](const Object& table) { return !table.referencedBy.empty(); }},
    ObjectProperty{"tablehascheckcnst", [](const Object& table) { return !table.checks.empty(); }},
    ObjectProperty{"tablehasindex", [](const Object& table) { return !table.indexes.empty(); }},
    ObjectProperty{"tablehasclustindex", hasClusteredIndex},
    ObjectProperty{
        "tablehasuniquecnst",
        [](const Object& table) { return std::ranges::any_of(table.indexes, &Index::uniqueConstraint); }},
    ObjectProperty{"tablehasdefaultcnst",
                   [](const Object& table) {
                       return std::ranges::any_of(table.columns,
                                                  [](const Column& column) { return column.defaultId != 0; });
                   }},
    ObjectProperty{"tablehastimestamp",
                   [](const Object& table) {
                       return std::ranges::any_of(table.columns, [](const Column& column) {
                           return column.type.id == TypeId::Timestamp;
                       });
                   }},
};

template <typename Properties>
bool answerProperty(const Properties& properties, const std::string& name, const Object& object,
                    const Call& call)
{
    const auto known = std::ranges::find(properties, name, &ObjectProperty::name);
    if (known == properties.end())
        return false;
    call.result(known->holds(object) ? 1 : 0);
    return true;
}

// objectproperty(id, property)
void objectProperty(SessionState& session, const Call& call)
{
    const ObjectPtr found = objectNumbered(session, call.integer(0));
    if (!found)
        return null(call);
    const std::string property = lowerCase(call.text(1));
    if (property == "ownerid")
        return call.result(found->ownerId);
    const bool isTable = found->kind == ObjectKind::UserTable;
    if (!answerProperty(objectProperties, property, *found, call) &&
        !(isTable && answerProperty(tableProperties, property, *found, call)))
        null(call);
}

int storedLength(const Column& column)
{
    const bool twoBytes =
        isUnicode(column.type.id) && column.type.length != maxLength && !isLegacyLob(column.type.id);
    return twoBytes ? column.type.length * 2 : column.type.length;
}

void columnLength(SessionState& session, const Call& call)
{
    const ObjectPtr found = objectNamed(session, call.text(0));
    const Column* column = found ? found->column(std::string(call.text(1))) : nullptr;
    return column != nullptr ? call.result(storedLength(*column)) : null(call);
}

void columnName(SessionState& session, const Call& call)
{
    const ObjectPtr found = objectNumbered(session, call.integer(0));
    const Column* column = found ? found->column(static_cast<int>(call.integer(1))) : nullptr;
    return column != nullptr ? call.result(std::string_view(column->name)) : null(call);
}

// columnproperty(id, column, property)
void columnProperty(SessionState& session, const Call& call)
{
    const ObjectPtr found = objectNumbered(session, call.integer(0));
    const Column* column = found ? found->column(std::string(call.text(1))) : nullptr;
    if (column == nullptr)
        return null(call);
    const std::string property = lowerCase(call.text(2));
    const auto is = [&property](const char* name) { return property == name; };
    if (is("allowsnull"))
        return call.result(column->nullable ? 1 : 0);
    if (is("isidentity"))
        return call.result(column->identity ? 1 : 0);
    if (is("iscomputed"))
        return call.result(column->computed ? 1 : 0);
    if (is("isrowguidcol"))
        return call.result(column->rowGuid ? 1 : 0);
    if (is("isidnotforrepl"))
        return call.result(column->identity && column->identity->notForReplication ? 1 : 0);
    if (is("usesansitrim")) {
        const TypeId id = column->type.id;
        return (isCharacter(id) || isBinary(id)) && id != TypeId::Timestamp
                   ? call.result(column->ansiPadded ? 1 : 0)
                   : null(call);
    }
    if (is("precision") || is("scale")) {
        Statement query(session.connection(), "SELECT fullprec, fullscale FROM cat_column_type "
                                              "WHERE dbid = ?1 AND id = ?2 AND colid = ?3");
        const int place = is("precision") ? 0 : 1;
        const bool known = query.bind(1, found->databaseId).bind(2, found->id).bind(3, column->id).step();
        return known && !query.isNull(place) ? call.result(query.integer(place)) : null(call);
    }
    if (is("columnid") || is("ordinal"))
        return call.result(column->id);
    null(call);
}

// index_col(table, indid, key)
void indexColumn(SessionState& session, const Call& call)
{
    const ObjectPtr found = objectNamed(session, call.text(0));
    const Index* index = found ? found->index(static_cast<int>(call.integer(1))) : nullptr;
    const std::int64_t key = call.integer(2);
    if (index == nullptr || key < 1 || key > static_cast<std::int64_t>(index->keys.size()))
        return null(call);
    const Column* column = found->column(index->keys[static_cast<std::size_t>(key - 1)].columnId);
    call.result(std::string_view(column->name));
}

// indexproperty(id, index, property)
void indexProperty(SessionState& session, const Call& call)
{
    const ObjectPtr found = objectNumbered(session, call.integer(0));
    const Index* index = found ? found->index(std::string(call.text(1))) : nullptr;
    if (index == nullptr)
        return null(call);
    const std::string property = lowerCase(call.text(2));
    if (property == "isunique")
        return call.result(index->unique ? 1 : 0);
    if (property == "isclustered")
        return call.result(index->clustered ? 1 : 0);
    if (property == "indexid")
        return call.result(index->id);
    if (property == "indexfillfactor")
        return call.result(index->fillFactor);
    if (property == "ispadindex")
        return call.result(index->padded ? 1 : 0);
    if (property == "isdisabled")
        return call.result(index->enabled ? 0 : 1);
    if (property == "isstatistics" || property == "ishypothetical" || property == "isfulltextkey")
        return call.result(0);
    null(call);
}

// indexkey_property(id, indid, key, property)
void indexKeyProperty(SessionState& session, const Call& call)
{
    const ObjectPtr found = objectNumbered(session, call.integer(0));
    const Index* index = found ? found->index(static_cast<int>(call.integer(1))) : nullptr;
    const std::int64_t key = call.integer(2);
    if (index == nullptr || key < 1 || key > static_cast<std::int64_t>(index->keys.size()))
        return null(call);
    const IndexKey& part = index->keys[static_cast<std::size_t>(key - 1)];
    const std::string property = lowerCase(call.text(3));
    if (property == "columnid")
        return call.result(part.columnId);
    return property == "isdescending" ? call.result(part.descending ? 1 : 0) : null(call);
}

const Column* identityOf(SessionState& session, const Call& call, ObjectPtr& table)
{
    table = objectNamed(session, call.text(0));
    return table ? table->identityColumn() : nullptr;
}

void identCurrent(SessionState& session, const Call& call)
{
    ObjectPtr table;
    const Column* column = identityOf(session, call, table);
    if (column == nullptr)
        return null(call);
    call.result(
        session.catalog().lastIdentity(table->databaseId, table->id).value_or(column->identity->seed));
}

void identSeed(SessionState& session, const Call& call)
{
    ObjectPtr table;
    const Column* column = identityOf(session, call, table);
    return column != nullptr ? call.result(column->identity->seed) : null(call);
}

void identIncrement(SessionState& session, const Call& call)
{
    ObjectPtr table;
    const Column* column = identityOf(session, call, table);
    return column != nullptr ? call.result(column->identity->increment) : null(call);
}

// typeproperty(type, property)
void typeProperty(SessionState& session, const Call& call)
{
    constexpr int schemaOfSystem = 4;
    std::string name = lowerCase(parseObjectName(call.text(0)).object);
    if (const TypeId id = typeByName(name); id != TypeId::Null)
        name = typeName(id);
    Statement query(session.connection(), "SELECT prec, scale FROM sys_type WHERE name = ?1");
    query.bind(1, name);
    if (!query.step())
        return null(call);
    const std::string property = lowerCase(call.text(1));
    if (property == "precision")
        return call.result(query.integer(0));
    if (property == "scale")
        return query.isNull(1) ? null(call) : call.result(query.integer(1));
    if (property == "allowsnull")
        return call.result(name == "sysname" || name == "timestamp" ? 0 : 1);
    if (property == "ownerid")
        return call.result(schemaOfSystem);
    const TypeId id = typeByName(name);
    const bool trims = (isCharacter(id) || isBinary(id)) && !isLegacyLob(id) && id != TypeId::Timestamp;
    return property == "usesansitrim" && trims ? call.result(1) : null(call);
}

void typeIdNamed(SessionState& session, const Call& call)
{
    Statement query(session.connection(), "SELECT xusertype FROM sys_type WHERE name = ?1");
    query.bind(1, call.text(0));
    return query.step() ? call.result(query.integer(0)) : null(call);
}

void typeNameNumbered(SessionState& session, const Call& call)
{
    Statement query(session.connection(), "SELECT name FROM sys_type WHERE xusertype = ?1");
    query.bind(1, call.integer(0));
    return query.step() ? call.result(query.text(0)) : null(call);
}

void statsDate(SessionState& session, const Call& call)
{
    const ObjectPtr found = objectNumbered(session, call.integer(0));
    return found && found->index(static_cast<int>(call.integer(1))) != nullptr ? call.result(found->created)
                                                                               : null(call);
}

void objectDefinition(SessionState& session, const Call& call)
{
    const ObjectPtr found = objectNumbered(session, call.integer(0));
    return found && !found->text.empty() ? call.result(std::string_view(found->text)) : null(call);
}

} // namespace

void registerObjectFunctions(SessionState& session)
{
    defineSessionFunction(session, "s_object_id", -1, objectId);
    defineSessionFunction(session, "s_object_name", -1, objectName);
    defineSessionFunction(session, "s_objectproperty", 2, objectProperty);
    defineSessionFunction(session, "s_object_definition", 1, objectDefinition);
    defineSessionFunction(session, "s_col_length", 2, columnLength);
    defineSessionFunction(session, "s_col_name", 2, columnName);
    defineSessionFunction(session, "s_columnproperty", 3, columnProperty);
    defineSessionFunction(session, "s_index_col", 3, indexColumn);
    defineSessionFunction(session, "s_indexproperty", 3, indexProperty);
    defineSessionFunction(session, "s_indexkey_property", 4, indexKeyProperty);
    defineSessionFunction(session, "s_ident_current", 1, identCurrent);
    defineSessionFunction(session, "s_ident_seed", 1, identSeed);
    defineSessionFunction(session, "s_ident_incr", 1, identIncrement);
    defineSessionFunction(session, "s_typeproperty", 2, typeProperty);
    defineSessionFunction(session, "s_type_id", 1, typeIdNamed);
    defineSessionFunction(session, "s_type_name", 1, typeNameNumbered);
    defineSessionFunction(session, "s_stats_date", 2, statsDate);
}

} // namespace practice
