// The query window: its statements, what it shows, and its faults.
#include "Consola.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "platform/basic/RuntimeError.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/Pointer.h"
#include "query/frmAnalizadorConsultas.h"
#include "support/PracticeServer.h"

#include <QMenu>
#include <QTest>
#include <QTimer>

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

    const std::pair<QString, QString> casos[] = {
        {u"update #t set a = 9 where a = 3"_s, u"1 fila afectada."_s},
        {u"update #t set a = 9 where a = 3"_s, u"0 filas afectadas."_s},
        {u"set nocount on update #t set a = 8 set nocount off"_s, u"Instrucción ejecutada."_s},
        {u"create table #u (a int)"_s, u"Instrucción ejecutada."_s}};
    for (const auto& [texto, esperado] : casos) {
        Corre(texto);
        EXPECT_EQ(forma()->GridSQL->message(), esperado) << texto.toStdString();
        EXPECT_EQ(forma()->lblResultado->text(), esperado) << texto.toStdString();
    }
    Corre(u"update #t set a = 1 where a = 0 update #t set a = 2"_s);
    EXPECT_EQ(forma()->GridSQL->message(), u"0 filas afectadas.\n2 filas afectadas."_s);
    EXPECT_EQ(forma()->lblResultado->text(), u"2 filas afectadas."_s);
    Corre(u"select top 1 a from #t"_s);
    EXPECT_EQ(forma()->GridSQL->message(), QString());
    EXPECT_EQ(forma()->lblResultado->text(), u"1 fila"_s);
    EXPECT_FALSE(forma()->cboResultados->isVisibleTo(forma())) << "a single set needs no choice";
}

TEST_F(Consultas, ABatchThatGoesOnFailingIsReadUpToAHundredErrors)
{
    Prepara(En);
    Corre(
        u"select 1 declare @i int set @i = 0 while @i < 150 begin raiserror('mal', 16, 1) set @i = @i + 1 end"_s);
    EXPECT_EQ(Avisos().size(), 1);
    EXPECT_EQ(forma()->txtMensajes->toPlainText().count(u"mal"_s), 100);
    EXPECT_EQ(Celda(0, 0), u"1"_s);
}

TEST_F(Consultas, AnExistingRecordIsAnnouncedWithItsWholeCode)
{
    ArrancaYConecta(Es);
    PrefijoBD = u"master.dbo."_s;
    const Condicion nombre{u"name"_s, u"sysobjects"_s, TipoCondicion::Texto};
    const Condicion tipo{u"xtype"_s, u"S"_s, TipoCondicion::Texto};
    const Condicion dueño{u"uid"_s, u"1"_s, TipoCondicion::Numerico};
    const auto existe = [](bool avisa, const Condicion& primera, std::initializer_list<Condicion> otras) {
        return ExisteRegistro(ConexionSQL, avisa, u"sysobjects"_s, primera, otras);
    };
    const auto aviso = [](const QString& codigo) {
        return QList<Aviso>{
            {u"El codigo "_s + codigo + u" ya existe en la tabla sysobjects"_s, 48, u"Atención"_s}};
    };
    EXPECT_TRUE(existe(true, nombre, {}));
    EXPECT_EQ(Avisos(), aviso(u"sysobjects"_s));
    EXPECT_TRUE(existe(true, nombre, {tipo}));
    EXPECT_EQ(Avisos(), aviso(u"sysobjects/S"_s));
    EXPECT_TRUE(existe(true, nombre, {tipo, dueño}));
    EXPECT_EQ(Avisos(), aviso(u"sysobjects/S/1"_s));
    EXPECT_TRUE(existe(true, nombre, {tipo, dueño, tipo}));
    EXPECT_EQ(Avisos(), aviso(u"sysobjects/S/1"_s)) << "three parts are shown of more";
    EXPECT_TRUE(existe(false, nombre, {tipo}));
    EXPECT_FALSE(existe(true, nombre, {{u"xtype"_s, u"no"_s, TipoCondicion::Texto}}));
    Transcripcion();
    EXPECT_FALSE(existe(true, {u"name"_s, QString(), TipoCondicion::Texto}, {}));
    EXPECT_EQ(Transcripcion(), QString());
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    EXPECT_TRUE(existe(true, {u"nada"_s, u"1"_s, TipoCondicion::Numerico}, {})) << "a failed query";
    EXPECT_EQ(Avisos().size(), 1);
}

