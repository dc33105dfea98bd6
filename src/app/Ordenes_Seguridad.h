// The commands that open the forms of logins.
#pragma once

void mnuAñadirInicioSesion_Click();
