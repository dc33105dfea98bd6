// Where the language comes from at start.
#pragma once

#include <QString>

/// Key, below the current user's settings, and value that hold the language.
inline const QString ClaveRegistro = QStringLiteral("Software\\quermo");
inline const QString ValorIdioma = QStringLiteral("Idioma");

/// Reads the stored language into Idioma, asking for it when none is stored yet.
void LeeIdiomaRegistro();
