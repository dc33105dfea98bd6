// The type catalogue, the rules of the cells and the moves of rows, without a server.
#include "core/Global.h"
#include "platform/basic/RuntimeError.h"
#include "platform/controls/MessageBox.h"
#include "tabledesigner/BD_SQL.h"
#include "tabledesigner/BD_SQL_Campos.h"
#include "tabledesigner/BD_SQL_Indices.h"
#include "tabledesigner/Campos.h"
#include "tabledesigner/Indices.h"
#include "tabledesigner/Relaciones.h"
#include "tabledesigner/Taller.h"
#include "tabledesigner/TiposDato.h"

#include <gtest/gtest.h>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {
namespace {

// The number that the catalogue gives to one of the server or of the recordset layer, "n" when numeric.
QString Numero(int tipo)
{
    bool numerico = false;
    const QString numero = DameTipoDato(QString::number(tipo), numerico);
    return numero + (numerico ? u"n"_s : QString());
}

FilaRejilla Fila(const QStringList& celdas)
{
    FilaRejilla fila;
    for (int i = 0; i < celdas.size(); ++i)
        fila.Celdas[static_cast<std::size_t>(i)] = celdas[i];
    return fila;
}

QString Texto(const FilaRejilla& fila)
{
    QStringList celdas(fila.Celdas.begin(), fila.Celdas.end());
    return celdas.join(u'|');
}

// The rows in use of CamposTabla: name and the column behind the visible ones.
QString Nombres(const DatosTabla& datos)
{
    return DameNombresCampos(datos).join(u' ');
}

int NumeroDeError(const std::function<void()>& accion)
{
    try {
        accion();
    } catch (const basic::RuntimeError& error) {
        return error.number();
    }
    return 0;
}

} // namespace

class Modelo : public ::testing::Test
{
protected:
    void SetUp() override
    {
        controls::setMessageBoxAnswerer([this](const QString& texto, int, const QString&) {
            avisos += texto;
            return controls::Answer::Ok;
        });
        Idioma = 0;
        datos.CamposTabla.Redim(UltimaFila, ColCampo::Ultima);
        for (int i = 0; i < 4; ++i)
            datos.CamposTabla(i, ColCampo::Nombre) = u"abcd"_s.mid(i, 1);
        TomaGlobales(datos);
    }
    void TearDown() override { controls::setMessageBoxAnswerer({}); }

    /// Tests a cell; "go to column: row".
    QString Comprueba(const QStringList& celdas, int columna)
    {
        FilaRejilla fila = Fila(celdas);
        const auto destino = CompruebaCelda(fila, columna);
        return (destino ? QString::number(*destino) : u"-"_s) + u": "_s + Texto(fila);
    }
    QString Aviso() { return std::exchange(avisos, {}).join(u'\n'); }

    DatosTabla datos;
    QStringList avisos;
};

TEST_F(Modelo, TheCatalogueKnowsBothNumberings)
{
    const int servidor[] = {173, 104, 175, 61, 106, 62, 34,  56, 60, 239, 99, 108,
                            231, 59,  58,  52, 122, 35, 189, 48, 36, 165, 167};
    const int registro[] = {128, 11, 129, 133, 14, 5, 205, 3,  6, 130, 203, 131,
                            202, 4,  7,   2,   0,  0, 135, 16, 0, 204, 200};
    const QString numericos = u"5n 6n 8n 9n 12n 14n 16n 17n 20n"_s;
    QStringList conMarca;
    for (int i = 0; i < 23; ++i) {
        const QString numero = Numero(servidor[i]);
        EXPECT_EQ(QString(numero).remove(u'n').toInt(), i + 1) << servidor[i];
        EXPECT_EQ(registro[i] == 0 ? numero : Numero(registro[i]), numero) << registro[i];
        if (numero.endsWith(u'n'))
            conMarca += numero;
    }
    EXPECT_EQ(conMarca.join(u' '), numericos);
    for (const int desconocido : {0, 127, 98, 241, -1})
        EXPECT_EQ(Numero(desconocido), u"0"_s) << desconocido;
}

