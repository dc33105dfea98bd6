// The commands that open a new table's designer, and those on the rows of the active one.
#pragma once

void mnuAñadirTabla_Click();
void mnuInsertarFila_Click();
void mnuEliminarFila_Click();
