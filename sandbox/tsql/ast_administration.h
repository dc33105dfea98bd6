// The syntax tree of the statements for databases, backups, logins, users and permissions.
#pragma once

#include "tsql/ast_statement.h"

namespace practice::ast {

enum class SizeUnit : std::uint8_t
{
    None,
    KB,
    MB,
    GB,
    TB,
    Percent
};

struct FileSize
{
    std::int64_t number = 0;
    SizeUnit unit = SizeUnit::None; ///< None means megabytes
};

/// (NAME = ..., FILENAME = ..., SIZE = ..., MAXSIZE = ..., FILEGROWTH = ...)
struct FileSpec
{
    SourceRange source;
    std::string name;
    std::string newName; ///< of MODIFY FILE, or ""
    std::optional<std::string> fileName;
    std::optional<FileSize> size;
    std::optional<FileSize> maxSize;
    bool unlimited = false; ///< MAXSIZE = UNLIMITED
    std::optional<FileSize> growth;
    bool offline = false;
};

/// A group without a name is the primary one (or what comes before the first FILEGROUP).
struct FileGroupSpec
{
    std::string name;
    bool isDefault = false;
    std::vector<FileSpec> files;
};

struct CreateDatabaseStatement : StatementOf<StatementKind::CreateDatabase>
{
    std::string name;
    bool primaryKeyword = false;       ///< ON PRIMARY
    std::vector<FileGroupSpec> groups; ///< of ON; the first is the primary one, maybe without files
    std::vector<FileSpec> logFiles;    ///< of LOG ON
    std::string collation;
    bool forAttach = false;
    bool forLoad = false;
    bool rebuildLog = false;          ///< FOR ATTACH_REBUILD_LOG
    std::string snapshotOf;           ///< AS SNAPSHOT OF
    std::vector<NamedOption> options; ///< of WITH
};

enum class AlterDatabaseAction : std::uint8_t
{
    AddFile,
    AddLogFile,
    RemoveFile,
    AddFileGroup,
    RemoveFileGroup,
    ModifyFile,
    ModifyFileGroup,
    RenameFileGroup,
    ModifyName,
    Collate,
    SetOptions,
};

enum class Termination : std::uint8_t
{
    None,
    RollbackImmediate,
    RollbackAfter,
    NoWait
};

struct AlterDatabaseStatement : StatementOf<StatementKind::AlterDatabase>
{
    std::string name;     ///< "" when `current`
    bool current = false; ///< ALTER DATABASE CURRENT
    AlterDatabaseAction action = AlterDatabaseAction::SetOptions;
    std::vector<FileSpec> files; ///< of AddFile, AddLogFile, ModifyFile
    std::string file;            ///< of RemoveFile
    std::string fileGroup;       ///< of TO FILEGROUP and of the actions on a filegroup
    std::string newName;         ///< of ModifyName, RenameFileGroup
    std::string property;        ///< of ModifyFileGroup, upper case: READONLY, READWRITE, DEFAULT ...
    std::string collation;
    /// Of SetOptions. "SINGLE_USER" has no value, "RECOVERY" the word FULL, "ANSI_NULLS" ON or OFF.
    std::vector<NamedOption> options;
    Termination termination = Termination::None;
    int terminationSeconds = 0; ///< of RollbackAfter
};

enum class DeviceKind : std::uint8_t
{
    Logical,
    Disk,
    Tape,
    Url,
    Pipe
};

struct BackupDevice
{
    DeviceKind kind = DeviceKind::Logical;
    ExpressionPtr name; ///< a string literal (bareWord for a logical device) or a variable
};

/// FILE = 'x' and FILEGROUP = 'x' before TO or FROM.
struct BackupFile
{
    bool group = false;
    ExpressionPtr name;
};

/// One of the options after WITH. "MOVE 'a' TO 'b'" has both as values.
using BackupOption = NamedOption;

enum class BackupKind : std::uint8_t
{
    Database,
    Log
};

struct BackupStatement : StatementOf<StatementKind::Backup>
{
    BackupKind backupKind = BackupKind::Database;
    ExpressionPtr database; ///< a bareWord literal or a variable
    std::vector<BackupFile> files;
    std::vector<BackupDevice> devices;
    std::vector<BackupOption> options;
};

enum class RestoreKind : std::uint8_t
{
    Database,
    Log,
    HeaderOnly,
    FileListOnly,
    VerifyOnly,
    LabelOnly,
    RewindOnly
};

struct RestoreStatement : StatementOf<StatementKind::Restore>
{
    RestoreKind restoreKind = RestoreKind::Database;
    ExpressionPtr database; ///< null for the kinds that only read a device
    std::vector<BackupFile> files;
    std::vector<BackupDevice> devices; ///< may be empty: RESTORE DATABASE x WITH RECOVERY
    std::vector<BackupOption> options;
};

// Security --------------------------------------------------------------------------------------

enum class PermissionAction : std::uint8_t
{
    Grant,
    Deny,
    Revoke
};

struct PermissionItem
{
    std::string name; ///< upper case, words joined by one blank: "SELECT", "CREATE TABLE", "ALL"
    std::vector<std::string> columns;
};

struct PermissionStatement : StatementOf<StatementKind::Permission>
{
    PermissionAction action = PermissionAction::Grant;
    bool grantOptionFor = false; ///< REVOKE GRANT OPTION FOR
    std::vector<PermissionItem> permissions;
    std::string securableClass; ///< upper case: "OBJECT", "SCHEMA", "DATABASE" ... or "" (an object)
    ObjectName securable;       ///< empty for a statement permission
    std::vector<std::string> securableColumns;
    std::vector<std::string> principals; ///< PUBLIC as written
    bool withGrantOption = false;
    bool cascade = false;
    std::string grantor; ///< AS, or ""
};

struct CreateLoginStatement : StatementOf<StatementKind::CreateLogin>
{
    std::string name;
    bool windows = false; ///< FROM WINDOWS
    std::string password; ///< WITH PASSWORD = 'x', or the digits of PASSWORD = 0x... when `hashed`
    bool hasPassword = false;
    bool hashed = false;
    bool mustChange = false;
    std::vector<NamedOption> options; ///< DEFAULT_DATABASE, DEFAULT_LANGUAGE, CHECK_POLICY, SID ...
};

struct AlterLoginStatement : StatementOf<StatementKind::AlterLogin>
{
    std::string name;
    std::optional<bool> enable; ///< ENABLE or DISABLE
    std::string password;
    bool hasPassword = false;
    bool hashed = false;
    std::optional<std::string> oldPassword;
    bool mustChange = false;
    bool unlock = false;
    std::vector<NamedOption> options; ///< NAME, DEFAULT_DATABASE ...
};

struct CreateUserStatement : StatementOf<StatementKind::CreateUser>
{
    std::string name;
    std::string login; ///< FOR|FROM LOGIN, or ""
    bool withoutLogin = false;
    std::vector<NamedOption> options; ///< DEFAULT_SCHEMA
};

struct AlterUserStatement : StatementOf<StatementKind::AlterUser>
{
    std::string name;
    std::vector<NamedOption> options; ///< NAME, DEFAULT_SCHEMA, LOGIN
};

struct CreateRoleStatement : StatementOf<StatementKind::CreateRole>
{
    bool server = false; ///< SERVER ROLE
    std::string name;
    std::string owner; ///< AUTHORIZATION, or ""
};

enum class AlterRoleAction : std::uint8_t
{
    AddMember,
    DropMember,
    Rename
};

struct AlterRoleStatement : StatementOf<StatementKind::AlterRole>
{
    bool server = false;
    std::string name;
    AlterRoleAction action = AlterRoleAction::AddMember;
    std::string operand; ///< the member, or the new name
};

struct CreateSchemaStatement : StatementOf<StatementKind::CreateSchema>
{
    std::string name;
    std::string owner;
};

struct AlterSchemaStatement : StatementOf<StatementKind::AlterSchema>
{
    std::string name;
    ObjectName transferred;
};

struct AlterAuthorizationStatement : StatementOf<StatementKind::AlterAuthorization>
{
    std::string securableClass; ///< upper case, or ""
    ObjectName securable;
    std::string owner;
};

} // namespace practice::ast
