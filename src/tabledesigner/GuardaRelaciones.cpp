#include "tabledesigner/GuardaRelaciones.h"

#include "core/Global.h"
#include "tabledesigner/BD_SQL.h"
#include "tabledesigner/Nombres.h"
#include "tabledesigner/Restricciones.h"

using namespace Qt::Literals::StringLiterals;

namespace {

// One clause a pair of columns: the server takes only relations of one pair.
QString ClausulasRelacion(const QString& relacion, const Matriz& lineas)
{
    QString clausulas;
    for (int linea = 0; linea < UltimaFila; ++linea) {
        const QString propia = lineas.at(linea, ColCampoRelacion::Propia).trimmed();
        if (propia.isEmpty())
            continue;
        clausulas += u" CONSTRAINT ["_s + relacion + u"] FOREIGN KEY"_s + u" ("_s + propia +
                     u" ) REFERENCES "_s +
                     NombreSQL(lineas.at(linea, ColCampoRelacion::TablaExterna).trimmed()) + u" ("_s +
                     lineas.at(linea, ColCampoRelacion::Externa).trimmed() + u")"_s;
    }
    return clausulas;
}

void GuardaRelacion(const DatosTabla& datos, const QString& tabla, int i)
{
    const QString relacion = datos.Relaciones.at(i, 0);
    ObjetoExiste = ExisteLaRelacion(ConexionSQL, tabla, relacion, {});
    SentenciaRelacion = u"ALTER TABLE "_s + NombreSQL(tabla) + u" ADD"_s +
                        ClausulasRelacion(relacion, datos.CamposRelacion(i));
    EjecutaSQL(ConexionSQL, u"Use "_s + datos.BaseDatos);
    EjecutaSQL(ConexionSQL, SentenciaRelacion);
    SentenciaIndice.clear();
    ClavesIndice.clear();
}

} // namespace

void GuardaRelaciones(const DatosTabla& datos)
{
    const QString& tabla = datos.NombreTabla;
    // What could not be read whole could not be made again either.
    if (!datos.RelacionesCompletas) {
        EjecutaCola(ConexionSQL, SentenciaRelacion);
        return;
    }
    EliminaLosVinculos(ConexionSQL, tabla, {});
    EjecutaCola(ConexionSQL, SentenciaRelacion);
    // The queue may hold keys of the table itself.
    EliminaLosVinculos(ConexionSQL, tabla, {});
    for (int i = 0; i < ContadorRelaciones; ++i)
        GuardaRelacion(datos, tabla, i);
}
