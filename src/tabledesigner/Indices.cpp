#include "tabledesigner/Indices.h"

#include "platform/basic/Numbers.h"
#include "tabledesigner/BD_SQL.h"
#include "tabledesigner/Campos.h"

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int RanuraPropia = 0;

QString NombreDeIndice(const DatosTabla& datos, int ranura, int posicion)
{
    return ranura == RanuraPropia ? datos.Indices.at(posicion, ColIndice::Nombre) : QString();
}

} // namespace

QList<int> CargaIndices(const DatosTabla& datos)
{
    QList<int> posiciones;
    for (int i = 0; i < UltimaPosicion; ++i)
        if (!datos.Indices.at(i, ColIndice::Nombre).trimmed().isEmpty())
            posiciones += i;
    ContadorIndices = static_cast<int>(posiciones.size());
    return posiciones;
}

bool ExisteIndice(const DatosTabla& datos, const QString& nombre, int& posicion)
{
    posicion = -1;
    for (int i = 0; i < UltimaPosicion && !nombre.isEmpty() && posicion < 0; ++i)
        if (NombreDeIndice(datos, RanuraPropia, i) == nombre)
            posicion = i;
    return posicion >= 0;
}

bool ExisteTodosIndice(const DatosTabla& datos, const QString& nombre, int& ranura)
{
    if (nombre.isEmpty())
        return false;
    for (ranura = 1; ranura < UltimaRanura; ++ranura)
        for (int i = 0; i < UltimaPosicion; ++i)
            if (NombreDeIndice(datos, ranura, i) == nombre)
                return true;
    return false;
}

int AñadeIndice(DatosTabla& datos, const QString& nombre)
{
    TomaGlobales(datos);
    const int posicion = ContadorIndices;
    datos.CamposIndice.Crea(posicion);
    ++ContadorIndices;
    datos.Indices(posicion, ColIndice::Nombre) = nombre;
    datos.Indices(posicion, ColIndice::Clase) = u"I"_s;
    datos.Indices(posicion, ColIndice::Unico) = u"0"_s;
    datos.Indices(posicion, ColIndice::Agrupado) = u"0"_s;
    datos.TablaModificada = true;
    return posicion;
}

void RecalculaGridIndices(DatosTabla& datos)
{
    TomaGlobales(datos);
    for (int p = datos.IndiceBorrado; p < ContadorIndices; ++p) {
        if (p + 1 < ContadorIndices) {
            datos.CamposIndice(p) = datos.CamposIndice(p + 1);
            datos.Indices(p, ColIndice::Nombre) = datos.Indices.at(p + 1, ColIndice::Nombre);
        } else {
            datos.CamposIndice.Libera(p);
        }
    }
    datos.Indices(ContadorIndices - 1, ColIndice::Nombre) = QString();
}

void EliminaIndice(DatosTabla& datos, int posicion)
{
    datos.IndiceBorrado = posicion;
    RecalculaGridIndices(datos);
    CargaIndices(datos);
    datos.TablaModificada = true;
}

void PonClavePrimaria(DatosTabla& datos, int posicion, bool esClave)
{
    datos.Indices(posicion, ColIndice::Clase) = esClave ? u"P"_s : u"I"_s;
    if (esClave)
        datos.Indices(posicion, ColIndice::Unico) = u"1"_s;
}

bool PonFactorRelleno(DatosTabla& datos, int posicion, const QString& texto)
{
    if (texto.trimmed().isEmpty()) {
        datos.Indices(posicion, ColIndice::Relleno) = u"0"_s;
        return true;
    }
    if (!basic::isNumeric(texto))
        return false;
    datos.Indices(posicion, ColIndice::Relleno) = texto;
    datos.TablaModificada = true;
    return true;
}

bool EstaCampoEnIndices(const DatosTabla& datos, int posicion, const QString& nombre)
{
    if (posicion < 0 || !datos.CamposIndice.Existe(posicion))
        return false;
    const Matriz& lineas = datos.CamposIndice(posicion);
    for (int linea = 0; linea < UltimaFila; ++linea)
        if (lineas.at(linea, ColCampoIndice::Nombre).trimmed() == nombre)
            return true;
    return false;
}

QStringList DameCamposParaIndice(const DatosTabla& datos, int posicion)
{
    QStringList libres;
    for (const QString& nombre : DameNombresCampos(datos))
        if (!EstaCampoEnIndices(datos, posicion, nombre))
            libres += nombre;
    return libres;
}

bool IndiceSinCampos(const DatosTabla& datos, int posicion)
{
    const Matriz& lineas = datos.CamposIndice(posicion);
    for (int linea = 0; linea < UltimaFila && linea <= lineas.lastRow(); ++linea)
        if (!lineas.at(linea, ColCampoIndice::Nombre).isEmpty())
            return false;
    return true;
}
