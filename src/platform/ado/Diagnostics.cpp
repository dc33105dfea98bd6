#include "platform/ado/Diagnostics.h"

#include "platform/ado/ErrorNumbers.h"
#include "platform/basic/Language.h"
#include <QRegularExpression>
#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace ado {

namespace {

constexpr SQLSMALLINT stateLength = 5;
constexpr qsizetype usualTextLength = 1024;
constexpr SQLSMALLINT lastRecord = 32767;

// FreeTDS's own numbers for what happens on the client's side.
constexpr int freeTdsFirst = 20000;
constexpr int freeTdsLast = 20099;
constexpr int freeTdsUnexpectedEnd = 20017;
constexpr int freeTdsUnknownHost = 20013;

constexpr int databaseChanged = 5701;
constexpr int languageChanged = 5703;

bool isClientNumber(const Diagnostic& record)
{
    return record.native >= freeTdsFirst && record.native <= freeTdsLast &&
           (record.state.startsWith("01"_L1) || record.state.startsWith("08"_L1));
}

/// What FreeTDS says when it has nothing to say: the connection was reset, or the answer is no answer.
bool isUnexplained(const Diagnostic& record)
{
    return record.native == 0 && record.text == "Unknown error"_L1;
}

/// An error as the server worded it. A damaged one may have lost its words.
basic::RuntimeError serverError(const Diagnostic& record)
{
    return {record.native, record.text.trimmed().isEmpty()
                               ? basic::uiText("El servidor dio el error %1 sin decir más.",
                                               "The server reported error %1 without saying more.")
                                     .arg(record.native)
                               : record.text};
}

const Diagnostic* findServerError(const std::vector<Diagnostic>& records)
{
    const auto found = std::ranges::find_if(records, &Diagnostic::isServerError);
    return found == records.end() ? nullptr : &*found;
}

basic::RuntimeError lostConnection()
{
    return {number::DriverFailure,
            basic::uiText(
                "Se ha perdido la conexión con el servidor: la cerró, o no se pudo leer su respuesta. "
                "Conecte de nuevo.",
                "The connection with the server was lost: it closed it, or its answer could not be read. "
                "Connect again.")};
}

/// Reads record by record with a function that is SQLGetDiagRec. A record's text ends where the driver wrote
/// its length; a longer text is read again.
template <class Read>
std::vector<Diagnostic> readRecords(Read read)
{
    std::vector<Diagnostic> records;
    for (SQLSMALLINT index = 1; index < lastRecord; ++index) {
        QString state(stateLength + 1, u'\0');
        QString text(usualTextLength, u'\0');
        SQLINTEGER native = 0;
        SQLSMALLINT length = 0;
        SQLRETURN outcome = read(index, state, native, text, length);
        if (outcome == SQL_SUCCESS_WITH_INFO && length >= text.size()) {
            text.resize(length + 1);
            outcome = read(index, state, native, text, length);
        }
        if (!SQL_SUCCEEDED(outcome))
            break;
        text.truncate(length);
        records.push_back({state.first(stateLength), static_cast<int>(native), withoutOriginGroups(text)});
    }
    return records;
}

} // namespace

bool Diagnostic::isInformation() const
{
    return (state.startsWith("01"_L1) || state.startsWith("00"_L1)) && !isClientNumber(*this);
}

bool Diagnostic::isServerError() const
{
    return native != 0 && !isInformation() && !isClientNumber(*this) && !isTimeOut();
}

bool Diagnostic::isTimeOut() const
{
    return state.startsWith("HYT"_L1);
}

bool Diagnostic::isLost() const
{
    return state.startsWith("08"_L1) || isClientNumber(*this) || isUnexplained(*this);
}

std::vector<Diagnostic> readDiagnostics(SQLSMALLINT kind, SQLHANDLE handle)
{
    return readRecords([kind, handle](SQLSMALLINT index, QString& state, SQLINTEGER& native, QString& text,
                                      SQLSMALLINT& length) {
        return SQLGetDiagRecW(kind, handle, index, odbc::wide(state), &native, odbc::wide(text),
                              static_cast<SQLSMALLINT>(text.size()), &length);
    });
}

