// The text of CREATE DATABASE, without a window and without a server.
#include "databasedesigner/CargaBD.h"
#include "databasedesigner/CreaBD.h"
#include "platform/basic/RuntimeError.h"

#include <gtest/gtest.h>

#include <QStringList>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {

class Sentencias : public ::testing::Test
{
protected:
    void SetUp() override
    {
        IniciaBDNueva(datos);
        datos.NombreBD = u"d"_s;
    }
    static void Pon(Matriz& archivos, int fila, const QStringList& celdas)
    {
        for (int columna = 0; columna < celdas.size(); ++columna)
            archivos(fila, columna) = celdas.at(columna);
    }
    /// What stands behind the file's clause for one file with these measures.
    QString Medidas(const QString& tamaño, const QStringList& resto)
    {
        IniciaBDNueva(datos);
        Pon(datos.ArchivosBD, 0, QStringList{u"a"_s, u"C:\\"_s, tamaño, u"PRIMARY"_s} + resto);
        return SentenciaCreacion(datos).section(u"mdf',"_s, 1);
    }

    DatosBD datos;
};

TEST_F(Sentencias, SizeLimitAndGrowthByCase)
{
    EXPECT_EQ(Medidas(u"1"_s, {u"-1"_s, u"P"_s, u"10"_s, u"0"_s, {}}),
              u" SIZE = 1MB, MAXSIZE =UNLIMITED,FILEGROWTH=10%)\r"_s);
    EXPECT_EQ(Medidas(u"1"_s, {u"-1"_s, u"M"_s, u"10"_s, u"-1"_s, u"50"_s}),
              u" SIZE = 1MB, MAXSIZE =50MB,FILEGROWTH=10MB)\r"_s);
    EXPECT_EQ(Medidas(u"20"_s, {u"-1"_s, u"P"_s, u"10"_s, u"0"_s, {}}),
              u" SIZE = 10MB, MAXSIZE =UNLIMITED,FILEGROWTH=10%)\r"_s);
    EXPECT_EQ(Medidas(u"0"_s, {u"0"_s, u"P"_s, u"0"_s, u"0"_s, {}}),
              u" SIZE = 512KB MAXSIZE =UNLIMITED)\r"_s);
    EXPECT_EQ(Medidas({}, {u"0"_s, u"P"_s, {}, u"-1"_s, u"9"_s}), u" SIZE = 512KB MAXSIZE =UNLIMITED)\r"_s)
        << "without a growth there is no limit";
    EXPECT_EQ(Medidas(u"2.5"_s, {u"-1"_s, u"M"_s, u"2,5"_s, u"-1"_s, u"7,5"_s}),
              u" SIZE = 2.5MB, MAXSIZE =7.5MB,FILEGROWTH=2.5MB)\r"_s);
    EXPECT_THROW(Medidas(u"letras"_s, {u"-1"_s, u"M"_s, u"1"_s}), basic::RuntimeError);
    EXPECT_THROW(Medidas(u"1e10"_s, {u"-1"_s, u"M"_s, u"1"_s}), basic::RuntimeError);
}

TEST_F(Sentencias, GroupsCommasAndRowsThatDoNotCount)
{
    const QStringList medidas{u"1"_s, {}, u"0"_s, {}, u"5"_s, u"0"_s, {}};
    const QString clausula = u" SIZE = 1MB, MAXSIZE =UNLIMITED)"_s;
    const auto archivo = [&](const QString& nombre, const QString& fin) {
        return u" (NAME = "_s + nombre + u", FILENAME = '"_s + nombre + fin + u"',"_s + clausula;
    };
    Pon(datos.ArchivosBD, 0, QStringList{u" a "_s, {}} + medidas);
    Pon(datos.ArchivosBD, 2, QStringList{u"b"_s, {}} + medidas);
    Pon(datos.ArchivosBD, 3, QStringList{u"c"_s, {}} + medidas);
    Pon(datos.ArchivosBD, 200, QStringList{u"nunca"_s, {}} + medidas);
    datos.ArchivosBD(2, ColArchivo::Grupo) = u"primary"_s;
    datos.ArchivosBD(3, ColArchivo::Grupo) = u"primary"_s;
    datos.FilaArchivos = 3;
    EXPECT_EQ(SentenciaCreacion(datos), u"CREATE DATABASE d\r ON PRIMARY"_s + archivo(u"a"_s, u".mdf"_s) +
                                            u",\r ON primary"_s + archivo(u"b"_s, u".ndf"_s) +
                                            u"\rprimary"_s + archivo(u"c"_s, u".ndf"_s) + u"\r"_s);
    EXPECT_EQ(datos.ArchivosBD.at(0, ColArchivo::Grupo), u"PRIMARY"_s);
}

TEST_F(Sentencias, WithoutAFileThereIsOnlyTheFirstLine)
{
    EXPECT_EQ(SentenciaCreacion(datos), u"CREATE DATABASE d\r"_s);
}

} // namespace pruebas
