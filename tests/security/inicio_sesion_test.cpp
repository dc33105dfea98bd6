// Logins by hand: what is ticked and typed, and what arrives at the server, which then lets them in or not.
#include "Consola.h"
#include "Mano.h"

#include "browser/frmAdministrador.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "platform/ado/Transcript.h"
#include "platform/basic/RuntimeError.h"
#include "platform/controls/Pointer.h"
#include "security/frmInicioSesion.h"
#include "support/FaultProxy.h"

#include <QPointer>
#include <QTest>

#include <functional>

using namespace Qt::Literals::StringLiterals;
using namespace pruebas::mano;

namespace pruebas {

class InicioSesion : public Consola
{
protected:
    void TearDown() override
    {
        ado::setStatementObserver({});
        EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
        for (controls::Form* formulario : controls::LoadedForms())
            formulario->Unload();
        Avisos();
        Conecta(ServidorDePrueba(), u"sa"_s, ClaveDePrueba);
        Consola::TearDown();
    }
    void Prepara(int idioma)
    {
        ArrancaYConecta(idioma);
        Ejecuta({u"use master"_s});
        for (const QString& base : {u"Obra"_s, u"Taller"_s})
            Ejecuta(
                {u"if db_id('%1') is not null drop database %1"_s.arg(base), u"create database "_s + base});
        EXPECT_TRUE(QTest::qWaitFor([] {
            return Consulta(u"select name from master.dbo.syslogins where name = 'ana'"_s).isEmpty() ||
                   QuitaLogin(u"ana"_s);
        }));
        ::mdiPrincipal->resize(1000, 760);
        Abre(::mdiPrincipal->mnuAdministrador);
        ASSERT_TRUE(QTest::qWaitForWindowActive(&*::mdiPrincipal));
        Pulsa(u"DI"_s);
        LlegadoAlServidor();
    }
    /// By the right button on the folder of logins, or on one of them in the list.
    formularios::frmInicioSesion* Nuevo()
    {
        ::frmAdministrador->SetFocus();
        auto* arbol = ::frmAdministrador->trvBD;
        Clic(arbol->viewport(), arbol->itemRect(arbol->Find(u"DI"_s)).center(), Qt::RightButton);
        ClicEntrada(::mdiPrincipal->mnuBaseDatos, ::mdiPrincipal->mnuAñadirInicioSesion);
        return Abierto();
    }
    formularios::frmInicioSesion* Diseña(const QString& login)
    {
        ::frmAdministrador->SetFocus();
        Pulsa(u"DI"_s);
        auto* lista = ::frmAdministrador->ltvTablas;
        lista->EnsureVisible(Elemento(login));
        const QPoint punto = lista->itemRect(Elemento(login)).center();
        Clic(lista->viewport(), punto);
        Clic(lista->viewport(), punto, Qt::RightButton);
        ClicEntrada(::mdiPrincipal->mnuBaseDatos, ::mdiPrincipal->mnuDiseño);
        return Abierto();
    }
    formularios::frmInicioSesion* Abierto()
    {
        forma = &*::frmInicioSesion;
        QTest::qWait(1);
        LlegadoAlServidor();
        return forma;
    }
    static void Pon(controls::TextBox* caja, const QString& texto)
    {
        Clic(caja);
        Tecla(Qt::Key_A, Qt::ControlModifier);
        Escribe(texto);
    }
    void PonClaves(const QString& login, const QString& clave, const QString& confirmacion)
    {
        if (forma->txtUsuario->isEnabled())
            Pon(forma->txtUsuario, login);
        Pon(forma->txtClave, clave);
        Pon(forma->txtConfClave, confirmacion);
    }
    [[nodiscard]] int FilaDe(const QString& base) const
    {
        int fila = 0;
        while (forma->BaseDatosLogin.at(fila, ColBaseDatos::Nombre) != base)
            ++fila;
        return fila;
    }
    void Marca(const QString& base)
    {
        ClicCelda(forma->TDBGridBaseDatos, FilaDe(base), ColBaseDatos::Acceso);
    }
    [[nodiscard]] bool Marcada(const QString& base) const
    {
        return forma->BaseDatosLogin.at(FilaDe(base), ColBaseDatos::Acceso) == u"-1"_s;
    }
    void ClicFuncion(const QString& funcion)
    {
        auto* lista = forma->lstFunciones;
        auto* item = lista->findItems(funcion, Qt::MatchExactly).value(0);
        ASSERT_NE(item, nullptr);
        lista->scrollToItem(item);
        const QRect lugar = lista->visualItemRect(item);
        constexpr int Caja = 10;
        Clic(lista->viewport(), {lugar.left() + Caja, lugar.center().y()});
    }
    QStringList Textos()
    {
        QStringList textos;
        for (const Aviso& aviso : Avisos())
            textos += aviso.texto;
        return textos;
    }
    /// Whether the server lets this login in.
    static bool Entra(const QString& login, const QString& clave, const QString& base = u"master"_s)
    {
        try {
            ado::Connection otra;
            otra.Open(u"Provider=%1;Data Source=%2;Initial Catalog=%3"_s.arg(ProveedorSQL, ServidorDePrueba(),
                                                                             base),
                      login, clave);
            return true;
        } catch (const basic::RuntimeError&) {
            return false;
        }
    }
    /// False while the server still knows of a session of the login's.
    static bool QuitaLogin(const QString& login)
    {
        try {
            ConexionSQL.Execute(u"exec sp_droplogin '"_s + login + u"'"_s);
            return true;
        } catch (const basic::RuntimeError&) {
            return false;
        }
    }
    static QString Cambios()
    {
        QStringList cambios = LlegadoAlServidor();
        cambios.removeIf([](const QString& sentencia) {
            return sentencia.trimmed().startsWith(u"select"_s, Qt::CaseInsensitive) ||
                   sentencia.startsWith(u"sp_helplogins"_s);
        });
        return Lineas(cambios);
    }

