// How the system tables and views are written down: each column with its type and the expression
// over the catalog's tables that yields it.
#pragma once

#include "engine/catalog/catalog.h"

#include <span>

namespace practice {

struct SystemTableDefinition
{
    const char* schema;
    const char* name;
    bool masterOnly;
    /// One line a column: name (& for a blank in it), type (with ? where it may be NULL), expression in
    /// SQLite's dialect.
    const char* columns;
    /// From FROM on; :db stands for the database's id.
    const char* source;
};

/// Reads the lines of a definition into typed columns and one SELECT.
[[nodiscard]] SystemTable compileSystemTable(const SystemTableDefinition& definition);

[[nodiscard]] std::span<const SystemTableDefinition> objectSystemTables(); ///< sysobjects, syscolumns ...
[[nodiscard]] std::span<const SystemTableDefinition> indexSystemTables();  ///< sysindexes, sysreferences ...
[[nodiscard]] std::span<const SystemTableDefinition> fileSystemTables();   ///< sysfiles, sysdatabases ...
[[nodiscard]] std::span<const SystemTableDefinition> securitySystemTables(); ///< sysusers, syslogins ...
[[nodiscard]] std::span<const SystemTableDefinition> serverSystemTables();   ///< sysprocesses, spt_values ...
/// Of syslanguages, as in a definition.
[[nodiscard]] const char* languageColumns();
[[nodiscard]] const char* languageRows();
[[nodiscard]] std::span<const SystemTableDefinition> informationSchemaViews();
[[nodiscard]] std::span<const SystemTableDefinition> catalogViews(); ///< sys.objects, sys.columns ...
[[nodiscard]] std::span<const SystemTableDefinition>
constraintCatalogViews(); ///< sys.indexes, sys.foreign_keys ...

} // namespace practice
