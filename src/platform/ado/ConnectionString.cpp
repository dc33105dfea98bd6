#include "platform/ado/ConnectionString.h"

#include "platform/ado/ErrorNumbers.h"
#include "platform/basic/Language.h"
#include "platform/basic/RuntimeError.h"
#include <QHash>

using namespace Qt::StringLiterals;

namespace ado {

namespace {

enum class Key
{
    DataSource,
    Catalog,
    User,
    Password,
    Encrypt,
    Timeout
};

const QHash<QString, Key>& keys()
{
    static const QHash<QString, Key> known{
        {u"data source"_s, Key::DataSource},
        {u"server"_s, Key::DataSource},
        {u"address"_s, Key::DataSource},
        {u"addr"_s, Key::DataSource},
        {u"network address"_s, Key::DataSource},
        {u"initial catalog"_s, Key::Catalog},
        {u"database"_s, Key::Catalog},
        {u"user id"_s, Key::User},
        {u"uid"_s, Key::User},
        {u"user"_s, Key::User},
        {u"password"_s, Key::Password},
        {u"pwd"_s, Key::Password},
        {u"use encryption for data"_s, Key::Encrypt},
        {u"encrypt"_s, Key::Encrypt},
        {u"connect timeout"_s, Key::Timeout},
        {u"connection timeout"_s, Key::Timeout},
        {u"timeout"_s, Key::Timeout},
    };
    return known;
}

[[noreturn]] void refuse()
{
    basic::raise(
        number::BadConnectionString,
        basic::uiText(
            "La cadena de conexión está mal formada: cada parte debe ser nombre=valor, y un valor que "
            "empieza con comillas debe acabar con ellas.",
            "The connection string is not well formed: every part must read name=value, "
            "and a value that begins with a quotation mark must end with one."));
}

/// Walks over a connection string pair by pair.
class Scanner
{
public:
    explicit Scanner(const QString& text) : m_text(text) {}

    /// Skips blanks and empty pairs; false at the end.
    bool atPair()
    {
        while (m_at < m_text.size() &&
               (m_text[m_at] == u';' || m_text[m_at].isSpace() || m_text[m_at].isNull()))
            ++m_at;
        return m_at < m_text.size();
    }

    QString key()
    {
        QString result;
        for (; m_at < m_text.size() && m_text[m_at] != u';'; ++m_at) {
            if (m_text[m_at] == u'=') {
                if (m_at + 1 == m_text.size() || m_text[m_at + 1] != u'=') {
                    ++m_at;
                    return result.trimmed().toLower();
                }
                ++m_at;
            }
            result += m_text[m_at];
        }
        refuse();
    }

    QString value()
    {
        skipBlanks();
        if (m_at < m_text.size() && (m_text[m_at] == u'\'' || m_text[m_at] == u'"'))
            return quoted();
        const qsizetype end = m_text.indexOf(u';', m_at);
        QString result = m_text.mid(m_at, end < 0 ? -1 : end - m_at).trimmed();
        m_at = end < 0 ? m_text.size() : end;
        return result;
    }

private:
    void skipBlanks()
    {
        while (m_at < m_text.size() && m_text[m_at].isSpace())
            ++m_at;
    }

    QString quoted()
    {
        const QChar mark = m_text[m_at++];
        QString result;
        for (;; ++m_at) {
            if (m_at == m_text.size())
                refuse();
            if (m_text[m_at] == mark) {
                if (m_at + 1 == m_text.size() || m_text[m_at + 1] != mark)
                    break;
                ++m_at;
            }
            result += m_text[m_at];
        }
        ++m_at;
        skipBlanks();
        if (m_at < m_text.size() && m_text[m_at] != u';')
            refuse();
        return result;
    }

    const QString& m_text;
    qsizetype m_at = 0;
};

bool isTrue(const QString& value)
{
    const QString word = value.toLower();
    return word == u"true" || word == u"yes" || word == u"mandatory" || word == u"strict" || word == u"1";
}

void assign(ConnectionRequest& request, Key key, const QString& value)
{
    switch (key) {
    case Key::DataSource:
        request.dataSource = value;
        break;
    case Key::Catalog:
        request.catalog = value;
        break;
    case Key::User:
        request.user = value;
        break;
    case Key::Password:
        request.password = value;
        break;
    case Key::Encrypt:
        request.encrypt = isTrue(value);
        break;
    case Key::Timeout:
        bool isNumber = false;
        const int seconds = value.toInt(&isNumber);
        if (!isNumber || seconds < 0)
            refuse();
        request.timeout = seconds;
        break;
    }
}

} // namespace

ConnectionRequest parseConnectionString(const QString& text)
{
    ConnectionRequest request;
    Scanner scanner(text);
    while (scanner.atPair()) {
        const QString key = scanner.key();
        const QString value = scanner.value();
        if (key.isEmpty())
            refuse();
        const auto known = keys().constFind(key);
        if (known != keys().constEnd())
            assign(request, *known, value);
    }
    return request;
}

} // namespace ado
