// ALTER TABLE ... ALTER COLUMN: the rows converted, and what holds a column.
#include "engine/catalog/catalog_writer.h"
#include "engine/catalog/row_tables.h"
#include "engine/definition/ddl_alter.h"
#include "engine/definition/ddl_columns.h"
#include "engine/definition/ddl_indexes.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"
#include "engine/store/storage.h"

#include <algorithm>

namespace practice {
namespace {

bool holds(const std::vector<int>& ids, int id)
{
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

bool holdsKey(const Index& index, int columnId)
{
    return holds(index.included, columnId) ||
           std::any_of(index.keys.begin(), index.keys.end(),
                       [&](const IndexKey& key) { return key.columnId == columnId; });
}

/// An expression names a column when it can't be bound without it.
template <typename Bind>
bool failsToBind(Bind bind)
{
    try {
        (void)bind();
        return false;
    } catch (const SqlError&) {
        return true;
    }
}

DependentKind kindOf(const Index& index)
{
    if (index.primaryKey)
        return DependentKind::Key;
    return index.uniqueConstraint ? DependentKind::Unique : DependentKind::Index;
}

bool isVariableLength(TypeId id)
{
    return id == TypeId::VarChar || id == TypeId::NVarChar || id == TypeId::VarBinary;
}

/// How a column is to change.
struct ColumnChange
{
    const Column& before;
    const Column& after;

    [[nodiscard]] bool none() const
    {
        return before.type == after.type && before.nullable == after.nullable &&
               sameName(before.collation, after.collation) && before.userType == after.userType;
    }
    [[nodiscard]] bool lengthOnly() const
    {
        return isVariableLength(before.type.id) && before.type.id == after.type.id &&
               sameName(before.collation, after.collation);
    }
    [[nodiscard]] bool grows() const
    {
        const bool wider = after.type.length == maxLength || after.type.length >= before.type.length;
        return lengthOnly() && wider && before.type.length != maxLength;
    }
    [[nodiscard]] bool forbidsNulls() const { return before.nullable && !after.nullable; }
    [[nodiscard]] bool onlyAllowsNulls() const
    {
        return before.type == after.type && !before.nullable && after.nullable &&
               sameName(before.collation, after.collation);
    }
    [[nodiscard]] bool sameKind() const { return before.type.id == after.type.id; }
};

/// Under an index or a UNIQUE constraint a column may come to allow NULLs, and a variable one may grow,
/// change its length under a CHECK, and keep its default while the kind of type stays.
bool tolerates(const Dependent& dependent, const ColumnChange& change)
{
    switch (dependent.kind) {
    case DependentKind::Index:
    case DependentKind::Unique:
        return change.onlyAllowsNulls() || (change.grows() && !change.forbidsNulls());
    case DependentKind::Check:
        return change.lengthOnly();
    case DependentKind::Default:
        return change.sameKind();
    default:
        return false;
    }
}

bool becomesLegacyLob(const Column& before, const Column& after)
{
    return isLegacyLob(after.type.id) && before.type.id != after.type.id && !isCharacter(before.type.id) &&
           !isBinary(before.type.id);
}

void requireAlterable(const Column& before, const Column& after)
{
    if (before.computed)
        raise(4928, {before.name, "COMPUTED"});
    if (before.type.id == TypeId::Timestamp)
        raise(4928, {before.name, "timestamp"});
    if (after.type.id == TypeId::Timestamp || becomesLegacyLob(before, after))
        raise(4927, {before.name, typeName(after.type.id)});
    const bool becomesMax = isVariableLength(after.type.id) && after.type.length == maxLength;
    if (isLegacyLob(before.type.id) && !becomesMax)
        raise(4928, {before.name, typeName(before.type.id)});
}

/// The column as the statement wants it. Identity, ROWGUIDCOL and the default stay.
Column redefine(const TableChange& change, const Object& table, const Column& before,
                const ast::ColumnDefinition& definition)
{
    const DatabasePtr database = change.session.catalog().database(change.databaseId);
    Column after = defineColumn({change.session, *database, table.name}, definition, before.id, false);
    after.name = before.name;
    after.rowGuid = before.rowGuid;
    after.defaultId = before.defaultId;
    after.identity = before.identity;
    if (after.identity && (!isExactNumeric(after.type.id) || isMoney(after.type.id) ||
                           after.type.scale != 0 || after.type.id == TypeId::Bit))
        raise(2749, {before.name});
    if (after.identity && after.nullable)
        raise(8147, {before.name, table.name});
    return after;
}

void requireNoNulls(const TableChange& change, const Object& table, const Column& column)
{
    Statement row(change.session.connection(), "SELECT 1 FROM " +
                                                   storageTable(change.databaseId, change.tableId) +
                                                   " WHERE " + storageColumn(column.id) + " IS NULL LIMIT 1");
    if (!row.step())
        return;
    const std::string database = change.session.catalog().database(change.databaseId)->name;
    raise(515, {column.name, database + '.' + table.owner + '.' + table.name, "UPDATE"});
}

/// The rows into a table of the new shape, which then takes the old one's name.
void rewriteTable(const TableChange& change, const Object& before, const Object& after, int columnId,
                  const std::string& converted)
{
    const std::string name = storageTable(change.databaseId, change.tableId);
    const std::string fresh = name + "_new";
    std::string statement = tableStatement(after);
    statement.replace(statement.find(name), name.size(), fresh);
    execute(change.session.connection(), statement);
    std::string columns = "rowid";
    std::string values = "rowid";
    for (const Column& column : before.columns) {
        if (column.computed)
            continue;
        columns += ", " + storageColumn(column.id);
        values += ", " + (column.id == columnId ? converted : storageColumn(column.id));
    }
    execute(change.session.connection(), "INSERT INTO " + fresh + " (" + columns + ") SELECT " + values +
                                             " FROM " + name + " ORDER BY rowid");
    execute(change.session.connection(), "DROP TABLE " + name);
    execute(change.session.connection(), "ALTER TABLE " + fresh + " RENAME TO " + name);
    for (const Index& index : after.indexes)
        buildIndex(change.session, after, index);
}

void convertRows(const TableChange& change, const Object& before, const Object& after, int columnId)
{
    const Column& from = *before.column(columnId);
    const Column& to = *after.column(columnId);
    const std::string name = storageColumn(columnId);
    const bool sameStorage = columnDeclaration(from) == columnDeclaration(to);
    if (sameStorage && (from.type == to.type || ColumnChange{from, to}.grows()))
        return;
    const std::string converted = change.session.convertExpression(name, from.type, to.type);
    if (!sameStorage)
        return rewriteTable(change, before, after, columnId, converted);
    execute(change.session.connection(), "UPDATE " + storageTable(change.databaseId, change.tableId) +
                                             " SET " + name + " = " + converted + " WHERE " + name +
                                             " IS NOT NULL");
}

/// ALTER COLUMN c ADD|DROP ROWGUIDCOL.
void alterProperty(const TableChange& change, const Object& table, Column column,
                   const ast::AlterTableStatement& statement)
{
    if (statement.columnProperty == "ROWGUIDCOL") {
        if (column.type.id != TypeId::UniqueIdentifier)
            raise(2761);
        column.rowGuid = statement.adds;
    }
    if (statement.columnProperty == "NOT FOR REPLICATION" && column.identity)
        column.identity->notForReplication = statement.adds;
    replaceColumn(change.session.connection(), change.databaseId, table.id, column);
}

} // namespace

std::vector<Dependent> dependentsOf(SessionContext& session, const Object& table, const Column& column)
{
    std::vector<Dependent> found;
    for (const Index& index : table.indexes) {
        if (holdsKey(index, column.id))
            found.push_back({kindOf(index), index.name});
    }
    for (const ForeignKey& key : table.foreignKeys) {
        if (holds(key.columns, column.id))
            found.push_back({DependentKind::ForeignKey, key.name});
    }
    for (const ForeignKey& key : table.referencedBy) {
        if (holds(key.referencedColumns, column.id))
            found.push_back({DependentKind::ForeignKey, key.name});
    }
    const Object rest = tableWithout(session, table, column.id);
    for (const CheckConstraint& check : table.checks) {
        if (failsToBind([&] { return session.translateCondition(rest, check.text); }))
            found.push_back({DependentKind::Check, check.name});
    }
    for (const Column& other : table.columns) {
        if (other.id != column.id && rest.column(other.id) == nullptr)
            found.push_back({DependentKind::Computed, other.name});
    }
    if (column.defaultId != 0)
        found.push_back({DependentKind::Default, column.defaultName});
    return found;
}

void requireNoDependents(SessionContext& session, const Column& column, const char* action,
                         const std::vector<Dependent>& dependents)
{
    if (dependents.empty())
        return;
    for (const Dependent& dependent : dependents) {
        const char* what = "object";
        if (dependent.kind == DependentKind::Index)
            what = "index";
        if (dependent.kind == DependentKind::Computed)
            what = "column";
        session.sendMessage(makeMessage(5074, {what, dependent.name, column.name}));
    }
    raise(4922, {action, column.name});
}

void alterColumn(const TableChange& change, const ast::AlterTableStatement& statement)
{
    const ObjectPtr table = change.table();
    const Column* before = table->column(statement.column.name);
    if (before == nullptr)
        raise(4924, {"ALTER COLUMN", statement.column.name, table->name});
    if (!statement.columnProperty.empty())
        return alterProperty(change, *table, *before, statement);
    const Column after = redefine(change, *table, *before, statement.column);
    requireAlterable(*before, after);
    const ColumnChange kind{*before, after};
    if (kind.none())
        return;
    std::vector<Dependent> dependents = dependentsOf(change.session, *table, *before);
    std::erase_if(dependents, [&](const Dependent& dependent) { return tolerates(dependent, kind); });
    requireNoDependents(change.session, *before, "ALTER COLUMN", dependents);
    if (!after.nullable)
        requireNoNulls(change, *table, *before);
    replaceColumn(change.session.connection(), change.databaseId, table->id, after);
    touchObject(change.session.connection(), change.databaseId, table->id);
    const ObjectPtr now = change.table();
    requireCompatible(table->name, now->columns);
    convertRows(change, *table, *now, before->id);
}

} // namespace practice
