#include "tabledesigner/CargaTabla.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "tabledesigner/BD_SQL.h"
#include "tabledesigner/TiposDato.h"

using namespace Qt::Literals::StringLiterals;

namespace {

void PonMedidas(Matriz& campos, int fila, const ado::Recordset& columnas)
{
    bool numerico = false;
    const QString numero = DameTipoDato(TextoCampo(columnas, u"XTYPE"_s), numerico);
    const TipoDato* tipo = DameTipo(numero);
    const bool enCaracteres = tipo != nullptr && tipo->enCaracteres;
    campos(fila, ColCampo::Tipo) = numero;
    campos(fila, ColCampo::Longitud) = TextoCampo(columnas, enCaracteres ? u"prec"_s : u"length"_s);
    campos(fila, ColCampo::Precision) = numerico ? TextoCampo(columnas, u"prec"_s) : u"0"_s;
    campos(fila, ColCampo::Escala) = numerico ? TextoCampo(columnas, u"Scale"_s) : u"0"_s;
}

void PonPredeterminado(Matriz& campos, int fila, const QString& idPredeterminado)
{
    if (idPredeterminado.toInt() == 0)
        return;
    const QString texto = DameTextoPredeterminado(ConexionSQL, idPredeterminado);
    // Without its text a default would look as if the user had emptied it, and a save would drop it.
    if (texto.isEmpty())
        return;
    campos(fila, ColCampo::Predeterminado) = texto;
    campos(fila, ColCampo::NombreDF) = DameNombrePredeterminado(ConexionSQL, idPredeterminado);
}

void PonCampo(DatosTabla& datos, int fila, const ado::Recordset& columnas)
{
    Matriz& campos = datos.CamposTabla;
    const QString nombre = TextoCampo(columnas, u"Name"_s);
    campos(fila, ColCampo::Estado) = u"M"_s;
    campos(fila, ColCampo::Nombre) = nombre;
    campos(fila, ColCampo::NombreServidor) = nombre;
    datos.CamposCargados += nombre;
    PonMedidas(campos, fila, columnas);
    campos(fila, ColCampo::Nulo) = TextoCampo(columnas, u"isnullable"_s) == u"1"_s ? u"-1"_s : u"0"_s;
    PonPredeterminado(campos, fila, TextoCampo(columnas, u"cdefault"_s));
}

QString DameClaseIndice(const QString& indice, const QString& idTabla)
{
    Condicion nombre{u"name"_s, indice, TipoCondicion::Texto};
    const QString xtype = BuscaRegistro(ConexionSQL, u"sysobjects"_s, u"xtype"_s, nombre,
                                        {{u"parent_obj"_s, idTabla, TipoCondicion::Numerico}});
    return xtype.trimmed() == u"PK"_s ? u"P"_s : u"I"_s;
}

QString DameGrupo(const QString& idGrupo)
{
    Condicion grupo{u"groupid"_s, idGrupo, TipoCondicion::Numerico};
    return BuscaRegistro(ConexionSQL, u"sysfilegroups"_s, u"groupname"_s, grupo);
}

// False when a column could not be read.
bool PonCamposIndice(Matriz& campos, const QString& idTabla, const QString& indid)
{
    ado::Recordset claves;
    if (!CreaRecordset(ConexionSQL, claves,
                       u"Select * from "_s + PrefijoBD + u"sysindexkeys "_s + u" where id = "_s + idTabla +
                           u" and indid = "_s + indid + u" order by colid"_s))
        return false;
    bool completo = true;
    for (int fila = 0; !claves.Eof(); ++fila, claves.MoveNext()) {
        const QString nombre = DameNombreCampo(ConexionSQL, idTabla, TextoCampo(claves, u"colid"_s));
        campos(fila, ColCampoIndice::Nombre) = nombre;
        completo = completo && !nombre.isEmpty();
    }
    return completo;
}

bool PonIndice(DatosTabla& datos, const ado::Recordset& indices, const QString& idTabla)
{
    const int i = ContadorIndices;
    Matriz& campos = datos.CamposIndice.Crea(i);
    const QString nombre = TextoCampo(indices, u"Name"_s);
    const QString indid = TextoCampo(indices, u"indid"_s);
    const QString clase = DameClaseIndice(nombre, idTabla);
    datos.Indices(i, ColIndice::Nombre) = nombre;
    datos.Indices(i, ColIndice::Clase) = clase;
    datos.Indices(i, ColIndice::Agrupado) = indid == u"1"_s ? u"1"_s : u"0"_s;
    datos.Indices(i, ColIndice::Unico) = clase == u"P"_s ? u"1"_s : u"0"_s;
    datos.Indices(i, ColIndice::Grupo) = DameGrupo(TextoCampo(indices, u"groupid"_s));
    datos.Indices(i, ColIndice::Relleno) = TextoCampo(indices, u"origfillfactor"_s);
    ++ContadorIndices;
    return PonCamposIndice(campos, idTabla, indid);
}

// False when something could not be read.
bool PonIndices(DatosTabla& datos, const QString& idTabla)
{
    ado::Recordset indices;
    if (!CreaRecordset(ConexionSQL, indices,
                       u"Select * from "_s + PrefijoBD + u"sysindexes "_s + u" where id = "_s + idTabla +
                           u" and indid <> 255"_s + u" and (status & 64)=0"_s + u" order by indid"_s))
        return false;
    bool completos = true;
    for (; !indices.Eof(); indices.MoveNext())
        if (!indices.Value(u"Keys"_s).isNull())
            completos = PonIndice(datos, indices, idTabla) && completos;
    return completos;
}

// False when a name could not be read.
bool PonRelacion(DatosTabla& datos, const ado::Recordset& referencias)
{
    Matriz& campos = datos.CamposRelacion.Crea(ContadorRelaciones);
    const QString nombre = DameNombreObjeto(ConexionSQL, TextoCampo(referencias, u"constid"_s));
    datos.Relaciones(ContadorRelaciones, 0) = nombre;
    ++ContadorRelaciones;
    bool completa = !nombre.isEmpty();
    const QString idPropia = TextoCampo(referencias, u"fkeyid"_s);
    const QString idExterna = TextoCampo(referencias, u"rkeyid"_s);
    for (int n = 1; n <= MaximoColumnasClave; ++n) {
        const QString colid = TextoCampo(referencias, u"fkey"_s + QString::number(n));
        if (colid.toInt() == 0)
            continue;
        const QString colidExterna = TextoCampo(referencias, u"rkey"_s + QString::number(n));
        const QString propia = DameNombreCampo(ConexionSQL, idPropia, colid);
        campos(n - 1, ColCampoRelacion::Propia) = propia;
        campos(n - 1, ColCampoRelacion::Externa) = DameNombreCampo(ConexionSQL, idExterna, colidExterna);
        campos(n - 1, ColCampoRelacion::TablaExterna) = DameNombreObjeto(ConexionSQL, idExterna);
        completa = completa && !propia.isEmpty();
    }
    return completa;
}

bool PonRelaciones(DatosTabla& datos, const QString& idTabla)
{
    ado::Recordset referencias;
    if (!CreaRecordset(ConexionSQL, referencias,
                       u"Select * from "_s + PrefijoBD + u"sysreferences "_s + u" where fkeyid = "_s +
                           idTabla))
        return false;
    bool completas = true;
    for (; !referencias.Eof(); referencias.MoveNext())
        completas = PonRelacion(datos, referencias) && completas;
    return completas;
}

} // namespace

