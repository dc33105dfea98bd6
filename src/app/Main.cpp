#include "app/Main.h"

#include "app/Ordenes.h"
#include "core/Funciones.h"
#include "core/LeeIdioma.h"
#include "core/mdiPrincipal.h"

using namespace Qt::Literals::StringLiterals;

void Main()
try {
    LeeIdiomaRegistro();
    EnlazaOrdenes();
    ::mdiPrincipal->Show();
} catch (...) {
    InformaError(u"Main"_s);
}
