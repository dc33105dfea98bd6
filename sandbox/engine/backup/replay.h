// Makes a database what a set says, within the transaction that the caller has open.
#pragma once

#include "engine/backup/set_reader.h"
#include "engine/catalog/catalog_types.h"

#include <map>

namespace practice {

/// As what the database is to stand in the catalog.
struct ReplayTarget
{
    int databaseId = 0;
    std::string name;
    std::string ownerSid;
    std::map<int, std::string> paths; ///< of its files by their ids
    bool restoring = false;           ///< more sets are to follow
};

class Replay
{
public:
    Replay(Store& store, ReplayTarget target) : store_(store), target_(std::move(target)) {}

    /// Puts the set's contents in the place of all that is there (a full set) or over it (the others).
    /// @return how many rows it held
    std::uint64_t run(RecordReader& records, SetKind kind, const std::function<void()>& afterRows);

private:
    void removeCatalog();
    RecordKind replayCatalog(RecordReader& records);
    void adjustIt();
    void rememberTables();
    void dropGoneTables();
    RecordKind replayTable(RecordReader& records, SetKind kind, const std::function<void()>& afterRows);
    void prepareTable(const Object& table, const std::string& shape);
    void dropIndexes(int tableId);
    void makeIndexes(const Object& table);

    Store& store_;
    ReplayTarget target_;
    std::map<int, ObjectPtr> former_; ///< tables that stood before and still hold their rows
    std::uint64_t rows_ = 0;
};

} // namespace practice
