#include "platform/ado/StatementText.h"

#include "platform/ado/ErrorNumbers.h"
#include "platform/basic/Language.h"
#include "platform/basic/RuntimeError.h"

using namespace Qt::StringLiterals;

namespace ado {

namespace {

/// Position behind the quoted piece that begins at `at`; a doubled closing quote does not end it.
qsizetype skipQuoted(const QString& text, qsizetype at)
{
    const QChar close = text[at] == u'[' ? u']' : text[at];
    for (qsizetype i = at + 1; i < text.size(); ++i) {
        if (text[i] != close)
            continue;
        if (i + 1 == text.size() || text[i + 1] != close)
            return i + 1;
        ++i;
    }
    return text.size();
}

/// Position behind a comment at `at`, as the drivers see comments: no nesting, a line ends at a line
/// feed only. Position behind the one character when there is no comment.
qsizetype skipComment(const QString& text, qsizetype at)
{
    const QStringView rest = QStringView(text).sliced(at);
    if (rest.startsWith(u"--")) {
        const qsizetype end = text.indexOf(u'\n', at);
        return end < 0 ? text.size() : end;
    }
    if (rest.startsWith(u"/*")) {
        const qsizetype end = text.indexOf("*/"_L1, at + 2);
        return end < 0 ? text.size() : end + 2;
    }
    return at + 1;
}

bool isRewritten(const QString& text, qsizetype at, Driver::Family family)
{
    if (text[at] == u'?')
        return true;
    // "{fn " passes FreeTDS unchanged.
    return text[at] == u'{' && family == Driver::Family::FreeTds &&
           QStringView(text)
                   .sliced(at + 1, std::min<qsizetype>(3, text.size() - at - 1))
                   .compare(u"fn ", Qt::CaseInsensitive) != 0;
}

bool hasRewrittenPart(const QString& text, Driver::Family family)
{
    for (qsizetype at = 0; at < text.size();) {
        const QChar sign = text[at];
        if (sign == u'\'' || sign == u'"' || sign == u'[')
            at = skipQuoted(text, at);
        else if (sign == u'-' || sign == u'/')
            at = skipComment(text, at);
        else if (isRewritten(text, at, family))
            return true;
        else
            ++at;
    }
    return false;
}

} // namespace

EncodedText textForDriver(const QString& text, Driver::Family family, bool restoresStandIns)
{
    if (text.isEmpty())
        basic::raise(number::NoCommandText,
                     basic::uiText("No se ha dado texto al comando.",
                                   "Command text was not set for the command object."));
    if (restoresStandIns)
        return withStandIns(text);
    if (family == Driver::Family::FreeTds && text.contains(QChar(u'\0')))
        basic::raise(
            number::BadStatement,
            basic::uiText("La sentencia contiene un carácter NUL, que no se puede enviar al servidor.",
                          "The statement contains a NUL character, which cannot be sent to the server."));
    if (!hasRewrittenPart(text, family))
        return {text, {}};
    return {"EXEC(N'"_L1 + QString(text).replace(u'\'', "''"_L1) + "')"_L1, {}};
}

} // namespace ado
