// The driver's raw forms of numbers, dates and texts.
#pragma once

#include "platform/ado/Column.h"
#include "platform/ado/TimeUnits.h"

namespace ado {

/// How values that the driver read go into a column's storage; one function for each form in which a
/// driver gives values. Each adds one value that is not null, `length` bytes long as the driver told.
/// What can be no value of the column's type raises DriverFailure with the column's name: a damaged
/// answer must not turn into a value.
namespace field {

using Add = void (*)(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length);

void addTicks(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length);
void addMinutes(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length);
void addDay(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length);
void addGuid(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length);
/// Decimals and money as text, for a scale of at most `mostDecimalDigits`.
void addScaled(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length);
/// Decimals as SQL_NUMERIC_STRUCT, in the column's scale.
void addNumeric(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length);
/// datetime as SQL Server sends it: 32 bits of days since 1900, 32 bits of 1/300 seconds.
void addDateTime(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length);
/// "hh:mm:ss.fffffff", for a scale of at most `tickDigits`.
void addTime(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length);
/// "yyyy-mm-dd hh:mm:ss.fffffff +hh:mm"
void addOffset(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length);
void addUtf8(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length);
void addUtf16(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length);
void addBinary(ColumnBuilder& builder, const Column& column, const char* data, std::size_t length);

inline constexpr int mostDecimalDigits = 38;
inline constexpr int scaled32Digits = 9;  ///< decimal digits that 32 bits hold
inline constexpr int scaled64Digits = 18; ///< decimal digits that 64 bits hold

} // namespace field

} // namespace ado
