#include "core/Global.h"

ado::Connection ConexionSQL;
QString ProveedorSQL;
QString ServidorSQL;
QString UsuarioSQL;
QString ClaveSQL;
QString BaseDatosActual;
QString PrefijoBD;
qint16 Idioma = 0;
QString Mensaje;
QString UsuarioActual;
QString LoginActual;
bool NuevaBD = false;
bool NuevaTabla = false;
QString RutaUbicacion;
basic::BoundedArray2<QString> GruposFicheros{UltimaFilaGrupos, UltimaColumnaGrupos};
