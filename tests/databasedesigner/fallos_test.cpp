// Each statement of opening and of accepting fails once: refused, and with the connection lost. The form
// tells it, loses nothing, and the next try works.
#include "Estudio.h"

#include "core/Global.h"
#include "platform/ado/Transcript.h"
#include "platform/basic/RuntimeError.h"
#include "platform/controls/Pointer.h"
#include "support/FaultProxy.h"

#include <QPointer>

#include <functional>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {

class FallosBD : public Estudio
{
protected:
    using Fallo = std::function<void()>;

    void SetUp() override
    {
        Estudio::SetUp();
        Prepara(Es);
        Reconecta();
    }
    void TearDown() override
    {
        ado::setStatementObserver({});
        Red().setFault({});
        Estudio::TearDown();
    }

    static support::FaultProxy& Red()
    {
        static support::FaultProxy red(ServidorDePrueba().section(u',', 1).toUShort());
        return red;
    }
    void Reconecta()
    {
        Red().setFault({});
        Conecta(u"127.0.0.1,"_s + QString::number(Red().port()), u"sa"_s, ClaveDePrueba);
    }
    static void Rechaza() { basic::raise(50000, u"rechazada"_s); }
    static void Pierde()
    {
        Red().setFault(
            {.kind = support::Fault::Kind::Close, .direction = support::Fault::Direction::ToServer});
    }

    /// The database as new, its properties open with nothing wrong.
    formularios::frmPropiedadesBD* Renueva()
    {
        Ejecuta({u"use master"_s, u"drop database Obra"_s, CreaObra()});
        auto* forma = Propiedades(u"Obra"_s);
        Avisos();
        return forma;
    }

    /// A group, a file in it, a larger file and a second log.
    void Edita(formularios::frmPropiedadesBD* forma)
    {
        mano::ClicPestaña(forma->sstBaseDatos, Pagina::Grupos);
        mano::PonCelda(forma->TDBGridGrupos, 1, ColGrupo::Nombre, u"SEC"_s);
        mano::ClicPestaña(forma->sstBaseDatos, Pagina::Archivos);
        auto* archivos = forma->TDBGridArchivos;
        mano::PonCelda(archivos, 0, ColArchivo::Cantidad, u"50"_s); // above the size, which is sent then
        mano::PonCelda(archivos, 0, ColArchivo::Tamaño, u"40"_s);
        mano::PonCelda(archivos, 1, ColArchivo::Nombre, u"dos"_s);
        mano::Escribe(Carpeta());
        mano::Tecla(Qt::Key_Return);
        mano::PonCelda(archivos, 1, ColArchivo::Grupo, u"SEC"_s);
        mano::ClicPestaña(forma->sstBaseDatos, Pagina::Transacciones);
        mano::PonCelda(forma->TDBGridTransacciones, 1, ColArchivo::Nombre, u"log2"_s);
        mano::Escribe(Carpeta());
        mano::Tecla(Qt::Key_Return);
    }

    /// Runs something with `fallo` in place of, or before, its statement number k; how many there were.
    static int Falla(int k, const Fallo& fallo, const std::function<void()>& algo)
    {
        int cuenta = 0;
        ado::setStatementObserver([&](const QString&) {
            if (++cuenta == k)
                fallo();
        });
        algo();
        ado::setStatementObserver({});
        return cuenta;
    }

    void CadaSentenciaAlAceptar(const Fallo& fallo)
    {
        auto* forma = Renueva();
        Edita(forma);
        const int sentencias = Falla(0, fallo, [&] { EXPECT_TRUE(Acepta(forma)); });
        ASSERT_EQ(Textos(), QStringList());
        const QString despues = Ficheros(u"Obra"_s);
        ASSERT_GT(sentencias, 25);
        for (int k = 1; k <= sentencias; ++k) {
            SCOPED_TRACE(k);
            forma = Renueva();
            Edita(forma);
            bool cerrada = false;
            Falla(k, fallo, [&] { cerrada = Acepta(forma); });
            EXPECT_FALSE(Avisos().isEmpty());
            EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
            Reconecta();
            Avisos();
            // What was typed is there for the next try; after a refused option the form has gone.
            EXPECT_TRUE(cerrada || forma->Datos.ArchivosBD.at(1, ColArchivo::Nombre) == u"dos"_s);
            EXPECT_TRUE(Acepta(cerrada ? Propiedades(u"Obra"_s) : forma));
            EXPECT_EQ(Textos(), QStringList());
            EXPECT_EQ(Ficheros(u"Obra"_s), despues);
        }
    }

    void CadaSentenciaAlAbrir(const Fallo& fallo)
    {
        auto* forma = Renueva();
        const QString antes = Ficheros(u"Obra"_s);
        forma->Unload();
        const int sentencias = Falla(0, fallo, [&] { forma = Propiedades(u"Obra"_s); });
        for (int k = 1; k <= sentencias; ++k) {
            SCOPED_TRACE(k);
            forma->Unload();
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
            Falla(k, fallo, [&] { forma = Propiedades(u"Obra"_s); });
            EXPECT_FALSE(Avisos().isEmpty());
            EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
            Reconecta();
            Avisos();
            const QPointer<controls::Form> abierta(forma);
            Acepta(forma); // whatever could be loaded
            EXPECT_EQ(Ficheros(u"Obra"_s), antes);
            EXPECT_EQ(Consulta(u"select groupname from Obra..sysfilegroups"_s), u"PRIMARY"_s);
            Avisos();
            if (!abierta.isNull())
                mano::Clic(forma->cmdCancelar);
            forma = Propiedades(u"Obra"_s);
            EXPECT_EQ(Textos(), QStringList());
        }
    }
};

