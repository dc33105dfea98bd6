#include "tabledesigner/Campos.h"

#include "core/Idioma.h"
#include "platform/basic/Numbers.h"
#include "tabledesigner/BD_SQL.h"
#include "tabledesigner/Nombres.h"
#include "tabledesigner/TiposDato.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int PrecisionMaxima = 28;
constexpr int EscalaMaxima = 28;

QString& Celda(FilaRejilla& fila, int columna)
{
    return fila.Celdas.at(static_cast<std::size_t>(columna));
}

// Leaves the number that the cell begins with. Without message: what it leaves is a number.
int LeeNumero(FilaRejilla& fila, int columna)
{
    QString& celda = Celda(fila, columna);
    celda = basic::text(basic::val(celda));
    return basic::toInt32(celda);
}

// The message speaks of 1 as the lower bound, whatever the bound that is tested.
int Acota(int valor, int maximo)
{
    return valor < 1 ? 1 : std::min(valor, maximo);
}

std::optional<int> CompruebaLongitud(FilaRejilla& fila)
{
    const TipoDato* tipo = DameTipo(Celda(fila, ColCampo::Tipo));
    const int maxima = tipo != nullptr ? tipo->longitudMaxima : LongitudMaxima;
    const int longitud = LeeNumero(fila, ColCampo::Longitud);
    if (longitud >= 1 && longitud <= maxima)
        return std::nullopt;
    const QString limite = QString::number(maxima) + u"."_s;
    MuestraMensaje(u"Valor de Longitud debe ser de 1 a "_s + limite, u"Length between 1 to "_s + limite);
    Celda(fila, ColCampo::Longitud) = QString::number(Acota(longitud, maxima));
    return ColCampo::Longitud;
}

// Bytes that a decimal of a precision takes.
QString LongitudDePrecision(int precision)
{
    constexpr int Corta = 9;
    constexpr int Media = 19;
    if (precision <= Corta)
        return u"5"_s;
    return precision <= Media ? u"9"_s : u"13"_s;
}

std::optional<int> CompruebaPrecision(FilaRejilla& fila)
{
    const int precision = LeeNumero(fila, ColCampo::Precision);
    if (precision < 1 || precision > PrecisionMaxima) {
        MuestraMensaje(u"Valor de Precisión debe ser de 1 a 28."_s, u"Precision between 1 to 28."_s);
        Celda(fila, ColCampo::Precision) = QString::number(Acota(precision, PrecisionMaxima));
        return ColCampo::Precision;
    }
    const int tipo = Celda(fila, ColCampo::Tipo).toInt();
    if (tipo == TipoDecimal || tipo == TipoNumeric)
        Celda(fila, ColCampo::Longitud) = LongitudDePrecision(precision);
    return std::nullopt;
}

std::optional<int> CompruebaEscala(FilaRejilla& fila)
{
    const int escala = LeeNumero(fila, ColCampo::Escala);
    if (escala < 0 || escala > EscalaMaxima) {
        MuestraMensaje(u"Valor de Escala debe ser de 1 a 28."_s, u"Scale between 1 to 28."_s);
        Celda(fila, ColCampo::Escala) = QString::number(Acota(escala, EscalaMaxima));
        return ColCampo::Escala;
    }
    const QString precision = Celda(fila, ColCampo::Precision);
    if (escala <= basic::val(precision))
        return std::nullopt;
    MuestraMensaje(u"Valor de Escala debe estar comprendida entre 0 y "_s + precision + u"."_s,
                   u"Scale between 0 y "_s + precision + u"."_s);
    Celda(fila, ColCampo::Escala) = precision;
    return ColCampo::Escala;
}

// A column that allows NULL is asked for a default, and one that does not is not.
std::optional<int> CompruebaNulo(const FilaRejilla& fila)
{
    if (!fila.Celdas[ColCampo::Predeterminado].isEmpty() || fila.Celdas[ColCampo::Nulo] != u"-1"_s)
        return std::nullopt;
    MuestraMensaje(u"Inserte valor predeterminado."_s, u"Insetrt default value."_s);
    return ColCampo::Predeterminado;
}

