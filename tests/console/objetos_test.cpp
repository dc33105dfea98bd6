// The commands on what is selected in the browser, the editors of views and procedures, script files.
#include "Consola.h"

#include "browser/frmAdministrador.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "platform/controls/FileDialog.h"
#include "platform/controls/Pointer.h"
#include "query/ArchivoScript.h"
#include "query/frmAnalizadorConsultas.h"
#include "query/frmProcedimiento.h"
#include "query/frmVista.h"
#include "support/PracticeServer.h"

#include <QFile>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {
namespace {

const QString ConsultaBases = u"Select name from master.dbo.sysdatabases order by name"_s;

QString ConsultaTablas(const QString& base)
{
    return u"Select t.name as tabla,t.xtype as tipo,u.name as usuario,t.crdate as fecha  from %1..sysobjects "
           u"t,%1..sysusers u where (t.xtype = 'U'or t.xtype = 'S') and u.uid = t.uid order by t.name"_s.arg(
               base);
}

QString ConsultaVistas(const QString& base)
{
    return u"Select t.name as tabla,t.category as categoria,u.name as usuario,t.crdate as fecha  from "
           u"%1..sysobjects t,%1..sysusers u where (t.xtype = 'V') and u.uid = t.uid order by t.name"_s.arg(
               base);
}

QString ConsultaTexto(const QString& tipo, const QString& nombre)
{
    return u"Select obj.name,com.text  from Taller..sysobjects obj, Taller..syscomments com where obj.type = "
           u"'%1' "
           u"and name='%2' and com.id=obj.id order by name"_s.arg(tipo, nombre);
}

const QString ConsultaProcedimientos =
    u"Select t.name as tabla,t.xtype as tipo,u.name as usuario,t.crdate as fecha  from Taller..sysobjects t,"
    u"Taller..sysusers u where t.xtype = 'P' and u.uid = t.uid order by t.name"_s;

} // namespace

class Objetos : public Consola
{
protected:
    /// A fresh database Taller with one object of each kind, open in the browser.
    void Prepara(int idioma)
    {
        ArrancaYConecta(idioma);
        Ejecuta({u"if db_id('Taller') is not null drop database Taller"_s, u"create database Taller"_s,
                 u"use Taller"_s, u"create table Padre (id int not null primary key)"_s,
                 u"create table Hija (id int not null references Padre(id))"_s,
                 u"create table [con hueco] (a int)"_s, u"create view Ver as select id from Padre"_s,
                 u"create procedure Haz as select 1 as uno"_s, u"insert Padre values (7)"_s,
                 u"use master"_s});
        Abre(::mdiPrincipal->mnuAdministrador);
        Transcripcion();
    }

    void TearDown() override
    {
        Avisos();
        if (ConexionSQL.State() != 0)
            Ejecuta({u"use master"_s});
        Consola::TearDown();
    }

    void Ejecuta(const QStringList& sentencias)
    {
        for (const QString& sentencia : sentencias)
            ASSERT_NO_THROW(ConexionSQL.Execute(sentencia)) << sentencia.toStdString();
        Transcripcion();
    }

    /// Selects an item of the list by its text with the right button, as the user does.
    void Elige(const QString& texto)
    {
        auto* elemento = Elemento(texto);
        ASSERT_NE(elemento, nullptr) << "not in the list: " << texto.toStdString();
        auto* lista = ::frmAdministrador->ltvTablas;
        lista->EnsureVisible(elemento);
        const QPoint punto = lista->itemRect(elemento).center();
        ::frmAdministrador->ltvTablas_MouseDown(2, 0, punto.x(), punto.y());
        ::mdiPrincipal->mnuBaseDatos->close();
    }

    /// Clicks a folder and chooses an entry of the menu for one of its objects.
    void Manda(const QString& carpeta, const QString& objeto, QAction* entrada)
    {
        Pulsa(carpeta);
        Elige(objeto);
        Transcripcion();
        ASSERT_TRUE(entrada->isVisible());
        entrada->trigger();
        QTest::qWait(1);
    }
};

