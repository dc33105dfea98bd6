// The grids of files and groups: what they take, what they refuse, and the way out of each refusal.
#include "Estudio.h"

#include "core/Global.h"
#include "core/mdiPrincipal.h"

#include <QPointer>
#include <QPushButton>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {

class RejillasBD : public Estudio
{
protected:
    void Abre(int idioma, const QStringList& sentencias = {})
    {
        Prepara(idioma, sentencias);
        forma = Propiedades(u"Obra"_s);
        mano::ClicPestaña(forma->sstBaseDatos, Pagina::Archivos);
        archivos = forma->TDBGridArchivos;
        Llegado();
    }
    /// A button that is pressed by its letter goes down and, somewhat later, up.
    void EsperaBoton() const
    {
        const QPointer<QPushButton> boton(forma->cmdAceptar);
        EXPECT_TRUE(QTest::qWaitFor([&] { return boton.isNull() || !boton->isDown(); }));
    }
    QString Celda(int fila, int columna) const { return forma->Datos.ArchivosBD.at(fila, columna); }
    QStringList Fila(int fila) const
    {
        QStringList celdas;
        for (int columna = ColArchivo::Tamaño; columna <= ColArchivo::UltimaVisible; ++columna)
            celdas += Celda(fila, columna);
        return celdas;
    }

    formularios::frmPropiedadesBD* forma = nullptr;
    controls::DataGrid* archivos = nullptr;
};

TEST_F(RejillasBD, ANameInAFreeRowBringsTheDefaults)
{
    Abre(Es);
    const QStringList cargada = Fila(0);
    mano::ClicCelda(archivos, 0, ColArchivo::Nombre);
    mano::Tecla(Qt::Key_Return);
    EXPECT_EQ(Fila(0), cargada);
    mano::PonCelda(archivos, 1, ColArchivo::Nombre, u"dos"_s);
    EXPECT_EQ(archivos->Col(), ColArchivo::Ubicacion);
    EXPECT_EQ(Fila(1), (QStringList{u"1"_s, u"PRIMARY"_s, u"-1"_s, u"P"_s, u"10"_s, u"0"_s, QString()}));
    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Transacciones);
    mano::PonCelda(forma->TDBGridTransacciones, 1, ColArchivo::Nombre, u"log2"_s);
    EXPECT_EQ(forma->Datos.TransaccionesBD.at(1, ColArchivo::Grupo), u"LOG"_s);
    mano::ClicCelda(forma->TDBGridTransacciones, 1, ColArchivo::Grupo);
    mano::Escribe(u"x"_s);
    EXPECT_EQ(Textos(), QStringList{u"No existe el grupo de ficheros."_s}) << "no group is called LOG";
    EXPECT_EQ(Llegado(), QString()) << "nothing is sent before it is accepted";
}

