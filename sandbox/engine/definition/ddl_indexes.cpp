#include "engine/definition/ddl_indexes.h"

#include "engine/catalog/catalog_writer.h"
#include "engine/catalog/row_tables.h"
#include "engine/definition/ddl_constraints.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"
#include "engine/store/storage.h"
#include "types/conversion.h"

#include <algorithm>
#include <set>

namespace practice {
namespace {

constexpr int maximumKeys = 16;
constexpr int maximumKeyBytes = 900;
constexpr int lastIndexId = 250;

bool canBeKey(const Column& column)
{
    const bool unbounded = column.type.length == maxLength;
    return !isLegacyLob(column.type.id) && column.type.id != TypeId::Xml && !unbounded;
}

int bytesOf(const SqlType& type)
{
    return isUnicode(type.id) ? 2 * type.length : type.length;
}

bool isVariable(TypeId id)
{
    return id == TypeId::VarChar || id == TypeId::NVarChar || id == TypeId::VarBinary;
}

void checkKeyLength(SessionContext& session, const Object& table, const std::string& indexName,
                    const std::vector<IndexKey>& keys)
{
    int least = 0;
    int most = 0;
    for (const IndexKey& key : keys) {
        const SqlType& type = table.column(key.columnId)->type;
        most += bytesOf(type);
        least += isVariable(type.id) ? 0 : bytesOf(type);
    }
    const std::string limit = std::to_string(maximumKeyBytes);
    if (least > maximumKeyBytes)
        raise(1944, {indexName, std::to_string(least), limit});
    if (most > maximumKeyBytes)
        session.inform(1945, {limit, indexName, std::to_string(most)});
}

/// "(7, <NULL>)": the values of the first key that rows share, or nothing.
std::optional<std::string> duplicateKey(sqlite3* connection, const Object& table, const Index& index)
{
    std::string list;
    for (const IndexKey& key : index.keys)
        list += (list.empty() ? "" : ", ") + storageColumn(key.columnId);
    Statement rows(connection, "SELECT " + list + " FROM " + storageTable(table.databaseId, table.id) +
                                   " GROUP BY " + list + " HAVING count(*) > 1 LIMIT 1");
    if (!rows.step())
        return std::nullopt;
    std::string values;
    for (std::size_t i = 0; i < index.keys.size(); ++i) {
        const SqlType& type = table.column(index.keys[i].columnId)->type;
        Value value;
        decodeColumn(rows.handle(), int(i), type, value);
        values += (i == 0 ? "" : ", ") + (value.isNull() ? "<NULL>" : toText(value, type));
    }
    return values;
}

void refuseDuplicates(sqlite3* connection, const Object& table, const Index& index)
{
    if (const auto values = duplicateKey(connection, table, index))
        raise(1505, {table.owner + '.' + table.name, index.name, *values});
}

Index keyIndex(const TableChange& change, const Object& table, const ast::TableConstraint& constraint,
               std::vector<IndexKey> keys)
{
    Index index;
    index.unique = true;
    index.primaryKey = constraint.kind == ast::ConstraintKind::PrimaryKey;
    index.uniqueConstraint = !index.primaryKey;
    const bool free = table.index(1) == nullptr;
    index.clustered = constraint.clustered.value_or(index.primaryKey && free);
    if (index.clustered && !free && change.creating)
        raise(8112, {table.name});
    index.id = freeIndexId(table, index.clustered);
    index.keys = std::move(keys);
    const std::string& group = constraint.fileGroup;
    index.filegroupId =
        group.empty() ? table.filegroupId : filegroupOf(change.session, change.databaseId, group);
    applyIndexOptions(index, constraint.options);
    return index;
}

void requireNotNull(const TableChange& change, const Object& table, const std::vector<IndexKey>& keys)
{
    const bool nullable = std::any_of(
        keys.begin(), keys.end(), [&](const IndexKey& key) { return table.column(key.columnId)->nullable; });
    if (nullable)
        raiseAfter(change.session, makeMessage(8111, {table.name}), 1750);
}

} // namespace

std::vector<IndexKey> resolveKey(SessionContext& session, const Object& table, const std::string& indexName,
                                 const std::vector<ast::IndexColumn>& columns)
{
    if (columns.size() > maximumKeys)
        raise(1904, {indexName, table.name, std::to_string(columns.size()), std::to_string(maximumKeys)});
    std::vector<IndexKey> keys;
    std::set<int> seen;
    for (const ast::IndexColumn& part : columns) {
        const Column* column = table.column(part.name);
        if (column == nullptr)
            raise(1911, {part.name});
        if (!seen.insert(column->id).second)
            raise(1909, {part.name});
        if (!canBeKey(*column))
            raise(1919, {column->name, table.name});
        keys.push_back({column->id, part.descending});
    }
    checkKeyLength(session, table, indexName, keys);
    return keys;
}

int freeIndexId(const Object& table, bool clustered)
{
    if (clustered) {
        if (const Index* present = table.index(1))
            raise(1902, {table.name, present->name});
        return 1;
    }
    int id = 2;
    while (table.index(id) != nullptr)
        ++id;
    if (id > lastIndexId)
        raise(1910, {std::to_string(lastIndexId - 1), table.name});
    return id;
}

void applyIndexOptions(Index& index, const ast::IndexOptions& options)
{
    if (options.fillFactor) {
        if (*options.fillFactor < 1 || *options.fillFactor > 100)
            raise(129, {std::to_string(*options.fillFactor)});
        index.fillFactor = *options.fillFactor;
    }
    index.padded = options.padIndex.value_or(index.padded);
    index.noRecompute = options.statisticsNoRecompute.value_or(index.noRecompute);
    index.ignoreDuplicates = options.ignoreDuplicateKey.value_or(index.ignoreDuplicates);
    if (index.ignoreDuplicates && !index.unique)
        raise(1916, {"nonunique", "ignore_dup_key"});
}

void createIndex(SessionContext& session, const Object& table, const Index& index)
{
    insertIndex(session.connection(), table.databaseId, table.id, index);
    buildIndex(session, table, index);
}

void buildIndex(SessionContext& session, const Object& table, const Index& index)
{
    if (index.unique && index.ignoreDuplicates)
        refuseDuplicates(session.connection(), table, index);
    try {
        for (const std::string& sql : indexStatements(table, index))
            execute(session.connection(), sql);
    } catch (const StoreError&) {
        refuseDuplicates(session.connection(), table, index);
        throw;
    }
}

void dropIndex(SessionContext& session, const Object& table, const Index& index)
{
    for (const std::string& sql : dropIndexStatements(table, index))
        execute(session.connection(), sql);
    deleteIndex(session.connection(), table.databaseId, table.id, index.id);
}

void addKey(const TableChange& change, const ast::TableConstraint& constraint,
            std::vector<ast::IndexColumn> columns)
{
    const ObjectPtr table = change.table();
    const bool primary = constraint.kind == ast::ConstraintKind::PrimaryKey;
    if (primary && table->primaryKey() != nullptr) {
        if (change.creating)
            raise(8110, {table->name});
        raiseAfter(change.session, makeMessage(1779, {table->name}), 1750);
    }
    try {
        std::vector<IndexKey> keys = resolveKey(change.session, *table, constraint.name, columns);
        if (primary)
            requireNotNull(change, *table, keys);
        Index index = keyIndex(change, *table, constraint, std::move(keys));
        const auto kind = primary ? ObjectKind::PrimaryKey : ObjectKind::UniqueConstraint;
        const std::string& part = columns.size() == 1 && !primary ? columns.front().name : std::string();
        index.constraintId = insertConstraintObject(change, kind, constraint.name, part);
        index.name = change.session.catalog().object(change.databaseId, index.constraintId)->name;
        createIndex(change.session, *table, index);
    } catch (const SqlError& error) {
        if (error.message.number == 1750 || error.message.number == 8112)
            throw;
        raiseAfter(change.session, error.message, 1750);
    }
}

} // namespace practice
