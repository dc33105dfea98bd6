// Numbers out of text and back: whatever was typed gives a number or one of the errors it may give.
#include "fuzz_check.h"

#include "platform/basic/Numbers.h"
#include "platform/basic/RuntimeError.h"
#include "platform/basic/VariantText.h"

#include <QLocale>
#include <array>
#include <cmath>
#include <optional>

namespace {

template <class Work>
std::optional<double> attempt(Work work)
{
    try {
        return static_cast<double>(work());
    } catch (const basic::RuntimeError& error) {
        fuzz::check(error.number() == basic::error::Overflow || error.number() == basic::error::TypeMismatch);
        return std::nullopt;
    }
}

void checkLocale(const QString& text, const QLocale& locale)
{
    const auto value = attempt([&] { return basic::toDouble(text, locale); });
    fuzz::check(value.has_value() == basic::isNumeric(text, locale));
    if (!value)
        return;
    fuzz::check(std::isfinite(*value));
    // 15 of at most 17 digits are written; rounding up the greatest number overflows, as it should.
    const auto again = attempt([&] { return basic::toDouble(basic::text(*value, locale), locale); });
    fuzz::check(again ? std::abs(*again - *value) <= std::abs(*value) * 1e-14 : std::abs(*value) > 1e308);
}

void checkWhole(double value)
{
    const auto small = attempt([&] { return basic::toInt16(value); });
    const auto large = attempt([&] { return basic::toInt32(value); });
    fuzz::check(!small || (large && *large == *small));
    fuzz::check(!large || std::abs(*large - value) <= 0.5);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const std::array locales{QLocale::c(), QLocale(QLocale::Spanish, QLocale::Spain),
                                    QLocale(QLocale::French, QLocale::France),
                                    QLocale(QLocale::German, QLocale::Switzerland)};
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    for (const QLocale& locale : locales)
        checkLocale(text, locale);
    if (const auto value = attempt([&] { return basic::val(text); }))
        checkWhole(*value);
    return 0;
}
