#include "app/Ordenes_Copias.h"

#include "backup/frmCopiaSeguridad.h"
#include "backup/frmRestaurarCopia.h"
#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/Global.h"

using namespace Qt::Literals::StringLiterals;

void mnuCopiaSeguridad_Click()
try {
    BaseDatosActual = ::frmAdministrador->NodoSeleccionado()->Text();
    ::frmCopiaSeguridad->Show();
} catch (...) {
    InformaError(u"mnuCopiaSeguridad_Click"_s);
}

void mnuRestaurarCopia_Click()
try {
    BaseDatosActual = ::frmAdministrador->NodoSeleccionado()->Text();
    ::frmRestaurarCopia->Show();
} catch (...) {
    InformaError(u"mnuRestaurarCopia_Click"_s);
}