void MueveFila(Matriz& campos, int origen, int destino)
{
    for (int columna = 0; columna <= ColCampo::UltimaQueSeMueve; ++columna)
        campos(destino, columna) = campos.at(origen, columna);
}

// Each takes the place of the one before it.
void SacaRelacion(DatosTabla& datos, int posicion)
{
    for (int p = posicion; p < UltimaPosicion; ++p) {
        datos.Relaciones(p, 0) = datos.Relaciones.at(p + 1, 0);
        datos.CamposRelacion(p) = datos.CamposRelacion(p + 1);
    }
}

bool ReferenciaPropia(const DatosTabla& datos, int relacion, int linea, const QString& campo)
{
    if (datos.Relaciones.at(relacion, 0).isEmpty() || !datos.CamposRelacion.Existe(relacion))
        return false;
    const Matriz& lineas = datos.CamposRelacion(relacion);
    return lineas.at(linea, ColCampoRelacion::TablaExterna) == datos.NombreTabla &&
           lineas.at(linea, ColCampoRelacion::Externa) == campo;
}

void RenombraLineas(Matriz& lineas, int columna, int ultima, const QString& antes, const QString& ahora)
{
    for (int linea = 0; linea <= ultima && linea <= lineas.lastRow(); ++linea)
        if (MismoNombre(lineas.at(linea, columna), antes))
            lineas(linea, columna) = ahora;
}

// Whether a line of one of the first arrays has the name in a column.
bool EstaEnLineas(const Matrices& matrices, int cuenta, int columna, const QString& nombre)
{
    for (int i = 0; i < cuenta; ++i)
        for (int linea = 0; linea < UltimaFila && matrices.Existe(i); ++linea)
            if (matrices(i).at(linea, columna).compare(nombre, Qt::CaseInsensitive) == 0)
                return true;
    return false;
}

} // namespace

std::optional<int> CompruebaCelda(FilaRejilla& fila, int columna)
{
    switch (columna) {
    case ColCampo::Nombre:
        PonTipoPorDefecto(fila);
        return std::nullopt;
    case ColCampo::Tipo:
        PonMedidasDeTipo(fila);
        return std::nullopt;
    case ColCampo::Longitud:
        return CompruebaLongitud(fila);
    case ColCampo::Precision:
        return CompruebaPrecision(fila);
    case ColCampo::Escala:
        return CompruebaEscala(fila);
    case ColCampo::Nulo:
    case ColCampo::Predeterminado:
        return CompruebaNulo(fila);
    default:
        return std::nullopt;
    }
}

bool PonTipoPorDefecto(FilaRejilla& fila)
{
    if (Celda(fila, ColCampo::Nombre).trimmed().isEmpty() || !Celda(fila, ColCampo::Tipo).isEmpty())
        return false;
    Celda(fila, ColCampo::Tipo) = QString::number(TipoChar);
    Celda(fila, ColCampo::Longitud) = u"10"_s;
    Celda(fila, ColCampo::Precision) = u"0"_s;
    Celda(fila, ColCampo::Escala) = u"0"_s;
    return true;
}

void PonMedidasDeTipo(FilaRejilla& fila)
{
    const TipoDato* tipo = DameTipo(Celda(fila, ColCampo::Tipo));
    if (tipo == nullptr || Celda(fila, ColCampo::Estado) == u"M"_s)
        return;
    Celda(fila, ColCampo::Longitud) = QString::number(tipo->longitud);
    Celda(fila, ColCampo::Precision) = QString::number(tipo->precision);
    Celda(fila, ColCampo::Escala) = QString::number(tipo->escala);
}

