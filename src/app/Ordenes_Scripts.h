// Loads and saves the text of the query window, whichever form is active.
#pragma once

void mnuAbrir_Click();
void mnuGuardar_Click();
