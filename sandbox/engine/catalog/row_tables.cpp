#include "engine/catalog/row_tables.h"

#include "engine/store/storage.h"

namespace practice {
namespace {

/// Stands in a unique index for NULL: a value of another kind than the column's own.
std::string keyWithoutNull(const Column& column)
{
    const bool blob = storageClass(column.type) == StorageClass::Blob;
    return "ifnull(" + storageColumn(column.id) + (blob ? ",0)" : ",x'')");
}

} // namespace

std::string columnDeclaration(const Column& column)
{
    std::string name = storageColumn(column.id);
    switch (storageClass(column.type)) {
    case StorageClass::Integer:
        return name + " INTEGER";
    case StorageClass::Real:
        return name + " REAL";
    case StorageClass::Text:
        return name + " TEXT COLLATE " +
               quotedName(column.collation.empty() ? defaultCollation : column.collation);
    case StorageClass::Blob:
        return name + " BLOB";
    }
    return name;
}

std::string tableStatement(const Object& table)
{
    std::string columns;
    for (const Column& column : table.columns) {
        if (!column.computed)
            columns += (columns.empty() ? "" : ", ") + columnDeclaration(column);
    }
    return "CREATE TABLE " + storageTable(table.databaseId, table.id) + " (" + columns + ")";
}

std::vector<std::string> indexStatements(const Object& table, const Index& index)
{
    const std::string name = storageIndex(table.databaseId, table.id, index.id);
    const std::string target = " ON " + storageTable(table.databaseId, table.id) + " (";
    std::string keys;
    std::string keysWithoutNull;
    std::string anyNull;
    for (const IndexKey& key : index.keys) {
        const Column* column = table.column(key.columnId);
        if (column == nullptr || column->computed)
            return {};
        const char* comma = keys.empty() ? "" : ", ";
        keys += comma + storageColumn(key.columnId) + (key.descending ? " DESC" : "");
        keysWithoutNull += comma + keyWithoutNull(*column);
        if (column->nullable)
            anyNull += (anyNull.empty() ? "" : " OR ") + storageColumn(key.columnId) + " IS NULL";
    }
    const bool unique = index.unique && !index.ignoreDuplicates;
    std::vector<std::string> statements = {std::string("CREATE ") + (unique ? "UNIQUE " : "") + "INDEX " +
                                           name + target + keys + ")"};
    if (unique && !anyNull.empty())
        statements.push_back("CREATE UNIQUE INDEX " + name + "n" + target + keysWithoutNull + ") WHERE " +
                             anyNull);
    return statements;
}

std::vector<std::string> dropIndexStatements(const Object& table, const Index& index)
{
    const std::string name = storageIndex(table.databaseId, table.id, index.id);
    return {"DROP INDEX IF EXISTS " + name, "DROP INDEX IF EXISTS " + name + "n"};
}

} // namespace practice
