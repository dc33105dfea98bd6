// What tells of objects: sp_help and its like.
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"
#include "engine/procedures/system_procedures.h"
#include "engine/store/storage.h"
#include "tsql/parser.h"

#include <algorithm>

namespace practice {
namespace {

/// The object that a procedure was asked about; in the current database only.
ObjectPtr requireObject(const ProcedureCall& call, const std::string& name)
{
    const ast::ObjectName parsed = parseObjectName(name);
    const DatabasePtr current = call.session().database();
    if (!parsed.database.empty() && !sameName(parsed.database, current->name))
        raise(15250);
    ObjectPtr object = parsed.empty() ? nullptr : findNamed(call.session(), parsed);
    if (!object)
        raise(15009, {name, current->name});
    return object;
}

std::string idOf(const Object& object)
{
    return std::to_string(object.id);
}

/// The name of a kind of object as spt_values has it: "user table".
constexpr const char* joinKind = " LEFT JOIN (SELECT substr(name, 1, 2) AS xtype, substr(name, 5) AS kind "
                                 "FROM sys_value WHERE type = 'O9T') v ON v.xtype = o.xtype ";

// sp_helptext ---------------------------------------------------------------------------------

/// Rows of at most 255 characters; a line keeps its line break.
std::vector<std::string> textLines(const std::string& text)
{
    constexpr std::size_t longest = 255;
    std::vector<std::string> lines;
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t lineBreak = text.find("\r\n", begin);
        std::size_t end = lineBreak == std::string::npos ? text.size() : lineBreak + 2;
        if (end - begin > longest) {
            end = begin + longest;
            while ((static_cast<unsigned char>(text[end]) & 0xC0U) == 0x80U)
                --end; // not within a character
        }
        lines.push_back(text.substr(begin, end - begin));
        begin = end;
    }
    return lines;
}

bool isEncrypted(const ProcedureCall& call, const Object& object)
{
    Statement row(call.session().connection(), "SELECT encrypted FROM cat_comment WHERE dbid = ? AND id = ?");
    return row.bind(1, object.databaseId).bind(2, object.id).step() && row.number(0) != 0;
}

int helpText(const ProcedureCall& call)
{
    const ObjectPtr object = requireObject(call, call.textOr(0, ""));
    if (object->text.empty())
        raise(15197, {call.textOr(0, "")});
    if (isEncrypted(call, *object)) {
        call.session().inform(15471);
        return 0;
    }
    std::string rows;
    int number = 0;
    for (const std::string& line : textLines(object->text))
        rows += (rows.empty() ? "(" : ", (") + std::to_string(++number) + ", " + quotedText(line) + ")";
    call.sendRows("Text nvarchar(255)? v.column2", "FROM (VALUES " + rows + ") v ORDER BY v.column1");
    return 0;
}

// sp_helpindex --------------------------------------------------------------------------------

std::string describeIndex(const Index& index, const std::string& filegroup)
{
    std::string text = index.clustered ? "clustered" : "nonclustered";
    if (index.ignoreDuplicates)
        text += ", ignore duplicate keys";
    if (index.unique)
        text += ", unique";
    if (index.primaryKey)
        text += ", primary key";
    if (index.uniqueConstraint)
        text += ", unique key";
    if (index.noRecompute)
        text += ", stats no recompute";
    return text + " located on " + filegroup;
}

std::string keyList(const Object& table, const Index& index)
{
    std::string keys;
    for (const IndexKey& key : index.keys)
        keys += (keys.empty() ? "" : ", ") + table.column(key.columnId)->name + (key.descending ? "(-)" : "");
    return keys;
}

std::string filegroupName(const ProcedureCall& call, int databaseId, int groupId)
{
    Statement row(call.session().connection(),
                  "SELECT name FROM cat_filegroup WHERE dbid = ? AND groupid = ?");
    row.bind(1, databaseId).bind(2, groupId).step();
    return row.string(0);
}

void sendIndexes(const ProcedureCall& call, const Object& table)
{
    if (table.indexes.empty()) {
        call.session().inform(15472);
        return;
    }
    std::string rows;
    for (const Index& index : table.indexes)
        rows += (rows.empty() ? "(" : ", (") + quotedText(index.name) + ", " +
                quotedText(describeIndex(index, filegroupName(call, table.databaseId, index.filegroupId))) +
                ", " + quotedText(keyList(table, index)) + ")";
    call.sendRows(R"(
index_name         sysname         v.column1
index_description  varchar(210)?   v.column2
index_keys         nvarchar(2078)? v.column3
)",
                  "FROM (VALUES " + rows + ") v ORDER BY v.column1 COLLATE \"" + defaultCollation + "\"");
}

