// What the catalog tells about databases and the objects in them. Snapshots: immutable once handed
// out, shared by every plan that was bound against them.
#pragma once

#include "types/sql_type.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace practice {

// Ids that are the same in every store.
inline constexpr int masterId = 1;
inline constexpr int tempdbId = 2;
inline constexpr int modelId = 3;
inline constexpr int publicId = 0; ///< the role, in each database
inline constexpr int dboId = 1;    ///< the user, in each database
inline constexpr int guestId = 2;
inline constexpr int informationSchemaId = 3;
inline constexpr int firstUserRoleId = 16400; ///< roles below it come with each database

/// Whether the user's id is that of a role that comes with each database, public left out.
inline constexpr bool isFixedRoleId(int id)
{
    constexpr int firstFixedRoleId = 16384;
    return id >= firstFixedRoleId && id < firstUserRoleId;
}

/// Options of a database that are on or off. Recovery model and access are values of their own.
enum DatabaseOption : std::uint32_t
{
    AutoClose = 1U << 0,
    AutoShrink = 1U << 1,
    AutoCreateStatistics = 1U << 2,
    AutoUpdateStatistics = 1U << 3,
    AnsiNullDefault = 1U << 4,
    AnsiNulls = 1U << 5,
    AnsiPadding = 1U << 6,
    AnsiWarnings = 1U << 7,
    ArithAbort = 1U << 8,
    ConcatNullYieldsNull = 1U << 9,
    NumericRoundAbort = 1U << 10,
    QuotedIdentifier = 1U << 11,
    RecursiveTriggers = 1U << 12,
    CursorCloseOnCommit = 1U << 13,
    LocalCursorDefault = 1U << 14,
    TornPageDetection = 1U << 15,
    ReadOnly = 1U << 16,
    Offline = 1U << 17,
    DatabaseChaining = 1U << 18,
    Restoring = 1U << 19, ///< between two RESTORE statements: nobody may enter
};
using DatabaseOptions = std::uint32_t;

enum class RecoveryModel : std::uint8_t
{
    Simple,
    BulkLogged,
    Full
};
enum class UserAccess : std::uint8_t
{
    Multi,
    Restricted,
    Single
};

struct Database
{
    int id = 0;
    std::string name;
    std::string owner; ///< login name
    std::string collation;
    int compatibilityLevel = 80;
    DatabaseOptions options = 0;
    RecoveryModel recovery = RecoveryModel::Full;
    UserAccess access = UserAccess::Multi;
    std::int64_t created = 0; ///< storage form of datetime

    [[nodiscard]] bool isSystem() const { return id <= 4; }
};

/// Kinds of object by their xtype.
enum class ObjectKind : std::uint8_t
{
    UserTable,         ///< U
    SystemTable,       ///< S
    View,              ///< V
    Procedure,         ///< P
    ScalarFunction,    ///< FN
    InlineFunction,    ///< IF
    TableFunction,     ///< TF
    Trigger,           ///< TR
    PrimaryKey,        ///< PK
    UniqueConstraint,  ///< UQ
    ForeignKey,        ///< F
    Check,             ///< C
    Default,           ///< D
    Rule,              ///< R
    ExtendedProcedure, ///< X
};

/// "U", "V", "PK" ... without padding.
[[nodiscard]] const char* xtypeOf(ObjectKind kind);
[[nodiscard]] std::optional<ObjectKind> kindOfXtype(const std::string& xtype);

struct Identity
{
    std::int64_t seed = 1;
    std::int64_t increment = 1;
    bool notForReplication = false;
};

struct Column
{
    int id = 0; ///< colid: never reused within a table; column order is ascending id
    std::string name;
    SqlType type;
    bool nullable = true;
    bool rowGuid = false;
    bool ansiPadded = true;
    std::optional<Identity> identity;
    std::string collation;               ///< "" for a type without one
    std::string userType;                ///< name of the alias type, "" when declared with a system type
    int defaultId = 0;                   ///< object id of the default constraint, 0 when none
    std::string defaultName;             ///< its name
    std::string defaultText;             ///< expression in its parentheses, "" when none
    std::optional<std::string> computed; ///< expression text of a computed column
};

struct IndexKey
{
    int columnId = 0;
    bool descending = false;
};

