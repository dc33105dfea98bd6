// The tabs of the form, and the databases of which it writes nothing.
#pragma once

#include <QString>

namespace Pagina {
inline constexpr int General = 0;
inline constexpr int Opciones = 1;
inline constexpr int Grupos = 2;
inline constexpr int Archivos = 3;
inline constexpr int Transacciones = 4;
inline constexpr int Permisos = 5;
} // namespace Pagina

/// "master" and "model" keep their name, files, groups and options.
[[nodiscard]] inline bool EsBDFija(const QString& nombre)
{
    const QString mayusculas = nombre.trimmed().toUpper();
    return mayusculas == QStringLiteral("MASTER") || mayusculas == QStringLiteral("MODEL");
}
