#include "app/Ordenes_Objetos.h"

#include "app/ConsolaSQL_Glo.h"
#include "browser/GruposFicheros.h"
#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "platform/controls/Pointer.h"
#include "query/frmAnalizadorConsultas.h"

using namespace Qt::Literals::StringLiterals;

namespace {

void EliminaBase(const QString& nombre)
{
    BaseDatosActual = nombre;
    Ejecuta_SQL(u"DROP DATABASE "_s + BaseDatosActual);
    ::frmAdministrador->CapturaBD_SQL();
    ::frmAdministrador->SetFocus();
}

void EliminaTabla(const QString& nombre)
{
    BaseDatosActual = ::frmAdministrador->TextoPadre();
    Ejecuta_SQL(u"use "_s + BaseDatosActual);
    Ejecuta_SQL(u"DROP TABLE "_s + nombre);
    PrefijoBD = ::frmAdministrador->TextoPadre() + u".."_s;
    ::frmAdministrador->MuestraTablas(nombre);
}

void EliminaVista(const QString& nombre)
{
    BaseDatosActual = ::frmAdministrador->TextoPadre();
    Ejecuta_SQL(u"Use "_s + BaseDatosActual);
    Ejecuta_SQL(u"DROP VIEW "_s + nombre);
    PrefijoBD = ::frmAdministrador->TextoPadre() + u".."_s;
    ::frmAdministrador->MuestraVistas();
}

// The session stays in the last database visited.
void RevocaAccesos(const QString& login)
{
    ado::Recordset bases;
    if (!CreaRecordset(ConexionSQL, bases, u"Select name from master.dbo.sysdatabases order by name"_s))
        return;
    for (; !bases.Eof(); bases.MoveNext()) {
        const QString base = TextoCampo(bases, u"Name"_s);
        PrefijoBD = base + u".."_s;
        if (!ExisteRegistro(ConexionSQL, false, u"sysusers"_s, {u"name"_s, login, TipoCondicion::Texto}))
            continue;
        Ejecuta_SQL(u"use "_s + base);
        Ejecuta_SQL(u"exec sp_revokedbaccess  '"_s + login + u"'"_s);
    }
}

void EliminaLogin(const QString& login)
{
    RevocaAccesos(login);
    Ejecuta_SQL(u" EXEC sp_droplogin '"_s + login + u"'"_s);
    ::frmAdministrador->Muestra_InicioSesion();
}

// Runs in the session's current database, whichever that is.
void EliminaUsuario(const QString& usuario)
{
    Ejecuta_SQL(u" sp_revokedbaccess '"_s + usuario + u"'"_s);
    BaseDatosActual = ::frmAdministrador->TextoPadre();
    ::frmAdministrador->MuestraUsuarios(BaseDatosActual);
}

void EliminaItem(const controls::ListItem* item)
{
    // A copy: the refresh takes the item away.
    const QString nombre = item->Text(); // NOLINT(performance-unnecessary-copy-initialization)
    switch (item->Key().front().unicode()) {
    case u'T':
        return EliminaTabla(nombre);
    case u'V':
        return EliminaVista(nombre);
    case u'I':
        return EliminaLogin(nombre);
    case u'U':
        return EliminaUsuario(nombre);
    default:
        return; // procedures are not dropped from here
    }
}

} // namespace

void mnuDiseño_Click()
try {
    BaseDatosActual = ::frmAdministrador->TextoPadre();
    const auto* item = ::frmAdministrador->ItemSeleccionado();
    switch (item->Key().front().unicode()) {
    case u'T':
        CapturaGruposFicheros_SQL();
        NuevaTabla = false;
        return DiseñoTabla();
    case u'V':
        return DiseñoVista();
    case u'P':
        return DiseñoProcedimiento();
    case u'I':
        UsuarioActual = item->Text();
        return DiseñoInicioSesion();
    case u'U':
        UsuarioActual = item->Text();
        return DiseñoUsuario();
    default:
        return;
    }
} catch (...) {
    InformaError(u"mnuDiseño_Click"_s);
}

void mnuEliminar_Click()
try {
    controls::setMousePointer(controls::Pointer::Hourglass);
    const auto* nodo = ::frmAdministrador->NodoSeleccionado();
    if (nodo->Key().startsWith(u"BD"_s))
        EliminaBase(nodo->Text());
    EliminaItem(::frmAdministrador->ItemSeleccionado());
    controls::setMousePointer(controls::Pointer::Default);
} catch (...) {
    InformaErrorYPuntero(u"mnuEliminar_Click"_s);
}

void mnuVerRegistros_Click()
try {
    controls::setMousePointer(controls::Pointer::Hourglass);
    BaseDatosActual = ::frmAdministrador->TextoPadre();
    ::frmAnalizadorConsultas->Show();
    BuscarComboCadena(BaseDatosActual, ::frmAnalizadorConsultas->cboBD);
    const auto* item = ::frmAdministrador->ItemSeleccionado();
    const QChar letra = item->Key().front();
    if (letra == u'T' || letra == u'V')
        ::frmAnalizadorConsultas->txtSQL->setText(u"select * from "_s + item->Text());
    ::frmAnalizadorConsultas->Ejecuta();
    controls::setMousePointer(controls::Pointer::Default);
} catch (...) {
    InformaErrorYPuntero(u"mnuVerRegistros_Click"_s);
}
