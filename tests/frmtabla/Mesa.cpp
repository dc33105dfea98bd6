#include "Mesa.h"

#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "platform/controls/Pointer.h"
#include "tabledesigner/Campos.h"

#include <QAbstractButton>
#include <QApplication>
#include <QMdiSubWindow>
#include <QRegularExpression>
#include <QTabBar>
#include <QTest>
#include <QWindow>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {
namespace {

bool EsConsulta(const QString& sentencia)
{
    static const QRegularExpression consulta(u"^\\s*(select|exec sp_fkeys|exec sp_helpindex)"_s,
                                             QRegularExpression::CaseInsensitiveOption);
    return consulta.match(sentencia).hasMatch();
}

QWidget* Teclado()
{
    return QApplication::activePopupWidget() ? QApplication::activePopupWidget()
                                             : QApplication::focusWidget();
}

/// What is under way; and the main window comes back when a list has closed, as a window manager does it.
void Atiende()
{
    QCoreApplication::processEvents();
    if (QApplication::activePopupWidget() || QApplication::activeModalWidget() ||
        QApplication::activeWindow() == &*::mdiPrincipal)
        return;
    ::mdiPrincipal->activateWindow();
    QCoreApplication::processEvents();
}

} // namespace

void Mesa::TearDown()
{
    respuesta = controls::Answer::No;
    for (controls::Form* formulario : controls::LoadedForms())
        formulario->Unload();
    Avisos();
    if (ConexionSQL.State() != 0)
        Ejecuta({u"use master"_s});
    Consola::TearDown();
}

void Mesa::Prepara(int idioma, const QStringList& sentencias)
{
    ArrancaYConecta(idioma);
    Ejecuta({u"if db_id('Taller') is not null drop database Taller"_s, u"create database Taller"_s,
             u"use Taller"_s});
    Ejecuta(sentencias);
    Ejecuta({u"use master"_s});
    Abre(::mdiPrincipal->mnuAdministrador);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&*::mdiPrincipal));
    Pulsa(u"DTTaller"_s);
    Transcripcion();
    LlegadoAlServidor();
}

void Mesa::Ejecuta(const QStringList& sentencias)
{
    for (const QString& sentencia : sentencias)
        ASSERT_NO_THROW(ConexionSQL.Execute(sentencia)) << sentencia.toStdString();
}

QString Mesa::Consulta(const QString& texto)
{
    ado::Recordset filas;
    filas.Open(texto, ConexionSQL);
    QStringList valores;
    for (; !filas.Eof(); filas.MoveNext())
        valores += TextoCampo(filas, 0);
    return valores.join(u'|');
}

int Mesa::TransaccionesAbiertas()
{
    return Consulta(u"select @@trancount"_s).toInt();
}

formularios::frmTabla* Mesa::Diseña(const QString& tabla)
{
    ::frmAdministrador->SetFocus();
    auto* lista = ::frmAdministrador->ltvTablas;
    auto* elemento = Elemento(tabla);
    if (elemento == nullptr)
        return nullptr;
    lista->EnsureVisible(elemento);
    Clic(lista->viewport(), lista->itemRect(elemento).center(), Qt::RightButton);
    ClicEntrada(::mdiPrincipal->mnuBaseDatos, ::mdiPrincipal->mnuDiseño);
    return dynamic_cast<formularios::frmTabla*>(::mdiPrincipal->ActiveForm());
}

formularios::frmTabla* Mesa::Nueva()
{
    ::frmAdministrador->SetFocus();
    auto* arbol = ::frmAdministrador->trvBD;
    Clic(arbol->viewport(), arbol->itemRect(arbol->Find(u"BDTaller"_s)).center(), Qt::RightButton);
    ClicEntrada(::mdiPrincipal->mnuBaseDatos, ::mdiPrincipal->mnuAñadirTabla);
    return dynamic_cast<formularios::frmTabla*>(::mdiPrincipal->ActiveForm());
}

bool Mesa::Cierra(controls::Answer contestacion)
{
    respuesta = contestacion;
    const QPointer<controls::Form> forma = ::mdiPrincipal->ActiveForm();
    Tecla(Qt::Key_W, Qt::ControlModifier);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return forma.isNull();
}

void Mesa::Clic(QWidget* control, const QPoint& punto, Qt::MouseButton boton)
{
    QWidget* ventana = control->window();
    const QPoint lugar = control->mapTo(ventana, punto);
    const QWidget* debajo = ventana->childAt(lugar);
    ASSERT_TRUE(debajo == control || control->isAncestorOf(debajo))
        << "covered by " << (debajo ? debajo->objectName().toStdString() : "nothing");
    QTest::mouseMove(ventana->windowHandle(), lugar);
    QTest::mouseClick(ventana->windowHandle(), boton, {}, lugar);
    Atiende();
}

