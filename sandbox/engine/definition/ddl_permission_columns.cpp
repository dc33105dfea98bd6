#include "engine/definition/ddl_permission_columns.h"

#include "engine/context/object_rights.h"
#include "engine/messages/errors.h"

namespace practice {
namespace {

int recordedForWhole(SessionContext& session, const PermissionRecord& record)
{
    Statement row(session.connection(),
                  "SELECT max(protecttype) FROM cat_permission WHERE dbid = ? AND id = ? "
                  "AND uid = ? AND action = ?");
    row.bind(1, record.database).bind(2, record.object).bind(3, record.grantee).bind(4, record.action).step();
    return row.isNull(0) ? protection::excepted : row.number(0);
}

void eraseColumn(SessionContext& session, const PermissionRecord& record, int column)
{
    Statement row(session.connection(), "DELETE FROM cat_column_permission WHERE dbid = ? AND id = ? AND "
                                        "uid = ? AND action = ? AND colid = ?");
    row.bind(1, record.database).bind(2, record.object).bind(3, record.grantee).bind(4, record.action);
    row.bind(5, column).run();
}

void writeColumn(SessionContext& session, const PermissionRecord& record, int column, int protection)
{
    Statement row(session.connection(),
                  "INSERT INTO cat_column_permission(dbid, id, colid, uid, action, protecttype, grantor) "
                  "VALUES(?, ?, ?, ?, ?, ?, ?)");
    row.bind(1, record.database).bind(2, record.object).bind(3, column).bind(4, record.grantee);
    row.bind(5, record.action).bind(6, protection).bind(7, record.grantor).run();
}

int protectionOf(const ast::PermissionStatement& statement)
{
    if (statement.action == ast::PermissionAction::Deny)
        return protection::denied;
    if (statement.action == ast::PermissionAction::Grant)
        return statement.withGrantOption ? protection::withOption : protection::granted;
    return statement.grantOptionFor ? protection::granted : protection::excepted;
}

} // namespace

std::set<int> columnsOf(const ast::PermissionStatement& statement, const ast::PermissionItem& item,
                        int action, const Object* object)
{
    std::set<int> ids;
    for (const auto* names : {&item.columns, &statement.securableColumns}) {
        if (!names->empty() && (object == nullptr || !appliesToColumns(static_cast<Right>(action))))
            raise(1020);
        for (const std::string& name : *names) {
            const Column* column = object->column(name);
            if (column == nullptr)
                raise(4615, {name});
            ids.insert(column->id);
        }
    }
    return ids;
}

void changeColumns(SessionContext& session, const ast::PermissionStatement& statement,
                   const PermissionRecord& record, const std::set<int>& columns)
{
    const int protection = protectionOf(statement);
    const int whole = recordedForWhole(session, record);
    for (const int column : columns) {
        eraseColumn(session, record, column);
        // What the object says already need not be said again, and of nothing there is no exception.
        if (protection != whole)
            writeColumn(session, record, column, protection);
    }
}

void eraseColumns(SessionContext& session, const PermissionRecord& record)
{
    Statement row(session.connection(), "DELETE FROM cat_column_permission WHERE dbid = ? AND id = ? AND "
                                        "uid = ? AND action = ?");
    row.bind(1, record.database).bind(2, record.object).bind(3, record.grantee).bind(4, record.action).run();
}

} // namespace practice
