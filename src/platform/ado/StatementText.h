#pragma once

#include "platform/ado/Driver.h"
#include <QString>

namespace ado {

/// The text to hand to the driver so that `text` reaches the server as typed. Nearly always that is
/// `text` itself. The drivers take a '?' outside quotes and comments for a parameter's place, and
/// FreeTDS rewrites what stands between braces ({d '...'}, {call ...}); such a text travels inside
/// EXEC(N'...'), where the drivers leave it alone and the server runs it as it is. Raises -2147217908
/// for an empty text, and -2147217900 for a NUL character, behind which FreeTDS would drop the rest.
QString textForDriver(const QString& text, Driver::Family family);

} // namespace ado
