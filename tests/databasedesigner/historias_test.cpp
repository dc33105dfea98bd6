// Whole stories: databases opened, made, changed and renamed by hand, read where the statements arrive.
#include "Estudio.h"

#include "core/Global.h"
#include "platform/controls/Pointer.h"

#include <QLabel>
#include <QLocale>
#include <QRegularExpression>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {

class HistoriasBD : public Estudio
{
protected:
    /// The nine statements that end every accept.
    static QString Opciones(const QString& base, const QString& modelo = u"FULL"_s)
    {
        const QString c = u"alter database "_s + base + u" set "_s;
        return c + u"RECOVERY "_s + modelo + u"\n"_s + c + u"ANSI_NULL_DEFAULT OFF\n"_s + c +
               u"AUTO_CREATE_STATISTICS ON\n"_s + c + u"AUTO_UPDATE_STATISTICS ON\n"_s + c +
               u"AUTO_CLOSE OFF\n"_s + c + u"QUOTED_IDENTIFIER··OFF\n"_s + c + u"TORN_PAGE_DETECTION ON\n"_s +
               c + u"AUTO_SHRINK OFF\n"_s + c + u"RECURSIVE_TRIGGERS OFF\n"_s;
    }
    /// A row of files typed from the name to the folder, and out behind its last cell.
    void PonArchivo(controls::DataGrid* rejilla, int fila, const QString& nombre)
    {
        mano::PonCelda(rejilla, fila, ColArchivo::Nombre, nombre);
        mano::Escribe(Carpeta());
        mano::Tecla(Qt::Key_Return);
    }
    static void SalPorElFinal()
    {
        mano::Tecla(Qt::Key_End);
        mano::Tecla(Qt::Key_Return);
    }
    QString Archivo(const QString& nombre, const QString& extension, const QString& medidas) const
    {
        return u" (NAME = "_s + nombre + u", FILENAME = '"_s + Carpeta() + nombre + extension + u"', "_s +
               medidas + u")"_s;
    }
};

