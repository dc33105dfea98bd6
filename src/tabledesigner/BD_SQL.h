// The buffers and flags that the designers share, the look-ups in the catalog of the table's database,
// and the tests whether something exists there. All look-ups stand behind PrefijoBD.
#pragma once

#include "platform/ado/Connection.h"
#include "platform/ado/Recordset.h"

#include <QString>
#include <QStringList>

// Used by one designer at a time, from TomaGlobales to the end of what it does.
extern int IndiceTabla;           ///< slot of the table
extern int ContadorIndices;       ///< entries in Indices
extern int ContadorRelaciones;    ///< entries in Relaciones
extern QString Intercalacion;     ///< collation of the database
extern QString SentenciaCampos;   ///< CREATE TABLE or ALTER TABLE ADD, as it grows
extern QString SentenciaIndice;   ///< the index's statement as it grows, or queued statements
extern QString ClavesIndice;      ///< key columns of that index, joined by commas
extern QString SentenciaRelacion; ///< the relation's statement, or queued statements
extern bool TablaExiste;          ///< the server has the table
extern bool ObjetoExiste;         ///< the server has the index or relation
extern bool AddEscrito;           ///< SentenciaCampos has its ADD
extern bool ComaPermitida;        ///< the next column definition follows another
extern int CamposNuevos;          ///< column definitions so far
extern QString TablaReferida;     ///< table that the foreign key at hand references

/// Runs a statement by itself, with no records wanted.
void EjecutaSQL(ado::Connection& conexion, const QString& texto);

/// Queues a statement behind others, which it follows after " * ".
void PonEnCola(QString& cola, const QString& sentencia);
/// Runs the queued statements, cut at each "*", and empties the queue once all have run.
void EjecutaCola(ado::Connection& conexion, QString& cola);
/// Runs them all, also behind one that fails, since each gives back what was dropped; then raises the
/// first failure.
void EjecutaColaEntera(ado::Connection& conexion, const QString& cola);

/// Id of a user table, "" when there is none.
QString DameIdTabla(ado::Connection& conexion, const QString& tabla);
/// Name of the object with this id, "" when there is none.
QString DameNombreObjeto(ado::Connection& conexion, const QString& id);
/// Name of a table's column by its number, "" when there is none.
QString DameNombreCampo(ado::Connection& conexion, const QString& idTabla, const QString& colid);
/// A field of syscolumns for a table's column.
QString DameDatoCampo(ado::Connection& conexion, const QString& idTabla, const QString& campo,
                      const QString& dato);
/// Text of a default by its id, without parentheses.
QString DameTextoPredeterminado(ado::Connection& conexion, const QString& id);
/// Name of the default constraint with this id.
QString DameNombrePredeterminado(ado::Connection& conexion, const QString& id);
/// Opens the row of sysobjects of a user table, or with `deSistema` of any object of that name.
bool AbreTabla(ado::Connection& conexion, ado::Recordset& tablas, const QString& tabla,
               bool deSistema = false);
/// Opens the rows of syscolumns of a table, in the order of its columns.
bool AbreCampos(ado::Connection& conexion, ado::Recordset& columnas, const QString& idTabla);

bool ExisteTabla(ado::Connection& conexion, const QString& tabla);
bool ExisteCampo(ado::Connection& conexion, const QString& tabla, const QString& campo);
bool ExisteElIndice(ado::Connection& conexion, const QString& tabla, const QString& indice);
/// Whether a foreign key of `tabla` references `tablaExterna` with the first of `campos`, a list of names
/// each ended by a comma; false for an empty list.
bool ExisteLaRelacion(ado::Connection& conexion, const QString& tabla, const QString& tablaExterna,
                      const QString& campos);
/// Whether the server has a default constraint of this name.
bool ExistePredeterminado(ado::Connection& conexion, const QString& nombre);

/// Pairs of columns that a foreign key can have: fkey1 to fkey16 of sysreferences.
inline constexpr int MaximoColumnasClave = 16;

/// The columns of one foreign key, on both sides, in key order.
struct ColumnasClave
{
    QStringList propias;
    QStringList referidas;
};

/// Reads the pairs of the current row of sysreferences.
ColumnasClave DameColumnasClave(ado::Connection& conexion, const ado::Recordset& referencias);
