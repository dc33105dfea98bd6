// The files and filegroups of databases, as CREATE DATABASE and ALTER DATABASE write them.
#pragma once

#include "engine/catalog/catalog_writer.h"
#include "engine/context/session_context.h"
#include "tsql/ast.h"

#include <string>
#include <vector>

namespace practice {

/// Pages of 8 KB; megabytes where no unit is written.
/// @throws SqlError 1842 when it is too large
[[nodiscard]] std::int64_t pagesOf(const ast::FileSize& size);

/// A file as it is to be, checked but not made: sizes, growth, an absolute path into a folder that
/// exists. `extension` goes to a file without a name of its own.
/// @throws SqlError 5103, 5105, 5133, 5169, 5170, 5174
[[nodiscard]] NewFile defineFile(SessionContext& session, const ast::FileSpec& spec, bool log,
                                 const char* extension);

/// @throws SqlError 5170 when a database uses the path already
void requireUnusedPath(SessionContext& session, const std::string& path);

/// Makes the file, which vanishes again unless the statement gets to its end.
/// @throws SqlError 5123, 5170
void createFile(SessionContext& session, const NewFile& file);

// ALTER DATABASE's share; `database` exists and may be altered.
void addFiles(SessionContext& session, const Database& database,
              const ast::AlterDatabaseStatement& statement);
void removeFile(SessionContext& session, const Database& database, const std::string& name);
void modifyFile(SessionContext& session, const Database& database, const ast::FileSpec& spec);
void addFilegroup(SessionContext& session, const Database& database, const std::string& name);
void removeFilegroup(SessionContext& session, const Database& database, const std::string& name);
void modifyFilegroup(SessionContext& session, const Database& database, const std::string& name,
                     const std::string& property);
void renameFilegroup(SessionContext& session, const Database& database, const std::string& name,
                     const std::string& newName);

/// The filegroup that ADD FILE names.
/// @throws SqlError 1921, 5048
[[nodiscard]] int groupForFiles(SessionContext& session, int databaseId, const std::string& name);
/// Whether a data file may leave its group. Rows are known by their group alone, so a file counts as
/// empty while the group has another.
/// @throws SqlError 5031, 5042, 5055
void requireRemovable(SessionContext& session, int databaseId, int groupId, const std::string& file);

/// The one that what names no filegroup goes to.
void setDefaultFilegroup(SessionContext& session, int databaseId, int groupId);

/// @return the new group's id
int insertFilegroup(SessionContext& session, int databaseId, const std::string& name);

} // namespace practice
