#include "platform/ado/Session.h"

#include "platform/ado/Diagnostics.h"
#include "platform/ado/DriverEncoding.h"
#include "platform/ado/ErrorNumbers.h"
#include "platform/ado/HostLookup.h"
#include <QFile>
#include <utility>

using namespace Qt::StringLiterals;

namespace ado {

namespace {

constexpr std::chrono::seconds closingTime{5};
/// What the driver gets beyond the limit of connecting, to report it by itself.
constexpr std::chrono::seconds driverLead{1};

/// One environment for the process; kept by each session, since sessions may outlive static objects.
std::shared_ptr<odbc::Environment> environment()
{
    static const std::shared_ptr<odbc::Environment> shared = [] {
        auto made = std::make_shared<odbc::Environment>(nullptr);
        SQLSetEnvAttr(made->get(), SQL_ATTR_ODBC_VERSION, odbc::asPointer(SQL_OV_ODBC3), 0);
        return made;
    }();
    return shared;
}

/// The value of "Driver" among a driver's attributes, "key=value" each ended by a NUL.
QString libraryOf(const QString& attributes)
{
    for (const QString& attribute : attributes.split(QChar(u'\0'), Qt::SkipEmptyParts))
        if (attribute.startsWith("Driver="_L1, Qt::CaseInsensitive))
            return attribute.sliced(7);
    return {};
}

std::vector<RegisteredDriver> registeredDrivers(SQLHENV environment)
{
    constexpr SQLSMALLINT room = 4096;
    std::vector<RegisteredDriver> drivers;
    QString name(room, u'\0');
    QString attributes(room, u'\0');
    SQLSMALLINT nameLength = 0;
    SQLSMALLINT attributesLength = 0;
    SQLUSMALLINT direction = SQL_FETCH_FIRST;
    while (SQL_SUCCEEDED(SQLDriversW(environment, direction, odbc::wide(name), room, &nameLength,
                                     odbc::wide(attributes), room, &attributesLength))) {
        drivers.push_back(
            {name.first(nameLength), libraryOf(attributes.first(std::min(attributesLength, room)))});
        direction = SQL_FETCH_NEXT;
    }
    return drivers;
}

} // namespace

Session::Session(const ConnectionRequest& request, std::chrono::seconds timeout)
    : m_environment(environment()),
      m_driver(chooseDriver(registeredDrivers(m_environment->get()),
                            [](const QString& path) { return QFile::exists(path); })),
      m_dbc(m_environment->get())
{
    const ServerAddress address = parseServerAddress(request.dataSource);
    if (!m_thread.run([&] { return awaitLookup(address.host, timeout); }))
        throw connectTimeOut(address.description());
    connect(odbcConnectionString(m_driver, address, request), address.description(), timeout);
    m_library = DriverLibrary(m_dbc.get());
}

void Session::connect(const QString& text, const QString& server, std::chrono::seconds timeout)
{
    QString connectionText = text;
    SQLSetConnectAttrW(m_dbc.get(), SQL_ATTR_LOGIN_TIMEOUT,
                       odbc::asPointer(static_cast<SQLULEN>(timeout.count())), SQL_IS_UINTEGER);
    const auto shutDown = [this] { m_sockets.shutDown(); };
    const auto limit = timeout.count() > 0 ? timeout + driverLead : timeout;
    const auto [outcome, encodes] = m_thread.run([&] {
        const unsigned long encodings = encodingsDone();
        const Watchdog::Limit connecting(m_watchdog, limit, shutDown, shutDown);
        const Watchdog::Call call(m_watchdog);
        const SQLRETURN connected = SQLDriverConnectW(m_dbc.get(), nullptr, odbc::wide(connectionText),
                                                      static_cast<SQLSMALLINT>(connectionText.size()),
                                                      nullptr, 0, nullptr, SQL_DRIVER_NOPROMPT);
        return std::pair(connected, encodingsDone() != encodings);
    });
    m_sockets.stop();
    m_restoresStandIns = m_driver.family == Driver::Family::FreeTds && encodes;
    if (SQL_SUCCEEDED(outcome))
        return;
    if (m_watchdog.expired())
        throw connectTimeOut(server);
    throw connectError(readDiagnostics(SQL_HANDLE_DBC, m_dbc.get()), server);
}

Session::~Session()
{
    m_thread.run([this] {
        const Watchdog::Limit closing = closingLimit();
        const Watchdog::Call call(m_watchdog);
        SQLDisconnect(m_dbc.get());
        m_dbc.reset();
    });
}

bool Session::isAlive() const
{
    SQLUINTEGER dead = SQL_CD_TRUE;
    const SQLRETURN outcome =
        SQLGetConnectAttrW(m_dbc.get(), SQL_ATTR_CONNECTION_DEAD, &dead, SQL_IS_UINTEGER, nullptr);
    return SQL_SUCCEEDED(outcome) && dead == SQL_CD_FALSE;
}

odbc::Statement Session::newStatement() const
{
    odbc::Statement statement(m_dbc.get());
    if (!statement)
        throw statementError(readDiagnostics(SQL_HANDLE_DBC, m_dbc.get()));
    SQLSetStmtAttr(statement.get(), SQL_ATTR_NOSCAN, odbc::asPointer(SQL_NOSCAN_ON), 0);
    return statement;
}

Watchdog::Limit Session::limit(const odbc::Statement& statement, std::chrono::milliseconds duration)
{
    return {m_watchdog, duration, [handle = statement.get()] { SQLCancel(handle); },
            [this] { m_sockets.shutDown(); }};
}

Watchdog::Limit Session::closingLimit()
{
    const auto shutDown = [this] { m_sockets.shutDown(); };
    return {m_watchdog, closingTime, shutDown, shutDown};
}

} // namespace ado
