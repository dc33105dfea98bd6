#include "tds/attention_watch.h"

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace practice::tds {

namespace {

constexpr int repeatMilliseconds = 20;

void control(const Descriptor& epoll, int operation, int descriptor, std::uint32_t events)
{
    epoll_event event{};
    event.events = events;
    event.data.fd = descriptor;
    epoll_ctl(epoll.get(), operation, descriptor, &event);
}

} // namespace

AttentionWatch::AttentionWatch() : epoll_(epoll_create1(EPOLL_CLOEXEC)), wake_(eventfd(0, EFD_CLOEXEC))
{
    if (!epoll_.valid() || !wake_.valid())
        throw std::system_error(errno, std::generic_category(), "epoll");
    control(epoll_, EPOLL_CTL_ADD, wake_.get(), EPOLLIN);
    thread_ = std::thread([this] { run(); });
}

AttentionWatch::~AttentionWatch()
{
    stop_ = true;
    const std::uint64_t one = 1;
    static_cast<void>(!write(wake_.get(), &one, sizeof one));
    thread_.join();
}

void AttentionWatch::add(int descriptor, Watched& watched)
{
    const std::lock_guard lock(mutex_);
    watched_[descriptor] = &watched;
    control(epoll_, EPOLL_CTL_ADD, descriptor, EPOLLONESHOT);
}

void AttentionWatch::arm(int descriptor)
{
    control(epoll_, EPOLL_CTL_MOD, descriptor, EPOLLIN | EPOLLRDHUP | EPOLLONESHOT);
}

void AttentionWatch::remove(int descriptor)
{
    const std::lock_guard lock(mutex_);
    control(epoll_, EPOLL_CTL_DEL, descriptor, 0);
    watched_.erase(descriptor);
    cancelling_.erase(descriptor);
}

void AttentionWatch::run()
{
    std::array<epoll_event, 32> events{};
    while (!stop_) {
        bool cancelling = false;
        {
            const std::lock_guard lock(mutex_);
            cancelling = !cancelling_.empty();
        }
        const int count = epoll_wait(epoll_.get(), events.data(), static_cast<int>(events.size()),
                                     cancelling ? repeatMilliseconds : -1);
        const std::lock_guard lock(mutex_);
        for (int i = 0; i < count; ++i)
            ask(events.at(static_cast<std::size_t>(i)).data.fd);
        askAgain();
    }
}

void AttentionWatch::ask(int descriptor)
{
    const auto found = watched_.find(descriptor);
    if (found != watched_.end() && found->second->interrupted())
        cancelling_.insert(*found);
}

void AttentionWatch::askAgain()
{
    std::erase_if(cancelling_, [](const auto& entry) { return !entry.second->interrupted(); });
}

} // namespace practice::tds
