#include "tabledesigner/Vinculos.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"
#include "tabledesigner/BD_SQL.h"
#include "tabledesigner/BD_SQL_Campos.h"
#include "tabledesigner/Nombres.h"
#include "tabledesigner/Restricciones.h"

using namespace Qt::Literals::StringLiterals;

namespace {

// The links of a table: of the keys that reference it, and of its own.
bool AbreVinculosDebajo(ado::Connection& conexion, ado::Recordset& vinculos, const QString& tabla)
{
    return CreaRecordset(conexion, vinculos, u"EXEC sp_fkeys '"_s + tabla + u"'"_s);
}

bool AbreVinculosEncima(ado::Connection& conexion, ado::Recordset& vinculos, const QString& tabla)
{
    return CreaRecordset(conexion, vinculos, u"EXEC sp_fkeys NULL,NULL,NULL,'"_s + tabla + u"'"_s);
}

bool EsDeLaReferencia(const ado::Recordset& vinculos, const QString& campo, const QString& campoOrigen)
{
    return MismoNombre(TextoCampo(vinculos, u"pkcolumn_name"_s), campo) &&
           !MismoNombre(TextoCampo(vinculos, u"fkcolumn_name"_s), campoOrigen);
}

QString LineaDeVinculo(const QString& campo, const QString& tabla)
{
    return u"En la columna ("_s + campo + u") de la tabla "_s + tabla.toUpper() + u"\r"_s;
}

QString VinculosDebajo(ado::Connection& conexion, const QString& tabla, const QString& campo,
                       const QString& campoOrigen)
{
    QString texto;
    ado::Recordset vinculos;
    if (!AbreVinculosDebajo(conexion, vinculos, tabla))
        return texto;
    for (; !vinculos.Eof(); vinculos.MoveNext())
        if (EsDeLaReferencia(vinculos, campo, campoOrigen))
            texto += LineaDeVinculo(TextoCampo(vinculos, u"fkcolumn_name"_s),
                                    TextoCampo(vinculos, u"fktable_name"_s));
    return texto;
}

// `camino` holds the columns that the walk is at: tables that reference each other would keep it going
// round for ever.
QString Vinculos(ado::Connection& conexion, const QString& tabla, const QString& campo,
                 const QString& campoOrigen, QStringList camino)
{
    const QString paso = (tabla.trimmed() + u"."_s + campo.trimmed()).toUpper();
    if (camino.contains(paso))
        return {};
    camino += paso;
    QString texto = VinculosDebajo(conexion, tabla, campo, campoOrigen);
    ado::Recordset vinculos;
    if (!AbreVinculosEncima(conexion, vinculos, tabla))
        return texto;
    for (; !vinculos.Eof(); vinculos.MoveNext()) {
        if (!MismoNombre(TextoCampo(vinculos, u"fkcolumn_name"_s), campo))
            continue;
        const QString tablaReferida = TextoCampo(vinculos, u"pktable_name"_s);
        const QString campoReferido = TextoCampo(vinculos, u"pkcolumn_name"_s);
        texto += LineaDeVinculo(campoReferido, tablaReferida);
        texto += Vinculos(conexion, tablaReferida, campoReferido, campoOrigen, camino);
    }
    return texto;
}

controls::Answer PreguntaVinculos(const QString& vinculos)
{
    return controls::messageBox(
        u"Para conservar las relaciones exitentes se modificará una o más propiedades (Tipo de dato, Longitud,"_s +
            u"Precision, Escala) en cada una de las siguientes columnas:\r\r"_s + vinculos +
            u"\r¿Desea contimnuar con las modificaciones?"_s,
        EstiloPregunta, u"Quermo"_s);
}

QString CeldaActual(const DatosTabla& datos, int columna)
{
    return datos.FilaActual.Celdas.at(static_cast<std::size_t>(columna)).trimmed();
}

// Queues and drops a foreign key of a table. A key that a walk below has taken away is not there any more.
void QuitaClaveExterna(ado::Connection& conexion, const QString& tabla, const QString& idTabla,
                       const QString& restriccion, QString& salidaRelaciones)
{
    ado::Recordset referencias;
    if (!CreaRecordset(conexion, referencias,
                       u"Select o.name,r.* from "_s + PrefijoBD + u"sysreferences r,"_s + PrefijoBD +
                           u"sysobjects o"_s + u" where fkeyid = "_s + idTabla + u" and o.id=r.constid"_s +
                           u" and o.name='"_s + restriccion + u"'"_s) ||
        referencias.RecordCount() < 1)
        return;
    const ColumnasClave columnas = DameColumnasClave(conexion, referencias);
    TablaReferida = DameNombreObjeto(conexion, TextoCampo(referencias, u"rkeyid"_s));
    PonEnCola(salidaRelaciones, SentenciaClaveExterna(tabla, restriccion, columnas.propias.join(u','),
                                                      TablaReferida, columnas.referidas.join(u',')));
    EjecutaSQL(conexion,
               u"ALTER TABLE "_s + PrefijoBD + NombreSQL(tabla) + u" DROP CONSTRAINT "_s + restriccion);
}

// Gives a linked column the type and the length of the current row; its NULL and default stay.
void CambiaCampoVinculado(const DatosTabla& datos, ado::Connection& conexion, const QString& tabla,
                          const QString& idTabla, const QString& campo)
{
    const bool admiteNulo = DameDatoCampo(conexion, idTabla, campo, u"isnullable"_s) == u"1"_s;
    const QString idPredeterminado = DameDatoCampo(conexion, idTabla, campo, u"cdefault"_s);
    QString predeterminado;
    QString nombreDF;
    if (idPredeterminado.toInt() != 0) {
        predeterminado = DameTextoPredeterminado(conexion, idPredeterminado);
        nombreDF = DameNombrePredeterminado(conexion, idPredeterminado);
    }
    Modifica_Campo_SQL(tabla, campo, CeldaActual(datos, ColCampo::Longitud), admiteNulo ? u"-1"_s : u"0"_s,
                       CeldaActual(datos, ColCampo::Tipo), predeterminado, nombreDF);
}

void CambiaVinculosDebajo(DatosTabla& datos, ado::Connection& conexion, const QString& tabla,
                          const QString& campo, const QString& campoOrigen, QString& salidaIndices,
                          QString& salidaRelaciones)
{
    ado::Recordset vinculos;
    if (!AbreVinculosDebajo(conexion, vinculos, tabla))
        return;
    if (vinculos.RecordCount() > 0)
        TablaReferida.clear();
    for (; !vinculos.Eof(); vinculos.MoveNext()) {
        if (!EsDeLaReferencia(vinculos, campo, campoOrigen))
            continue;
        const QString tablaLigada = TextoCampo(vinculos, u"fktable_name"_s);
        const QString campoLigado = TextoCampo(vinculos, u"fkcolumn_name"_s);
        const QString id = DameIdTabla(conexion, tablaLigada);
        if (!id.isEmpty())
            QuitaClaveExterna(conexion, tablaLigada, id, TextoCampo(vinculos, u"fk_name"_s),
                              salidaRelaciones);
        BuscaCargaIndices(datos, tablaLigada, campoLigado, salidaIndices, id, salidaRelaciones);
        CambiaCampoVinculado(datos, conexion, tablaLigada, id, campoLigado);
    }
}

void CambiaVinculosEncima(DatosTabla& datos, ado::Connection& conexion, const QString& tabla,
                          const QString& campo, const QString& campoOrigen, QString& salidaIndices,
                          QString& salidaRelaciones, bool& resultado)
{
    ado::Recordset vinculos;
    if (!AbreVinculosEncima(conexion, vinculos, tabla))
        return;
    for (; !vinculos.Eof(); vinculos.MoveNext()) {
        if (!MismoNombre(TextoCampo(vinculos, u"fkcolumn_name"_s), campo))
            continue;
        const QString tablaReferida = TextoCampo(vinculos, u"pktable_name"_s);
        const QString campoReferido = TextoCampo(vinculos, u"pkcolumn_name"_s);
        const QString id = DameIdTabla(conexion, tabla);
        if (!id.isEmpty())
            QuitaClaveExterna(conexion, tabla, id, TextoCampo(vinculos, u"fk_name"_s), salidaRelaciones);
        const QString idReferida = DameIdTabla(conexion, tablaReferida);
        BuscaCargaIndices(datos, tablaReferida, campoReferido, salidaIndices, idReferida, salidaRelaciones);
        CambiaCampoVinculado(datos, conexion, tablaReferida, idReferida, campoReferido);
        CambiaVinculos(datos, conexion, tablaReferida, campoReferido, campoOrigen, salidaIndices,
                       salidaRelaciones, resultado);
    }
}

} // namespace

