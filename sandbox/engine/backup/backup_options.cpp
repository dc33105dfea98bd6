#include "engine/backup/backup_options.h"

#include "engine/catalog/database_files.h"
#include "engine/messages/errors.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

namespace practice {
namespace {

struct OptionWord
{
    std::string_view name;
    bool backup;  ///< may stand in BACKUP
    bool restore; ///< may stand in RESTORE
};

/// What is taken without an effect: there is one kind of file, which is always checksummed.
constexpr std::array withoutEffect = {
    OptionWord{"BLOCKSIZE", true, true},       OptionWord{"BUFFERCOUNT", true, true},
    OptionWord{"CHECKSUM", true, true},        OptionWord{"COMPRESSION", true, false},
    OptionWord{"EXPIREDATE", true, false},     OptionWord{"LOADHISTORY", false, true},
    OptionWord{"MAXTRANSFERSIZE", true, true}, OptionWord{"MEDIADESCRIPTION", true, false},
    OptionWord{"MEDIANAME", true, true},       OptionWord{"NOFORMAT", true, false},
    OptionWord{"NOREWIND", true, true},        OptionWord{"NOSKIP", true, false},
    OptionWord{"NOUNLOAD", true, true},        OptionWord{"NO_CHECKSUM", true, true},
    OptionWord{"NO_COMPRESSION", true, false}, OptionWord{"RETAINDAYS", true, false},
    OptionWord{"REWIND", true, true},          OptionWord{"SKIP", true, false},
    OptionWord{"STOP_ON_ERROR", true, true},   OptionWord{"UNLOAD", true, true},
};

/// What SQL Server knows beyond that.
constexpr std::array<std::string_view, 11> notOffered = {
    "CONTINUE_AFTER_ERROR", "NO_TRUNCATE",    "PARTIAL",  "RESTRICTED_USER", "STANDBY",         "STOPAT",
    "STOPATMARK",           "STOPBEFOREMARK", "PASSWORD", "MEDIAPASSWORD",   "KEEP_REPLICATION"};

std::string optionText(const ast::BackupOption& option, std::size_t place, const TextOf& textOf)
{
    return place < option.values.size() ? textOf(*option.values[place]) : std::string();
}

int optionNumber(const ast::BackupOption& option, const char* statement, const TextOf& textOf)
{
    const std::string text = optionText(option, 0, textOf);
    int number = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (failure != std::errc() || end != text.data() + text.size() || number < 1)
        raise(155, {option.name, statement});
    return number;
}

bool readBackupOption(BackupOptions& options, const ast::BackupOption& option, const TextOf& textOf)
{
    if (option.name == "DIFFERENTIAL")
        options.differential = true;
    else if (option.name == "COPY_ONLY")
        options.copyOnly = true;
    else if (option.name == "INIT" || option.name == "NOINIT")
        options.init = option.name == "INIT";
    else if (option.name == "FORMAT")
        options.init = options.format = true;
    else if (option.name == "NAME")
        options.name = optionText(option, 0, textOf);
    else if (option.name == "DESCRIPTION")
        options.description = optionText(option, 0, textOf);
    else
        return false;
    return true;
}

bool readRestoreOption(BackupOptions& options, const ast::BackupOption& option, const TextOf& textOf)
{
    if (option.name == "MOVE")
        options.moves.emplace_back(optionText(option, 0, textOf), optionText(option, 1, textOf));
    else if (option.name == "REPLACE")
        options.replace = true;
    else if (option.name == "RECOVERY" || option.name == "NORECOVERY")
        options.noRecovery = option.name == "NORECOVERY";
    else if (option.name == "FILE")
        options.file = optionNumber(option, "RESTORE", textOf);
    else
        return false;
    return true;
}

bool hasNoEffect(const std::string& name, bool backup)
{
    return std::any_of(withoutEffect.begin(), withoutEffect.end(), [&](const OptionWord& word) {
        return word.name == name && (backup ? word.backup : word.restore);
    });
}

} // namespace

BackupOptions readOptions(const std::vector<ast::BackupOption>& words, const char* statement,
                          const TextOf& textOf)
{
    constexpr int usualStep = 10;
    const bool backup = std::string_view(statement) == "BACKUP";
    BackupOptions options;
    for (const ast::BackupOption& word : words) {
        if (backup ? readBackupOption(options, word, textOf) : readRestoreOption(options, word, textOf))
            continue;
        if (word.name == "STATS")
            options.stats = word.values.empty() ? usualStep : optionNumber(word, statement, textOf);
        else if (std::find(notOffered.begin(), notOffered.end(), word.name) != notOffered.end())
            raise(40510, {std::string(statement) + " WITH " + word.name});
        else if (!hasNoEffect(word.name, backup))
            raise(155, {word.name, statement});
    }
    return options;
}

DeviceFile deviceFile(SessionContext& session, const std::vector<ast::BackupDevice>& devices,
                      const TextOf& textOf)
{
    using enum ast::DeviceKind;
    if (devices.size() != 1)
        raise(40510, {"BACKUP to several devices"});
    const ast::BackupDevice& device = devices.front();
    if (device.kind != Logical && device.kind != Disk)
        raise(40510, {"BACKUP to another device than a disk"});
    std::string path = textOf(*device.name);
    if (device.kind == Logical) {
        Statement row(session.connection(), "SELECT phyname FROM cat_device WHERE fold = ? AND status = 16");
        if (!row.bind(1, foldName(path)).step())
            raise(3206, {path});
        path = row.string(0);
    }
    path.erase(path.find_last_not_of(' ') + 1);
    if (path.empty())
        raise(3044);
    if (isAbsolutePath(path))
        return {path, nativePath(path)};
    // A name without a folder means the server's own folder for backups.
    const std::filesystem::path folder = std::filesystem::absolute(session.dataDirectory()) / "backup";
    std::filesystem::create_directories(folder);
    const std::filesystem::path native = (folder / nativePath(path).relative_path()).lexically_normal();
    return {windowsPath(native), native};
}

} // namespace practice
