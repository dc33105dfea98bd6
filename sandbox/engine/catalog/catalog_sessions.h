// Who is connected: what sysprocesses and sp_who list, and what keeps a database from being dropped.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>

struct sqlite3;

namespace practice {

struct SessionEntry
{
    std::string login;
    std::string host;
    std::string program;
    int databaseId = 1;
    int transactions = 0;
    bool running = false;
    std::int64_t loginTime = 0; ///< datetime in storage form
    std::int64_t lastBatch = 0;
};

/// Of one server; sessions report from their own threads.
class SessionRegistry
{
public:
    void add(int spid, SessionEntry entry);
    void remove(int spid);
    /// A request begins, or has ended and left the session in a database with open transactions.
    void begin(int spid);
    void end(int spid, int databaseId, int transactions);
    /// While a request runs.
    void setTransactions(int spid, int transactions);

    /// As practice_sessions() gives it (catalog_functions.h).
    [[nodiscard]] std::string json() const;

private:
    mutable std::mutex mutex_;
    std::map<int, SessionEntry> sessions_;
};

/// Makes the connection's practice_sessions() list these.
void registerSessionList(sqlite3* connection, const SessionRegistry& sessions);

} // namespace practice
