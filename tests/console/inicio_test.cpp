// Start, language, menus, connecting and its failures.
#include "Consola.h"

#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "core/LeeIdioma.h"
#include "core/frmConectar.h"
#include "core/frmIdioma.h"
#include "core/mdiPrincipal.h"
#include "core/mdlRegistro.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/Language.h"
#include "platform/controls/Menus.h"
#include "platform/controls/Pointer.h"
#include "query/frmAnalizadorConsultas.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QLineEdit>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QSettings>
#include <QTest>
#include <QTimer>
#include <QWindow>

#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {
namespace {

QStringList MenusVisibles()
{
    const auto* m = &*::mdiPrincipal;
    QStringList visibles;
    for (const QMenu* menu : {m->mnuArchivo, m->mnuBaseDatos, m->mnuConsulta, m->mnuTabla})
        if (menu->menuAction()->isVisible())
            visibles += menu->objectName();
    for (const QAction* entrada :
         {m->mnuConectar, m->mnuAdministrador, m->mnuAnalizadorConsultas, m->mnuSalir})
        if (entrada->isVisible())
            visibles += entrada->objectName();
    return visibles;
}

const QStringList SinConexion{u"mnuArchivo"_s, u"mnuConectar"_s, u"mnuSalir"_s};
const QStringList Conectado{u"mnuArchivo"_s, u"mnuConectar"_s, u"mnuAdministrador"_s,
                            u"mnuAnalizadorConsultas"_s, u"mnuSalir"_s};

} // namespace

TEST_F(Consola, StartsWithoutAStatementAndWithANearlyEmptyMenu)
{
    Arranca(Es);
    EXPECT_EQ(Transcripcion(), QString());
    EXPECT_EQ(MenusVisibles(), SinConexion);
    EXPECT_EQ(::mdiPrincipal->windowTitle(), u"Quermo"_s);
    EXPECT_EQ(::mdiPrincipal->mnuAnalizadorConsultas->text(), u"A&nalizador Consultas"_s);
    EXPECT_EQ(::mdiPrincipal->mnuDiseño->text(), u"&Diseño"_s);
}

TEST_F(Consola, EnglishLeavesTheTableMenuInSpanish)
{
    Arranca(En);
    EXPECT_EQ(::mdiPrincipal->mnuDiseño->text(), u"&Desing"_s);
    EXPECT_EQ(::mdiPrincipal->mnuAñadirInicioSesion->text(), u"Add Inicio &Sesion"_s);
    EXPECT_EQ(::mdiPrincipal->mnuTabla->title(), u"&Tabla"_s);
    EXPECT_EQ(::mdiPrincipal->mnuEliminarFila->text(), u"Eliminar Fila"_s);
}

TEST_F(Consola, AForeignLanguageKeepsStoredCaptionsAndRepeatsTheLastMessage)
{
    Arranca(2);
    EXPECT_EQ(Idioma, 2);
    EXPECT_EQ(::mdiPrincipal->mnuAnalizadorConsultas->text(), u"Analizador &Consultas"_s);
    Mensaje = u"anterior"_s;
    Conecta(u" "_s, u"sa"_s, QString());
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u"anterior"_s, 48, u"Quermo"_s}}));
}

TEST_F(Consola, TheFirstRunAsksForTheLanguageBeforeTheWindowOpens)
{
    CrearClave(HKEY_CURRENT_USER, ClaveRegistro);
    EscribirValor(HKEY_CURRENT_USER, ClaveRegistro, ValorIdioma, basic::Variant(QString()), ValorTexto);
    bool ventanaAbierta = true;
    QTimer::singleShot(50, [&] {
        ventanaAbierta = ::mdiPrincipal.exists() && ::mdiPrincipal->isVisible();
        ::frmIdioma->optIngles->setChecked(true);
        ::frmIdioma->Unload();
    });
    LeeIdiomaRegistro();
    EXPECT_FALSE(ventanaAbierta);
    EXPECT_EQ(Idioma, En);
    EXPECT_FALSE(::frmIdioma.exists());
    EXPECT_EQ(LeerValor(HKEY_CURRENT_USER, ClaveRegistro, ValorIdioma), basic::Variant(1));
}

