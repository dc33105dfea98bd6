#include "databasedesigner/Ubicacion.h"

#if __has_include("places/frmUbicacion.h")
#include "places/frmUbicacion.h"

void MuestraUbicacion()
{
    ::frmUbicacion->Show();
}
#else
void MuestraUbicacion() {}
#endif