int helpIndex(const ProcedureCall& call)
{
    const ObjectPtr object = requireObject(call, call.textOr(0, ""));
    sendIndexes(call, *object);
    return 0;
}

// sp_helpconstraint ---------------------------------------------------------------------------

struct ConstraintRow
{
    std::string type;
    std::string name;
    std::string onDelete = "(n/a)";
    std::string onUpdate = "(n/a)";
    std::string enabled = "(n/a)";
    std::string replication = "(n/a)";
    std::string keys;
};

const char* actionName(ReferentialAction action)
{
    switch (action) {
    case ReferentialAction::Cascade:
        return "Cascade";
    case ReferentialAction::SetNull:
        return "Set Null";
    case ReferentialAction::SetDefault:
        return "Set Default";
    case ReferentialAction::NoAction:
        break;
    }
    return "No Action";
}

std::string columnList(const Object& table, const std::vector<int>& columns)
{
    std::string list;
    for (const int id : columns)
        list += (list.empty() ? "" : ", ") + table.column(id)->name;
    return list;
}

std::vector<ConstraintRow> constraintsOf(const ProcedureCall& call, const Object& table)
{
    std::vector<ConstraintRow> rows;
    for (const Index& index : table.indexes) {
        if (index.constraintId == 0)
            continue;
        ConstraintRow row;
        row.type = std::string(index.primaryKey ? "PRIMARY KEY" : "UNIQUE") +
                   (index.clustered ? " (clustered)" : " (non-clustered)");
        row.name = index.name;
        row.keys = keyList(table, index);
        rows.push_back(std::move(row));
    }
    for (const ForeignKey& key : table.foreignKeys) {
        const ObjectPtr other = call.session().catalog().object(table.databaseId, key.referencedId);
        ConstraintRow row;
        row.type = "FOREIGN KEY";
        row.name = key.name;
        row.onDelete = actionName(key.onDelete);
        row.onUpdate = actionName(key.onUpdate);
        row.enabled = key.enabled ? "Enabled" : "Disabled";
        row.replication = key.notForReplication ? "Not_For_Replication" : "Is_For_Replication";
        row.keys = columnList(table, key.columns);
        rows.push_back(std::move(row));
        ConstraintRow reference;
        reference.type = reference.name = " ";
        reference.onDelete = reference.onUpdate = reference.enabled = reference.replication = " ";
        reference.keys = "REFERENCES " + call.session().catalog().database(table.databaseId)->name + '.' +
                         other->owner + '.' + other->name + " (" + columnList(*other, key.referencedColumns) +
                         ")";
        rows.push_back(std::move(reference));
    }
    for (const CheckConstraint& check : table.checks) {
        ConstraintRow row;
        const Column* column = table.column(check.columnId);
        row.type = column == nullptr ? "CHECK Table Level" : "CHECK on column " + column->name;
        row.name = check.name;
        row.enabled = check.enabled ? "Enabled" : "Disabled";
        row.replication = check.notForReplication ? "Not_For_Replication" : "Is_For_Replication";
        row.keys = check.text;
        rows.push_back(std::move(row));
    }
    for (const Column& column : table.columns) {
        if (column.defaultId == 0)
            continue;
        ConstraintRow row;
        row.type = "DEFAULT on column " + column.name;
        row.name = column.defaultName;
        row.keys = column.defaultText;
        rows.push_back(std::move(row));
    }
    return rows;
}

