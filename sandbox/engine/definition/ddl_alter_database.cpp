// ALTER DATABASE.
#include "engine/catalog/catalog_writer.h"
#include "engine/catalog/database_options.h"
#include "engine/context/permissions.h"
#include "engine/definition/ddl.h"
#include "engine/definition/ddl_database.h"
#include "engine/definition/ddl_files.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"
#include "engine/store/collation.h"

#include <algorithm>
#include <array>

namespace practice {
namespace {

void updateDatabase(SessionContext& session, int databaseId, const char* column, std::int64_t value)
{
    Statement row(session.connection(),
                  std::string("UPDATE cat_database SET ") + column + " = ? WHERE dbid = ?");
    row.bind(1, value).bind(2, databaseId).run();
    bumpCatalogVersion(session.connection());
}

/// The word or number after an option's name; "" for none.
std::string valueOf(const ast::NamedOption& option)
{
    if (option.values.empty())
        return "";
    const auto* literal = ast::tryAs<ast::Literal>(option.values.front().get());
    return literal == nullptr ? "" : literal->text;
}

bool isOn(const ast::NamedOption& option)
{
    const std::string value = valueOf(option);
    if (!sameName(value, "ON") && !sameName(value, "OFF"))
        raise(5058, {option.name, value});
    return sameName(value, "ON");
}

bool setSwitch(SessionContext& session, const Database& database, const ast::NamedOption& option)
{
    for (const DatabaseOptionName& known : databaseOptionNames()) {
        if (*known.setName == 0 || option.name != known.setName)
            continue;
        setDatabaseOption(session, database, known.option, isOn(option));
        return true;
    }
    return false;
}

void setRecoveryByName(SessionContext& session, const Database& database, const std::string& name)
{
    if (sameName(name, "FULL"))
        return setRecovery(session, database, RecoveryModel::Full);
    if (sameName(name, "BULK_LOGGED"))
        return setRecovery(session, database, RecoveryModel::BulkLogged);
    if (sameName(name, "SIMPLE"))
        return setRecovery(session, database, RecoveryModel::Simple);
    raise(5058, {"RECOVERY", database.name});
}

bool isState(const std::string& name)
{
    static constexpr std::array names{"SINGLE_USER", "RESTRICTED_USER", "MULTI_USER", "OFFLINE", "ONLINE"};
    return std::find(names.begin(), names.end(), name) != names.end();
}

/// SINGLE_USER, READ_ONLY, OFFLINE and their contraries.
bool setState(SessionContext& session, const Database& database, const std::string& name, bool othersMayGo)
{
    if (name == "SINGLE_USER")
        setUserAccess(session, database, UserAccess::Single, othersMayGo);
    else if (name == "RESTRICTED_USER")
        setUserAccess(session, database, UserAccess::Restricted, othersMayGo);
    else if (name == "MULTI_USER")
        setUserAccess(session, database, UserAccess::Multi, true);
    else if (name == "READ_ONLY" || name == "READ_WRITE")
        setDatabaseOption(session, database, ReadOnly, name == "READ_ONLY");
    else if (name == "OFFLINE" || name == "ONLINE")
        setDatabaseOption(session, database, Offline, name == "OFFLINE");
    else
        return false;
    return true;
}

void setPageVerify(SessionContext& session, const Database& database, const std::string& value)
{
    setDatabaseOption(session, database, TornPageDetection, sameName(value, "TORN_PAGE_DETECTION"));
}

/// Options of later versions: taken without an effect, since nothing here depends on them.
bool isWithoutEffect(const std::string& name)
{
    static constexpr std::array names{"ALLOW_SNAPSHOT_ISOLATION",
                                      "READ_COMMITTED_SNAPSHOT",
                                      "TRUSTWORTHY",
                                      "DATE_CORRELATION_OPTIMIZATION",
                                      "PARAMETERIZATION",
                                      "AUTO_UPDATE_STATISTICS_ASYNC",
                                      "ENABLE_BROKER",
                                      "DISABLE_BROKER",
                                      "NEW_BROKER",
                                      "TARGET_RECOVERY_TIME",
                                      "DELAYED_DURABILITY",
                                      "VARDECIMAL_STORAGE_FORMAT"};
    return std::find(names.begin(), names.end(), name) != names.end();
}

void setOption(SessionContext& session, const Database& database, const ast::NamedOption& option,
               bool othersMayGo)
{
    if (setSwitch(session, database, option) || setState(session, database, option.name, othersMayGo))
        return;
    if (option.name == "RECOVERY")
        return setRecoveryByName(session, database, valueOf(option));
    if (option.name == "PAGE_VERIFY")
        return setPageVerify(session, database, valueOf(option));
    if (option.name == "CURSOR_DEFAULT")
        return setDatabaseOption(session, database, LocalCursorDefault, sameName(valueOf(option), "LOCAL"));
    if (option.name == "COMPATIBILITY_LEVEL")
        return updateDatabase(session, database.id, "level",
                              std::strtol(valueOf(option).c_str(), nullptr, 10));
    if (!isWithoutEffect(option.name))
        raise(155, {option.name, "ALTER DATABASE"});
}

void setCollation(SessionContext& session, const Database& database, const std::string& collation)
{
    if (!isCollation(collation))
        raise(448, {collation});
    if (database.isSystem())
        raise(3708, {"alter", "database", database.name, "database"});
    Statement row(session.connection(), "UPDATE cat_database SET collation = ? WHERE dbid = ?");
    row.bind(1, collation).bind(2, database.id).run();
    bumpCatalogVersion(session.connection());
}

void setOptions(SessionContext& session, const ast::AlterDatabaseStatement& statement,
                const Database& database)
{
    const bool othersMayGo = statement.termination == ast::Termination::RollbackImmediate ||
                             statement.termination == ast::Termination::RollbackAfter;
    for (const ast::NamedOption& option : statement.options) {
        session.catalog().version();
        setOption(session, *session.catalog().database(database.id), option, othersMayGo);
    }
}

/// An offline database may come back or change who may enter; all else is for one that is open.
void requireOpen(const Database& database, const ast::AlterDatabaseStatement& statement)
{
    if ((database.options & Offline) == 0)
        return;
    if (statement.action != ast::AlterDatabaseAction::SetOptions)
        requireOnline(database);
    for (const ast::NamedOption& option : statement.options) {
        if (!isState(option.name))
            raise(5052, {"ALTER DATABASE", "Offline"});
    }
}

void apply(SessionContext& session, const ast::AlterDatabaseStatement& statement, const Database& database)
{
    using Action = ast::AlterDatabaseAction;
    requireOpen(database, statement);
    switch (statement.action) {
    case Action::AddFile:
    case Action::AddLogFile:
        return addFiles(session, database, statement);
    case Action::RemoveFile:
        return removeFile(session, database, statement.file);
    case Action::AddFileGroup:
        return addFilegroup(session, database, statement.fileGroup);
    case Action::RemoveFileGroup:
        return removeFilegroup(session, database, statement.fileGroup);
    case Action::ModifyFile:
        for (const ast::FileSpec& file : statement.files)
            modifyFile(session, database, file);
        return;
    case Action::ModifyFileGroup:
        return modifyFilegroup(session, database, statement.fileGroup, statement.property);
    case Action::RenameFileGroup:
        return renameFilegroup(session, database, statement.fileGroup, statement.newName);
    case Action::ModifyName:
        return renameDatabase(session, database, statement.newName);
    case Action::Collate:
        return setCollation(session, database, statement.collation);
    case Action::SetOptions:
        return setOptions(session, statement, database);
    }
}

} // namespace

void renameDatabase(SessionContext& session, const Database& database, const std::string& name)
{
    if (database.isSystem())
        raise(5016, {database.name});
    const DatabasePtr taken = session.catalog().database(name);
    if (taken && taken->id != database.id)
        raise(1801, {name});
    if (isInUseByOthers(session, database.id))
        raise(5030);
    Statement row(session.connection(), "UPDATE cat_database SET name = ?, fold = ? WHERE dbid = ?");
    row.bind(1, name).bind(2, foldName(name)).bind(3, database.id).run();
    Statement logins(session.connection(), "UPDATE cat_login SET dbname = ? WHERE dbname = ?");
    logins.bind(1, name).bind(2, database.name).run();
    bumpCatalogVersion(session.connection());
    session.inform(5021, {"database", name});
}

void setDatabaseOption(SessionContext& session, const Database& database, DatabaseOption option, bool on)
{
    const bool closing = option == Offline || option == ReadOnly;
    if (closing && (database.id == masterId || database.id == tempdbId))
        raise(5058, {option == Offline ? "OFFLINE" : "READ_ONLY", database.name});
    if (closing && on && isInUseByOthers(session, database.id))
        raise(5061, {database.name});
    const DatabaseOptions options = on ? database.options | option : database.options & ~option;
    updateDatabase(session, database.id, "options", options);
}

void setRecovery(SessionContext& session, const Database& database, RecoveryModel model)
{
    if (database.id == tempdbId)
        raise(5058, {"RECOVERY", database.name});
    updateDatabase(session, database.id, "recovery", std::int64_t(model));
}

void setUserAccess(SessionContext& session, const Database& database, UserAccess access, bool othersMayGo)
{
    if (database.id == masterId || database.id == tempdbId)
        raise(5058, {access == UserAccess::Single ? "SINGLE_USER" : "RESTRICTED_USER", database.name});
    if (access == UserAccess::Single && !othersMayGo && isInUseByOthers(session, database.id))
        raise(5070, {database.name});
    updateDatabase(session, database.id, "access", std::int64_t(access));
}

void alterDatabase(SessionContext& session, const ast::AlterDatabaseStatement& statement)
{
    requireNoTransaction(session, "ALTER DATABASE");
    const DatabasePtr database =
        statement.current ? session.database() : session.catalog().database(statement.name);
    if (!database || !(isDatabaseOwner(session, database->id) || hasServerRole(session, DbCreator)))
        raiseAfter(session, makeMessage(5011, {statement.name}), 5069);
    try {
        apply(session, statement, *database);
    } catch (const SqlError& error) {
        // Files, filegroups and names fail with the one message.
        if (statement.action != ast::AlterDatabaseAction::SetOptions)
            throw;
        raiseAfter(session, error.message, 5069);
    }
}

} // namespace practice
