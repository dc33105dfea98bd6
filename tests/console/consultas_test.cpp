// The query window: its statements, what it shows, and its faults.
#include "Consola.h"

#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "query/frmAnalizadorConsultas.h"
#include "support/PracticeServer.h"

#include <QMenu>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {
class Consultas : public Consola
{
protected:
    void Prepara(int idioma)
    {
        ArrancaYConecta(idioma);
        Abre(::mdiPrincipal->mnuAnalizadorConsultas);
        apertura = Transcripcion();
    }

    QString apertura;
};

TEST_F(Consultas, OpensOnMasterAndMovesTheSessionWithTheCombo)
{
    Prepara(Es);
    EXPECT_EQ(apertura,
              Lineas({u"Select name from master.dbo.sysdatabases order by name"_s, u"Use master"_s}));
    EXPECT_EQ(forma()->cboBD->Text(), u"master"_s);
    EXPECT_EQ(forma()->Caption(), u"Analizado Consultas"_s);
    EXPECT_EQ(forma()->cmdEjecuta->text(), u"(F5) &Ejecutar"_s);
    EXPECT_TRUE(::mdiPrincipal->mnuConsulta->menuAction()->isVisible());

    forma()->cboBD->setListIndex(forma()->cboBD->ListIndex() + 1);
    EXPECT_EQ(Transcripcion(), Lineas({u"Use model"_s}));
    Corre(u"select db_name()"_s);
    EXPECT_EQ(Celda(0, 0), u"model"_s);

    forma()->Unload();
    EXPECT_TRUE(::mdiPrincipal->mnuConsulta->menuAction()->isVisible()) << "the menu stays on";
    Abre(::mdiPrincipal->mnuAnalizadorConsultas);
    EXPECT_EQ(forma()->cboBD->Text(), u"master"_s);
}

TEST_F(Consultas, RunsTheTextAsItStandsOrTheSelectionByItself)
{
    Prepara(En);
    const QString texto = u"  select 'a{b}?' as x\r\n-- ñ €\r\n"_s;
    EXPECT_EQ(Corre(texto), Lineas({texto}));
    EXPECT_EQ(Celda(0, 0), u"a{b}?"_s);

    forma()->txtSQL->setText(u"select 1 as a, select"_s);
    forma()->txtSQL->setSelection(0, 0, 0, 13);
    forma()->cmdEjecuta->click();
    EXPECT_EQ(Transcripcion(), Lineas({u"select 1 as a"_s}));

    forma()->txtSQL->setText(u"select 2   "_s);
    forma()->txtSQL->setSelection(0, 8, 0, 11);
    forma()->Ejecuta();
    EXPECT_EQ(Transcripcion(), Lineas({u"select 2   "_s})) << "a blank selection falls through";

    EXPECT_EQ(Corre(u" \r\n\t "_s), QString());
    EXPECT_EQ(Avisos(), QList<Aviso>{});
}

TEST_F(Consultas, ARefusedStatementShowsTheErrorAndKeepsTheGrid)
{
    Prepara(Es);
    Corre(u"select 41 + 1"_s);
    Corre(u"select * from nada"_s);
    EXPECT_EQ(Avisos(),
              (QList<Aviso>{{u" Error Nº:208 (Invalid object name 'nada'.)."_s, 48, u"Atención."_s}}));
    EXPECT_EQ(Celda(0, 0), u"42"_s);
    Corre(u"GO\r\nselect 2"_s);
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u" Error Nº:2812 (Could not find stored procedure 'GO'.)."_s, 48,
                                       u"Atención."_s}}));
    Corre(u"select 43"_s);
    EXPECT_EQ(Celda(0, 0), u"43"_s);
}

TEST_F(Consultas, TellsNullFromAnEmptyText)
{
    Prepara(Es);
    Corre(u"select null as n, '' as v, 0 as c"_s);
    EXPECT_EQ(Celda(0, 1), QString());
    EXPECT_NE(Celda(0, 0), Celda(0, 1));
    EXPECT_EQ(Celda(0, 2), u"0"_s);
}