TEST_F(Modelo, ANewColumnOfEachTypeIsWrittenBlankForBlank)
{
    QStringList definiciones;
    for (int tipo = 0; tipo <= 23; ++tipo) {
        SentenciaCampos.clear();
        EXPECT_TRUE(
            Crea_Campo(u"t"_s, u"c"_s, u"7"_s, u"12"_s, u"3,5"_s, u"-1"_s, QString::number(tipo), {}));
        definiciones += SentenciaCampos;
    }
    EXPECT_EQ(
        definiciones.join(u'\n'),
        u"c NULL\nc binary (7)  NULL\nc bit   NULL\nc char (7)  NULL\nc datetime   NULL\nc decimal (7)  "
        u"NULL\n"
        u"c float  NULL\nc image   NULL\nc int   NULL\nc money   NULL\nc nchar (7)  NULL\nc ntext   NULL\n"
        u"c numeric  (12,3.5)  NULL\nc nvarchar (7)  NULL\nc real   NULL\nc smalldatetime   NULL\n"
        u"c smallint  NULL\nc smallmoney  NULL\nc text  NULL\nc timestamp  NULL\nc tinyint  NULL\n"
        u"c uniqueidentifier  NULL\nc varbinary  (7)  NULL\nc varchar  (7)  NULL"_s);
}

TEST_F(Modelo, NewColumnsFollowOneAddWithCommasBetween)
{
    TablaExiste = true;
    SentenciaCampos = u"ALTER TABLE db..t "_s;
    for (const QString& campo : {u"a"_s, u"b"_s}) {
        ++CamposNuevos;
        Crea_Campo(u"mi t"_s, campo, u"4"_s, {}, {}, u"0"_s, u"8"_s,
                   campo == u"b"_s ? u"getdate()"_s : QString());
    }
    EXPECT_EQ(SentenciaCampos,
              u"ALTER TABLE db..t  ADD a int   NOT NULL,\rb int   NOT NULL CONSTRAINT [DF_mi t_b] DEFAULT "
              u"(getdate())"_s);
}

TEST_F(Modelo, AnIndexTakesItsColumnsOneByOne)
{
    SentenciaIndice = u"|"_s;
    for (const QString& campo : {u"a"_s, u"b"_s})
        Crea_Indice(u"PK"_s, campo, u"P"_s, u"1"_s, u"0"_s);
    EXPECT_EQ(SentenciaIndice + ClavesIndice, u"|CONSTRAINT PK PRIMARY KEY  NONCLUSTERED a,b"_s);
    SentenciaIndice = u"|"_s;
    ClavesIndice.clear();
    for (const QString& campo : {u"a"_s, u"b"_s})
        Crea_Indice(u"i"_s, campo, {}, u"1"_s, u"1"_s);
    EXPECT_EQ(SentenciaIndice + ClavesIndice, u"| UNIQUE a,b"_s);
    Crea_Indice(u"i"_s, u"c"_s, u"F"_s, {}, {});
    Crea_Indice(u"i"_s, u"c"_s, u"Z"_s, u"1"_s, {});
    EXPECT_EQ(SentenciaIndice + ClavesIndice, u"| UNIQUE  CONSTRAINT i FOREIGN  KEY \ra,b"_s);
}

TEST_F(Modelo, CellsAreTestedAndCorrected)
{
    const auto fila = [](int tipo, const QString& l, const QString& p, const QString& e) {
        return QStringList{u""_s, u"n"_s, QString::number(tipo), l, p, e, u"0"_s, u""_s};
    };
    EXPECT_EQ(Comprueba(fila(23, u"abc"_s, u"0"_s, u"0"_s), 3), u"3: |n|23|1|0|0|0|"_s);
    EXPECT_EQ(Aviso(), u"Valor de Longitud debe ser de 1 a 8000."_s);
    EXPECT_EQ(Comprueba(fila(13, u"5000"_s, u"0"_s, u"0"_s), 3), u"3: |n|13|4000|0|0|0|"_s);
    EXPECT_EQ(Aviso(), u"Valor de Longitud debe ser de 1 a 4000."_s);
    EXPECT_EQ(Comprueba(fila(10, u"5000x"_s, u"0"_s, u"0"_s), 3), u"-: |n|10|5000|0|0|0|"_s);
    EXPECT_EQ(Comprueba(fila(23, u"8000"_s, u"0"_s, u"0"_s), 3), u"-: |n|23|8000|0|0|0|"_s);
    EXPECT_EQ(Comprueba(fila(23, u"8001"_s, u"0"_s, u"0"_s), 3), u"3: |n|23|8000|0|0|0|"_s);
    Aviso();
    const std::pair<int, QString> precisiones[] = {{1, u"5"_s},  {9, u"5"_s},   {10, u"9"_s},
                                                   {19, u"9"_s}, {20, u"13"_s}, {28, u"13"_s}};
    for (const auto& [precision, longitud] : precisiones)
        EXPECT_EQ(Comprueba(fila(5, u"7"_s, QString::number(precision), u"0"_s), 4),
                  u"-: |n|5|%1|%2|0|0|"_s.arg(longitud).arg(precision));
    EXPECT_EQ(Comprueba(fila(6, u"8"_s, u"15"_s, u"0"_s), 4), u"-: |n|6|8|15|0|0|"_s);
    EXPECT_EQ(Comprueba(fila(12, u"7"_s, u"29"_s, u"0"_s), 4), u"4: |n|12|7|28|0|0|"_s);
    EXPECT_EQ(Aviso(), u"Valor de Precisión debe ser de 1 a 28."_s);
    EXPECT_EQ(Comprueba(fila(12, u"9"_s, u"10"_s, u"0"_s), 5), u"-: |n|12|9|10|0|0|"_s);
    EXPECT_EQ(Comprueba(fila(12, u"9"_s, u"10"_s, u"-3"_s), 5), u"5: |n|12|9|10|1|0|"_s);
    EXPECT_EQ(Aviso(), u"Valor de Escala debe ser de 1 a 28."_s);
    EXPECT_EQ(Comprueba(fila(12, u"9"_s, u"10"_s, u"12"_s), 5), u"5: |n|12|9|10|10|0|"_s);
    EXPECT_EQ(Aviso(), u"Valor de Escala debe estar comprendida entre 0 y 10."_s);
    EXPECT_EQ(NumeroDeError([&] { Comprueba(fila(23, u"9999999999"_s, u"0"_s, u"0"_s), 3); }), 6);
}

