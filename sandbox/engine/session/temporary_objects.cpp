#include "engine/session/temporary_objects.h"

#include "engine/catalog/catalog_types.h"
#include "engine/catalog/catalog_writer.h"
#include "engine/context/temporary_names.h"
#include "engine/store/storage.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace practice {

namespace {

constexpr const char* filler = "___________";

std::vector<int> idsOf(Statement& rows)
{
    std::vector<int> ids;
    while (rows.step())
        ids.push_back(rows.number(0));
    rows.reset();
    return ids;
}

void dropOne(sqlite3* connection, int id)
{
    Statement children(connection, "SELECT id FROM cat_object WHERE dbid = ? AND parent = ?");
    children.bind(1, tempdbId).bind(2, id);
    for (const int child : idsOf(children)) {
        deleteConstraintRows(connection, tempdbId, child);
        deleteObject(connection, tempdbId, child);
    }
    Statement indexes(connection, "SELECT indid FROM cat_index WHERE dbid = ? AND id = ?");
    indexes.bind(1, tempdbId).bind(2, id);
    for (const int index : idsOf(indexes))
        deleteIndex(connection, tempdbId, id, index);
    deleteObject(connection, tempdbId, id);
    execute(connection, "DROP TABLE IF EXISTS " + storageTable(tempdbId, id));
}

} // namespace

std::string temporaryStoredName(const std::string& name, int spid, int serial)
{
    std::array<char, 32> suffix{};
    std::snprintf(suffix.data(), suffix.size(), "%s%05X%07X", filler, static_cast<unsigned>(spid),
                  static_cast<unsigned>(serial));
    return name + suffix.data();
}

std::string temporaryWrittenName(const std::string& stored)
{
    constexpr std::size_t suffix = 11 + 12;
    const bool own = isTemporary(stored) && !isGlobalTemporary(stored) && stored.size() > suffix &&
                     stored.compare(stored.size() - suffix, 11, filler) == 0;
    return own ? stored.substr(0, stored.size() - suffix) : stored;
}

std::vector<int> temporaryObjectsOf(sqlite3* connection, int spid)
{
    std::array<char, 32> mark{};
    std::snprintf(mark.data(), mark.size(), "%s%05X", filler, static_cast<unsigned>(spid));
    Statement rows(connection,
                   "SELECT id FROM cat_object WHERE dbid = ?1 AND name LIKE '#%' AND name NOT LIKE '##%' "
                   "AND substr(name, -23, 16) = ?2 AND parent = 0");
    rows.bind(1, tempdbId).bind(2, mark.data());
    return idsOf(rows);
}

void dropTemporaryObjects(sqlite3* connection, const std::vector<int>& ids)
{
    for (const int id : ids)
        dropOne(connection, id);
}

void TemporaryLeftovers::add(const std::vector<int>& ids) noexcept
try {
    const std::lock_guard lock(mutex_);
    ids_.insert(ids_.end(), ids.begin(), ids.end());
} catch (...) {
    return; // no memory: they stay until the next start
}

void TemporaryLeftovers::sweep(Store& store) noexcept
{
    const std::lock_guard lock(mutex_);
    if (ids_.empty() || store.inTransaction())
        return;
    const int patience = store.lockTimeout();
    store.setLockTimeout(0);
    const CancelShield shield(store);
    try {
        store.beginWrite();
        dropTemporaryObjects(store.connection(), ids_);
        store.commit();
        ids_.clear();
    } catch (...) {
        store.rollback(); // the next session that ends tries again
    }
    store.setLockTimeout(patience);
}

} // namespace practice