TEST_F(Consultas, ABatchShowsEachResultAndWhatStandsBesideThem)
{
    Prepara(En);
    Corre(u"select 1 as a print 'entre' select 'dos' as b"_s);
    ASSERT_EQ(forma()->cboResultados->ListCount(), 2);
    EXPECT_EQ(Celda(0, 0), u"1"_s);
    forma()->cboResultados->setListIndex(1);
    EXPECT_EQ(Celda(0, 0), u"dos"_s);
    EXPECT_TRUE(forma()->txtMensajes->toPlainText().contains(u"entre"_s));

    Corre(u"select 5 as a select 1/0 as b"_s);
    EXPECT_EQ(Avisos(),
              (QList<Aviso>{{u" Error Nº:8134 (Divide by zero error encountered.)."_s, 48, u"Atención."_s}}));
    EXPECT_EQ(Celda(0, 0), u"5"_s);
}

TEST_F(Consultas, EveryMessageReachesThePaneInItsPlace)
{
    ArrancaYConecta(Es);
    Abre(::mdiPrincipal->mnuAnalizadorConsultas);
    auto* panel = forma()->txtMensajes;
    Corre(u"print 'solo'"_s);
    EXPECT_TRUE(panel->isVisible());
    EXPECT_EQ(panel->toPlainText(), u"solo"_s);
    Corre(u"print 'a' select 1 print 'b' raiserror('mal', 16, 1) print 'c' select 2 print 'd'"_s);
    EXPECT_EQ(panel->toPlainText(), u"a\nb\nNº 50000: mal\nc\nd"_s);
    Avisos();
    Corre(u"print 'antes' raiserror('primero', 16, 1) print 'detrás'"_s);
    EXPECT_EQ(panel->toPlainText(), u"antes\ndetrás"_s) << "the box tells the error";
    EXPECT_EQ(Avisos().size(), 1);
    Corre(u"select 1"_s);
    EXPECT_FALSE(panel->isVisible());
}

TEST_F(Consultas, ATextWithBracesKeepsTheSessionsScope)
{
    ArrancaYConecta(Es);
    Abre(::mdiPrincipal->mnuAnalizadorConsultas);
    const QString texto =
        u"use tempdb create table #x (d datetime) insert #x values ({d '2020-01-02'}) /* /* */ ? */"_s;
    Corre(texto);
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    EXPECT_EQ(UltimaEnElServidor(u"use tempdb"_s), texto);
    Corre(u"select convert(char(8), d, 112), db_name() from #x"_s);
    EXPECT_EQ(Celda(0, 0), u"20200102"_s);
    EXPECT_EQ(Celda(0, 1), u"tempdb"_s);
}

TEST_F(Consultas, AStatementWithoutRowsSaysWhatHappened)
{
    Prepara(Es);
    Corre(u"create table #t (a int) insert #t values (1) insert #t values (2)"_s);
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    Corre(u"update #t set a = a + 1"_s);
    EXPECT_EQ(forma()->lblResultado->text(), u"2 filas afectadas."_s);
    Corre(u"select a from #t order by a"_s);
    EXPECT_EQ(forma()->lblResultado->text(), u"2 filas"_s);
    EXPECT_EQ(Celda(1, 0), u"3"_s);
}

TEST_F(Consultas, ALostServerIsAnErrorAndTheNextConnectWorks)
{
    auto otro = support::PracticeServer::start();
    Arranca(Es);
    Conecta(u"127.0.0.1,"_s + QString::number(otro->port()), u"sa"_s, ClaveDePrueba);
    Abre(::mdiPrincipal->mnuAnalizadorConsultas);
    otro->stop();
    Corre(u"select 1"_s);
    const auto avisos = Avisos();
    ASSERT_EQ(avisos.size(), 1);
    EXPECT_TRUE(avisos[0].texto.startsWith(u" Error Nº:-2147467259 ("_s)) << avisos[0].texto.toStdString();
    Conecta(ServidorDePrueba(), u"sa"_s, ClaveDePrueba);
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    Corre(u"select 44"_s);
    EXPECT_EQ(Celda(0, 0), u"44"_s);
}

} // namespace pruebas
