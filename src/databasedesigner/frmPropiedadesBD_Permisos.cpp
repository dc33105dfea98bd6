// The tab of rights: a changed cell is sent at once.
#include "core/Funciones.h"
#include "databasedesigner/PermisosBD.h"
#include "databasedesigner/frmPropiedadesBD.h"

using namespace Qt::Literals::StringLiterals;

namespace formularios {

void frmPropiedadesBD::TDBGridPermisos_AfterColUpdate(int columna)
try {
    if (columna == ColPermiso::Usuario)
        return;
    CambiaPermiso_SQL(txtNombreBD->Text(), columna, TDBGridPermisos->Columns(ColPermiso::Usuario).Text(),
                      TDBGridPermisos->Columns(columna).Text());
} catch (...) {
    InformaError(u"TDBGridPermisos_BeforeColEdit"_s);
}

} // namespace formularios
