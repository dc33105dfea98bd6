// One value of a database field: nothing, a number, a text, a date, or bytes.
#pragma once

#include <QByteArray>
#include <QDate>
#include <QString>
#include <concepts>
#include <variant>

namespace basic {

/// A day and a time of day to 100 nanoseconds. The zero date, 30 December 1899, stands for "no day".
struct Moment
{
    QDate day;
    qint64 ticks = 0; ///< 100-nanosecond units since midnight, below 864 000 000 000

    static QDate zeroDay() { return {1899, 12, 30}; }
    bool operator==(const Moment&) const = default;
};

/// One exact number, kept as its digits: an optional '-', digits, and an optional '.' with digits.
struct Decimal
{
    QString digits;

    bool operator==(const Decimal&) const = default;
};

/// One value of a field or of a grid's array.
class Variant
{
public:
    enum class Kind
    {
        Empty,
        Null,
        Boolean,
        Integer,
        Double,
        Decimal,
        Text,
        Date,
        Binary
    };

    Variant() = default;
    Variant(bool value) : m_value(value) {}
    template <std::integral T>
    requires(!std::same_as<T, bool>) Variant(T value) : m_value(static_cast<qint64>(value)) {}
    Variant(double value) : m_value(value) {}
    Variant(QString value) : m_value(std::move(value)) {}
    Variant(QByteArray value) : m_value(std::move(value)) {}
    Variant(Decimal value) : m_value(std::move(value)) {}
    Variant(Moment value) : m_value(value) {}
    template <class T>
    Variant(T*) = delete; // a pointer would silently become a boolean

    static Variant null()
    {
        Variant result;
        result.m_value = NullValue{};
        return result;
    }

    [[nodiscard]] Kind kind() const { return static_cast<Kind>(m_value.index()); }
    [[nodiscard]] bool isEmpty() const { return kind() == Kind::Empty; }
    [[nodiscard]] bool isNull() const { return kind() == Kind::Null; }

    /// The held value, when it is of type T (bool, qint64, double, Decimal, QString, Moment, QByteArray).
    template <class T>
    [[nodiscard]] const T* as() const
    {
        return std::get_if<T>(&m_value);
    }

    /// Calls `visitor` with the held value; Empty and Null come as types of their own.
    template <class Visitor>
    auto visit(Visitor&& visitor) const
    {
        return std::visit(std::forward<Visitor>(visitor), m_value);
    }

    bool operator==(const Variant&) const = default;

private:
    struct NullValue
    {
        bool operator==(const NullValue&) const = default;
    };
    // In the order of Kind.
    std::variant<std::monostate, NullValue, bool, qint64, double, Decimal, QString, Moment, QByteArray>
        m_value;
};

} // namespace basic