TEST_F(HistoriasBD, OpeningReadsTheFilesGroupsUsersFactsAndOptionsInTheirOrder)
{
    Prepara(Es);
    auto* forma = Propiedades(u"Obra"_s);
    const QString permisos =
        u"select * from sysprotects where uid=1and action IN(203,198,207,222,236,178,228,235 )"_s;
    const QString propiedad = u"select DATABASEPROPERTYEX ('Obra','"_s;
    QStringList opciones;
    for (const QString& nombre :
         {u"Recovery"_s, u"IsAnsiNullDefault"_s, u"IsAutoCreateStatistics"_s, u"IsAutoUpdateStatistics"_s,
          u"IsAutoClose"_s, u"IsQuotedIdentifiersEnabled"_s, u"IsTornPageDetectionEnabled"_s,
          u"IsAutoShrink"_s, u"IsRecursiveTriggersEnabled"_s})
        opciones += propiedad + nombre + u"')"_s;
    EXPECT_EQ(
        Llegado(),
        Lineas(
            {u"Select * from Obra..sysfiles  order by fileid,groupid"_s,
             u"Select groupname from sysfilegroups where groupid=1"_s,
             u"select  g.groupname,g.status,  g.groupid, 'filecount' =         (select count(*) from "
             u"Obra..sysfiles f             Where f.groupid = g.groupid                 and (f.status & 0x40 "
             u"<> 0x40))     from Obra..sysfilegroups g order by groupid"_s,
             u"USE Obra"_s,
             u" SELECT usu.Name as nombre,usu.uid as id From Obra..sysusers usu ,master.dbo.syslogins lo "
             u"Where usu.sid = lo.sid and  (usu.islogin = 1 and usu.isaliased = 0 and usu.hasdbaccess = 1) "_s,
             u"Select t.name as tabla,t.id as id from Obra..sysobjects t,Obra..sysusers u where t.xtype = "
             u"'V' and u.uid = t.uid order by t.name"_s,
             permisos, permisos, // once for each of the server's own two views
             u"select DATABASEPROPERTYEX( 'Obra' , 'status' )"_s,
             u"select name, suser_sname(sid) as owner, crdate, dbid, cmptlevel  from master.dbo.sysdatabases "
             u"where name = 'Obra'"_s,
             u"declare @low nvarchar(11)\rselect @low = convert(varchar(11),low) from "
             u"master.dbo.spt_values  where type = N'E' and number = 1\r(select "
             u"str(convert(dec(15),sum(size))*  @low / 1048576,10,2) from Obra.dbo.sysfiles)"_s,
             u" SELECT usu.Name,case                    when (usg.uid is null) then 'public'                 "
             u"   Else: usg.Name                   End                  ,lo.loginname                  "
             u",lo.dbname                  ,usu.uid                  ,usu.sid         From                   "
             u"sysusers usu left outer join                    (sysmembers mem inner join sysusers usg on "
             u"mem.groupuid = usg.uid) on usu.uid = mem.memberuid                   left outer join "
             u"master.dbo.syslogins  lo on usu.sid = lo.sid         Where                   (usu.islogin = 1 "
             u"and usu.isaliased = 0 and usu.hasdbaccess = 1) and                   (usg.issqlrole = 1 or "
             u"usg.uid is null)"_s,
             u" select convert(sysname,DatabasePropertyEx('Obra','Collation'))"_s}) +
            Lineas(opciones));
    EXPECT_EQ(Textos(), QStringList());
    EXPECT_EQ(forma->lblEstado->text(), u"ONLINE"_s);
    EXPECT_EQ(forma->lblPropietario->text(), u"sa"_s);
    EXPECT_TRUE(QRegularExpression(u"^\\d\\d/\\d\\d/\\d{4} \\d\\d:\\d\\d$"_s)
                    .match(forma->lblFechaCreacion->text())
                    .hasMatch())
        << forma->lblFechaCreacion->text().toStdString();
    EXPECT_TRUE(QRegularExpression(u"^\\d+\\.\\d\\d MB$"_s).match(forma->lblTamaño->text()).hasMatch())
        << forma->lblTamaño->text().toStdString();
    EXPECT_EQ(forma->lblEspacio->text(), QString());
    EXPECT_EQ(forma->lblUsuarios->text(), u"1"_s);
    EXPECT_FALSE(forma->lblIntercalacion->text().isEmpty());
    EXPECT_EQ(forma->cboModelo->Text(), u"Completo"_s);
    EXPECT_TRUE(forma->chkCrearEstadisticas->isChecked());
    EXPECT_FALSE(forma->chkNULL->isChecked());
    EXPECT_EQ(forma->Datos.ArchivosBD.at(0, ColArchivo::Nombre), u"Obra"_s);
    EXPECT_EQ(forma->Datos.TransaccionesBD.at(0, ColArchivo::Grupo), u"LOG"_s);
    EXPECT_EQ(forma->Datos.GruposBD.at(0, ColGrupo::Nombre), u"PRIMARY"_s);
}

