// Arrays with a fixed lower and upper bound, which raise the runtime's subscript error beyond them.
#pragma once

#include "platform/basic/RuntimeError.h"
#include <cstddef>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace basic {

/// What happened to an array that a grid shows.
struct ArrayChange
{
    enum class Kind
    {
        Reshaped,
        Cell,
        Destroyed ///< the array is about to go; it must not be read any more
    };

    Kind kind;
    int row = -1;    ///< of the cell; -1 for the array as a whole
    int column = -1; ///< of the cell; -1 for the array as a whole
};

/// Keeps a listener registered for as long as it lives; it may outlive the array.
using ArraySubscription = std::shared_ptr<const std::function<void(const ArrayChange&)>>;

/// Two dimensions with the lower bound 0 and a settable upper bound each. A new array has no elements.
/// Any row or column outside the bounds, negative ones too, raises error 9 (Subscript out of range).
///
/// `a(r, c) = value` and `set(r, c, value)` tell the listeners; `a.at(r, c)` only reads. What stands in a
/// cell is read with `at()`, or through the conversion of `a(r, c)` to `const T&`, or with `a(r, c)->`.
/// Copies take the elements and no listeners.
template <class T>
class BoundedArray2
{
public:
    /// A cell that can be assigned to; short-lived, it refers to the array.
    class Cell
    {
    public:
        Cell& operator=(T value)
        {
            m_array.set(m_row, m_column, std::move(value));
            return *this;
        }
        Cell& operator=(const Cell& other) { return *this = T(static_cast<const T&>(other)); }
        Cell(const Cell&) = default;
        ~Cell() = default;
        operator const T&() const { return m_array.at(m_row, m_column); }
        const T* operator->() const { return &m_array.at(m_row, m_column); }

    private:
        friend class BoundedArray2;
        Cell(BoundedArray2& array, int row, int column) : m_array(array), m_row(row), m_column(column)
        {
            static_cast<void>(array.at(row, column));
        }

        BoundedArray2& m_array;
        int m_row;
        int m_column;
    };

    BoundedArray2() = default;
    BoundedArray2(int lastRow, int lastColumn) { Redim(lastRow, lastColumn); }
    BoundedArray2(const BoundedArray2& other)
        : m_lastRow(other.m_lastRow), m_lastColumn(other.m_lastColumn), m_rows(other.m_rows)
    {}
    BoundedArray2& operator=(const BoundedArray2& other)
    {
        m_lastRow = other.m_lastRow;
        m_lastColumn = other.m_lastColumn;
        m_rows = other.m_rows;
        notify({ArrayChange::Kind::Reshaped});
        return *this;
    }
    ~BoundedArray2() { notify({ArrayChange::Kind::Destroyed}); }

    /// Sets the upper bounds and clears every element. -1 leaves the dimension without elements; less
    /// raises error 9.
    void Redim(int lastRow, int lastColumn)
    {
        if (lastRow < -1 || lastColumn < -1)
            raise(error::Subscript);
        m_rows.assign(static_cast<std::size_t>(lastRow) + 1U, {});
        m_lastRow = lastRow;
        m_lastColumn = lastColumn;
        notify({ArrayChange::Kind::Reshaped});
    }

    [[nodiscard]] int lastRow() const { return m_lastRow; }
    [[nodiscard]] int lastColumn() const { return m_lastColumn; }

    [[nodiscard]] const T& at(int row, int column) const
    {
        static const T unset{};
        check(row, column);
        const std::vector<T>& cells = m_rows[static_cast<std::size_t>(row)];
        return cells.empty() ? unset : cells[static_cast<std::size_t>(column)];
    }
    const T& operator()(int row, int column) const { return at(row, column); }
    Cell operator()(int row, int column) { return Cell(*this, row, column); }

    void set(int row, int column, T value)
    {
        check(row, column);
        std::vector<T>& cells = m_rows[static_cast<std::size_t>(row)];
        if (cells.empty())
            cells.resize(static_cast<std::size_t>(m_lastColumn) + 1U);
        cells[static_cast<std::size_t>(column)] = std::move(value);
        notify({ArrayChange::Kind::Cell, row, column});
    }

    /// Calls `listener` after every change until the returned token is dropped.
    [[nodiscard]] ArraySubscription subscribe(std::function<void(const ArrayChange&)> listener)
    {
        auto token = std::make_shared<const std::function<void(const ArrayChange&)>>(std::move(listener));
        std::erase_if(m_listeners, [](const auto& known) { return known.expired(); });
        m_listeners.push_back(token);
        return token;
    }

private:
    using Listener = std::weak_ptr<const std::function<void(const ArrayChange&)>>;

    void check(int row, int column) const
    {
        if (row < 0 || row > m_lastRow || column < 0 || column > m_lastColumn)
            raise(error::Subscript);
    }

    void notify(const ArrayChange& change)
    {
        if (m_listeners.empty())
            return;
        const auto listeners = m_listeners; // a listener may subscribe another
        for (const Listener& known : listeners)
            if (const auto listener = known.lock())
                (*listener)(change);
    }

    int m_lastRow = -1;
    int m_lastColumn = -1;
    std::vector<std::vector<T>> m_rows; ///< a row has cells once one is set: most of a large grid never has
    std::vector<Listener> m_listeners;
};

} // namespace basic