TEST_F(Consola, EnterAndEscCloseTheLanguageFormWithTheChoiceAsItStands)
{
    const struct
    {
        QList<Qt::Key> teclas;
        int idioma;
    } casos[] = {{{Qt::Key_Return}, Es},
                 {{Qt::Key_Escape}, Es},
                 {{Qt::Key_Down, Qt::Key_Enter}, En},
                 {{Qt::Key_Down, Qt::Key_Escape}, En}};
    for (const auto& caso : casos) {
        CrearClave(HKEY_CURRENT_USER, ClaveRegistro);
        EscribirValor(HKEY_CURRENT_USER, ClaveRegistro, ValorIdioma, basic::Variant(QString()), ValorTexto);
        QTimer::singleShot(50, [&] {
            ASSERT_TRUE(QTest::qWaitForWindowActive(&*::frmIdioma));
            for (const Qt::Key tecla : caso.teclas)
                QTest::keyClick(QApplication::focusWidget(), tecla);
            EXPECT_FALSE(::frmIdioma.exists()) << caso.teclas.back();
            if (::frmIdioma.exists())
                ::frmIdioma->Unload(); // lets the others be tested
        });
        LeeIdiomaRegistro();
        EXPECT_EQ(Idioma, caso.idioma);
        EXPECT_EQ(LeerValor(HKEY_CURRENT_USER, ClaveRegistro, ValorIdioma), basic::Variant(caso.idioma));
    }
}

TEST_F(Consola, TheToolkitsMenusAndButtonsSpeakTheChosenLanguage)
{
    const struct
    {
        int idioma;
        QString marco, campo, editor, abrir;
    } casos[] = {{Es, u"&Restaurar"_s, u"&Deshacer"_s, u"&Deshacer"_s, u"&Abrir"_s},
                 {En, u"&Restore"_s, u"&Undo"_s, u"&Undo"_s, u"&Open"_s}};
    for (const auto& caso : casos) {
        ArrancaYConecta(caso.idioma);
        Abre(::mdiPrincipal->mnuAnalizadorConsultas);
        const auto* marco = ::mdiPrincipal->area()->activeSubWindow();
        EXPECT_EQ(marco->systemMenu()->actions().front()->text(), caso.marco);
        const QLineEdit campo;
        const std::unique_ptr<QMenu> deCampo(const_cast<QLineEdit&>(campo).createStandardContextMenu());
        EXPECT_TRUE(deCampo->actions().front()->text().startsWith(caso.campo));
        auto* superficie = forma()->txtSQL->viewport();
        QTest::mouseClick(forma()->window()->windowHandle(), Qt::RightButton, {},
                          superficie->mapTo(forma()->window(), superficie->rect().center()));
        const auto* deEditor = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        ASSERT_NE(deEditor, nullptr);
        EXPECT_TRUE(deEditor->actions().front()->text().startsWith(caso.editor))
            << deEditor->actions().front()->text().toStdString();
        QTest::keyClick(QApplication::activePopupWidget(), Qt::Key_Escape);
        QFileDialog dialogo;
        EXPECT_EQ(dialogo.findChild<QDialogButtonBox*>()->button(QDialogButtonBox::Open)->text(), caso.abrir);
        Transcripcion();
        TearDown();
        SetUp();
    }
}

TEST_F(Consola, ALanguageStoredAsTextReadsLikeANumber)
{
    CrearClave(HKEY_CURRENT_USER, ClaveRegistro);
    EscribirValor(HKEY_CURRENT_USER, ClaveRegistro, ValorIdioma, basic::Variant(u"1"_s), ValorTexto);
    Idioma = Es;
    LeeIdiomaRegistro();
    EXPECT_EQ(Idioma, En);
}

