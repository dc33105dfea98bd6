#include "tabledesigner/BD_SQL.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "platform/basic/RuntimeError.h"
#include "tabledesigner/Nombres.h"

#include <exception>

using namespace Qt::Literals::StringLiterals;

int IndiceTabla = 0;
int ContadorIndices = 0;
int ContadorRelaciones = 0;
QString Intercalacion;
QString SentenciaCampos;
QString SentenciaIndice;
QString ClavesIndice;
QString SentenciaRelacion;
bool TablaExiste = false;
bool ObjetoExiste = false;
bool AddEscrito = false;
bool ComaPermitida = false;
int CamposNuevos = 0;
QString TablaReferida;

namespace {

Condicion Texto(const QString& campo, const QString& valor)
{
    return {campo, valor, TipoCondicion::Texto};
}

Condicion Numero(const QString& campo, const QString& valor)
{
    return {campo, valor, TipoCondicion::Numerico};
}

QString Busca(ado::Connection& conexion, const QString& tabla, const QString& dato, Condicion primera,
              std::initializer_list<Condicion> otras = {})
{
    return BuscaRegistro(conexion, tabla, dato, primera, otras);
}

QStringList Sentencias(const QString& cola)
{
    QStringList sentencias = cola.split(u'*');
    sentencias.removeIf([](const QString& sentencia) { return sentencia.trimmed().isEmpty(); });
    return sentencias;
}

} // namespace

void EjecutaSQL(ado::Connection& conexion, const QString& texto)
{
    conexion.Execute(texto, nullptr, -1);
}

void PonEnCola(QString& cola, const QString& sentencia)
{
    if (!cola.isEmpty())
        cola += u" * "_s;
    cola += sentencia;
}

void EjecutaCola(ado::Connection& conexion, QString& cola)
{
    for (const QString& sentencia : Sentencias(cola))
        EjecutaSQL(conexion, sentencia);
    cola.clear();
}

void EjecutaColaEntera(ado::Connection& conexion, const QString& cola)
{
    std::exception_ptr fallo;
    for (const QString& sentencia : Sentencias(cola)) {
        try {
            EjecutaSQL(conexion, sentencia);
        } catch (const basic::RuntimeError&) {
            if (!fallo)
                fallo = std::current_exception();
        }
    }
    if (fallo)
        std::rethrow_exception(fallo);
}

QString DameIdTabla(ado::Connection& conexion, const QString& tabla)
{
    return Busca(conexion, u"sysobjects"_s, u"id"_s, Texto(u"name"_s, tabla), {Texto(u"type"_s, u"U"_s)});
}

QString DameNombreObjeto(ado::Connection& conexion, const QString& id)
{
    return Busca(conexion, u"sysobjects"_s, u"name"_s, Numero(u"id"_s, id));
}

QString DameNombreCampo(ado::Connection& conexion, const QString& idTabla, const QString& colid)
{
    return Busca(conexion, u"syscolumns"_s, u"name"_s, Numero(u"colid"_s, colid), {Numero(u"id"_s, idTabla)});
}

QString DameDatoCampo(ado::Connection& conexion, const QString& idTabla, const QString& campo,
                      const QString& dato)
{
    return Busca(conexion, u"syscolumns"_s, dato, Texto(u"name"_s, campo), {Numero(u"id"_s, idTabla)});
}

QString DameTextoPredeterminado(ado::Connection& conexion, const QString& id)
{
    return SinParentesis(Busca(conexion, u"syscomments"_s, u"text"_s, Numero(u"id"_s, id)));
}

QString DameNombrePredeterminado(ado::Connection& conexion, const QString& id)
{
    return Busca(conexion, u"sysobjects "_s, u"name"_s, Numero(u"id"_s, id), {Texto(u"xtype"_s, u"D"_s)});
}

bool AbreTabla(ado::Connection& conexion, ado::Recordset& tablas, const QString& tabla, bool deSistema)
{
    const QString filtro =
        deSistema ? u" where name = '"_s + tabla : u" where type = 'U'"_s + u" and name = '"_s + tabla;
    return CreaRecordset(conexion, tablas,
                         u"Select * from "_s + PrefijoBD + u"sysobjects "_s + filtro + u"'"_s +
                             u" order by name"_s);
}

