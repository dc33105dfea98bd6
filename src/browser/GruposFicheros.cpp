#include "browser/GruposFicheros.h"

#include "core/Funciones.h"
#include "core/Global.h"

using namespace Qt::Literals::StringLiterals;

namespace {

// Groups above this status show the second flag; a group of status 0 shows the first.
constexpr int UmbralEstado = 10;

void GuardaGrupo(int fila, const ado::Recordset& registros)
{
    const bool superior = TextoCampo(registros, u"Status"_s).toInt() > UmbralEstado;
    GruposFicheros(fila, 0) = TextoCampo(registros, u"groupname"_s);
    GruposFicheros(fila, 1) = TextoCampo(registros, u"filecount"_s);
    GruposFicheros(fila, 2) = superior ? u"0"_s : u"-1"_s;
    GruposFicheros(fila, 3) = superior ? u"-1"_s : u"0"_s;
}

} // namespace

void CapturaGruposFicheros_SQL()
try {
    PrefijoBD = BaseDatosActual + u".."_s;
    const QString texto = u"select  g.groupname,g.status,  g.groupid, 'filecount' ="_s +
                          u"         (select count(*) from "_s + PrefijoBD + u"sysfiles f"_s +
                          u"             Where f.groupid = g.groupid"_s +
                          u"                 and (f.status & 0x40 <> 0x40))"_s + u"     from "_s + PrefijoBD +
                          u"sysfilegroups g"_s + u" order by groupid"_s;
    ado::Recordset registros;
    if (!CreaRecordset(ConexionSQL, registros, texto))
        return;
    GruposFicheros.Redim(UltimaFilaGrupos, UltimaColumnaGrupos);
    for (int fila = 0; !registros.Eof(); ++fila, registros.MoveNext())
        GuardaGrupo(fila, registros);
} catch (...) {
    InformaError(u"CapturaGruposFicheros_SQL"_s);
}
