#include "engine/catalog/database_files.h"

#include "engine/messages/errors.h"

#include <algorithm>
#include <fstream>
#include <system_error>

namespace practice {
namespace {

bool hasDrive(const std::string& path)
{
    return path.size() > 2 && path[1] == ':' && (path[2] == '\\' || path[2] == '/') &&
           ((path[0] >= 'A' && path[0] <= 'Z') || (path[0] >= 'a' && path[0] <= 'z'));
}

std::string causeText(const std::error_code& code)
{
    if (code == std::errc::permission_denied || code == std::errc::read_only_file_system)
        return "5(Access is denied.)";
    if (code == std::errc::no_such_file_or_directory || code == std::errc::not_a_directory)
        return "3(The system cannot find the path specified.)";
    if (code == std::errc::no_space_on_device)
        return "112(There is not enough space on the disk.)";
    return "1117(The request could not be performed because of an I/O device error.)";
}

} // namespace

std::filesystem::path nativePath(const std::string& windowsPath)
{
    std::string path = hasDrive(windowsPath) ? windowsPath.substr(2) : windowsPath;
    std::replace(path.begin(), path.end(), '\\', '/');
    return std::filesystem::path(path).lexically_normal();
}

std::string windowsPath(const std::filesystem::path& native)
{
    std::string path = native.string();
    std::replace(path.begin(), path.end(), '/', '\\');
    return hasDrive(path) ? path : "C:" + path;
}

bool isAbsolutePath(const std::string& windowsPath)
{
    return hasDrive(windowsPath);
}

std::string defaultFileFolder(const std::filesystem::path& dataDirectory)
{
    return windowsPath(std::filesystem::absolute(dataDirectory) / "data");
}

void requireNoFile(const std::string& windowsPath)
{
    if (std::filesystem::exists(nativePath(windowsPath)))
        raise(5170, {windowsPath});
}

void createDatabaseFile(const std::string& windowsPath, std::int64_t pages)
{
    requireNoFile(windowsPath);
    if (!std::ofstream(nativePath(windowsPath), std::ios::binary)) {
        const std::error_code cause(errno, std::generic_category());
        raise(5123, {causeText(cause), windowsPath});
    }
    resizeDatabaseFile(windowsPath, pages);
}

void resizeDatabaseFile(const std::string& windowsPath, std::int64_t pages)
{
    std::error_code failure;
    std::filesystem::resize_file(nativePath(windowsPath), std::uintmax_t(pages * pageSize), failure);
    if (failure)
        raise(5149, {causeText(failure), windowsPath});
}

void removeDatabaseFile(const std::string& windowsPath) noexcept
{
    std::error_code ignored;
    std::filesystem::remove(nativePath(windowsPath), ignored);
}

} // namespace practice
