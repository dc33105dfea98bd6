// How a value reads as text.
#pragma once

#include "platform/basic/Variant.h"
#include <QString>

class QLocale;

namespace basic {

/// What concatenating "" with the value gives: nothing for Empty and Null, "True" or "False", numbers
/// with the locale's decimal sign and no grouping, dates in the locale's short form with a four-digit
/// year (the day left out when it is the zero date, the time when it is midnight), binary as 0x hex.
QString text(const Variant& value);
QString text(const Variant& value, const QLocale& locale);

} // namespace basic