TEST_F(RejillasBD, TheLimitAndItsAmountGuardEachOtherAndLetTheUserOut)
{
    Abre(En);
    mano::ClicCelda(archivos, 0, ColArchivo::Maximo);
    mano::Escribe(u"5"_s);
    EXPECT_FALSE(archivos->EditActive()) << "unlimited: no amount";
    mano::ClicCelda(archivos, 0, ColArchivo::Limitado);
    EXPECT_EQ(Celda(0, ColArchivo::Limitado), u"-1"_s);
    EXPECT_EQ(archivos->Col(), ColArchivo::Maximo);
    EXPECT_EQ(Textos(), QStringList());

    mano::Tecla(Qt::Key_Return);
    EXPECT_EQ(Textos(), QStringList{u"Insetrt limit quantity."_s});
    mano::Tecla(Qt::Key_Left);
    ASSERT_EQ(archivos->Col(), ColArchivo::Limitado);
    mano::Tecla(Qt::Key_Return);
    EXPECT_EQ(Textos(), QStringList{u"Insetrt limit quantity."_s});
    EXPECT_EQ(archivos->Col(), ColArchivo::Maximo);
    mano::Escribe(u"mucho"_s);
    mano::Tecla(Qt::Key_Return);
    EXPECT_EQ(Textos(), QStringList{u"Not numerical value."_s});
    mano::Escribe(u"70"_s);
    mano::Tecla(Qt::Key_Return);
    EXPECT_EQ(Textos(), QStringList());
    EXPECT_EQ(Celda(0, ColArchivo::Maximo), u"70"_s);
    EXPECT_EQ(archivos->Row(), 1);
    EXPECT_EQ(archivos->Col(), ColArchivo::Nombre);

    mano::ClicCelda(archivos, 0, ColArchivo::Limitado);
    EXPECT_EQ(Celda(0, ColArchivo::Limitado), u"0"_s);
    EXPECT_EQ(Celda(0, ColArchivo::Maximo), QString());
    mano::ClicCelda(archivos, 0, ColArchivo::Limitado); // ticked and blank, then left by the mouse
    mano::ClicCelda(archivos, 2, ColArchivo::Nombre);
    mano::ClicCelda(archivos, 0, ColArchivo::Limitado);
    EXPECT_EQ(Celda(0, ColArchivo::Limitado), u"0"_s);
    EXPECT_EQ(Textos(), QStringList());
}

TEST_F(RejillasBD, GrowthAndItsAmountGuardEachOtherAndLetTheUserOut)
{
    Abre(Es);
    mano::ClicCelda(archivos, 0, ColArchivo::Automatico);
    EXPECT_EQ(Celda(0, ColArchivo::Automatico), u"0"_s);
    EXPECT_EQ(Celda(0, ColArchivo::Cantidad), QString());
    for (const int columna : {ColArchivo::Unidad, ColArchivo::Cantidad}) {
        mano::ClicCelda(archivos, 0, columna);
        mano::Escribe(u"9"_s);
        EXPECT_FALSE(archivos->EditActive());
    }
    mano::Tecla(Qt::Key_Return);
    EXPECT_EQ(Textos(), QStringList{u"Valor no numérico."_s});
    mano::ClicCelda(archivos, 0, ColArchivo::Automatico);
    EXPECT_EQ(archivos->Col(), ColArchivo::Unidad);
    mano::Escribe(u"En M"_s); // completed from the list
    mano::Tecla(Qt::Key_Return);
    mano::Escribe(u"5"_s);
    mano::Tecla(Qt::Key_Return);
    EXPECT_EQ(Celda(0, ColArchivo::Unidad), u"M"_s);
    EXPECT_EQ(Celda(0, ColArchivo::Cantidad), u"5"_s);
    EXPECT_EQ(Textos(), QStringList());
}

TEST_F(RejillasBD, AFileIsNotShrunkAndItsGroupMustBeThere)
{
    Abre(En, {u"alter database Obra modify file (name = Obra, size = 30MB)"_s,
              u"alter database Obra add filegroup VIEJOS"_s});
    mano::PonCelda(archivos, 0, ColArchivo::Tamaño, u"29"_s);
    EXPECT_EQ(Textos(), QStringList{u"Initial size must be major that exists."_s});
    EXPECT_EQ(Celda(0, ColArchivo::Tamaño), u"30"_s);
    EXPECT_EQ(Llegado(), Lineas({u"Select size from Obra..sysfiles where name = 'Obra'"_s}));
    EXPECT_EQ(archivos->Col(), ColArchivo::Tamaño);
    mano::Escribe(u"letras"_s);
    mano::Tecla(Qt::Key_Return);
    EXPECT_EQ(Textos(), QStringList{u"Not numerical value."_s});
    mano::Tecla(Qt::Key_Escape);
    mano::Escribe(u"letras"_s);
    mano::ClicCelda(archivos, 0, ColArchivo::Nombre);
    EXPECT_TRUE(Textos().value(0).startsWith(u" Error Nº:13 ("_s)) << "left without Enter";
    EXPECT_EQ(Celda(0, ColArchivo::Tamaño), u"30"_s);

    mano::ClicCelda(archivos, 0, ColArchivo::Grupo);
    mano::Escribe(u"VIEJOS"_s);
    EXPECT_FALSE(archivos->EditActive()) << "the first file stays in its group";
    mano::PonCelda(archivos, 1, ColArchivo::Nombre, u"dos"_s);
    mano::PonCelda(archivos, 1, ColArchivo::Grupo, u"NADA"_s);
    EXPECT_EQ(Textos(), QStringList{u"File group not exists."_s});
    mano::PonCelda(archivos, 1, ColArchivo::Grupo, u"viejos"_s);
    EXPECT_EQ(Textos(), QStringList());
    EXPECT_EQ(Celda(1, ColArchivo::Grupo), u"viejos"_s);
}

