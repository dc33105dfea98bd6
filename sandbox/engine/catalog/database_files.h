// The files of databases and backups: their names in the server's Windows form, and the files that
// stand for them on disk. `C:\` is the root of the file system; a page is 8 KB.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

namespace practice {

inline constexpr std::int64_t pageSize = 8192;

/// "C:\data\x.mdf" to "/data/x.mdf"; forward slashes and any drive letter are taken too.
[[nodiscard]] std::filesystem::path nativePath(const std::string& windowsPath);
[[nodiscard]] std::string windowsPath(const std::filesystem::path& native);
/// True for a path that begins with a drive, as the server asks of file names.
[[nodiscard]] bool isAbsolutePath(const std::string& windowsPath);

/// Where files go that are created without a name: the folder "data" of the data directory.
[[nodiscard]] std::string defaultFileFolder(const std::filesystem::path& dataDirectory);

/// @throws SqlError 5170 when there is a file of that name
void requireNoFile(const std::string& windowsPath);
/// Makes a file of that many pages, without occupying the space before it is used.
/// @throws SqlError 5170 when the file exists, 5123 when it can't be made, 5149 when it can't grow
void createDatabaseFile(const std::string& windowsPath, std::int64_t pages);
void resizeDatabaseFile(const std::string& windowsPath, std::int64_t pages);
/// A missing file is no error: what the catalog forgets is gone in any case.
void removeDatabaseFile(const std::string& windowsPath) noexcept;

} // namespace practice
