// The transaction of a session with its savepoints.
#pragma once

#include "engine/api/result_sink.h"
#include "engine/store/store.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace practice {

/// The store's own transaction begins with the first write, so that a session which only reads neither blocks
/// a writer nor grows stale.
class Transactions
{
public:
    /// Tells the client of a begin or an end, with the transaction's descriptor.
    using Announce = std::function<void(EnvironmentChange kind, const std::string& descriptor)>;

    Transactions(Store& store, Announce announce) : store_(store), announce_(std::move(announce)) {}

    [[nodiscard]] int count() const { return count_; } ///< @@TRANCOUNT
    void begin(const std::string& name);
    /// @throws SqlError 3902, 3930
    void commit();
    /// To the beginning, or to a savepoint of that name. @throws SqlError 3903, 6401
    void rollback(const std::string& name);
    void rollbackAll();
    /// @throws SqlError 628
    void save(const std::string& name);
    /// Takes back all that the transaction has written; it stays open, and its savepoints stand.
    void undoFirstWrites();
    /// When the store's transaction has begun: sets the savepoints that were made before it.
    void replaySavepoints();

    /// Runs a piece of work that writes, with the write lock held: all of it happens or nothing.
    template <typename Work>
    auto atomically(bool alone, Work work);

    bool doomed = false; ///< it can only be rolled back
    /// Told each new count.
    std::function<void(int)> changed;

private:
    void setCount(int count);
    void end(EnvironmentChange kind);

    Store& store_;
    Announce announce_;
    int count_ = 0;
    std::string name_;
    std::vector<std::string> pending_; ///< savepoints made before the first write
    std::vector<std::string> savepoints_;
    std::uint64_t descriptor_ = 0;
};

/// `alone` tells that no transaction of the store ran before the work.
template <typename Work>
auto Transactions::atomically(bool alone, Work work)
{
    if (!alone || count_ > 0) {
        Savepoint savepoint(store_);
        auto result = work();
        savepoint.release();
        return result;
    }
    try {
        auto result = work();
        store_.commit();
        return result;
    } catch (...) {
        store_.rollback();
        throw;
    }
}

} // namespace practice
