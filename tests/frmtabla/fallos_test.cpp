// Each statement between the opening of a designer and its end fails once: refused, and with the connection
// lost. The form tells it, nothing is half done, and the next save works.
#include "Mesa.h"

#include "browser/frmAdministrador.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "platform/ado/Transcript.h"
#include "platform/basic/RuntimeError.h"
#include "platform/controls/Pointer.h"
#include "support/FaultProxy.h"

#include <QRegularExpression>
#include <QTest>

#include <functional>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {

class FallosDeDiseño : public Mesa
{
protected:
    void SetUp() override
    {
        Mesa::SetUp();
        Prepara(Es);
        Conecta(ServidorPorRed(), u"sa"_s, ClaveDePrueba);
    }
    void TearDown() override
    {
        ado::setStatementObserver({});
        Red().setFault({});
        Mesa::TearDown();
    }

    static support::FaultProxy& Red()
    {
        static support::FaultProxy red(ServidorDePrueba().section(u',', 1).toUShort());
        return red;
    }

    static QString ServidorPorRed() { return u"127.0.0.1,"_s + QString::number(Red().port()); }

    /// A family of tables as new, and the list that shows them.
    void Renueva()
    {
        Ejecuta({u"use master"_s, u"drop database Taller"_s, u"create database Taller"_s, u"use Taller"_s,
                 u"create table padre (p int not null constraint PK_p primary key, v varchar(10) null, s int "
                 u"null "
                 u"constraint DF_padre_s default (1))"_s,
                 u"create index iv on padre (v)"_s,
                 u"create table hija (h int null constraint FK_h references padre (p))"_s, u"use master"_s});
        Pulsa(u"DTTaller"_s);
        Avisos();
    }

    /// A story of one designer: a key column that others hang on, a rename, a new column, an index.
    void Edita(formularios::frmTabla* forma)
    {
        respuesta = controls::Answer::Yes;
        PonCelda(forma->TDBGridTabla, 0, ColCampo::Tipo, u"smallint"_s);
        PonCelda(forma->TDBGridTabla, 1, ColCampo::Nombre, u"otro"_s);
        PonCelda(forma->TDBGridTabla, 3, ColCampo::Nombre, u"nueva"_s);
        Pagina(forma, 1);
        Clic(forma->cmdNuevoIndice);
        Escribe(u"ix"_s);
        Tecla(Qt::Key_Return);
        ClicCelda(forma->TDBGridIndices, 0, ColCampoIndice::Nombre);
        Tecla(Qt::Key_F4);
        Tecla(Qt::Key_Home);
        Tecla(Qt::Key_Return);
        Pagina(forma, 0);
        // The save gives linked columns the type of the current row.
        ClicCelda(forma->TDBGridTabla, 0, ColCampo::Nombre);
    }

    /// Runs the story with `fallo` in place of, or before, statement k. Null when the form has gone; the
    /// number of statements in `cuenta`.
    formularios::frmTabla* Historia(int k, int& cuenta, const std::function<void()>& fallo)
    {
        Renueva();
        cuenta = 0;
        ado::setStatementObserver([&cuenta, k, &fallo](const QString&) {
            if (++cuenta == k)
                fallo();
        });
        auto* forma = Diseña(u"padre"_s);
        m_carga = cuenta;
        if (forma == nullptr) {
            ADD_FAILURE() << "no designer";
        } else {
            Edita(forma);
            if (Cierra(controls::Answer::Yes))
                forma = nullptr;
        }
        ado::setStatementObserver({});
        EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
        return forma;
    }

    /// How often an error box has been shown since the last call.
    int Errores()
    {
        int cuenta = 0;
        for (const Aviso& aviso : Avisos())
            if (aviso.titulo == u"Atención."_s)
                ++cuenta;
        return cuenta;
    }

    /// All that the table had is there, whatever the story came to.
    void NadaPerdido()
    {
        EXPECT_EQ(TransaccionesAbiertas(), 0);
        const QString columnas = Consulta(
            u"select name from Taller..syscolumns where id = object_id('Taller..padre') order by colid"_s);
        static const QRegularExpression todas(u"^p\\|(v|otro)\\|s(\\||$)"_s);
        EXPECT_TRUE(todas.match(columnas).hasMatch()) << columnas.toStdString();
    }

    /// The table opens again and is saved without an error.
    void SeGuardaDeNuevo()
    {
        Pulsa(u"DTTaller"_s);
        auto* forma = Diseña(u"padre"_s);
        ASSERT_NE(forma, nullptr);
        EXPECT_TRUE(Cierra(controls::Answer::Yes));
        EXPECT_EQ(Errores(), 0);
        EXPECT_EQ(TransaccionesAbiertas(), 0);
    }

    /// Statements from one that fails to the next: all would take two minutes, and the saves have theirs each
    /// in the tests of the model. QUERMO_EVERY_STATEMENT=1 takes them all.
    static int Paso() { return qEnvironmentVariableIsSet("QUERMO_EVERY_STATEMENT") ? 1 : 7; }

    int m_carga = 0; ///< statements of the story that belong to the loading
};

TEST_F(FallosDeDiseño, EachStatementRefused)
{
    int sentencias = 0;
    Historia(0, sentencias, [] {});
    ASSERT_EQ(Errores(), 0);
    ASSERT_GT(sentencias, 60);
    const int total = sentencias;
    for (int k = 1; k <= total; k += Paso()) {
        SCOPED_TRACE(k);
        auto* forma = Historia(k, sentencias, [] { basic::raise(50000, u"rechazada"_s); });
        EXPECT_GE(Errores(), 1);
        NadaPerdido();
        // What was loaded in part can be refused again, and is given up then.
        if (forma != nullptr && !Cierra(controls::Answer::Yes)) {
            EXPECT_LE(k, m_carga);
            EXPECT_TRUE(Cierra(controls::Answer::No));
        }
        NadaPerdido();
        Errores();
        SeGuardaDeNuevo();
    }
}

TEST_F(FallosDeDiseño, TheConnectionLostAtEachStatement)
{
    int sentencias = 0;
    ASSERT_EQ(Historia(0, sentencias, [] {}), nullptr);
    const int total = sentencias;
    for (int k = 1; k <= total; k += Paso()) {
        SCOPED_TRACE(k);
        auto* forma = Historia(k, sentencias, [] {
            Red().setFault(
                {.kind = support::Fault::Kind::Close, .direction = support::Fault::Direction::ToServer});
        });
        Red().setFault({});
        EXPECT_GE(Errores(), 1);
        Conecta(ServidorPorRed(), u"sa"_s, ClaveDePrueba);
        NadaPerdido();
        if (forma == nullptr) {
            EXPECT_EQ(Consulta(u"select name from Taller..syscolumns where name = 'nueva'"_s), u"nueva"_s)
                << "only the list's refresh comes behind the save";
        } else if (!Cierra(controls::Answer::Yes)) {
            EXPECT_LE(k, m_carga);
            EXPECT_TRUE(Cierra(controls::Answer::No));
        }
        NadaPerdido();
        Errores();
        SeGuardaDeNuevo();
    }
}

} // namespace pruebas
