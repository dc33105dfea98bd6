// The statements of backups and restores, and what both forms do alike.
#pragma once

#include "platform/basic/BoundedArray.h"

#include <QString>

namespace controls {
class ComboBox;
} // namespace controls

enum class TipoCopia
{
    Completa,
    Diferencial,
    Registro
};

/// The backup of a database to a device.
QString SentenciaCopia(TipoCopia tipo, const QString& base, const QString& copia);

/// Columns of the files that a backup holds.
namespace ColFichero {
inline constexpr int Nombre = 0;
inline constexpr int NombreFisico = 1;
inline constexpr int Ultima = 2;
} // namespace ColFichero

/// The restore of a database from a file, with a move for each of the first `cuenta` files.
QString SentenciaRestauracion(const QString& base, const QString& archivo,
                              const basic::BoundedArray2<QString>& ficheros, int cuenta);

/// Fills the list with the server's databases; the position of `actual`, -1 when it is not among them.
int CargaBases(controls::ComboBox* lista, const QString& actual);

/// Whether a database is chosen; otherwise it is asked for.
bool HayBaseElegida(const controls::ComboBox* lista);
