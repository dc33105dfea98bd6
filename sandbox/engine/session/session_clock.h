// The clock of a session, which stands still within a statement.
#pragma once

#include "types/date_time.h"

namespace practice {

class SessionClock
{
public:
    void nextStatement() { read_ = false; }

    [[nodiscard]] const DateTimeValue& now(bool utc)
    {
        if (!read_) {
            local_ = currentLocalTime();
            utc_ = currentUtcTime();
            read_ = true;
        }
        return utc ? utc_ : local_;
    }

private:
    bool read_ = false;
    DateTimeValue local_;
    DateTimeValue utc_;
};

} // namespace practice