void CapturaCampos_SQL(DatosTabla& datos, const QString& tabla)
try {
    TomaGlobales(datos);
    ado::Recordset tablas;
    if (!AbreTabla(ConexionSQL, tablas, tabla, datos.EsTablaSistema))
        return;
    for (; !tablas.Eof(); tablas.MoveNext()) {
        datos.CamposTabla.Redim(UltimaFila, ColCampo::Ultima);
        datos.CamposCargados.clear();
        datos.NombresTabla(IndiceTabla, 0) = TextoCampo(tablas, u"Name"_s);
        datos.IdTabla = TextoCampo(tablas, u"id"_s);
        ado::Recordset columnas;
        if (!AbreCampos(ConexionSQL, columnas, datos.IdTabla))
            return;
        for (int fila = 0; !columnas.Eof(); ++fila, columnas.MoveNext())
            PonCampo(datos, fila, columnas);
    }
} catch (...) {
    InformaError(u"CapturaCampos_SQL"_s);
}

void CapturaIndices_SQL(DatosTabla& datos, const QString& tabla)
try {
    TomaGlobales(datos);
    ContadorIndices = 0;
    datos.IndicesCompletos = false;
    ado::Recordset tablas;
    bool completos = AbreTabla(ConexionSQL, tablas, tabla);
    for (; completos && !tablas.Eof(); tablas.MoveNext())
        completos = PonIndices(datos, TextoCampo(tablas, u"id"_s));
    datos.IndicesCompletos = completos;
} catch (...) {
    InformaError(u"CapturaIndices_SQL"_s);
}

