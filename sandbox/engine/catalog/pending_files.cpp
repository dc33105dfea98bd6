#include "engine/catalog/pending_files.h"

#include "engine/catalog/database_files.h"
#include "engine/messages/errors.h"
#include "engine/store/store.h"

#include <atomic>
#include <fstream>
#include <iterator>
#include <vector>

#include <unistd.h>

namespace practice {

namespace {

namespace fs = std::filesystem;

/// A note without it was cut short, and nothing was done to the file yet.
constexpr char noteEnd = '\n';

fs::path noteFolder(const fs::path& dataDirectory)
{
    return dataDirectory / "pending";
}

fs::path writeNote(const fs::path& dataDirectory, const std::string& path)
{
    static std::atomic<int> count{0};
    fs::create_directories(noteFolder(dataDirectory));
    fs::path note = noteFolder(dataDirectory) / (std::to_string(getpid()) + '-' + std::to_string(++count));
    std::ofstream out(note, std::ios::binary);
    if (!(out << path << noteEnd).flush())
        raise(5123, {"112(There is not enough space on the disk.)", path});
    return note;
}

/// A file that the catalog does not list goes; one that it lists has the size that stands there.
void settle(sqlite3* connection, const std::string& path)
{
    Statement listed(connection, "SELECT size FROM cat_file WHERE filename = ? COLLATE BINARY");
    if (!listed.bind(1, path).step())
        return removeDatabaseFile(path);
    const auto bytes = static_cast<std::uintmax_t>(listed.integer(0) * pageSize);
    std::error_code failure;
    if (fs::file_size(nativePath(path), failure) != bytes && !failure)
        resizeDatabaseFile(path, listed.integer(0));
}

} // namespace

void followTransaction(Store& store, const fs::path& dataDirectory, const std::string& windowsPath)
{
    const fs::path note = writeNote(dataDirectory, windowsPath);
    store.atEnd([connection = store.connection(), note, windowsPath] {
        settle(connection, windowsPath);
        fs::remove(note);
    });
}

void settlePendingFiles(Store& store, const fs::path& dataDirectory)
{
    std::error_code none;
    std::vector<fs::path> notes;
    for (const auto& entry : fs::directory_iterator(noteFolder(dataDirectory), none))
        notes.push_back(entry.path());
    for (const fs::path& note : notes) {
        std::ifstream in(note, std::ios::binary);
        std::string path((std::istreambuf_iterator<char>(in)), {});
        in.close();
        if (path.ends_with(noteEnd)) {
            path.pop_back();
            settle(store.connection(), path);
        }
        fs::remove(note);
    }
}

} // namespace practice
