// The server tree, the lists of its folders, and the menu that follows what was clicked.
#include "Consola.h"

#include "browser/GruposFicheros.h"
#include "browser/frmAdministrador.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"

#include <QMenu>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {
namespace {

const QString ConsultaBases = u"Select name from master.dbo.sysdatabases order by name"_s;

/// Makes a database of known content once for all tests of the program.
void CreaBasePruebas()
{
    static const bool hecha = [] {
        ado::Connection conexion;
        conexion.Open(u"Provider=SQLOLEDB.1;Data Source="_s + ServidorDePrueba() +
                      u";Initial Catalog=master;User Id=sa;Password="_s + ClaveDePrueba + u";"_s);
        for (const QString& texto :
             {u"CREATE DATABASE Banco"_s, u"USE Banco"_s,
              u"CREATE TABLE Uno (a int NOT NULL PRIMARY KEY, b varchar(10))"_s,
              u"CREATE TABLE Dos (c int)"_s, u"CREATE VIEW Vista1 AS SELECT a FROM Uno"_s,
              u"CREATE PROCEDURE Proc1 AS SELECT 1"_s, u"EXEC sp_addlogin 'pepe', 'Clave1!'"_s,
              u"EXEC sp_grantdbaccess 'pepe'"_s})
            conexion.Execute(texto);
        return true;
    }();
    ASSERT_TRUE(hecha);
}

QStringList EntradasVisibles()
{
    QStringList visibles;
    for (const QAction* entrada : ::mdiPrincipal->mnuBaseDatos->actions())
        if (entrada->isVisible() && !entrada->isSeparator())
            visibles += entrada->objectName();
    return visibles;
}

QString Rama(const controls::TreeView::Node* nodo)
{
    return nodo->Key() + u"="_s + nodo->Text();
}

} // namespace

class Administrador : public Consola
{
protected:
    void Prepara(int idioma)
    {
        CreaBasePruebas();
        Transcripcion();
        ArrancaYConecta(idioma);
        Abre(::mdiPrincipal->mnuAdministrador);
    }
};

TEST_F(Administrador, TheTreeHoldsEveryDatabaseWithItsFourFolders)
{
    Prepara(Es);
    EXPECT_EQ(Transcripcion(), Lineas({ConsultaBases}));
    auto* arbol = ::frmAdministrador->trvBD;
    EXPECT_EQ(arbol->Find(u"S"_s)->Text(), ServidorDePrueba());
    EXPECT_EQ(Rama(arbol->Find(u"B"_s)), u"B=Bases de Datos"_s);
    EXPECT_EQ(Rama(arbol->Find(u"BDBanco"_s)), u"BDBanco=Banco"_s);
    EXPECT_EQ(Rama(arbol->Find(u"DTBanco"_s)), u"DTBanco=Tablas"_s);
    EXPECT_EQ(Rama(arbol->Find(u"DVBanco"_s)), u"DVBanco=Vistas"_s);
    EXPECT_EQ(Rama(arbol->Find(u"DPBanco"_s)), u"DPBanco=Procedimientos almacenados"_s);
    EXPECT_EQ(Rama(arbol->Find(u"DUBanco"_s)), u"DUBanco=Usuarios"_s);
    EXPECT_EQ(arbol->Find(u"DTBanco"_s)->Parent()->Key(), u"BDBanco"_s);
    EXPECT_EQ(Rama(arbol->Find(u"SG"_s)), u"SG=Seguridad"_s);
    EXPECT_EQ(Rama(arbol->Find(u"DI"_s)), u"DI=Inicio Sesión"_s);
    EXPECT_EQ(::frmAdministrador->Caption(), u"Administrador"_s);
    EXPECT_TRUE(::mdiPrincipal->mnuBaseDatos->menuAction()->isVisible());
}

TEST_F(Administrador, FoldersKeepTheLanguageThatTheTreeWasBuiltIn)
{
    Prepara(Es);
    Idioma = En;
    auto* arbol = ::frmAdministrador->trvBD;
    arbol->Find(u"BDBanco"_s)->setExpanded(true);
    EXPECT_EQ(arbol->Find(u"DTBanco"_s)->Text(), u"Tablas"_s);
    EXPECT_EQ(arbol->Find(u"DUBanco"_s)->Text(), u"Usuarios"_s);
    ::frmAdministrador->CapturaBD_SQL();
    EXPECT_EQ(arbol->Find(u"DTBanco"_s)->Text(), u"Tables"_s);
}

