#include "tabledesigner/GuardaIndices.h"

#include "core/Global.h"
#include "platform/basic/Numbers.h"
#include "tabledesigner/BD_SQL.h"
#include "tabledesigner/BD_SQL_Indices.h"
#include "tabledesigner/Nombres.h"
#include "tabledesigner/Restricciones.h"

using namespace Qt::Literals::StringLiterals;

namespace {

/// An entry of Indices, trimmed.
struct Indice
{
    QString nombre;
    QString clase;
    QString agrupado;
    QString unico;
    QString grupo;
    QString relleno; ///< "0" for none, however it was typed; a point for every comma

    [[nodiscard]] bool esClave() const { return clase == u"P"_s; }
};

Indice LeeIndice(const Matriz& indices, int i)
{
    const auto atributo = [&](int columna) { return indices.at(i, columna).trimmed(); };
    Indice indice{atributo(ColIndice::Nombre), atributo(ColIndice::Clase), atributo(ColIndice::Agrupado),
                  atributo(ColIndice::Unico),  atributo(ColIndice::Grupo), atributo(ColIndice::Relleno)};
    indice.relleno.replace(u',', u'.');
    if (basic::val(indice.relleno) == 0)
        indice.relleno = u"0"_s;
    return indice;
}

// The statement up to the place where Crea_Indice goes on.
QString Cabecera(const Indice& indice, const QString& tabla)
{
    if (indice.esClave())
        return u"ALTER TABLE "_s + PrefijoBD + NombreSQL(tabla) + u" WITH NOCHECK ADD "_s;
    return u"CREATE "_s + (indice.agrupado == u"1"_s ? u" CLUSTERED "_s : QString()) + u" INDEX "_s +
           NombreSQL(indice.nombre) + u"  ON "_s + PrefijoBD + NombreSQL(tabla) + u" "_s;
}

// False when the foreign keys that reference the key could not be taken away: it stays as it is then.
bool QuitaClavePrimaria(const Indice& clave, const QString& tabla)
{
    if (!EliminaVinculos(ConexionSQL, tabla, SentenciaRelacion))
        return false;
    EjecutaSQL(ConexionSQL, u"ALTER TABLE "_s + PrefijoBD + NombreSQL(tabla) + u" DROP CONSTRAINT "_s +
                                NombreSQL(clave.nombre));
    return true;
}

QString Opciones(const Indice& indice)
{
    const bool rehace = !indice.esClave() && ObjetoExiste;
    QString opciones;
    if (indice.relleno != u"0"_s)
        opciones = u" WITH FILLFACTOR = "_s + indice.relleno + (rehace ? u" ,DROP_EXISTING "_s : QString());
    else if (rehace)
        opciones = u" WITH DROP_EXISTING "_s;
    if (!indice.grupo.isEmpty())
        opciones += u" ON ["_s + indice.grupo + u"]"_s;
    return opciones;
}

void GuardaIndice(const Indice& indice, const Matriz& campos, const QString& tabla)
{
    ClavesIndice.clear();
    ObjetoExiste = ExisteElIndice(ConexionSQL, tabla, indice.nombre);
    if (ObjetoExiste && indice.esClave() && !QuitaClavePrimaria(indice, tabla))
        return;
    SentenciaIndice = Cabecera(indice, tabla);
    for (int linea = 0; linea < UltimaFila; ++linea) {
        const QString campo = campos.at(linea, ColCampoIndice::Nombre).trimmed();
        if (!campo.isEmpty())
            Crea_Indice(NombreSQL(indice.nombre), campo, indice.clase, indice.unico, indice.agrupado);
    }
    SentenciaIndice += u" ("_s + ClavesIndice + u")\r"_s + Opciones(indice);
    EjecutaSQL(ConexionSQL, SentenciaIndice);
    SentenciaIndice.clear();
    ClavesIndice.clear();
}

} // namespace

void GuardaIndices(const DatosTabla& datos)
{
    for (int i = 0; i < ContadorIndices; ++i) {
        const Indice indice = LeeIndice(datos.Indices, i);
        if (!indice.nombre.isEmpty())
            GuardaIndice(indice, datos.CamposIndice(i), datos.NombreTabla);
    }
}
