#include "databasedesigner/CargaBD.h"

#include "browser/GruposFicheros.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "platform/basic/Numbers.h"
#include "platform/basic/VariantText.h"

#include <QTime>

#include <cmath>
#include <utility>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr double PaginasPorMB = 128;
constexpr double UmbralPorcentaje = 1048576; ///< of the status, from which on growth counts in percent
constexpr qint64 TicksPorMilisegundo = 10'000;

QString EnMB(const QString& paginas)
{
    return basic::text(basic::toDouble(paginas) / PaginasPorMB);
}

// Halves go to the even neighbour.
double MBEnteros(const QString& paginas)
{
    return std::nearbyint(basic::toDouble(paginas) / PaginasPorMB);
}

QString DameGrupoFichero(const QString& idGrupo)
{
    Condicion grupo{u"groupid"_s, idGrupo, TipoCondicion::Numerico};
    return BuscaRegistro(ConexionSQL, u"sysfilegroups"_s, u"groupname"_s, grupo);
}

void PonCrecimiento(Matriz& archivos, int fila, const ado::Recordset& ficheros)
{
    const QString crecimiento = TextoCampo(ficheros, u"growth"_s);
    const bool porcentaje = basic::toDouble(TextoCampo(ficheros, u"status"_s)) >= UmbralPorcentaje;
    archivos(fila, ColArchivo::Automatico) = basic::toDouble(crecimiento) == 0 ? u"0"_s : u"-1"_s;
    archivos(fila, ColArchivo::Unidad) = porcentaje ? u"P"_s : u"M"_s;
    archivos(fila, ColArchivo::Cantidad) = porcentaje ? crecimiento : EnMB(crecimiento);
    const QString maximo = TextoCampo(ficheros, u"maxsize"_s);
    archivos(fila, ColArchivo::Limitado) = maximo == u"-1"_s ? u"0"_s : u"-1"_s;
    if (maximo != u"-1"_s)
        archivos(fila, ColArchivo::Maximo) = EnMB(maximo);
}

void PonFichero(Matriz& archivos, int fila, const ado::Recordset& ficheros, const QString& idGrupo)
{
    const bool deDatos = idGrupo != u"0"_s;
    const QString ruta = TextoCampo(ficheros, u"FileName"_s).trimmed();
    const QString paginas = TextoCampo(ficheros, u"Size"_s);
    // The catalog pads names with blanks, which statements take off anyway.
    archivos(fila, ColArchivo::Nombre) = TextoCampo(ficheros, u"Name"_s).trimmed();
    archivos(fila, ColArchivo::Ubicacion) = ruta.left(ruta.lastIndexOf(u'\\') + 1);
    archivos(fila, ColArchivo::Grupo) = deDatos ? DameGrupoFichero(idGrupo) : u"LOG"_s;
    archivos(fila, ColArchivo::Tamaño) = deDatos ? basic::text(MBEnteros(paginas)) : EnMB(paginas);
    PonCrecimiento(archivos, fila, ficheros);
}

void RedimensionaArchivos(DatosBD& datos)
{
    datos.ArchivosBD.Redim(UltimaFilaArchivos, ColArchivo::Ultima);
    datos.TransaccionesBD.Redim(UltimaFilaArchivos, ColArchivo::Ultima);
}

QString FechaYHora(const basic::Variant& valor)
{
    const auto* momento = valor.as<basic::Moment>();
    if (momento == nullptr)
        return basic::text(valor);
    const QTime hora =
        QTime::fromMSecsSinceStartOfDay(static_cast<int>(momento->ticks / TicksPorMilisegundo));
    return momento->day.toString(u"dd/MM/yyyy "_s) + hora.toString(u"HH:mm"_s);
}

// True when the query has a row. The statements of the text that give none have results without columns.
bool AbreFicha(ado::Recordset& registros, const QString& texto)
{
    if (!CreaRecordset(ConexionSQL, registros, texto))
        return false;
    while (registros.FieldCount() == 0) {
        auto siguiente = registros.NextRecordset();
        if (!siguiente)
            return false;
        registros = *siguiente;
    }
    return registros.RecordCount() > 0;
}

QString ConsultaTamaño(const QString& nombre)
{
    return u"declare @low nvarchar(11)\r"_s
           u"select @low = convert(varchar(11),low) from master.dbo.spt_values  where type = N'E' and number "_s
           u"= 1\r"_s
           u"(select str(convert(dec(15),sum(size))*  @low / 1048576,10,2) from "_s +
           nombre + u".dbo.sysfiles)"_s;
}