TEST_F(Administrador, TheTreeSpeaksEnglishAndStaysEmptyInAForeignLanguage)
{
    Prepara(En);
    EXPECT_EQ(::frmAdministrador->trvBD->Find(u"DPBanco"_s)->Text(), u"Procedures Stores"_s);
    EXPECT_EQ(::frmAdministrador->trvBD->Find(u"DI"_s)->Text(), u"Inicio Sesion"_s);
    Transcripcion();
    Idioma = 7;
    ::frmAdministrador->CapturaBD_SQL();
    EXPECT_EQ(::frmAdministrador->trvBD->Count(), 0);
    EXPECT_EQ(Transcripcion(), QString());
}

TEST_F(Administrador, EachFolderFillsTheListWithItsObjects)
{
    Prepara(Es);
    Transcripcion();
    auto* lista = ::frmAdministrador->ltvTablas;
    auto* detalle = ::frmAdministrador->lblDetalle;

    Pulsa(u"DTBanco"_s);
    EXPECT_EQ(
        Transcripcion(),
        Lineas({u"Select t.name as tabla,t.xtype as tipo,u.name as usuario,t.crdate as fecha  from "
                u"Banco..sysobjects t,Banco..sysusers u where (t.xtype = 'U'or t.xtype = 'S') and u.uid = "
                u"t.uid order by t.name"_s}));
    ASSERT_GT(lista->ListCount(), 2);
    EXPECT_EQ(detalle->text(), u" Tablas "_s + QString::number(lista->ListCount()) + u" elementos"_s);
    EXPECT_EQ(lista->Item(0)->Key(), u"T0"_s);
    EXPECT_EQ(lista->Item(0)->Text(), u"Dos"_s);
    EXPECT_EQ(lista->Item(0)->SubItems(1), u"dbo"_s);
    EXPECT_EQ(lista->Item(0)->SubItems(2), u"Usuario"_s);
    EXPECT_NE(lista->Item(0)->SubItems(3), QString());
    EXPECT_EQ(lista->Item(1)->SubItems(2), u"Sistema"_s);
    EXPECT_EQ(lista->columnHeader(4), u"Fecha creación"_s);

    Pulsa(u"DVBanco"_s);
    EXPECT_EQ(
        Transcripcion(),
        Lineas({u"Select t.name as tabla,t.category as categoria,u.name as usuario,t.crdate as fecha  from "
                u"Banco..sysobjects t,Banco..sysusers u where (t.xtype = 'V') and u.uid = t.uid order by "
                u"t.name"_s}));
    ASSERT_NE(Elemento(u"Vista1"_s), nullptr);
    EXPECT_EQ(Elemento(u"Vista1"_s)->Key(), u"VVista1"_s);
    EXPECT_EQ(Elemento(u"Vista1"_s)->SubItems(2), u"Usiario"_s);
    ASSERT_NE(Elemento(u"sysconstraints"_s), nullptr);
    EXPECT_EQ(Elemento(u"sysconstraints"_s)->SubItems(2), u"Sistema"_s);

    Pulsa(u"DPBanco"_s);
    EXPECT_EQ(Transcripcion(),
              Lineas({u"Select t.name as tabla,t.xtype as tipo,u.name as usuario,t.crdate as fecha  from "
                      u"Banco..sysobjects t,Banco..sysusers u where t.xtype = 'P' and u.uid = t.uid order by "
                      u"t.name"_s}));
    EXPECT_EQ(lista->Item(0)->Key(), u"P0"_s);
    EXPECT_EQ(lista->Item(0)->Text(), u"Proc1"_s);
    EXPECT_EQ(lista->Item(0)->SubItems(2), QString());

    Pulsa(u"DUBanco"_s);
    EXPECT_EQ(
        Transcripcion(),
        Lineas({u" SELECT usu.Name as nombre,lo.loginname as login         From                    "
                u"Banco..sysusers usu ,master.dbo.syslogins lo         Where usu.sid = lo.sid and        "
                u"            (usu.islogin = 1 and usu.isaliased = 0 and usu.hasdbaccess = 1) "_s}));
    EXPECT_EQ(detalle->text(), u" Usuarios 2 elementos"_s);
    EXPECT_EQ(lista->columnHeader(2), u"Inicio sesión"_s);
    EXPECT_EQ(lista->columnHeader(3), QString());

    Pulsa(u"DI"_s);
    EXPECT_EQ(Transcripcion(), Lineas({u"sp_helplogins"_s}));
    EXPECT_EQ(detalle->text(), u" Usuarios 2 elementos"_s) << "the logins are not counted";
    QStringList claves;
    for (int i = 0; i < lista->ListCount(); ++i)
        claves += lista->Item(i)->Key();
    EXPECT_TRUE(claves.contains(u"Isa"_s));
    EXPECT_TRUE(claves.contains(u"Ipepe"_s));

    Pulsa(u"BDBanco"_s);
    EXPECT_EQ(Transcripcion(), QString());
    EXPECT_EQ(lista->ListCount(), 0);
    EXPECT_EQ(detalle->text(), u" Usuarios 2 elementos"_s);
}

