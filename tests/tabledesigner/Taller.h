// A table designer without its window: the model over a practice server, every statement read where it
// arrives, every message box answered from a script.
#pragma once

#include "platform/controls/MessageBox.h"
#include "support/FaultProxy.h"
#include "tabledesigner/DatosTabla.h"

#include <gtest/gtest.h>

#include <QStringList>

#include <iosfwd>
#include <memory>

/// How a failed expectation shows a text.
void PrintTo(const QString& texto, std::ostream* salida);

namespace pruebas {

/// One line each, with carriage returns and double blanks visible.
QString Lineas(const QStringList& sentencias);

/// A column as a user types it.
struct Campo
{
    QString nombre;
    int tipo;
    QString longitud = QStringLiteral("10");
    QString nulo = QStringLiteral("-1");
    QString predeterminado = {};
};

class Taller : public ::testing::Test
{
protected:
    /// An empty database Taller, the session in it, and nothing said or sent yet.
    void SetUp() override;
    void TearDown() override;

    /// Drops all that stands in the database, or makes it.
    static void VaciaBase();
    /// Runs statements of the test's own, which no transcript holds.
    static void Ejecuta(const QStringList& sentencias);
    /// First column of the rows of a query, joined by blanks.
    static QString Consulta(const QString& texto);
    /// The tables of the database: columns, indexes, foreign keys and defaults, one a line.
    static QString Catalogo();
    static int TransaccionesAbiertas();

    /// A designer opened on a new table, or on one of the server.
    static std::unique_ptr<DatosTabla> Nueva(const QString& nombre);
    static std::unique_ptr<DatosTabla> Abre(const QString& nombre);
    static void Escribe(DatosTabla& datos, int fila, const Campo& campo);
    /// Types into a cell of a loaded row as the grid does: in memory, and on the server from column 2 on.
    static bool Edita(DatosTabla& datos, int fila, int columna, const QString& texto);
    static void PonIndice(DatosTabla& datos, const QString& nombre, const QStringList& campos,
                          bool clave = false);
    static void PonRelacion(DatosTabla& datos, const QString& nombre, const QString& propia,
                            const QString& tabla, const QString& externa);
    /// Saves as closing with Yes does.
    static bool Guarda(DatosTabla& datos);

    /// What arrived at the server since the last call, ids as "#": all, or what is no look-up.
    QString Llegado();
    QString Cambios();
    /// Texts of the boxes shown since the last call.
    QStringList Avisos();

    /// Connects anew, through a network that can fail.
    void Conecta();
    static support::FaultProxy& Red();

    controls::Answer respuesta = controls::Answer::Yes;

private:
    QStringList Nuevas();

    qsizetype m_leidas = 0;
    QStringList m_avisos;
};

} // namespace pruebas
