#include "engine/store/store.h"

#include "engine/store/collation.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

namespace practice {

namespace {

// A function inside SQLite can hand out no more than text, so a message of ours travels as one:
// mark, number, severity, state, wording.
constexpr char mark = '\x1f';

Message unpackMessage(std::string_view packed)
{
    Message message;
    packed.remove_prefix(1);
    for (int* field : {&message.number, &message.severity, &message.state}) {
        const auto end = packed.find(mark);
        std::from_chars(packed.data(), packed.data() + end, *field);
        packed.remove_prefix(end + 1);
    }
    message.text = packed;
    return message;
}

/// That a statement is beyond what SQLite plans.
bool isTooComplex(std::string_view wording)
{
    constexpr std::array<std::string_view, 6> beginnings{
        "Expression tree is too large", "too many terms in compound", "too many columns",
        "parser stack overflow",        "at most 64 tables",          "too many FROM clause terms"};
    return std::any_of(beginnings.begin(), beginnings.end(),
                       [wording](std::string_view beginning) { return wording.starts_with(beginning); });
}

void check(sqlite3* connection, int code)
{
    if (code != SQLITE_OK)
        throwStoreFailure(connection, code);
}

} // namespace

void throwStoreFailure(sqlite3* connection, int code)
{
    const char* text = connection == nullptr ? sqlite3_errstr(code) : sqlite3_errmsg(connection);
    const std::string_view wording = text == nullptr ? "" : text;
    if (!wording.empty() && wording.front() == mark)
        throw SqlError{unpackMessage(wording)};
    const int primary = code & 0xff;
    if (primary == SQLITE_INTERRUPT)
        throw Cancelled{};
    if (wording == "integer overflow")
        raise(8115, {"int"});
    if (primary == SQLITE_ERROR && isTooComplex(wording))
        raise(8623);
    if (primary == SQLITE_TOOBIG || primary == SQLITE_NOMEM)
        raise(701, {"default"});
    const int extended = connection == nullptr ? code : sqlite3_extended_errcode(connection);
    throw StoreError{(extended & 0xff) == primary ? extended : code, std::string(wording)};
}

void resultError(sqlite3_context* context, const Message& message)
{
    std::string packed(1, mark);
    for (const int field : {message.number, message.severity, message.state})
        packed.append(std::to_string(field)).push_back(mark);
    packed += message.text;
    sqlite3_result_error(context, packed.data(), static_cast<int>(packed.size()));
}

Statement::Statement(sqlite3* connection, std::string_view sql, bool persistent)
{
    check(connection, sqlite3_prepare_v3(connection, sql.data(), static_cast<int>(sql.size()),
                                         persistent ? SQLITE_PREPARE_PERSISTENT : 0, &handle_, nullptr));
}

Statement& Statement::bind(int parameter, std::int64_t value)
{
    check(sqlite3_db_handle(handle_), sqlite3_bind_int64(handle_, parameter, value));
    return *this;
}

Statement& Statement::bind(int parameter, double value)
{
    check(sqlite3_db_handle(handle_), sqlite3_bind_double(handle_, parameter, value));
    return *this;
}

Statement& Statement::bind(int parameter, std::string_view value)
{
    check(sqlite3_db_handle(handle_),
          sqlite3_bind_text64(handle_, parameter, value.data() ? value.data() : "", value.size(),
                              SQLITE_TRANSIENT, SQLITE_UTF8));
    return *this;
}

Statement& Statement::bindBlob(int parameter, const void* data, std::size_t size)
{
    check(sqlite3_db_handle(handle_),
          sqlite3_bind_blob64(handle_, parameter, data ? data : "", size, SQLITE_TRANSIENT));
    return *this;
}

Statement& Statement::bindNull(int parameter)
{
    check(sqlite3_db_handle(handle_), sqlite3_bind_null(handle_, parameter));
    return *this;
}

bool Statement::step()
{
    const int code = sqlite3_step(handle_);
    if (code == SQLITE_ROW)
        return true;
    if (code == SQLITE_DONE)
        return false;
    sqlite3* connection = sqlite3_db_handle(handle_);
    try {
        throwStoreFailure(connection, code);
    } catch (...) {
        sqlite3_reset(handle_);
        throw;
    }
}

void Statement::run()
{
    while (step()) {
    }
    reset();
}

void Statement::reset()
{
    sqlite3_reset(handle_);
}

std::string_view Statement::text(int column) const
{
    const auto* data = reinterpret_cast<const char*>(sqlite3_column_text(handle_, column));
    return data == nullptr
               ? std::string_view{}
               : std::string_view(data, static_cast<std::size_t>(sqlite3_column_bytes(handle_, column)));
}

std::string_view Statement::blob(int column) const
{
    const auto* data = static_cast<const char*>(sqlite3_column_blob(handle_, column));
    return data == nullptr
               ? std::string_view{}
               : std::string_view(data, static_cast<std::size_t>(sqlite3_column_bytes(handle_, column)));
}

void execute(sqlite3* connection, const std::string& sql)
{
    check(connection, sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr));
}

