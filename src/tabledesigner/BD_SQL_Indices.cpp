#include "tabledesigner/BD_SQL_Indices.h"

#include "core/Funciones.h"
#include "tabledesigner/BD_SQL.h"

using namespace Qt::Literals::StringLiterals;

namespace {

// True for the first column.
bool PonClave(const QString& campo)
{
    const bool primera = ClavesIndice.isEmpty();
    ClavesIndice += primera ? campo : u","_s + campo;
    return primera;
}

} // namespace

void Crea_Indice(const QString& indice, const QString& campo, const QString& tipo, const QString& unico,
                 const QString& agrupado)
try {
    if (tipo == u"P"_s) {
        if (PonClave(campo))
            SentenciaIndice += u"CONSTRAINT "_s + indice + u" PRIMARY KEY "_s +
                               (agrupado == u"1"_s ? u" CLUSTERED "_s : u" NONCLUSTERED "_s);
    } else if (tipo == u"F"_s) {
        SentenciaIndice += u" CONSTRAINT "_s + indice + u" FOREIGN  KEY \r"_s;
    } else if (tipo.isEmpty() || tipo == u"I"_s) {
        if (PonClave(campo) && unico == u"1"_s)
            SentenciaIndice += u" UNIQUE "_s;
    }
} catch (...) {
    InformaError(u"Crea_Indice"_s);
}
