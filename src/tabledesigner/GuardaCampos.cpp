#include "tabledesigner/GuardaCampos.h"

#include "core/Global.h"
#include "tabledesigner/BD_SQL.h"
#include "tabledesigner/BD_SQL_Campos.h"
#include "tabledesigner/CargaTabla.h"
#include "tabledesigner/Nombres.h"
#include "tabledesigner/Restricciones.h"
#include "tabledesigner/Vinculos.h"

using namespace Qt::Literals::StringLiterals;

namespace {

/// A row of CamposTabla, trimmed.
struct Fila
{
    QString nombre;
    QString tipo;
    QString longitud;
    QString precision;
    QString escala;
    QString nulo;
    QString predeterminado;
    QString nombreDF;
    QString nombreServidor;
};

Fila LeeFila(const Matriz& campos, int fila)
{
    const auto celda = [&](int columna) { return campos.at(fila, columna).trimmed(); };
    return {celda(ColCampo::Nombre),         celda(ColCampo::Tipo),     celda(ColCampo::Longitud),
            celda(ColCampo::Precision),      celda(ColCampo::Escala),   celda(ColCampo::Nulo),
            celda(ColCampo::Predeterminado), celda(ColCampo::NombreDF), celda(ColCampo::NombreServidor)};
}

bool CreaCampo(const QString& tabla, const Fila& fila)
{
    ++CamposNuevos;
    return Crea_Campo(tabla, fila.nombre, fila.longitud, fila.precision, fila.escala, fila.nulo, fila.tipo,
                      fila.predeterminado);
}

void ModificaCampo(const QString& tabla, const Fila& fila)
{
    Modifica_Campo_SQL(tabla, fila.nombre, fila.longitud, fila.nulo, fila.tipo, fila.predeterminado,
                       fila.nombreDF);
}

// After the walk over the linked columns has failed.
void ModificaCampoSinVinculos(DatosTabla& datos, const QString& tabla, const Fila& fila,
                              const QString& idTabla)
{
    SentenciaIndice.clear();
    BuscaCargaIndices(datos, tabla, fila.nombre, SentenciaIndice, idTabla, SentenciaRelacion);
    EliminaLosVinculos(ConexionSQL, tabla, fila.nombre);
    ModificaCampo(tabla, fila);
    EjecutaCola(ConexionSQL, SentenciaIndice);
}

void CambiaCampo(DatosTabla& datos, const QString& tabla, const Fila& fila, const QString& idTabla)
{
    if (!CampoModificado(tabla, fila.nombre, fila.longitud, fila.nulo, fila.tipo, fila.predeterminado,
                         fila.nombreDF))
        return;
    bool resultado = false;
    BuscaCambiaVinculos(datos, ConexionSQL, tabla, fila.nombre, fila.nombre, false, resultado);
    if (resultado)
        ModificaCampo(tabla, fila);
    else
        ModificaCampoSinVinculos(datos, tabla, fila, idTabla);
}

} // namespace

void EmpiezaCampos(const DatosTabla& datos)
{
    const QString tabla = NombreSQL(datos.NombreTabla);
    TablaExiste = ExisteTabla(ConexionSQL, datos.NombreTabla);
    SentenciaCampos = TablaExiste ? u"ALTER TABLE "_s + PrefijoBD + tabla + u" "_s
                                  : u"CREATE TABLE "_s + PrefijoBD + tabla + u" ("_s;
    AddEscrito = false;
    CamposNuevos = 0;
}

bool GuardaCampos(DatosTabla& datos, const QString& idTabla)
{
    const QString& tabla = datos.NombreTabla;
    for (int n = 0; n < UltimaFila; ++n) {
        const Fila fila = LeeFila(datos.CamposTabla, n);
        if (fila.nombre.isEmpty())
            continue;
        if (!MismoNombre(fila.nombreServidor, fila.nombre))
            RenombraCampo_SQL(ConexionSQL, tabla, fila.nombreServidor, fila.nombre);
        if (ExisteCampo(ConexionSQL, tabla, fila.nombre))
            CambiaCampo(datos, tabla, fila, idTabla);
        else if (!CreaCampo(tabla, fila))
            return false;
    }
    return true;
}

void TerminaCampos(const DatosTabla& datos)
{
    if (SentenciaCampos.isEmpty() || CamposNuevos == 0) {
        CambiaGrupoFicheros(datos, datos.GrupoDatos);
        return;
    }
    if (!TablaExiste)
        SentenciaCampos += u")"_s;
    if (!datos.GrupoDatos.isEmpty() && datos.GrupoDatos != u"PRIMARY"_s)
        SentenciaCampos += u" ON "_s + datos.GrupoDatos;
    EjecutaSQL(ConexionSQL, SentenciaCampos);
    SentenciaCampos.clear();
}