Store::Store(const std::filesystem::path& file)
{
    const int code =
        sqlite3_open_v2(file.c_str(), &connection_,
                        SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    if (code != SQLITE_OK) {
        const StoreError failure{code, sqlite3_errstr(code)};
        sqlite3_close_v2(connection_);
        throw failure;
    }
    sqlite3_extended_result_codes(connection_, 1);
    sqlite3_busy_timeout(connection_, 10'000);
    execute(connection_, "PRAGMA journal_mode=WAL; PRAGMA synchronous=NORMAL; PRAGMA temp_store=MEMORY;"
                         "PRAGMA cache_size=-16384; PRAGMA foreign_keys=OFF; PRAGMA recursive_triggers=OFF");
    sqlite3_busy_handler(connection_, &Store::onBusy, this);
    // Often enough that a cancel is felt at once, seldom enough to cost nothing.
    sqlite3_progress_handler(connection_, 10'000, &Store::onProgress, this);
    sqlite3_limit(connection_, SQLITE_LIMIT_LENGTH, longestValue);
    registerCollations(connection_);
}

Store::~Store()
{
    sqlite3_close_v2(connection_);
}

int Store::onBusy(void* self, int attempts)
{
    auto& store = *static_cast<Store*>(self);
    if (attempts == 0)
        store.waited_ = 0;
    if (store.stopping() || (store.lockTimeout_ >= 0 && store.waited_ >= store.lockTimeout_))
        return 0;
    const int pause = attempts < 20 ? 1 : 10;
    sqlite3_sleep(pause);
    store.waited_ += pause;
    return 1;
}

int Store::onProgress(void* self)
{
    return static_cast<Store*>(self)->stopping() ? 1 : 0;
}

void Store::beginWrite()
{
    try {
        execute(connection_, "BEGIN IMMEDIATE");
    } catch (const StoreError& failure) {
        if (stopping())
            throw Cancelled{};
        if ((failure.code & 0xff) == SQLITE_BUSY)
            raise(1222);
        throw;
    }
}

void Store::commit()
{
    execute(connection_, "COMMIT");
    runEndActions();
}

void Store::rollback() noexcept
{
    if (inTransaction())
        sqlite3_exec(connection_, "ROLLBACK", nullptr, nullptr, nullptr);
    runEndActions();
}

void Store::runEndActions() noexcept
{
    for (const auto& action : std::exchange(endActions_, {})) {
        try {
            action();
        } catch (...) {
            continue; // the next start does it
        }
    }
}

void Store::cancel() noexcept
{
    cancelled_.store(true, std::memory_order_relaxed);
}

Savepoint::Savepoint(Store& store) : store_(store)
{
    execute(store_.connection(), "SAVEPOINT statement");
}

Savepoint::~Savepoint()
{
    // A failure severe enough to have rolled the transaction back took the savepoint with it.
    if (open_ && store_.inTransaction())
        sqlite3_exec(store_.connection(), "ROLLBACK TO statement; RELEASE statement", nullptr, nullptr,
                     nullptr);
}

void Savepoint::release()
{
    open_ = false;
    execute(store_.connection(), "RELEASE statement");
}

} // namespace practice
