#include "databasedesigner/OpcionesBD.h"

#include "core/Funciones.h"
#include "core/Global.h"

#include <QStringList>

using namespace Qt::Literals::StringLiterals;

namespace {

/// An option as it is read and as it is written.
struct NombreOpcion
{
    QString propiedad;
    QString clausula;
};

const std::array<NombreOpcion, NumeroOpciones>& NombresOpciones()
{
    static const std::array<NombreOpcion, NumeroOpciones> nombres{{
        {u"IsAnsiNullDefault"_s, u"ANSI_NULL_DEFAULT "_s},
        {u"IsAutoCreateStatistics"_s, u"AUTO_CREATE_STATISTICS "_s},
        {u"IsAutoUpdateStatistics"_s, u"AUTO_UPDATE_STATISTICS "_s},
        {u"IsAutoClose"_s, u"AUTO_CLOSE "_s},
        {u"IsQuotedIdentifiersEnabled"_s, u"QUOTED_IDENTIFIER  "_s},
        {u"IsTornPageDetectionEnabled"_s, u"TORN_PAGE_DETECTION "_s},
        {u"IsAutoShrink"_s, u"AUTO_SHRINK "_s},
        {u"IsRecursiveTriggersEnabled"_s, u"RECURSIVE_TRIGGERS "_s},
    }};
    return nombres;
}

/// By the place of the model.
const QStringList& NombresModelos()
{
    static const QStringList nombres{u"FULL"_s, u"BULK_LOGGED"_s, u"SIMPLE"_s};
    return nombres;
}

// False when there is no answer.
bool AbrePropiedad(ado::Recordset& registros, const QString& nombre, const QString& propiedad)
{
    return CreaRecordset(ConexionSQL, registros,
                         u"select DATABASEPROPERTYEX ('"_s + nombre + u"','"_s + propiedad + u"')"_s) &&
           registros.RecordCount() > 0;
}

std::optional<int> CapturaModelo(const QString& nombre)
{
    ado::Recordset registros;
    if (!AbrePropiedad(registros, nombre, u"Recovery"_s))
        return std::nullopt;
    if (registros.Value(0).isNull())
        return ModeloRecuperacion::Sencillo;
    const auto lugar = static_cast<int>(NombresModelos().indexOf(TextoCampo(registros, 0)));
    return lugar < 0 ? std::nullopt : std::optional(lugar);
}

} // namespace

OpcionesLeidas CapturaOpciones_SQL(const QString& nombre)
{
    OpcionesLeidas leidas;
    leidas.Modelo = CapturaModelo(nombre);
    for (std::size_t opcion = 0; opcion < NumeroOpciones; ++opcion) {
        ado::Recordset registros;
        if (AbrePropiedad(registros, nombre, NombresOpciones().at(opcion).propiedad))
            leidas.Marcas.at(opcion) = TextoCampo(registros, 0) == u"1"_s;
    }
    return leidas;
}

void GrabaOpciones(const QString& nombre, const OpcionesBD& opciones)
try {
    const QString cabecera = u"alter database "_s + nombre + u" set "_s;
    if (opciones.Modelo >= 0)
        Ejecuta_SQL(cabecera + u"RECOVERY "_s + NombresModelos().at(opciones.Modelo));
    for (std::size_t opcion = 0; opcion < NumeroOpciones; ++opcion)
        Ejecuta_SQL(cabecera + NombresOpciones().at(opcion).clausula +
                    (opciones.Marcas.at(opcion) ? u"ON"_s : u"OFF"_s));
} catch (...) {
    InformaError(u"GrabaOpciones"_s);
}
