// The pictures of trees and lists, by key.
#pragma once

#include <QIcon>
#include <QObject>
#include <QStringList>

namespace controls {

/// Ten drawn icons. Keys, in order: BaseDatos, CarpetaAbierta, CarpetaCerrada, Tabla, Campo, Vista,
/// Usuarios, Procedimientos, Servidor, Usuario.
class ImageList : public QObject
{
    Q_OBJECT

public:
    explicit ImageList(QObject* parent = nullptr);

    [[nodiscard]] static const QStringList& keys();
    /// Error 35601 for a key that the list has not.
    [[nodiscard]] QIcon icon(const QString& key) const;
    [[nodiscard]] static QIcon applicationIcon();
    /// The three states of a right in a grid, told apart by their shape too.
    [[nodiscard]] static QIcon grantedIcon();
    [[nodiscard]] static QIcon deniedIcon();
    [[nodiscard]] static QIcon unsetIcon();

private:
    QList<QIcon> m_icons;
};

} // namespace controls