TEST_F(RejillasBD, LessThanAMegabyteIsAskedForAsHalfOfIt)
{
    Prepara(Es, {u"alter database Obra add log file (name = poco, filename = '"_s + Carpeta() +
                 u"poco.ldf', size = 512KB, filegrowth = 1MB)"_s});
    forma = Propiedades(u"Obra"_s);
    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Transacciones);
    mano::PonCelda(forma->TDBGridTransacciones, 1, ColArchivo::Tamaño, u"0.75"_s);
    Llegado();
    Acepta(forma);
    EXPECT_TRUE(Cambios().contains(u"(NAME = poco, SIZE = 512KB)"_s));
    Avisos();
}

TEST_F(RejillasBD, AcceptByItsKeyTakesTheTypedTextInAndStaysWhenACellRefusesIt)
{
    Abre(En);
    mano::ClicCelda(archivos, 0, ColArchivo::Tamaño);
    mano::Escribe(u"0"_s);
    mano::Tecla(Qt::Key_A, Qt::AltModifier);
    EsperaBoton();
    EXPECT_EQ(Textos(), QStringList{u"Initial size must be major that exists."_s});
    EXPECT_EQ(Cambios(), QString());
    mano::ClicCelda(archivos, 0, ColArchivo::Cantidad);
    mano::Escribe(u"77"_s);
    mano::Tecla(Qt::Key_A, Qt::AltModifier);
    EsperaBoton();
    EXPECT_TRUE(Cambios().contains(u"FILEGROWTH=77%"_s));
    EXPECT_EQ(Textos(), QStringList());
}

