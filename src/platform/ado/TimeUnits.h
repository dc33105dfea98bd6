// The units in which the columns of a result count time.
#pragma once

#include <QtGlobal>

namespace ado {

inline constexpr qint64 secondsPerDay = 86'400;
inline constexpr qint64 ticksPerSecond = 10'000'000; ///< a tick is 100 nanoseconds
inline constexpr int tickDigits = 7;                 ///< of a second
inline constexpr qint64 ticksPerDay = secondsPerDay * ticksPerSecond;
inline constexpr qint64 firstJulianDay = 1'721'426; ///< 1 January of the year 1, from which days count

} // namespace ado
