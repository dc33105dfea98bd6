#include "app/ConsolaSQL_Glo.h"

#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "platform/basic/RuntimeError.h"
#include "query/frmProcedimiento.h"
#include "query/frmVista.h"

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int UltimaTablaAbierta = 200;

} // namespace

void DiseñoTabla()
try {
    const auto* item = ::frmAdministrador->ItemSeleccionado();
    const int ranura = item->Key().mid(1).toInt();
    if (ranura > UltimaTablaAbierta)
        basic::raise(basic::error::Subscript);
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
} catch (...) {
    InformaError(u"DiseñoInicioSesion"_s);
}