bool AbreCampos(ado::Connection& conexion, ado::Recordset& columnas, const QString& idTabla)
{
    return CreaRecordset(conexion, columnas,
                         u"Select * from "_s + PrefijoBD + u"syscolumns "_s + u" where id = "_s + idTabla +
                             u" order by colid"_s);
}

bool ExisteTabla(ado::Connection& conexion, const QString& tabla)
try {
    return ExisteRegistro(conexion, false, u"sysobjects"_s, Texto(u"name"_s, tabla),
                          {Texto(u"type"_s, u"U"_s)});
} catch (...) {
    InformaError(u"ExisteTabla"_s);
    return false;
}

bool ExisteCampo(ado::Connection& conexion, const QString& tabla, const QString& campo)
try {
    const QString id = DameIdTabla(conexion, tabla);
    return !id.isEmpty() &&
           ExisteRegistro(conexion, false, u"syscolumns"_s, Texto(u"name"_s, campo), {Numero(u"id"_s, id)});
} catch (...) {
    InformaError(u"ExisteCampo"_s);
    return false;
}

bool ExisteElIndice(ado::Connection& conexion, const QString& tabla, const QString& indice)
try {
    if (indice.isEmpty())
        return false;
    const QString id = DameIdTabla(conexion, tabla);
    return !id.isEmpty() &&
           ExisteRegistro(conexion, false, u"sysindexes"_s, Numero(u"id"_s, id), {Texto(u"name"_s, indice)});
} catch (...) {
    InformaError(u"ExisteElIndice"_s);
    return false;
}

bool ExisteLaRelacion(ado::Connection& conexion, const QString& tabla, const QString& tablaExterna,
                      const QString& campos)
try {
    const QString id = DameIdTabla(conexion, tabla);
    const QString idExterna = DameIdTabla(conexion, tablaExterna);
    if (id.isEmpty() || idExterna.isEmpty())
        return false;
    if (!ExisteRegistro(conexion, false, u"sysreferences"_s, Numero(u"rkeyid"_s, idExterna),
                        {Numero(u"fkeyid"_s, id)}))
        return false;
    bool existe = false;
    const QStringList nombres = campos.split(u',').mid(0, campos.count(u','));
    for (qsizetype n = 0; n < nombres.size(); ++n) {
        const QString colid = DameDatoCampo(conexion, id, nombres[n], u"colid"_s);
        if (!ExisteRegistro(conexion, false, u"sysreferences"_s,
                            Numero(u"fkey"_s + QString::number(n + 1), colid),
                            {Numero(u"rkeyid"_s, idExterna), Numero(u"fkeyid"_s, id)}))
            break;
        existe = true;
    }
    return existe;
} catch (...) {
    InformaError(u"ExisteLaRelacion"_s);
    return false;
}

bool ExistePredeterminado(ado::Connection& conexion, const QString& nombre)
{
    return ExisteRegistro(conexion, false, u"sysobjects"_s, Texto(u"name"_s, nombre),
                          {Texto(u"type"_s, u"D"_s)});
}

ColumnasClave DameColumnasClave(ado::Connection& conexion, const ado::Recordset& referencias)
{
    ColumnasClave columnas;
    const QString idPropia = TextoCampo(referencias, u"fkeyid"_s);
    const QString idReferida = TextoCampo(referencias, u"rkeyid"_s);
    for (int n = 1; n <= MaximoColumnasClave; ++n) {
        const QString propia = TextoCampo(referencias, u"fkey"_s + QString::number(n));
        if (propia.toInt() == 0)
            continue;
        columnas.propias += DameNombreCampo(conexion, idPropia, propia);
        columnas.referidas +=
            DameNombreCampo(conexion, idReferida, TextoCampo(referencias, u"rkey"_s + QString::number(n)));
    }
    return columnas;
}
