// Backups and restores by hand, and what arrives at the server, whose files really come back.
#include "Consola.h"
#include "Mano.h"

#include "backup/frmCopiaSeguridad.h"
#include "backup/frmRestaurarCopia.h"
#include "browser/frmAdministrador.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "platform/ado/Transcript.h"
#include "platform/basic/RuntimeError.h"
#include "platform/controls/FileLists.h"
#include "platform/controls/Pointer.h"
#include "support/FaultProxy.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

using namespace Qt::Literals::StringLiterals;
using namespace pruebas::mano;

namespace pruebas {

class Copias : public Consola
{
protected:
    void TearDown() override
    {
        ado::setStatementObserver({});
        EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
        if (ConexionSQL.State() != 0)
            Ejecuta({u"use master"_s});
        Consola::TearDown();
    }

    void Prepara(int idioma)
    {
        ArrancaYConecta(idioma);
        ASSERT_TRUE(m_carpeta.mkpath(u"."_s));
        Ejecuta({u"use master"_s, u"if db_id('Obra') is not null drop database Obra"_s,
                 u"create database Obra"_s, u"alter database Obra set recovery full"_s,
                 u"create table Obra..t (a int)"_s, u"insert Obra..t values (7)"_s});
        Abre(::mdiPrincipal->mnuAdministrador);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&*::mdiPrincipal));
        LlegadoAlServidor();
    }
    /// From the tree's menu on the database.
    void Manda(QAction* entrada, const QString& base = u"Obra"_s)
    {
        ::frmAdministrador->SetFocus();
        auto* arbol = ::frmAdministrador->trvBD;
        arbol->EnsureVisible(arbol->Find(u"BD"_s + base));
        Clic(arbol->viewport(), arbol->itemRect(arbol->Find(u"BD"_s + base)).center(), Qt::RightButton);
        ClicEntrada(::mdiPrincipal->mnuBaseDatos, entrada);
    }
    [[nodiscard]] QString Ruta(const QString& nombre) const
    {
        return controls::shownPath(m_carpeta.filePath(nombre));
    }
    void Copia(const QString& ruta, QRadioButton* tipo = nullptr)
    {
        Manda(::mdiPrincipal->mnuCopiaSeguridad);
        if (tipo != nullptr)
            Clic(tipo);
        Clic(::frmCopiaSeguridad->txtDestino);
        Escribe(ruta);
        Clic(::frmCopiaSeguridad->cmdAceptar);
    }
    /// Goes to the test's folder and chooses a file in it.
    void ElijeArchivo(const QString& nombre)
    {
        ::frmRestaurarCopia->DirUbicacion->setPath(Ruta(QString()));
        auto* lista = ::frmRestaurarCopia->FileUbicacion;
        const auto hallados = lista->findItems(nombre, Qt::MatchExactly);
        ASSERT_EQ(hallados.size(), 1) << nombre.toStdString();
        Clic(lista->viewport(), lista->visualItemRect(hallados[0]).center());
    }

    QTemporaryDir m_raiz;
    QDir m_carpeta{m_raiz.path() + u"/con hueco's"_s};
};

