#include "app/Ordenes.h"

#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/frmConectar.h"
#include "core/mdiPrincipal.h"
#include "query/frmAnalizadorConsultas.h"

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

} // namespace

void EnlazaOrdenes()
{
    auto* principal = &*::mdiPrincipal;
    QObject::connect(principal->mnuConectar, &QAction::triggered, principal, mnuConectar_Click);
    QObject::connect(principal->mnuAdministrador, &QAction::triggered, principal, mnuAdministrador_Click);
    QObject::connect(principal->mnuAnalizadorConsultas, &QAction::triggered, principal,
                     mnuAnalizadorConsultas_Click);
}