void sendConstraints(const ProcedureCall& call, const Object& table)
{
    const std::vector<ConstraintRow> constraints = constraintsOf(call, table);
    if (constraints.empty()) {
        call.session().inform(15469, {table.name});
    } else {
        std::string rows;
        for (const ConstraintRow& row : constraints) {
            rows += rows.empty() ? "(" : ", (";
            for (const std::string* value :
                 {&row.type, &row.name, &row.onDelete, &row.onUpdate, &row.enabled, &row.replication})
                rows += quotedText(*value) + ", ";
            rows += quotedText(row.keys) + ")";
        }
        call.sendRows(R"(
constraint_type         nvarchar(146)   v.column1
constraint_name         sysname         v.column2
delete_action           nvarchar(11)?   v.column3
update_action           nvarchar(11)?   v.column4
status_enabled          varchar(8)?     v.column5
status_for_replication  varchar(19)?    v.column6
constraint_keys         nvarchar(2126)? v.column7
)",
                      "FROM (VALUES " + rows + ") v");
    }
    if (table.referencedBy.empty()) {
        call.session().inform(15470, {table.name});
        return;
    }
    call.sendRows(
        "Table&is&referenced&by&foreign&key nvarchar(516)? d.name || '.' || u.name || '.' || t.name || ': ' "
        "|| o.name",
        "FROM cat_reference r JOIN cat_object o ON o.dbid = r.dbid AND o.id = r.constid "
        "JOIN cat_object t ON t.dbid = r.dbid AND t.id = r.fkeyid "
        "JOIN cat_user u ON u.dbid = t.dbid AND u.uid = t.uid JOIN cat_database d ON d.dbid = r.dbid "
        "WHERE r.dbid = :db AND r.rkeyid = " +
            idOf(table) + " ORDER BY t.fold, o.fold");
}

int helpConstraint(const ProcedureCall& call)
{
    const ObjectPtr table = requireObject(call, call.textOr(0, ""));
    if (!sameName(call.textOr(1, "msg"), "nomsg"))
        call.sendRows("Object&Name nvarchar(776)? v.column1",
                      "FROM (VALUES (" + quotedText(call.textOr(0, "")) + ")) v");
    sendConstraints(call, *table);
    return 0;
}

// sp_help -------------------------------------------------------------------------------------

int helpAll(const ProcedureCall& call)
{
    call.sendRows(R"(
Name         sysname       o.name
Owner        sysname?      u.name
Object_type  nvarchar(31)? v.kind
)",
                  "FROM cat_object o LEFT JOIN cat_user u ON u.dbid = :db AND u.uid = o.uid" +
                      std::string(joinKind) + "WHERE o.dbid IN (0, :db) ORDER BY o.xtype DESC, o.fold");
    return 0;
}

void sendColumns(const ProcedureCall& call, const Object& object)
{
    call.sendRows(R"(
Column_name           sysname      k.name
Type                  sysname      k.typename
Computed              varchar(35)? CASE WHEN k.computed IS NULL THEN 'no' ELSE 'yes' END
Length                int          k.bytes
Prec                  char(5)?     CASE WHEN k.fullscale IS NULL AND k.xtype NOT IN (59, 62) THEN '' ELSE k.fullprec END
Scale                 char(5)?     coalesce(k.fullscale, '')
Nullable              varchar(35)? CASE WHEN k.nullable THEN 'yes' ELSE 'no' END
TrimTrailingBlanks    varchar(35)? CASE WHEN k.xtype IN (165, 167, 173, 175) THEN CASE WHEN k.padded THEN 'no' ELSE 'yes' END ELSE '(n/a)' END
FixedLenNullInSource  varchar(35)? CASE WHEN k.xtype IN (165, 167, 173, 175) THEN CASE WHEN k.nullable THEN 'yes' ELSE 'no' END ELSE '(n/a)' END
Collation             sysname?     CASE WHEN k.collation <> '' THEN k.collation END
)",
                  "FROM cat_column_type k WHERE k.dbid IN (0, :db) AND k.id = " + idOf(object) +
                      " AND k.name NOT LIKE '@%' ORDER BY k.colid");
    call.sendRows(
        R"(
Identity             sysname        coalesce(k.name, 'No identity column defined.')
Seed                 numeric(18,0)? k.seed
Increment            numeric(18,0)? k.increment
Not&For&Replication  int?           k.notrepl
)",
        "FROM (SELECT 1) LEFT JOIN cat_column k ON k.dbid = :db AND k.seed IS NOT NULL AND k.id = " +
            idOf(object));
    call.sendRows("RowGuidCol sysname coalesce(k.name, 'No rowguidcol column defined.')",
                  "FROM (SELECT 1) LEFT JOIN cat_column k ON k.dbid = :db AND k.rowguid AND k.id = " +
                      idOf(object));
}