TEST_F(Copias, ABackupIsTakenVerifiedAndRestoredElsewhere)
{
    Prepara(Es);
    Manda(::mdiPrincipal->mnuCopiaSeguridad);
    auto* copia = &*::frmCopiaSeguridad;
    EXPECT_EQ(copia->Caption(), u"Restaurar copia seguridad"_s);
    EXPECT_EQ(copia->cboBD->Text(), u"Obra"_s);
    EXPECT_EQ(copia->txtNombreCopia->Text(), u"CopiaObra"_s);
    EXPECT_TRUE(copia->optRegistro->isEnabled());
    QTemporaryDir sencilla;
    const QString archivo = controls::shownPath(sencilla.filePath(u"obra.bak"_s));
    Clic(copia->txtDestino);
    Escribe(archivo);
    Clic(copia->chkComprobar);
    Clic(copia->cmdAceptar);
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u"Copia y verificación realizada con exito."_s, 48, u"Quermo"_s}}));
    EXPECT_FALSE(::frmCopiaSeguridad.exists());
    EXPECT_EQ(Lineas(LlegadoAlServidor()),
              Lineas({u"Select name from master.dbo.sysdatabases order by name"_s,
                      u"select DATABASEPROPERTYEX ('Obra','Recovery')"_s,
                      u"select * from master.dbo.sysdevices where name = 'CopiaObra'"_s,
                      u"EXEC sp_addumpdevice 'disk', 'CopiaObra',   '"_s + archivo + u"'"_s,
                      u"BACKUP DATABASE Obra TO CopiaObra"_s, u"RESTORE VERIFYONLY  FROM CopiaObra"_s}));

    Ejecuta({u"update Obra..t set a = 8"_s});
    LlegadoAlServidor();
    Manda(::mdiPrincipal->mnuRestaurarCopia);
    auto* forma = &*::frmRestaurarCopia;
    EXPECT_FALSE(forma->cmdAceptar->isEnabled());
    Clic(forma->cmdCancelar);
    EXPECT_FALSE(::frmRestaurarCopia.exists());
    LlegadoAlServidor();
    Manda(::mdiPrincipal->mnuRestaurarCopia);
    forma = &*::frmRestaurarCopia;
    forma->DirUbicacion->setPath(controls::shownPath(sencilla.path()));
    Clic(forma->FileUbicacion->viewport(),
         forma->FileUbicacion->visualItemRect(forma->FileUbicacion->topLevelItem(0)).center());
    EXPECT_TRUE(forma->cmdAceptar->isEnabled());
    const QString datos = controls::shownPath(sencilla.filePath(u"otra.mdf"_s));
    const QString registro = controls::shownPath(sencilla.filePath(u"otro.ldf"_s));
    ClicCelda(forma->TDBGridFicheros, 0, 0);
    Tecla(Qt::Key_Return); // from the name on to its path
    Escribe(datos);
    Tecla(Qt::Key_Return);
    EXPECT_EQ(forma->TDBGridFicheros->Bookmark(), 1);
    Escribe(registro);
    Tecla(Qt::Key_Return);
    EXPECT_EQ(forma->TDBGridFicheros->Bookmark(), 0);
    Clic(forma->cmdAceptar);
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u"Restauración realizada con exito."_s, 48, u"Quermo"_s}}));
    EXPECT_EQ(Lineas(LlegadoAlServidor()),
              Lineas({u"Select name from master.dbo.sysdatabases order by name"_s,
                      u"select * from master.dbo.sysdevices where name = 'obra.bak'"_s,
                      u"RESTORE VERIFYONLY FROM DISK = '"_s + archivo + u"'"_s,
                      u" RESTORE FILELISTONLY FROM DISK = '"_s + archivo + u"'"_s, u"use master"_s,
                      u"RESTORE DATABASE Obra FROM  DISK ='"_s + archivo + u"' WITH MOVE 'Obra' TO '"_s +
                          datos + u"', MOVE 'Obra_log' TO '"_s + registro + u"'"_s}));
    EXPECT_EQ(Consulta(u"select a from Obra..t"_s), u"7"_s);
    EXPECT_TRUE(QFile::exists(sencilla.filePath(u"otra.mdf"_s)));
}

