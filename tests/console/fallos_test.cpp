// What the user sees of faults and of work beyond all measure: one clear message, and the program goes on.
#include "Consola.h"

#include "browser/frmAdministrador.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "core/mdlRegistro.h"
#include "platform/ado/Connection.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/Pointer.h"
#include "platform/controls/ResultGrid.h"
#include "platform/controls/SqlEditor.h"
#include "platform/controls/TreeView.h"
#include "query/frmAnalizadorConsultas.h"
#include "support/FaultProxy.h"

#include <QFile>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::Literals::StringLiterals;
using support::Fault;

namespace pruebas {
class Fallos : public Consola
{
protected:
    /// Connects over the faulty network, as long as nothing is wrong with it.
    void ConectaPorLaRed()
    {
        red.setFault({});
        Conecta(u"127.0.0.1,"_s + QString::number(red.port()), u"sa"_s, ClaveDePrueba);
        ASSERT_EQ(Avisos(), QList<Aviso>{});
        ConexionSQL.setCommandTimeout(1);
    }

    support::FaultProxy red{ServidorDePrueba().section(u',', 1).toInt()};
};

TEST_F(Fallos, ABadNetworkIsOneMessageAndTheNextConnectWorks)
{
    Arranca(Es);
    ConectaPorLaRed();
    Abre(::mdiPrincipal->mnuAdministrador);
    Abre(::mdiPrincipal->mnuAnalizadorConsultas);
    const int nodos = ::frmAdministrador->trvBD->Count();
    const Fault fallos[] = {{.kind = Fault::Kind::Close},
                            {.kind = Fault::Kind::Reset, .offset = 60},
                            {.kind = Fault::Kind::Garbage, .seed = 3},
                            {.kind = Fault::Kind::Stall, .offset = 30}};
    for (const Fault& fallo : fallos) {
        Corre(u"select 'antes'"_s);
        ASSERT_EQ(Avisos(), QList<Aviso>{}) << fallo.text();
        red.setFault(fallo);
        Corre(u"select name from master.dbo.sysobjects"_s);
        const auto avisos = Avisos();
        ASSERT_EQ(avisos.size(), 1) << fallo.text();
        EXPECT_TRUE(avisos[0].texto.startsWith(u" Error Nº:-2147"_s)) << avisos[0].texto.toStdString();
        EXPECT_EQ(Celda(0, 0), u"antes"_s) << fallo.text();

        Pulsa(u"DTmaster"_s);
        EXPECT_EQ(Avisos().size(), 1) << fallo.text();
        EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default) << fallo.text();
        EXPECT_EQ(::frmAdministrador->trvBD->Count(), nodos) << fallo.text();
        ConectaPorLaRed();
    }
}

TEST_F(Fallos, AServerThatAnswersTooLateIsNotTakenForTheNextAnswer)
{
    Arranca(En);
    ConectaPorLaRed();
    Abre(::mdiPrincipal->mnuAnalizadorConsultas);
    red.setFault({.kind = Fault::Kind::Delay, .pace = std::chrono::milliseconds(2500)});
    Corre(u"select 'tarde'"_s);
    const auto avisos = Avisos();
    ASSERT_EQ(avisos.size(), 1);
    EXPECT_TRUE(avisos[0].texto.contains(u"Timeout expired"_s)) << avisos[0].texto.toStdString();
    Corre(u"select 'ahora'"_s);
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    EXPECT_EQ(Celda(0, 0), u"ahora"_s);
}

TEST_F(Fallos, ResultsBeyondMeasureAreShown)
{
    ArrancaYConecta(En);
    Abre(::mdiPrincipal->mnuAnalizadorConsultas);
    QStringList columnas;
    for (int columna = 0; columna < 1000; ++columna)
        columnas += u"%1 as c%1"_s.arg(columna);
    Corre(u"select "_s + columnas.join(u", "_s));
    EXPECT_EQ(forma()->GridSQL->model()->columnCount(), 1000);
    EXPECT_EQ(Celda(0, 999), u"999"_s);

    Corre(u"declare @i int set @i = 0 while @i < 10000 begin select @i as i set @i = @i + 1 end"_s);
    ASSERT_EQ(forma()->cboResultados->ListCount(), 10'000);
    forma()->cboResultados->setListIndex(9999);
    EXPECT_EQ(Celda(0, 0), u"9999"_s);

    Corre(u"-- "_s + QString(10'000'000, u'ñ') + u"\r\nselect 'fin'"_s);
    EXPECT_EQ(Celda(0, 0), u"fin"_s);
    Corre(u"select replicate(cast('x' as varchar(max)), 5000000) as larga"_s);
    EXPECT_LT(Celda(0, 0).size(), 10'000) << "cut for the row";
    EXPECT_EQ(Avisos(), QList<Aviso>{});
}

TEST_F(Fallos, APasswordOfAnyCharactersWorksUnlessItEndsItsPartOfTheConnectionString)
{
    ArrancaYConecta(Es);
    const QString claves[] = {u"{c'l}a\"v=e?"_s, u"漢字 ЖЯ 😀"_s};
    ConexionSQL.Execute(u"exec sp_addlogin N'rara', N'x'"_s);
    for (const QString& clave : claves) {
        ConexionSQL.Execute(u"exec sp_password null, N'"_s + QString(clave).replace(u'\'', u"''"_s) +
                            u"', N'rara'"_s);
        Conecta(ServidorDePrueba(), u"rara"_s, clave);
        EXPECT_EQ(Avisos(), QList<Aviso>{}) << clave.toStdString();
        Conecta(ServidorDePrueba(), u"rara"_s, clave + u";x"_s);
        const auto avisos = Avisos();
        ASSERT_EQ(avisos.size(), 1);
        EXPECT_TRUE(avisos[0].texto.startsWith(u" Error Nº:-2147217805 ("_s))
            << avisos[0].texto.toStdString();
        Conecta(ServidorDePrueba(), u"sa"_s, ClaveDePrueba);
        EXPECT_EQ(Avisos(), QList<Aviso>{});
    }
}

TEST_F(Fallos, SettingsThatCannotBeKeptDoNotKeepTheProgramFromStarting)
{
    const QString antes = qEnvironmentVariable("XDG_CONFIG_HOME");
    QTemporaryDir carpeta;
    QFile(carpeta.filePath(u"archivo"_s)).open(QIODevice::WriteOnly);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, carpeta.filePath(u"archivo/debajo"_s));
    Arranca(Es);
    Conecta(ServidorDePrueba(), u"sa"_s, ClaveDePrueba);
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    EXPECT_EQ(ConexionSQL.State(), 1);
    QSettings::setPath(QSettings::IniFormat, QSettings::UserScope, antes);
}

} // namespace pruebas