TEST_F(RejillasBD, DeleteActsAtOnceAndABlankRowKeepsWhatWasTyped)
{
    Abre(Es, {u"alter database Obra add filegroup VIEJOS"_s,
              u"alter database Obra add file (name = extra, filename = '"_s + Carpeta() +
                  u"extra.ndf', size = 2MB) to filegroup VIEJOS"_s});
    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Grupos);
    mano::ClicCelda(forma->TDBGridGrupos, 1, ColGrupo::Nombre);
    mano::Clic(forma->cmdEliminarFilaGrupos);
    EXPECT_EQ(Textos(),
              QStringList{u"El grupo de archivo contiene un o mas archivos. No se puede eliminar."_s});
    mano::ClicCelda(forma->TDBGridGrupos, 5, ColGrupo::Nombre);
    mano::Clic(forma->cmdEliminarFilaGrupos);
    EXPECT_TRUE(Textos().value(0).startsWith(u" Error Nº:13 ("_s));
    EXPECT_EQ(Cambios(), QString());

    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Archivos);
    mano::PonCelda(archivos, 2, ColArchivo::Nombre, u"tecleado"_s);
    mano::ClicCelda(archivos, 4, ColArchivo::Nombre);
    mano::Clic(forma->cmdEliminarFilaArchivos);
    EXPECT_EQ(Celda(2, ColArchivo::Nombre), u"tecleado"_s);
    EXPECT_EQ(Cambios(), QString());
    mano::ClicCelda(archivos, 0, ColArchivo::Nombre);
    mano::Clic(forma->cmdEliminarFilaArchivos);
    EXPECT_EQ(Cambios(), Lineas({u"ALTER DATABASE Obra\r REMOVE FILE Obra"_s}));
    EXPECT_EQ(Textos().size(), 1) << "the primary file stays, and so does the grid";
    EXPECT_EQ(Celda(2, ColArchivo::Nombre), u"tecleado"_s);
    mano::ClicCelda(archivos, 1, ColArchivo::Nombre);
    mano::Clic(forma->cmdEliminarFilaArchivos);
    EXPECT_EQ(Cambios(), Lineas({u"ALTER DATABASE Obra\r REMOVE FILE extra"_s}));
    EXPECT_EQ(Celda(1, ColArchivo::Nombre), QString());
    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Grupos);
    mano::ClicCelda(forma->TDBGridGrupos, 1, ColGrupo::Nombre);
    mano::Clic(forma->cmdEliminarFilaGrupos);
    EXPECT_EQ(Cambios(), Lineas({u"ALTER DATABASE Obra\r REMOVE FILEGROUP VIEJOS"_s}));
    EXPECT_EQ(Textos(), QStringList());
    EXPECT_EQ(Consulta(u"select groupname from Obra..sysfilegroups"_s), u"PRIMARY"_s);
}

TEST_F(RejillasBD, APickedFolderComesWithTheFormAndACancelledOneDoesNot)
{
    Abre(Es);
    mano::PonCelda(archivos, 1, ColArchivo::Nombre, u"dos"_s);
    const auto vuelve = [this](const QString& ruta) {
        mano::Tecla(Qt::Key_F4); // the cell's button
        Consola::Abre(::mdiPrincipal->mnuAnalizadorConsultas);
        RutaUbicacion = ruta;
        forma->SetFocus();
    };
    vuelve(QString());
    EXPECT_EQ(Celda(1, ColArchivo::Ubicacion), QString());
    archivos->SetFocus();
    vuelve(u"C:\\datos"_s);
    EXPECT_EQ(Celda(1, ColArchivo::Ubicacion), u"C:\\datos\\"_s);
    EXPECT_EQ(RutaUbicacion, QString());
}

TEST_F(RejillasBD, TwoHundredFilesAreShownAndOneMoreIsAnError)
{
    Prepara(Es);
    for (int n = 1; n <= 201; ++n)
        Ejecuta(
            {u"alter database Obra add file (name = f%1, filename = '%2f%1.ndf', size = 1MB)"_s.arg(n).arg(
                Carpeta())});
    forma = Propiedades(u"Obra"_s);
    EXPECT_EQ(Celda(200, ColArchivo::Nombre), u"f200"_s);
    EXPECT_TRUE(Textos().value(0).startsWith(u" Error Nº:9 ("_s));

    // Rows 0 to 199 enter statements, the row behind them never.
    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Archivos);
    forma->TDBGridArchivos->setFirstRow(195);
    mano::PonCelda(forma->TDBGridArchivos, 199, ColArchivo::Cantidad, u"7"_s);
    mano::PonCelda(forma->TDBGridArchivos, 200, ColArchivo::Cantidad, u"8"_s);
    Llegado();
    EXPECT_TRUE(Acepta(forma)) << Textos().value(0).toStdString();
    const QString cambios = Cambios();
    EXPECT_EQ(cambios.count(u"MODIFY FILE"_s), 2 * (200 + 1)) << "and the log";
    EXPECT_TRUE(cambios.contains(u"(NAME = f199,FILEGROWTH=7MB)"_s));
    EXPECT_FALSE(cambios.contains(u"f200"_s));
    Ejecuta({u"use master"_s, u"drop database Obra"_s});
}

} // namespace pruebas