TEST_F(Copias, KindsFollowTheRecoveryModelAndTheServersRefusalStays)
{
    Prepara(En);
    Ejecuta({u"alter database Obra set recovery simple"_s});
    Manda(::mdiPrincipal->mnuCopiaSeguridad);
    auto* copia = &*::frmCopiaSeguridad;
    EXPECT_EQ(copia->Caption(), u"Restore backup"_s);
    EXPECT_FALSE(copia->optRegistro->isEnabled());
    Clic(copia->optDiferencial);
    Clic(copia->txtDestino);
    Escribe(controls::shownPath(QDir::tempPath() + u"/d.bak"_s));
    Clic(copia->cmdAceptar);
    const QString aviso = Avisos().value(0).texto;
    EXPECT_TRUE(aviso.startsWith(u" Error Nº:3035 ("_s)) << aviso.toStdString();
    ASSERT_TRUE(::frmCopiaSeguridad.exists()) << "the fields stay for another try";
    // The device of the failed try gives way to the next.
    Clic(copia->optCompleta);
    Clic(copia->cmdAceptar);
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u"Copy realized successfully"_s, 48, u"Quermo"_s}}));
    EXPECT_TRUE(LlegadoAlServidor().contains(u"EXEC sp_dropdevice 'CopiaObra'"_s));
    QFile::remove(QDir::tempPath() + u"/d.bak"_s);
}

TEST_F(Copias, AFileThatIsNoBackupOrVanishesLeavesTheFormAsItWas)
{
    Prepara(Es);
    QFile falsa(m_carpeta.filePath(u"falsa.bak"_s));
    ASSERT_TRUE(falsa.open(QIODevice::WriteOnly) && falsa.write("no es una copia") > 0);
    falsa.close();
    Manda(::mdiPrincipal->mnuRestaurarCopia);
    ElijeArchivo(u"falsa.bak"_s);
    EXPECT_EQ(Avisos().size(), 1) << "the quote in the folder's name ends the text";
    EXPECT_FALSE(::frmRestaurarCopia->cmdAceptar->isEnabled());
    ::frmRestaurarCopia->Unload();

    QTemporaryDir sencilla;
    Ejecuta({u"BACKUP DATABASE Obra TO DISK = '"_s + controls::shownPath(sencilla.filePath(u"b.bak"_s)) +
             u"'"_s});
    Manda(::mdiPrincipal->mnuRestaurarCopia);
    auto* forma = &*::frmRestaurarCopia;
    forma->DirUbicacion->setPath(controls::shownPath(sencilla.path()));
    Clic(forma->FileUbicacion->viewport(),
         forma->FileUbicacion->visualItemRect(forma->FileUbicacion->topLevelItem(0)).center());
    ASSERT_TRUE(forma->cmdAceptar->isEnabled());
    QFile::remove(sencilla.filePath(u"b.bak"_s));
    Avisos();
    Clic(forma->cmdAceptar);
    EXPECT_TRUE(Avisos().value(0).texto.startsWith(u" Error Nº:3201 ("_s));
    EXPECT_TRUE(::frmRestaurarCopia.exists());
    EXPECT_EQ(Consulta(u"select a from Obra..t"_s), u"7"_s);
}

