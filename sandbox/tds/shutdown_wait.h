// Waits for the end of the program.
#pragma once

#include "tds/socket.h"

namespace practice::tds {

/// From its construction on, SIGINT, SIGTERM and SIGHUP end the wait instead of the process: make
/// it before the first thread. A closed connection raises no SIGPIPE any more.
class ShutdownWait
{
public:
    /// @param watchInput also ends when standard input is closed
    explicit ShutdownWait(bool watchInput);

    void wait();

private:
    Descriptor signals_;
    bool watchInput_;
};

} // namespace practice::tds
