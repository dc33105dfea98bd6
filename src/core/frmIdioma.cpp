#include "core/frmIdioma.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"
#include "core/mdlRegistro.h"

#include <QShortcut>

using namespace Qt::Literals::StringLiterals;

controls::Slot<formularios::frmIdioma> frmIdioma;

namespace formularios {

frmIdioma::frmIdioma()
{
    setupUi(this);
    // The option that has the focus would leave these keys alone, or on some desktops take Enter for itself.
    for (const auto tecla : {Qt::Key_Return, Qt::Key_Enter, Qt::Key_Escape})
        connect(new QShortcut(tecla, this), &QShortcut::activated, this, &frmIdioma::Unload);
}

void frmIdioma::Form_Load()
{
    Idioma = Español;
}

void frmIdioma::Form_Unload(bool& /*cancel*/)
try {
    Idioma = optEspañol->isChecked() ? Español : Ingles;
    if (CrearClave(HKEY_CURRENT_USER, ClaveRegistro))
        EscribirValor(HKEY_CURRENT_USER, ClaveRegistro, ValorIdioma, basic::Variant(Idioma), ValorNumero);
} catch (...) {
    InformaError(u"Form_Unload"_s);
}

} // namespace formularios
