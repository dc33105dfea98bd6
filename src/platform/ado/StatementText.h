// How a statement's text is handed to the driver.
#pragma once

#include "platform/ado/Driver.h"
#include "platform/ado/DriverEncoding.h"
#include <QString>

namespace ado {

/// The text to hand to the driver so that `text` reaches the server as typed. The drivers take a '?' outside
/// quotes and comments for a parameter's place, and FreeTDS rewrites what stands between braces ({d '...'},
/// {call ...}). Where stand-ins are restored, they take the place of such characters; elsewhere such a text
/// travels inside EXEC(N'...'), where the drivers leave it alone. Raises -2147217908 for an empty text, and
/// -2147217900 for a NUL character that FreeTDS would take for the end.
EncodedText textForDriver(const QString& text, Driver::Family family, bool restoresStandIns);

} // namespace ado
