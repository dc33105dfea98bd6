#include "tabledesigner/ActualizaLaTabla.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "platform/controls/Pointer.h"
#include "tabledesigner/BD_SQL.h"
#include "tabledesigner/GuardaCampos.h"
#include "tabledesigner/GuardaIndices.h"
#include "tabledesigner/GuardaRelaciones.h"
#include "tabledesigner/Restricciones.h"

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int SinTransaccion = 3903; // the server has rolled back by itself

// A rollback that finds nothing to undo, or nobody to ask, has been told of by the error before it.
void DeshaceTransaccion()
try {
    ConexionSQL.RollbackTrans();
} catch (const basic::RuntimeError& error) {
    if (ConexionSQL.State() != 0 && error.number() != SinTransaccion)
        InformaError(u"ActualizaLaTabla"_s);
}

} // namespace

bool ActualizaLaTabla(DatosTabla& datos)
try {
    TomaGlobales(datos);
    ConexionSQL.BeginTrans();
    const QString idTabla = DameIdTabla(ConexionSQL, datos.NombreTabla);
    EjecutaSQL(ConexionSQL, u"USE "_s + datos.BaseDatos);
    EmpiezaCampos(datos);
    if (!GuardaCampos(datos, idTabla)) {
        controls::setMousePointer(controls::Pointer::Default);
        DeshaceTransaccion();
        return false;
    }
    TerminaCampos(datos);
    // Of keys that could not be read whole, less would come back than goes.
    if (datos.IndicesCompletos)
        GuardaIndices(datos);
    GuardaRelaciones(datos);
    Elimina_Sino_Esta_SQL(datos);
    ConexionSQL.CommitTrans();
    return true;
} catch (...) {
    InformaError(u"ActualizaLaTabla"_s);
    DeshaceTransaccion();
    return false;
}
