#include "tabledesigner/BD_SQL_Campos.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "tabledesigner/BD_SQL.h"
#include "tabledesigner/Nombres.h"
#include "tabledesigner/TiposDato.h"

using namespace Qt::Literals::StringLiterals;

namespace {

QString TextoNulo(const QString& nulo)
{
    return nulo == u"-1"_s ? u" NULL"_s : u" NOT NULL"_s;
}

QString RestriccionDF(const QString& nombre, const QString& predeterminado)
{
    return u" CONSTRAINT ["_s + nombre + u"] DEFAULT ("_s + predeterminado + u")"_s;
}

QString NombreDFNuevo(const QString& tabla, const QString& campo)
{
    return u"DF_"_s + tabla + u"_"_s + campo;
}

QString NombreTipoServidor(const QString& xtype)
{
    Condicion condicion{u"xtype"_s, xtype, TipoCondicion::Numerico};
    return BuscaRegistro(ConexionSQL, u"systypes"_s, u"name"_s, condicion);
}

// What the server has of a column that an alteration and a comparison read.
struct CampoServidor
{
    QString precision;
    QString nombreTipo;
};

CampoServidor LeeCampo(const QString& id, const QString& campo)
{
    const QString precision = DameDatoCampo(ConexionSQL, id, campo, u"prec"_s);
    DameDatoCampo(ConexionSQL, id, campo, u"scale"_s);
    const QString xtype = DameDatoCampo(ConexionSQL, id, campo, u"xtype"_s);
    return {precision, NombreTipoServidor(xtype)};
}

bool TieneCampo(const QString& id, const QString& campo)
{
    return !id.isEmpty() &&
           ExisteRegistro(ConexionSQL, false, u"syscolumns"_s, {u"name"_s, campo, TipoCondicion::Texto},
                          {{u"id"_s, id, TipoCondicion::Numerico}});
}

// A default that the server lost does not count.
bool PredeterminadoModificado(const QString& id, const QString& campo, const QString& predeterminado,
                              const QString& nombreDF)
{
    if (nombreDF.isEmpty())
        return !predeterminado.isEmpty();
    if (!ExistePredeterminado(ConexionSQL, nombreDF))
        return false;
    const QString idPredeterminado = DameDatoCampo(ConexionSQL, id, campo, u"cdefault"_s);
    return DameTextoPredeterminado(ConexionSQL, idPredeterminado) != predeterminado;
}

bool NuloModificado(const QString& id, const QString& campo, const QString& nulo)
{
    const QString enServidor = DameDatoCampo(ConexionSQL, id, campo, u"isnullable"_s);
    return (enServidor == u"1"_s ? u"-1"_s : enServidor) != nulo;
}

bool TipoModificado(const QString& tipo, const QString& nombreServidor)
{
    const TipoDato* dato = DameTipo(tipo);
    return dato != nullptr && dato->nombre != nombreServidor;
}

QString ClausulaModifica(const TipoDato& tipo, const QString& campo, const QString& longitud,
                         const QString& nulo)
{
    const QString colacion = Intercalacion.isEmpty() ? u" "_s : u" COLLATE "_s + Intercalacion + u" "_s;
    return campo + TextoTipo(tipo.textoModifica, longitud, {}, {}) +
           (tipo.conIntercalacion ? colacion : QString()) + TextoNulo(nulo);
}

// The messages of system procedures. They raise them by RAISERROR, which ends neither the batch nor the
// transaction, whatever XACT_ABORT says; so a save can go on behind one of them and behind no other.
bool EsDeProcedimientoDeSistema(int numero)
{
    return numero >= 15000 && numero < 16000;
}

} // namespace

bool Crea_Campo(const QString& tabla, const QString& campo, const QString& longitud, const QString& precision,
                const QString& escala, const QString& nulo, const QString& tipo,
                const QString& predeterminado)
try {
    if (TablaExiste && !AddEscrito) {
        SentenciaCampos += u" ADD "_s;
        AddEscrito = true;
    }
    if (CamposNuevos >= 2 && ComaPermitida)
        SentenciaCampos += u",\r"_s;
    ComaPermitida = true;
    const TipoDato* dato = DameTipo(tipo);
    SentenciaCampos += campo;
    if (dato != nullptr)
        SentenciaCampos += TextoTipo(dato->textoCrea, longitud, precision, escala);
    SentenciaCampos += TextoNulo(nulo);
    if (!predeterminado.isEmpty())
        SentenciaCampos += RestriccionDF(NombreDFNuevo(tabla, campo), predeterminado);
    return true;
} catch (...) {
    InformaError(u"Crea_Campo"_s);
    return false;
}

bool CampoModificado(const QString& tabla, const QString& campo, const QString& longitud, const QString& nulo,
                     const QString& tipo, const QString& predeterminado, const QString& nombreDF)
try {
    const QString id = DameIdTabla(ConexionSQL, tabla);
    if (!TieneCampo(id, campo))
        return false;
    const CampoServidor servidor = LeeCampo(id, campo);
    bool modificado = NuloModificado(id, campo, nulo);
    if (servidor.precision != longitud && DameDatoCampo(ConexionSQL, id, campo, u"length"_s) != longitud)
        modificado = true;
    if (PredeterminadoModificado(id, campo, predeterminado, nombreDF))
        modificado = true;
    return modificado || TipoModificado(tipo, servidor.nombreTipo);
} catch (...) {
    InformaError(u"CampoModificado"_s);
    return false;
}

bool Modifica_Campo_SQL(const QString& tabla, const QString& campo, const QString& longitud,
                        const QString& nulo, const QString& tipo, const QString& predeterminado,
                        const QString& nombreDF)
try {
    const QString id = DameIdTabla(ConexionSQL, tabla);
    if (!TieneCampo(id, campo))
        return true;
    LeeCampo(id, campo);
    const TipoDato* dato = DameTipo(tipo);
    if (dato == nullptr || dato->textoModifica.isEmpty())
        return true;
    const QString altera = u"ALTER TABLE "_s + PrefijoBD + NombreSQL(tabla);
    if (!nombreDF.isEmpty() && ExistePredeterminado(ConexionSQL, nombreDF))
        EjecutaSQL(ConexionSQL, altera + u" DROP CONSTRAINT ["_s + nombreDF + u"]"_s);
    EjecutaSQL(ConexionSQL, altera + u"  ALTER COLUMN "_s + ClausulaModifica(*dato, campo, longitud, nulo));
    if (!predeterminado.isEmpty())
        EjecutaSQL(ConexionSQL, altera + u" WITH NOCHECK ADD "_s +
                                    RestriccionDF(nombreDF.isEmpty() ? NombreDFNuevo(tabla, campo) : nombreDF,
                                                  predeterminado) +
                                    u" FOR ["_s + campo + u"]"_s);
    return true;
} catch (...) {
    InformaError(u"Modifica_Campo_SQL"_s);
    return false;
}

bool RenombraCampo_SQL(ado::Connection& conexion, const QString& tabla, const QString& nombreServidor,
                       const QString& nombre)
try {
    EjecutaSQL(conexion, u"EXEC sp_rename '"_s + NombreSQL(tabla) + u".["_s + nombreServidor + u"]', '"_s +
                             nombre + u"', 'COLUMN'"_s);
    return true;
} catch (const basic::RuntimeError& error) {
    if (!nombreServidor.trimmed().isEmpty() || !EsDeProcedimientoDeSistema(error.number()))
        throw;
    return false;
}