void CapturaRelaciones_SQL(DatosTabla& datos, const QString& tabla)
try {
    TomaGlobales(datos);
    ContadorRelaciones = 0;
    datos.RelacionesCompletas = false;
    ado::Recordset tablas;
    bool completas = AbreTabla(ConexionSQL, tablas, tabla);
    for (; completas && !tablas.Eof(); tablas.MoveNext())
        completas = PonRelaciones(datos, TextoCampo(tablas, u"id"_s));
    datos.RelacionesCompletas = completas;
} catch (...) {
    InformaError(u"CapturaRelaciones_SQL"_s);
}

void CargaTabla_SQL(DatosTabla& datos)
{
    datos.NombreTabla = datos.NombreTablaInicial;
    CapturaCampos_SQL(datos, datos.NombreTabla);
    CapturaIndices_SQL(datos, datos.NombreTabla);
    CapturaRelaciones_SQL(datos, datos.NombreTabla);
    datos.NombreTablaCargado = datos.NombreTabla;
}

QString DimeGrupoFicheros(const DatosTabla& datos)
try {
    TomaGlobales(datos);
    ado::Recordset grupos;
    if (!CreaRecordset(ConexionSQL, grupos,
                       u"select s.groupname"_s + u" from "_s + PrefijoBD + u"sysfilegroups s, "_s +
                           PrefijoBD + u"sysindexes i"_s + u" where i.id ="_s + datos.IdTabla +
                           u" and i.indid < 2"_s + u" and i.groupid = s.groupid"_s))
        return {};
    return grupos.RecordCount() > 0 ? TextoCampo(grupos, 0).trimmed() : QString();
} catch (...) {
    InformaError(u"DimeGrupoFicheros"_s);
    return {};
}

void CambiaGrupoFicheros(const DatosTabla& datos, const QString& grupo)
try {
    if (grupo.trimmed().isEmpty())
        return;
    PrefijoBD = datos.BaseDatos + u".."_s;
    ado::Recordset grupos;
    CreaRecordset(ConexionSQL, grupos,
                  u"select groupname,groupid"_s + u" from "_s + PrefijoBD + u"sysfilegroups"_s +
                      u" WHERE groupname='"_s + grupo + u"'"_s);
} catch (...) {
    InformaError(u"DimeGrupoFicheros"_s);
}

QStringList DameCamposTabla_SQL(const DatosTabla& datos, const QString& tabla)
{
    TomaGlobales(datos);
    QStringList nombres;
    ado::Recordset tablas;
    if (!AbreTabla(ConexionSQL, tablas, tabla))
        return nombres;
    for (; !tablas.Eof(); tablas.MoveNext()) {
        ado::Recordset columnas;
        if (!AbreCampos(ConexionSQL, columnas, TextoCampo(tablas, u"id"_s)))
            return nombres;
        for (; !columnas.Eof(); columnas.MoveNext())
            nombres += TextoCampo(columnas, u"Name"_s);
    }
    return nombres;
}