TEST_F(HistoriasBD, ANewDatabaseWithThreeFilesInTwoGroups)
{
    Prepara(En);
    Ejecuta({u"if db_id('Casa') is not null drop database Casa"_s});
    Propiedades(u"Obra"_s)->Unload(); // whose groups are none of the new one
    BaseDatosActual.clear();
    auto* forma = Nueva();
    EXPECT_EQ(forma->Datos.GruposBD.at(0, ColGrupo::Nombre), QString());
    EXPECT_EQ(forma->sstBaseDatos->currentIndex(), Pagina::General);
    EXPECT_FALSE(forma->sstBaseDatos->isTabEnabled(Pagina::Grupos));
    EXPECT_FALSE(forma->sstBaseDatos->isTabEnabled(Pagina::Permisos));
    EXPECT_EQ(forma->cboModelo->ListIndex(), 2) << "without a name all is null";
    EXPECT_EQ(Textos(), (QStringList{}));
    Nombra(forma, u"Casa"_s);
    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Archivos);
    auto* archivos = forma->TDBGridArchivos;
    PonArchivo(archivos, 0, u"base"_s);
    mano::PonCelda(archivos, 0, ColArchivo::Tamaño, u"2"_s); // what the model needs
    mano::ClicCelda(archivos, 0, ColArchivo::Limitado);
    EXPECT_EQ(archivos->Col(), ColArchivo::Maximo);
    mano::Escribe(u"50"_s);
    mano::Tecla(Qt::Key_Return);
    PonArchivo(archivos, 1, u"dos"_s);
    mano::PonCelda(archivos, 1, ColArchivo::Tamaño, u"20"_s);
    mano::Escribe(u"SEC"_s);
    SalPorElFinal();
    PonArchivo(archivos, 2, u"tres"_s);
    mano::PonCelda(archivos, 2, ColArchivo::Grupo, u"SEC"_s);
    SalPorElFinal();
    EXPECT_EQ(archivos->Row(), 3);
    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Transacciones);
    PonArchivo(forma->TDBGridTransacciones, 0, u"diario"_s);
    PonArchivo(forma->TDBGridTransacciones, 1, u"otro"_s);
    Llegado();

    // Every log says LOG ON again, and every file its group: the server refuses, and the form stays as it is.
    EXPECT_FALSE(Acepta(forma));
    const QString medidas = u"SIZE = 1MB, MAXSIZE =UNLIMITED,FILEGROWTH=10%"_s;
    const QString datos = u"CREATE DATABASE Casa\r ON PRIMARY"_s +
                          Archivo(u"base"_s, u".mdf"_s, u"SIZE = 2MB, MAXSIZE =50MB,FILEGROWTH=10%"_s) +
                          u",\r FILEGROUP SEC"_s +
                          Archivo(u"dos"_s, u".ndf"_s, u"SIZE = 10MB, MAXSIZE =UNLIMITED,FILEGROWTH=10%"_s);
    const QString tercero = u",\r FILEGROUP SEC"_s + Archivo(u"tres"_s, u".ndf"_s, medidas);
    const QString diario = u"\r LOG ON "_s + Archivo(u"diario"_s, u".ldf"_s, medidas) + u"\r"_s;
    const QString otro = u" LOG ON "_s + Archivo(u"otro"_s, u".ldf"_s, medidas) + u"\r"_s;
    EXPECT_EQ(Llegado(), Lineas({u" USE master"_s, datos + tercero + diario + otro}));
    EXPECT_EQ(Avisos().size(), 1);
    EXPECT_EQ(forma->Datos.TransaccionesBD.at(1, ColArchivo::Nombre), u"otro"_s);

    mano::ClicCelda(forma->TDBGridTransacciones, 1, ColArchivo::Nombre);
    mano::Tecla(Qt::Key_Backspace);
    mano::Tecla(Qt::Key_Up); // the cell is taken in
    EXPECT_FALSE(Acepta(forma));
    EXPECT_EQ(Llegado(), Lineas({u" USE master"_s, datos + tercero + diario}));
    EXPECT_TRUE(Textos().value(0).startsWith(u" Error Nº:5035 "_s));

    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Archivos);
    mano::ClicCelda(archivos, 2, ColArchivo::Nombre);
    mano::Tecla(Qt::Key_Backspace);
    ASSERT_TRUE(Acepta(forma)) << Textos().join(u'|').toStdString();
    EXPECT_EQ(Cambios(), Lineas({u" USE master"_s, datos + diario}) +
                             Opciones(u"Casa"_s, u"SIMPLE"_s).replace(u" ON\n"_s, u" OFF\n"_s));
    EXPECT_EQ(Ficheros(u"Casa"_s), u"base 256 10 6400 1|diario 128 10 - 0|dos 1280 10 -1 2"_s);
    Ejecuta({u"drop database Casa"_s});
}

TEST_F(HistoriasBD, AcceptingWithoutAChangeSendsGrowthLimitAndOptions)
{
    Prepara(Es);
    const QString antes = Ficheros(u"Obra"_s);
    auto* forma = Propiedades(u"Obra"_s);
    Llegado();
    EXPECT_TRUE(Acepta(forma));
    EXPECT_EQ(Textos(), QStringList());
    // A log without a limit has the server's own, two terabytes.
    const auto cambia = [](const QString& archivo, const QString& limite) {
        const QString c = u"ALTER DATABASE Obra\\r MODIFY FILE··(NAME = "_s + archivo;
        return c + u",FILEGROWTH=10%)\n"_s + c + u", MAXSIZE ="_s + limite + u")\n"_s;
    };
    EXPECT_EQ(Cambios(), u" USE master\n"_s + cambia(u"Obra"_s, u"UNLIMITED"_s) +
                             cambia(u"Obra_log"_s, u"2097152MB"_s) + Opciones(u"Obra"_s));
    EXPECT_EQ(Ficheros(u"Obra"_s), antes);
}

TEST_F(HistoriasBD, MasterAndModelAreClosedWithoutAStatement)
{
    Prepara(Es);
    for (const QString& base : {u"master"_s, u"model"_s}) {
        auto* forma = Propiedades(base);
        EXPECT_FALSE(forma->txtNombreBD->isEnabled());
        EXPECT_EQ(forma->TDBGridPermisos->Columns(ColPermiso::CrearBD).Visible(), base == u"master"_s);
        Llegado();
        EXPECT_TRUE(Acepta(forma));
        EXPECT_EQ(Llegado(), QString());
        EXPECT_EQ(Textos(), QStringList());
    }
}

