// CREATE, ALTER and DROP INDEX.
#include "engine/catalog/catalog_writer.h"
#include "engine/context/permissions.h"
#include "engine/definition/ddl.h"
#include "engine/definition/ddl_indexes.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"

namespace practice {
namespace {

ObjectPtr indexedTable(SessionContext& session, const ast::ObjectName& name)
{
    ObjectPtr table = findNamed(session, name);
    if (!table || !mayChange(session, *table))
        raiseHidden(name, ofCreateIndex);
    requireWritable(*session.catalog().database(table->databaseId));
    if (table->kind == ObjectKind::View)
        raise(1939, {table->name});
    if (table->kind != ObjectKind::UserTable)
        raise(1914, {plainName(name)});
    return table;
}

bool sameKeys(const Index& left, const Index& right)
{
    if (left.keys.size() != right.keys.size())
        return false;
    for (std::size_t i = 0; i < left.keys.size(); ++i) {
        if (left.keys[i].columnId != right.keys[i].columnId ||
            left.keys[i].descending != right.keys[i].descending)
            return false;
    }
    return true;
}

/// DROP_EXISTING: the index takes the place of its former self.
ObjectPtr replaceExisting(SessionContext& session, const Object& table, const Index& present, Index& index)
{
    if (present.clustered && !index.clustered)
        raise(1925);
    const bool constraint = present.constraintId != 0;
    if (constraint && (!index.unique || !sameKeys(present, index)))
        raise(1907, {present.name});
    index.primaryKey = present.primaryKey;
    index.uniqueConstraint = present.uniqueConstraint;
    index.constraintId = present.constraintId;
    dropIndex(session, table, present);
    return reread(session, table.databaseId, table.id);
}

std::vector<int> includedColumns(const Object& table, const std::vector<std::string>& names)
{
    std::vector<int> ids;
    for (const std::string& name : names) {
        const Column* column = table.column(name);
        if (column == nullptr)
            raise(1911, {name});
        ids.push_back(column->id);
    }
    return ids;
}

std::string constraintWords(const Index& index)
{
    return index.primaryKey ? "PRIMARY KEY" : "UNIQUE KEY";
}

void dropOne(SessionContext& session, const ast::DroppedIndex& dropped, bool ifExists)
{
    const ObjectPtr table = findNamed(session, dropped.table);
    const std::string name = plainName(dropped.table) + '.' + dropped.name;
    const Index* index = table && table->kind == ObjectKind::UserTable ? table->index(dropped.name) : nullptr;
    if (index == nullptr && ifExists)
        return;
    if (index == nullptr || !mayChange(session, *table)) {
        Message missing = makeMessage(3701, {"drop", "index", name});
        missing.state = 7;
        throw SqlError{missing};
    }
    requireWritable(*session.catalog().database(table->databaseId));
    if (index->constraintId != 0)
        raise(3723, {name, constraintWords(*index)});
    dropIndex(session, *table, *index);
}

/// The index rebuilt with new options; the catalog alone changes.
void changeIndex(SessionContext& session, const Object& table, Index index,
                 const ast::AlterIndexStatement& statement)
{
    applyIndexOptions(index, statement.options);
    index.enabled = statement.action == ast::AlterIndexAction::Rebuild || index.enabled;
    if (statement.action == ast::AlterIndexAction::Disable)
        index.enabled = false;
    deleteIndex(session.connection(), table.databaseId, table.id, index.id);
    insertIndex(session.connection(), table.databaseId, table.id, index);
}

} // namespace

void createIndex(SessionContext& session, const ast::CreateIndexStatement& statement)
{
    if (statement.where)
        raise(40510, {"CREATE INDEX WHERE"});
    ObjectPtr table = indexedTable(session, statement.table);
    Index index;
    index.name = statement.name;
    index.unique = statement.unique;
    index.clustered = statement.clustered;
    index.keys = resolveKey(session, *table, statement.name, statement.columns);
    index.included = includedColumns(*table, statement.included);
    index.filegroupId = statement.fileGroup.empty()
                            ? table->filegroupId
                            : filegroupOf(session, table->databaseId, statement.fileGroup);
    applyIndexOptions(index, statement.options);
    const Index* present = table->index(statement.name);
    const bool replaces = statement.options.dropExisting.value_or(false);
    if (present != nullptr && !replaces)
        raise(1913, {statement.name, plainName(statement.table)});
    if (present == nullptr && replaces)
        raise(7999, {statement.name, plainName(statement.table)});
    if (present != nullptr)
        table = replaceExisting(session, *table, *present, index);
    index.id = freeIndexId(*table, statement.clustered);
    createIndex(session, *table, index);
}

void alterIndex(SessionContext& session, const ast::AlterIndexStatement& statement)
{
    const ObjectPtr table = indexedTable(session, statement.table);
    if (!statement.all && table->index(statement.name) == nullptr)
        raise(2727, {statement.name});
    for (const Index& index : table->indexes) {
        if (statement.all || sameName(index.name, statement.name))
            changeIndex(session, *table, index, statement);
    }
}

void dropIndexes(SessionContext& session, const ast::DropIndexStatement& statement)
{
    forEachOf(session, statement.indexes,
              [&](const ast::DroppedIndex& index) { dropOne(session, index, statement.ifExists); });
}

} // namespace practice
