// Data helpers over the session connection, the common error report, and the rule of the Enter key.
#pragma once

#include "platform/ado/Connection.h"
#include "platform/ado/Recordset.h"

#include <QString>

#include <initializer_list>
#include <optional>

class QWidget;

namespace controls {
class ComboBox;
class TextBox;
} // namespace controls

/// How a condition compares its value.
enum class TipoCondicion
{
    Texto,
    Numerico
};

/// One tested column of BuscaRegistro and ExisteRegistro.
struct Condicion
{
    QString Campo;
    QString Valor;
    TipoCondicion Tipo = TipoCondicion::Texto;
};

/// Opens a new connection on the database with the login in ServidorSQL, UsuarioSQL and ClaveSQL.
/// An earlier connection is let go, not closed. False after the error was shown.
bool Conecta_SQL(ado::Connection& Conexion, const QString& BaseDatos);

/// Opens a client-side, keyset recordset on the text, with the lock type when one is given. False after the
/// error was shown.
bool CreaRecordset(ado::Connection& Conexion, ado::Recordset& Registros, const QString& Texto,
                   std::optional<int> Bloqueo = {});

/// Runs one statement on the session, without records.
void Ejecuta_SQL(const QString& Texto);

/// The first column of the first row of `Tabla` (behind PrefijoBD) that meets the conditions, "" when
/// none does. The first text condition compares with "=", the others with "Like"; up to five.
/// A numeric `Primera.Valor` is trimmed in place; when it is empty no query runs.
QString BuscaRegistro(ado::Connection& Conexion, const QString& Tabla, const QString& CampoResultado,
                      Condicion& Primera, std::initializer_list<Condicion> Otras = {});

/// Whether `Tabla` (behind PrefijoBD) has a row that meets the conditions, all by equality; up to six.
/// False without a query for an empty first value; true when the query fails. With `MostrarMensaje`
/// an existing row is announced.
bool ExisteRegistro(ado::Connection& Conexion, bool MostrarMensaje, const QString& Tabla,
                    const Condicion& Primera, std::initializer_list<Condicion> Otras = {});

/// Selects the entry that, trimmed, equals `Cadena`, which fires the combo's click; else selects none.
bool BuscarComboCadena(const QString& Cadena, controls::ComboBox* Combo);

/// Collation of a database, "" when it has none.
QString DameIntercalacion(const QString& BaseDatos);

/// Enter moves the focus on as Tab does and is swallowed: returns 0 for it, any other key unchanged.
int SalidaCampo(int KeyAscii);

/// Makes Enter in a text box leave it as Tab would.
void EnlazaSalidaCampo(controls::TextBox* Caja);
/// The same for a control that takes no text.
void EnlazaSalidaCampo(QWidget* Control);

/// Shows an error with its number and description. `Texto` and `Procedimiento` show only in the last
/// resort, when that box itself fails.
void MuestraError(const QString& Texto, const QString& Procedimiento, int Numero, const QString& Descripcion);

/// The one error handler: called in a catch-all, reports the exception in flight under the name of
/// the procedure that it ended.
void InformaError(const QString& Procedimiento, const QString& Texto = {});

/// As InformaError, for procedures that work under the hourglass: the pointer goes back.
void InformaErrorYPuntero(const QString& Procedimiento, const QString& Texto = {});

/// Text of a field: the value with "" joined to it, so that a null reads as nothing.
QString TextoCampo(const ado::Recordset& Registros, const QString& Campo);
QString TextoCampo(const ado::Recordset& Registros, int Numero);