std::vector<Diagnostic> readDiagnostics(SQLHSTMT statement, const DriverLibrary& library)
{
    SQLHSTMT const own = library.own(statement);
    std::vector<Diagnostic> records = readRecords([own, &library](auto&&... place) {
        return library.diagnostic(own, std::forward<decltype(place)>(place)...);
    });
    return records.empty() ? readDiagnostics(SQL_HANDLE_STMT, statement) : records;
}

QString withoutOriginGroups(const QString& text)
{
    static const QRegularExpression groups(
        u"^(?:\\[unixODBC\\])?(?:\\[Driver Manager\\]|\\[FreeTDS\\](?:\\[SQL Server\\])?|"
        "\\[Microsoft\\]\\[(?:ODBC Driver \\d+ for SQL Server|SQL Server Native Client [\\d.]+|"
        "ODBC SQL Server Driver)\\](?:\\[SQL Server\\])?)?"_s);
    return text.sliced(groups.match(text).capturedEnd());
}

QStringList messages(const std::vector<Diagnostic>& records)
{
    QStringList result;
    for (const Diagnostic& record : records)
        if (record.isInformation() && record.native != databaseChanged && record.native != languageChanged)
            result += record.text;
    return result;
}

basic::RuntimeError statementError(const std::vector<Diagnostic>& records)
{
    if (const Diagnostic* const error = findServerError(records))
        return serverError(*error);
    if (std::ranges::any_of(records, &Diagnostic::isTimeOut))
        return statementTimeOut();
    if (records.empty() || std::ranges::any_of(records, &Diagnostic::isLost))
        return lostConnection();
    return {number::DriverFailure, records.front().text};
}

basic::RuntimeError connectError(const std::vector<Diagnostic>& records, const QString& server)
{
    if (const Diagnostic* const error = findServerError(records))
        return serverError(*error);
    if (std::ranges::any_of(records, &Diagnostic::isTimeOut))
        return connectTimeOut(server);
    const auto has = [&](auto number) {
        return std::ranges::any_of(records,
                                   [=](const Diagnostic& record) { return record.native == number; });
    };
    if (has(freeTdsUnknownHost))
        return {number::NoServer,
                basic::uiText(
                    "No existe el servidor SQL Server o se ha denegado el acceso: no se conoce ninguna "
                    "máquina de ese nombre (%1).",
                    "SQL Server does not exist or access denied: no machine of this name is known (%1).")
                    .arg(server)};
    if (has(freeTdsUnexpectedEnd))
        return {
            number::NoServer,
            basic::uiText(
                "No existe el servidor SQL Server o se ha denegado el acceso: lo que responde en %1 cerró la "
                "conexión o no habla el protocolo de SQL Server.",
                "SQL Server does not exist or access denied: what answers at %1 closed the "
                "connection or does not speak SQL Server's protocol.")
                .arg(server)};
    if (std::ranges::any_of(records, &Diagnostic::isLost))
        return {number::NoServer,
                basic::uiText("No existe el servidor SQL Server o se ha denegado el acceso: ningún servidor "
                              "responde en %1.",
                              "SQL Server does not exist or access denied: no server answers at %1.")
                    .arg(server)};
    return {number::DriverFailure,
            records.empty()
                ? basic::uiText("No se pudo conectar con %1.", "Connecting to %1 failed.").arg(server)
                : records.front().text};
}

basic::RuntimeError damagedAnswer()
{
    return {number::DriverFailure,
            basic::uiText("La respuesta del servidor no llegó entera: faltan filas. Conecte de nuevo.",
                          "The server's answer did not arrive whole: rows are missing. Connect again.")};
}

basic::RuntimeError statementTimeOut()
{
    return {
        number::TimeOut,
        basic::uiText("Tiempo de espera agotado. La sentencia se canceló porque ha pasado su tiempo límite.",
                      "Timeout expired. The statement was cancelled because its time limit has passed.")};
}

basic::RuntimeError connectTimeOut(const QString& server)
{
    return {number::TimeOut,
            basic::uiText("Tiempo de espera agotado. El servidor no respondió a tiempo (%1).",
                          "Timeout expired. The server did not answer in time (%1).")
                .arg(server)};
}

} // namespace ado
