#include "platform/ado/ServerAddress.h"

#include "platform/ado/ErrorNumbers.h"
#include "platform/basic/Language.h"
#include "platform/basic/RuntimeError.h"

using namespace Qt::StringLiterals;

namespace ado {

namespace {

constexpr int lastPort = 65535;

int parsePort(const QString& text, const QString& dataSource)
{
    bool isNumber = false;
    const int port = text.trimmed().toInt(&isNumber);
    if (!isNumber || port < 1 || port > lastPort)
        basic::raise(
            number::NoServer,
            basic::uiText(
                "No se puede alcanzar el servidor \"%1\": lo que sigue a la coma no es un puerto de 1 a %2.",
                "The server \"%1\" cannot be reached: what follows the comma is not a port from 1 to %2.")
                .arg(dataSource, QString::number(lastPort)));
    return port;
}

QString hostName(const QString& written)
{
    QString host = written.trimmed();
    if (host.isEmpty() || host == u"." || host.compare("(local)"_L1, Qt::CaseInsensitive) == 0)
        return u"localhost"_s;
    if (host.startsWith(u'[') && host.endsWith(u']'))
        return host.sliced(1).chopped(1);
    return host;
}

} // namespace

QString ServerAddress::description() const
{
    if (!instance.isEmpty())
        return host + u'\\' + instance;
    return basic::uiText("%1, puerto %2", "%1, port %2").arg(host).arg(port == 0 ? defaultPort : port);
}

ServerAddress parseServerAddress(const QString& dataSource)
{
    QString rest = dataSource.trimmed();
    if (rest.startsWith("tcp:"_L1, Qt::CaseInsensitive))
        rest = rest.sliced(4);
    ServerAddress address;
    const qsizetype comma = rest.lastIndexOf(u',');
    if (comma >= 0) {
        address.port = parsePort(rest.sliced(comma + 1), dataSource);
        rest.truncate(comma);
    }
    const qsizetype slash = rest.indexOf(u'\\');
    if (slash >= 0) {
        if (address.port == 0)
            address.instance = rest.sliced(slash + 1).trimmed();
        rest.truncate(slash);
    }
    if (address.instance.compare("MSSQLSERVER"_L1, Qt::CaseInsensitive) == 0)
        address.instance.clear(); // the default instance's own name
    address.host = hostName(rest);
    return address;
}

} // namespace ado
