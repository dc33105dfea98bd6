#include "platform/ado/HostLookup.h"

#include <future>
#include <netdb.h>
#include <string>
#include <sys/socket.h>
#include <thread>

namespace ado {

namespace {

bool lookUp(const std::string& host, int flags)
{
    addrinfo hints = {};
    hints.ai_family = AF_UNSPEC;
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = flags;
    addrinfo* found = nullptr;
    if (getaddrinfo(host.c_str(), nullptr, &hints, &found) != 0)
        return false;
    freeaddrinfo(found);
    return true;
}

} // namespace

bool awaitLookup(const QString& host, std::chrono::seconds timeout)
{
    const std::string name = host.toStdString();
    if (timeout.count() <= 0 || lookUp(name, AI_NUMERICHOST))
        return true;
    std::promise<void> answer;
    const std::future<void> answered = answer.get_future();
    // Left to itself when time is over: it holds nothing but what it owns.
    std::thread([name, answer = std::move(answer)]() mutable {
        lookUp(name, 0);
        answer.set_value();
    }).detach();
    return answered.wait_for(timeout) == std::future_status::ready;
}

} // namespace ado