TEST_F(Modelo, ATickedNullWantsADefaultAndANameGetsAType)
{
    EXPECT_EQ(Comprueba({u""_s, u"n"_s, u"8"_s, u"4"_s, u"10"_s, u"0"_s, u"-1"_s, u""_s}, 6),
              u"7: |n|8|4|10|0|-1|"_s);
    EXPECT_EQ(Aviso(), u"Inserte valor predeterminado."_s);
    EXPECT_EQ(Comprueba({u""_s, u"n"_s, u"8"_s, u"4"_s, u"10"_s, u"0"_s, u""_s, u""_s}, 7),
              u"-: |n|8|4|10|0||"_s);
    EXPECT_EQ(Comprueba({u""_s, u" n"_s}, 1), u"-: | n|3|10|0|0||"_s);
    EXPECT_EQ(Comprueba({u""_s, u"  "_s}, 1), u"-: |  ||||||"_s);
    EXPECT_EQ(Comprueba({u""_s, u"n"_s, u"13"_s}, 2), u"-: |n|13|50|0|0||"_s);
    EXPECT_EQ(Comprueba({u"M"_s, u"n"_s, u"13"_s, u"4"_s, u"10"_s, u"0"_s}, 2), u"-: M|n|13|4|10|0||"_s);
    EXPECT_EQ(Aviso(), QString());
    EXPECT_EQ(BloqueoDeTipo(u"23"_s), (Bloqueo{false, true, true}));
    EXPECT_EQ(BloqueoDeTipo(u"5"_s), (Bloqueo{true, false, false}));
    EXPECT_EQ(BloqueoDeTipo(u"8"_s), (Bloqueo{true, true, true}));
    EXPECT_EQ(BloqueoDeTipo(u"0"_s), (Bloqueo{false, false, false}));
}

TEST_F(Modelo, RowsMoveWithAllButTheLastColumn)
{
    datos.CamposTabla(1, ColCampo::Ultima) = u"queda"_s;
    datos.CamposTabla(1, ColCampo::NombreServidor) = u"va"_s;
    InsertarFila(datos, 1);
    EXPECT_EQ(Nombres(datos), u"a b c d"_s);
    EXPECT_EQ(datos.CamposTabla.at(1, ColCampo::Nombre), QString());
    EXPECT_EQ(datos.CamposTabla.at(2, ColCampo::NombreServidor), u"va"_s);
    EXPECT_EQ(datos.CamposTabla.at(1, ColCampo::Ultima), u"queda"_s);
    EliminaCampo(datos, 1);
    EXPECT_EQ(datos.CamposTabla.at(1, ColCampo::NombreServidor), u"va"_s);
    EliminaCampo(datos, 0);
    EXPECT_EQ(Nombres(datos), u"b c d"_s);
    EXPECT_EQ(NumeroDeError([&] { InsertarFila(datos, 0); }), basic::error::Subscript);
    EXPECT_EQ(Nombres(datos), u"b b c d"_s) << "moved, and the first row not emptied";
    datos.CamposTabla(UltimaFila, ColCampo::Nombre) = u"z"_s;
    EliminaCampo(datos, 0);
    EXPECT_EQ(datos.CamposTabla.at(UltimaFila - 1, ColCampo::Nombre), u"z"_s);
}