    formularios::frmInicioSesion* forma = nullptr;
};

TEST_F(InicioSesion, ANewLoginByAcceptIsCheckedFirst)
{
    Prepara(En);
    Nuevo();
    EXPECT_TRUE(forma->txtUsuario->isEnabled());
    const struct
    {
        QString login, clave, confirmacion, mensaje;
        QWidget* foco;
    } casos[] = {{u" "_s, u"x"_s, u"x"_s, u"Insert User."_s, forma->txtUsuario},
                 {u"ana"_s, u" "_s, u"x"_s, u"Insert Password."_s, forma->txtClave},
                 {u"ana"_s, u"x"_s, u"X"_s, u"Confirm password is difernt to password."_s, forma->txtClave},
                 {u"ana"_s, u"x"_s, u""_s, u"Confirm password is difernt to password."_s, forma->txtClave}};
    for (const auto& caso : casos) {
        PonClaves(caso.login, caso.clave, caso.confirmacion);
        Clic(forma->cmdAceptar);
        EXPECT_EQ(Avisos(), (QList<Aviso>{{caso.mensaje, 48, u"Quermo"_s}}));
        EXPECT_EQ(QApplication::focusWidget(), caso.foco);
    }
    EXPECT_EQ(Cambios(), QString());
    PonClaves(u"ana"_s, u" Clave1! "_s, u"Clave1!"_s); // blanks at the ends are no difference
    Clic(forma->cmdAceptar);
    EXPECT_EQ(Cambios(), Lineas({u" EXEC sp_addlogin 'ana',' Clave1! '"_s}));
    EXPECT_FALSE(::frmInicioSesion.exists());
    EXPECT_NE(Elemento(u"ana"_s), nullptr);
    EXPECT_TRUE(Entra(u"ana"_s, u" Clave1! "_s));
    EXPECT_FALSE(Entra(u"ana"_s, u"otra"_s));
}

TEST_F(InicioSesion, ATickMakesTheLoginAndGivesItAccessAndRoles)
{
    Prepara(Es);
    Nuevo();
    Marca(u"Obra"_s);
    EXPECT_EQ(Textos(), QStringList{u"Introduzca nombre usuario."_s});
    EXPECT_FALSE(Marcada(u"Obra"_s));
    PonClaves(u"ana"_s, u"Clave1!"_s, u"Clave1!"_s);
    EXPECT_EQ(Cambios(), QString());
    Marca(u"Obra"_s);
    EXPECT_TRUE(Marcada(u"Obra"_s));
    EXPECT_EQ(Textos(), QStringList());
    EXPECT_EQ(Lineas(LlegadoAlServidor()),
              Lineas({u" select * from master.dbo.sysxlogins where name='ana'"_s,
                      u" EXEC sp_addlogin 'ana','Clave1!'"_s, u"sp_helplogins"_s, u"use Obra"_s,
                      u"exec sp_grantdbaccess 'ana','ana'"_s,
                      u"select * from master..sysusers where issqlrole = 1 or isapprole = 1 order by uid"_s,
                      u"sp_helplogins 'ana'"_s}));
    EXPECT_FALSE(forma->txtUsuario->isEnabled());
    EXPECT_EQ(forma->lstFunciones->List(0), u"public"_s);
    EXPECT_TRUE(forma->lstFunciones->Selected(0));
    EXPECT_FALSE(forma->lstFunciones->Selected(1));

    ClicFuncion(u"db_datareader"_s);
    ClicFuncion(u"db_owner"_s);
    ClicFuncion(u"db_owner"_s);
    EXPECT_EQ(Cambios(), Lineas({u"use Obra"_s, u" EXEC sp_addrolemember  'db_datareader','ana'"_s,
                                 u"use Obra"_s, u" EXEC sp_addrolemember  'db_owner','ana'"_s, u"use Obra"_s,
                                 u" EXEC sp_droprolemember   'db_owner','ana'"_s}));
    EXPECT_EQ(
        Consulta(u"select g.name from Obra..sysmembers m join Obra..sysusers u on u.uid = m.memberuid join "
                 u"Obra..sysusers g on g.uid = m.groupuid where u.name = 'ana'"_s),
        u"db_datareader"_s);
    EXPECT_TRUE(Entra(u"ana"_s, u"Clave1!"_s, u"Obra"_s));
    EXPECT_FALSE(Entra(u"ana"_s, u"Clave1!"_s, u"Taller"_s));

    Marca(u"Obra"_s);
    EXPECT_EQ(Cambios(), Lineas({u"use Obra"_s, u"exec sp_revokedbaccess  'ana'"_s}));
    EXPECT_EQ(forma->lstFunciones->ListCount(), 0);
    EXPECT_FALSE(Entra(u"ana"_s, u"Clave1!"_s, u"Obra"_s));
    Clic(forma->cmdAceptar); // the password stands already
    EXPECT_EQ(Cambios(), QString());
    EXPECT_EQ(Textos(), QStringList());
    EXPECT_FALSE(::frmInicioSesion.exists());
}

TEST_F(InicioSesion, AnExistingLoginShowsItsAccessAndTakesANewPassword)
{
    Prepara(Es);
    Ejecuta({u"exec sp_addlogin 'ana', 'Vieja1!'"_s, u"use Taller"_s, u"exec sp_grantdbaccess 'ana', 'ana'"_s,
             u"use master"_s});
    Diseña(u"ana"_s);
    EXPECT_EQ(forma->Caption(), u"Inicio Sesion"_s);
    EXPECT_FALSE(forma->txtUsuario->isEnabled());
    EXPECT_TRUE(Marcada(u"Taller"_s));
    EXPECT_FALSE(Marcada(u"Obra"_s));
    ClicCelda(forma->TDBGridBaseDatos, FilaDe(u"Taller"_s), ColBaseDatos::Nombre);
    EXPECT_GT(forma->lstFunciones->ListCount(), 5);
    ClicCelda(forma->TDBGridBaseDatos, FilaDe(u"Obra"_s), ColBaseDatos::Nombre);
    EXPECT_EQ(forma->lstFunciones->ListCount(), 0);
    ClicCelda(forma->TDBGridBaseDatos, FilaDe(u"tempdb"_s) + 1, ColBaseDatos::Acceso);
    Escribe(u" "_s);
    EXPECT_EQ(Cambios(), QString()) << "the row below is no database";
    Clic(forma->cmdAceptar);
    EXPECT_EQ(Cambios(), QString()) << "both boxes are empty";
    EXPECT_FALSE(::frmInicioSesion.exists());

    Diseña(u"ana"_s);
    Pon(forma->txtClave, u"Nueva1!"_s);
    Clic(forma->cmdAceptar);
    EXPECT_EQ(Textos(), QStringList{u"Introduzca confirmación de contraseña."_s});
    Pon(forma->txtConfClave, u"Otra1!"_s);
    Clic(forma->cmdAceptar);
    EXPECT_EQ(Textos(), QStringList{u"Contraseña y confirmación de contraseña no son iguales."_s});
    EXPECT_EQ(Cambios(), QString());
    Pon(forma->txtConfClave, u"Nueva1!"_s);
    Clic(forma->cmdAceptar);
    EXPECT_EQ(Cambios(), Lineas({u" EXEC sp_password '','Nueva1!','ana'"_s}));
    EXPECT_FALSE(::frmInicioSesion.exists());
    EXPECT_TRUE(Entra(u"ana"_s, u"Nueva1!"_s));
    EXPECT_FALSE(Entra(u"ana"_s, u"Vieja1!"_s));
}

TEST_F(InicioSesion, OddNamesAndPasswordsArriveAsTheyAreOrAreRefused)
{
    Prepara(Es);
    const QString largo(128, u'x');
    const std::pair<QString, QString> pares[] = {{u"con hueco"_s, u"a b]c[d"_s},
                                                 {u"[corchetes]"_s, u"ñ€"_s},
                                                 {u"ñandú"_s, u"{call} ?"_s},
                                                 {largo, QString(128, u'p')}};
    for (const auto& [login, clave] : pares) {
        Nuevo();
        PonClaves(login, clave, clave);
        Clic(forma->cmdAceptar);
        EXPECT_EQ(Textos(), QStringList());
        EXPECT_TRUE(Cambios().contains(u"sp_addlogin '"_s + login + u"','"_s));
        EXPECT_TRUE(Entra(login, clave)) << login.toStdString();
    }
    // The literals of the statements hold one byte a letter: what has none becomes question marks at the
    // server.
    const QString cara = QString::fromUtf8("\xF0\x9F\x98\x80");
    Nuevo();
    PonClaves(cara, cara, cara);
    Clic(forma->cmdAceptar);
    const QString dudas(2, u'?');
    EXPECT_EQ(Consulta(u"select name from master..syslogins where name = '%1'"_s.arg(dudas)), dudas);
    EXPECT_TRUE(Entra(dudas, dudas));
    Nuevo();
    PonClaves(u"o'brien"_s, u"x"_s, u"x"_s);
    Clic(forma->cmdAceptar);
    EXPECT_EQ(Textos().size(), 1);
    EXPECT_EQ(forma->txtUsuario->Text(), u"o'brien"_s) << "nothing is lost";
    EXPECT_TRUE(forma->txtUsuario->isEnabled());
}

TEST_F(InicioSesion, EachStatementOfATickRefusedOrLostLeavesAWayOut)
{
    Prepara(Es);
    support::FaultProxy red(ServidorDePrueba().section(u',', 1).toUShort());
    const auto reconecta = [&] {
        red.setFault({});
        Conecta(u"127.0.0.1,"_s + QString::number(red.port()), u"sa"_s, ClaveDePrueba);
        Avisos();
    };
    const std::function<void()> fallos[] = {
        [] { basic::raise(50000, u"rechazada"_s); },
        [&] {
            red.setFault(
                {.kind = support::Fault::Kind::Close, .direction = support::Fault::Direction::ToServer});
        }};
    constexpr int Sentencias = 7; // look, add, list, use, grant, roles, list of one
    reconecta();
    for (const auto& fallo : fallos)
        for (int k = 1; k <= Sentencias; ++k) {
            SCOPED_TRACE(k);
            Ejecuta({u"use master"_s});
            Nuevo();
            PonClaves(u"ana"_s, u"Clave1!"_s, u"Clave1!"_s);
            ado::setStatementObserver([&, n = 0](const QString&) mutable {
                if (++n == k)
                    fallo();
            });
            Marca(u"Obra"_s);
            ado::setStatementObserver({});
            EXPECT_FALSE(Avisos().isEmpty());
            EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
            reconecta();
            ASSERT_TRUE(::frmInicioSesion.exists());
            forma->SetFocus();
            // Whatever was reached, ticking on ends with the access.
            for (int veces = 0;
                 veces < 3 && Consulta(u"select name from Obra..sysusers where name = 'ana'"_s).isEmpty();
                 ++veces)
                Marca(u"Obra"_s);
            Avisos();
            EXPECT_EQ(Consulta(u"select name from Obra..sysusers where name = 'ana'"_s), u"ana"_s);
            EXPECT_TRUE(Marcada(u"Obra"_s));
            Clic(forma->cmdAceptar);
            EXPECT_EQ(Textos(), QStringList());
            EXPECT_TRUE(Entra(u"ana"_s, u"Clave1!"_s, u"Obra"_s));
            Ejecuta({u"use Obra"_s, u"exec sp_revokedbaccess 'ana'"_s, u"use master"_s});
            EXPECT_TRUE(QTest::qWaitFor([] { return QuitaLogin(u"ana"_s); }));
        }
    Conecta(ServidorDePrueba(), u"sa"_s, ClaveDePrueba);
}

} // namespace pruebas