TEST_F(Administrador, TheListSpeaksEnglish)
{
    Prepara(En);
    Pulsa(u"DTBanco"_s);
    auto* lista = ::frmAdministrador->ltvTablas;
    EXPECT_EQ(::frmAdministrador->lblDetalle->text(),
              u" Tables "_s + QString::number(lista->ListCount()) + u" elements"_s);
    EXPECT_EQ(lista->columnHeader(1), u"Name"_s);
    EXPECT_EQ(lista->Item(0)->SubItems(2), u"User"_s);
    EXPECT_EQ(lista->Item(1)->SubItems(2), u"Sistem"_s);
}

TEST_F(Administrador, ComingForwardReadsTheListAgain)
{
    Prepara(Es);
    Pulsa(u"DVBanco"_s);
    Abre(::mdiPrincipal->mnuConectar);
    Transcripcion();
    Abre(::mdiPrincipal->mnuAdministrador);
    EXPECT_EQ(Transcripcion().count(u"t.category as categoria"_s), 1);
    EXPECT_NE(Elemento(u"Vista1"_s), nullptr);
}

TEST_F(Administrador, TheMenuFollowsTheKeyByItsFirstMatchingLetterAnywhere)
{
    Prepara(Es);
    const QStringList base{u"mnuNuevaBD"_s,       u"mnuAñadirTabla"_s, u"mnuAñadirVista"_s,
                           u"mnuPropiedadesBD"_s, u"mnuEliminar"_s,    u"mnuCopiaSeguridad"_s,
                           u"mnuRestaurarCopia"_s};
    const QStringList tabla{u"mnuAñadirTabla"_s, u"mnuDiseño"_s, u"mnuVerRegistros"_s, u"mnuEliminar"_s};
    const struct
    {
        QString clave;
        QStringList entradas;
    } casos[] = {
        {u"S"_s, {}},
        {u"SG"_s, {}},
        {u"B"_s, {u"mnuNuevaBD"_s}},
        {u"BDventas"_s, base},
        {u"DTBanco"_s, base},
        {u"DTventas"_s, {u"mnuAñadirTabla"_s}},
        {u"DVventas"_s, {u"mnuAñadirVista"_s}},
        {u"DPventas"_s, {u"mnuAñadirProcedimiento"_s}},
        {u"DI"_s, {u"mnuAñadirInicioSesion"_s}},
        {u"DUventas"_s, {u"mnuAñadirUsuario"_s}},
        {u"T12"_s, tabla},
        {u"VTotal"_s, tabla},
        {u"Vtotal"_s, {u"mnuAñadirVista"_s, u"mnuDiseño"_s, u"mnuVerRegistros"_s, u"mnuEliminar"_s}},
        {u"VClientes"_s, {u"mnuEliminar"_s}},
        {u"P3"_s, {u"mnuAñadirProcedimiento"_s, u"mnuDiseño"_s, u"mnuEliminar"_s}},
        {u"Ipepe"_s, {u"mnuDiseño"_s, u"mnuEliminar"_s, u"mnuAñadirInicioSesion"_s}},
        {u"Upepe"_s, {u"mnuDiseño"_s, u"mnuEliminar"_s, u"mnuAñadirUsuario"_s}},
        {u"IBlas"_s, base},
    };
    for (const auto& caso : casos) {
        ::frmAdministrador->GestionMenu(caso.clave);
        EXPECT_EQ(EntradasVisibles(), caso.entradas) << caso.clave.toStdString();
    }
}