TEST_F(Consola, ConnectingShowsTheBrowserAndTheQueryWindowInTheMenu)
{
    Arranca(Es);
    Conecta(ServidorDePrueba(), u"sa"_s, ClaveDePrueba);
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    EXPECT_EQ(Transcripcion(), QString());
    EXPECT_EQ(MenusVisibles(), Conectado);
    EXPECT_EQ(ConexionSQL.State(), 1);
    EXPECT_EQ(ConexionSQL.CommandTimeout(), 120);
    EXPECT_EQ(ProveedorSQL, u"SQLOLEDB.1"_s);
    EXPECT_FALSE(::frmConectar.exists());
}

TEST_F(Consola, AServerAndALoginMustBeGiven)
{
    Arranca(En);
    Conecta(u"  "_s, u"sa"_s, QString());
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u"Insert server."_s, 48, u"Quermo"_s}}));
    Conecta(u"x"_s, u" "_s, QString());
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u"Insert user."_s, 48, u"Quermo"_s}}));
    EXPECT_TRUE(::frmConectar.exists());
    EXPECT_EQ(ConexionSQL.State(), 0);
}

TEST_F(Consola, ARefusedLoginShowsTheServersErrorAndTakesTheMenuBack)
{
    ArrancaYConecta(Es);
    Conecta(ServidorDePrueba(), u"sa"_s, u"equivocada"_s);
    EXPECT_EQ(Avisos(),
              (QList<Aviso>{{u" Error Nº:18456 (Login failed for user 'sa'.)."_s, 48, u"Atención."_s}}));
    EXPECT_EQ(MenusVisibles(), SinConexion);
    EXPECT_FALSE(::frmConectar.exists());
    EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
    Conecta(ServidorDePrueba(), u"sa"_s, ClaveDePrueba);
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    EXPECT_EQ(MenusVisibles(), Conectado);
}

TEST_F(Consola, ASemicolonInThePasswordChangesTheConnection)
{
    Arranca(Es);
    Conecta(ServidorDePrueba(), u"nadie"_s, u"x;User Id=sa;Password="_s + ClaveDePrueba);
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    EXPECT_EQ(MenusVisibles(), Conectado);
}

TEST_F(Consola, NoServerAtTheAddressIsAnErrorWithANumberInTheChosenLanguage)
{
    Arranca(Es);
    Conecta(u"127.0.0.1,1"_s, u"sa"_s, QString());
    EXPECT_EQ(
        Avisos(),
        (QList<Aviso>{{u" Error Nº:17 (No existe el servidor SQL Server o se ha denegado el acceso: ningún "
                       "servidor responde en 127.0.0.1, puerto 1.)."_s,
                       48, u"Atención."_s}}));
    EXPECT_EQ(MenusVisibles(), SinConexion);
    controls::setUiLanguage(En);
    Conecta(u"127.0.0.1,1"_s, u"sa"_s, QString());
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u" Error Nº:17 (SQL Server does not exist or access denied: no server "
                                       "answers at 127.0.0.1, port 1.)."_s,
                                       48, u"Atención."_s}}));
}

TEST_F(Consola, EnterMovesOnLikeTabAndDoesNotConnect)
{
    Arranca(Es);
    ::mdiPrincipal->mnuConectar->trigger();
    auto* forma = &*::frmConectar;
    EXPECT_EQ(forma->txtUsuario->Text(), u"sa"_s);
    QWidget* const orden[] = {forma->txtServidor, forma->txtUsuario, forma->txtClave, forma->cmdConectar};
    forma->txtServidor->setFocus();
    for (std::size_t i = 0; i + 1 < std::size(orden); ++i) {
        ASSERT_TRUE(QTest::qWaitFor([&] { return orden[i]->hasFocus(); })) << i;
        QTest::keyClick(orden[i], Qt::Key_Return);
    }
    ASSERT_TRUE(QTest::qWaitFor([&] { return forma->cmdConectar->hasFocus(); }));
    EXPECT_EQ(ConexionSQL.State(), 0);
}