TEST_F(Consultas, RecordsAreOpenedAtTheClientAndByTheirKeys)
{
    ArrancaYConecta(Es);
    ado::Recordset registros;
    EXPECT_TRUE(CreaRecordset(ConexionSQL, registros, u"select 1"_s));
    EXPECT_EQ(registros.CursorType(), 1);
    EXPECT_EQ(registros.CursorLocation(), 3);
    EXPECT_EQ(registros.RecordCount(), 1);
    EXPECT_FALSE(CreaRecordset(ConexionSQL, registros, u"select nada"_s));
    EXPECT_EQ(Avisos().size(), 1);
}

TEST_F(Consultas, AComboIsSearchedForTheTrimmedText)
{
    controls::ComboBox combo;
    for (const QString& texto : {u"uno"_s, u" dos "_s, u"dos"_s})
        combo.AddItem(texto);
    EXPECT_TRUE(BuscarComboCadena(u"dos"_s, &combo));
    EXPECT_EQ(combo.ListIndex(), 1) << "the first that fits";
    EXPECT_FALSE(BuscarComboCadena(u"Dos"_s, &combo));
    EXPECT_EQ(combo.ListIndex(), -1);
}

TEST_F(Consultas, ARecordIsLookedForByItsConditions)
{
    ArrancaYConecta(Es);
    PrefijoBD = u"master.dbo."_s;
    Condicion numero{u"dbid"_s, u" 1 "_s, TipoCondicion::Numerico};
    const auto busca = [](Condicion& primera, std::initializer_list<Condicion> otras) {
        return BuscaRegistro(ConexionSQL, u"sysdatabases"_s, u"name"_s, primera, otras);
    };
    EXPECT_EQ(busca(numero, {{u"name"_s, u"mas%"_s}, {QString(), u"x"_s}}), u"master"_s);
    EXPECT_EQ(numero.Valor, u"1"_s) << "trimmed for the caller as well";
    EXPECT_EQ(Transcripcion(),
              Lineas({u"Select name from master.dbo.sysdatabases where dbid=1 and name Like 'mas%'"_s}));
    EXPECT_EQ(busca(numero, {{u"name"_s, u"x"_s}}), QString());
    Condicion texto{u"name"_s, u"mas%"_s};
    EXPECT_EQ(busca(texto, {}), QString()) << "the first one compares as it stands";
    Transcripcion();
    Condicion vacia{u"dbid"_s, u"  "_s, TipoCondicion::Numerico};
    EXPECT_EQ(busca(vacia, {}), QString());
    EXPECT_EQ(Transcripcion(), QString());
    EXPECT_EQ(Avisos(), QList<Aviso>{});
}

/// Counts the paints of a control.
class Pintadas : public QObject
{
public:
    explicit Pintadas(QWidget* control) { control->installEventFilter(this); }
    bool eventFilter(QObject* /*control*/, QEvent* suceso) override
    {
        cuantas += suceso->type() == QEvent::Paint ? 1 : 0;
        return false;
    }
    int cuantas = 0;
};

TEST_F(Consultas, WhileTheServerWorksTheWindowPaintsAndNobodyElseCallsIt)
{
    ArrancaYConecta(Es);
    Abre(::mdiPrincipal->mnuAnalizadorConsultas);
    auto* control = forma()->cmdEjecuta;
    const Pintadas pintadas(control);
    int vueltas = 0;
    int rechazos = 0;
    QList<controls::Pointer> punteros;
    QTimer otro;
    QObject::connect(&otro, &QTimer::timeout, [&] {
        ++vueltas;
        control->update();
        punteros += controls::mousePointer();
        try {
            ConexionSQL.Execute(u"select 1"_s);
        } catch (const basic::RuntimeError& error) {
            rechazos += error.description().startsWith(u"El servidor trabaja todavía"_s) ? 1 : 0;
        }
    });
    otro.start(50);
    Corre(u"waitfor delay '0:0:1' select 'listo'"_s);
    otro.stop();
    EXPECT_EQ(Celda(0, 0), u"listo"_s);
    EXPECT_GE(vueltas, 5);
    EXPECT_EQ(rechazos, vueltas);
    EXPECT_GE(pintadas.cuantas, vueltas - 1);
    EXPECT_EQ(punteros.count(controls::Pointer::Hourglass), vueltas);
    EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
    EXPECT_EQ(Avisos(), QList<Aviso>());
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
