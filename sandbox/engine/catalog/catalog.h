// Reads the catalog through a session's own connection: what the session changed is seen by it at
// once, and gone again after its rollback.
#pragma once

#include "engine/catalog/catalog_types.h"

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;

namespace practice {

/// A table or view that exists only as a query over the catalog.
struct SystemTable
{
    struct SystemColumn
    {
        std::string name;
        SqlType type;
        bool nullable = true;
    };
    std::string schema; ///< "dbo" (also found without owner), "sys" or "INFORMATION_SCHEMA"
    std::string name;
    bool masterOnly = false; ///< one for the whole server; still found from every database
    std::vector<SystemColumn> columns;

    /// A SELECT in SQLite's dialect that yields `columns` in order under their own names, values in
    /// storage form, for one database. Use it as a derived table.
    [[nodiscard]] std::string select(int databaseId) const;

    std::string body; ///< the SELECT, with :db where the database's id goes
};

/// Of the whole program: the same for every session and database.
/// @return nullptr when there is none; an empty schema means dbo
[[nodiscard]] const SystemTable* findSystemTable(const std::string& schema, const std::string& name);
[[nodiscard]] const std::vector<SystemTable>& systemTables();

/// One per session; not shared between threads. Looks things up once per state of the catalog.
class Catalog
{
public:
    explicit Catalog(sqlite3* connection);
    ~Catalog();
    Catalog(const Catalog&) = delete;
    Catalog& operator=(const Catalog&) = delete;

    /// Identifies the catalog's present state for this session. A change gives a number never used
    /// before; a rollback brings the former number back together with the former catalog. Reading
    /// it costs one indexed lookup, and drops what was cached under another number: ask at the
    /// start of each statement.
    std::uint64_t version();

    [[nodiscard]] DatabasePtr database(const std::string& name);
    [[nodiscard]] DatabasePtr database(int id);
    [[nodiscard]] std::vector<DatabasePtr> databases();

    /// Finds by owner and name, ignoring case. An empty owner tries `defaultOwner` (a uid), then dbo.
    /// System tables of the 'S' kind are found too, as objects without columns; bind them by
    /// findSystemTable, before or after this call.
    [[nodiscard]] ObjectPtr object(int databaseId, const std::string& owner, const std::string& name,
                                   int defaultOwner = 1);
    [[nodiscard]] ObjectPtr object(int databaseId, int objectId);

    /// uid, or none
    [[nodiscard]] std::optional<Principal> principal(int databaseId, const std::string& name);
    [[nodiscard]] std::optional<Principal> principal(int databaseId, int uid);
    /// The user as whom a login works in a database: dbo for its owner and for sysadmin, its own
    /// user, else guest where that has access; none when the login may not enter (error 916).
    [[nodiscard]] std::optional<Principal> userOf(int databaseId, const Login& login);
    [[nodiscard]] std::optional<Login> login(const std::string& name);
    [[nodiscard]] bool isMember(int databaseId, const std::string& role, int uid);

    /// The last identity value given out in a table; none before the first row.
    [[nodiscard]] std::optional<std::int64_t> lastIdentity(int databaseId, int objectId);
    void setLastIdentity(int databaseId, int objectId, std::int64_t value);

private:
    struct Cache;
    void refresh();

    sqlite3* connection_;
    std::unique_ptr<Cache> cache_;
    std::uint64_t version_ = 0;
};

/// Marks the catalog as changed within the running transaction.
void bumpCatalogVersion(sqlite3* connection);

struct BootstrapOptions
{
    std::string dataDirectory;
    std::string saPassword; ///< kept only as a salted hash
    std::string serverName;
    std::vector<std::string> systemProcedures; ///< their names
};

/// Creates the catalog's tables and the four system databases when the store is new, and empties
/// tempdb. Runs in a transaction of its own.
void bootstrapCatalog(sqlite3* connection, const BootstrapOptions& options);

/// True when the password is the login's.
[[nodiscard]] bool checkPassword(sqlite3* connection, const std::string& login, const std::string& password);

} // namespace practice
