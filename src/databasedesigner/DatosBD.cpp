#include "databasedesigner/DatosBD.h"

#include "platform/basic/Numbers.h"

using namespace Qt::Literals::StringLiterals;

bool EstaMarcado(const QString& celda)
{
    return celda == u"-1"_s;
}

QString NumeroSQL(const QString& celda)
{
    return QString(celda).replace(u',', u'.');
}

double ValorCelda(const QString& celda)
{
    return basic::val(NumeroSQL(celda));
}
