// What the server said beside errors, until a result takes it along.
#pragma once

#include "platform/ado/ResultMemory.h"
#include <QStringList>
#include <utility>

namespace ado {

class MessageList
{
public:
    /// Raises what ResultShare::grow() raises; the messages are there all the same.
    void add(const QStringList& texts)
    {
        constexpr std::size_t ofEach = 64; // bytes beside the characters
        m_texts += texts;
        std::size_t bytes = 0;
        for (const QString& text : texts)
            bytes += ofEach + static_cast<std::size_t>(text.size()) * sizeof(QChar);
        m_share.grow(bytes);
    }
    [[nodiscard]] bool isEmpty() const { return m_texts.isEmpty(); }
    /// Hands them over, and what they hold of the memory to `share`.
    QStringList take(ResultShare& share)
    {
        const std::size_t bytes = m_share.bytes();
        m_share.release();
        share.grow(bytes);
        return std::exchange(m_texts, {});
    }
    /// Takes back what take() gave.
    void putBack(const QStringList& texts) { m_texts = texts + m_texts; }
    QStringList take()
    {
        m_share.release();
        return std::exchange(m_texts, {});
    }

private:
    QStringList m_texts;
    ResultShare m_share;
};

} // namespace ado
