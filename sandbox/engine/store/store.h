// SQLite with C++ manners: statements that finalise themselves, failures as exceptions.
#pragma once

#include "engine/messages/errors.h"

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <sqlite3.h>

namespace practice {

/// A failure of the store itself, a broken constraint included.
struct StoreError
{
    int code = 0; ///< SQLite's extended result code
    std::string text;
};

/// Bytes of one value, and of one row; beyond it a statement ends with message 701.
inline constexpr int longestValue = 256 * 1024 * 1024;

/// The client cancelled the request.
struct Cancelled
{};

/// Raises what stands behind a failed SQLite call: SqlError for one raised by a function of ours,
/// Cancelled, or StoreError.
[[noreturn]] void throwStoreFailure(sqlite3* connection, int code);

/// Makes the running statement fail with a message of ours; for use in functions that SQLite calls,
/// out of which no exception may pass.
void resultError(sqlite3_context* context, const Message& message);

/// One prepared statement. Parameters count from 1, columns from 0.
class Statement
{
public:
    Statement() = default;
    /// @param persistent true for one that stays for many runs
    Statement(sqlite3* connection, std::string_view sql, bool persistent = false);
    ~Statement() { sqlite3_finalize(handle_); }
    Statement(Statement&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    Statement& operator=(Statement&& other) noexcept
    {
        std::swap(handle_, other.handle_);
        return *this;
    }

    Statement& bind(int parameter, std::int64_t value);
    Statement& bind(int parameter, int value) { return bind(parameter, std::int64_t{value}); }
    Statement& bind(int parameter, double value);
    Statement& bind(int parameter, std::string_view value);
    Statement& bind(int parameter, const char* value) { return bind(parameter, std::string_view(value)); }
    Statement& bind(int parameter, const std::string& value)
    {
        return bind(parameter, std::string_view(value));
    }
    Statement& bindBlob(int parameter, const void* data, std::size_t size);
    Statement& bindNull(int parameter);

    /// @return true when it stands on a row
    bool step();
    /// Steps to the end and makes it ready for another run.
    void run();
    /// Harmless for one that was never prepared.
    void reset();

    [[nodiscard]] bool isNull(int column) const
    {
        return sqlite3_column_type(handle_, column) == SQLITE_NULL;
    }
    [[nodiscard]] std::int64_t integer(int column) const { return sqlite3_column_int64(handle_, column); }
    [[nodiscard]] int number(int column) const { return sqlite3_column_int(handle_, column); }
    [[nodiscard]] double real(int column) const { return sqlite3_column_double(handle_, column); }
    /// Valid until the next step; empty for NULL.
    [[nodiscard]] std::string_view text(int column) const;
    [[nodiscard]] std::string string(int column) const { return std::string(text(column)); }
    /// The bytes of a blob; valid until the next step.
    [[nodiscard]] std::string_view blob(int column) const;

    [[nodiscard]] sqlite3_stmt* handle() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }

private:
    sqlite3_stmt* handle_ = nullptr;
};

/// Runs statements that give no rows.
void execute(sqlite3* connection, const std::string& sql);

/// A session's own connection to the store.
class Store
{
public:
    /// @throws StoreError
    explicit Store(const std::filesystem::path& file);
    ~Store();
    Store(const Store&) = delete;
    Store& operator=(const Store&) = delete;

    [[nodiscard]] sqlite3* connection() const { return connection_; }
    [[nodiscard]] bool inTransaction() const { return sqlite3_get_autocommit(connection_) == 0; }

    /// Takes the write lock, waiting for other sessions' transactions as long as LOCK_TIMEOUT says.
    /// @throws SqlError 1222 when the time is over, Cancelled
    void beginWrite();
    void commit();
    void rollback() noexcept;
    /// Has the action run once, when the present transaction is committed or rolled back. What it
    /// throws is lost.
    void atEnd(std::function<void()> action) { endActions_.push_back(std::move(action)); }

    /// Milliseconds; -1 waits for ever.
    void setLockTimeout(int milliseconds) { lockTimeout_ = milliseconds; }
    [[nodiscard]] int lockTimeout() const { return lockTimeout_; }

    /// From any thread: makes what runs stop with Cancelled.
    void cancel() noexcept;
    [[nodiscard]] bool cancelled() const noexcept { return cancelled_.load(std::memory_order_relaxed); }
    void clearCancel() noexcept { cancelled_.store(false, std::memory_order_relaxed); }
    /// What runs now is to be stopped: there was a cancel, and no CancelShield holds it off.
    [[nodiscard]] bool stopping() const noexcept { return cancelled() && shields_ == 0; }

private:
    friend class CancelShield;
    void runEndActions() noexcept;
    static int onBusy(void* self, int attempts);
    static int onProgress(void* self);

    sqlite3* connection_ = nullptr;
    std::vector<std::function<void()>> endActions_;
    std::atomic<bool> cancelled_ = false;
    int shields_ = 0;
    int lockTimeout_ = -1;
    int waited_ = 0; ///< milliseconds in the present wait
};

/// Lets what cleans up run to its end in a request that was cancelled.
class CancelShield
{
public:
    explicit CancelShield(Store& store) : store_(store) { ++store_.shields_; }
    ~CancelShield() { --store_.shields_; }
    CancelShield(const CancelShield&) = delete;
    CancelShield& operator=(const CancelShield&) = delete;

private:
    Store& store_;
};

/// Undoes what happened since its making unless released. Works inside a transaction only.
class Savepoint
{
public:
    explicit Savepoint(Store& store);
    ~Savepoint();
    Savepoint(const Savepoint&) = delete;
    Savepoint& operator=(const Savepoint&) = delete;
    void release();

private:
    Store& store_;
    bool open_ = true;
};

} // namespace practice
