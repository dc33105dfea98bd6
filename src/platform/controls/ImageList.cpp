#include "platform/controls/ImageList.h"

#include "platform/basic/RuntimeError.h"

static void loadResources()
{
    Q_INIT_RESOURCE(icons);
}

namespace controls {

namespace {

QIcon drawing(const QString& name)
{
    loadResources();
    return QIcon(QStringLiteral(":/icons/%1.svg").arg(name));
}

} // namespace

ImageList::ImageList(QObject* parent) : QObject(parent)
{
    for (const QString& key : keys())
        m_icons += drawing(key);
}

const QStringList& ImageList::keys()
{
    static const QStringList names{QStringLiteral("BaseDatos"),      QStringLiteral("CarpetaAbierta"),
                                   QStringLiteral("CarpetaCerrada"), QStringLiteral("Tabla"),
                                   QStringLiteral("Campo"),          QStringLiteral("Vista"),
                                   QStringLiteral("Usuarios"),       QStringLiteral("Procedimientos"),
                                   QStringLiteral("Servidor"),       QStringLiteral("Usuario")};
    return names;
}

QIcon ImageList::icon(const QString& key) const
{
    const qsizetype position = keys().indexOf(key);
    if (position < 0)
        basic::raise(basic::error::ElementNotFound);
    return m_icons[position];
}

QIcon ImageList::applicationIcon()
{
    return drawing(QStringLiteral("Quermo"));
}

QIcon ImageList::grantedIcon()
{
    return drawing(QStringLiteral("PermisoConcedido"));
}

QIcon ImageList::deniedIcon()
{
    return drawing(QStringLiteral("PermisoDenegado"));
}

QIcon ImageList::unsetIcon()
{
    return drawing(QStringLiteral("PermisoNulo"));
}

} // namespace controls
