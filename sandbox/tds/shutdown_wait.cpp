#include "tds/shutdown_wait.h"

#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>

namespace practice::tds {

namespace {

/// Takes what there is; false at the end of the input.
bool drainInput()
{
    std::array<char, 512> ignored{};
    const ssize_t count = read(STDIN_FILENO, ignored.data(), ignored.size());
    return count > 0 || (count < 0 && errno == EINTR);
}

} // namespace

ShutdownWait::ShutdownWait(bool watchInput) : watchInput_(watchInput)
{
    std::signal(SIGPIPE, SIG_IGN);
    sigset_t ends;
    sigemptyset(&ends);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP})
        sigaddset(&ends, signal);
    pthread_sigmask(SIG_BLOCK, &ends, nullptr);
    signals_ = Descriptor(signalfd(-1, &ends, SFD_CLOEXEC));
    if (!signals_.valid())
        throw std::system_error(errno, std::generic_category(), "signalfd");
}

void ShutdownWait::wait()
{
    std::array<pollfd, 2> entries{{{signals_.get(), POLLIN, 0}, {STDIN_FILENO, POLLIN, 0}}};
    const nfds_t count = watchInput_ ? 2 : 1;
    for (;;) {
        if (poll(entries.data(), count, -1) < 0)
            continue;
        if (entries[0].revents != 0)
            return;
        if (count == 2 && entries[1].revents != 0 && !drainInput())
            return;
    }
}

} // namespace practice::tds
