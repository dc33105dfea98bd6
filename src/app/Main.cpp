#include "app/Main.h"

#include "app/Ordenes.h"
#include "core/Funciones.h"
#include "core/LeeIdioma.h"
#include "core/mdiPrincipal.h"
#include "platform/ado/DriverThread.h"
#include "platform/controls/Waiting.h"

using namespace Qt::Literals::StringLiterals;

void Main()
try {
    LeeIdiomaRegistro();
    EnlazaOrdenes();
    ado::setWaiter({controls::waitPainting, controls::wakeWaiting});
    ::mdiPrincipal->Show();
} catch (...) {
    InformaError(u"Main"_s);
}