TEST_F(Modelo, ADeletedIndexLeavesItsAttributesBehind)
{
    for (const QString& nombre : {u"uno"_s, u"dos"_s, u"tres"_s}) {
        const int i = AñadeIndice(datos, nombre);
        datos.Indices(i, ColIndice::Relleno) = nombre;
        datos.CamposIndice(i)(0, ColCampoIndice::Nombre) = u"c"_s + nombre;
    }
    PonClavePrimaria(datos, 0, true);
    EliminaIndice(datos, 0);
    EXPECT_EQ(ContadorIndices, 2);
    EXPECT_EQ(datos.Indices.at(0, ColIndice::Nombre) + datos.Indices.at(1, ColIndice::Nombre), u"dostres"_s);
    EXPECT_EQ(datos.Indices.at(0, ColIndice::Relleno) + datos.Indices.at(0, ColIndice::Clase), u"unoP"_s);
    EXPECT_EQ(datos.CamposIndice(1).at(0, ColCampoIndice::Nombre), u"ctres"_s);
    EXPECT_FALSE(datos.CamposIndice.Existe(2));
    int posicion = 0;
    EXPECT_TRUE(ExisteIndice(datos, u"tres"_s, posicion));
    EXPECT_EQ(posicion, 1);
    EXPECT_FALSE(ExisteIndice(datos, u"Tres"_s, posicion));
    EXPECT_EQ(posicion, -1);
    EXPECT_FALSE(ExisteTodosIndice(datos, u"tres"_s, posicion));
    EXPECT_TRUE(ExisteCampo_EnIndice(datos, u"CTRES"_s));
    EXPECT_FALSE(ExisteCampo_EnIndice(datos, u"cuno"_s));
    datos.CamposIndice(0)(1, ColCampoIndice::Nombre) = u"b"_s;
    EXPECT_EQ(DameCamposParaIndice(datos, 0), (QStringList{u"a"_s, u"c"_s, u"d"_s}));
    EXPECT_EQ(DameCamposParaIndice(datos, -1).size(), 4);
}

TEST_F(Modelo, AnIndexKeepsAnyNumberAsFillFactor)
{
    const int i = AñadeIndice(datos, u"i"_s);
    EXPECT_TRUE(PonFactorRelleno(datos, i, u"500"_s));
    EXPECT_FALSE(PonFactorRelleno(datos, i, u"mucho"_s));
    EXPECT_EQ(datos.Indices.at(i, ColIndice::Relleno), u"500"_s);
    EXPECT_TRUE(PonFactorRelleno(datos, i, u" "_s));
    EXPECT_EQ(datos.Indices.at(i, ColIndice::Relleno), u"0"_s);
    PonClavePrimaria(datos, i, true);
    PonClavePrimaria(datos, i, false);
    EXPECT_EQ(datos.Indices.at(i, ColIndice::Clase) + datos.Indices.at(i, ColIndice::Unico), u"I1"_s);
}

TEST_F(Modelo, TheLastPlaceForAnIndexIsTheHundredAndFirst)
{
    for (int i = 0; i <= UltimaPosicion; ++i)
        AñadeIndice(datos, u"i%1"_s.arg(i));
    EXPECT_EQ(NumeroDeError([&] { AñadeIndice(datos, u"otro"_s); }), basic::error::Subscript);
    EXPECT_EQ(CargaIndices(datos).size(), 100) << "the list ends before the last place";
    TomaGlobales(datos);
    EXPECT_EQ(ContadorIndices, 101) << "and a save does not";
}

