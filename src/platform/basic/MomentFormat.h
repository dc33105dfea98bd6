// How a locale writes days and times, worked out once for many of them.
#pragma once

#include "platform/basic/Variant.h"
#include <QLocale>
#include <array>
#include <vector>

namespace basic {

class MomentFormat
{
public:
    explicit MomentFormat(const QLocale& locale);

    [[nodiscard]] const QLocale& locale() const { return m_locale; }

    /// The short date with all digits of the year, then the time with seconds unless it is midnight; the
    /// time alone on the zero date.
    [[nodiscard]] QString text(const Moment& moment) const;

private:
    enum Part : std::size_t
    {
        Year,
        Month,
        Day,
        Hour,   ///< of 24
        Hour12, ///< of 12
        Minute,
        Second,
        MonthName,
        HalfDay,
        Literal
    };
    using Numbers = std::array<int, MonthName>; ///< of the parts before MonthName
    struct Piece
    {
        Part part;
        int digits = 0;         ///< at least so many
        QStringList texts = {}; ///< the literal; the names of the months; before noon and after
    };
    struct Pattern
    {
        QString format;            ///< as QLocale takes it
        std::vector<Piece> pieces; ///< the same; empty when it holds what is not written here
    };

    [[nodiscard]] Pattern parsed(const QString& format) const;
    [[nodiscard]] bool addField(std::vector<Piece>& pieces, QStringView field) const;
    static void write(QString& text, const std::vector<Piece>& pieces, const Numbers& numbers);

    QLocale m_locale;
    Pattern m_day;
    Pattern m_time;
};

} // namespace basic
