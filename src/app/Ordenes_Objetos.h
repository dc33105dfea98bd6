// The commands on what is selected in the object browser.
#pragma once

void mnuDiseño_Click();
void mnuEliminar_Click();
void mnuVerRegistros_Click();
