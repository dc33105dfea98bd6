#include "core/EstadosPermiso.h"

#include "core/Idioma.h"
#include "platform/controls/DataGrid.h"
#include "platform/controls/ImageList.h"

using namespace Qt::Literals::StringLiterals;

void PonEstadosPermiso(const controls::GridColumn& columna)
{
    const auto texto = [](const QString& español, const QString& ingles) {
        return EnIdioma(español, ingles).value_or(español);
    };
    using controls::ImageList;
    controls::ValueItems& valores = columna.ValueItems();
    valores.Clear();
    valores.setPresentation(controls::ValueItems::Presentation::Picture);
    // The first one is what an empty cell goes to.
    valores.Add(u"PE"_s, ImageList::grantedIcon(), texto(u"Concedido"_s, u"Granted"_s));
    valores.Add(u"NP"_s, ImageList::deniedIcon(), texto(u"Denegado"_s, u"Denied"_s));
    valores.Add(u"NA"_s, ImageList::unsetIcon(), texto(u"Sin permiso propio"_s, u"Nothing recorded"_s));
}
