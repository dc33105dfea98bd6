#include "engine/catalog/catalog_load.h"

#include "engine/store/store.h"

#include <array>
#include <utility>

namespace practice {
namespace {

constexpr std::array<std::pair<TypeId, int>, 30> typeNumbers{{
    {TypeId::Image, 34},
    {TypeId::Text, 35},
    {TypeId::UniqueIdentifier, 36},
    {TypeId::Date, 40},
    {TypeId::Time, 41},
    {TypeId::DateTime2, 42},
    {TypeId::DateTimeOffset, 43},
    {TypeId::TinyInt, 48},
    {TypeId::SmallInt, 52},
    {TypeId::Int, 56},
    {TypeId::SmallDateTime, 58},
    {TypeId::Real, 59},
    {TypeId::Money, 60},
    {TypeId::DateTime, 61},
    {TypeId::Float, 62},
    {TypeId::SqlVariant, 98},
    {TypeId::NText, 99},
    {TypeId::Bit, 104},
    {TypeId::Decimal, 106},
    {TypeId::Numeric, 108},
    {TypeId::SmallMoney, 122},
    {TypeId::BigInt, 127},
    {TypeId::VarBinary, 165},
    {TypeId::VarChar, 167},
    {TypeId::Binary, 173},
    {TypeId::Char, 175},
    {TypeId::Timestamp, 189},
    {TypeId::NVarChar, 231},
    {TypeId::NChar, 239},
    {TypeId::Xml, 241},
}};

void loadColumns(sqlite3* connection, Object& object)
{
    Statement rows(
        connection,
        "SELECT k.colid, k.name, k.xtype, k.length, k.prec, k.scale, k.nullable, k.rowguid, k.padded, "
        "k.collation, k.usertype, k.seed, k.increment, k.notrepl, k.defaultid, k.computed, k.output, "
        "d.name, t.text FROM cat_column k "
        "LEFT JOIN cat_object d ON d.dbid = k.dbid AND d.id = k.defaultid "
        "LEFT JOIN cat_comment t ON t.dbid = k.dbid AND t.id = k.defaultid "
        "WHERE k.dbid = ? AND k.id = ? ORDER BY k.colid");
    rows.bind(1, object.databaseId).bind(2, object.id);
    while (rows.step()) {
        const SqlType type{typeOfNumber(rows.number(2)), rows.number(3), std::uint8_t(rows.number(4)),
                           std::uint8_t(rows.number(5))};
        if (rows.text(1).starts_with('@')) {
            object.parameters.push_back({rows.string(1), type, rows.number(16) != 0});
            continue;
        }
        Column column;
        column.id = rows.number(0);
        column.name = rows.string(1);
        column.type = type;
        column.nullable = rows.number(6) != 0;
        column.rowGuid = rows.number(7) != 0;
        column.ansiPadded = rows.number(8) != 0;
        column.collation = rows.string(9);
        column.userType = rows.string(10);
        if (!rows.isNull(11))
            column.identity = Identity{rows.integer(11), rows.integer(12), rows.number(13) != 0};
        column.defaultId = rows.number(14);
        if (!rows.isNull(15))
            column.computed = rows.string(15);
        column.defaultName = rows.string(17);
        column.defaultText = rows.string(18);
        object.columns.push_back(std::move(column));
    }
}

void loadIndexes(sqlite3* connection, Object& object)
{
    Statement rows(connection,
                   "SELECT indid, name, uniq, kind, ignoredup, padded, norecompute, enabled, fillfactor, "
                   "groupid, constid FROM cat_index WHERE dbid = ? AND id = ? ORDER BY indid");
    rows.bind(1, object.databaseId).bind(2, object.id);
    while (rows.step()) {
        Index index;
        index.id = rows.number(0);
        index.name = rows.string(1);
        index.unique = rows.number(2) != 0;
        index.clustered = index.id == 1;
        index.primaryKey = rows.text(3) == "P";
        index.uniqueConstraint = rows.text(3) == "U";
        index.ignoreDuplicates = rows.number(4) != 0;
        index.padded = rows.number(5) != 0;
        index.noRecompute = rows.number(6) != 0;
        index.enabled = rows.number(7) != 0;
        index.fillFactor = rows.number(8);
        index.filegroupId = rows.number(9);
        index.constraintId = rows.number(10);
        object.indexes.push_back(std::move(index));
    }
    for (Index& index : object.indexes) {
        Statement keys(connection, "SELECT colid, descending, included FROM cat_index_key "
                                   "WHERE dbid = ? AND id = ? AND indid = ? ORDER BY keyno");
        keys.bind(1, object.databaseId).bind(2, object.id).bind(3, index.id);
        while (keys.step()) {
            if (keys.number(2) != 0)
                index.included.push_back(keys.number(0));
            else
                index.keys.push_back({keys.number(0), keys.number(1) != 0});
        }
    }
}

void loadChecks(sqlite3* connection, Object& object)
{
    Statement rows(connection,
                   "SELECT c.constid, o.name, t.text, c.colid, c.enabled, c.notrepl FROM cat_check c "
                   "JOIN cat_object o ON o.dbid = c.dbid AND o.id = c.constid "
                   "JOIN cat_comment t ON t.dbid = c.dbid AND t.id = c.constid "
                   "WHERE c.dbid = ? AND c.id = ? ORDER BY c.constid");
    rows.bind(1, object.databaseId).bind(2, object.id);
    while (rows.step()) {
        object.checks.push_back({rows.number(0), rows.string(1), rows.string(2), rows.number(3),
                                 rows.number(4) != 0, rows.number(5) != 0});
    }
}

std::vector<ForeignKey> loadReferences(sqlite3* connection, const Object& object, const char* side)
{
    Statement rows(
        connection,
        std::string("SELECT r.constid, o.name, r.fkeyid, r.rkeyid, r.rkeyindid, r.ondelete, r.onupdate, "
                    "r.enabled, r.trusted, r.notrepl FROM cat_reference r "
                    "JOIN cat_object o ON o.dbid = r.dbid AND o.id = r.constid WHERE r.dbid = ? AND r.") +
            side + " = ? ORDER BY o.created, r.constid");
    rows.bind(1, object.databaseId).bind(2, object.id);
    std::vector<ForeignKey> keys;
    while (rows.step()) {
        ForeignKey key;
        key.id = rows.number(0);
        key.name = rows.string(1);
        key.tableId = rows.number(2);
        key.referencedId = rows.number(3);
        key.referencedIndexId = rows.number(4);
        key.onDelete = ReferentialAction(rows.number(5));
        key.onUpdate = ReferentialAction(rows.number(6));
        key.enabled = rows.number(7) != 0;
        key.trusted = rows.number(8) != 0;
        key.notForReplication = rows.number(9) != 0;
        keys.push_back(std::move(key));
    }
    for (ForeignKey& key : keys) {
        Statement columns(connection, "SELECT fcolid, rcolid FROM cat_reference_column "
                                      "WHERE dbid = ? AND constid = ? ORDER BY keyno");
        columns.bind(1, object.databaseId).bind(2, key.id);
        while (columns.step()) {
            key.columns.push_back(columns.number(0));
            key.referencedColumns.push_back(columns.number(1));
        }
    }
    return keys;
}

void loadTable(sqlite3* connection, Object& object)
{
    loadIndexes(connection, object);
    loadChecks(connection, object);
    object.foreignKeys = loadReferences(connection, object, "fkeyid");
    object.referencedBy = loadReferences(connection, object, "rkeyid");
}

void loadText(sqlite3* connection, Object& object)
{
    Statement row(connection, "SELECT text FROM cat_comment WHERE dbid = ? AND id = ?");
    if (row.bind(1, object.databaseId).bind(2, object.id).step())
        object.text = row.string(0);
}

} // namespace

int xtypeNumber(TypeId type)
{
    for (const auto& [id, number] : typeNumbers) {
        if (id == type)
            return number;
    }
    return xtypeNumber(TypeId::Int); // a bare NULL
}

TypeId typeOfNumber(int xtype)
{
    for (const auto& [id, number] : typeNumbers) {
        if (number == xtype)
            return id;
    }
    return TypeId::Null;
}

DatabasePtr loadDatabase(sqlite3* connection, int id)
{
    Statement row(
        connection,
        "SELECT d.name, coalesce(l.name, ''), d.collation, d.level, d.options, d.recovery, d.access, "
        "d.created FROM cat_database d LEFT JOIN cat_login l ON l.sid = d.sid WHERE d.dbid = ?");
    if (!row.bind(1, id).step())
        return nullptr;
    auto database = std::make_shared<Database>();
    database->id = id;
    database->name = row.string(0);
    database->owner = row.string(1);
    database->collation = row.string(2);
    database->compatibilityLevel = row.number(3);
    database->options = DatabaseOptions(row.integer(4));
    database->recovery = RecoveryModel(row.number(5));
    database->access = UserAccess(row.number(6));
    database->created = row.integer(7);
    return database;
}

ObjectPtr loadObject(sqlite3* connection, int databaseId, int objectId)
{
    Statement row(connection, "SELECT o.name, o.uid, u.name, o.xtype, o.parent, o.created, o.groupid, "
                              "o.quoted, o.ansinulls, o.dbid, o.shipped, o.disabled "
                              "FROM cat_object o LEFT JOIN cat_user u ON u.dbid = ?1 AND u.uid = o.uid "
                              "WHERE o.dbid IN (?1, 0) AND o.id = ?2");
    if (!row.bind(1, databaseId).bind(2, objectId).step())
        return nullptr;
    const auto kind = kindOfXtype(row.string(3));
    if (!kind)
        return nullptr;
    auto object = std::make_shared<Object>();
    object->databaseId = row.number(9);
    object->id = objectId;
    object->name = row.string(0);
    object->ownerId = row.number(1);
    object->owner = row.string(2);
    object->kind = *kind;
    object->parentId = row.number(4);
    object->created = row.integer(5);
    object->filegroupId = row.number(6);
    object->quotedIdentifier = row.number(7) != 0;
    object->ansiNulls = row.number(8) != 0;
    object->shipped = row.number(10) != 0;
    object->enabled = row.number(11) == 0;
    loadColumns(connection, *object);
    if (object->kind == ObjectKind::UserTable)
        loadTable(connection, *object);
    loadText(connection, *object);
    object->databaseId = databaseId;
    return object;
}

} // namespace practice
