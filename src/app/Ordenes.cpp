#include "app/Ordenes.h"

#include "app/Ordenes_BD.h"
#include "app/Ordenes_Copias.h"
#include "app/Ordenes_Objetos.h"
#include "app/Ordenes_Scripts.h"
#include "app/Ordenes_Seguridad.h"
#include "app/Ordenes_Tabla.h"
#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "core/frmConectar.h"
#include "core/mdiPrincipal.h"
#include "query/frmAnalizadorConsultas.h"
#include "query/frmProcedimiento.h"
#include "query/frmVista.h"

using namespace Qt::Literals::StringLiterals;

namespace {

void mnuConectar_Click()
try {
    ::frmConectar->Show();
} catch (...) {
    InformaError(u"mnuConectar_Click"_s);
}

void mnuAdministrador_Click()
try {
    ::frmAdministrador->Show();
} catch (...) {
    InformaError(u"mnuAdministrador_Click"_s);
}

void mnuAnalizadorConsultas_Click()
try {
    ::frmAnalizadorConsultas->Show();
} catch (...) {
    InformaError(u"mnuAnalizadorConsultas_Click"_s);
}

void mnuAñadirVista_Click()
try {
    BaseDatosActual = ::frmAdministrador->TextoPadre();
    MuestraFormulario(&*::frmVista);
} catch (...) {
    InformaError(u"mnuAñadirVista_Click"_s);
}

void mnuAñadirProcedimiento_Click()
try {
    BaseDatosActual = ::frmAdministrador->TextoPadre();
    MuestraFormulario(&*::frmProcedimiento);
} catch (...) {
    InformaError(u"mnuAñadirProcedimiento_Click"_s);
}

} // namespace

void EnlazaOrdenes()
{
    auto* m = &*::mdiPrincipal;
    const auto enlaza = [m](QAction* entrada, void (*orden)()) {
        QObject::connect(entrada, &QAction::triggered, m, orden);
    };
    enlaza(m->mnuConectar, mnuConectar_Click);
    enlaza(m->mnuAdministrador, mnuAdministrador_Click);
    enlaza(m->mnuAnalizadorConsultas, mnuAnalizadorConsultas_Click);
    enlaza(m->mnuNuevaBD, mnuNuevaBD_Click);
    enlaza(m->mnuPropiedadesBD, mnuPropiedadesBD_Click);
    enlaza(m->mnuAñadirTabla, mnuAñadirTabla_Click);
    enlaza(m->mnuAñadirVista, mnuAñadirVista_Click);
    enlaza(m->mnuAñadirProcedimiento, mnuAñadirProcedimiento_Click);
    enlaza(m->mnuAñadirInicioSesion, mnuAñadirInicioSesion_Click);
    enlaza(m->mnuDiseño, mnuDiseño_Click);
    enlaza(m->mnuVerRegistros, mnuVerRegistros_Click);
    enlaza(m->mnuEliminar, mnuEliminar_Click);
    enlaza(m->mnuCopiaSeguridad, mnuCopiaSeguridad_Click);
    enlaza(m->mnuRestaurarCopia, mnuRestaurarCopia_Click);
    enlaza(m->mnuAbrir, mnuAbrir_Click);
    enlaza(m->mnuGuardar, mnuGuardar_Click);
    enlaza(m->mnuInsertarFila, mnuInsertarFila_Click);
    enlaza(m->mnuEliminarFila, mnuEliminarFila_Click);
}
