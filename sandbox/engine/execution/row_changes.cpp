#include "engine/execution/row_changes.h"

#include "engine/messages/errors.h"

#include <algorithm>

namespace practice {

namespace {

std::string storedName(const Object& table)
{
    return storageTable(table.databaseId, table.id);
}

bool contains(const std::vector<int>& columns, int id)
{
    return std::find(columns.begin(), columns.end(), id) != columns.end();
}

using KeyValues = std::vector<HeldValue>;

std::string columnList(const std::vector<int>& columns)
{
    std::string list;
    for (const int id : columns)
        list += (list.empty() ? "" : ", ") + storageColumn(id);
    return list;
}

std::string matchList(const std::vector<int>& columns, const char* comparison)
{
    std::string list;
    for (std::size_t i = 0; i < columns.size(); ++i)
        list +=
            (i == 0 ? "" : " AND ") + storageColumn(columns[i]) + comparison + "?" + std::to_string(i + 1);
    return list;
}

void bindKey(Statement& statement, const KeyValues& key, int first = 1)
{
    for (std::size_t i = 0; i < key.size(); ++i)
        sqlite3_bind_value(statement.handle(), first + static_cast<int>(i), key[i].get());
}

/// The values of some columns in some rows.
std::vector<KeyValues> readKeys(SessionState& session, const Object& table, const std::vector<int>& columns,
                                const std::vector<std::int64_t>& rows)
{
    Statement read(session.connection(),
                   "SELECT " + columnList(columns) + " FROM " + storedName(table) + " WHERE rowid = ?1");
    std::vector<KeyValues> keys;
    for (const std::int64_t row : rows) {
        read.bind(1, row);
        KeyValues key;
        if (read.step()) {
            for (std::size_t i = 0; i < columns.size(); ++i)
                key.emplace_back(sqlite3_value_dup(sqlite3_column_value(read.handle(), static_cast<int>(i))));
        }
        read.reset();
        const bool complete = std::none_of(key.begin(), key.end(), [](const HeldValue& value) {
            return sqlite3_value_type(value.get()) == SQLITE_NULL;
        });
        if (!key.empty() && complete)
            keys.push_back(std::move(key));
    }
    return keys;
}

TableTest::Constraint referenceConstraint(SessionState& session, const ForeignKey& key, const Object& child)
{
    const bool own = key.tableId == key.referencedId;
    const Column* column = key.columns.size() == 1 ? child.column(key.columns.front()) : nullptr;
    return {own ? "SAME TABLE REFERENCE" : "REFERENCE", key.name, databaseNameOf(session, child),
            ownerName(session, child), column == nullptr ? std::string() : column->name};
}

std::vector<std::int64_t> rowsWithKey(SessionState& session, const Object& child,
                                      const std::vector<int>& columns, const KeyValues& key)
{
    Statement find(session.connection(),
                   "SELECT rowid FROM " + storedName(child) + " WHERE " + matchList(columns, " = "));
    bindKey(find, key);
    std::vector<std::int64_t> rows;
    while (find.step())
        rows.push_back(find.integer(0));
    return rows;
}

bool exists(SessionState& session, const Object& table, const std::vector<int>& columns, const KeyValues& key)
{
    Statement find(session.connection(),
                   "SELECT 1 FROM " + storedName(table) + " WHERE " + matchList(columns, " = ") + " LIMIT 1");
    bindKey(find, key);
    return find.step();
}

HeldValue constantValue(SessionState& session, const Column& column, bool useDefault)
{
    const std::string text = useDefault && !column.defaultText.empty()
                                 ? session.translateScalar(nullptr, column.defaultText, column.type)
                                 : "NULL";
    Statement statement(session.connection(), "SELECT " + text);
    statement.step();
    return HeldValue(sqlite3_value_dup(sqlite3_column_value(statement.handle(), 0)));
}

/// What a referential action does to the rows that pointed at a key that is gone.
void follow(SessionState& session, const ForeignKey& key, const ObjectPtr& child, ReferentialAction action,
            const std::vector<std::int64_t>& rows, const KeyValues* newKey, const std::string& statement)
{
    if (rows.empty())
        return;
    if (action == ReferentialAction::NoAction)
        raiseBroken(statement, referenceConstraint(session, key, *child));
    if (action == ReferentialAction::Cascade && newKey == nullptr)
        return deleteRows(session, child, rows);
    std::vector<RowChange> changes;
    for (const std::int64_t row : rows) {
        RowChange change{row, {}};
        for (std::size_t i = 0; i < key.columns.size(); ++i) {
            if (action == ReferentialAction::Cascade)
                change.values.emplace_back(sqlite3_value_dup((*newKey)[i].get()));
            else
                change.values.push_back(constantValue(session, *child->column(key.columns[i]),
                                                      action == ReferentialAction::SetDefault));
        }
        changes.push_back(std::move(change));
    }
    updateRows(session, child, key.columns, changes, statement);
}

struct LeavingKeys
{
    const ForeignKey* reference;
    std::vector<KeyValues> keys;
};

std::vector<LeavingKeys> keysReferredTo(SessionState& session, const Object& table,
                                        const std::vector<std::int64_t>& rows,
                                        const std::vector<int>* changed)
{
    std::vector<LeavingKeys> leaving;
    for (const ForeignKey& reference : table.referencedBy) {
        const bool touched =
            changed == nullptr ||
            std::any_of(reference.referencedColumns.begin(), reference.referencedColumns.end(),
                        [changed](int id) { return contains(*changed, id); });
        if (reference.enabled && touched)
            leaving.push_back({&reference, readKeys(session, table, reference.referencedColumns, rows)});
    }
    return leaving;
}

} // namespace

void deleteRows(SessionState& session, const ObjectPtr& table, const std::vector<std::int64_t>& rows)
{
    const std::vector<LeavingKeys> leaving = keysReferredTo(session, *table, rows, nullptr);
    Statement remove(session.connection(), "DELETE FROM " + storedName(*table) + " WHERE rowid = ?1");
    for (const std::int64_t row : rows) {
        remove.bind(1, row);
        remove.run();
    }
    for (const LeavingKeys& gone : leaving) {
        const ObjectPtr child = session.catalog().object(table->databaseId, gone.reference->tableId);
        for (const KeyValues& key : gone.keys) {
            follow(session, *gone.reference, child, gone.reference->onDelete,
                   rowsWithKey(session, *child, gone.reference->columns, key), nullptr, "DELETE");
        }
    }
}

namespace {

std::vector<const Index*> uniqueIndexesOver(const Object& table, const std::vector<int>& columns)
{
    std::vector<const Index*> found;
    for (const Index& index : table.indexes) {
        const bool touched =
            std::any_of(index.keys.begin(), index.keys.end(),
                        [&columns](const IndexKey& key) { return contains(columns, key.columnId); });
        if (index.unique && touched)
            found.push_back(&index);
    }
    return found;
}

/// Values of another kind than any the columns hold, one for each row: they clear the way for keys
/// that move onto each other.
void setAside(SessionState& session, const Object& table, const std::vector<const Index*>& indexes,
              const std::vector<int>& columns, const std::vector<RowChange>& changes)
{
    std::string assignments;
    for (const Index* index : indexes) {
        for (const IndexKey& key : index->keys) {
            const Column* column = table.column(key.columnId);
            if (!contains(columns, key.columnId))
                continue;
            const bool blob = storageClass(column->type) == StorageClass::Blob;
            assignments += (assignments.empty() ? "" : ", ") + storageColumn(key.columnId) +
                           (blob ? " = 'row ' || rowid" : " = CAST('row ' || rowid AS BLOB)");
        }
    }
    Statement aside(session.connection(),
                    "UPDATE " + storedName(table) + " SET " + assignments + " WHERE rowid = ?1");
    for (const RowChange& change : changes) {
        aside.bind(1, change.row);
        aside.run();
    }
}

[[noreturn]] void explainDuplicate(SessionState& session, const Object& table, const Index& index,
                                   const std::vector<int>& columns, const RowChange& change)
{
    std::vector<Value> values;
    for (const IndexKey& key : index.keys) {
        const SqlType& type = table.column(key.columnId)->type;
        const auto at = std::find(columns.begin(), columns.end(), key.columnId);
        if (at != columns.end()) {
            values.push_back(
                decodeValue(change.values[static_cast<std::size_t>(at - columns.begin())].get(), type));
            continue;
        }
        Statement read(session.connection(), "SELECT " + storageColumn(key.columnId) + " FROM " +
                                                 storedName(table) + " WHERE rowid = ?1");
        read.bind(1, change.row);
        values.emplace_back();
        if (read.step())
            decodeColumn(read.handle(), 0, type, values.back());
    }
    raiseDuplicate(session, table, index, values);
}

void writeChanges(SessionState& session, const Object& table, const std::vector<int>& columns,
                  const std::vector<RowChange>& changes)
{
    std::string assignments;
    for (std::size_t i = 0; i < columns.size(); ++i)
        assignments += (i == 0 ? "" : ", ") + storageColumn(columns[i]) + " = ?" + std::to_string(i + 2);
    for (const Column& column : table.columns) {
        if (column.type.id == TypeId::Timestamp)
            assignments += (assignments.empty() ? "" : ", ") + storageColumn(column.id) + " = s_timestamp()";
    }
    Statement update(session.connection(),
                     "UPDATE " + storedName(table) + " SET " + assignments + " WHERE rowid = ?1");
    for (const RowChange& change : changes) {
        update.bind(1, change.row);
        bindKey(update, change.values, 2);
        try {
            update.run();
        } catch (const StoreError& failure) {
            const bool unique = failure.code == SQLITE_CONSTRAINT_UNIQUE;
            const Index* index = unique ? violatedIndex(table, failure.text) : nullptr;
            if (index == nullptr)
                throw;
            explainDuplicate(session, table, *index, columns, change);
        }
    }
}

void testChanges(SessionState& session, const ObjectPtr& table, const std::vector<int>& columns,
                 const std::vector<RowChange>& changes, const std::string& statement)
{
    const TableTest test = tableTest(session, table, &columns);
    if (test.empty())
        return;
    Statement check(session.connection(), "SELECT " + test.sql + " FROM " + storedName(*table) + " AS " +
                                              test.handle + " WHERE " + test.handle + ".rowid = ?" +
                                              std::to_string(test.slots.size() + 1));
    session.bindSlots(check.handle(), test.slots);
    for (const RowChange& change : changes) {
        check.bind(static_cast<int>(test.slots.size()) + 1, change.row);
        const bool broken = check.step() && !check.isNull(0);
        if (broken)
            raiseBroken(statement, test.constraints[static_cast<std::size_t>(check.number(0))]);
        check.reset();
    }
}

} // namespace

void updateRows(SessionState& session, const ObjectPtr& table, const std::vector<int>& columns,
                const std::vector<RowChange>& changes, const std::string& statement)
{
    std::vector<std::int64_t> rows;
    rows.reserve(changes.size());
    for (const RowChange& change : changes)
        rows.push_back(change.row);
    // Keys are paired with the rows one by one, so that a cascade knows which became which.
    struct MovedKey
    {
        const ForeignKey* reference;
        KeyValues before;
        std::int64_t row;
    };
    std::vector<MovedKey> moved;
    for (const std::int64_t row : rows) {
        for (LeavingKeys& leaving : keysReferredTo(session, *table, {row}, &columns)) {
            for (KeyValues& key : leaving.keys)
                moved.push_back({leaving.reference, std::move(key), row});
        }
    }
    const auto unique = uniqueIndexesOver(*table, columns);
    if (!unique.empty() && changes.size() > 1)
        setAside(session, *table, unique, columns, changes);
    writeChanges(session, *table, columns, changes);
    for (const MovedKey& key : moved) {
        const ForeignKey& reference = *key.reference;
        if (exists(session, *table, reference.referencedColumns, key.before))
            continue;
        const ObjectPtr child = session.catalog().object(table->databaseId, reference.tableId);
        auto after = readKeys(session, *table, reference.referencedColumns, {key.row});
        const KeyValues* newKey = after.empty() ? nullptr : &after.front();
        const bool cascade = reference.onUpdate == ReferentialAction::Cascade;
        follow(session, reference, child,
               cascade && newKey == nullptr ? ReferentialAction::SetNull : reference.onUpdate,
               rowsWithKey(session, *child, reference.columns, key.before), newKey, statement);
    }
    testChanges(session, table, columns, changes, statement);
}

} // namespace practice
