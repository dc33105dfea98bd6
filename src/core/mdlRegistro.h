// The settings of the current user, by key path and value name, as a registry holds them, in a file of the
// user's configuration folder. Nothing is kept open between calls.
#pragma once

#include "platform/basic/Variant.h"

#include <QString>

class QSettings;

/// Key, below the current user's settings, and value that hold the language.
inline const QString ClaveRegistro = QStringLiteral("Software\\quermo");
inline const QString ValorIdioma = QStringLiteral("Idioma");

/// The only hive there is.
enum Colmena
{
    HKEY_CURRENT_USER
};

/// Types of value: text, and a 32-bit number.
inline constexpr int ValorTexto = 1;
inline constexpr int ValorNumero = 4;

/// Makes the key when missing; true when it is there and can be written.
bool CrearClave(Colmena colmena, const QString& clave);

/// Writes a value of one of the two types; true when it has been stored.
bool EscribirValor(Colmena colmena, const QString& clave, const QString& nombre, const basic::Variant& valor,
                   int tipo);

/// As EscribirValor, into an open key. 0 when stored; another type writes nothing and gives -1.
int EscribirValorEx(QSettings& claveAbierta, const QString& nombre, int tipo, const basic::Variant& valor);

/// The stored text or number; empty when there is none.
basic::Variant LeerValor(Colmena colmena, const QString& clave, const QString& nombre);

/// As LeerValor, from an open key. 0 when read or missing, -1 for a value of another type.
int LeerValorEx(QSettings& claveAbierta, const QString& nombre, basic::Variant& valor);
