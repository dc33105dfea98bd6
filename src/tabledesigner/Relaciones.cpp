#include "tabledesigner/Relaciones.h"

#include "tabledesigner/BD_SQL.h"

QList<int> CargaRelaciones(const DatosTabla& datos)
{
    QList<int> posiciones;
    for (int i = 0; i < UltimaPosicion; ++i)
        if (!datos.Relaciones.at(i, 0).trimmed().isEmpty())
            posiciones += i;
    ContadorRelaciones = static_cast<int>(posiciones.size());
    return posiciones;
}

bool ExisteRelacion(const DatosTabla& datos, const QString& nombre, int& posicion)
{
    posicion = -1;
    for (int i = 0; i < UltimaPosicion && !nombre.isEmpty() && posicion < 0; ++i)
        if (datos.Relaciones.at(i, 0) == nombre)
            posicion = i;
    return posicion >= 0;
}

int AñadeRelacion(DatosTabla& datos, const QString& nombre)
{
    TomaGlobales(datos);
    const int posicion = ContadorRelaciones;
    datos.CamposRelacion.Crea(posicion);
    datos.Relaciones(posicion, 0) = nombre;
    ++ContadorRelaciones;
    datos.TablaModificada = true;
    return posicion;
}

void RecalculaGridRelaciones(DatosTabla& datos)
{
    TomaGlobales(datos);
    for (int p = datos.IndiceBorrado; p < ContadorRelaciones; ++p) {
        if (p + 1 < ContadorRelaciones) {
            datos.CamposRelacion(p) = datos.CamposRelacion(p + 1);
            datos.Relaciones(p, 0) = datos.Relaciones.at(p + 1, 0);
        } else {
            datos.CamposRelacion.Libera(p);
        }
    }
    datos.Relaciones(ContadorRelaciones - 1, 0) = QString();
}

void EliminaRelacion(DatosTabla& datos, int posicion)
{
    datos.IndiceBorrado = posicion;
    RecalculaGridRelaciones(datos);
    CargaRelaciones(datos);
    datos.TablaModificada = true;
}

int DameLineaIncompleta(const DatosTabla& datos, int posicion)
{
    const Matriz& lineas = datos.CamposRelacion(posicion);
    for (int linea = 0; linea < UltimaFila && linea <= lineas.lastRow(); ++linea)
        if (lineas.at(linea, ColCampoRelacion::Propia).isEmpty() !=
            lineas.at(linea, ColCampoRelacion::Externa).isEmpty())
            return linea;
    return -1;
}
