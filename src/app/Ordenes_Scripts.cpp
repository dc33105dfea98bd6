#include "app/Ordenes_Scripts.h"

#include "core/Funciones.h"
#include "core/mdiPrincipal.h"
#include "query/ArchivoScript.h"
#include "query/frmAnalizadorConsultas.h"

using namespace Qt::Literals::StringLiterals;

namespace {

/// The dialog set for scripts; a cancelled one keeps the name of the last.
controls::FileDialog& DialogoScripts()
{
    controls::FileDialog& dialogo = ::mdiPrincipal->cmdPrincipal;
    dialogo.setDefaultExt(u"sql"_s);
    dialogo.setFilter(u"*.sql"_s);
    return dialogo;
}

} // namespace

void mnuAbrir_Click()
try {
    controls::FileDialog& dialogo = DialogoScripts();
    dialogo.ShowOpen();
    if (dialogo.FileName().trimmed().isEmpty())
        return;
    const basic::InputFile archivo(dialogo.FileName()); // before the form, which may be made here
    auto* txtSQL = ::frmAnalizadorConsultas->txtSQL;
    const ScriptLeido leido = LeeScript(archivo);
    txtSQL->setText(leido.texto);
    if (leido.error)
        throw basic::RuntimeError(*leido.error);
} catch (...) {
    InformaError(u"mnuAbrir_Click"_s);
}

void mnuGuardar_Click()
try {
    controls::FileDialog& dialogo = DialogoScripts();
    dialogo.ShowSave();
    if (dialogo.FileName().trimmed().isEmpty())
        return;
    basic::OutputFile archivo(dialogo.FileName());
    EscribeScript(archivo, ::frmAnalizadorConsultas->txtSQL->Text());
} catch (...) {
    InformaError(u"mnuGuardar_Click"_s);
}
