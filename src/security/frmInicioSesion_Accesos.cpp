// Access to databases and roles: each tick is sent at once, and the first one of a new login makes it.
#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "security/frmInicioSesion.h"

using namespace Qt::Literals::StringLiterals;

namespace formularios {

void frmInicioSesion::EnlazaAccesos()
{
    using controls::DataGrid;
    constexpr int LetrasNombre = 32;
    constexpr int LetrasUsuario = 16;
    TDBGridBaseDatos->setColumnCount(ColBaseDatos::Usuario + 1);
    TDBGridBaseDatos->Columns(ColBaseDatos::Acceso)
        .ValueItems()
        .setPresentation(controls::ValueItems::Presentation::CheckBox);
    const int letra = TDBGridBaseDatos->fontMetrics().averageCharWidth();
    TDBGridBaseDatos->Columns(ColBaseDatos::Nombre).setCaption(u"Base de datos"_s);
    TDBGridBaseDatos->Columns(ColBaseDatos::Nombre).setWidth(LetrasNombre * letra);
    TDBGridBaseDatos->Columns(ColBaseDatos::Usuario).setCaption(u"Usuario"_s);
    TDBGridBaseDatos->Columns(ColBaseDatos::Usuario).setWidth(LetrasUsuario * letra);
    for (const int columna : {ColBaseDatos::Nombre, ColBaseDatos::Usuario})
        TDBGridBaseDatos->Columns(columna).setLocked(true);
    // The row below the last database stands for none.
    connect(TDBGridBaseDatos, &DataGrid::BeforeColEdit, this,
            [this](int, int, bool& cancela) { cancela = BaseDatosFila().isEmpty(); });
    connect(TDBGridBaseDatos, &DataGrid::BeforeColUpdate, this,
            [this](int, const QString&, bool& cancela) { TDBGridBaseDatos_BeforeColUpdate(cancela); });
    connect(TDBGridBaseDatos, &DataGrid::AfterColUpdate, this,
            &frmInicioSesion::TDBGridBaseDatos_AfterColUpdate);
    connect(TDBGridBaseDatos, &DataGrid::RowColChange, this, &frmInicioSesion::TDBGridBaseDatos_RowColChange);
    connect(lstFunciones, &controls::CheckList::ItemCheck, this, &frmInicioSesion::lstFunciones_ItemCheck);
}

QString frmInicioSesion::BaseDatosFila() const
{
    return TDBGridBaseDatos->Columns(ColBaseDatos::Nombre).Text();
}

void frmInicioSesion::CapturaBaseDatos(const QString& login)
try {
    ado::Recordset bases;
    if (!CreaRecordset(ConexionSQL, bases, u"Select name from master.dbo.sysdatabases order by name"_s))
        return;
    BaseDatosLogin.Redim(static_cast<int>(bases.RecordCount()), ColBaseDatos::Ultima);
    for (int fila = 0; !bases.Eof(); ++fila, bases.MoveNext()) {
        const QString base = TextoCampo(bases, u"Name"_s);
        PrefijoBD = base + u".."_s;
        const bool tiene =
            ExisteRegistro(ConexionSQL, false, u"sysusers"_s, {u"name"_s, login, TipoCondicion::Texto});
        BaseDatosLogin(fila, ColBaseDatos::Acceso) = tiene ? u"-1"_s : u"0"_s;
        BaseDatosLogin(fila, ColBaseDatos::Nombre) = base;
        BaseDatosLogin(fila, ColBaseDatos::Usuario) = QString();
    }
} catch (...) {
    InformaError(u"CapturaBaseDatos"_s);
}

void frmInicioSesion::CapturaFunciones()
try {
    CapturaFunciones_SQL(lstFunciones);
} catch (...) {
    InformaError(u"CapturaFunciones"_s);
}

void frmInicioSesion::PermisosFunciones(const QString& bd)
try {
    Cargando = true;
    CapturaFunciones();
    PrefijoBD = bd + u".."_s;
    PermisosFunciones_SQL(lstFunciones, txtUsuario->Text(), bd);
    Cargando = false;
} catch (...) {
    Cargando = false;
    InformaError(u"PermisosFunciones"_s);
}

void frmInicioSesion::TDBGridBaseDatos_BeforeColUpdate(bool& cancela)
try {
    if (!txtUsuario->isEnabled())
        return;
    cancela = true; // without the login nothing can be given to it
    if (!Comprobar())
        return;
    if (ExisteLogin_SQL(txtUsuario->Text())) {
        cancela = false;
        return;
    }
    CreaLogin();
    cancela = false;
} catch (...) {
    InformaError(u"TDBGridBaseDatos_AfterColUpdate"_s);
}

void frmInicioSesion::TDBGridBaseDatos_AfterColUpdate()
try {
    if (!isVisible())
        return;
    const QString bd = BaseDatosFila();
    const QString login = txtUsuario->Text();
    if (TDBGridBaseDatos->Columns(ColBaseDatos::Acceso).Text() == u"0"_s) {
        Ejecuta_SQL(u"use "_s + bd);
        Ejecuta_SQL(u"exec sp_revokedbaccess  '"_s + login + u"'"_s);
        lstFunciones->Clear();
        return;
    }
    Ejecuta_SQL(u"use "_s + bd);
    Ejecuta_SQL(u"exec sp_grantdbaccess '"_s + login + u"','"_s + login + u"'"_s);
    PermisosFunciones(bd);
} catch (...) {
    InformaError(u"TDBGridBaseDatos_AfterColUpdate"_s);
}

void frmInicioSesion::TDBGridBaseDatos_RowColChange()
try {
    const QString bd = BaseDatosFila();
    if (bd.isEmpty() || TDBGridBaseDatos->Columns(ColBaseDatos::Acceso).Text() == u"0"_s)
        return lstFunciones->Clear();
    PermisosFunciones(bd);
} catch (...) {
    InformaError(u"TDBGridBaseDatos_RowColChange"_s);
}

void frmInicioSesion::lstFunciones_ItemCheck(int item)
try {
    if (Cargando)
        return;
    Ejecuta_SQL(u"use "_s + BaseDatosFila());
    // The role is the one on which the list stands.
    const QString funcion = lstFunciones->List(lstFunciones->ListIndex());
    const QString orden =
        lstFunciones->Selected(item) ? u" EXEC sp_addrolemember  '"_s : u" EXEC sp_droprolemember   '"_s;
    Ejecuta_SQL(orden + funcion + u"','"_s + txtUsuario->Text() + u"'"_s);
} catch (...) {
    InformaError(u"TDBGridBaseDatos_AfterColUpdate"_s);
}

} // namespace formularios
