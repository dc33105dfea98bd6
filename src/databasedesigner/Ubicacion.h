// The way to the folder picker.
#pragma once

/// Shows it; the folder stands in RutaUbicacion when the form that asked comes forward again, and nothing
/// there when the user gave up.
void MuestraUbicacion();
