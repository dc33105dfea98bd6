// The commands that open a database in its form.
#pragma once

void mnuNuevaBD_Click();
void mnuPropiedadesBD_Click();
