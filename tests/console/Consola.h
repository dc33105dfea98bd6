// The console as a test drives it: the real forms on the offscreen platform, a practice server behind
// them, every statement recorded, every message box answered from a script.
#pragma once

#include "platform/controls/ListView.h"
#include "platform/controls/MessageBox.h"

#include <gtest/gtest.h>

#include <QString>
#include <QStringList>

#include <iosfwd>

class QAction;

namespace formularios {
class frmAnalizadorConsultas;
} // namespace formularios

/// How a failed expectation shows a text.
void PrintTo(const QString& texto, std::ostream* salida);

namespace pruebas {

/// A message box as it was shown.
struct Aviso
{
    QString texto;
    int estilo;
    QString titulo;

    bool operator==(const Aviso&) const = default;
};

void PrintTo(const Aviso& aviso, std::ostream* salida);

inline constexpr int Es = 0;
inline constexpr int En = 1;

/// The address of the shared practice server, "127.0.0.1,port", and its sa password.
QString ServidorDePrueba();
/// The batches that arrived at that server since the last call, byte for byte.
QStringList LlegadoAlServidor();
/// The last batch that arrived at that server with this beginning, byte for byte; "" when none did.
QString UltimaEnElServidor(const QString& comienzo);
/// A number that the environment gives, to ask more of a test of chance than by itself.
int EntornoONumero(const char* nombre, int numero);
inline const QString ClaveDePrueba = QStringLiteral("Practice1!");

/// Lines joined as a transcript prints them, with line breaks and double blanks visible.
QString Lineas(const QStringList& lineas);

class Consola : public ::testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    /// Starts the program as Main does, in a language, without connecting.
    void Arranca(int idioma);
    /// Arranca, then connects through the connect form and forgets the transcript so far.
    void ArrancaYConecta(int idioma);
    void Conecta(const QString& servidor, const QString& usuario, const QString& clave);

    /// Runs statements of the test's own.
    static void Ejecuta(const QStringList& sentencias);
    /// First column of a query's rows, joined by "|".
    static QString Consulta(const QString& texto);

    /// Statements sent since the last call.
    QString Transcripcion();
    /// Message boxes shown since the last call.
    QList<Aviso> Avisos();

    /// Opens the browser or the query window by its menu entry.
    void Abre(QAction* entrada);
    /// Clicks a node of the browser's tree, or chooses a menu entry.
    void Pulsa(const QString& claveDelNodo);
    /// The query window and what its grid shows in a cell.
    static formularios::frmAnalizadorConsultas* forma();
    static QString Celda(int fila, int columna);
    /// Puts the text into the query window's editor, runs it with F5 and returns what was sent.
    QString Corre(const QString& texto);
    /// The item of the browser's list that shows a text, or null.
    static controls::ListItem* Elemento(const QString& texto);

    controls::Answer respuesta = controls::Answer::Ok;

private:
    QStringList m_sentencias;
    QList<Aviso> m_avisos;
};

} // namespace pruebas