TEST_F(Objetos, DropsATableAndReadsTheListAgain)
{
    Prepara(Es);
    Manda(u"DTTaller"_s, u"Hija"_s, ::mdiPrincipal->mnuEliminar);
    EXPECT_EQ(Transcripcion(), Lineas({u"use Taller"_s, u"DROP TABLE Hija"_s, ConsultaTablas(u"Taller"_s)}));
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    EXPECT_EQ(Elemento(u"Hija"_s), nullptr);
}

TEST_F(Objetos, TheRowUnderThePointerIsDroppedHoweverLittleOfItShows)
{
    ArrancaYConecta(Es);
    QStringList sentencias{u"if db_id('Taller') is not null drop database Taller"_s,
                           u"create database Taller"_s, u"use Taller"_s};
    for (int n = 10; n < 60; ++n)
        sentencias += u"create table aa%1 (id int)"_s.arg(n);
    Ejecuta(sentencias);
    Abre(::mdiPrincipal->mnuAdministrador);
    Pulsa(u"DTTaller"_s);
    auto* lista = ::frmAdministrador->ltvTablas;
    for (const auto boton : {Qt::LeftButton, Qt::RightButton}) {
        ::mdiPrincipal->mnuAnalizadorConsultas->trigger();
        QTest::qWait(1);
        ASSERT_EQ(::mdiPrincipal->ActiveForm()->Name(), u"frmAnalizadorConsultas"_s);
        lista->verticalScrollBar()->setValue(boton == Qt::LeftButton ? 5 : 131);
        const QPoint punto(20, lista->viewport()->height() - 2);
        const QString visto = lista->HitTest(punto)->Text();
        QTest::mouseClick(lista->viewport(), boton, {}, punto);
        EXPECT_EQ(::mdiPrincipal->ActiveForm()->Name(), u"frmAdministrador"_s);
        ASSERT_NE(lista->SelectedItem(), nullptr) << "the activation has read the list again";
        EXPECT_EQ(::mdiPrincipal->mnuBaseDatos->isVisible(), boton == Qt::RightButton);
        ::mdiPrincipal->mnuBaseDatos->close();
        ::mdiPrincipal->mnuEliminar->trigger();
        EXPECT_EQ(UltimaEnElServidor(u"DROP TABLE"_s), u"DROP TABLE "_s + visto);
        EXPECT_EQ(Avisos(), QList<Aviso>{});
        EXPECT_EQ(Elemento(visto), nullptr);
    }
}

TEST_F(Objetos, ARefusedDropShowsTheErrorAndLeavesTheListAlone)
{
    Prepara(Es);
    Manda(u"DTTaller"_s, u"Padre"_s, ::mdiPrincipal->mnuEliminar);
    EXPECT_EQ(Transcripcion(), Lineas({u"use Taller"_s, u"DROP TABLE Padre"_s}));
    EXPECT_EQ(
        Avisos(),
        (QList<Aviso>{{u" Error Nº:3726 (Could not drop object 'Padre' because it is referenced by a FOREIGN "
                       u"KEY constraint.)."_s,
                       48, u"Atención."_s}}));
    EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
    Manda(u"DTTaller"_s, u"con hueco"_s, ::mdiPrincipal->mnuEliminar);
    EXPECT_EQ(Transcripcion(), Lineas({u"use Taller"_s, u"DROP TABLE con hueco"_s}));
    ASSERT_EQ(Avisos().size(), 1);
    EXPECT_NE(Elemento(u"con hueco"_s), nullptr);
}

TEST_F(Objetos, DropsAViewButNeverAProcedure)
{
    Prepara(Es);
    Manda(u"DPTaller"_s, u"Haz"_s, ::mdiPrincipal->mnuEliminar);
    EXPECT_EQ(Transcripcion(), QString());
    Manda(u"DVTaller"_s, u"Ver"_s, ::mdiPrincipal->mnuEliminar);
    EXPECT_EQ(Transcripcion(), Lineas({u"Use Taller"_s, u"DROP VIEW Ver"_s, ConsultaVistas(u"Taller"_s)}));
    EXPECT_EQ(Elemento(u"Ver"_s), nullptr);
    EXPECT_EQ(Avisos(), QList<Aviso>{});
}

