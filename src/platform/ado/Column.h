// The columns of a result: their values in the form and width in which they are kept.
#pragma once

#include "platform/ado/FieldKind.h"
#include "platform/basic/Variant.h"
#include <QString>
#include <QStringView>
#include <cstdint>
#include <vector>

namespace ado {

/// How a column's values lie in memory.
enum class Storage : std::uint8_t
{
    Bit,       ///< one byte, 0 or 1
    UInt8,     ///< tinyint
    Int16,     ///< smallint
    Int32,     ///< int
    Int64,     ///< bigint
    Float,     ///< real
    Double,    ///< float
    Scaled32,  ///< decimal, money: an integer to be divided by ten to the scale
    Scaled64,  ///< the same
    Scaled128, ///< the same
    Minutes,   ///< smalldatetime: 32 bits, minutes since the year 1
    Moment,    ///< datetime: 64 bits, 100-nanosecond units since the year 1
    Day,       ///< date: 32 bits, days since the year 1
    IsoMoment, ///< datetime2: as Moment, shown with all its digits
    IsoTime32, ///< time up to 4 digits: units of its scale since midnight
    IsoTime64, ///< time beyond: the same
    IsoOffset, ///< datetimeoffset: local Moment, then 16 bits of minutes from UTC
    Guid,      ///< 16 bytes in the order of the digits shown
    Text,      ///< variable length
    Binary,    ///< variable length
};

/// Bytes of a value; 0 for variable length.
std::size_t storageWidth(Storage storage);

/// A column of a result.
struct Column
{
    QString name;
    Storage storage = Storage::Text;
    FieldKind kind = FieldKind::Text;
    int scale = 0; ///< digits behind the point of decimals and seconds
};

using Int128 = __int128;

/// The values of one column for a run of rows, sealed: no byte more than they need.
///
/// Fixed widths: the values that are not null, one after the other; when there are nulls, a bit each and
/// for every 64 rows the number of values before. Variable widths: each value behind its own header
/// (length and encoding, or null), and the place of every 16th.
class ColumnBlock
{
public:
    [[nodiscard]] bool isNull(const Column& column, std::size_t row) const;
    [[nodiscard]] basic::Variant value(const Column& column, std::size_t row) const;
    /// Text and binary as text, cut behind `limit` characters unless 0; "" for a null.
    [[nodiscard]] QString text(const Column& column, std::size_t row, qsizetype limit) const;
    [[nodiscard]] std::size_t memoryUsed() const;

private:
    friend class ColumnBuilder;

    struct Cell ///< one value of variable length
    {
        const char* data = nullptr; ///< null when the value is null
        std::size_t size = 0;
        std::uint8_t encoding = 0;
    };
    [[nodiscard]] Cell cell(std::size_t row) const;
    [[nodiscard]] const char* fixedAt(std::size_t row, std::size_t width) const;
    [[nodiscard]] bool isFixedNull(std::size_t row) const;
    [[nodiscard]] basic::Variant fixedValue(const Column& column, std::size_t row) const;

    std::vector<char> m_data;
    std::vector<std::uint64_t> m_nullBits; ///< empty without nulls
    std::vector<std::uint16_t> m_ranks;    ///< values before each 64 rows; empty without nulls
    std::vector<std::uint32_t> m_groups;   ///< variable length: place of every 16th value
};

/// Collects the values of one column until they are sealed.
class ColumnBuilder
{
public:
    explicit ColumnBuilder(Storage storage);

    void addNull();
    /// `values` points to `count` times storageWidth() bytes.
    void addFixed(const void* values, std::size_t count = 1);
    void addUtf8(const char* data, std::size_t size);
    void addUtf16(QStringView text);
    void addBinary(const char* data, std::size_t size);

    [[nodiscard]] std::size_t bytes() const { return m_data.size(); }
    /// Takes what was collected and begins anew.
    ColumnBlock seal();

private:
    void beginCell();
    /// The room for `size` bytes of a new cell.
    char* addCell(std::uint8_t encoding, std::size_t size);
    void addCell(std::uint8_t encoding, const char* data, std::size_t size);

    Storage m_storage;
    std::size_t m_width;
    std::size_t m_rows = 0;
    bool m_hasNulls = false;
    std::vector<char> m_data;
    std::vector<std::uint64_t> m_nullBits;
    std::vector<std::uint32_t> m_groups;
};

} // namespace ado
