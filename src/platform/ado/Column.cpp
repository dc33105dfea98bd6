#include "platform/ado/Column.h"
#include "platform/ado/TimeUnits.h"
#include "platform/basic/VariantText.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <string>

using namespace Qt::StringLiterals;

namespace ado {

namespace {

constexpr std::size_t rowsPerWord = 64;
constexpr std::size_t cellsPerGroup = 16;

// Encodings of a cell; Latin-1 covers plain ASCII, which nearly all text is.
constexpr std::uint8_t latin1 = 0;
constexpr std::uint8_t utf16 = 1;
constexpr std::uint8_t utf8 = 2;
constexpr int encodingBits = 2;

template <class T>
T load(const char* data)
{
    T value;
    std::memcpy(&value, data, sizeof value);
    return value;
}

bool isAscii(const char* data, std::size_t size)
{
    constexpr std::uint64_t highBits = 0x8080808080808080U;
    std::uint64_t seen = 0;
    for (; size >= sizeof seen; data += sizeof seen, size -= sizeof seen)
        seen |= load<std::uint64_t>(data);
    for (; size > 0; ++data, --size)
        seen |= static_cast<unsigned char>(*data);
    return (seen & highBits) == 0;
}

/// All units are looked at, since most texts fit and the loop is a few wide instructions then.
bool fitsLatin1(const char16_t* units, std::size_t count)
{
    unsigned seen = 0;
    for (std::size_t index = 0; index < count; ++index)
        seen |= units[index];
    return seen <= 0xFF;
}

QString scaledText(Int128 value, int scale)
{
    const bool negative = value < 0;
    std::string digits;
    do {
        const int digit = static_cast<int>(value % 10);
        digits += static_cast<char>('0' + std::abs(digit));
        value /= 10;
        if (static_cast<int>(digits.size()) == scale)
            digits += '.';
    } while (value != 0 || static_cast<int>(digits.size()) <= scale);
    if (digits.back() == '.')
        digits += '0';
    if (negative)
        digits += '-';
    std::ranges::reverse(digits);
    return QString::fromLatin1(digits.data(), static_cast<qsizetype>(digits.size()));
}

QDate dayOf(qint64 daysSinceYear1)
{
    return QDate::fromJulianDay(firstJulianDay + daysSinceYear1);
}

QString twoDigits(qint64 value)
{
    return u"%1"_s.arg(value, 2, 10, QChar(u'0'));
}

/// "hh:mm:ss" and as many digits as the scale has.
QString isoTime(qint64 ticks, int scale)
{
    const qint64 seconds = ticks / ticksPerSecond;
    QString result =
        twoDigits(seconds / 3600) + u':' + twoDigits(seconds / 60 % 60) + u':' + twoDigits(seconds % 60);
    if (scale > 0)
        result += u'.' + u"%1"_s.arg(ticks % ticksPerSecond, tickDigits, 10, QChar(u'0')).first(scale);
    return result;
}

QString isoMoment(qint64 ticks, int scale)
{
    return dayOf(ticks / ticksPerDay).toString(Qt::ISODate) + u' ' + isoTime(ticks % ticksPerDay, scale);
}

QString isoOffset(const char* data, int scale)
{
    const auto minutes = load<std::int16_t>(data + sizeof(qint64));
    const int distance = std::abs(minutes);
    return isoMoment(load<qint64>(data), scale) + (minutes < 0 ? " -"_L1 : " +"_L1) +
           twoDigits(distance / 60) + u':' + twoDigits(distance % 60);
}

qint64 ticksPerUnit(int scale)
{
    qint64 ticks = 1;
    for (int digit = scale; digit < tickDigits; ++digit)
        ticks *= 10;
    return ticks;
}

QString guidText(const char* data)
{
    QString hex = QString::fromLatin1(QByteArray::fromRawData(data, 16).toHex().toUpper());
    for (const int place : {20, 16, 12, 8})
        hex.insert(place, u'-');
    return hex;
}

/// real has seven significant digits; a double made from those shows no others.
double fromReal(float value)
{
    return std::isfinite(value) ? QByteArray::number(static_cast<double>(value), 'g', 7).toDouble()
                                : static_cast<double>(value);
}

QString decoded(std::uint8_t encoding, const char* data, std::size_t size, qsizetype limit)
{
    auto length = static_cast<qsizetype>(size);
    switch (encoding) {
    case latin1:
        return QString::fromLatin1(data, limit > 0 ? std::min(limit, length) : length);
    case utf16: {
        const qsizetype units = length / 2;
        QString text(limit > 0 ? std::min(limit, units) : units, Qt::Uninitialized);
        std::memcpy(text.data(), data, static_cast<std::size_t>(text.size()) * 2);
        return text;
    }
    default:
        if (limit > 0 && limit < length / 4) {
            length = limit * 4;
            while (length > 0 && (static_cast<unsigned char>(data[length]) & 0xC0U) == 0x80U)
                --length;
        }
        const QString text = QString::fromUtf8(data, length);
        return limit > 0 ? text.left(limit) : text;
    }
}

} // namespace

std::size_t storageWidth(Storage storage)
{
    switch (storage) {
    case Storage::Bit:
    case Storage::UInt8:
        return 1;
    case Storage::Int16:
        return 2;
    case Storage::Int32:
    case Storage::Float:
    case Storage::Scaled32:
    case Storage::Minutes:
    case Storage::Day:
    case Storage::IsoTime32:
        return 4;
    case Storage::Int64:
    case Storage::Double:
    case Storage::Scaled64:
    case Storage::Moment:
    case Storage::IsoMoment:
    case Storage::IsoTime64:
        return 8;
    case Storage::IsoOffset:
        return 10;
    case Storage::Scaled128:
    case Storage::Guid:
        return 16;
    case Storage::Text:
    case Storage::Binary:
        break;
    }
    return 0;
}

bool ColumnBlock::isFixedNull(std::size_t row) const
{
    return !m_nullBits.empty() && ((m_nullBits[row / rowsPerWord] >> (row % rowsPerWord)) & 1U) != 0;
}

const char* ColumnBlock::fixedAt(std::size_t row, std::size_t width) const
{
    std::size_t place = row;
    if (!m_nullBits.empty()) {
        const std::size_t word = row / rowsPerWord;
        const std::uint64_t before = (std::uint64_t{1} << (row % rowsPerWord)) - 1;
        place = m_ranks[word] + static_cast<std::size_t>(std::popcount(~m_nullBits[word] & before));
    }
    return m_data.data() + place * width;
}

/// A cell's header is one more than length and encoding together, seven bits a byte from the lowest, the
/// top bit set while more follow; a header of 0 is a null.
ColumnBlock::Cell ColumnBlock::cell(std::size_t row) const
{
    const char* at = m_data.data() + m_groups[row / cellsPerGroup];
    Cell result;
    for (std::size_t skip = row % cellsPerGroup + 1; skip > 0; --skip) {
        at += result.size;
        std::uint64_t header = 0;
        unsigned char part = 0;
        int shift = 0;
        do {
            part = static_cast<unsigned char>(*at++);
            header |= static_cast<std::uint64_t>(part & 0x7FU) << shift;
            shift += 7;
        } while (part >= 0x80);
        if (header == 0)
            result = {};
        else
            result = {at, (header - 1) >> encodingBits, static_cast<std::uint8_t>((header - 1) & 3U)};
    }
    return result;
}

bool ColumnBlock::isNull(const Column& column, std::size_t row) const
{
    return storageWidth(column.storage) == 0 ? cell(row).data == nullptr : isFixedNull(row);
}

basic::Variant ColumnBlock::value(const Column& column, std::size_t row) const
{
    if (storageWidth(column.storage) != 0)
        return isFixedNull(row) ? basic::Variant::null() : fixedValue(column, row);
    const Cell found = cell(row);
    if (found.data == nullptr)
        return basic::Variant::null();
    if (column.storage == Storage::Binary)
        return QByteArray(found.data, static_cast<qsizetype>(found.size));
    return decoded(found.encoding, found.data, found.size, 0);
}

QString ColumnBlock::text(const Column& column, std::size_t row, qsizetype limit) const
{
    if (storageWidth(column.storage) != 0)
        return isFixedNull(row) ? QString() : basic::text(fixedValue(column, row));
    const Cell found = cell(row);
    if (found.data == nullptr)
        return {};
    if (column.storage == Storage::Text)
        return decoded(found.encoding, found.data, found.size, limit);
    const auto size = static_cast<qsizetype>(found.size);
    return basic::text(basic::Variant(QByteArray(found.data, limit > 0 ? std::min(limit, size) : size)));
}

basic::Variant ColumnBlock::fixedValue(const Column& column, std::size_t row) const
{
    using basic::Decimal;
    const char* const data = fixedAt(row, storageWidth(column.storage));
    switch (column.storage) {
    case Storage::Bit:
        return *data != 0;
    case Storage::UInt8:
        return static_cast<unsigned char>(*data);
    case Storage::Int16:
        return load<std::int16_t>(data);
    case Storage::Int32:
        return load<std::int32_t>(data);
    case Storage::Int64:
        return load<std::int64_t>(data);
    case Storage::Float:
        return fromReal(load<float>(data));
    case Storage::Double:
        return load<double>(data);
    case Storage::Scaled32:
        return Decimal{scaledText(load<std::int32_t>(data), column.scale)};
    case Storage::Scaled64:
        return Decimal{scaledText(load<std::int64_t>(data), column.scale)};
    case Storage::Scaled128:
        return Decimal{scaledText(load<Int128>(data), column.scale)};
    case Storage::Minutes: {
        const auto minutes = load<std::int32_t>(data);
        return basic::Moment{dayOf(minutes / 1440),
                             static_cast<qint64>(minutes % 1440) * 60 * ticksPerSecond};
    }
    case Storage::Moment: {
        const auto ticks = load<qint64>(data);
        return basic::Moment{dayOf(ticks / ticksPerDay), ticks % ticksPerDay};
    }
    case Storage::Day:
        return basic::Moment{dayOf(load<std::int32_t>(data)), 0};
    case Storage::IsoMoment:
        return isoMoment(load<qint64>(data), column.scale);
    case Storage::IsoTime32:
        return isoTime(load<std::int32_t>(data) * ticksPerUnit(column.scale), column.scale);
    case Storage::IsoTime64:
        return isoTime(load<qint64>(data) * ticksPerUnit(column.scale), column.scale);
    case Storage::IsoOffset:
        return isoOffset(data, column.scale);
    case Storage::Guid:
        return guidText(data);
    case Storage::Text:
    case Storage::Binary:
        break;
    }
    return {};
}

std::size_t ColumnBlock::memoryUsed() const
{
    return sizeof *this + m_data.capacity() + m_nullBits.capacity() * sizeof(std::uint64_t) +
           m_ranks.capacity() * sizeof(std::uint16_t) + m_groups.capacity() * sizeof(std::uint32_t);
}

ColumnBuilder::ColumnBuilder(Storage storage) : m_storage(storage), m_width(storageWidth(storage)) {}

void ColumnBuilder::beginCell()
{
    if (m_rows % cellsPerGroup == 0)
        m_groups.push_back(static_cast<std::uint32_t>(m_data.size()));
    ++m_rows;
}

void ColumnBuilder::addNull()
{
    if (m_width == 0) {
        beginCell();
        m_data.push_back(0);
        return;
    }
    m_nullBits.resize(m_rows / rowsPerWord + 1);
    m_nullBits[m_rows / rowsPerWord] |= std::uint64_t{1} << (m_rows % rowsPerWord);
    m_hasNulls = true;
    ++m_rows;
}

void ColumnBuilder::addFixed(const void* values, std::size_t count)
{
    const auto* const data = static_cast<const char*>(values);
    m_data.insert(m_data.end(), data, data + m_width * count);
    m_rows += count;
}

char* ColumnBuilder::addCell(std::uint8_t encoding, std::size_t size)
{
    beginCell();
    std::uint64_t header = ((static_cast<std::uint64_t>(size) << encodingBits) | encoding) + 1;
    for (; header >= 0x80; header >>= 7)
        m_data.push_back(static_cast<char>(header | 0x80U));
    m_data.push_back(static_cast<char>(header));
    m_data.resize(m_data.size() + size);
    return m_data.data() + m_data.size() - size;
}

void ColumnBuilder::addCell(std::uint8_t encoding, const char* data, std::size_t size)
{
    std::copy_n(data, size, addCell(encoding, size));
}

void ColumnBuilder::addUtf8(const char* data, std::size_t size)
{
    if (isAscii(data, size))
        addCell(latin1, data, size);
    else
        addUtf16(QString::fromUtf8(data, static_cast<qsizetype>(size)));
}

void ColumnBuilder::addUtf16(QStringView text)
{
    const char16_t* const units = text.utf16();
    const auto count = static_cast<std::size_t>(text.size());
    if (fitsLatin1(units, count)) {
        char* const bytes = addCell(latin1, count);
        for (std::size_t index = 0; index < count; ++index)
            bytes[index] = static_cast<char>(units[index]);
        return;
    }
    const QByteArray bytes = text.isValidUtf16() ? text.toUtf8() : QByteArray();
    if (bytes.isEmpty() || bytes.size() >= text.size() * 2)
        addCell(utf16, reinterpret_cast<const char*>(text.utf16()),
                static_cast<std::size_t>(text.size()) * 2);
    else
        addCell(utf8, bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

void ColumnBuilder::addBinary(const char* data, std::size_t size)
{
    addCell(latin1, data, size);
}

ColumnBlock ColumnBuilder::seal()
{
    // Copies, not moves: a copy has no spare capacity, and the buffers here serve the next rows.
    ColumnBlock block;
    block.m_data = std::vector<char>(m_data);
    block.m_groups = std::vector<std::uint32_t>(m_groups);
    if (m_hasNulls) {
        m_nullBits.resize((m_rows + rowsPerWord - 1) / rowsPerWord);
        block.m_nullBits = std::vector<std::uint64_t>(m_nullBits);
        std::size_t before = 0;
        block.m_ranks.reserve(m_nullBits.size());
        for (const std::uint64_t word : m_nullBits) {
            block.m_ranks.push_back(static_cast<std::uint16_t>(before));
            before += rowsPerWord - static_cast<std::size_t>(std::popcount(word));
        }
    }
    *this = [this] {
        ColumnBuilder next(m_storage);
        next.m_data = std::move(m_data);
        next.m_data.clear();
        return next;
    }();
    return block;
}

} // namespace ado
