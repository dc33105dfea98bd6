// What the forms of logins and users share: the list of roles with its ticks, and the rules of a new
// password.
#pragma once

#include <QString>

namespace controls {
class CheckList;
class TextBox;
} // namespace controls

/// The boxes of a name and its password.
struct CajasClave
{
    controls::TextBox* Usuario;
    controls::TextBox* Clave;
    controls::TextBox* Confirmacion;
};

/// The roles of master, unticked. On failure the list stays.
void CapturaFunciones_SQL(controls::CheckList* lista);

/// Ticks the first role, and those that the server tells of a login in a database.
void PermisosFunciones_SQL(controls::CheckList* lista, const QString& login, const QString& bd);

/// Whether a new name has a password that was typed twice; the first fault is shown, and its box has the
/// focus.
bool CompruebaNueva(const CajasClave& cajas);

/// The same of a change of password, which may also be left alone.
bool CompruebaCambio(const CajasClave& cajas);

/// Whether both boxes hold a password.
bool HayClaveNueva(const CajasClave& cajas);

/// Makes a login with the text of the boxes; with a default database when one is given.
void AñadeLogin_SQL(const CajasClave& cajas, const QString& bd = {});

/// Whether master has a login of that name.
bool ExisteLogin_SQL(const QString& login);

/// Gives a login the password of the box. `anterior` is the old one, empty for one who need not tell it.
void CambiaClave_SQL(const CajasClave& cajas, const QString& anterior);
