// Backs a database up to a file of the server, through a device of the copy's name.
#pragma once

#include "platform/controls/Form.h"
#include "platform/controls/Slot.h"
#include "ui_frmCopiaSeguridad.h"

namespace formularios {

class frmCopiaSeguridad : public controls::Form, public Ui::frmCopiaSeguridad
{
public:
    frmCopiaSeguridad();

    void PonIdioma();
    void CargaBD();

    void cboBD_Click();
    void cmdAceptar_Click();
    void cmdCancelar_Click();

protected:
    void Form_Load() override;
    void Form_Activate() override;

private:
    void CreaDispositivo();
    [[nodiscard]] QString Sentencia() const;
};

} // namespace formularios

extern controls::Slot<formularios::frmCopiaSeguridad> frmCopiaSeguridad;
