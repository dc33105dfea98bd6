#include "engine/definition/ddl_constraints.h"

#include "engine/catalog/catalog_writer.h"
#include "engine/definition/ddl_columns.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"

#include <array>
#include <cstdio>

namespace practice {
namespace {

const char* namePrefix(ObjectKind kind)
{
    switch (kind) {
    case ObjectKind::PrimaryKey:
        return "PK";
    case ObjectKind::UniqueConstraint:
        return "UQ";
    case ObjectKind::ForeignKey:
        return "FK";
    case ObjectKind::Check:
        return "CK";
    default:
        return "DF";
    }
}

/// "DF__clientes__zona__7C8480AE": parts of the names, and the object's id in hexadecimal.
std::string inventedName(ObjectKind kind, const std::string& table, const std::string& column, int id)
{
    constexpr std::size_t tablePart = 9;
    constexpr std::size_t columnPart = 5;
    std::array<char, 9> hexadecimal{};
    std::snprintf(hexadecimal.data(), hexadecimal.size(), "%08X", unsigned(id));
    std::string name = std::string(namePrefix(kind)) + "__" + table.substr(0, tablePart) + "__";
    if (!column.empty())
        name += column.substr(0, columnPart) + "__";
    return name + hexadecimal.data();
}

[[noreturn]] void refuseRows(const TableChange& change, const char* kind, const std::string& name,
                             const Object& table, const Column* column)
{
    const std::string where = column == nullptr ? "" : ", column '" + column->name + "'";
    const std::string database = change.session.catalog().database(change.databaseId)->name;
    raise(547, {change.statement(), kind, name, database, table.owner + '.' + table.name, where});
}

/// The column that a condition is about when it names no other; 0 for a condition over several. A
/// column counts as named when the condition can't be bound without it.
int onlyColumn(SessionContext& session, const Object& table, const std::string& condition)
{
    int only = 0;
    for (const Column& column : table.columns) {
        const Object rest = tableWithout(session, table, column.id);
        try {
            (void)session.translateCondition(rest, condition);
        } catch (const SqlError&) {
            if (only != 0)
                return 0;
            only = column.id;
        }
    }
    return only;
}

void addCheck(const TableChange& change, const ast::TableConstraint& constraint, const std::string& column)
{
    const ObjectPtr table = change.table();
    CheckConstraint check;
    check.text = inParentheses(sourceText(change.session, constraint.expression->source));
    (void)change.session.translateCondition(*table, check.text); // unknown names end here
    check.columnId = onlyColumn(change.session, *table, check.text);
    check.notForReplication = constraint.notForReplication;
    check.id = insertConstraintObject(change, ObjectKind::Check, constraint.name, column);
    check.name = change.session.catalog().object(change.databaseId, check.id)->name;
    if (change.check)
        requireRowsSatisfyCheck(change, check);
    insertCheck(change.session.connection(), change.databaseId, change.tableId, check, change.check);
}

} // namespace

ObjectPtr TableChange::table() const
{
    return reread(session, databaseId, tableId);
}

void addConstraint(const TableChange& change, const ast::TableConstraint& constraint,
                   const std::string& column)
{
    switch (constraint.kind) {
    case ast::ConstraintKind::PrimaryKey:
    case ast::ConstraintKind::Unique:
        addKey(change, constraint,
               column.empty() ? constraint.columns : std::vector<ast::IndexColumn>{{column, false}});
        return;
    case ast::ConstraintKind::ForeignKey: {
        std::vector<std::string> columns;
        for (const ast::IndexColumn& part : constraint.columns)
            columns.push_back(part.name);
        if (!column.empty())
            columns.assign(1, column);
        addForeignKey(change, constraint, std::move(columns));
        return;
    }
    case ast::ConstraintKind::Check:
        addCheck(change, constraint, column);
        return;
    case ast::ConstraintKind::Default:
        addDefault(change, constraint, column.empty() ? constraint.forColumn : column);
        return;
    }
}

void addDefault(const TableChange& change, const ast::TableConstraint& constraint, const std::string& column)
{
    const ObjectPtr table = change.table();
    const Column* target = table->column(column);
    if (target == nullptr || target->computed)
        raiseAfter(change.session, makeMessage(1752, {column, table->name}), 1750);
    if (target->identity)
        raiseAfter(change.session, makeMessage(1754, {table->name, target->name}), 1750);
    if (target->type.id == TypeId::Timestamp)
        raiseAfter(change.session, makeMessage(1755, {table->name, target->name}), 1750);
    if (target->defaultId != 0)
        raiseAfter(change.session, makeMessage(1781), 1750);
    const std::string text = inParentheses(sourceText(change.session, constraint.expression->source));
    (void)change.session.typeOfExpression(nullptr, text); // columns and unknown functions end here
    Column changed = *target;
    changed.defaultId = insertConstraintObject(change, ObjectKind::Default, constraint.name, column);
    writeText(change.session.connection(), change.databaseId, changed.defaultId, text);
    replaceColumn(change.session.connection(), change.databaseId, change.tableId, changed);
}

int insertConstraintObject(const TableChange& change, ObjectKind kind, const std::string& name,
                           const std::string& column)
{
    const ObjectPtr table = change.table();
    NewObject object;
    object.id = nextObjectId(change.session.connection(), change.databaseId);
    object.name = name.empty() ? inventedName(kind, table->name, column, object.id) : name;
    object.ownerId = table->ownerId;
    object.kind = kind;
    object.parentId = change.tableId;
    if (isNameTaken(change.session, change.databaseId, table->ownerId, object.name)) {
        Message taken = makeMessage(2714, {object.name});
        taken.state = 5;
        raiseAfter(change.session, taken, 1750);
    }
    insertObject(change.session.connection(), change.databaseId, object);
    change.session.catalog().version();
    return object.id;
}

void requireRowsSatisfyCheck(const TableChange& change, const CheckConstraint& check)
{
    const ObjectPtr table = change.table();
    const std::string condition = change.session.translateCondition(*table, check.text);
    Statement broken(change.session.connection(), "SELECT 1 FROM " +
                                                      storageTable(change.databaseId, change.tableId) +
                                                      " WHERE NOT (" + condition + ") LIMIT 1");
    if (broken.step())
        refuseRows(change, "CHECK", check.name, *table, table->column(check.columnId));
}

void requireRowsSatisfyKey(const TableChange& change, const ForeignKey& key)
{
    std::string present;
    std::string matching;
    for (std::size_t i = 0; i < key.columns.size(); ++i) {
        const std::string own = "f." + storageColumn(key.columns[i]);
        present += own + " IS NOT NULL AND ";
        matching += (i == 0 ? "r." : " AND r.") + storageColumn(key.referencedColumns[i]) + " = " + own;
    }
    const std::string from = storageTable(change.databaseId, key.tableId);
    const std::string to = storageTable(change.databaseId, key.referencedId);
    Statement broken(change.session.connection(), "SELECT 1 FROM " + from + " f WHERE " + present +
                                                      "NOT EXISTS (SELECT 1 FROM " + to + " r WHERE " +
                                                      matching + ") LIMIT 1");
    if (!broken.step())
        return;
    const ObjectPtr referenced = change.session.catalog().object(change.databaseId, key.referencedId);
    const Column* column =
        key.columns.size() == 1 ? referenced->column(key.referencedColumns.front()) : nullptr;
    refuseRows(change, "FOREIGN KEY", key.name, *referenced, column);
}

} // namespace practice