TEST_F(Modelo, DeletingAColumnTakesTheRelationsOfTheTableWithItselfThatReferenceIt)
{
    datos.NombreTabla = u"t"_s;
    const auto pon = [&](const QString& nombre, const QString& tabla, const QString& externa) {
        Matriz& lineas = datos.CamposRelacion(AñadeRelacion(datos, nombre));
        lineas(0, ColCampoRelacion::Propia) = u"d"_s;
        lineas(0, ColCampoRelacion::TablaExterna) = tabla;
        lineas(0, ColCampoRelacion::Externa) = externa;
    };
    pon(u"propia"_s, u"t"_s, u"a"_s);
    pon(u"ajena"_s, u"u"_s, u"a"_s);
    EXPECT_TRUE(ExisteCampo_EnRelacion(datos, u"D"_s));
    EliminaCampo(datos, 0);
    EXPECT_EQ(ContadorRelaciones, 2) << "left as it was";
    EXPECT_EQ(CargaRelaciones(datos).size(), 1);
    EXPECT_EQ(datos.Relaciones.at(0, 0), u"ajena"_s);
    EXPECT_EQ(datos.CamposRelacion(0).at(0, ColCampoRelacion::TablaExterna), u"u"_s);
    int posicion = 0;
    EXPECT_TRUE(ExisteRelacion(datos, u"ajena"_s, posicion));
    EXPECT_EQ(DameLineaIncompleta(datos, 0), -1);
    datos.CamposRelacion(0)(3, ColCampoRelacion::Externa) = u"x"_s;
    EXPECT_EQ(DameLineaIncompleta(datos, 0), 3);
    EliminaRelacion(datos, 0);
    EXPECT_EQ(ContadorRelaciones, 0);
    EXPECT_FALSE(datos.CamposRelacion.Existe(0));
}

TEST_F(Modelo, ARenameGoesIntoTheLinesThatHoldTheNameOnTheServer)
{
    datos.CamposTabla(1, ColCampo::Estado) = u"M"_s;
    datos.CamposTabla(1, ColCampo::NombreServidor) = u"b"_s;
    datos.CamposIndice(AñadeIndice(datos, u"i"_s))(UltimaFila - 1, ColCampoIndice::Nombre) = u"B"_s;
    Matriz& lineas = datos.CamposRelacion(AñadeRelacion(datos, u"r"_s));
    lineas(0, ColCampoRelacion::Propia) = u"b"_s;
    lineas(15, ColCampoRelacion::Propia) = u"b"_s;
    lineas(16, ColCampoRelacion::Propia) = u"b"_s;
    datos.FilaActual = Fila({u"M"_s, u"nuevo"_s});
    datos.FilaActual.Fila = 1;
    EXPECT_TRUE(RenombraEnMemoria(datos));
    EXPECT_EQ(Nombres(datos), u"a nuevo c d"_s);
    EXPECT_EQ(datos.CamposTabla.at(1, ColCampo::NombreServidor), u"b"_s);
    EXPECT_EQ(datos.CamposIndice(0).at(UltimaFila - 1, ColCampoIndice::Nombre), u"nuevo"_s);
    EXPECT_EQ(lineas.at(0, 1) + lineas.at(15, 1) + lineas.at(16, 1), u"nuevonuevob"_s);
    datos.FilaActual.Celdas[ColCampo::Nombre] = u" B "_s;
    EXPECT_FALSE(RenombraEnMemoria(datos)) << "the same but for case and blanks";
}

TEST_F(Modelo, ASaveMarksTheTypedRowsAndADesignerTakesTheGlobalsBack)
{
    datos.CamposTabla(0, ColCampo::Estado) = u"M"_s;
    datos.CamposTabla(1, ColCampo::Estado) = u"I"_s;
    PreparaGuardado(datos);
    QString estados;
    for (int fila = 0; fila < 5; ++fila)
        estados += datos.CamposTabla.at(fila, ColCampo::Estado) + u"."_s;
    EXPECT_EQ(estados, u"M.M.I.I.."_s);

    AñadeIndice(datos, u"i"_s);
    datos.BaseDatos = u"Mia"_s;
    datos.IntercalacionBase = u"C"_s;
    datos.ClaveTabla = u"T200"_s;
    PrefijoBD = u"Otra.."_s;
    ContadorIndices = 9;
    ContadorRelaciones = 9;
    Intercalacion = u"X"_s;
    SentenciaRelacion = u"resto"_s;
    ComaPermitida = true;
    TomaGlobales(datos);
    EXPECT_EQ(PrefijoBD + Intercalacion + SentenciaRelacion, u"Mia..C"_s);
    EXPECT_EQ(IndiceTabla, 200);
    EXPECT_EQ(ContadorIndices, 1);
    EXPECT_EQ(ContadorRelaciones, 0);
    EXPECT_FALSE(ComaPermitida);
    datos.ClaveTabla = u"T201"_s;
    EXPECT_EQ(NumeroDeError([&] { TomaGlobales(datos); }), basic::error::Subscript);
}

} // namespace pruebas