TEST_F(Objetos, ADroppedDatabaseRebuildsTheTreeAndThenMissesTheItem)
{
    Prepara(Es);
    Pulsa(u"BDTaller"_s);
    ::mdiPrincipal->mnuEliminar->trigger();
    EXPECT_EQ(Transcripcion(), Lineas({u"DROP DATABASE Taller"_s, ConsultaBases}));
    EXPECT_EQ(::frmAdministrador->trvBD->Find(u"BDTaller"_s), nullptr);
    EXPECT_EQ(Avisos(),
              (QList<Aviso>{{u" Error Nº:91 (Variable de objeto o de bloque With no establecida)."_s, 48,
                             u"Atención."_s}}));
    EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
}

TEST_F(Objetos, ADatabaseInUseIsKept)
{
    Prepara(Es);
    Ejecuta({u"use Taller"_s});
    Pulsa(u"BDTaller"_s);
    ::mdiPrincipal->mnuEliminar->trigger();
    EXPECT_EQ(Transcripcion(), Lineas({u"DROP DATABASE Taller"_s}));
    const auto avisos = Avisos();
    ASSERT_EQ(avisos.size(), 1);
    EXPECT_TRUE(avisos[0].texto.startsWith(u" Error Nº:3702 ("_s)) << avisos[0].texto.toStdString();
    EXPECT_NE(::frmAdministrador->trvBD->Find(u"BDTaller"_s), nullptr);
}

TEST_F(Objetos, ALoginGoesWithItsUsersInEveryDatabase)
{
    Prepara(Es);
    Ejecuta({u"exec sp_addlogin 'rosa', 'Clave1!'"_s, u"use Taller"_s, u"exec sp_grantdbaccess 'rosa'"_s,
             u"use model"_s, u"exec sp_grantdbaccess 'rosa'"_s, u"use master"_s});
    Manda(u"DI"_s, u"rosa"_s, ::mdiPrincipal->mnuEliminar);
    const QString enviado = Transcripcion();
    EXPECT_TRUE(enviado.startsWith(ConsultaBases)) << enviado.toStdString();
    EXPECT_TRUE(enviado.contains(Lineas({u"Select name from Taller..sysusers where name = 'rosa'"_s,
                                         u"use Taller"_s, u"exec sp_revokedbaccess  'rosa'"_s})));
    EXPECT_TRUE(enviado.contains(Lineas({u"Select name from model..sysusers where name = 'rosa'"_s,
                                         u"use model"_s, u"exec sp_revokedbaccess  'rosa'"_s})));
    EXPECT_TRUE(enviado.contains(u"Select name from master..sysusers where name = 'rosa'\n"
                                 u"Select name"_s))
        << "no access, nothing to revoke";
    EXPECT_TRUE(enviado.endsWith(Lineas({u" EXEC sp_droplogin 'rosa'"_s, u"sp_helplogins"_s})));
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    EXPECT_EQ(Elemento(u"rosa"_s), nullptr);
}

TEST_F(Objetos, AUserIsRevokedInWhicheverDatabaseTheSessionStands)
{
    Prepara(Es);
    Ejecuta({u"exec sp_addlogin 'luis', 'Clave1!'"_s, u"use Taller"_s, u"exec sp_grantdbaccess 'luis'"_s});
    Manda(u"DUTaller"_s, u"luis"_s, ::mdiPrincipal->mnuEliminar);
    EXPECT_TRUE(Transcripcion().startsWith(Lineas({u" sp_revokedbaccess 'luis'"_s})));
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    EXPECT_EQ(Elemento(u"luis"_s), nullptr);
    Ejecuta({u"use master"_s, u"exec sp_droplogin 'luis'"_s});
}

TEST_F(Objetos, ShowsTheRowsOfATableInTheQueryWindow)
{
    Prepara(Es);
    Manda(u"DTTaller"_s, u"Padre"_s, ::mdiPrincipal->mnuVerRegistros);
    EXPECT_EQ(Transcripcion(),
              Lineas({ConsultaBases, u"Use master"_s, u"Use Taller"_s, u"select * from Padre"_s}));
    EXPECT_EQ(::frmAnalizadorConsultas->cboBD->Text(), u"Taller"_s);
    EXPECT_EQ(::frmAnalizadorConsultas->GridSQL->model()->index(0, 0).data().toString(), u"7"_s);
    EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
}

