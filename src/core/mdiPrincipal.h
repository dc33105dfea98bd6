// The main window: the only menu bar, and the area that hosts every other form.
#pragma once

#include "platform/controls/FileDialog.h"
#include "platform/controls/MdiForm.h"
#include "platform/controls/Slot.h"
#include "ui_mdiPrincipal.h"

namespace formularios {

class mdiPrincipal : public controls::MdiForm, public Ui::mdiPrincipal
{
public:
    mdiPrincipal();

    controls::FileDialog cmdPrincipal; ///< of the script commands; keeps its name from use to use

    void PonIdioma();
    void mnuSalir_Click();

protected:
    void MDIForm_Load() override;
    void MDIForm_Activate() override;

private:
    void PonIdiomaArchivo();
    void PonIdiomaBaseDatos();
};

} // namespace formularios

extern controls::Slot<formularios::mdiPrincipal> mdiPrincipal;

/// True when a loaded form bears that name, in any case.
bool ExisteFormulario(const QString& nombre);

/// Puts an object's editor on screen: a loaded one comes forward, a new one is shown; the children are
/// cascaded and the table designers, or the new form, pulled to the left edge.
void MuestraFormulario(controls::Form* frm);
