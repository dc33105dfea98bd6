// Asks for server, login and password, and opens the session connection.
#pragma once

#include "platform/controls/Form.h"
#include "platform/controls/Slot.h"
#include "ui_frmConectar.h"

namespace formularios {

class frmConectar : public controls::Form, public Ui::frmConectar
{
public:
    frmConectar();

    void PonIdioma();
    void cmdConectar_Click();

protected:
    void Form_Load() override;
    void Form_Activate() override;
};

} // namespace formularios

extern controls::Slot<formularios::frmConectar> frmConectar;
