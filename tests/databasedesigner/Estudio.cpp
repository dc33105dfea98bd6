#include "Estudio.h"

#include "browser/frmAdministrador.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "platform/controls/Pointer.h"

#include <QPointer>
#include <QRegularExpression>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {

namespace {

bool EsConsulta(const QString& sentencia)
{
    static const QRegularExpression consulta(u"^\\s*(select|declare)"_s,
                                             QRegularExpression::CaseInsensitiveOption);
    return consulta.match(sentencia).hasMatch();
}

} // namespace

void Estudio::TearDown()
{
    EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
    for (controls::Form* formulario : controls::LoadedForms())
        formulario->Unload();
    Avisos();
    if (ConexionSQL.State() != 0)
        Ejecuta({u"use master"_s});
    Consola::TearDown();
}

QString Estudio::CreaObra() const
{
    const QString archivo =
        u"(name = %1, filename = '"_s + Carpeta() + u"%1.%2', size = %3MB, filegrowth = 10%)"_s;
    return u"create database Obra on "_s + archivo.arg(u"Obra"_s, u"mdf"_s, u"2"_s) + u" log on "_s +
           archivo.arg(u"Obra_log"_s, u"ldf"_s, u"1"_s);
}

void Estudio::Prepara(int idioma, const QStringList& sentencias)
{
    ArrancaYConecta(idioma);
    Ejecuta(
        {u"use master"_s, u"if db_id('Obra') is not null drop database Obra"_s, CreaObra(), u"use Obra"_s});
    Ejecuta(sentencias);
    Ejecuta({u"use master"_s});
    ::mdiPrincipal->resize(1700, 800);
    Abre(::mdiPrincipal->mnuAdministrador);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&*::mdiPrincipal));
    Transcripcion();
    LlegadoAlServidor();
}

QString Estudio::Ficheros(const QString& base)
{
    return Consulta(u"select rtrim(name) + ' ' + str(size,6) + str(growth,6) + case when groupid = "
                    u"0 then ' -' else str(maxsize,10) end + "
                    u"str(groupid,3) from "_s +
                    base + u"..sysfiles order by fileid"_s)
        .simplified();
}

formularios::frmPropiedadesBD* Estudio::Propiedades(const QString& base)
{
    ::frmAdministrador->SetFocus();
    auto* arbol = ::frmAdministrador->trvBD;
    auto* nodo = arbol->Find(u"BD"_s + base);
    if (nodo == nullptr)
        return nullptr;
    arbol->Select(nodo);
    mano::Clic(arbol->viewport(), arbol->itemRect(nodo).center(), Qt::RightButton);
    mano::ClicEntrada(::mdiPrincipal->mnuBaseDatos, ::mdiPrincipal->mnuPropiedadesBD);
    auto* forma = &*::frmPropiedadesBD;
    forma->parentWidget()->resize(1500, 500);
    QTest::qWait(1);
    return forma;
}

formularios::frmPropiedadesBD* Estudio::Nueva()
{
    ::frmAdministrador->SetFocus();
    auto* arbol = ::frmAdministrador->trvBD;
    mano::Clic(arbol->viewport(), arbol->itemRect(arbol->Find(u"B"_s)).center(), Qt::RightButton);
    mano::ClicEntrada(::mdiPrincipal->mnuBaseDatos, ::mdiPrincipal->mnuNuevaBD);
    auto* forma = &*::frmPropiedadesBD;
    forma->parentWidget()->resize(1500, 500);
    QTest::qWait(1);
    return forma;
}

bool Estudio::Acepta(formularios::frmPropiedadesBD* forma)
{
    const QPointer<controls::Form> abierta(forma);
    mano::Clic(forma->cmdAceptar);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    return abierta.isNull();
}

void Estudio::Nombra(formularios::frmPropiedadesBD* forma, const QString& nombre)
{
    mano::Clic(forma->txtNombreBD);
    mano::Tecla(Qt::Key_A, Qt::ControlModifier);
    mano::Escribe(nombre);
}

QString Estudio::Llegado()
{
    return Lineas(LlegadoAlServidor());
}

QString Estudio::Cambios()
{
    QStringList cambios = LlegadoAlServidor();
    cambios.removeIf(EsConsulta);
    return Lineas(cambios);
}

QStringList Estudio::Textos()
{
    QStringList textos;
    for (const Aviso& aviso : Avisos())
        textos += aviso.texto;
    return textos;
}

QString Estudio::Carpeta() const
{
    return u"C:"_s + QString(m_carpeta.path()).replace(u'/', u'\\') + u"\\"_s;
}

} // namespace pruebas
