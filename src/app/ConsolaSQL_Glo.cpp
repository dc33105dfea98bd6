#include "app/ConsolaSQL_Glo.h"

#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "query/frmProcedimiento.h"
#include "query/frmVista.h"
#include "security/frmInicioSesion.h"

using namespace Qt::Literals::StringLiterals;

formularios::frmTabla* CreaDiseño(const QString& clave)
{
    auto& ranura = TablasAbiertas.at(static_cast<std::size_t>(RanuraTabla(clave)));
    ranura = new formularios::frmTabla; // owned by its life as a window: deleted after its unload
    ranura->Datos.ClaveTabla = clave;
    return ranura;
}

void DiseñoTabla()
try {
    const auto* item = ::frmAdministrador->ItemSeleccionado();
    // A copy: showing the designer may read the list again.
    const QString nombre = item->Text(); // NOLINT(performance-unnecessary-copy-initialization)
    auto* diseño = CreaDiseño(item->Key());
    diseño->Datos.NombreTablaInicial = nombre;
    diseño->Datos.EsTablaSistema = item->SubItems(2) == u"Sistema"_s;
    MuestraFormulario(diseño);
    diseño->setCaption(u"Tabla ["_s + nombre + u"]"_s);
} catch (...) {
    InformaError(u"DiseñoTabla"_s);
}

void DiseñoVista()
try {
    MuestraFormulario(&*::frmVista);
    ::frmVista->CapturaVistas_SQL(::frmAdministrador->ItemSeleccionado()->Text());
} catch (...) {
    InformaError(u"DiseñoVista"_s);
}

void DiseñoProcedimiento()
try {
    MuestraFormulario(&*::frmProcedimiento);
    ::frmProcedimiento->CapturaProcedimiento_SQL(::frmAdministrador->ItemSeleccionado()->Text());
} catch (...) {
    InformaError(u"DiseñoProcedimiento"_s);
}

void DiseñoUsuario()
try {
    const auto* item = ::frmAdministrador->ItemSeleccionado();
    UsuarioActual = item->Text();
    LoginActual = item->SubItems(1);
} catch (...) {
    InformaError(u"DiseñoUsuario"_s);
}

void DiseñoInicioSesion()
try {
    UsuarioActual = ::frmAdministrador->ItemSeleccionado()->Text();
    MuestraFormulario(&*::frmInicioSesion);
} catch (...) {
    InformaError(u"DiseñoInicioSesion"_s);
}