TEST_F(Copias, AConnectionLostInABackupOrARestoreLeavesTheOldOrTheNew)
{
    Prepara(Es);
    support::FaultProxy red(ServidorDePrueba().section(u',', 1).toUShort());
    const auto reconecta = [&] {
        red.setFault({});
        Conecta(u"127.0.0.1,"_s + QString::number(red.port()), u"sa"_s, ClaveDePrueba);
        Avisos();
    };
    /// Runs something whose statement number k does not reach the server, or whose answer does not come back.
    const auto pierde = [&](int k, support::Fault::Direction hacia, const std::function<void()>& algo) {
        ado::setStatementObserver([&, n = 0](const QString&) mutable {
            if (++n == k)
                red.setFault({.kind = support::Fault::Kind::Close, .direction = hacia});
        });
        algo();
        ado::setStatementObserver({});
        EXPECT_FALSE(Avisos().isEmpty());
        EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
        reconecta();
    };
    const QTemporaryDir sencilla;
    const QString archivo = controls::shownPath(sencilla.filePath(u"obra.bak"_s));
    reconecta();
    using Direction = support::Fault::Direction;
    for (const Direction hacia : {Direction::ToServer, Direction::ToClient})
        for (int k = 1; k <= 4; ++k) {
            SCOPED_TRACE(k);
            Manda(::mdiPrincipal->mnuCopiaSeguridad);
            Clic(::frmCopiaSeguridad->txtDestino);
            Escribe(archivo);
            pierde(k, hacia, [] { Clic(::frmCopiaSeguridad->cmdAceptar); });
            ASSERT_TRUE(::frmCopiaSeguridad.exists());
            Clic(::frmCopiaSeguridad->cmdAceptar);
            EXPECT_EQ(Avisos().size(), 1);
            EXPECT_FALSE(::frmCopiaSeguridad.exists());
        }
    Ejecuta({u"restore verifyonly from disk = '"_s + archivo + u"'"_s, u"update Obra..t set a = 8"_s});
    for (const Direction hacia : {Direction::ToServer, Direction::ToClient}) {
        Ejecuta({u"update Obra..t set a = 8"_s, u"use master"_s});
        Manda(::mdiPrincipal->mnuRestaurarCopia);
        ::frmRestaurarCopia->DirUbicacion->setPath(controls::shownPath(sencilla.path()));
        auto* lista = ::frmRestaurarCopia->FileUbicacion;
        Clic(lista->viewport(), lista->visualItemRect(lista->topLevelItem(0)).center());
        constexpr int Restaura = 2; // behind the change to master
        pierde(Restaura, hacia, [] { Clic(::frmRestaurarCopia->cmdAceptar); });
        const QString queda = Consulta(u"select a from Obra..t"_s);
        EXPECT_TRUE(queda == u"8"_s || (queda == u"7"_s && hacia == Direction::ToClient))
            << queda.toStdString();
        ASSERT_TRUE(::frmRestaurarCopia.exists());
        Clic(::frmRestaurarCopia->cmdAceptar);
        EXPECT_EQ(Avisos(), (QList<Aviso>{{u"Restauración realizada con exito."_s, 48, u"Quermo"_s}}));
        EXPECT_EQ(Consulta(u"select a from Obra..t"_s), u"7"_s);
    }
    Conecta(ServidorDePrueba(), u"sa"_s, ClaveDePrueba); // the way through the proxy ends here
}

TEST_F(Copias, EachStatementRefusedOnceLeavesTheFormOpenAndTheNextTryWorks)
{
    Prepara(Es);
    QTemporaryDir sencilla;
    const QString archivo = controls::shownPath(sencilla.filePath(u"obra.bak"_s));
    constexpr int Sentencias = 5; // look for the device, drop it, add it, back up, verify
    for (int k = 1; k <= Sentencias; ++k) {
        SCOPED_TRACE(k);
        Manda(::mdiPrincipal->mnuCopiaSeguridad);
        auto* copia = &*::frmCopiaSeguridad;
        Clic(copia->txtDestino);
        Escribe(archivo);
        Clic(copia->chkComprobar);
        if (k == 1 &&
            Consulta(u"select name from master.dbo.sysdevices where name = 'CopiaObra'"_s).isEmpty())
            Ejecuta({u"EXEC sp_addumpdevice 'disk', 'CopiaObra', '"_s + archivo + u"'"_s});
        ado::setStatementObserver([k, n = 0](const QString&) mutable {
            if (++n == k)
                basic::raise(50000, u"rechazada"_s);
        });
        Clic(copia->cmdAceptar);
        ado::setStatementObserver({});
        EXPECT_EQ(Avisos().value(0).texto, u" Error Nº:50000 (rechazada)."_s);
        if (::frmCopiaSeguridad.exists()) {
            Clic(copia->cmdAceptar);
            EXPECT_EQ(Avisos(),
                      (QList<Aviso>{{u"Copia y verificación realizada con exito."_s, 48, u"Quermo"_s}}));
        }
        EXPECT_FALSE(::frmCopiaSeguridad.exists());
        EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
    }
}

} // namespace pruebas
