#include "engine/catalog/catalog_sessions.h"

#include "engine/catalog/catalog_functions.h"
#include "engine/catalog/catalog_writer.h"

#include <sqlite3.h>

namespace practice {

void SessionRegistry::add(int spid, SessionEntry entry)
{
    entry.loginTime = entry.lastBatch = storedNow();
    const std::lock_guard lock(mutex_);
    sessions_[spid] = std::move(entry);
}

void SessionRegistry::remove(int spid)
{
    const std::lock_guard lock(mutex_);
    sessions_.erase(spid);
}

void SessionRegistry::begin(int spid)
{
    const std::int64_t now = storedNow();
    const std::lock_guard lock(mutex_);
    sessions_[spid].running = true;
    sessions_[spid].lastBatch = now;
}

void SessionRegistry::end(int spid, int databaseId, int transactions)
{
    const std::lock_guard lock(mutex_);
    SessionEntry& entry = sessions_[spid];
    entry.running = false;
    entry.databaseId = databaseId;
    entry.transactions = transactions;
}

void SessionRegistry::setTransactions(int spid, int transactions)
{
    const std::lock_guard lock(mutex_);
    sessions_[spid].transactions = transactions;
}

std::string SessionRegistry::json() const
{
    const std::lock_guard lock(mutex_);
    std::string list;
    for (const auto& [spid, entry] : sessions_) {
        list += (list.empty() ? "{" : ",{");
        const auto number = [&list](const char* name, std::int64_t value) {
            list += '"' + std::string(name) + "\":" + std::to_string(value) + ',';
        };
        const auto text = [&list](const char* name, const std::string& value) {
            list += '"' + std::string(name) + "\":" + jsonText(value) + ',';
        };
        number("spid", spid);
        number("dbid", entry.databaseId);
        number("transactions", entry.transactions);
        number("login_time", entry.loginTime);
        number("last_batch", entry.lastBatch);
        text("login", entry.login);
        text("host", entry.host);
        text("program", entry.program);
        text("status", entry.running ? "runnable" : "sleeping");
        text("command", entry.running ? "SELECT" : "AWAITING COMMAND");
        list.back() = '}';
    }
    return '[' + list + ']';
}

void registerSessionList(sqlite3* connection, const SessionRegistry& sessions)
{
    const auto list = [](sqlite3_context* context, int, sqlite3_value**) {
        const auto* registry = static_cast<const SessionRegistry*>(sqlite3_user_data(context));
        const std::string json = registry->json();
        sqlite3_result_text64(context, json.data(), json.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    };
    sqlite3_create_function_v2(connection, "practice_sessions", 0, SQLITE_UTF8,
                               const_cast<SessionRegistry*>(&sessions), list, nullptr, nullptr, nullptr);
}

} // namespace practice