TEST_F(Objetos, ATableBeyondTheLastSlotIsASubscriptError)
{
    Prepara(Es);
    Pulsa(u"DTTaller"_s);
    auto* lista = ::frmAdministrador->ltvTablas;
    lista->Select(lista->Add(u"T201"_s, u"Lejos"_s));
    ::mdiPrincipal->mnuDiseño->trigger();
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u" Error Nº:9 (El subíndice está fuera del intervalo)."_s, 48,
                                       u"Atención."_s}}));
}

TEST_F(Objetos, AViewIsReplacedByDropAndCreate)
{
    Prepara(Es);
    Manda(u"DVTaller"_s, u"Ver"_s, ::mdiPrincipal->mnuDiseño);
    EXPECT_EQ(Transcripcion(), Lineas({ConsultaTexto(u"V"_s, u"Ver"_s)}));
    EXPECT_EQ(::frmVista->Caption(), u"Vista"_s);
    EXPECT_EQ(::frmVista->txtSQL->Text(), u"create view Ver as select id from Padre"_s);
    const QString nuevo = u"create view Ver as\rselect id + 1 as otro from Padre"_s;
    ::frmVista->txtSQL->setText(nuevo);
    ::frmVista->cmdAceptar->click();
    QString enviado = Transcripcion();
    EXPECT_TRUE(
        enviado.startsWith(Lineas({u"USE Taller"_s, u"DROP VIEW Ver"_s, nuevo, ConsultaVistas(u"Taller"_s)})))
        << enviado.toStdString();
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    EXPECT_FALSE(::frmVista.exists());
    EXPECT_NE(Elemento(u"Ver"_s), nullptr);
}

TEST_F(Objetos, ARefusedReplacementLosesTheObjectAndKeepsTheText)
{
    Prepara(En);
    Manda(u"DVTaller"_s, u"Ver"_s, ::mdiPrincipal->mnuDiseño);
    ::frmVista->txtSQL->setText(u"create view Ver as selec 1"_s);
    Transcripcion();
    ::frmVista->cmdAceptar->click();
    EXPECT_EQ(Transcripcion(),
              Lineas({u"USE Taller"_s, u"DROP VIEW Ver"_s, u"create view Ver as selec 1"_s}));
    EXPECT_EQ(Avisos().size(), 1);
    EXPECT_TRUE(::frmVista.exists());
    ::frmVista->cmdAceptar->click();
    EXPECT_EQ(Transcripcion(), Lineas({u"USE Taller"_s, u"DROP VIEW Ver"_s}));
    const auto avisos = Avisos();
    ASSERT_EQ(avisos.size(), 1);
    EXPECT_TRUE(avisos[0].texto.startsWith(u" Error Nº:3701 ("_s)) << avisos[0].texto.toStdString();
    EXPECT_EQ(::frmVista->txtSQL->Text(), u"create view Ver as selec 1"_s);
    ::frmVista->cmdCancelar->click();
    EXPECT_EQ(Transcripcion().count(u"DROP"_s), 0);
    EXPECT_FALSE(::frmVista.exists());
}

TEST_F(Objetos, ALongProcedureLoadsWholeAndIsTitledAsAView)
{
    Prepara(En);
    const QString largo = u"create procedure Largo as select '"_s + u"ñ"_s.repeated(9000) + u"' as x"_s;
    Ejecuta({u"use Taller"_s, largo, u"use master"_s});
    Manda(u"DPTaller"_s, u"Largo"_s, ::mdiPrincipal->mnuDiseño);
    EXPECT_EQ(Transcripcion(), Lineas({ConsultaTexto(u"P"_s, u"Largo"_s)}));
    EXPECT_EQ(::frmProcedimiento->txtSQL->Text(), largo);
    EXPECT_EQ(::frmProcedimiento->Caption(), u"View"_s);
    EXPECT_EQ(::frmProcedimiento->cmdAceptar->text(), u"Accept"_s);
    ::frmProcedimiento->cmdAceptar->click();
    EXPECT_TRUE(Transcripcion().startsWith(
        Lineas({u"USE Taller"_s, u"DROP PROCEDURE Largo"_s, largo, ConsultaProcedimientos})));
    EXPECT_EQ(Avisos(), QList<Aviso>{});
}

