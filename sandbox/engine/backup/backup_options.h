// The words behind WITH, and the devices, of BACKUP and RESTORE.
#pragma once

#include "engine/context/session_context.h"
#include "tsql/ast.h"

#include <filesystem>
#include <functional>
#include <map>
#include <optional>

namespace practice {

/// The text of a constant or variable, as the session that runs the statement knows it.
using TextOf = std::function<std::string(const ast::Expression&)>;

struct BackupOptions
{
    bool differential = false;
    bool copyOnly = false;
    bool init = false;   ///< drops the sets that are there
    bool format = false; ///< even those of something that is no backup
    bool replace = false;
    bool noRecovery = false;
    std::optional<int> stats; ///< percent between two messages
    int file = 1;
    std::string name;
    std::string description;
    std::vector<std::pair<std::string, std::string>> moves;
};

/// @param statement "BACKUP" or "RESTORE"
/// @throws SqlError 155, 3011, 40510
[[nodiscard]] BackupOptions readOptions(const std::vector<ast::BackupOption>& options, const char* statement,
                                        const TextOf& textOf);

struct DeviceFile
{
    std::string shown; ///< as messages call it: the path in the server's form
    std::filesystem::path path;
};

/// @throws SqlError 3206, 3044, 40510
[[nodiscard]] DeviceFile deviceFile(SessionContext& session, const std::vector<ast::BackupDevice>& devices,
                                    const TextOf& textOf);

} // namespace practice
