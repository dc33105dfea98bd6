// The five fills of the list: tables, procedures, views and users of a database, logins of the server.
#include "browser/frmAdministrador.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"
#include "platform/ado/Command.h"
#include "platform/controls/Pointer.h"

using namespace Qt::Literals::StringLiterals;

namespace formularios {

namespace {

QString TextoListaObjetos(const QString& campoTipo, const QString& filtro)
{
    return u"Select t.name as tabla,"_s + campoTipo + u",u.name as usuario,t.crdate as fecha "_s +
           u" from "_s + PrefijoBD + u"sysobjects t,"_s + PrefijoBD + u"sysusers u"_s + filtro +
           u" and u.uid = t.uid"_s + u" order by t.name"_s;
}

QString ClaseTabla(const QString& tipo)
{
    if (tipo == u"U"_s)
        return EnIdioma(u"Usuario"_s, u"User"_s).value_or(QString());
    if (tipo == u"S"_s)
        return EnIdioma(u"Sistema"_s, u"Sistem"_s).value_or(QString());
    return {};
}

QString ClaseVista(const QString& categoria)
{
    if (categoria == u"0"_s)
        return EnIdioma(u"Usiario"_s, u"User"_s).value_or(QString());
    return EnIdioma(u"Sistema"_s, u"Sistem"_s).value_or(QString());
}

void AñadeObjeto(controls::ListView* lista, const QString& clave, const ado::Recordset& registros,
                 const QString& clase)
{
    auto* item = lista->Add(clave, TextoCampo(registros, u"tabla"_s));
    item->setSubItems(1, TextoCampo(registros, u"usuario"_s));
    item->setSubItems(2, clase);
    item->setSubItems(3, TextoCampo(registros, u"fecha"_s));
}

} // namespace

void frmAdministrador::PonCabecerasObjetos()
{
    PonCabecera(ltvTablas, 1, u"Nombre"_s, u"Name"_s);
    PonCabecera(ltvTablas, 2, u"Propietario"_s, u"Owner"_s);
    PonCabecera(ltvTablas, 3, u"Usuario"_s, u"User"_s);
    PonCabecera(ltvTablas, 4, u"Fecha creación"_s, u"Creation Date"_s);
}

bool frmAdministrador::AbreLista(ado::Recordset& registros, const QString& texto,
                                 const QString& palabraEspañol, const QString& palabraIngles)
{
    if (!CreaRecordset(ConexionSQL, registros, texto))
        return false;
    const QString cuenta = QString::number(registros.RecordCount());
    PonTexto(lblDetalle, palabraEspañol + cuenta + u" elementos"_s, palabraIngles + cuenta + u" elements"_s);
    return true;
}

void frmAdministrador::MuestraTablas(const QString& /*Nombre*/)
try {
    ltvTablas->Clear();
    PonCabecerasObjetos();
    ado::Recordset registros;
    if (!AbreLista(registros,
                   TextoListaObjetos(u"t.xtype as tipo"_s, u" where (t.xtype = 'U'or t.xtype = 'S')"_s),
                   u" Tablas "_s, u" Tables "_s))
        return;
    for (int numero = 0; !registros.Eof(); ++numero, registros.MoveNext())
        AñadeObjeto(ltvTablas, u"T"_s + QString::number(numero), registros,
                    ClaseTabla(TextoCampo(registros, u"tipo"_s).trimmed()));
} catch (...) {
    InformaError(u"MuestraTablas"_s);
}

void frmAdministrador::MuestraProcedimientos(const QString& /*BaseDatos*/)
try {
    ltvTablas->Clear();
    PonCabecerasObjetos();
    ado::Recordset registros;
    if (!AbreLista(registros, TextoListaObjetos(u"t.xtype as tipo"_s, u" where t.xtype = 'P'"_s),
                   u" Procedimientos "_s, u" Procedures "_s))
        return;
    for (int numero = 0; !registros.Eof(); ++numero, registros.MoveNext())
        AñadeObjeto(ltvTablas, u"P"_s + QString::number(numero), registros, QString());
} catch (...) {
    InformaError(u"MuestraProcedimientos"_s);
}

void frmAdministrador::MuestraVistas()
try {
    ltvTablas->Clear();
    PonCabecerasObjetos();
    ado::Recordset registros;
    if (!AbreLista(registros, TextoListaObjetos(u"t.category as categoria"_s, u" where (t.xtype = 'V')"_s),
                   u" Vistas "_s, u" Views "_s))
        return;
    for (; !registros.Eof(); registros.MoveNext())
        AñadeObjeto(ltvTablas, u"V"_s + TextoCampo(registros, u"tabla"_s), registros,
                    ClaseVista(TextoCampo(registros, u"categoria"_s).trimmed()));
} catch (...) {
    InformaError(u"MuestraVistas"_s);
}

void frmAdministrador::MuestraUsuarios(const QString& BaseDatos)
try {
    ltvTablas->Clear();
    PonCabecera(ltvTablas, 1, u"Nombre"_s, u"Name"_s);
    PonCabecera(ltvTablas, 2, u"Inicio sesión"_s, u"Inicio sesion"_s);
    PonCabecera(ltvTablas, 3, QString(), QString());
    PonCabecera(ltvTablas, 4, QString(), QString());
    ado::Recordset registros;
    if (!AbreLista(
            registros,
            u" SELECT usu.Name as nombre,lo.loginname as login"_s + u"         From "_s +
                u"                   "_s + BaseDatos + u"..sysusers usu ,master.dbo.syslogins lo"_s +
                u"         Where usu.sid = lo.sid and "_s +
                u"                   (usu.islogin = 1 and usu.isaliased = 0 and usu.hasdbaccess = 1) "_s,
            u" Usuarios "_s, u" Users "_s))
        return;
    for (; !registros.Eof(); registros.MoveNext()) {
        const QString nombre = TextoCampo(registros, u"nombre"_s);
        ltvTablas->Add(u"U"_s + nombre, nombre)->setSubItems(1, TextoCampo(registros, u"login"_s));
    }
} catch (...) {
    InformaError(u"MuestraUsuarios"_s);
}

void frmAdministrador::Muestra_InicioSesion()
try {
    ltvTablas->Clear();
    PonCabecera(ltvTablas, 1, u"Nombre"_s, u"Name"_s);
    for (int columna = 2; columna <= 4; ++columna)
        ltvTablas->setColumnHeader(columna, QString());
    ado::Command orden;
    orden.setActiveConnection(ConexionSQL);
    orden.setCommandText(u"sp_helplogins"_s);
    ado::Recordset registros = orden.Execute();
    for (; !registros.Eof(); registros.MoveNext()) {
        const QString nombre = TextoCampo(registros, 0);
        auto* item = ltvTablas->Add(u"I"_s + nombre, nombre);
        for (int columna = 1; columna <= 3; ++columna)
            item->setSubItems(columna, QString());
    }
    controls::setMousePointer(controls::Pointer::Default);
} catch (...) {
    InformaErrorYPuntero(u"Muestra_InicioSesion"_s);
}

} // namespace formularios