TEST_F(Objetos, ANewViewStartsFromItsPlaceholder)
{
    Prepara(Es);
    Pulsa(u"DVTaller"_s);
    ::mdiPrincipal->mnuAñadirVista->trigger();
    EXPECT_EQ(BaseDatosActual, u"Taller"_s);
    EXPECT_EQ(::frmVista->txtSQL->Text(), u"CREATE VIEW [NOMBRE_VISTA] AS "_s);
    ::frmVista->txtSQL->setText(::frmVista->txtSQL->Text() + u"select 1 as a"_s);
    Transcripcion();
    ::frmVista->cmdAceptar->click();
    EXPECT_TRUE(Transcripcion().startsWith(
        Lineas({u"USE Taller"_s, u"CREATE VIEW [NOMBRE_VISTA] AS select 1 as a"_s})));
    EXPECT_NE(Elemento(u"NOMBRE_VISTA"_s), nullptr);
}

TEST_F(Objetos, ALoginStillSelectedInTheListGoesWithTheDroppedDatabase)
{
    Prepara(Es);
    Ejecuta({u"exec sp_addlogin 'hugo', 'Clave1!'"_s});
    Pulsa(u"DI"_s);
    Elige(u"hugo"_s);
    auto* arbol = ::frmAdministrador->trvBD;
    arbol->Select(arbol->Find(u"BDTaller"_s)); // by code: the list keeps the logins
    Transcripcion();
    ::mdiPrincipal->mnuEliminar->trigger();
    const QString enviado = Transcripcion();
    EXPECT_TRUE(enviado.startsWith(Lineas({u"DROP DATABASE Taller"_s, ConsultaBases, ConsultaBases})))
        << enviado.toStdString();
    EXPECT_TRUE(enviado.endsWith(Lineas({u" EXEC sp_droplogin 'hugo'"_s, u"sp_helplogins"_s})));
    EXPECT_EQ(Avisos(), QList<Aviso>{});
}

TEST_F(Objetos, OddNamesReachTheServerUnquotedAndLoseNothing)
{
    Prepara(Es);
    Ejecuta({u"use Taller"_s, u"create table [it's] (a int)"_s, u"create table [a]]b] (a int)"_s,
             u"create view [V'T B] as select 1 as a"_s, u"use master"_s});
    for (const QString& nombre : {u"it's"_s, u"a]b"_s}) {
        Manda(u"DTTaller"_s, nombre, ::mdiPrincipal->mnuEliminar);
        EXPECT_EQ(Transcripcion(), Lineas({u"use Taller"_s, u"DROP TABLE "_s + nombre}));
        EXPECT_EQ(Avisos().size(), 1) << nombre.toStdString();
        EXPECT_NE(Elemento(nombre), nullptr);
    }
    Manda(u"DTTaller"_s, u"it's"_s, ::mdiPrincipal->mnuVerRegistros);
    EXPECT_TRUE(Transcripcion().endsWith(u"select * from it's\n"_s));
    EXPECT_EQ(Avisos().size(), 1);

    // Its name holds a B, so that the menu is a database's; the design of a view is not among it.
    Pulsa(u"DVTaller"_s);
    Elige(u"V'T B"_s);
    EXPECT_TRUE(::mdiPrincipal->mnuNuevaBD->isVisible());
    EXPECT_FALSE(::mdiPrincipal->mnuDiseño->isVisible());
    ::mdiPrincipal->mnuDiseño->trigger();
    EXPECT_EQ(Avisos().size(), 1) << "its text can't be asked for";
    EXPECT_EQ(::frmVista->txtSQL->Text(), u"CREATE VIEW [NOMBRE_VISTA] AS "_s);
}