Bloqueo BloqueoDeTipo(const QString& tipo)
{
    const TipoDato* dato = DameTipo(tipo);
    if (dato == nullptr)
        return {};
    const bool precision = dato->editables != MedidasEditables::PrecisionYEscala;
    return {dato->editables != MedidasEditables::Longitud, precision, precision};
}

void InsertarFila(DatosTabla& datos, int fila)
{
    for (int destino = UltimaFila - 1; destino >= fila; --destino)
        MueveFila(datos.CamposTabla, destino - 1, destino);
    for (int columna = 0; columna <= ColCampo::UltimaQueSeMueve; ++columna)
        datos.CamposTabla(fila, columna) = QString();
}

void EliminaCampo(DatosTabla& datos, int fila)
{
    TomaGlobales(datos);
    const QString campo = datos.CamposTabla.at(fila, ColCampo::Nombre);
    for (int destino = fila; destino < UltimaFila; ++destino)
        MueveFila(datos.CamposTabla, destino + 1, destino);
    const int ultima = std::min(ContadorRelaciones, UltimaPosicion);
    for (int relacion = 0; relacion <= ultima; ++relacion)
        for (int linea = 0; linea <= ultima; ++linea)
            if (ReferenciaPropia(datos, relacion, linea, campo))
                SacaRelacion(datos, relacion);
}

bool ExisteCampo_EnIndice(const DatosTabla& datos, const QString& nombre)
{
    TomaGlobales(datos);
    return EstaEnLineas(datos.CamposIndice, ContadorIndices, ColCampoIndice::Nombre, nombre);
}

bool ExisteCampo_EnRelacion(const DatosTabla& datos, const QString& nombre)
{
    TomaGlobales(datos);
    return EstaEnLineas(datos.CamposRelacion, ContadorRelaciones, ColCampoRelacion::Propia, nombre);
}

bool ExisteElCampo(const DatosTabla& datos, const QString& nombre)
{
    return DameNombresCampos(datos).contains(nombre, Qt::CaseInsensitive);
}

QStringList DameNombresCampos(const DatosTabla& datos)
{
    QStringList nombres;
    for (int fila = 0; fila <= datos.CamposTabla.lastRow(); ++fila)
        if (const QString& nombre = datos.CamposTabla.at(fila, ColCampo::Nombre); !nombre.trimmed().isEmpty())
            nombres += nombre;
    return nombres;
}

bool RenombraEnMemoria(DatosTabla& datos)
{
    TomaGlobales(datos);
    const int fila = datos.FilaActual.Fila;
    const QString& nombre = datos.FilaActual.Celdas[ColCampo::Nombre];
    const QString enServidor = datos.CamposTabla.at(fila, ColCampo::NombreServidor);
    if (MismoNombre(nombre, enServidor))
        return false;
    datos.CamposTabla(fila, ColCampo::Nombre) = nombre;
    if (enServidor.trimmed().isEmpty())
        return true;
    for (int i = 0; i < ContadorRelaciones; ++i)
        RenombraLineas(datos.CamposRelacion(i), ColCampoRelacion::Propia, MaximoColumnasClave - 1, enServidor,
                       nombre);
    for (int i = 0; i < ContadorIndices; ++i)
        RenombraLineas(datos.CamposIndice(i), ColCampoIndice::Nombre, UltimaFila - 1, enServidor, nombre);
    return true;
}

void PreparaGuardado(DatosTabla& datos)
{
    datos.NombresTabla(0, 0) = datos.NombreTabla;
    for (int fila = 0; fila <= datos.CamposTabla.lastRow(); ++fila) {
        if (datos.CamposTabla.at(fila, ColCampo::Nombre).trimmed().isEmpty())
            continue;
        const QString& estado = datos.CamposTabla.at(fila, ColCampo::Estado);
        if (estado.isEmpty())
            datos.CamposTabla(fila, ColCampo::Estado) = u"I"_s;
        else if (estado == u"I"_s)
            datos.CamposTabla(fila, ColCampo::Estado) = u"M"_s;
    }
}