QString ConsultaUsuarios()
{
    return u" SELECT usu.Name,case"_s
           u"                    when (usg.uid is null) then 'public'"_s
           u"                    Else: usg.Name"_s
           u"                   End"_s
           u"                  ,lo.loginname"_s
           u"                  ,lo.dbname"_s
           u"                  ,usu.uid"_s
           u"                  ,usu.sid"_s
           u"         From"_s
           u"                   sysusers usu left outer join"_s
           u"                    (sysmembers mem inner join sysusers usg on mem.groupuid = usg.uid) on "_s
           u"usu.uid = mem.memberuid"_s
           u"                   left outer join master.dbo.syslogins  lo on usu.sid = lo.sid"_s
           u"         Where"_s
           u"                   (usu.islogin = 1 and usu.isaliased = 0 and usu.hasdbaccess = 1) and"_s
           u"                   (usg.issqlrole = 1 or usg.uid is null)"_s;
}

} // namespace

void IniciaBDNueva(DatosBD& datos)
{
    RedimensionaArchivos(datos);
    GruposFicheros.Redim(UltimaFilaGrupos, UltimaColumnaGrupos);
    datos.GruposBD = GruposFicheros;
}

void CargaFicheros(DatosBD& datos)
try {
    ado::Recordset ficheros;
    if (!CreaRecordset(ConexionSQL, ficheros,
                       u"Select * from "_s + datos.NombreBD + u"..sysfiles "_s +
                           u" order by fileid,groupid"_s))
        return;
    RedimensionaArchivos(datos);
    int filaArchivo = 0;
    int filaTransaccion = 0;
    for (; !ficheros.Eof(); ficheros.MoveNext()) {
        const QString idGrupo = TextoCampo(ficheros, u"groupid"_s);
        if (idGrupo != u"0"_s)
            PonFichero(datos.ArchivosBD, filaArchivo++, ficheros, idGrupo);
        else
            PonFichero(datos.TransaccionesBD, filaTransaccion++, ficheros, idGrupo);
    }
} catch (...) {
    InformaError(u"CargaFicheros"_s);
}

void CapturaGrupos_SQL(DatosBD& datos)
{
    const QString otraBD = std::exchange(BaseDatosActual, datos.NombreInicial);
    GruposFicheros.Redim(UltimaFilaGrupos, UltimaColumnaGrupos);
    CapturaGruposFicheros_SQL();
    BaseDatosActual = otraBD;
    datos.GruposBD = GruposFicheros;
}

bool ExisteGrupoFichero(const DatosBD& datos, const QString& nombre)
{
    for (int fila = 0; fila < UltimaFilaGrupos; ++fila) {
        const QString grupo = datos.GruposBD.at(fila, ColGrupo::Nombre).trimmed();
        if (!grupo.isEmpty() && grupo.toUpper() == nombre.toUpper())
            return true;
    }
    return false;
}

double TamañoExistente(const QString& archivo)
{
    Condicion nombre{u"name"_s, archivo.trimmed(), TipoCondicion::Texto};
    const QString paginas = BuscaRegistro(ConexionSQL, u"sysfiles"_s, u"size"_s, nombre);
    return MBEnteros(paginas.isEmpty() ? u"0"_s : paginas);
}

FichaBD CapturaFicha_SQL(const QString& nombre)
{
    FichaBD ficha;
    ado::Recordset registros;
    if (AbreFicha(registros, u"select DATABASEPROPERTYEX( '"_s + nombre + u"' , 'status' )"_s))
        ficha.Estado = TextoCampo(registros, 0);
    if (AbreFicha(registros, u"select name, suser_sname(sid) as owner, crdate, dbid, cmptlevel "_s +
                                 u" from master.dbo.sysdatabases"_s + u" where name = '"_s + nombre +
                                 u"'"_s)) {
        ficha.Propietario = TextoCampo(registros, u"owner"_s);
        ficha.FechaCreacion = FechaYHora(registros.Value(u"crdate"_s));
    }
    if (AbreFicha(registros, ConsultaTamaño(nombre)))
        ficha.Tamaño = TextoCampo(registros, 0).trimmed() + u" MB"_s;
    if (AbreFicha(registros, ConsultaUsuarios()))
        ficha.Usuarios = basic::text(registros.RecordCount());
    ficha.Intercalacion = DameIntercalacion(nombre);
    return ficha;
}
