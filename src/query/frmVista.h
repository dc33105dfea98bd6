// Edits the text of a view; accepting drops the loaded object and runs the text.
#pragma once

#include "platform/controls/Form.h"
#include "platform/controls/Slot.h"
#include "ui_frmVista.h"

namespace formularios {

class frmVista : public controls::Form, public Ui::frmVista
{
public:
    frmVista();

    void PonIdioma();

    /// Loads the object of that name from BaseDatosActual.
    void CapturaVistas_SQL(const QString& nombre);

    void cmdAceptar_Click();
    void cmdCancelar_Click();

protected:
    void Form_Load() override;
    void Form_Activate() override;

private:
    QString NombreObjeto; ///< the loaded object; empty for a new one
};

} // namespace formularios

extern controls::Slot<formularios::frmVista> frmVista;