TEST_F(Objetos, NothingSelectedIsAnErrorAndNoStatement)
{
    Prepara(Es);
    Pulsa(u"DT"_s + u"tempdb"_s);
    ::frmAdministrador->ltvTablas->Clear();
    for (QAction* entrada :
         {::mdiPrincipal->mnuDiseño, ::mdiPrincipal->mnuEliminar, ::mdiPrincipal->mnuVerRegistros}) {
        Transcripcion();
        entrada->trigger();
        const auto avisos = Avisos();
        ASSERT_EQ(avisos.size(), 1) << entrada->objectName().toStdString();
        EXPECT_TRUE(avisos[0].texto.startsWith(u" Error Nº:91 ("_s)) << avisos[0].texto.toStdString();
        EXPECT_FALSE(Transcripcion().contains(u"DROP"_s));
        EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
    }
}

TEST_F(Objetos, AServerGoneBetweenClickAndCommandIsAnErrorEachTime)
{
    auto otro = support::PracticeServer::start();
    Arranca(Es);
    Conecta(u"127.0.0.1,"_s + QString::number(otro->port()), u"sa"_s, ClaveDePrueba);
    Ejecuta({u"create view Ver as select 1 as a"_s});
    Abre(::mdiPrincipal->mnuAdministrador);
    Pulsa(u"DVmaster"_s);
    Elige(u"Ver"_s);
    ::mdiPrincipal->mnuDiseño->trigger();
    const QString texto = ::frmVista->txtSQL->Text();
    EXPECT_EQ(texto, u"create view Ver as select 1 as a"_s);
    otro->kill();
    ::frmVista->cmdAceptar->click();
    EXPECT_EQ(Avisos().size(), 1);
    ASSERT_TRUE(::frmVista.exists());
    EXPECT_EQ(::frmVista->txtSQL->Text(), texto);
    for (QAction* entrada : {::mdiPrincipal->mnuEliminar, ::mdiPrincipal->mnuVerRegistros}) {
        Elige(u"Ver"_s);
        entrada->trigger();
        EXPECT_GE(Avisos().size(), 1) << entrada->objectName().toStdString();
    }
    Conecta(ServidorDePrueba(), u"sa"_s, ClaveDePrueba);
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    Pulsa(u"DTmaster"_s);
    EXPECT_NE(Elemento(u"sysobjects"_s), nullptr);
}

TEST_F(Objetos, LargeTextsPassWhole)
{
    Prepara(Es);
    constexpr qsizetype megabyte = 1 << 20;
    const QString cuerpo = u"-- año tras año\r\n"_s.repeated(5 * megabyte / 17);
    const QString procedimiento = u"create procedure Enorme as\r\n"_s + cuerpo + u"select 1"_s;
    Ejecuta({u"use Taller"_s, procedimiento, u"use master"_s});
    Manda(u"DPTaller"_s, u"Enorme"_s, ::mdiPrincipal->mnuDiseño);
    EXPECT_TRUE(::frmProcedimiento->txtSQL->Text() == procedimiento);
    ::frmProcedimiento->cmdAceptar->click();
    EXPECT_EQ(Avisos(), QList<Aviso>{});

    const QTemporaryDir carpeta;
    QFile archivo(carpeta.filePath(u"veinte.sql"_s));
    controls::setFileDialogAnswerer([&](bool, const QString&) { return archivo.fileName(); });
    ASSERT_TRUE(archivo.open(QIODevice::WriteOnly));
    const QByteArray linea = "insert t values (1, 'ñ')\r\n";
    for (qsizetype escrito = 0; escrito < 20 * megabyte; escrito += linea.size())
        archivo.write(linea);
    archivo.close();
    ::mdiPrincipal->mnuAbrir->trigger();
    const QString cargado = ::frmAnalizadorConsultas->txtSQL->Text();
    EXPECT_EQ(cargado.size(), archivo.size() / linea.size() * QString::fromUtf8(linea).size());
    EXPECT_TRUE(cargado.endsWith(QString::fromUtf8(linea)));
    controls::setFileDialogAnswerer({});
}

