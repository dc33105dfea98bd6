// The table designer as a person uses it: real clicks where the pointer is, real keys to what has the
// keyboard, and what arrives at the server.
#pragma once

#include "Consola.h"
#include "Mano.h"
#include "platform/controls/DataGrid.h"
#include "tabledesigner/frmTabla.h"

#include <QStringList>

namespace pruebas {

using namespace mano;

/// A column of a design as a row of the grid: name, type number, length, precision, scale, null, default.
using Fila = QStringList;

class Mesa : public Consola
{
protected:
    void TearDown() override;

    /// The console on a fresh database Taller that these statements have filled, the browser on its tables.
    void Prepara(int idioma, const QStringList& sentencias = {});
    static int TransaccionesAbiertas();

    /// Opens the designer by the right button on a table, or on the database, and the entry of the menu.
    formularios::frmTabla* Diseña(const QString& tabla);
    formularios::frmTabla* Nueva();
    /// Closes the active designer by key, and answers its questions. Whether it has gone.
    bool Cierra(controls::Answer contestacion);

    /// Goes to a cell by the arrow keys, wherever the page stands.
    static void VeA(controls::DataGrid* rejilla, int fila, int columna);
    /// A cell's text typed and left by Enter, also of a cell that is out of sight.
    static void PonCelda(controls::DataGrid* rejilla, int fila, int columna, const QString& texto);
    /// Chooses the referenced table by the keys of its list.
    static void BuscaExterna(formularios::frmTabla* forma, const QString& tabla);
    /// Goes to one of the three pages by a click on its tab.
    static void Pagina(formularios::frmTabla* forma, int pagina);

    /// An array's row from the name on, as the grid would show it after loading.
    static Fila FilaDe(const formularios::frmTabla* forma, int fila);

    /// Whether a type's length can't be typed.
    static bool BloqueoDeLongitud(const QString& tipo);

    /// What arrived at the server since the last call: all with ids as "#", or what is no look-up.
    static QString Llegado();
    static QString Cambios();
};

} // namespace pruebas
