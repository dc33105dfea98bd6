#include "app/Ordenes_Seguridad.h"

#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "security/frmInicioSesion.h"

using namespace Qt::Literals::StringLiterals;

void mnuAñadirInicioSesion_Click()
try {
    UsuarioActual.clear();
    BaseDatosActual = ::frmAdministrador->TextoPadre();
    MuestraFormulario(&*::frmInicioSesion);
} catch (...) {
    InformaError(u"mnuAñadirInicioSesion_Click"_s);
}