struct Index
{
    int id = 0; ///< indid: 1 for a clustered one, from 2 otherwise
    std::string name;
    bool unique = false;
    bool clustered = false;
    bool primaryKey = false;
    bool uniqueConstraint = false;
    bool ignoreDuplicates = false;
    bool padded = false;
    bool noRecompute = false;
    bool enabled = true;
    int fillFactor = 0;
    int filegroupId = 1;
    int constraintId = 0; ///< object id of the PRIMARY KEY or UNIQUE constraint, 0 for a plain index
    std::vector<IndexKey> keys;
    std::vector<int> included; ///< column ids of INCLUDE
};

struct CheckConstraint
{
    int id = 0;
    std::string name;
    std::string text; ///< expression in its parentheses
    int columnId = 0; ///< the column it was declared with, 0 for a table's own
    bool enabled = true;
    bool notForReplication = false;
};

enum class ReferentialAction : std::uint8_t
{
    NoAction,
    Cascade,
    SetNull,
    SetDefault
};

struct ForeignKey
{
    int id = 0;
    std::string name;
    int tableId = 0;
    int referencedId = 0;
    int referencedIndexId = 0; ///< indid of the key that it leans on
    std::vector<int> columns;
    std::vector<int> referencedColumns;
    ReferentialAction onDelete = ReferentialAction::NoAction;
    ReferentialAction onUpdate = ReferentialAction::NoAction;
    bool enabled = true;
    bool trusted = true;
    bool notForReplication = false;
};

/// A parameter of a stored procedure, as syscolumns lists it.
struct ProcedureParameter
{
    std::string name; ///< with its @
    SqlType type;
    bool output = false;
};

/// An object of any kind. The vectors fill for tables (and `columns` for views); `text` for what is
/// written in Transact-SQL.
struct Object
{
    int databaseId = 0;
    int id = 0;
    std::string name;
    int ownerId = 1; ///< uid
    std::string owner;
    ObjectKind kind = ObjectKind::UserTable;
    int parentId = 0; ///< the table of a constraint or trigger
    std::int64_t created = 0;
    int filegroupId = 1;
    bool shipped = false;         ///< the server's own
    bool enabled = true;          ///< of a trigger
    bool quotedIdentifier = true; ///< setting under which a module was created
    bool ansiNulls = true;
    std::string text; ///< of a view, procedure, function or trigger, as it was sent

    std::vector<Column> columns;
    std::vector<Index> indexes; ///< ascending id, no entry for a heap itself
    std::vector<CheckConstraint> checks;
    std::vector<ForeignKey> foreignKeys;  ///< this table's own
    std::vector<ForeignKey> referencedBy; ///< those that point here, its own self references included
    std::vector<ProcedureParameter> parameters;

    [[nodiscard]] const Column* column(const std::string& name) const; ///< ignoring case
    [[nodiscard]] const Column* column(int id) const;
    [[nodiscard]] const Index* index(const std::string& name) const;
    [[nodiscard]] const Index* index(int id) const;
    [[nodiscard]] const Index* primaryKey() const;
    [[nodiscard]] const Column* identityColumn() const;
};

/// A principal of one database: user or role.
struct Principal
{
    int id = 0; ///< uid
    std::string name;
    std::string sid; ///< raw bytes, "" for none
    bool role = false;
    bool applicationRole = false;
    bool hasAccess = false;
};

struct Login
{
    std::string name;
    std::string sid; ///< raw bytes
    std::string defaultDatabase;
    std::string language;
    unsigned serverRoles = 0; ///< bits of ServerRole
    bool denied = false;
    bool windows = false;
};

enum ServerRole : unsigned
{
    SysAdmin = 1U << 0,
    SecurityAdmin = 1U << 1,
    ServerAdmin = 1U << 2,
    SetupAdmin = 1U << 3,
    ProcessAdmin = 1U << 4,
    DiskAdmin = 1U << 5,
    DbCreator = 1U << 6,
    BulkAdmin = 1U << 7,
};

/// Names in the store. A user table's rows live in a table of its own; a column keeps its storage
/// name through a rename, since it is named by its id.
[[nodiscard]] std::string storageTable(int databaseId, int objectId);              ///< "u5_2009058193"
[[nodiscard]] std::string storageColumn(int columnId);                             ///< "c3"
[[nodiscard]] std::string storageIndex(int databaseId, int objectId, int indexId); ///< "i5_2009058193_2"

/// Identifiers compare without regard to case, accents counting.
[[nodiscard]] bool sameName(const std::string& left, const std::string& right);
/// The form of a name that equal names share: a key for maps.
[[nodiscard]] std::string foldName(const std::string& name);

/// Snapshots: what they tell stays, whatever others change.
using ObjectPtr = std::shared_ptr<const Object>;
using DatabasePtr = std::shared_ptr<const Database>;

} // namespace practice
