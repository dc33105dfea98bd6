#include "platform/controls/ImageList.h"

#include "platform/basic/RuntimeError.h"

static void loadResources()
{
    Q_INIT_RESOURCE(icons);
}

namespace controls {

ImageList::ImageList(QObject* parent) : QObject(parent)
{
    loadResources();
    for (const QString& key : keys())
        m_icons += QIcon(QStringLiteral(":/icons/%1.svg").arg(key));
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
    loadResources();
    return QIcon(QStringLiteral(":/icons/Quermo.svg"));
}

} // namespace controls
