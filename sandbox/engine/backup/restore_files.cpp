#include "engine/backup/restore_files.h"

#include "engine/catalog/database_files.h"
#include "engine/catalog/pending_files.h"
#include "engine/messages/errors.h"

#include <algorithm>

namespace practice {
namespace {

void applyMoves(std::map<int, std::string>& places, const SetHeader& set, const BackupOptions& options)
{
    for (const auto& [name, path] : options.moves) {
        const auto file =
            std::find_if(set.files.begin(), set.files.end(),
                         [&name = name](const BackedUpFile& known) { return sameName(known.name, name); });
        if (file == set.files.end())
            raise(3234, {name, set.database});
        places[file->id] = path;
    }
}

bool isOwn(const std::map<int, std::string>& standing, const std::string& path)
{
    return std::any_of(standing.begin(), standing.end(),
                       [&path](const auto& file) { return nativePath(file.second) == nativePath(path); });
}

/// Tells what is wrong with a place, if anything is.
bool refusePlace(SessionContext& session, sqlite3* connection, int databaseId, const std::string& name,
                 const std::string& path, const std::map<int, std::string>& standing)
{
    std::error_code none;
    if (!isAbsolutePath(path) || !std::filesystem::is_directory(nativePath(path).parent_path(), none)) {
        session.inform(5133, {path, "2(The system cannot find the file specified.)"});
    } else {
        Statement other(connection, "SELECT d.name FROM cat_file f JOIN cat_database d ON d.dbid = f.dbid "
                                    "WHERE f.dbid <> ? AND f.filename = ?");
        if (other.bind(1, databaseId).bind(2, path).step())
            session.inform(1834, {path, other.string(0)});
        else if (isOwn(standing, path) || !std::filesystem::exists(nativePath(path), none))
            return false;
        else
            session.inform(5170, {path});
    }
    session.inform(3156, {name, path});
    return true;
}

void requireApart(const SetHeader& set, const std::map<int, std::string>& places)
{
    for (const BackedUpFile& left : set.files) {
        for (const BackedUpFile& right : set.files) {
            if (left.id < right.id && nativePath(places.at(left.id)) == nativePath(places.at(right.id)))
                raise(3176, {places.at(left.id), right.name, std::to_string(right.id), left.name,
                             std::to_string(left.id)});
        }
    }
}

} // namespace

std::map<int, std::string> standingFiles(sqlite3* connection, int databaseId)
{
    std::map<int, std::string> files;
    Statement rows(connection, "SELECT fileid, filename FROM cat_file WHERE dbid = ?");
    rows.bind(1, databaseId);
    while (rows.step())
        files[rows.number(0)] = rows.string(1);
    return files;
}

std::map<int, std::string> placeFiles(SessionContext& session, sqlite3* connection, int databaseId,
                                      const SetHeader& set, const BackupOptions& options,
                                      const std::map<int, std::string>& standing)
{
    std::map<int, std::string> places;
    for (const BackedUpFile& file : set.files) {
        const auto now = standing.find(file.id);
        const bool stays = set.kind != SetKind::Full && now != standing.end();
        places[file.id] = stays ? now->second : file.path;
    }
    applyMoves(places, set, options);
    bool refused = false;
    for (const BackedUpFile& file : set.files)
        refused |= refusePlace(session, connection, databaseId, file.name, places[file.id], standing);
    if (refused)
        raise(3119);
    requireApart(set, places);
    return places;
}

void makeFiles(SessionContext& session, Store& store, const SetHeader& set,
               const std::map<int, std::string>& standing, const std::map<int, std::string>& places)
{
    for (const auto& [id, path] : standing)
        followTransaction(store, session.dataDirectory(), path);
    for (const BackedUpFile& file : set.files) {
        const std::string& path = places.at(file.id);
        if (isOwn(standing, path))
            continue;
        followTransaction(store, session.dataDirectory(), path);
        createDatabaseFile(path, file.pages);
    }
}

} // namespace practice
