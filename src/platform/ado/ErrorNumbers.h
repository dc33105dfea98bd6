// Numbers of the failures that no server reports.
#pragma once

namespace ado::number {

/// Numbers of the failures that no server reports. The negative ones are those that ADO uses.
inline constexpr int NoServer = 17;                     ///< nobody answers, or access is denied
inline constexpr int LoginFailed = 18456;               ///< as the server numbers it
inline constexpr int DriverFailure = -2147467259;       ///< connection lost, unusable answer, no driver
inline constexpr int TimeOut = -2147217871;             ///< connecting or a statement took too long
inline constexpr int BadConnectionString = -2147217805; ///< not of the form name=value;...
inline constexpr int NoCommandText = -2147217908;       ///< an empty text
inline constexpr int ResultsTooLarge = -2147024882;     ///< more than is kept of results
inline constexpr int BadStatement = -2147217900;        ///< a text that cannot be sent

} // namespace ado::number
