#include "platform/ado/Driver.h"

#include "platform/ado/ErrorNumbers.h"
#include "platform/basic/Language.h"
#include "platform/basic/RuntimeError.h"
#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace ado {

namespace {

constexpr auto freeTdsLibrary = "libtdsodbc.so"_L1;

/// Where distributions put FreeTDS's driver.
constexpr std::array freeTdsFolders{"/usr/lib/x86_64-linux-gnu/odbc/"_L1,
                                    "/usr/lib/aarch64-linux-gnu/odbc/"_L1,
                                    "/usr/lib/odbc/"_L1,
                                    "/usr/lib64/"_L1,
                                    "/usr/lib/"_L1,
                                    "/usr/local/lib/"_L1};

/// The NN of "ODBC Driver NN for SQL Server"; 0 for any other driver.
int microsoftVersion(const QString& name)
{
    static const QRegularExpression pattern(u"^ODBC Driver (\\d{1,4}) for SQL Server$"_s);
    return pattern.match(name).captured(1).toInt();
}

bool isFreeTds(const RegisteredDriver& driver)
{
    return driver.name.compare("FreeTDS"_L1, Qt::CaseInsensitive) == 0 ||
           driver.library.endsWith(freeTdsLibrary);
}

/// A value between braces. FreeTDS ends a value at the first "};" and takes everything before as it
/// stands; the standard ends it at a single "}" and wants those inside doubled.
QString braced(const QString& value, Driver::Family family)
{
    if (family == Driver::Family::Microsoft)
        return u'{' + QString(value).replace(u'}', "}}"_L1) + u'}';
    if (value.contains("};"_L1))
        basic::raise(
            number::BadConnectionString,
            basic::uiText(
                "El controlador no puede transmitir un servidor, base de datos, usuario o contraseña que "
                "contenga \"};\".",
                "The driver cannot pass on a server, database, user or password that contains \"};\"."));
    return u'{' + value + u'}';
}

} // namespace

Driver chooseDriver(const std::vector<RegisteredDriver>& registered,
                    const std::function<bool(const QString&)>& exists)
{
    Driver newest;
    int newestVersion = 0;
    Driver freeTds;
    for (const RegisteredDriver& driver : registered) {
        if (driver.library.startsWith(u'/') && !exists(driver.library))
            continue;
        const int version = microsoftVersion(driver.name);
        if (version > newestVersion) {
            newest = {driver.name, Driver::Family::Microsoft};
            newestVersion = version;
        }
        if (freeTds.name.isEmpty() && isFreeTds(driver))
            freeTds = {driver.name, Driver::Family::FreeTds};
    }
    if (newestVersion > 0)
        return newest;
    if (!freeTds.name.isEmpty())
        return freeTds;
    for (const QLatin1StringView folder : freeTdsFolders)
        if (const QString path = folder + freeTdsLibrary; exists(path))
            return {path, Driver::Family::FreeTds};
    basic::raise(
        number::DriverFailure,
        basic::uiText("No hay ningún controlador ODBC de SQL Server instalado. Instale el paquete tdsodbc "
                      "(apt install tdsodbc), o el controlador ODBC de Microsoft, y conecte de nuevo.",
                      "No ODBC driver for SQL Server is installed. Install the package tdsodbc "
                      "(apt install tdsodbc), or Microsoft's ODBC driver, and connect again."));
}

QString odbcConnectionString(const Driver& driver, const ServerAddress& address,
                             const ConnectionRequest& request)
{
    QString result;
    const auto add = [&](QLatin1StringView key, const QString& value) {
        result += key + u'=' + braced(value, driver.family) + u';';
    };
    const bool isFreeTds = driver.family == Driver::Family::FreeTds;
    add("DRIVER"_L1, driver.name);
    QString server = address.host;
    if (!address.instance.isEmpty())
        server += u'\\' + address.instance;
    else if (!isFreeTds)
        server += u',' + QString::number(address.port == 0 ? ServerAddress::defaultPort : address.port);
    add("SERVER"_L1, isFreeTds ? server : "tcp:"_L1 + server);
    if (isFreeTds && address.instance.isEmpty())
        result += "PORT="_L1 +
                  QString::number(address.port == 0 ? ServerAddress::defaultPort : address.port) + u';';
    if (!request.catalog.isEmpty())
        add("Database"_L1, request.catalog);
    add("UID"_L1, request.user);
    add("PWD"_L1, request.password);
    add("APP"_L1, u"Quermo"_s);
    if (isFreeTds)
        // Packets of the largest size that may be encrypted: a long result takes a quarter of the calls.
        return result + "TDS_Version=7.4;ClientCharset=UTF-8;PacketSize=16384;Encryption="_L1 +
               (request.encrypt ? "require;"_L1 : "request;"_L1);
    return result + "TrustServerCertificate=yes;Encrypt="_L1 + (request.encrypt ? "yes;"_L1 : "no;"_L1);
}

} // namespace ado
