// Reads the filegroups of the current database for the designers.
#pragma once

/// Reloads GruposFicheros for BaseDatosActual; a failed query leaves it as it was.
void CapturaGruposFicheros_SQL();
