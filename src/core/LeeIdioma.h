// Where the language comes from at start.
#pragma once

/// Reads the stored language into Idioma, asking for it when none is stored yet.
void LeeIdiomaRegistro();
