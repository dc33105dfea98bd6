// Column data as a driver hands it over: into every storage, sealed, and read again as value and text.
// The first byte chooses how a value is read, the second the scale, the third cuts the rest into cells.
#include "fuzz_check.h"

#include "platform/ado/FieldValues.h"
#include "platform/ado/Odbc.h"
#include "platform/ado/TimeUnits.h"
#include "platform/basic/RuntimeError.h"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

using ado::FieldKind;
using ado::Storage;

struct Form
{
    Storage storage;
    ado::field::Add add;
    std::size_t width; ///< bytes of one value as the driver gives it; 0: any number
    int mostScale = 0;
};

constexpr std::array forms = std::to_array<Form>({
    {Storage::Bit, nullptr, 1},
    {Storage::UInt8, nullptr, 1},
    {Storage::Int16, nullptr, 2},
    {Storage::Int32, nullptr, 4},
    {Storage::Int64, nullptr, 8},
    {Storage::Float, nullptr, 4},
    {Storage::Double, nullptr, 8},
    {Storage::Scaled32, ado::field::addScaled, 0, ado::field::scaled32Digits},
    {Storage::Scaled64, ado::field::addScaled, 0, ado::field::scaled64Digits},
    {Storage::Scaled128, ado::field::addScaled, 0, ado::field::mostDecimalDigits},
    {Storage::Minutes, ado::field::addMinutes, sizeof(SQL_TIMESTAMP_STRUCT)},
    {Storage::Moment, ado::field::addTicks, sizeof(SQL_TIMESTAMP_STRUCT)},
    {Storage::IsoMoment, ado::field::addTicks, sizeof(SQL_TIMESTAMP_STRUCT), ado::tickDigits},
    {Storage::Day, ado::field::addDay, sizeof(SQL_DATE_STRUCT)},
    {Storage::IsoTime32, ado::field::addTime, 0, 4},
    {Storage::IsoTime64, ado::field::addTime, 0, ado::tickDigits},
    {Storage::IsoOffset, ado::field::addOffset, 0, ado::tickDigits},
    {Storage::Guid, ado::field::addGuid, sizeof(SQLGUID)},
    {Storage::Text, ado::field::addUtf8, 0},
    {Storage::Text, ado::field::addUtf16, 0},
    {Storage::Binary, ado::field::addBinary, 0},
    {Storage::Scaled32, ado::field::addNumeric, sizeof(SQL_NUMERIC_STRUCT), ado::field::scaled32Digits},
    {Storage::Scaled64, ado::field::addNumeric, sizeof(SQL_NUMERIC_STRUCT), ado::field::scaled64Digits},
    {Storage::Scaled128, ado::field::addNumeric, sizeof(SQL_NUMERIC_STRUCT), ado::field::mostDecimalDigits},
    {Storage::Moment, ado::field::addDateTime, 8},
});

/// What went in, for the storages whose values can be compared as they are.
void checkValue(const ado::ColumnBlock& block, const ado::Column& column, const Form& form, std::size_t row,
                std::span<const char> cell)
{
    const basic::Variant value = block.value(column, row);
    const QString text = block.text(column, row, 0);
    const auto size = static_cast<qsizetype>(cell.size());
    if (form.add == ado::field::addBinary)
        fuzz::check(*value.as<QByteArray>() == QByteArray(cell.data(), size));
    if (form.add == ado::field::addUtf16)
        fuzz::check(*value.as<QString>() ==
                    QStringView(reinterpret_cast<const char16_t*>(cell.data()), size / 2));
    if (const auto* const moment = value.as<basic::Moment>())
        fuzz::check(moment->day.isValid() && moment->ticks >= 0 && moment->ticks < 864'000'000'000);
    if (form.add == ado::field::addUtf8)
        fuzz::check(*value.as<QString>() == QString::fromUtf8(cell.data(), size));
    if (column.storage == Storage::Text)
        fuzz::check(text == *value.as<QString>() && block.text(column, row, 5) == text.left(5));
    if (column.kind == FieldKind::Decimal) {
        const QString& digits = value.as<basic::Decimal>()->digits;
        fuzz::check(!digits.isEmpty() && digits.size() <= ado::field::mostDecimalDigits + 3);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 3)
        return 0;
    const Form& form = forms.at(data[0] % forms.size());
    const std::size_t step = form.width > 0 ? form.width : data[2] + std::size_t{1};
    const bool isDecimal = form.add == ado::field::addScaled || form.add == ado::field::addNumeric;
    const ado::Column column{u"c"_s, form.storage, isDecimal ? FieldKind::Decimal : FieldKind::Text,
                             data[1] % (form.mostScale + 1)};
    const std::span<const char> bytes(reinterpret_cast<const char*>(data) + 3, size - 3);
    ado::ColumnBuilder builder(form.storage);
    std::vector<std::vector<char>> cells; ///< an empty one is a null
    for (std::size_t at = 0; at + form.width <= bytes.size() && at < bytes.size(); at += step) {
        const auto cell = bytes.subspan(at, std::min(step, bytes.size() - at));
        // A copy of its own each, so that reading past its end is seen.
        const std::vector<char> copy(cell.begin(), cell.end());
        if (copy.front() == '\xFF') {
            builder.addNull();
            cells.emplace_back();
            continue;
        }
        try {
            if (form.add == nullptr)
                builder.addFixed(copy.data());
            else
                form.add(builder, column, copy.data(), copy.size());
            cells.push_back(copy);
        } catch (const basic::RuntimeError& error) {
            fuzz::check(!error.description().isEmpty());
        }
    }
    const ado::ColumnBlock block = builder.seal();
    for (std::size_t row = 0; row < cells.size(); ++row) {
        fuzz::check(block.isNull(column, row) == cells[row].empty());
        if (!cells[row].empty())
            checkValue(block, column, form, row, cells[row]);
    }
    return 0;
}
