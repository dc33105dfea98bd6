// ALTER TABLE: columns and constraints added and dropped.
#include "engine/catalog/catalog_writer.h"
#include "engine/catalog/row_tables.h"
#include "engine/definition/ddl.h"
#include "engine/definition/ddl_alter.h"
#include "engine/definition/ddl_columns.h"
#include "engine/definition/ddl_constraints.h"
#include "engine/definition/ddl_indexes.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"
#include "engine/store/storage.h"

#include <algorithm>

namespace practice {
namespace {

bool hasRows(const TableChange& change)
{
    Statement row(change.session.connection(),
                  "SELECT 1 FROM " + storageTable(change.databaseId, change.tableId) + " LIMIT 1");
    return row.step();
}

bool isFilledByServer(const ast::ColumnDefinition& definition, const Column& column)
{
    const auto isDefault = [](const ast::TableConstraint& constraint) {
        return constraint.kind == ast::ConstraintKind::Default;
    };
    return column.identity || column.type.id == TypeId::Timestamp || column.computed ||
           std::any_of(definition.constraints.begin(), definition.constraints.end(), isDefault);
}

/// The new columns in catalog and store, still without values.
void addColumns(const TableChange& change, const ast::TableElements& elements)
{
    const ObjectPtr table = change.table();
    const DatabasePtr database = change.session.catalog().database(change.databaseId);
    const ColumnSetting setting{change.session, *database, table->name};
    const auto keys = primaryKeyColumns(elements);
    std::vector<Column> all = table->columns;
    int id = table->columns.empty() ? 0 : table->columns.back().id;
    for (const ast::ColumnDefinition& definition : elements.columns) {
        ++id;
        const bool key = keys.contains(foldName(definition.name));
        Column column = definition.computed ? defineComputedColumn(setting, *change.table(), definition, id)
                                            : defineColumn(setting, definition, id, key);
        all.push_back(column);
        requireCompatible(table->name, all);
        if (!column.nullable && !isFilledByServer(definition, column) && hasRows(change))
            raise(4901, {column.name, table->name});
        insertColumn(change.session.connection(), change.databaseId, change.tableId, column);
        if (!column.computed)
            execute(change.session.connection(), "ALTER TABLE " +
                                                     storageTable(change.databaseId, change.tableId) +
                                                     " ADD COLUMN " + columnDeclaration(column));
    }
}

void numberRows(const TableChange& change, const Column& column)
{
    const std::string table = storageTable(change.databaseId, change.tableId);
    const std::string seed = std::to_string(column.identity->seed);
    const std::string increment = std::to_string(column.identity->increment);
    execute(change.session.connection(),
            "UPDATE " + table + " SET " + storageColumn(column.id) +
                " = numbered.value FROM (SELECT rowid AS row, " + seed + " + " + increment +
                " * (row_number() OVER (ORDER BY rowid) - 1) AS value FROM " + table +
                ") AS numbered WHERE " + table + ".rowid = numbered.row");
    Statement count(change.session.connection(), "SELECT count(*) FROM " + table);
    count.step();
    if (const std::int64_t rows = count.integer(0); rows > 0)
        change.session.catalog().setLastIdentity(change.databaseId, change.tableId,
                                                 column.identity->seed +
                                                     column.identity->increment * (rows - 1));
}

bool wantsValues(const ast::ColumnDefinition& definition)
{
    return std::any_of(definition.constraints.begin(), definition.constraints.end(),
                       [](const ast::TableConstraint& constraint) { return constraint.withValues; });
}

/// Rows that stand already get identity values, row versions and, where they must or shall, defaults.
void fillColumns(const TableChange& change, const ast::TableElements& elements)
{
    const ObjectPtr table = change.table();
    const std::string storage = storageTable(change.databaseId, change.tableId);
    for (const ast::ColumnDefinition& definition : elements.columns) {
        const Column& column = *table->column(definition.name);
        if (column.identity) {
            numberRows(change, column);
        } else if (column.type.id == TypeId::Timestamp) {
            execute(change.session.connection(),
                    "UPDATE " + storage + " SET " + storageColumn(column.id) + " = randomblob(8)");
        } else if (column.defaultId != 0 && (!column.nullable || wantsValues(definition))) {
            const std::string value =
                change.session.translateScalar(nullptr, column.defaultText, column.type);
            std::string update = "UPDATE ";
            update.append(storage).append(" SET ").append(storageColumn(column.id));
            execute(change.session.connection(), update.append(" = ").append(value));
        }
    }
}

void add(const TableChange& change, const ast::TableElements& elements)
{
    addColumns(change, elements);
    addDefaults(change, elements);
    fillColumns(change, elements);
    addConstraints(change, elements);
    touchObject(change.session.connection(), change.databaseId, change.tableId);
}

[[noreturn]] void refuseConstraint(const TableChange& change, const Message& cause)
{
    raiseAfter(change.session, cause, 3727);
}

void dropKey(const TableChange& change, const Object& table, const Index& index)
{
    for (const ForeignKey& key : table.referencedBy) {
        if (key.referencedIndexId != index.id)
            continue;
        const ObjectPtr other = change.session.catalog().object(change.databaseId, key.tableId);
        refuseConstraint(change, makeMessage(3725, {index.name, other->name, key.name}));
    }
    dropIndex(change.session, table, index);
}

void clearDefault(const TableChange& change, const Object& table, int defaultId)
{
    for (Column column : table.columns) {
        if (column.defaultId != defaultId)
            continue;
        column.defaultId = 0;
        replaceColumn(change.session.connection(), change.databaseId, change.tableId, column);
    }
}

void dropConstraint(const TableChange& change, const ast::DropElement& element)
{
    const ObjectPtr table = change.table();
    const ObjectPtr constraint =
        change.session.catalog().object(change.databaseId, table->owner, element.name);
    const bool known = constraint && constraint->parentId != 0 && constraint->kind != ObjectKind::Trigger;
    if (!known && element.ifExists)
        return;
    if (!known)
        refuseConstraint(change, makeMessage(3728, {element.name}));
    if (constraint->parentId != change.tableId)
        refuseConstraint(change, makeMessage(3733, {element.name, table->name}));
    if (constraint->kind == ObjectKind::Default)
        clearDefault(change, *table, constraint->id);
    for (const Index& index : table->indexes) {
        if (index.constraintId == constraint->id)
            dropKey(change, *table, index);
    }
    deleteConstraintRows(change.session.connection(), change.databaseId, constraint->id);
    deleteObject(change.session.connection(), change.databaseId, constraint->id);
}

void dropColumn(const TableChange& change, const ast::DropElement& element)
{
    const ObjectPtr table = change.table();
    const Column* column = table->column(element.name);
    if (column == nullptr && element.ifExists)
        return;
    if (column == nullptr)
        raise(4924, {"DROP COLUMN", element.name, table->name});
    requireNoDependents(change.session, *column, "DROP COLUMN",
                        dependentsOf(change.session, *table, *column));
    const auto stored = std::count_if(table->columns.begin(), table->columns.end(),
                                      [](const Column& other) { return !other.computed; });
    if (stored == 1 && !column->computed)
        raise(4923, {column->name, table->name});
    deleteColumn(change.session.connection(), change.databaseId, change.tableId, column->id);
    if (!column->computed)
        execute(change.session.connection(), "ALTER TABLE " +
                                                 storageTable(change.databaseId, change.tableId) +
                                                 " DROP COLUMN " + storageColumn(column->id));
}

void dropElements(const TableChange& change, const std::vector<ast::DropElement>& elements)
{
    for (const ast::DropElement& element : elements) {
        if (element.column)
            dropColumn(change, element);
        else
            dropConstraint(change, element);
    }
    touchObject(change.session.connection(), change.databaseId, change.tableId);
}

void switchConstraint(const TableChange& change, const Object& table, int id, bool enable, bool check)
{
    Statement rows(change.session.connection(), "UPDATE cat_check SET enabled = ?1, trusted = ?2 "
                                                "WHERE dbid = ?3 AND constid = ?4");
    rows.bind(1, int(enable)).bind(2, int(enable && check)).bind(3, change.databaseId).bind(4, id).run();
    Statement keys(change.session.connection(), "UPDATE cat_reference SET enabled = ?1, trusted = ?2 "
                                                "WHERE dbid = ?3 AND constid = ?4");
    keys.bind(1, int(enable)).bind(2, int(enable && check)).bind(3, change.databaseId).bind(4, id).run();
    bumpCatalogVersion(change.session.connection());
    if (!enable || !check)
        return;
    for (const CheckConstraint& constraint : table.checks) {
        if (constraint.id == id)
            requireRowsSatisfyCheck(change, constraint);
    }
    for (const ForeignKey& key : table.foreignKeys) {
        if (key.id == id)
            requireRowsSatisfyKey(change, key);
    }
}

void switchConstraints(const TableChange& change, const ast::AlterTableStatement& statement)
{
    const ObjectPtr table = change.table();
    std::vector<std::pair<int, std::string>> constraints;
    for (const CheckConstraint& check : table->checks)
        constraints.emplace_back(check.id, check.name);
    for (const ForeignKey& key : table->foreignKeys)
        constraints.emplace_back(key.id, key.name);
    // Turning a constraint on looks at the rows only where WITH CHECK asks for it.
    const bool check = statement.withCheck.value_or(false);
    if (statement.all) {
        for (const auto& [id, name] : constraints)
            switchConstraint(change, *table, id, statement.enable, check);
        return;
    }
    for (const std::string& wanted : statement.names) {
        const auto found = std::find_if(constraints.begin(), constraints.end(),
                                        [&](const auto& entry) { return sameName(entry.second, wanted); });
        if (found == constraints.end())
            raiseAfter(change.session, makeMessage(4917, {wanted}), 4916);
        switchConstraint(change, *table, found->first, statement.enable, check);
    }
}

} // namespace

void alterTable(SessionContext& session, const ast::AlterTableStatement& statement)
{
    const ObjectPtr table = requireTable(session, statement.name, 4902);
    const TableChange change{session, table->databaseId, table->id, false,
                             statement.withCheck.value_or(true)};
    switch (statement.action) {
    case ast::AlterTableAction::Add:
        return add(change, statement.elements);
    case ast::AlterTableAction::AlterColumn:
        return alterColumn(change, statement);
    case ast::AlterTableAction::Drop:
        return dropElements(change, statement.drops);
    case ast::AlterTableAction::SwitchConstraints:
        return switchConstraints(change, statement);
    case ast::AlterTableAction::SwitchTriggers:
        // Tables here have none.
        if (!statement.names.empty())
            raise(4920, {statement.names.front(), table->name});
        return;
    }
}

} // namespace practice