TEST_F(Consola, EnterOnTheFocusedButtonConnects)
{
    Arranca(Es);
    ::mdiPrincipal->mnuConectar->trigger();
    auto* forma = &*::frmConectar;
    forma->txtServidor->setText(ServidorDePrueba());
    forma->txtClave->setFocus();
    QTest::keyClicks(forma->txtClave, ClaveDePrueba);
    QTest::keyClick(forma->txtClave, Qt::Key_Tab);
    ASSERT_TRUE(forma->cmdConectar->hasFocus());
    QTest::keyClick(forma->cmdConectar, Qt::Key_Return);
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    EXPECT_EQ(ConexionSQL.State(), 1);
    EXPECT_FALSE(::frmConectar.exists());
}

TEST_F(Consola, ASecondConnectReplacesTheSessionAndLeavesOpenFormsAlone)
{
    ArrancaYConecta(Es);
    Abre(::mdiPrincipal->mnuAdministrador);
    const int nodos = ::frmAdministrador->trvBD->Count();
    Transcripcion();
    Conecta(ServidorDePrueba(), u"sa"_s, ClaveDePrueba);
    EXPECT_EQ(::frmAdministrador->trvBD->Count(), nodos);
    EXPECT_EQ(Transcripcion(), QString());
}

TEST_F(Consola, RegistersAreFoundByTheirConditions)
{
    ArrancaYConecta(Es);
    PrefijoBD = u"master.."_s;
    Condicion uid{u"uid"_s, u" 1 "_s, TipoCondicion::Numerico};
    EXPECT_EQ(BuscaRegistro(ConexionSQL, u"sysusers"_s, u"name"_s, uid,
                            {{u"name"_s, u"d%"_s, TipoCondicion::Texto}}),
              u"dbo"_s);
    EXPECT_EQ(uid.Valor, u"1"_s);
    Condicion vacio{u"uid"_s, u"  "_s, TipoCondicion::Numerico};
    EXPECT_EQ(BuscaRegistro(ConexionSQL, u"sysusers"_s, u"name"_s, vacio), QString());
    EXPECT_EQ(Transcripcion(),
              Lineas({u"Select name from master..sysusers where uid=1 and name Like 'd%'"_s}));

    EXPECT_TRUE(ExisteRegistro(ConexionSQL, true, u"sysusers"_s, {u"name"_s, u"dbo"_s, TipoCondicion::Texto},
                               {{u"uid"_s, u"1"_s, TipoCondicion::Numerico}}));
    EXPECT_FALSE(
        ExisteRegistro(ConexionSQL, true, u"sysusers"_s, {u"name"_s, u"d%"_s, TipoCondicion::Texto}));
    EXPECT_FALSE(ExisteRegistro(ConexionSQL, true, u"sysusers"_s, {u"name"_s, QString()}));
    EXPECT_EQ(Transcripcion(), Lineas({u"Select name from master..sysusers where name = 'dbo' and uid=1"_s,
                                       u"Select name from master..sysusers where name = 'd%'"_s}));
    EXPECT_EQ(Avisos(),
              (QList<Aviso>{{u"El codigo dbo/1 ya existe en la tabla sysusers"_s, 48, u"Atención"_s}}));
    EXPECT_TRUE(ExisteRegistro(ConexionSQL, false, u"nada"_s, {u"name"_s, u"x"_s}));
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u" Error Nº:208 (Invalid object name 'master..nada'.)."_s, 48,
                                       u"Atención."_s}}));
    EXPECT_EQ(DameIntercalacion(u"master"_s), u"SQL_Latin1_General_CP1_CI_AS"_s);
    EXPECT_EQ(Transcripcion(),
              Lineas({u"Select name from master..nada where name = 'x'"_s,
                      u" select convert(sysname,DatabasePropertyEx('master','Collation'))"_s}));
}

} // namespace pruebas