TEST_F(HistoriasBD, GrowthByPercentAndMBInALocaleWithADecimalComma)
{
    const QLocale antes;
    QLocale::setDefault(QLocale(u"es_ES"_s));
    Prepara(Es, {u"alter database Obra modify file (name = Obra, filegrowth = 576KB)"_s,
                 u"alter database Obra modify file (name = Obra_log, filegrowth = 1600KB)"_s});
    auto* forma = Propiedades(u"Obra"_s);
    EXPECT_EQ(forma->Datos.TransaccionesBD.at(0, ColArchivo::Cantidad), u"1,5625"_s);
    const QString existente = forma->Datos.ArchivosBD.at(0, ColArchivo::Tamaño);
    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Archivos);
    auto* archivos = forma->TDBGridArchivos;
    mano::PonCelda(archivos, 0, ColArchivo::Cantidad, u"2,5"_s);
    mano::PonCelda(archivos, 0, ColArchivo::Tamaño, u"30,25"_s);
    mano::PonCelda(archivos, 1, ColArchivo::Nombre, u"mas"_s);
    mano::Escribe(Carpeta());
    mano::Tecla(Qt::Key_Return);
    mano::PonCelda(archivos, 1, ColArchivo::Tamaño, u"3,5"_s);
    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Transacciones);
    Llegado();
    Acepta(forma);
    // A size above the growth is sent as the growth; a log's growth is sent with its comma, which is refused.
    EXPECT_EQ(Cambios(), Lineas({u" USE master"_s,
                                 u"ALTER DATABASE Obra\r MODIFY FILE  (NAME = Obra, SIZE = 2.5MB)"_s}));
    EXPECT_EQ(Textos().size(), 1) << existente.toStdString();
    QLocale::setDefault(antes);
}

TEST_F(HistoriasBD, GroupsFilesAndGrowthReachTheServerInTheirOrder)
{
    Prepara(En);
    auto* forma = Propiedades(u"Obra"_s);
    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Archivos);
    auto* archivos = forma->TDBGridArchivos;
    mano::PonCelda(archivos, 0, ColArchivo::Cantidad, u"25"_s);
    mano::PonCelda(archivos, 1, ColArchivo::Nombre, u"dos"_s);
    mano::Escribe(Carpeta());
    mano::Tecla(Qt::Key_Return);
    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Grupos);
    mano::PonCelda(forma->TDBGridGrupos, 1, ColGrupo::Nombre, u"SEC"_s);
    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Archivos);
    mano::PonCelda(archivos, 1, ColArchivo::Grupo, u"SEC"_s);
    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Transacciones);
    mano::PonCelda(forma->TDBGridTransacciones, 0, ColArchivo::Unidad, u"En Megabytes"_s);
    mano::Escribe(u"3"_s);
    mano::Tecla(Qt::Key_Return);
    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Opciones);
    mano::Clic(forma->chkReducir);
    mano::Tecla(Qt::Key_Return);
    forma->cboModelo->setFocus();
    mano::Tecla(Qt::Key_End);
    Llegado();
    EXPECT_TRUE(Acepta(forma));
    EXPECT_EQ(Textos(), QStringList());
    EXPECT_EQ(Cambios(),
              Lineas({u" USE master"_s, u"ALTER DATABASE Obra\r ADD FILEGROUP SEC"_s,
                      u"ALTER DATABASE Obra\r MODIFY FILE  (NAME = Obra,FILEGROWTH=25%)"_s,
                      u"ALTER DATABASE Obra\r MODIFY FILE  (NAME = Obra, MAXSIZE =UNLIMITED)"_s,
                      u"ALTER DATABASE Obra\r ADD FILE  (NAME = dos, FILENAME = '"_s + Carpeta() +
                          u"dos.ndf', SIZE = 1MB, MAXSIZE =UNLIMITED,FILEGROWTH=10%) TO FILEGROUP SEC"_s,
                      u"ALTER DATABASE Obra\r MODIFY FILE  (NAME = Obra_log,FILEGROWTH=3MB)"_s,
                      u"ALTER DATABASE Obra\r MODIFY FILE  (NAME = Obra_log, MAXSIZE =2097152MB)"_s}) +
                  Opciones(u"Obra"_s, u"SIMPLE"_s).replace(u"SHRINK OFF"_s, u"SHRINK ON"_s));
    EXPECT_EQ(Consulta(u"select rtrim(name) + str(growth,4) from Obra..sysfiles order by fileid"_s),
              u"Obra  25|Obra_log 384|dos  10"_s);
}

