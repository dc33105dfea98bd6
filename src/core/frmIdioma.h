// The first run's question: in which language the program speaks. Closing the window, by its
// frame, Enter or Esc, is the answer.
#pragma once

#include "platform/controls/Form.h"
#include "platform/controls/Slot.h"
#include "ui_frmIdioma.h"

namespace formularios {

class frmIdioma : public controls::Form, public Ui::frmIdioma
{
public:
    frmIdioma();

protected:
    void Form_Load() override;
    void Form_Unload(bool& cancel) override;
};

} // namespace formularios

extern controls::Slot<formularios::frmIdioma> frmIdioma;
