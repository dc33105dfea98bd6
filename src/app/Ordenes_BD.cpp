#include "app/Ordenes_BD.h"

#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "databasedesigner/frmPropiedadesBD.h"

using namespace Qt::Literals::StringLiterals;

void mnuNuevaBD_Click()
try {
    NuevaBD = true;
    ::frmPropiedadesBD->Show();
} catch (...) {
    InformaError(u"mnuNuevaBD_Click"_s);
}

void mnuPropiedadesBD_Click()
try {
    NuevaBD = false;
    BaseDatosActual = ::frmAdministrador->NodoSeleccionado()->Text();
    ::frmPropiedadesBD->Show();
} catch (...) {
    InformaError(u"mnuPropiedadesBD_Click"_s);
}
