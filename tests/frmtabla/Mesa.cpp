#include "Mesa.h"

#include "browser/frmAdministrador.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "platform/controls/Pointer.h"
#include "tabledesigner/Campos.h"

#include <QRegularExpression>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {
namespace {

bool EsConsulta(const QString& sentencia)
{
    static const QRegularExpression consulta(u"^\\s*(select|exec sp_fkeys|exec sp_helpindex)"_s,
                                             QRegularExpression::CaseInsensitiveOption);
    return consulta.match(sentencia).hasMatch();
}

} // namespace

void Mesa::TearDown()
{
    respuesta = controls::Answer::No; // a designer that asks is not saved
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
    if (!rejilla->viewport()->rect().contains(rejilla->cellRect(fila, columna)))
        VeA(rejilla, fila, columna);
    mano::PonCelda(rejilla, fila, columna, texto);
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
    ClicPestaña(forma->SSTabIndicesRelaciones, pagina);
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
