#include "backup/Copia.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"
#include "platform/controls/ComboBox.h"

using namespace Qt::Literals::StringLiterals;

QString SentenciaCopia(TipoCopia tipo, const QString& base, const QString& copia)
{
    if (tipo == TipoCopia::Registro)
        return u"BACKUP LOG "_s + base + u" TO "_s + copia;
    const QString completa = u"BACKUP DATABASE "_s + base + u" TO "_s + copia;
    return tipo == TipoCopia::Diferencial ? completa + u" WITH DIFFERENTIAL"_s : completa;
}

QString SentenciaRestauracion(const QString& base, const QString& archivo,
                              const basic::BoundedArray2<QString>& ficheros, int cuenta)
{
    QStringList destinos;
    for (int i = 0; i < cuenta; ++i)
        destinos += u"'"_s + ficheros.at(i, ColFichero::Nombre) + u"' TO '"_s +
                    ficheros.at(i, ColFichero::NombreFisico) + u"'"_s;
    return u"RESTORE DATABASE "_s + base + u" FROM "_s + u" DISK ='"_s + archivo + u"'"_s + u" WITH MOVE "_s +
           destinos.join(u", MOVE "_s);
}

int CargaBases(controls::ComboBox* lista, const QString& actual)
{
    int elegida = -1;
    lista->Clear();
    ado::Recordset bases;
    if (!CreaRecordset(ConexionSQL, bases, u"Select name from master.dbo.sysdatabases order by name"_s))
        return elegida;
    for (; !bases.Eof(); bases.MoveNext()) {
        const QString nombre = TextoCampo(bases, u"Name"_s).trimmed();
        if (nombre == actual)
            elegida = lista->ListCount();
        lista->AddItem(nombre);
    }
    return elegida;
}

bool HayBaseElegida(const controls::ComboBox* lista)
{
    if (lista->ListIndex() != -1)
        return true;
    MuestraMensaje(u"Seleccione una base de datos."_s, u"Select a database."_s);
    return false;
}
