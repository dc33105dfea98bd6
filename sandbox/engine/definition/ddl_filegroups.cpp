// ALTER DATABASE's filegroups.
#include "engine/definition/ddl_files.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"

namespace practice {
namespace {

constexpr int primaryGroup = 1;
constexpr int readOnlyGroup = 8;
constexpr int defaultGroup = 16;

struct StoredGroup
{
    int id = 0;
    int status = 0;
    std::string name;
};

std::optional<StoredGroup> findGroup(SessionContext& session, int databaseId, const std::string& name)
{
    Statement row(session.connection(),
                  "SELECT groupid, status, name FROM cat_filegroup WHERE dbid = ? AND fold = ?");
    if (!row.bind(1, databaseId).bind(2, foldName(name)).step())
        return std::nullopt;
    return StoredGroup{row.number(0), row.number(1), row.string(2)};
}

StoredGroup requireGroup(SessionContext& session, const Database& database, const std::string& name)
{
    const auto group = findGroup(session, database.id, name);
    if (!group)
        raise(5014, {"filegroup", name, database.name});
    return *group;
}

StoredGroup groupOf(SessionContext& session, int databaseId, int groupId)
{
    Statement row(session.connection(),
                  "SELECT groupid, status, name FROM cat_filegroup WHERE dbid = ? AND groupid = ?");
    row.bind(1, databaseId).bind(2, groupId).step();
    return {row.number(0), row.number(1), row.string(2)};
}

std::int64_t filesInGroup(SessionContext& session, int databaseId, int groupId)
{
    Statement row(session.connection(), "SELECT count(*) FROM cat_file WHERE dbid = ? AND groupid = ?");
    row.bind(1, databaseId).bind(2, groupId).step();
    return row.integer(0);
}

/// A table without rows takes no page of its group, nor do its indexes.
bool groupHoldsRows(SessionContext& session, int databaseId, int groupId)
{
    Statement row(session.connection(),
                  "SELECT 1 FROM (SELECT id FROM cat_object WHERE dbid = ?1 AND groupid = ?2 AND xtype = 'U' "
                  "UNION SELECT id FROM cat_index WHERE dbid = ?1 AND groupid = ?2) "
                  "WHERE practice_rows(?1, id) > 0 LIMIT 1");
    return row.bind(1, databaseId).bind(2, groupId).step();
}

void setGroupStatus(SessionContext& session, int databaseId, int groupId, int cleared, int set)
{
    Statement row(session.connection(), "UPDATE cat_filegroup SET status = (status & ~?1) | ?2 "
                                        "WHERE dbid = ?3 AND groupid = ?4");
    row.bind(1, cleared).bind(2, set).bind(3, databaseId).bind(4, groupId).run();
}

} // namespace

void setDefaultFilegroup(SessionContext& session, int databaseId, int groupId)
{
    Statement others(session.connection(), "UPDATE cat_filegroup SET status = status & ~?1 WHERE dbid = ?2");
    others.bind(1, defaultGroup).bind(2, databaseId).run();
    setGroupStatus(session, databaseId, groupId, 0, defaultGroup);
}

int groupForFiles(SessionContext& session, int databaseId, const std::string& name)
{
    const auto group = findGroup(session, databaseId, name);
    if (!group)
        raise(1921, {name});
    if ((group->status & readOnlyGroup) != 0)
        raise(5048, {name});
    return group->id;
}

void requireRemovable(SessionContext& session, int databaseId, int groupId, const std::string& file)
{
    const StoredGroup group = groupOf(session, databaseId, groupId);
    if ((group.status & readOnlyGroup) != 0)
        raise(5055, {file});
    if (filesInGroup(session, databaseId, groupId) > 1)
        return;
    if (groupHoldsRows(session, databaseId, groupId))
        raise(5042, {"file", file});
    if ((group.status & defaultGroup) != 0)
        raise(5031, {group.name});
}

int insertFilegroup(SessionContext& session, int databaseId, const std::string& name)
{
    Statement taken(session.connection(), "SELECT 1 FROM cat_filegroup WHERE dbid = ? AND fold = ?");
    if (taken.bind(1, databaseId).bind(2, foldName(name)).step())
        raise(5035, {name});
    Statement last(session.connection(), "SELECT max(groupid) + 1 FROM cat_filegroup WHERE dbid = ?");
    last.bind(1, databaseId).step();
    const int id = last.number(0);
    Statement row(session.connection(), "INSERT INTO cat_filegroup(dbid, groupid, name, fold, status) "
                                        "VALUES(?, ?, ?, ?, 0)");
    row.bind(1, databaseId).bind(2, id).bind(3, name).bind(4, foldName(name)).run();
    return id;
}

void addFilegroup(SessionContext& session, const Database& database, const std::string& name)
{
    if (database.id <= modelId)
        raise(1826, {database.name});
    insertFilegroup(session, database.id, name);
}

void removeFilegroup(SessionContext& session, const Database& database, const std::string& name)
{
    const StoredGroup group = requireGroup(session, database, name);
    if (group.id == primaryGroup || filesInGroup(session, database.id, group.id) > 0)
        raise(5042, {"filegroup", name});
    if ((group.status & defaultGroup) != 0)
        raise(5031, {name});
    Statement row(session.connection(), "DELETE FROM cat_filegroup WHERE dbid = ? AND groupid = ?");
    row.bind(1, database.id).bind(2, group.id).run();
}

void modifyFilegroup(SessionContext& session, const Database& database, const std::string& name,
                     const std::string& property)
{
    const StoredGroup group = requireGroup(session, database, name);
    if (filesInGroup(session, database.id, group.id) == 0)
        raise(5050, {name});
    if (property == "DEFAULT")
        return setDefaultFilegroup(session, database.id, group.id);
    const bool readOnly = property == "READONLY" || property == "READ_ONLY";
    if (group.id == primaryGroup)
        raise(5047, {property});
    setGroupStatus(session, database.id, group.id, readOnlyGroup, readOnly ? readOnlyGroup : 0);
}

void renameFilegroup(SessionContext& session, const Database& database, const std::string& name,
                     const std::string& newName)
{
    const StoredGroup group = requireGroup(session, database, name);
    if (group.id == primaryGroup)
        raise(5012);
    Statement taken(session.connection(), "SELECT 1 FROM cat_filegroup WHERE dbid = ? AND fold = ?");
    if (taken.bind(1, database.id).bind(2, foldName(newName)).step())
        raise(5035, {newName});
    Statement row(session.connection(),
                  "UPDATE cat_filegroup SET name = ?, fold = ? WHERE dbid = ? AND groupid = ?");
    row.bind(1, newName).bind(2, foldName(newName)).bind(3, database.id).bind(4, group.id).run();
    session.inform(5021, {"filegroup", newName});
}

} // namespace practice