TEST_F(FallosBD, EachStatementOfARemovalRefusedOrLost)
{
    const QString archivo =
        u"alter database Obra add file (name = extra, filename = '%1extra.ndf', size = 2MB)"_s.arg(Carpeta());
    const auto abre = [this, &archivo] {
        Ejecuta({u"use master"_s, u"drop database Obra"_s, CreaObra(), archivo});
        auto* forma = Propiedades(u"Obra"_s);
        mano::ClicPestaña(forma->sstBaseDatos, Pagina::Archivos);
        mano::ClicCelda(forma->TDBGridArchivos, 1, ColArchivo::Nombre);
        EXPECT_EQ(Textos(), QStringList());
        return forma;
    };
    for (const Fallo& fallo : {Fallo(Rechaza), Fallo(Pierde)}) {
        auto* forma = abre();
        const int sentencias = Falla(0, fallo, [&] { mano::Clic(forma->cmdEliminarFilaArchivos); });
        ASSERT_GE(sentencias, 4);
        forma->Unload();
        for (int k = 1; k <= sentencias; ++k) {
            SCOPED_TRACE(k);
            forma = abre();
            const QPointer<controls::Form> abierta(forma);
            Falla(k, fallo, [&] { mano::Clic(forma->cmdEliminarFilaArchivos); });
            EXPECT_FALSE(Avisos().isEmpty());
            EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
            Reconecta();
            EXPECT_EQ(Ficheros(u"Obra"_s).contains(u"extra"_s), k == 1);
            // Whatever could be read again: accepting it takes nothing away and brings nothing back.
            Acepta(forma);
            Avisos();
            EXPECT_EQ(Ficheros(u"Obra"_s).contains(u"extra"_s), k == 1);
            if (!abierta.isNull())
                forma->Unload();
        }
    }
}

TEST_F(FallosBD, EachStatementOfARightRefusedOrLost)
{
    Ejecuta(
        {u"if not exists (select 1 from master.dbo.syslogins where name = 'ana') exec sp_addlogin 'ana', 'x'"_s,
         u"use Obra"_s, u"exec sp_grantdbaccess 'ana', 'ana'"_s, u"use master"_s});
    const QString derechos = u"select str(action,3)+str(protecttype,4) from Obra..sysprotects where uid = "
                             u"(select uid from Obra..sysusers where name = 'ana') and action = 198"_s;
    for (const Fallo& fallo : {Fallo(Rechaza), Fallo(Pierde)}) {
        for (int k = 1; k <= 2; ++k) {
            SCOPED_TRACE(k);
            auto* forma = Propiedades(u"Obra"_s);
            const int fila = forma->Datos.PermisosBD.at(0, ColPermiso::Usuario) == u"ana"_s ? 0 : 1;
            mano::ClicPestaña(forma->sstBaseDatos, Pagina::Permisos);
            const int sentencias =
                Falla(k, fallo, [&] { mano::ClicCelda(forma->TDBGridPermisos, fila, 2); }); // CREATE TABLE
            EXPECT_EQ(sentencias, k);
            EXPECT_EQ(Avisos().size(), 1);
            Reconecta();
            EXPECT_EQ(Consulta(derechos), QString());
            // The cell goes on from what it shows, round to what the server has.
            EXPECT_EQ(forma->Datos.PermisosBD.at(fila, 2), u"PE"_s);
            forma->SetFocus();
            mano::ClicCelda(forma->TDBGridPermisos, fila, 2);
            EXPECT_EQ(Consulta(derechos), u"198 206"_s);
            mano::ClicCelda(forma->TDBGridPermisos, fila, 2);
            EXPECT_EQ(Consulta(derechos), QString());
            EXPECT_EQ(Textos(), QStringList());
            mano::Clic(forma->cmdCancelar);
            QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        }
    }
}

TEST_F(FallosBD, EachStatementOfAnAcceptRefused)
{
    CadaSentenciaAlAceptar(Rechaza);
}

TEST_F(FallosBD, TheConnectionLostAtEachStatementOfAnAccept)
{
    CadaSentenciaAlAceptar(Pierde);
}

TEST_F(FallosBD, EachStatementOfOpeningRefused)
{
    CadaSentenciaAlAbrir(Rechaza);
}

TEST_F(FallosBD, TheConnectionLostAtEachStatementOfOpening)
{
    CadaSentenciaAlAbrir(Pierde);
}

TEST_F(FallosBD, ARefusedOrLostCreationLeavesTheFormAsItWas)
{
    for (const Fallo& fallo : {Fallo(Rechaza), Fallo(Pierde)}) {
        BaseDatosActual.clear();
        auto* forma = Nueva();
        Nombra(forma, u"Casa"_s);
        mano::ClicPestaña(forma->sstBaseDatos, Pagina::Archivos);
        mano::PonCelda(forma->TDBGridArchivos, 0, ColArchivo::Nombre, u"casa"_s);
        mano::Escribe(Carpeta());
        mano::Tecla(Qt::Key_Return);
        mano::Escribe(u"2"_s); // what the model needs
        mano::Tecla(Qt::Key_Return);
        for (const int k : {1, 2}) {
            Falla(k, fallo, [&] { EXPECT_FALSE(Acepta(forma)); });
            EXPECT_EQ(Avisos().size(), 1);
            EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
            Reconecta();
            forma->SetFocus();
        }
        EXPECT_TRUE(Acepta(forma));
        EXPECT_EQ(Textos(), QStringList());
        Ejecuta({u"drop database Casa"_s});
    }
}

} // namespace pruebas