void BuscaDetectaVinculos(ado::Connection& conexion, const QString& tabla, const QString& campo,
                          const QString& campoOrigen, QString& texto)
try {
    texto = Vinculos(conexion, tabla, campo, campoOrigen, {});
} catch (...) {
    InformaError(u"BuscaDetectaVinculos"_s);
}

void BuscaCambiaVinculos(DatosTabla& datos, ado::Connection& conexion, const QString& tabla,
                         const QString& campo, const QString& campoOrigen, bool preguntar, bool& resultado)
try {
    resultado = false;
    QString vinculos;
    BuscaDetectaVinculos(conexion, tabla, campo, campoOrigen, vinculos);
    if (vinculos.isEmpty() || (preguntar && PreguntaVinculos(vinculos) != controls::Answer::Yes)) {
        resultado = true;
        return;
    }
    QString indices;
    QString relaciones;
    CambiaVinculos(datos, conexion, tabla, campo, campoOrigen, indices, relaciones, resultado);
    BuscaCargaIndices(datos, tabla, campo, indices, DameIdTabla(conexion, tabla), relaciones);
    Modifica_Campo_SQL(datos.NombreTabla, CeldaActual(datos, ColCampo::Nombre),
                       CeldaActual(datos, ColCampo::Longitud), CeldaActual(datos, ColCampo::Nulo),
                       CeldaActual(datos, ColCampo::Tipo), {},
                       datos.CamposTabla.at(datos.FilaActual.Fila, ColCampo::NombreDF).trimmed());
    EjecutaColaEntera(conexion, indices + u"*"_s + relaciones);
    resultado = true;
} catch (...) {
    InformaError(u"BuscaCambiaVinculos"_s);
}

