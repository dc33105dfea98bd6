#include "engine/execution/change_target.h"

#include "engine/context/permissions.h"
#include "engine/context/temporary_names.h"
#include "engine/messages/errors.h"
#include "types/text_encoding.h"

namespace practice {

std::string identityInsertKey(const Object& table)
{
    return std::to_string(table.databaseId) + "." + std::to_string(table.id);
}

bool acceptsIdentity(SessionState& session, const Object& table)
{
    return session.options().identityInsert == identityInsertKey(table);
}

namespace {

/// A table may outlive the files of its filegroup, but takes no rows then.
/// @throws SqlError 622
void requireFiles(SessionState& session, const Object& table)
{
    constexpr int primaryGroup = 1;
    if (table.filegroupId == primaryGroup)
        return;
    Statement row(session.connection(),
                  "SELECT (SELECT name FROM cat_filegroup WHERE dbid = ?1 AND groupid = ?2), "
                  "EXISTS (SELECT 1 FROM cat_file WHERE dbid = ?1 AND groupid = ?2)");
    row.bind(1, table.databaseId).bind(2, table.filegroupId).step();
    if (row.number(1) == 0)
        raise(622, {row.isNull(0) ? "" : row.string(0)});
}

} // namespace

ObjectPtr changeTarget(SessionState& session, Translator& translator, const ast::TableSource& target,
                       Right right)
{
    if (const auto* variable = ast::tryAs<ast::VariableTable>(&target)) {
        const std::string stored = translator.context().tableVariable(lowerCase(variable->name));
        ObjectPtr table = stored.empty() ? nullptr : session.catalog().object(2, "", stored);
        if (!table)
            raise(1087, {variable->name});
        return table;
    }
    const auto& named = ast::as<ast::NamedTable>(target);
    if (!isTemporary(named.name.object) && findSystemTable(named.name.schema, named.name.object) != nullptr)
        raise(259);
    ObjectPtr table = translator.object(named.name);
    if (table->kind == ObjectKind::View) {
        translator.need(table, right);
        translator.requireRights();
        raise(4406, {named.name.object});
    }
    if (table->kind != ObjectKind::UserTable)
        raise(208, {writtenName(named.name)});
    requireWritable(*session.catalog().database(table->databaseId));
    if (right == Right::Insert)
        requireFiles(session, *table);
    return table;
}

} // namespace practice
