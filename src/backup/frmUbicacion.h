// Picks a folder of this machine. It answers through RutaUbicacion, which only its two buttons set.
#pragma once

#include "platform/controls/Form.h"
#include "platform/controls/Slot.h"
#include "ui_frmUbicacion.h"

namespace formularios {

class frmUbicacion : public controls::Form, public Ui::frmUbicacion
{
public:
    frmUbicacion();

    void DriveUbicacion_Change();
    void DirUbicacion_Change();
    void DirUbicacion_Click();
    void cmdAceptar_Click();
    void cmdCancelar_Click();

protected:
    void Form_Load() override;
    void Form_Activate() override;
};

} // namespace formularios

extern controls::Slot<formularios::frmUbicacion> frmUbicacion;
