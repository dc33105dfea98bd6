#include "app/Ordenes_Tabla.h"

#include "app/ConsolaSQL_Glo.h"
#include "browser/GruposFicheros.h"
#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "platform/basic/RuntimeError.h"

using namespace Qt::Literals::StringLiterals;

namespace {

formularios::frmTabla* DiseñoActivo()
{
    auto* diseño = dynamic_cast<formularios::frmTabla*>(::mdiPrincipal->ActiveForm());
    if (diseño == nullptr)
        basic::raise(basic::error::ObjectNotSet);
    return diseño;
}

} // namespace

void mnuAñadirTabla_Click()
try {
    NuevaTabla = true;
    const auto* nodo = ::frmAdministrador->NodoSeleccionado();
    if (nodo->Key().startsWith(u'B'))
        BaseDatosActual = nodo->Text();
    else if (nodo->Key().startsWith(u'T'))
        BaseDatosActual = ::frmAdministrador->TextoPadre();
    CapturaGruposFicheros_SQL();
    auto* diseño = CreaDiseño(QString());
    MuestraFormulario(diseño);
    diseño->setCaption(u"Tabla [Nueva]"_s);
} catch (...) {
    InformaError(u"mnuAñadirTabla_Click"_s);
}

void mnuInsertarFila_Click()
try {
    DiseñoActivo()->InsertarFila();
} catch (...) {
    InformaError(u"mnuInsertarFila_Click"_s);
}

void mnuEliminarFila_Click()
try {
    DiseñoActivo()->EliminarFila();
} catch (...) {
    InformaError(u"mnuEliminarFila_Click"_s);
}