TEST_F(HistoriasBD, ARenamedDatabaseGoesOnUnderItsNewName)
{
    Prepara(En);
    Ejecuta({u"if db_id('Palacio') is not null drop database Palacio"_s});
    auto* forma = Propiedades(u"Obra"_s);
    Nombra(forma, u"OBRA"_s);
    Llegado();
    EXPECT_TRUE(Acepta(forma)) << "only the case has changed";
    EXPECT_FALSE(Cambios().contains(u"sp_renamedb"_s));

    forma = Propiedades(u"Obra"_s);
    Nombra(forma, QString());
    mano::Tecla(Qt::Key_Backspace);
    EXPECT_FALSE(Acepta(forma));
    EXPECT_EQ(Textos(), QStringList{u"Insert database name."_s});
    Nombra(forma, u"Palacio"_s);
    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Archivos);
    mano::ClicCelda(forma->TDBGridArchivos, 0, ColArchivo::Automatico); // a file without growth is refused
    Llegado();
    EXPECT_FALSE(Acepta(forma));
    EXPECT_TRUE(Cambios().startsWith(u" EXEC sp_renamedb 'Obra','Palacio'\n USE master\n"_s));
    EXPECT_EQ(Avisos().size(), 1);
    mano::ClicCelda(forma->TDBGridArchivos, 0, ColArchivo::Automatico);
    mano::PonCelda(forma->TDBGridArchivos, 0, ColArchivo::Cantidad, u"10"_s);
    EXPECT_TRUE(Acepta(forma)) << Textos().join(u'|').toStdString();
    EXPECT_TRUE(Cambios().startsWith(u" USE master\n"_s)) << "it has its new name already";
    Ejecuta({u"exec sp_renamedb 'Palacio', 'Obra'"_s});
}

TEST_F(HistoriasBD, ANewDatabaseWithAnotherNameThanOfferedRenamesTheOneOffered)
{
    Prepara(Es);
    Ejecuta({u"if db_id('Casa') is not null drop database Casa"_s});
    BaseDatosActual = u"Obra"_s;
    auto* forma = Nueva();
    EXPECT_EQ(forma->txtNombreBD->Text(), u"Obra"_s);
    Nombra(forma, u"Casa"_s);
    Llegado();
    EXPECT_FALSE(Acepta(forma));
    EXPECT_EQ(Cambios(),
              Lineas({u" EXEC sp_renamedb 'Obra','Casa'"_s, u" USE master"_s, u"CREATE DATABASE Casa\r"_s}));
    EXPECT_EQ(Avisos().size(), 1);
    mano::Clic(forma->cmdCancelar);
    Ejecuta({u"exec sp_renamedb 'Casa', 'Obra'"_s});
}

TEST_F(HistoriasBD, BadInputIsRefusedInWordsAndNothingIsLost)
{
    Prepara(Es);
    const QString antes = Ficheros(u"Obra"_s);
    const auto nuevo = [this](const QString& nombre, const QString& tamaño) {
        auto* forma = Propiedades(u"Obra"_s);
        mano::ClicPestaña(forma->sstBaseDatos, Pagina::Archivos);
        mano::PonCelda(forma->TDBGridArchivos, 1, ColArchivo::Nombre, nombre);
        mano::Escribe(Carpeta());
        mano::Tecla(Qt::Key_Return);
        mano::Escribe(tamaño);
        mano::Tecla(Qt::Key_Return);
        const bool rehusada = !Avisos().isEmpty(); // by the cell already
        if (!rehusada) {
            ASSERT_FALSE(Acepta(forma)) << nombre.toStdString() << tamaño.toStdString();
            EXPECT_GE(Avisos().size(), 1);
        }
        EXPECT_EQ(rehusada, tamaño == u"-1"_s || tamaño == u"letras"_s);
        EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
        mano::Clic(forma->cmdCancelar);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    };
    for (const QString& nombre : {u"o'tro"_s, u"dos palabras"_s, u"a]b"_s, u"[a"_s, u"a,b"_s, u"a)"_s})
        nuevo(nombre, u"1"_s);
    for (const QString& tamaño : {u"0"_s, u"-1"_s, u"1e10"_s, u"letras"_s})
        nuevo(u"nuevo"_s, tamaño);
    EXPECT_EQ(Ficheros(u"Obra"_s), antes);
}

} // namespace pruebas
