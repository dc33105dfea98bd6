#include "core/mdiPrincipal.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"
#include "core/LeeIdioma.h"
#include "platform/controls/Menus.h"

#include <QCoreApplication>

using namespace Qt::Literals::StringLiterals;

controls::Slot<formularios::mdiPrincipal> mdiPrincipal;

namespace formularios {

mdiPrincipal::mdiPrincipal()
{
    setupUi(this);
    for (auto* separador : {Separator1, Separator2, Separator3, Separator4, Separator5, Separator6}) {
        separador->setSeparator(true);
        separador->setText(QString()); // the stored dash would show as a heading
    }
    controls::setVisible(mnuTabla, false);
    connect(mnuSalir, &QAction::triggered, this, &mdiPrincipal::mnuSalir_Click);
}

void mdiPrincipal::MDIForm_Load()
try {
    controls::setVisible(mnuAdministrador, false);
    controls::setVisible(mnuAnalizadorConsultas, false);
    controls::setVisible(mnuBaseDatos, false);
    controls::setVisible(mnuConsulta, false);
    LeeIdiomaRegistro();
} catch (...) {
    InformaError(u"MDIForm_Load"_s);
}

void mdiPrincipal::MDIForm_Activate()
{
    PonIdioma();
}

void mdiPrincipal::PonIdioma()
try {
    PonIdiomaArchivo();
    PonIdiomaBaseDatos();
    PonTexto(mnuConsulta, u"&Consulta"_s, u"&Query"_s);
    PonTexto(mnuAbrir, u"&Abrir"_s, u"&Open"_s);
    PonTexto(mnuGuardar, u"&Guardar"_s, u"&Save"_s);
} catch (...) {
    InformaError(u"PonIdioma"_s);
}

void mdiPrincipal::PonIdiomaArchivo()
{
    PonTexto(mnuArchivo, u"&Archivo"_s, u"&File"_s);
    PonTexto(mnuConectar, u"&Conectar"_s, u"&Connect"_s);
    PonTexto(mnuAdministrador, u"&Administrador"_s, u"&Administrator"_s);
    PonTexto(mnuAnalizadorConsultas, u"A&nalizador Consultas"_s, u"&Query Analyzer"_s);
    PonTexto(mnuSalir, u"&Salir"_s, u"&Exit"_s);
}

void mdiPrincipal::PonIdiomaBaseDatos()
{
    PonTexto(mnuBaseDatos, u"&Base Datos"_s, u"&Database"_s);
    PonTexto(mnuNuevaBD, u"&Nueva Base Datos"_s, u"&New Database"_s);
    PonTexto(mnuAñadirTabla, u"Añadir &Tabla"_s, u"Add &Table"_s);
    PonTexto(mnuAñadirVista, u"Añadir &Vista"_s, u"Add &View"_s);
    PonTexto(mnuAñadirProcedimiento, u"Añadir &Procedimiento"_s, u"Add &Procedure"_s);
    PonTexto(mnuPropiedadesBD, u"&Propiedades"_s, u"&Properties"_s);
    PonTexto(mnuDiseño, u"&Diseño"_s, u"&Desing"_s);
    PonTexto(mnuVerRegistros, u"&Ver Registros"_s, u"V&iew Register"_s);
    PonTexto(mnuEliminar, u"&Eliminar"_s, u"&Delete"_s);
    PonTexto(mnuCopiaSeguridad, u"&Copia Seguridad Base de Datos"_s, u"&Backup database"_s);
    PonTexto(mnuRestaurarCopia, u"&Restaurar Copia Seguridad"_s, u"&Restore backup"_s);
    PonTexto(mnuAñadirInicioSesion, u"Añadir Inicio &Sesion"_s, u"Add Inicio &Sesion"_s);
    PonTexto(mnuAñadirUsuario, u"Añadir &Usuario"_s, u"Add &User"_s);
}

void mdiPrincipal::mnuSalir_Click()
{
    try {
        if (ConexionSQL.State() != 0)
            ConexionSQL.Close();
    } catch (...) {
        InformaError(u"mnuSalir_Click"_s);
    }
    QCoreApplication::exit(0);
}

} // namespace formularios

bool ExisteFormulario(const QString& nombre)
try {
    for (const QString& cargado : controls::LoadedFormNames())
        if (cargado.toUpper() == nombre.toUpper())
            return true;
    return false;
} catch (...) {
    InformaError(u"ExisteFormulario"_s);
    return false;
}

void MuestraFormulario(controls::Form* frm)
try {
    if (!ExisteFormulario(frm->Name())) {
        frm->Show();
        ::mdiPrincipal->Cascade();
        frm->setLeft(0);
        return;
    }
    frm->Show(); // of the table designers another one may be loaded
    ::mdiPrincipal->Cascade();
    for (controls::Form* formulario : controls::LoadedForms())
        if (formulario->Name() == u"frmTabla"_s)
            formulario->setLeft(0);
} catch (...) {
    InformaError(u"MuestraFormulario"_s, u"Error mostrando formulario."_s);
}
