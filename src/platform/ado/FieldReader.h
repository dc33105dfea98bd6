// How each column of a result is asked of the driver and read from its buffers.
#pragma once

#include "platform/ado/Driver.h"
#include "platform/ado/FieldValues.h"
#include "platform/ado/Odbc.h"

namespace ado {

/// How one column is read: as which C type, into how many bytes, and how a read value goes into the
/// column's storage.
struct FieldReader
{
    Column column;
    SQLSMALLINT cType = SQL_C_CHAR;
    std::size_t width = 0;    ///< bytes of a buffer for one value
    bool isLong = false;      ///< longer than any buffer that is worth binding; `width` is a first guess
    std::size_t closing = 0;  ///< bytes of the closing zero that the driver writes behind a value
    field::Add add = nullptr; ///< null: the bytes go as they are
};

/// Describes the column with the given number (from 1) of a statement's result.
FieldReader describeField(SQLHSTMT statement, SQLUSMALLINT number, Driver::Family family);

} // namespace ado
