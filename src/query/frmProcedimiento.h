// Edits the text of a stored procedure; accepting drops the loaded object and runs the text.
#pragma once

#include "platform/controls/Form.h"
#include "platform/controls/Slot.h"
#include "ui_frmProcedimiento.h"

namespace formularios {

class frmProcedimiento : public controls::Form, public Ui::frmProcedimiento
{
public:
    frmProcedimiento();

    void PonIdioma();

    /// Loads the object of that name from BaseDatosActual.
    void CapturaProcedimiento_SQL(const QString& nombre);

    void cmdAceptar_Click();
    void cmdCancelar_Click();

protected:
    void Form_Load() override;
    void Form_Activate() override;

private:
    QString NombreObjeto; ///< the loaded object; empty for a new one
};

} // namespace formularios

extern controls::Slot<formularios::frmProcedimiento> frmProcedimiento;