TEST_F(Administrador, ARightClickSelectsAndPopsTheMenuUp)
{
    Prepara(Es);
    auto* arbol = ::frmAdministrador->trvBD;
    arbol->Find(u"BDBanco"_s)->setExpanded(true);
    QTest::qWait(1);
    Transcripcion();
    QTest::mouseClick(arbol->viewport(), Qt::RightButton, {},
                      arbol->itemRect(arbol->Find(u"DTBanco"_s)).center());
    EXPECT_EQ(arbol->SelectedItem()->Key(), u"DTBanco"_s);
    EXPECT_TRUE(QTest::qWaitFor([] { return ::mdiPrincipal->mnuBaseDatos->isVisible(); }));
    ::mdiPrincipal->mnuBaseDatos->close();
    EXPECT_EQ(Transcripcion(), QString()) << "filling is left to the click";
}

TEST_F(Administrador, ADatabaseDroppedElsewhereReportsTheServersError)
{
    Prepara(Es);
    ConexionSQL.Execute(u"CREATE DATABASE Fugaz"_s);
    ::frmAdministrador->CapturaBD_SQL();
    ConexionSQL.Execute(u"DROP DATABASE Fugaz"_s);
    Pulsa(u"DTFugaz"_s);
    const auto avisos = Avisos();
    ASSERT_EQ(avisos.size(), 1);
    EXPECT_EQ(avisos[0],
              (Aviso{u" Error Nº:208 (Invalid object name 'Fugaz..sysobjects'.)."_s, 48, u"Atención."_s}));
    EXPECT_EQ(::frmAdministrador->ltvTablas->ListCount(), 0);
    Pulsa(u"DTBanco"_s);
    EXPECT_EQ(Avisos(), QList<Aviso>{});
}

TEST_F(Administrador, FilegroupsAreCapturedWithTheirFilesAndFlags)
{
    Prepara(Es);
    Transcripcion();
    BaseDatosActual = u"Banco"_s;
    CapturaGruposFicheros_SQL();
    EXPECT_EQ(
        Transcripcion(),
        Lineas({u"select  g.groupname,g.status,  g.groupid, 'filecount' =         (select count(*) from "
                u"Banco..sysfiles f             Where f.groupid = g.groupid                 and (f.status & "
                u"0x40 <> 0x40))     from Banco..sysfilegroups g order by groupid"_s}));
    EXPECT_EQ(GruposFicheros.at(0, 0), u"PRIMARY"_s);
    EXPECT_EQ(GruposFicheros.at(0, 1), u"1"_s);
    EXPECT_EQ(GruposFicheros.at(1, 0), QString());
    EXPECT_EQ(Avisos(), QList<Aviso>{});

    ConexionSQL.Execute(u"alter database Banco add filegroup Segundo"_s);
    CapturaGruposFicheros_SQL();
    const auto marcas = [](int fila) {
        return GruposFicheros.at(fila, 2) + u' ' + GruposFicheros.at(fila, 3);
    };
    EXPECT_EQ(GruposFicheros.at(1, 0), u"Segundo"_s);
    EXPECT_EQ(GruposFicheros.at(1, 1), u"0"_s);
    EXPECT_EQ(marcas(0), u"0 -1"_s) << "the default one, status 16";
    EXPECT_EQ(marcas(1), u"-1 0"_s);
    EXPECT_EQ(GruposFicheros.at(2, 0), QString());
    ConexionSQL.Execute(u"alter database Banco remove filegroup Segundo"_s);
}

TEST_F(Administrador, AMinimizedFormComesBackWhenItIsOpenedAgain)
{
    Prepara(Es);
    ::frmAdministrador->setWindowStateValue(controls::Form::Minimized);
    Abre(::mdiPrincipal->mnuAnalizadorConsultas);
    EXPECT_EQ(::frmAdministrador->windowStateValue(), controls::Form::Minimized);
    Abre(::mdiPrincipal->mnuAdministrador);
    EXPECT_EQ(::frmAdministrador->windowStateValue(), controls::Form::Normal);
}

TEST_F(Administrador, ClosingTheFormTakesItsMenuAway)
{
    Prepara(Es);
    ::frmAdministrador->Unload();
    EXPECT_FALSE(::frmAdministrador.exists());
    EXPECT_FALSE(::mdiPrincipal->mnuBaseDatos->menuAction()->isVisible());
}

} // namespace pruebas
