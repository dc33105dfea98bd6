#include "security/Funciones_SQL.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"
#include "platform/ado/Command.h"
#include "platform/controls/CheckList.h"
#include "platform/controls/TextBox.h"

using namespace Qt::Literals::StringLiterals;

namespace {

bool EstaVacia(const controls::TextBox* caja)
{
    return caja->Text().trimmed().isEmpty();
}

bool Rechaza(controls::TextBox* caja, const QString& español, const QString& ingles)
{
    MuestraMensaje(español, ingles);
    caja->setFocus();
    return false;
}

bool SonIguales(const CajasClave& cajas)
{
    return cajas.Clave->Text().trimmed() == cajas.Confirmacion->Text().trimmed() ||
           Rechaza(cajas.Clave, u"Contraseña y confirmación de contraseña no son iguales."_s,
                   u"Confirm password is difernt to password."_s);
}

void MarcaFuncion(controls::CheckList* lista, const QString& funcion)
{
    for (int i = 0; i < lista->ListCount(); ++i)
        if (lista->List(i) == funcion)
            lista->setSelected(i, true);
}

} // namespace

void CapturaFunciones_SQL(controls::CheckList* lista)
{
    ado::Recordset funciones;
    if (!CreaRecordset(ConexionSQL, funciones,
                       u"select * from master..sysusers where issqlrole = 1 or isapprole = 1 order by uid"_s))
        return;
    lista->Clear();
    for (; !funciones.Eof(); funciones.MoveNext())
        lista->AddItem(TextoCampo(funciones, u"Name"_s));
}

void PermisosFunciones_SQL(controls::CheckList* lista, const QString& login, const QString& bd)
{
    for (int i = 0; i < lista->ListCount(); ++i)
        lista->setSelected(i, i == 0);
    ado::Command orden;
    orden.setActiveConnection(ConexionSQL);
    orden.setCommandText(u"sp_helplogins '"_s + login + u"'"_s);
    const auto usuarios = orden.Execute().NextRecordset();
    if (!usuarios)
        return;
    for (ado::Recordset fila = *usuarios; !fila.Eof(); fila.MoveNext())
        if (TextoCampo(fila, 0) == bd)
            MarcaFuncion(lista, TextoCampo(fila, u"username"_s));
}

bool CompruebaNueva(const CajasClave& cajas)
{
    if (EstaVacia(cajas.Usuario))
        return Rechaza(cajas.Usuario, u"Introduzca nombre usuario."_s, u"Insert User."_s);
    if (EstaVacia(cajas.Clave))
        return Rechaza(cajas.Clave, u"Introduzca contraseña."_s, u"Insert Password."_s);
    return SonIguales(cajas);
}

bool CompruebaCambio(const CajasClave& cajas)
{
    if (EstaVacia(cajas.Confirmacion) && !EstaVacia(cajas.Clave))
        return Rechaza(cajas.Clave, u"Introduzca confirmación de contraseña."_s,
                       u"Insert Confirm password."_s);
    return SonIguales(cajas);
}

bool HayClaveNueva(const CajasClave& cajas)
{
    return !EstaVacia(cajas.Clave) && !EstaVacia(cajas.Confirmacion);
}

void AñadeLogin_SQL(const CajasClave& cajas, const QString& bd)
{
    const QString sentencia =
        u" EXEC sp_addlogin '"_s + cajas.Usuario->Text() + u"'"_s + u",'"_s + cajas.Clave->Text() + u"'"_s;
    Ejecuta_SQL(bd.isEmpty() ? sentencia : sentencia + u",'"_s + bd + u"'"_s);
}

bool ExisteLogin_SQL(const QString& login)
{
    ado::Recordset logins;
    return !CreaRecordset(ConexionSQL, logins,
                          u" select * from master.dbo.sysxlogins"_s + u" where name='"_s + login + u"'"_s) ||
           logins.RecordCount() >= 1;
}

void CambiaClave_SQL(const CajasClave& cajas, const QString& anterior)
{
    Ejecuta_SQL(u" EXEC sp_password '"_s + anterior + u"'"_s + u",'"_s + cajas.Clave->Text() + u"'"_s +
                u",'"_s + cajas.Usuario->Text() + u"'"_s);
}
