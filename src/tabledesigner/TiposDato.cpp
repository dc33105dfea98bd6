#include "tabledesigner/TiposDato.h"

#include <algorithm>
#include <array>

using namespace Qt::Literals::StringLiterals;

namespace {

using enum MedidasEditables;

constexpr bool Num = true; // measures as on the server
constexpr bool Caracteres = true;
constexpr bool Colacion = true;
constexpr int MaximaNVarchar = 4000;

// clang-format off
constexpr std::array Tipos{
    TipoDato{u"binary",           173, 128, !Num, !Caracteres, !Colacion, Longitud,         LongitudMaxima, 10, 0,  0, u" binary (L) ",      u" binary (L) "},
    TipoDato{u"bit",              104, 11,  !Num, !Caracteres, !Colacion, Ninguna,          LongitudMaxima, 1,  0,  0, u" bit  ",            u" bit  "},
    TipoDato{u"char",             175, 129, !Num, !Caracteres, Colacion,  Longitud,         LongitudMaxima, 10, 0,  0, u" char (L) ",        u" char (L) "},
    TipoDato{u"datetime",         61,  133, !Num, !Caracteres, !Colacion, Ninguna,          LongitudMaxima, 8,  0,  0, u" datetime  ",       u" datetime  "},
    TipoDato{u"decimal",          106, 14,  Num,  !Caracteres, !Colacion, PrecisionYEscala,LongitudMaxima, 9,  18, 0, u" decimal (L) ",     u" decimal (L) "},
    TipoDato{u"float",            62,  5,   Num,  !Caracteres, !Colacion, Ninguna,          LongitudMaxima, 8,  53, 0, u" float ",           u" float "},
    TipoDato{u"image",            34,  205, !Num, !Caracteres, !Colacion, Ninguna,          LongitudMaxima, 16, 0,  0, u" image  ",          {}},
    TipoDato{u"int",              56,  3,   Num,  !Caracteres, !Colacion, Ninguna,          LongitudMaxima, 4,  10, 0, u" int  ",            u" int  "},
    TipoDato{u"money",            60,  6,   Num,  !Caracteres, !Colacion, Ninguna,          LongitudMaxima, 8,  19, 4, u" money  ",          u" money  "},
    TipoDato{u"nchar",            239, 130, !Num, Caracteres,  Colacion,  Longitud,         LongitudMaxima, 10, 0,  0, u" nchar (L) ",       u" nchar (L) "},
    TipoDato{u"ntext",            99,  203, !Num, !Caracteres, !Colacion, Ninguna,          LongitudMaxima, 16, 0,  0, u" ntext  ",          {}},
    TipoDato{u"numeric",          108, 131, Num,  !Caracteres, !Colacion, PrecisionYEscala,LongitudMaxima, 9,  18, 0, u" numeric  (P,S) ",  u" numeric  (L) "},
    TipoDato{u"nvarchar",         231, 202, !Num, Caracteres,  Colacion,  Longitud,         MaximaNVarchar, 50, 0,  0, u" nvarchar (L) ",    u" nvarchar (L) "},
    TipoDato{u"real",             59,  4,   Num,  !Caracteres, !Colacion, Ninguna,          LongitudMaxima, 4,  24, 0, u" real  ",           u" real  "},
    TipoDato{u"smalldatetime",    58,  7,   !Num, !Caracteres, !Colacion, Ninguna,          LongitudMaxima, 4,  0,  0, u" smalldatetime  ",  u" smalldatetime  "},
    TipoDato{u"smallint",         52,  2,   Num,  !Caracteres, !Colacion, Ninguna,          LongitudMaxima, 2,  5,  0, u" smallint ",        u" smallint "},
    TipoDato{u"smallmoney",       122, 0,   Num,  !Caracteres, !Colacion, Ninguna,          LongitudMaxima, 4,  10, 4, u" smallmoney ",      u" smallmoney "},
    TipoDato{u"text",             35,  0,   !Num, !Caracteres, Colacion,  Ninguna,          LongitudMaxima, 16, 0,  0, u" text ",            u" text "},
    TipoDato{u"timestamp",        189, 135, !Num, !Caracteres, !Colacion, Ninguna,          LongitudMaxima, 8,  0,  0, u" timestamp ",       u" timestamp "},
    TipoDato{u"tinyint",          48,  16,  Num,  !Caracteres, !Colacion, Ninguna,          LongitudMaxima, 1,  3,  0, u" tinyint ",         u" tinyint "},
    TipoDato{u"uniqueidentifier", 36,  0,   !Num, !Caracteres, !Colacion, Ninguna,          LongitudMaxima, 16, 0,  0, u" uniqueidentifier ", u" uniqueidentifier "},
    TipoDato{u"varbinary",        165, 204, !Num, !Caracteres, !Colacion, Longitud,         LongitudMaxima, 8,  0,  0, u" varbinary  (L) ",  u" varbinary  (L) "},
    TipoDato{u"varchar",          167, 200, !Num, !Caracteres, Colacion,  Longitud,         LongitudMaxima, 8,  0,  0, u" varchar  (L) ",    u" varchar  (L) "},
};
// clang-format on

} // namespace

std::span<const TipoDato> TiposDato()
{
    return Tipos;
}

const TipoDato* DameTipo(const QString& numero)
{
    const int n = numero.toInt();
    if (n < 1 || n > static_cast<int>(Tipos.size()))
        return nullptr;
    return &Tipos[static_cast<std::size_t>(n - 1)];
}

QString DameTipoDato(const QString& tipo, bool& numerico)
{
    const int n = tipo.toInt();
    const auto* const encontrado = std::ranges::find_if(
        Tipos, [n](const TipoDato& dato) { return n != 0 && (dato.xtype == n || dato.tipoRegistro == n); });
    numerico = encontrado != Tipos.end() && encontrado->numerico;
    return QString::number(encontrado == Tipos.end() ? 0 : encontrado - Tipos.begin() + 1);
}

QString TextoTipo(QStringView texto, QString longitud, QString precision, QString escala)
{
    QString resultado;
    for (const QChar signo : texto)
        if (signo == u'L')
            resultado += longitud.replace(u',', u'.');
        else if (signo == u'P')
            resultado += precision.replace(u',', u'.');
        else if (signo == u'S')
            resultado += escala.replace(u',', u'.');
        else
            resultado += signo;
    return resultado;
}
