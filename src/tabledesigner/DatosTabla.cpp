#include "tabledesigner/DatosTabla.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "tabledesigner/BD_SQL.h"

using namespace Qt::Literals::StringLiterals;

namespace {

// Entries up to the last that has a name.
int CuentaNombres(const Matriz& matriz)
{
    int cuenta = matriz.lastRow() + 1;
    while (cuenta > 0 && matriz.at(cuenta - 1, 0).trimmed().isEmpty())
        --cuenta;
    return cuenta;
}

} // namespace

void IniciaDatosTabla(DatosTabla& datos, const QString& baseDatos)
{
    datos.BaseDatos = baseDatos;
    datos.CamposTabla.Redim(UltimaFila, ColCampo::Ultima);
    datos.IntercalacionBase = DameIntercalacion(baseDatos);
    TomaGlobales(datos);
}

int RanuraTabla(const QString& clave)
{
    const int ranura = clave.mid(1).toInt();
    if (ranura > UltimaRanura)
        basic::raise(basic::error::Subscript);
    return ranura;
}

void TomaGlobales(const DatosTabla& datos)
{
    PrefijoBD = datos.BaseDatos + u".."_s;
    IndiceTabla = RanuraTabla(datos.ClaveTabla);
    ContadorIndices = CuentaNombres(datos.Indices);
    ContadorRelaciones = CuentaNombres(datos.Relaciones);
    Intercalacion = datos.IntercalacionBase;
    SentenciaCampos.clear();
    SentenciaIndice.clear();
    ClavesIndice.clear();
    SentenciaRelacion.clear();
    TablaReferida.clear();
    TablaExiste = false;
    ObjetoExiste = false;
    AddEscrito = false;
    ComaPermitida = false;
    CamposNuevos = 0;
}
