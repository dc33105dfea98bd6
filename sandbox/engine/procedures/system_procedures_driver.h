// The types as drivers are told about them.
#pragma once

namespace practice {

/// A derived table for SQLite, one row a type: column1 xtype, 2 ODBC type, 3 the same in ODBC 2,
/// 4 precision, 5 length (each NULL where the column's own counts), 6 scale, 7 radix, 8 SQL data
/// type, 9 datetime subcode, 10 literal prefix, 11 suffix, 12 create params, 13 searchable,
/// 14 unsigned, 15 money, 16 auto increment, 17 minimum scale, 18 maximum scale.
[[nodiscard]] const char* driverTypes();

} // namespace practice
