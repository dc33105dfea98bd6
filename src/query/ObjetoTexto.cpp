#include "query/ObjetoTexto.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"

using namespace Qt::Literals::StringLiterals;

bool CapturaTextoObjeto_SQL(const ClaseObjeto& clase, const QString& nombre, QString& texto,
                            QString& nombreObjeto)
{
    PrefijoBD = BaseDatosActual + u".."_s;
    const QString consulta = u"Select obj.name,com.text "_s + u" from "_s + PrefijoBD +
                             u"sysobjects obj, "_s + PrefijoBD + u"syscomments com"_s + clase.filtro +
                             u" and name='"_s + nombre + u"'"_s + u" and com.id=obj.id"_s +
                             u" order by name"_s;
    ado::Recordset registros;
    if (!CreaRecordset(ConexionSQL, registros, consulta))
        return false;
    texto.clear();
    for (; !registros.Eof(); registros.MoveNext()) {
        nombreObjeto = nombre;
        texto += TextoCampo(registros, u"Text"_s);
    }
    return true;
}

void ReemplazaObjeto_SQL(const ClaseObjeto& clase, const QString& nombreObjeto, const QString& texto)
{
    Ejecuta_SQL(u"USE "_s + BaseDatosActual);
    if (!nombreObjeto.isEmpty())
        Ejecuta_SQL(clase.prefijoBorra + nombreObjeto);
    Ejecuta_SQL(texto);
    PrefijoBD = BaseDatosActual + u".."_s;
}

void PonIdiomaEditor(controls::Form* editor, QAbstractButton* aceptar, QAbstractButton* cancelar)
{
    PonTexto(editor, u"Vista"_s, u"View"_s);
    PonTexto(aceptar, u"Aceptar"_s, u"Accept"_s);
    PonTexto(cancelar, u"Cancelar"_s, u"Cancel"_s);
}
