// Opens what is selected in the object browser's list in its editor.
#pragma once

void DiseñoTabla();
void DiseñoVista();
void DiseñoProcedimiento();
void DiseñoUsuario();
void DiseñoInicioSesion();
