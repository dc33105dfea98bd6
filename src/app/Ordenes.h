// Binds each entry of the main window's menus to its command. The commands open forms, so they stand
// above all of them.
#pragma once

/// Connects the menu entries of mdiPrincipal; called once, when the window has been made.
void EnlazaOrdenes();
