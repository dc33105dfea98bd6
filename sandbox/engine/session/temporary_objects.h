// What lives in tempdb for one session only, and how it goes.
#pragma once

#include "engine/store/store.h"

#include <mutex>
#include <string>
#include <vector>

namespace practice {

/// A "#name" of a session, and the name that it has in tempdb's catalog.
struct TemporaryObject
{
    std::string fold; ///< the name as the session writes it, folded
    std::string stored;
};

/// The name under which a session's `serial`th temporary object stands in the catalog.
[[nodiscard]] std::string temporaryStoredName(const std::string& name, int spid, int serial);
/// "#name" again, for messages; other names as they are.
[[nodiscard]] std::string temporaryWrittenName(const std::string& stored);

/// The ids of all that a session has under such names.
[[nodiscard]] std::vector<int> temporaryObjectsOf(sqlite3* connection, int spid);

/// Drops tables and procedures of tempdb by their ids; those that are gone already are passed over.
/// Inside a transaction only.
void dropTemporaryObjects(sqlite3* connection, const std::vector<int>& ids);

/// What nobody can reach any more and could not be dropped yet, since another session was writing.
class TemporaryLeftovers
{
public:
    void add(const std::vector<int>& ids) noexcept;
    /// Drops what there is unless the store is busy; never waits.
    void sweep(Store& store) noexcept;

private:
    std::mutex mutex_;
    std::vector<int> ids_;
};

} // namespace practice