TEST(Scripts, EncodingsAreToldByTheirMarksOrByTheirBytes)
{
    const QString texto = u"select 'ñ€'"_s;
    const QByteArray utf8 = texto.toUtf8();
    EXPECT_EQ(TextoDeBytes(utf8), texto);
    EXPECT_EQ(TextoDeBytes("\xEF\xBB\xBF" + utf8), texto);
    EXPECT_EQ(TextoDeBytes(QByteArray("\xFF\xFE", 2) +
                           QByteArray(reinterpret_cast<const char*>(texto.utf16()), 2 * texto.size())),
              texto);
    EXPECT_EQ(TextoDeBytes("select '\xF1\x80'"), texto);
    EXPECT_EQ(TextoDeBytes("'\x80\x81\x9F\xA0'"), u"'€\u0081Ÿ\u00A0'"_s) << "81 stands for nothing";
    EXPECT_EQ(BytesDeTexto(u"select 1\r\n"_s), "select 1\r\n");
    EXPECT_EQ(BytesDeTexto(u"\u007F"_s), "\x7F");
    EXPECT_EQ(BytesDeTexto(u"\u0080"_s), "\xEF\xBB\xBF\xC2\x80") << "marked, as Latin-1 would read alike";
    EXPECT_EQ(BytesDeTexto(texto), "\xEF\xBB\xBF" + utf8);
}

TEST(Scripts, EveryKindOfLineEndIsReadAsThatOfWindows)
{
    const QTemporaryDir carpeta;
    const std::pair<QByteArray, QString> casos[] = {{"", u""_s},
                                                    {"a", u"a\r\n"_s},
                                                    {"\n", u"\r\n"_s},
                                                    {"a\rb\nc\r\nd\r", u"a\r\nb\r\nc\r\nd\r\n"_s},
                                                    {"a\r\r\n\n", u"a\r\n\r\n\r\n"_s}};
    for (const auto& [bytes, esperado] : casos) {
        QFile archivo(carpeta.filePath(u"lineas.sql"_s));
        ASSERT_TRUE(archivo.open(QIODevice::WriteOnly));
        archivo.write(bytes);
        archivo.close();
        const ScriptLeido leido = LeeScript(basic::InputFile(archivo.fileName()));
        EXPECT_EQ(leido.texto, esperado);
        EXPECT_FALSE(leido.error);
    }
}

TEST_F(Objetos, ScriptsAreLoadedAndSavedUnderTheRememberedName)
{
    ArrancaYConecta(Es);
    const QTemporaryDir carpeta;
    const QString nombre = carpeta.filePath(u"uno.sql"_s);
    QString elegido;
    controls::setFileDialogAnswerer([&](bool, const QString& patron) {
        EXPECT_EQ(patron, u"*.sql"_s);
        return elegido;
    });
    ::mdiPrincipal->mnuAbrir->trigger();
    EXPECT_EQ(Transcripcion(), QString()) << "a cancelled first dialog does nothing";

    QFile archivo(nombre);
    ASSERT_TRUE(archivo.open(QIODevice::WriteOnly));
    archivo.write("select 1\nselect 2");
    archivo.close();
    elegido = nombre;
    ::mdiPrincipal->mnuAbrir->trigger();
    EXPECT_EQ(::frmAnalizadorConsultas->txtSQL->Text(), u"select 1\r\nselect 2\r\n"_s);

    elegido.clear();
    ::frmAnalizadorConsultas->txtSQL->setText(u"otra"_s);
    ::mdiPrincipal->mnuGuardar->trigger();
    ASSERT_TRUE(archivo.open(QIODevice::ReadOnly));
    EXPECT_EQ(archivo.readAll(), "otra\r\n") << "a cancelled dialog goes on with the last name";
    archivo.close();

    elegido = carpeta.filePath(u"no/hay.sql"_s);
    ::mdiPrincipal->mnuAbrir->trigger();
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u" Error Nº:76 (No se encuentra la ruta)."_s, 48, u"Atención."_s}}));
    EXPECT_EQ(::frmAnalizadorConsultas->txtSQL->Text(), u"otra"_s);
    controls::setFileDialogAnswerer({});
}

} // namespace pruebas
