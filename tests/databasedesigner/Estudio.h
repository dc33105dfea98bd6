// The properties of a database as a person works on them: real clicks, real keys, and what arrives at the
// server.
#pragma once

#include "Consola.h"
#include "Mano.h"
#include "databasedesigner/Paginas.h"
#include "databasedesigner/PermisosBD.h"
#include "databasedesigner/frmPropiedadesBD.h"

#include <QTemporaryDir>

namespace pruebas {

class Estudio : public Consola
{
protected:
    void TearDown() override;

    /// The console, and the browser over a fresh database Obra that these statements have filled.
    void Prepara(int idioma, const QStringList& sentencias = {});
    /// Makes that database, with files of 2 and 1 MB that grow by a tenth.
    [[nodiscard]] QString CreaObra() const;
    /// Files of a database with size, growth, limit of data files in pages, and group, joined by "|".
    static QString Ficheros(const QString& base);

    /// Opens the form by the right button in the tree and the menu's entry.
    formularios::frmPropiedadesBD* Propiedades(const QString& base);
    formularios::frmPropiedadesBD* Nueva();
    /// Presses Accept. Whether the form has gone.
    static bool Acepta(formularios::frmPropiedadesBD* forma);
    static void Nombra(formularios::frmPropiedadesBD* forma, const QString& nombre);

    /// What arrived at the server since the last call: all, or what is no look-up.
    static QString Llegado();
    static QString Cambios();
    /// Texts of the boxes shown since the last call.
    QStringList Textos();

    /// A folder of the disk as the server writes it, with its last backslash.
    [[nodiscard]] QString Carpeta() const;

private:
    QTemporaryDir m_carpeta;
};

} // namespace pruebas