void sendParameters(const ProcedureCall& call, const Object& object)
{
    call.sendRows(R"(
Parameter_name  sysname   k.name
Type            sysname   k.typename
Length          smallint  k.bytes
Prec            int?      k.fullprec
Scale           int?      k.fullscale
Param_order     smallint  k.colid
Collation       sysname?  CASE WHEN k.collation <> '' THEN k.collation END
)",
                  "FROM cat_column_type k WHERE k.dbid = :db AND k.id = " + idOf(object) +
                      " AND k.name LIKE '@%' ORDER BY k.colid");
}

/// @return false when no type has the name
bool sendType(const ProcedureCall& call, const std::string& name)
{
    const std::string source = "FROM sys_type t WHERE t.name = " + quotedText(name);
    Statement known(call.session().connection(), "SELECT 1 " + source);
    if (!known.step())
        return false;
    known.reset();
    call.sendRows(R"(
Type_name     sysname      t.name
Storage_type  sysname      (SELECT s.name FROM sys_type s WHERE s.xusertype = t.xtype)
Length        smallint     t.length
Prec          int?         t.prec
Scale         int?         t.scale
Nullable      varchar(35)? CASE WHEN t.xusertype IN (189, 256) THEN 'no' ELSE 'yes' END
Default_name  sysname?     'none'
Rule_name     sysname?     'none'
Collation     sysname?     CASE WHEN t.collated THEN (SELECT d.collation FROM cat_database d WHERE d.dbid = :db) END
)",
                  source);
    return true;
}

int help(const ProcedureCall& call)
{
    if (!call.text(0))
        return helpAll(call);
    const ast::ObjectName parsed = parseObjectName(*call.text(0));
    if (!parsed.empty() && parsed.database.empty() && !findNamed(call.session(), parsed) &&
        sendType(call, parsed.object))
        return 0;
    const ObjectPtr object = requireObject(call, *call.text(0));
    call.sendRows(R"(
Name              sysname       o.name
Owner             sysname?      u.name
Type              nvarchar(31)? v.kind
Created_datetime  datetime      o.created
)",
                  "FROM cat_object o LEFT JOIN cat_user u ON u.dbid = :db AND u.uid = o.uid" +
                      std::string(joinKind) + "WHERE o.dbid IN (0, :db) AND o.id = " + idOf(*object));
    if (!object->columns.empty())
        sendColumns(call, *object);
    if (!object->parameters.empty())
        sendParameters(call, *object);
    if (object->kind != ObjectKind::UserTable)
        return 0;
    call.sendRows("Data_located_on_filegroup sysname v.column1",
                  "FROM (VALUES (" +
                      quotedText(filegroupName(call, object->databaseId, object->filegroupId)) + ")) v");
    sendIndexes(call, *object);
    sendConstraints(call, *object);
    return 0;
}

constexpr SystemProcedure helpTable[] = {
    {"sp_help", "@objname=", help},
    {"sp_helptext", "@objname @columnname=", helpText},
    {"sp_helpindex", "@objname", helpIndex},
    {"sp_helpconstraint", "@objname @nomsg=", helpConstraint},
};

} // namespace

std::span<const SystemProcedure> helpProcedures()
{
    return helpTable;
}

} // namespace practice
