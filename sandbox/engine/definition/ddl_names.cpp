#include "engine/definition/ddl_names.h"

#include "engine/context/permissions.h"
#include "engine/messages/errors.h"

namespace practice {

bool hasStatementPermission(SessionContext& session, int databaseId, int uid, const char* statement)
{
    constexpr int granted = 206; // 204 and 205 grant, 206 denies
    Statement row(
        session.connection(),
        "WITH RECURSIVE groups(uid) AS (SELECT ?2 UNION SELECT 0 UNION SELECT m.groupuid FROM groups g "
        "JOIN cat_member m ON m.dbid = ?1 AND m.memberuid = g.uid) "
        "SELECT max(p.protecttype) FROM cat_permission p "
        "JOIN sys_value v ON v.type = 'T' AND v.number = p.action "
        "WHERE p.dbid = ?1 AND p.id = 0 AND v.name = ?3 AND p.uid IN (SELECT uid FROM groups)");
    row.bind(1, databaseId).bind(2, uid).bind(3, statement).step();
    return !row.isNull(0) && row.number(0) < granted;
}

namespace {

bool isTemporary(const std::string& name)
{
    return name.starts_with('#');
}

void requireStatementPermission(SessionContext& session, const Database& database, const Principal& user,
                                const char* statement)
{
    if (database.id == tempdbId || isDatabaseOwner(session, database.id) ||
        session.catalog().isMember(database.id, "db_ddladmin", user.id) ||
        hasStatementPermission(session, database.id, user.id, statement))
        return;
    raise(262, {statement, database.name});
}

} // namespace

void requireWritable(const Database& database)
{
    if ((database.options & Restoring) != 0)
        raise(927, {database.name});
    if ((database.options & Offline) != 0)
        raise(942, {database.name});
    if ((database.options & ReadOnly) != 0)
        raise(3906, {database.name});
}

DatabasePtr databaseOf(SessionContext& session, const ast::ObjectName& name)
{
    if (isTemporary(name.object))
        return session.catalog().database(tempdbId);
    if (name.database.empty())
        return session.database();
    DatabasePtr found = session.catalog().database(name.database);
    if (!found)
        raise(911, {name.database});
    return found;
}

ObjectPlace placeForNew(SessionContext& session, const ast::ObjectName& name, const char* statement)
{
    ObjectPlace place;
    if (!name.database.empty() && !isTemporary(name.object) && !session.catalog().database(name.database))
        raise(2702, {name.database});
    place.database = databaseOf(session, name);
    requireWritable(*place.database);
    place.name = isTemporary(name.object) ? session.newTemporaryName(name.object) : name.object;
    place.written = name.object;
    const auto user = session.catalog().userOf(place.database->id, session.login());
    if (!user)
        raise(916, {session.login().name, place.database->name});
    requireStatementPermission(session, *place.database, *user, statement);
    place.ownerId = isTemporary(name.object) ? 1 : user->id;
    if (!name.schema.empty() && !isTemporary(name.object)) {
        const auto owner = session.catalog().principal(place.database->id, name.schema);
        if (!owner)
            raise(2760, {name.schema});
        place.ownerId = owner->id;
    }
    place.owner = session.catalog().principal(place.database->id, place.ownerId)->name;
    return place;
}

ObjectPtr findNamed(SessionContext& session, const ast::ObjectName& name)
{
    const DatabasePtr database = databaseOf(session, name);
    if (isTemporary(name.object))
        return session.catalog().object(database->id, "", session.temporaryName(name.object));
    const auto user = session.catalog().userOf(database->id, session.login());
    return session.catalog().object(database->id, name.schema, name.object, user ? user->id : 1);
}

ObjectPtr requireTable(SessionContext& session, const ast::ObjectName& name, int missing)
{
    ObjectPtr table = findNamed(session, name);
    if (!table || !mayChange(session, table->databaseId, table->ownerId))
        raise(missing, {plainName(name)});
    requireWritable(*session.catalog().database(table->databaseId));
    if (table->kind != ObjectKind::UserTable)
        raise(4909, {plainName(name)});
    return table;
}

bool isNameTaken(SessionContext& session, int databaseId, int ownerId, const std::string& name)
{
    Statement row(session.connection(),
                  "SELECT 1 FROM cat_object WHERE dbid IN (?1, 0) AND fold = ?2 AND uid = ?3");
    return row.bind(1, databaseId).bind(2, foldName(name)).bind(3, ownerId).step();
}

int filegroupOf(SessionContext& session, int databaseId, const std::string& name)
{
    constexpr const char* sql = "SELECT groupid FROM cat_filegroup WHERE dbid = ?1 AND "
                                "CASE WHEN ?2 IN ('', 'default') THEN status & 16 ELSE fold = ?2 END";
    Statement row(session.connection(), sql);
    if (!row.bind(1, databaseId).bind(2, foldName(name)).step())
        raise(1921, {name});
    return row.number(0);
}

std::string plainName(const ast::ObjectName& name)
{
    std::string text;
    for (const std::string* part : {&name.server, &name.database, &name.schema}) {
        if (!text.empty() || !part->empty())
            text += *part + '.';
    }
    return text + name.object;
}

const char* kindWord(ObjectKind kind)
{
    switch (kind) {
    case ObjectKind::View:
        return "view";
    case ObjectKind::Procedure:
    case ObjectKind::ExtendedProcedure:
        return "procedure";
    case ObjectKind::ScalarFunction:
    case ObjectKind::InlineFunction:
    case ObjectKind::TableFunction:
        return "function";
    case ObjectKind::Trigger:
        return "trigger";
    case ObjectKind::Rule:
        return "rule";
    case ObjectKind::Default:
        return "default";
    default:
        return "table";
    }
}

void raiseAfter(SessionContext& session, const Message& first, int second)
{
    session.sendMessage(first);
    throw SqlError{makeMessage(second), first.number};
}

ObjectPtr reread(SessionContext& session, int databaseId, int objectId)
{
    session.catalog().version();
    return session.catalog().object(databaseId, objectId);
}

std::string sourceText(SessionContext& session, const ast::SourceRange& range)
{
    return std::string(session.batchText().substr(range.begin, range.end - range.begin));
}

std::string inParentheses(const std::string& text)
{
    int depth = 0;
    bool quoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '\'')
            quoted = !quoted;
        if (quoted)
            continue;
        depth += text[i] == '(' ? 1 : text[i] == ')' ? -1 : 0;
        if (depth == 0 && i + 1 < text.size())
            return '(' + text + ')'; // what stands behind is outside the first pair
    }
    return text.starts_with('(') ? text : '(' + text + ')';
}

} // namespace practice
