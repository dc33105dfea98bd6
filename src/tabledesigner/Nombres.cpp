#include "tabledesigner/Nombres.h"

using namespace Qt::Literals::StringLiterals;

QString NombreSQL(const QString& nombre)
{
    return nombre.contains(u' ') ? u"["_s + nombre + u"]"_s : nombre;
}

bool MismoNombre(const QString& uno, const QString& otro)
{
    return uno.trimmed().toUpper() == otro.trimmed().toUpper();
}

QString SinParentesis(QString texto)
{
    return texto.remove(u'(').remove(u')');
}
