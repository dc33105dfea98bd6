#include "tabledesigner/Restricciones.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "tabledesigner/BD_SQL.h"
#include "tabledesigner/Campos.h"
#include "tabledesigner/Nombres.h"

using namespace Qt::Literals::StringLiterals;

namespace {

// The foreign keys where the table stands in `extremo`, rkeyid or fkeyid. False for a table that the
// server has not, too.
bool AbreReferencias(ado::Connection& conexion, ado::Recordset& referencias, const QString& extremo,
                     const QString& tabla)
{
    const QString id = DameIdTabla(conexion, tabla);
    return !id.isEmpty() && CreaRecordset(conexion, referencias,
                                          u"SELECT * from "_s + PrefijoBD + u"sysreferences"_s +
                                              u" WHERE "_s + extremo + u"="_s + id);
}

struct ClaveExterna
{
    QString restriccion;
    QString tabla; ///< that has the key

    [[nodiscard]] bool esConocida() const { return !restriccion.isEmpty() && !tabla.isEmpty(); }
};

ClaveExterna DameClaveExterna(ado::Connection& conexion, const ado::Recordset& referencias)
{
    return {DameNombreObjeto(conexion, TextoCampo(referencias, u"constid"_s)),
            DameNombreObjeto(conexion, TextoCampo(referencias, u"fkeyid"_s))};
}

QString SentenciaBorra(const QString& tabla, const QString& restriccion)
{
    return u"ALTER TABLE "_s + PrefijoBD + NombreSQL(tabla) + u" DROP CONSTRAINT "_s + restriccion;
}

// Each name but a sixteenth has a comma behind it, and the last character is cut: of sixteen names the
// last one loses a letter.
QString ListaRecortada(const QStringList& nombres)
{
    QString lista = nombres.join(u',');
    if (nombres.size() == MaximoColumnasClave)
        lista.chop(1);
    return lista;
}

bool TieneCampoPropio(ado::Connection& conexion, const ado::Recordset& referencias, const QString& campo)
{
    const QString id = TextoCampo(referencias, u"fkeyid"_s);
    for (int n = 1; n <= MaximoColumnasClave; ++n) {
        const QString colid = TextoCampo(referencias, u"fkey"_s + QString::number(n));
        if (colid.toInt() != 0 && DameNombreCampo(conexion, id, colid).toUpper() == campo.toUpper())
            return true;
    }
    return false;
}

void EliminaCampo_SQL(const QString& tabla, const QString& campo)
{
    EjecutaSQL(ConexionSQL, SentenciaBorra(tabla, u"[DF_"_s + tabla + u"_"_s + campo + u"]"_s));
    EjecutaSQL(ConexionSQL, u"ALTER TABLE "_s + PrefijoBD + NombreSQL(tabla) + u"  DROP COLUMN "_s + campo);
}

} // namespace

QString SentenciaClaveExterna(const QString& tabla, const QString& restriccion, const QString& propias,
                              const QString& referida, const QString& referidas)
{
    return u" ALTER TABLE "_s + NombreSQL(tabla) + u" ADD"_s + u" CONSTRAINT ["_s + restriccion +
           u"] FOREIGN KEY"_s + u" ("_s + propias + u") REFERENCES "_s + NombreSQL(referida) + u" ("_s +
           referidas + u")"_s;
}

bool EliminaVinculos(ado::Connection& conexion, const QString& tabla, QString& salida)
try {
    ado::Recordset referencias;
    if (!AbreReferencias(conexion, referencias, u"rkeyid"_s, tabla))
        return false;
    for (; !referencias.Eof(); referencias.MoveNext()) {
        const ClaveExterna clave = DameClaveExterna(conexion, referencias);
        const ColumnasClave columnas = DameColumnasClave(conexion, referencias);
        const QString referida = DameNombreObjeto(conexion, TextoCampo(referencias, u"rkeyid"_s));
        if (!clave.esConocida())
            continue;
        PonEnCola(salida,
                  SentenciaClaveExterna(clave.tabla, clave.restriccion, ListaRecortada(columnas.propias),
                                        referida, ListaRecortada(columnas.referidas)));
        EjecutaSQL(conexion, SentenciaBorra(clave.tabla, clave.restriccion));
    }
    return true;
} catch (...) {
    InformaError(u"EliminaVinculos"_s);
    return false;
}

void EliminaLosVinculos(ado::Connection& conexion, const QString& tabla, const QString& campo)
try {
    ado::Recordset referencias;
    if (!AbreReferencias(conexion, referencias, u"fkeyid"_s, tabla))
        return;
    for (; !referencias.Eof(); referencias.MoveNext()) {
        const bool cuenta = campo.isEmpty() || TieneCampoPropio(conexion, referencias, campo);
        const ClaveExterna clave = DameClaveExterna(conexion, referencias);
        if (cuenta && clave.esConocida())
            EjecutaSQL(conexion, SentenciaBorra(clave.tabla, clave.restriccion));
    }
} catch (...) {
    InformaError(u"EliminaLosVinculos"_s);
}

void Elimina_Sino_Esta_SQL(const DatosTabla& datos)
try {
    PrefijoBD = datos.BaseDatos + u".."_s;
    const QString& tabla = datos.NombreTabla;
    ado::Recordset tablas;
    if (!AbreTabla(ConexionSQL, tablas, tabla))
        return;
    for (; !tablas.Eof(); tablas.MoveNext()) {
        ado::Recordset columnas;
        if (!AbreCampos(ConexionSQL, columnas, TextoCampo(tablas, u"id"_s)))
            return;
        for (; !columnas.Eof(); columnas.MoveNext()) {
            const QString campo = TextoCampo(columnas, u"Name"_s);
            if (datos.CamposCargados.contains(campo, Qt::CaseInsensitive) && !ExisteElCampo(datos, campo))
                EliminaCampo_SQL(tabla, campo);
        }
    }
} catch (...) {
    InformaError(u"Elimina_Sino_Esta_SQL"_s);
}

void RelacionConOtrasTablas(ado::Connection& conexion, const QString& tabla)
try {
    ado::Recordset referencias;
    if (!AbreReferencias(conexion, referencias, u"rkeyid"_s, tabla))
        return;
    for (; !referencias.Eof(); referencias.MoveNext()) {
        const ClaveExterna clave = DameClaveExterna(conexion, referencias);
        if (clave.esConocida())
            EjecutaSQL(conexion, SentenciaBorra(clave.tabla, clave.restriccion));
    }
} catch (...) {
    InformaError(u"RelacionConOtrasTablas"_s);
}

void EliminaConstraint(ado::Connection& conexion, const QString& tabla)
try {
    const QString id = DameIdTabla(conexion, tabla);
    ado::Recordset restricciones;
    if (id.isEmpty() || !CreaRecordset(conexion, restricciones,
                                       u"SELECT * from "_s + PrefijoBD + u"sysobjects"_s +
                                           u" where xtype='D' "_s + u" and parent_obj="_s + id))
        return;
    for (; !restricciones.Eof(); restricciones.MoveNext())
        EjecutaSQL(conexion, SentenciaBorra(tabla, u"["_s + TextoCampo(restricciones, u"Name"_s) + u"]"_s));
} catch (...) {
    InformaError(u"EliminaConstraint"_s);
}
