#include "engine/definition/ddl_names.h"

#include "engine/context/permissions.h"
#include "engine/context/standing.h"
#include "engine/context/temporary_names.h"
#include "engine/messages/errors.h"

namespace practice {

DatabasePtr databaseOf(SessionContext& session, const ast::ObjectName& name)
{
    if (isTemporary(name.object))
        return session.catalog().database(tempdbId);
    if (name.database.empty())
        return session.database();
    DatabasePtr found = session.catalog().database(name.database);
    if (!found)
        raise(911, {name.database});
    requireOnline(*found);
    requireAccess(session, *found);
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
    place.ownerId = dboId;
    if (!isTemporary(name.object)) {
        requireAccess(session, *place.database);
        requireStatementPermission(session, *place.database, statement);
        place.ownerId = userIn(session, place.database->id)->id;
    }
    if (!name.schema.empty() && !isTemporary(name.object)) {
        const auto owner = session.catalog().principal(place.database->id, name.schema);
        if (!owner || owner->id == publicId || !mayCreateFor(session, *place.database, owner->id))
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
    const auto user = userIn(session, database->id);
    return session.catalog().object(database->id, name.schema, name.object, user ? user->id : dboId);
}

ObjectPtr requireTable(SessionContext& session, const ast::ObjectName& name, int missing)
{
    ObjectPtr table = findNamed(session, name);
    if (!table)
        raise(missing, {plainName(name)});
    if (!mayChange(session, *table))
        raiseHidden(name, missing == 1088 ? ofCreateIndex : ofAlterTable);
    requireWritable(*session.catalog().database(table->databaseId));
    if (table->kind != ObjectKind::UserTable)
        raise(4909, {plainName(name)});
    return table;
}

void raiseHidden(const ast::ObjectName& name, int state)
{
    Message hidden = makeMessage(1088, {plainName(name)});
    hidden.state = state;
    throw SqlError{hidden};
}

void raiseNoRight(const char* verb, const char* kind, const std::string& name)
{
    constexpr int severity = 14;
    constexpr int state = 20;
    Message refused = makeMessage(3701, {verb, kind, name});
    refused.severity = severity;
    refused.state = state;
    throw SqlError{refused};
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
