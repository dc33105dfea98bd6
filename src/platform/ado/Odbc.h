// The ODBC headers and owning handles.
#pragma once

// The ODBC headers and owning handles. Included by this library's sources only: they bring macros.
#include <QString>
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>
#include <utility>

namespace ado::odbc {

/// Owns one ODBC handle of the given kind.
template <SQLSMALLINT kind>
class Handle
{
public:
    Handle() = default;
    /// Null when the allocation fails.
    explicit Handle(SQLHANDLE parent)
    {
        if (!SQL_SUCCEEDED(SQLAllocHandle(kind, parent, &m_handle)))
            m_handle = nullptr;
    }
    Handle(Handle&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
    Handle& operator=(Handle&& other) noexcept
    {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    Handle(const Handle&) = delete;
    Handle& operator=(const Handle&) = delete;
    ~Handle() { reset(); }

    void reset()
    {
        if (m_handle != nullptr)
            SQLFreeHandle(kind, std::exchange(m_handle, nullptr));
    }
    [[nodiscard]] SQLHANDLE get() const { return m_handle; }
    explicit operator bool() const { return m_handle != nullptr; }

private:
    SQLHANDLE m_handle = nullptr;
};

using Environment = Handle<SQL_HANDLE_ENV>;
using Dbc = Handle<SQL_HANDLE_DBC>;
using Statement = Handle<SQL_HANDLE_STMT>;

inline SQLWCHAR* wide(QString& text)
{
    return reinterpret_cast<SQLWCHAR*>(text.data());
}

/// An integer where ODBC wants a pointer to carry it.
inline SQLPOINTER asPointer(SQLULEN value)
{
    return reinterpret_cast<SQLPOINTER>(value);
}

} // namespace ado::odbc
