#include "engine/catalog/catalog.h"

#include "engine/catalog/catalog_functions.h"
#include "engine/catalog/catalog_load.h"
#include "engine/store/store.h"

#include <algorithm>
#include <atomic>
#include <unordered_map>

namespace practice {
namespace {

/// Numbers given to states of the catalog, unique within the process; a store that was left at a
/// higher one lifts it.
std::uint64_t nextVersion(std::uint64_t present)
{
    static std::atomic<std::uint64_t> last{0};
    std::uint64_t seen = last.load();
    while (!last.compare_exchange_weak(seen, std::max(seen, present) + 1)) {
    }
    return std::max(seen, present) + 1;
}

struct ObjectKey
{
    int database;
    int id;
    bool operator==(const ObjectKey&) const = default;
};

struct ObjectKeyHash
{
    std::size_t operator()(const ObjectKey& key) const
    {
        return std::hash<std::uint64_t>()((std::uint64_t(std::uint32_t(key.database)) << 32) |
                                          std::uint32_t(key.id));
    }
};

std::optional<Principal> readPrincipal(Statement& row)
{
    if (!row.step())
        return std::nullopt;
    Principal found;
    found.id = row.number(0);
    found.name = row.string(1);
    found.sid = std::string(row.blob(2));
    found.role = row.number(3) != 0;
    found.applicationRole = row.number(4) != 0;
    found.hasAccess = row.number(5) != 0;
    return found;
}

} // namespace

struct Catalog::Cache
{
    std::unordered_map<std::string, int> databaseIds;
    std::unordered_map<int, DatabasePtr> databases;
    std::unordered_map<std::string, int> objectIds; ///< by "dbid:uid:folded name"; 0 for none
    std::unordered_map<ObjectKey, ObjectPtr, ObjectKeyHash> objects;
    Statement readVersion;
    Statement findObject;
};

Catalog::Catalog(sqlite3* connection) : connection_(connection), cache_(std::make_unique<Cache>())
{
    registerCatalogFunctions(connection);
}

Catalog::~Catalog() = default;

std::uint64_t Catalog::version()
{
    if (!cache_->readVersion)
        cache_->readVersion = Statement(connection_, "SELECT version FROM cat_version", true);
    cache_->readVersion.step();
    const auto now = std::uint64_t(cache_->readVersion.integer(0));
    cache_->readVersion.reset();
    if (now != version_)
        refresh();
    version_ = now;
    return now;
}

void Catalog::refresh()
{
    cache_->databaseIds.clear();
    cache_->databases.clear();
    cache_->objectIds.clear();
    cache_->objects.clear();
}

DatabasePtr Catalog::database(const std::string& name)
{
    const std::string folded = foldName(name);
    if (const auto known = cache_->databaseIds.find(folded); known != cache_->databaseIds.end())
        return database(known->second);
    Statement find(connection_, "SELECT dbid FROM cat_database WHERE fold = ?");
    if (!find.bind(1, folded).step())
        return nullptr;
    const int id = find.number(0);
    cache_->databaseIds.emplace(folded, id);
    return database(id);
}

DatabasePtr Catalog::database(int id)
{
    if (const auto known = cache_->databases.find(id); known != cache_->databases.end())
        return known->second;
    DatabasePtr loaded = loadDatabase(connection_, id);
    if (loaded)
        cache_->databases.emplace(id, loaded);
    return loaded;
}

std::vector<DatabasePtr> Catalog::databases()
{
    std::vector<DatabasePtr> all;
    Statement ids(connection_, "SELECT dbid FROM cat_database ORDER BY dbid");
    while (ids.step())
        all.push_back(database(ids.number(0)));
    return all;
}

ObjectPtr Catalog::object(int databaseId, const std::string& owner, const std::string& name, int defaultOwner)
{
    int uid = defaultOwner;
    if (!owner.empty()) {
        const auto principalFound = principal(databaseId, owner);
        if (!principalFound)
            return nullptr;
        uid = principalFound->id;
    }
    const std::string folded = foldName(name);
    const std::string key =
        std::to_string(databaseId) + (owner.empty() ? ":?" : ":") + std::to_string(uid) + ':' + folded;
    if (const auto known = cache_->objectIds.find(key); known != cache_->objectIds.end())
        return known->second == 0 ? nullptr : object(databaseId, known->second);
    Statement& find = cache_->findObject;
    if (!find)
        find = Statement(connection_,
                         "SELECT id FROM cat_object WHERE dbid IN (?1, 0) AND fold = ?2 AND uid IN (?3, ?4) "
                         "ORDER BY uid <> ?3, dbid DESC LIMIT 1",
                         true);
    find.bind(1, databaseId).bind(2, folded).bind(3, uid).bind(4, owner.empty() ? 1 : uid);
    const int id = find.step() ? find.number(0) : 0;
    find.reset();
    cache_->objectIds.emplace(key, id);
    return id == 0 ? nullptr : object(databaseId, id);
}

ObjectPtr Catalog::object(int databaseId, int objectId)
{
    const ObjectKey key{databaseId, objectId};
    if (const auto known = cache_->objects.find(key); known != cache_->objects.end())
        return known->second;
    ObjectPtr loaded = loadObject(connection_, databaseId, objectId);
    if (loaded)
        cache_->objects.emplace(key, loaded);
    return loaded;
}

std::optional<Principal> Catalog::principal(int databaseId, const std::string& name)
{
    Statement row(connection_, "SELECT uid, name, sid, role, approle, access FROM cat_user "
                               "WHERE dbid = ? AND fold = ? AND aliased = 0");
    row.bind(1, databaseId).bind(2, foldName(name));
    return readPrincipal(row);
}

std::optional<Principal> Catalog::principal(int databaseId, int uid)
{
    Statement row(connection_,
                  "SELECT uid, name, sid, role, approle, access FROM cat_user WHERE dbid = ? AND uid = ?");
    row.bind(1, databaseId).bind(2, uid);
    return readPrincipal(row);
}

std::optional<Principal> Catalog::userOf(int databaseId, const Login& login)
{
    if ((login.serverRoles & SysAdmin) != 0)
        return principal(databaseId, 1);
    Statement row(
        connection_,
        "SELECT coalesce(alias.uid, u.uid), coalesce(alias.name, u.name), u.sid, 0, 0, 1 "
        "FROM cat_user u LEFT JOIN cat_user alias "
        "ON u.aliased AND alias.dbid = u.dbid AND alias.uid = u.altuid "
        "WHERE u.dbid = ?1 AND u.role = 0 AND (u.access OR u.aliased) AND (u.sid = ?2 OR u.uid = 2) "
        "ORDER BY u.uid = 2 LIMIT 1");
    row.bind(1, databaseId).bindBlob(2, login.sid.data(), login.sid.size());
    return readPrincipal(row);
}

std::optional<Login> Catalog::login(const std::string& name)
{
    Statement row(connection_,
                  "SELECT name, sid, dbname, language, roles, denied, windows FROM cat_login WHERE fold = ?");
    if (!row.bind(1, foldName(name)).step())
        return std::nullopt;
    Login found;
    found.name = row.string(0);
    found.sid = std::string(row.blob(1));
    found.defaultDatabase = row.string(2);
    found.language = row.string(3);
    found.serverRoles = unsigned(row.number(4));
    found.denied = row.number(5) != 0;
    found.windows = row.number(6) != 0;
    return found;
}

bool Catalog::isMember(int databaseId, const std::string& role, int uid)
{
    Statement row(
        connection_,
        "WITH RECURSIVE groups(uid) AS (SELECT ?2 UNION SELECT 0 UNION SELECT m.groupuid FROM groups g "
        "JOIN cat_member m ON m.dbid = ?1 AND m.memberuid = g.uid) "
        "SELECT 1 FROM groups JOIN cat_user u ON u.dbid = ?1 AND u.uid = groups.uid "
        "WHERE u.role AND u.fold = ?3");
    row.bind(1, databaseId).bind(2, uid).bind(3, foldName(role));
    return row.step();
}

std::optional<std::int64_t> Catalog::lastIdentity(int databaseId, int objectId)
{
    Statement row(connection_, "SELECT last FROM cat_identity WHERE dbid = ? AND id = ?");
    if (!row.bind(1, databaseId).bind(2, objectId).step())
        return std::nullopt;
    return row.integer(0);
}

void Catalog::setLastIdentity(int databaseId, int objectId, std::int64_t value)
{
    Statement write(connection_, "INSERT OR REPLACE INTO cat_identity(dbid, id, last) VALUES(?, ?, ?)");
    write.bind(1, databaseId).bind(2, objectId).bind(3, value).run();
}

void bumpCatalogVersion(sqlite3* connection)
{
    Statement present(connection, "SELECT version FROM cat_version");
    present.step();
    const std::uint64_t next = nextVersion(std::uint64_t(present.integer(0)));
    Statement write(connection, "UPDATE cat_version SET version = ?");
    write.bind(1, std::int64_t(next)).run();
}

} // namespace practice
