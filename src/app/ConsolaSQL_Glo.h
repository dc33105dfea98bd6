// Opens what is selected in the object browser's list in its editor.
#pragma once

#include "tabledesigner/frmTabla.h"

/// A new table designer in the slot that a list item's key numbers; the first one for an empty key.
formularios::frmTabla* CreaDiseño(const QString& clave);

void DiseñoTabla();
void DiseñoVista();
void DiseñoProcedimiento();
void DiseñoUsuario();
void DiseñoInicioSesion();
