#include "tabledesigner/Taller.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "platform/ado/Transcript.h"
#include "support/PracticeServer.h"
#include "tabledesigner/ActualizaLaTabla.h"
#include "tabledesigner/BD_SQL.h"
#include "tabledesigner/Campos.h"
#include "tabledesigner/CargaTabla.h"
#include "tabledesigner/Indices.h"
#include "tabledesigner/Relaciones.h"
#include "tabledesigner/Vinculos.h"

#include <QRegularExpression>

#include <ostream>

using namespace Qt::Literals::StringLiterals;

void PrintTo(const QString& texto, std::ostream* salida)
{
    *salida << '"' << texto.toStdString() << '"';
}

namespace pruebas {
namespace {

support::PracticeServer& Servidor()
{
    static const auto servidor = support::PracticeServer::start();
    return *servidor;
}

bool EsConsulta(const QString& sentencia)
{
    return sentencia.trimmed().startsWith(u"select"_s, Qt::CaseInsensitive) ||
           sentencia.startsWith(u"exec sp_fkeys"_s, Qt::CaseInsensitive) ||
           sentencia.startsWith(u"exec sp_helpindex"_s, Qt::CaseInsensitive);
}

} // namespace

QString Lineas(const QStringList& sentencias)
{
    QString texto;
    for (QString linea : sentencias)
        texto += linea.replace(u"\r"_s, u"\\r"_s).replace(u"  "_s, u"··"_s) + u"\n"_s;
    return texto;
}

void Taller::SetUp()
{
    controls::setMessageBoxAnswerer([this](const QString& texto, int /*estilo*/, const QString& /*titulo*/) {
        m_avisos += texto;
        return respuesta;
    });
    Idioma = 0;
    Conecta();
    VaciaBase();
    Nuevas();
}

/// One database serves all tests, since to make one takes longer than most of them.
void Taller::VaciaBase()
{
    Ejecuta({u"if db_id('Taller') is null create database Taller"_s, u"use Taller"_s});
    const auto borra = [](const QString& consulta) {
        Ejecuta(Consulta(consulta).split(u'\n', Qt::SkipEmptyParts));
    };
    borra(u"select 'alter table [' + t.name + '] drop constraint [' + o.name + ']' + char(10) from "
          u"sysobjects o "
          u"join sysobjects t on t.id = o.parent_obj where o.xtype = 'F'"_s);
    borra(u"select 'drop ' + case xtype when 'U' then 'table' when 'V' then 'view' else 'procedure' end + ' "
          u"[' + "
          u"name + ']' + char(10) from sysobjects where category = 0 and xtype in ('U', 'V', 'P')"_s);
}

void Taller::TearDown()
{
    ado::setStatementObserver({});
    Red().setFault({});
    Conecta();
    Ejecuta({u"use master"_s});
    ConexionSQL = ado::Connection();
    controls::setMessageBoxAnswerer({});
}

support::FaultProxy& Taller::Red()
{
    static support::FaultProxy red(Servidor().port());
    return red;
}

void Taller::Conecta()
{
    ProveedorSQL = u"SQLOLEDB.1"_s;
    ServidorSQL = u"127.0.0.1,"_s + QString::number(Red().port());
    UsuarioSQL = u"sa"_s;
    ClaveSQL = QString::fromLatin1(support::PracticeServer::password);
    ASSERT_TRUE(Conecta_SQL(ConexionSQL, u"master"_s)) << Avisos().join(u'\n').toStdString();
}

void Taller::Ejecuta(const QStringList& sentencias)
{
    for (const QString& sentencia : sentencias)
        ASSERT_NO_THROW(ConexionSQL.Execute(sentencia)) << sentencia.toStdString();
}

QString Taller::Consulta(const QString& texto)
{
    ado::Recordset filas;
    filas.Open(texto, ConexionSQL);
    QStringList valores;
    for (; !filas.Eof(); filas.MoveNext())
        valores += TextoCampo(filas, 0);
    return valores.join(u' ');
}

QString Taller::Catalogo()
{
    const auto lista = [](const QString& consulta) {
        return Consulta(consulta).replace(u' ', u'\n') + u'\n';
    };
    return lista(u"select o.name + '.' + c.name + ':' + t.name + ',' + cast(c.length as varchar) + ',' + "
                 u"cast(c.isnullable as varchar) + ',' + isnull(replace(m.text, ' ', '_'), '-') from "
                 u"Taller..sysobjects o join Taller..syscolumns c on c.id = o.id join Taller..systypes t on "
                 u"t.xusertype = c.xusertype left join Taller..syscomments m on m.id = c.cdefault where "
                 u"o.xtype = 'U' order by o.name, c.name"_s) +
           lista(
               u"select o.name + '.' + i.name + ':' + cast(case when i.indid = 1 then 1 else 0 end as "
               u"varchar) "
               u"from Taller..sysobjects o join Taller..sysindexes i on i.id = o.id where o.xtype = 'U' and "
               u"i.indid between 1 and 254 and i.name is not null order by o.name, i.name"_s) +
           lista(
               u"select p.name + '.' + o.name + '>' + r.name from Taller..sysreferences f join "
               u"Taller..sysobjects o on o.id = f.constid join Taller..sysobjects p on p.id = f.fkeyid join "
               u"Taller..sysobjects r on r.id = f.rkeyid order by o.name"_s);
}

int Taller::TransaccionesAbiertas()
{
    return Consulta(u"select @@trancount"_s).toInt();
}

std::unique_ptr<DatosTabla> Taller::Nueva(const QString& nombre)
{
    auto datos = std::make_unique<DatosTabla>();
    IniciaDatosTabla(*datos, u"Taller"_s);
    datos->NombreTabla = nombre;
    return datos;
}

std::unique_ptr<DatosTabla> Taller::Abre(const QString& nombre)
{
    auto datos = std::make_unique<DatosTabla>();
    datos->ClaveTabla = u"T3"_s;
    datos->NombreTablaInicial = nombre;
    IniciaDatosTabla(*datos, u"Taller"_s);
    CargaTabla_SQL(*datos);
    CargaIndices(*datos);
    CargaRelaciones(*datos);
    return datos;
}

void Taller::Escribe(DatosTabla& datos, int fila, const Campo& campo)
{
    FilaRejilla rejilla;
    rejilla.Celdas[ColCampo::Tipo] = QString::number(campo.tipo);
    PonMedidasDeTipo(rejilla);
    rejilla.Celdas[ColCampo::Nombre] = campo.nombre;
    rejilla.Celdas[ColCampo::Nulo] = campo.nulo;
    rejilla.Celdas[ColCampo::Predeterminado] = campo.predeterminado;
    const Bloqueo bloqueo = BloqueoDeTipo(rejilla.Celdas[ColCampo::Tipo]);
    if (!bloqueo.longitud)
        rejilla.Celdas[ColCampo::Longitud] = campo.longitud;
    for (int columna = 0; columna <= ColCampo::UltimaVisible; ++columna)
        datos.CamposTabla(fila, columna) = rejilla.Celdas[static_cast<std::size_t>(columna)];
}

bool Taller::Edita(DatosTabla& datos, int fila, int columna, const QString& texto)
{
    datos.FilaActual.Fila = fila;
    for (int c = 0; c <= ColCampo::UltimaVisible; ++c)
        datos.FilaActual.Celdas[static_cast<std::size_t>(c)] =
            c == columna ? texto : datos.CamposTabla.at(fila, c);
    const bool vale = columna == ColCampo::Nombre ? RenombraEnMemoria(datos) : CambiaCelda_SQL(datos);
    if (vale)
        datos.CamposTabla(fila, columna) = texto;
    return vale;
}

void Taller::PonIndice(DatosTabla& datos, const QString& nombre, const QStringList& campos, bool clave)
{
    const int posicion = AñadeIndice(datos, nombre);
    if (clave)
        PonClavePrimaria(datos, posicion, true);
    for (int linea = 0; linea < campos.size(); ++linea)
        datos.CamposIndice(posicion)(linea, ColCampoIndice::Nombre) = campos[linea];
}

void Taller::PonRelacion(DatosTabla& datos, const QString& nombre, const QString& propia,
                         const QString& tabla, const QString& externa)
{
    Matriz& lineas = datos.CamposRelacion(AñadeRelacion(datos, nombre));
    lineas(0, ColCampoRelacion::Propia) = propia;
    lineas(0, ColCampoRelacion::Externa) = externa;
    lineas(0, ColCampoRelacion::TablaExterna) = tabla;
}

bool Taller::Guarda(DatosTabla& datos)
{
    PreparaGuardado(datos);
    return ActualizaLaTabla(datos);
}

QStringList Taller::Nuevas()
{
    const QStringList todas = Servidor().statementLog();
    QStringList nuevas = todas.mid(m_leidas);
    m_leidas = todas.size();
    return nuevas;
}

QString Taller::Llegado()
{
    static const QRegularExpression id(u"\\b\\d{5,}\\b"_s);
    return Lineas(Nuevas()).replace(id, u"#"_s);
}

QString Taller::Cambios()
{
    QStringList cambios = Nuevas();
    cambios.removeIf(EsConsulta);
    return Lineas(cambios);
}

QStringList Taller::Avisos()
{
    return std::exchange(m_avisos, {});
}

} // namespace pruebas
