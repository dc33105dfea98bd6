// How the system procedures are written down, and what they share: arguments by position or name,
// result sets straight from the catalog's tables.
#pragma once

#include "engine/context/session_context.h"

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace practice {

/// One call with its arguments sorted into the places of the declared parameters.
class ProcedureCall
{
public:
    /// @param declared "@objname @newname @objtype=": those with = may be left out
    /// @throws SqlError 201, 8143, 8144, 8145
    ProcedureCall(SessionContext& session, const char* name, std::string_view declared,
                  const std::vector<Parameter>& arguments);

    [[nodiscard]] SessionContext& session() const { return session_; }
    [[nodiscard]] const char* name() const { return name_; }
    /// The argument as text; none when it was left out or is NULL.
    [[nodiscard]] const std::optional<std::string>& text(std::size_t place) const { return values_[place]; }
    [[nodiscard]] std::string textOr(std::size_t place, const char* otherwise) const
    {
        return values_[place].value_or(otherwise);
    }
    [[nodiscard]] int numberOr(std::size_t place, int otherwise) const;
    [[nodiscard]] int database() const { return session_.database()->id; }

    /// Sends one result set: `columns` and `source` as in a SystemTableDefinition, `:db` being the
    /// current database.
    /// @return the number of rows
    std::uint64_t sendRows(const char* columns, const std::string& source) const;

private:
    SessionContext& session_;
    const char* name_;
    std::vector<std::optional<std::string>> values_;
};

struct SystemProcedure
{
    const char* name;
    std::string_view parameters;
    int (*run)(const ProcedureCall& call); ///< @return the procedure's status
};

[[nodiscard]] std::span<const SystemProcedure> helpProcedures();         ///< sp_help, sp_helptext ...
[[nodiscard]] std::span<const SystemProcedure> securityHelpProcedures(); ///< sp_helplogins, sp_helpuser ...
[[nodiscard]] std::span<const SystemProcedure> databaseProcedures();     ///< sp_helpdb, sp_dboption ...
[[nodiscard]] std::span<const SystemProcedure> driverProcedures();       ///< sp_tables, sp_columns ...
[[nodiscard]] std::span<const SystemProcedure> driverTypeProcedures();   ///< sp_datatype_info, sp_server_info
[[nodiscard]] std::span<const SystemProcedure> securityProcedures();     ///< sp_addlogin, sp_addrole ...
[[nodiscard]] std::span<const SystemProcedure> renameProcedures();       ///< sp_rename
[[nodiscard]] std::span<const SystemProcedure> serverProcedures();       ///< sp_who, sp_configure ...

/// Of all of them; in the order of their groups.
[[nodiscard]] std::vector<std::string> systemProcedureNames();

/// `expression LIKE pattern` in SQLite's dialect, by Transact-SQL's rules; always true without a
/// pattern.
[[nodiscard]] std::string likePattern(const std::string& expression,
                                      const std::optional<std::string>& pattern);

} // namespace practice
