#include "core/LeeIdioma.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "core/frmIdioma.h"
#include "core/mdlRegistro.h"
#include "platform/basic/Numbers.h"
#include "platform/basic/VariantText.h"
#include "platform/controls/Language.h"

using namespace Qt::Literals::StringLiterals;

void LeeIdiomaRegistro()
try {
    if (CrearClave(HKEY_CURRENT_USER, ClaveRegistro)) {
        const QString guardado = basic::text(LeerValor(HKEY_CURRENT_USER, ClaveRegistro, ValorIdioma));
        if (guardado.isEmpty())
            ::frmIdioma->ShowModal();
        else
            Idioma = basic::toInt16(basic::val(guardado));
    }
    controls::setUiLanguage(Idioma);
} catch (...) {
    InformaError(u"LeeIdiomaRegistro"_s);
}
