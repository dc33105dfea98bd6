// Listens for clients and gives each its thread.
#pragma once

#include "engine/api/session.h"
#include "tds/attention_watch.h"
#include "tds/connection.h"
#include "tds/statement_log.h"

#include <cstdint>
#include <list>
#include <mutex>
#include <thread>

namespace practice::tds {

struct ListenOptions
{
    std::uint16_t port = 1433; ///< 0 picks a free one
    std::size_t maxConnections = 300;
    std::chrono::milliseconds loginLimit{15'000};
    StatementLog* log = nullptr;
};

/// Serves on 127.0.0.1 from its construction to its destruction.
class TdsServer
{
public:
    /// @throws std::system_error when the port can't be had
    TdsServer(Server& engine, const ListenOptions& options);
    /// Cancels what runs and ends every connection.
    ~TdsServer();
    TdsServer(const TdsServer&) = delete;
    TdsServer& operator=(const TdsServer&) = delete;

    [[nodiscard]] std::uint16_t port() const { return port_; }

private:
    struct Client
    {
        Client(Descriptor descriptor, const Shared& shared) : connection(std::move(descriptor), shared) {}
        Connection connection;
        std::thread thread;
        std::atomic<bool> finished = false;
    };

    void accept();
    void reap();
    void admit(Descriptor descriptor);

    Descriptor listener_;
    std::uint16_t port_;
    std::size_t maxConnections_;
    AttentionWatch watch_;
    Shared shared_;
    std::atomic<bool> stopping_ = false;
    std::list<Client> clients_; ///< the accepting thread's own until it has ended
    std::thread thread_;
};

} // namespace practice::tds