void Mesa::Clic(QWidget* control)
{
    const auto* boton = qobject_cast<QAbstractButton*>(control);
    constexpr int Marca = 8; // of a tick box or option, whose caption need not fill the rest
    const QPoint centro = control->rect().center();
    Clic(control, boton != nullptr && boton->isCheckable() ? QPoint(Marca, centro.y()) : centro);
}

void Mesa::ClicCelda(controls::DataGrid* rejilla, int fila, int columna, Qt::MouseButton boton)
{
    const QRect celda = rejilla->cellRect(fila, columna) & rejilla->viewport()->rect();
    ASSERT_FALSE(celda.isEmpty()) << "out of sight: " << fila << "," << columna;
    Clic(rejilla->viewport(), celda.center(), boton);
}

void Mesa::ClicEntrada(QMenu* menu, QAction* entrada)
{
    ASSERT_TRUE(menu->isVisible());
    const QPoint punto = menu->actionGeometry(entrada).center();
    QTest::mouseMove(menu->windowHandle(), punto);
    QTest::mouseClick(menu->windowHandle(), Qt::LeftButton, {}, punto);
    QTest::qWait(1);
}

void Mesa::Escribe(const QString& texto)
{
    for (const char32_t letra : texto.toUcs4())
        QTest::sendKeyEvent(QTest::Click, Teclado(), Qt::Key_unknown, QString::fromUcs4(&letra, 1), {});
}

void Mesa::Tecla(int tecla, Qt::KeyboardModifiers con)
{
    ASSERT_NE(Teclado(), nullptr);
    QTest::keyClick(Teclado(), static_cast<Qt::Key>(tecla), con);
    Atiende();
}

void Mesa::VeA(controls::DataGrid* rejilla, int fila, int columna)
{
    rejilla->SetFocus();
    for (int paso = 0; paso < UltimaFila && rejilla->Bookmark() != fila; ++paso)
        Tecla(rejilla->Bookmark() < fila ? Qt::Key_Down : Qt::Key_Up);
    for (int paso = 0; paso <= ColCampo::Ultima && rejilla->Col() != columna; ++paso)
        Tecla(rejilla->Col() < columna ? Qt::Key_Tab : Qt::Key_Backtab);
    ASSERT_EQ(rejilla->Bookmark(), fila);
    ASSERT_EQ(rejilla->Col(), columna);
}

bool Mesa::BloqueoDeLongitud(const QString& tipo)
{
    return BloqueoDeTipo(tipo).longitud;
}

void Mesa::PonCelda(controls::DataGrid* rejilla, int fila, int columna, const QString& texto)
{
    // A click into the current cell would begin an edit behind its text.
    if (rejilla->Bookmark() != fila || rejilla->Col() != columna || !rejilla->hasFocus()) {
        if (rejilla->viewport()->rect().contains(rejilla->cellRect(fila, columna)))
            ClicCelda(rejilla, fila, columna);
        else
            VeA(rejilla, fila, columna);
    }
    Escribe(texto);
    Tecla(Qt::Key_Return);
}

void Mesa::BuscaExterna(formularios::frmTabla* forma, const QString& tabla)
{
    forma->cboExterna->setFocus();
    Tecla(Qt::Key_Home);
    for (int n = 0; n < forma->cboExterna->ListCount() && forma->cboExterna->Text() != tabla; ++n)
        Tecla(Qt::Key_Down);
    ASSERT_EQ(forma->cboExterna->Text(), tabla);
}

void Mesa::Pagina(formularios::frmTabla* forma, int pagina)
{
    auto* pestañas = forma->SSTabIndicesRelaciones->tabBar();
    Clic(pestañas, pestañas->tabRect(pagina).center());
}

Fila Mesa::FilaDe(const formularios::frmTabla* forma, int fila)
{
    Fila celdas;
    for (int columna = ColCampo::Nombre; columna <= ColCampo::UltimaVisible; ++columna)
        celdas += forma->Datos.CamposTabla.at(fila, columna);
    return celdas;
}

QString Mesa::Llegado()
{
    static const QRegularExpression id(u"\\b\\d{5,}\\b"_s);
    return Lineas(LlegadoAlServidor()).replace(id, u"#"_s);
}

QString Mesa::Cambios()
{
    QStringList cambios = LlegadoAlServidor();
    cambios.removeIf(EsConsulta);
    return Lineas(cambios);
}

} // namespace pruebas