void CambiaVinculos(DatosTabla& datos, ado::Connection& conexion, const QString& tabla, const QString& campo,
                    const QString& campoOrigen, QString& salidaIndices, QString& salidaRelaciones,
                    bool& resultado)
try {
    CambiaVinculosDebajo(datos, conexion, tabla, campo, campoOrigen, salidaIndices, salidaRelaciones);
    CambiaVinculosEncima(datos, conexion, tabla, campo, campoOrigen, salidaIndices, salidaRelaciones,
                         resultado);
    resultado = true;
} catch (...) {
    InformaError(u"CambiaVinculos"_s);
}

bool CambiaCelda_SQL(DatosTabla& datos)
{
    TomaGlobales(datos);
    EjecutaSQL(ConexionSQL, u"USE "_s + datos.BaseDatos);
    const int fila = datos.FilaActual.Fila;
    const QString campo = CeldaActual(datos, ColCampo::Nombre);
    const QString enServidor = datos.CamposTabla.at(fila, ColCampo::NombreServidor);
    if (!MismoNombre(campo, enServidor)) {
        datos.CamposTabla(fila, ColCampo::Nombre) = campo;
        if (RenombraCampo_SQL(ConexionSQL, datos.NombreTabla, enServidor, campo)) {
            datos.CamposTabla(fila, ColCampo::NombreServidor) = campo;
            datos.CamposCargados += campo;
        }
    }
    bool resultado = false;
    BuscaCambiaVinculos(datos, ConexionSQL, datos.NombreTabla, campo, campo, true, resultado);
    if (resultado)
        datos.TablaModificada = true;
    return resultado;
}
