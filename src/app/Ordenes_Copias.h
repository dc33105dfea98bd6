// The commands that open the forms of backup and restore on the chosen database.
#pragma once

void mnuCopiaSeguridad_Click();
void mnuRestaurarCopia_Click();
