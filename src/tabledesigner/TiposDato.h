// The catalogue of the 23 data types: one table from which the grid's list, the loading, the rules of the
// cells and the statements all read.
#pragma once

#include <QString>
#include <QStringView>

#include <span>

/// What the user may edit of a type's measures.
enum class MedidasEditables
{
    Ninguna,
    Longitud,
    PrecisionYEscala
};

struct TipoDato
{
    QStringView nombre;    ///< as the list shows it and as systypes names it
    int xtype;             ///< number in syscolumns
    int tipoRegistro;      ///< number in the recordset layer; 0 for none
    bool numerico;         ///< length, precision and scale are taken as they stand on the server
    bool enCaracteres;     ///< the length shown counts characters, not bytes
    bool conIntercalacion; ///< a change of the column names the collation
    MedidasEditables editables;
    int longitudMaxima; ///< bound of the length cell
    int longitud;       ///< of a new row, as are precision and scale
    int precision;
    int escala;
    /// The type in a new column's definition and in a change of a column, blank for blank; L, P and S
    /// stand for length, precision and scale. A type without the second is never changed.
    QStringView textoCrea;
    QStringView textoModifica;
};

/// Numbers of types that the rules name.
inline constexpr int TipoChar = 3;
inline constexpr int TipoDecimal = 5;
inline constexpr int TipoNumeric = 12;

/// Bound of the length cell of most types.
inline constexpr int LongitudMaxima = 8000;

/// All types in the order of their numbers, which begin with 1.
std::span<const TipoDato> TiposDato();

/// The type with a number from 1 to 23 as text; null for any other text.
const TipoDato* DameTipo(const QString& numero);

/// Number, as text, of the type that the server or the recordset layer numbers `tipo`, and whether its
/// measures are taken as they stand. "0" and false for a type that the catalogue does not know.
QString DameTipoDato(const QString& tipo, bool& numerico);

/// The type's text with its measures put in, each with a point for every comma.
QString TextoTipo(QStringView texto, QString longitud, QString precision, QString escala);
