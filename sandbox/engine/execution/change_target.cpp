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

ObjectPtr changeTarget(SessionState& session, Translator& translator, const ast::TableSource& target,
                       const char* action)
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
    if (!translator.context().chained)
        requirePermission(session, *table, action);
    if (table->kind == ObjectKind::View)
        raise(4406, {named.name.object});
    if (table->kind != ObjectKind::UserTable)
        raise(208, {writtenName(named.name)});
    return table;
}

} // namespace practice
