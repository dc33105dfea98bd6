// Looking a host name up within a time limit.
#pragma once

#include <QString>
#include <chrono>

namespace ado {

/// Waits until the machine's resolver has an answer for `host`, whatever it is, but not longer than
/// `timeout` (0: without limit); false when the time is over. The drivers look a name up by a call that
/// nothing can interrupt, so that a silent name server would hold up the program for minutes; after this
/// the answer is at hand. An address needs no lookup.
bool awaitLookup(const QString& host, std::chrono::seconds timeout);

} // namespace ado
