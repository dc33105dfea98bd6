// The table under design, without its window. Each designer owns one DatosTabla; all procedures of this
// library work on it, so that they run and are tested without widgets.
//
// What only the form knows it writes into the struct before it calls: `ClaveTabla`, `NombreTablaInicial`
// and `EsTablaSistema` when it opens; `NombreTabla`, `GrupoDatos` and `FilaActual` before an edit on the
// server and before the save. Flags that the form keeps in cells are "-1" and "0", as the grid shows them.
#pragma once

#include "platform/basic/BoundedArray.h"

#include <QString>
#include <QStringList>

#include <array>

inline constexpr int UltimaRanura = 200;   ///< of the designers that can be open
inline constexpr int UltimaFila = 200;     ///< of the arrays behind the grids
inline constexpr int UltimaPosicion = 100; ///< of the indexes and of the relations

/// Columns of CamposTabla; the grid shows the first eight.
namespace ColCampo {
inline constexpr int Estado = 0;         ///< "M" the server has it, "" typed, "I" typed and once sent
inline constexpr int Nombre = 1;         ///< as typed
inline constexpr int Tipo = 2;           ///< number of the type catalogue
inline constexpr int Longitud = 3;       ///< in characters for nchar and nvarchar
inline constexpr int Precision = 4;      //
inline constexpr int Escala = 5;         //
inline constexpr int Nulo = 6;           ///< "-1" allows NULL
inline constexpr int Predeterminado = 7; ///< without any parentheses
inline constexpr int NombreDF = 8;       ///< of the default constraint as loaded
inline constexpr int NombreServidor = 9; ///< "" for a row that the server has not
inline constexpr int Ultima = 10;
inline constexpr int UltimaVisible = 7;
inline constexpr int UltimaQueSeMueve = 9; ///< the last that goes along with its row
} // namespace ColCampo

/// Columns of Indices.
namespace ColIndice {
inline constexpr int Nombre = 0;
inline constexpr int Clase = 1;    ///< "P" primary key, "I" index
inline constexpr int Agrupado = 2; ///< "1" or "0"
inline constexpr int Unico = 3;    ///< "1" or "0"
inline constexpr int Grupo = 4;    ///< filegroup
inline constexpr int Relleno = 5;  ///< fill factor
inline constexpr int Ultima = 5;
} // namespace ColIndice

/// Columns of each CamposIndice.
namespace ColCampoIndice {
inline constexpr int Nombre = 1;
inline constexpr int Ultima = 2;
} // namespace ColCampoIndice

/// Columns of each CamposRelacion: one row a pair of columns.
namespace ColCampoRelacion {
inline constexpr int Propia = 1;
inline constexpr int Externa = 2;
inline constexpr int TablaExterna = 3;
inline constexpr int Ultima = 4;
} // namespace ColCampoRelacion

using Matriz = basic::BoundedArray2<QString>;

/// The arrays behind a grid, one for each index or relation. They stay where they are, so that the grid
/// can hold on to one; a position outside 0 to 100 raises error 9. An array that was not made has no rows.
class Matrices
{
public:
    explicit Matrices(int ultimaColumna) : m_ultimaColumna(ultimaColumna) {}

    Matriz& operator()(int posicion) { return m_matrices[Indice(posicion)]; }
    const Matriz& operator()(int posicion) const { return m_matrices[Indice(posicion)]; }

    /// Makes the array anew, with empty cells.
    Matriz& Crea(int posicion)
    {
        (*this)(posicion).Redim(UltimaFila, m_ultimaColumna);
        return (*this)(posicion);
    }
    /// Makes the array when there is none.
    Matriz& CreaSiFalta(int posicion) { return Existe(posicion) ? (*this)(posicion) : Crea(posicion); }
    void Libera(int posicion) { (*this)(posicion).Redim(-1, -1); }
    [[nodiscard]] bool Existe(int posicion) const { return (*this)(posicion).lastRow() >= 0; }

private:
    static std::size_t Indice(int posicion)
    {
        if (posicion < 0 || posicion > UltimaPosicion)
            basic::raise(basic::error::Subscript);
        return static_cast<std::size_t>(posicion);
    }

    int m_ultimaColumna;
    std::array<Matriz, UltimaPosicion + 1> m_matrices;
};

/// The current row as the column grid shows it, an edit under way included.
struct FilaRejilla
{
    int Fila = 0; ///< its row in CamposTabla: FirstRow plus Row
    /// Columns 0 to 7: their texts, but of the type its number.
    std::array<QString, ColCampo::UltimaVisible + 1> Celdas;
};

struct DatosTabla
{
    // Set by the opener.
    QString ClaveTabla;         ///< key of the list's item: a letter and the slot; "" for a new table
    QString NombreTablaInicial; ///< the table's name
    bool EsTablaSistema = false;

    // Kept up to date by the form.
    QString NombreTabla;    ///< text of txtNombreTabla
    QString GrupoDatos;     ///< text of the entry selected in cboGrupoArchivoDatos; "" with none
    FilaRejilla FilaActual; ///< current row of TDBGridTabla

    QString BaseDatos;
    QString IntercalacionBase; ///< collation of BaseDatos
    QString IdTabla;           ///< sysobjects.id of the loaded table
    QString NombreTablaCargado;
    bool TablaModificada = false;
    int IndiceBorrado = 0; ///< position that RecalculaGridIndices and RecalculaGridRelaciones take out

    Matriz NombresTabla{UltimaRanura, 0}; ///< the table's name under its slot
    Matriz CamposTabla;
    Matriz Indices{UltimaPosicion, ColIndice::Ultima};
    Matrices CamposIndice{ColCampoIndice::Ultima};
    Matriz Relaciones{UltimaPosicion, 0}; ///< names
    Matrices CamposRelacion{ColCampoRelacion::Ultima};

    /// Names on the server of the columns that were loaded; no other is ever dropped.
    QStringList CamposCargados;
    /// Whether the stores hold all that the server has; what they do not hold whole is left alone there.
    bool IndicesCompletos = true;
    bool RelacionesCompletas = true;
};

/// Readies a designer that has just been made for the database, with empty stores.
void IniciaDatosTabla(DatosTabla& datos, const QString& baseDatos);

/// Slot of a designer, from the key of the list's item; 0 for a new table. Error 9 beyond the last.
int RanuraTabla(const QString& clave);

/// Makes the globals that all designers share this designer's own: PrefijoBD, IndiceTabla,
/// ContadorIndices, ContadorRelaciones, Intercalacion, and empty statement buffers. Comes first wherever
/// they are used, since another designer, or a click in the browser, may have changed them.
void TomaGlobales(const DatosTabla& datos);
