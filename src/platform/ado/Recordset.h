// The rows of a statement's results, read whole.
#pragma once

#include "platform/ado/FieldKind.h"
#include "platform/basic/Variant.h"
#include <QString>
#include <QStringList>
#include <memory>
#include <optional>

namespace ado {

class Batch;
class Connection;
struct Result;

/// The first result of a statement, read to its end when opened; further results wait for
/// NextRecordset(). A handle: copies refer to the same rows, and have a current row each.
///
/// Dates of the types datetime, smalldatetime and date are dates; time, datetime2 and datetimeoffset are
/// text with all their digits, since a date's text form drops fractions.
class Recordset
{
public:
    Recordset();
    ~Recordset();
    Recordset(const Recordset&);
    Recordset& operator=(const Recordset&);
    Recordset(Recordset&&) noexcept;
    Recordset& operator=(Recordset&&) noexcept;

    /// Kept for the callers' sake: every recordset is read whole and belongs to the client.
    void setCursorType(int type) { m_cursorType = type; }
    void setCursorLocation(int location) { m_cursorLocation = location; }
    void setLockType(int type) { m_lockType = type; }
    [[nodiscard]] int CursorType() const { return m_cursorType; }
    [[nodiscard]] int CursorLocation() const { return m_cursorLocation; }
    [[nodiscard]] int LockType() const { return m_lockType; }

    /// Runs a text. Raises the server's error when it stands before or in the first result; 3705 when
    /// open already; 3709 without a connection. The last three arguments have no effect.
    void Open(const QString& text, Connection& connection, int cursorType = -1, int lockType = -1,
              int options = 1);

    /// 1 after a successful Open, also when the result has no columns; 0 otherwise.
    [[nodiscard]] int State() const;
    void Close();

    /// Behind the last row, and on a result without rows. (EOF is a macro of the C library.)
    [[nodiscard]] bool Eof() const;
    /// Raises 3021 when already behind the last row.
    void MoveNext();
    /// Raises 3021 when there are no rows.
    void MoveFirst();
    [[nodiscard]] qint64 RecordCount() const;
    /// The current row, from 0; RecordCount() at the end.
    [[nodiscard]] qint64 Position() const { return m_row; }

    /// The current row's value. Raises 3265 for a name (compared without case) or number that the result
    /// has not, 3021 without a current row.
    [[nodiscard]] basic::Variant Value(int column) const;
    [[nodiscard]] basic::Variant Value(const QString& name) const;

    /// 0 when the statement returned no columns.
    [[nodiscard]] int FieldCount() const;
    [[nodiscard]] QString FieldName(int column) const;
    [[nodiscard]] FieldKind FieldType(int column) const;

    /// Any row's value, for lists and grids. Error 9 outside the rows, 3265 outside the columns.
    [[nodiscard]] basic::Variant Value(qint64 row, int column) const;
    [[nodiscard]] bool isNull(qint64 row, int column) const;
    /// The value's text; "" for a null. With `limit`, text and binary may be cut behind that many
    /// characters (0 is the whole value).
    [[nodiscard]] QString cellText(qint64 row, int column, qsizetype limit = 0) const;

    /// Rows that the statement of this result changed or returned; -1 when it did not count.
    [[nodiscard]] qint64 RecordsAffected() const;
    /// What the server said beside errors, since the result before this one.
    [[nodiscard]] QStringList Messages() const;

    /// The next result of the batch, or none after the last. What the server says before an error or behind
    /// the last result comes as a result of its own, without columns and count. Raises an error that stands
    /// before or in that result; a call after the error goes on behind it. This recordset keeps its rows.
    [[nodiscard]] std::optional<Recordset> NextRecordset();

    /// Bytes that the rows occupy.
    [[nodiscard]] std::size_t memoryUsed() const;

private:
    [[nodiscard]] const Result& result() const;
    void checkColumn(int column) const;
    void checkRow(qint64 row) const;

    std::shared_ptr<Batch> m_batch;
    std::shared_ptr<const Result> m_result;
    qint64 m_row = 0;
    int m_cursorType = 0;
    int m_cursorLocation = 2;
    int m_lockType = 1;
};

} // namespace ado
