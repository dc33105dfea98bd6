#include "tds/server.h"

#include <poll.h>
#include <sys/socket.h>

#include <cerrno>

namespace practice::tds {

namespace {

/// When no descriptor or thread can be had, clients wait in the queue instead.
constexpr std::chrono::milliseconds shortage{50};

} // namespace

TdsServer::TdsServer(Server& engine, const ListenOptions& options)
    : listener_(listenOnLoopback(options.port)), port_(portOf(listener_)),
      maxConnections_(options.maxConnections), shared_{engine, watch_, options.log, options.loginLimit},
      thread_([this] { accept(); })
{}

TdsServer::~TdsServer()
{
    stopping_ = true;
    ::shutdown(listener_.get(), SHUT_RDWR);
    thread_.join();
    for (auto& client : clients_)
        client.connection.stop();
    for (auto& client : clients_)
        client.thread.join();
}

void TdsServer::accept()
{
    while (!stopping_) {
        Descriptor descriptor(accept4(listener_.get(), nullptr, nullptr, SOCK_CLOEXEC));
        reap();
        if (descriptor.valid())
            admit(std::move(descriptor));
        else if (!stopping_ && errno != EINTR && errno != ECONNABORTED)
            std::this_thread::sleep_for(shortage);
    }
}

void TdsServer::reap()
{
    for (auto client = clients_.begin(); client != clients_.end();) {
        if (!client->finished) {
            ++client;
            continue;
        }
        client->thread.join();
        client = clients_.erase(client);
    }
}

void TdsServer::admit(Descriptor descriptor)
{
    if (stopping_ || clients_.size() >= maxConnections_)
        return;
    Client& client = clients_.emplace_back(std::move(descriptor), shared_);
    try {
        client.thread = std::thread([&client] {
            client.connection.run();
            client.finished = true;
        });
    } catch (const std::system_error&) {
        clients_.pop_back();
    }
}

} // namespace practice::tds
