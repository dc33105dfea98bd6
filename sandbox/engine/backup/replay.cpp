#include "engine/backup/replay.h"

#include "engine/catalog/catalog.h"
#include "engine/catalog/catalog_load.h"
#include "engine/catalog/catalog_writer.h"
#include "engine/catalog/row_tables.h"
#include "engine/store/storage.h"

#include <algorithm>

namespace practice {
namespace {

void runAll(sqlite3* connection, const std::vector<std::string>& statements)
{
    for (const std::string& statement : statements)
        execute(connection, statement);
}

std::vector<std::string> allIndexes(const Object& table)
{
    std::vector<std::string> all;
    for (const Index& index : table.indexes) {
        for (std::string& statement : indexStatements(table, index))
            all.push_back(std::move(statement));
    }
    return all;
}

void dropTable(sqlite3* connection, const Object& table)
{
    execute(connection, "DROP TABLE IF EXISTS " + storageTable(table.databaseId, table.id));
}

bool hasColumn(sqlite3* connection, const std::string& table, const std::string& column)
{
    Statement known(connection, "SELECT 1 FROM pragma_table_info(?) WHERE name = ?");
    return known.bind(1, table).bind(2, column).step();
}

/// An INSERT for the columns of a catalog table as the set has them.
struct CatalogInsert
{
    Statement statement;
    std::size_t database = 0; ///< which of the columns is dbid
    std::size_t columns = 0;
    std::size_t name = 0; ///< of cat_database: which are its name and fold, `columns` for none
    std::size_t fold = 0;
};

CatalogInsert catalogInsert(sqlite3* connection, RecordReader& records)
{
    const auto known = databaseCatalogTables();
    const std::string table = records.text();
    const bool isKnown =
        std::any_of(known.begin(), known.end(), [&table](const char* name) { return table == name; });
    CatalogInsert insert;
    insert.columns = static_cast<std::size_t>(records.number());
    constexpr std::size_t mostColumns = 100;
    if (!isKnown || insert.columns > mostColumns)
        throw DamagedBackup{records.position()};
    std::string names;
    std::string marks;
    insert.database = insert.name = insert.fold = insert.columns;
    for (std::size_t i = 0; i < insert.columns; ++i) {
        const std::string column = records.text();
        if (!hasColumn(connection, table, column))
            throw DamagedBackup{records.position()};
        if (column == "dbid")
            insert.database = i;
        if (table == "cat_database" && column == "name")
            insert.name = i;
        if (table == "cat_database" && column == "fold")
            insert.fold = i;
        names += (i == 0 ? "" : ", ") + quotedName(column);
        marks += i == 0 ? "?" : ", ?";
    }
    if (insert.database == insert.columns)
        throw DamagedBackup{records.position()};
    insert.statement =
        Statement(connection, "INSERT INTO " + table + "(" + names + ") VALUES(" + marks + ")");
    return insert;
}

/// An INSERT of rows with their ids.
Statement rowInsert(sqlite3* connection, const Object& table, const std::vector<int>& columns)
{
    std::string names = "rowid";
    std::string marks = "?";
    for (const int column : columns) {
        names += ", " + storageColumn(column);
        marks += ", ?";
    }
    return {connection,
            "INSERT INTO " + storageTable(table.databaseId, table.id) + "(" + names + ") VALUES(" + marks +
                ")",
            true};
}

} // namespace

std::uint64_t Replay::run(RecordReader& records, SetKind kind, const std::function<void()>& afterRows)
{
    if (kind == SetKind::Full) {
        deleteDatabase(store_.connection(), target_.databaseId);
    } else {
        rememberTables();
        removeCatalog();
    }
    RecordKind next = replayCatalog(records);
    adjustIt();
    dropGoneTables();
    while (next == RecordKind::Table)
        next = replayTable(records, kind, afterRows);
    if (next != RecordKind::End)
        throw DamagedBackup{records.position()};
    bumpCatalogVersion(store_.connection());
    return rows_;
}

void Replay::rememberTables()
{
    Statement ids(store_.connection(),
                  "SELECT id FROM cat_object WHERE dbid = ? AND xtype = 'U' AND NOT shipped");
    ids.bind(1, target_.databaseId);
    while (ids.step())
        former_[ids.number(0)] = loadObject(store_.connection(), target_.databaseId, ids.number(0));
}

void Replay::removeCatalog()
{
    for (const char* table : databaseCatalogTables()) {
        Statement rows(store_.connection(), "DELETE FROM " + std::string(table) + " WHERE dbid = ?");
        rows.bind(1, target_.databaseId).run();
    }
}

RecordKind Replay::replayCatalog(RecordReader& records)
{
    CatalogInsert insert;
    std::vector<StoredValue> values;
    for (;;) {
        const RecordKind kind = records.kind();
        if (kind == RecordKind::Catalog) {
            insert = catalogInsert(store_.connection(), records);
            values.resize(insert.columns);
        } else if (kind == RecordKind::Entry && insert.statement) {
            records.values(values);
            for (std::size_t i = 0; i < values.size(); ++i)
                bindStored(insert.statement.handle(), static_cast<int>(i) + 1, values[i]);
            insert.statement.bind(static_cast<int>(insert.database) + 1, target_.databaseId);
            if (insert.name < insert.columns)
                insert.statement.bind(static_cast<int>(insert.name) + 1, target_.name);
            if (insert.fold < insert.columns)
                insert.statement.bind(static_cast<int>(insert.fold) + 1, foldName(target_.name));
            insert.statement.run();
        } else {
            return kind;
        }
    }
}

/// What a set says about its database is said about the one that it is restored to, but for the name,
/// the owner, the places of the files, and whether it is in use.
void Replay::adjustIt()
{
    Statement database(store_.connection(),
                       "UPDATE cat_database SET sid = ?1, options = (options & ~?2) | ?3 WHERE dbid = ?4");
    database.bindBlob(1, target_.ownerSid.data(), target_.ownerSid.size());
    database.bind(2, std::int64_t{Offline | Restoring});
    database.bind(3, std::int64_t{target_.restoring ? Restoring : 0U});
    database.bind(4, target_.databaseId).run();
    if (sqlite3_changes(store_.connection()) != 1)
        throw DamagedBackup{};
    Statement owner(store_.connection(), "UPDATE cat_user SET sid = ? WHERE dbid = ? AND uid = 1");
    owner.bindBlob(1, target_.ownerSid.data(), target_.ownerSid.size()).bind(2, target_.databaseId).run();
    Statement file(store_.connection(), "UPDATE cat_file SET filename = ? WHERE dbid = ? AND fileid = ?");
    for (const auto& [id, path] : target_.paths)
        file.bind(1, path).bind(2, target_.databaseId).bind(3, id).run();
    bumpCatalogVersion(store_.connection());
}

void Replay::dropGoneTables()
{
    std::erase_if(former_, [this](const auto& entry) {
        const ObjectPtr now = loadObject(store_.connection(), target_.databaseId, entry.first);
        if (now && now->kind == ObjectKind::UserTable)
            return false;
        dropTable(store_.connection(), *entry.second);
        return true;
    });
}

/// Keeps the rows that stand when they may lie beside those of the set.
void Replay::prepareTable(const Object& table, const std::string& shape)
{
    const auto former = former_.find(table.id);
    if (former != former_.end() && shapeOf(*former->second) == shape)
        return;
    if (former != former_.end()) {
        dropTable(store_.connection(), *former->second);
        former_.erase(former);
    }
    execute(store_.connection(), tableStatement(table));
}

void Replay::dropIndexes(int tableId)
{
    const auto former = former_.find(tableId);
    if (former == former_.end())
        return;
    for (const Index& index : former->second->indexes)
        runAll(store_.connection(), dropIndexStatements(*former->second, index));
    former_.erase(former);
}

void Replay::makeIndexes(const Object& table)
{
    const std::vector<std::string> wanted = allIndexes(table);
    const auto former = former_.find(table.id);
    if (former != former_.end() && allIndexes(*former->second) == wanted)
        return;
    dropIndexes(table.id);
    runAll(store_.connection(), wanted);
}

RecordKind Replay::replayTable(RecordReader& records, SetKind kind, const std::function<void()>& afterRows)
{
    const auto id = static_cast<int>(records.integer());
    const std::string shape = records.text();
    const ObjectPtr table = loadObject(store_.connection(), target_.databaseId, id);
    if (!table || table->kind != ObjectKind::UserTable || shapeOf(*table) != shape)
        throw DamagedBackup{records.position()};
    std::vector<int> columns(storedColumns(*table).size());
    if (records.number() != columns.size())
        throw DamagedBackup{records.position()};
    for (int& column : columns)
        column = static_cast<int>(records.integer());
    if (columns != storedColumns(*table))
        throw DamagedBackup{records.position()};
    prepareTable(*table, shape);
    Statement insert = rowInsert(store_.connection(), *table, columns);
    Statement remove(store_.connection(),
                     "DELETE FROM " + storageTable(target_.databaseId, id) + " WHERE rowid BETWEEN ? AND ?");
    std::vector<StoredValue> values(columns.size());
    RecordKind next = records.kind();
    for (; next == RecordKind::Row || next == RecordKind::Chunk; next = records.kind()) {
        const std::int64_t number = records.integer();
        if (next == RecordKind::Chunk) {
            if (kind == SetKind::Full)
                throw DamagedBackup{records.position()};
            dropIndexes(id);
            remove.bind(1, number << chunkBits).bind(2, (number << chunkBits) | ((1 << chunkBits) - 1)).run();
            afterRows();
            continue;
        }
        insert.bind(1, number);
        records.values(values);
        for (std::size_t i = 0; i < values.size(); ++i)
            bindStored(insert.handle(), static_cast<int>(i) + 2, values[i]);
        insert.run();
        if (++rows_ % (1U << chunkBits) == 0)
            afterRows();
    }
    makeIndexes(*table);
    return next;
}

} // namespace practice
