// The tab of rights: each click is one statement, and the pictures say what the server holds.
#include "Estudio.h"

#include "core/Global.h"

#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {

class PermisosBD : public Estudio
{
protected:
    void AbreObra()
    {
        Prepara(Es,
                {u"if not exists (select 1 from master.dbo.syslogins where name = 'ana') exec sp_addlogin "
                 u"'ana', 'x'"_s,
                 u"exec sp_grantdbaccess 'ana', 'ana'"_s, u"grant create view to ana"_s,
                 u"deny create table to ana"_s});
        forma = Propiedades(u"Obra"_s);
        fila = forma->Datos.PermisosBD.at(0, ColPermiso::Usuario) == u"ana"_s ? 0 : 1;
        mano::ClicPestaña(forma->sstBaseDatos, Pagina::Permisos);
        Llegado();
    }
    QString Estado(int columna) { return forma->Datos.PermisosBD.at(fila, columna); }

    formularios::frmPropiedadesBD* forma = nullptr;
    int fila = 0;
};

TEST_F(PermisosBD, AClickOrSpaceMovesTheCellOnAndSendsIt)
{
    AbreObra();
    ASSERT_EQ(forma->Datos.PermisosBD.at(fila, ColPermiso::Usuario), u"ana"_s);
    EXPECT_EQ(Estado(2), u"NP"_s);
    EXPECT_EQ(Estado(3), u"PE"_s);
    EXPECT_EQ(Estado(4), u"NA"_s);
    auto* rejilla = forma->TDBGridPermisos;
    EXPECT_FALSE(rejilla->Columns(ColPermiso::CrearBD).Visible());
    mano::ClicCelda(rejilla, fila, 4);
    mano::Tecla(Qt::Key_Space);
    mano::Tecla(Qt::Key_Space);
    EXPECT_EQ(Llegado(), Lineas({u"USE Obra"_s, u"GRANT CREATE PROCEDURE TO ana"_s, u"USE Obra"_s,
                                 u"DENY CREATE PROCEDURE TO ana"_s, u"USE Obra"_s,
                                 u"REVOKE CREATE PROCEDURE TO ana"_s}));
    const QString derechos[] = {u"CREATE TABLE"_s, u"CREATE VIEW"_s,     u"CREATE PROCEDURE"_s,
                                u"CREATE RULE"_s,  u"CREATE FUNCTION"_s, u"BACKUP DATABASE"_s,
                                u"BACKUP LOG "_s};
    for (int columna = 2; columna <= 8; ++columna) {
        const QString antes = Estado(columna);
        const QString verbo = antes == u"NA"_s ? u"GRANT "_s : antes == u"PE"_s ? u"DENY "_s : u"REVOKE "_s;
        mano::ClicCelda(rejilla, fila, columna);
        EXPECT_EQ(Llegado(), Lineas({u"USE Obra"_s, verbo + derechos[columna - 2] + u" TO ana"_s}));
    }
    EXPECT_EQ(Textos(), QStringList());
    EXPECT_EQ(Consulta(u"select str(action,3)+str(protecttype,4) from Obra..sysprotects where uid = "
                       u"user_id('ana') and action in (198,207,222,236,178,228,235) order by action"_s),
              u"178 205|207 206|222 205|228 205|235 205|236 205"_s);
}

TEST_F(PermisosBD, NeitherTheNameNorTheRowBelowSendsAnything)
{
    AbreObra();
    auto* rejilla = forma->TDBGridPermisos;
    mano::ClicCelda(rejilla, fila, ColPermiso::Usuario);
    mano::Escribe(u"x"_s);
    const int ultima = forma->Datos.PermisosBD.lastRow();
    EXPECT_EQ(forma->Datos.PermisosBD.at(ultima, ColPermiso::Usuario), QString());
    mano::ClicCelda(rejilla, ultima, 2);
    EXPECT_EQ(Llegado(), QString());
    EXPECT_EQ(forma->Datos.PermisosBD.at(fila, ColPermiso::Usuario), u"ana"_s);
}

TEST_F(PermisosBD, AnEmptyCellGoesToGrantedAndARefusedOneKeepsItsNewValue)
{
    AbreObra();
    forma->Datos.PermisosBD(fila, 3) = QString(); // as in a database without a view
    mano::ClicCelda(forma->TDBGridPermisos, fila, 3);
    EXPECT_EQ(Llegado(), Lineas({u"USE Obra"_s, u"GRANT CREATE VIEW TO ana"_s}));
    Ejecuta({u"exec sp_revokedbaccess 'ana'"_s});
    mano::ClicCelda(forma->TDBGridPermisos, fila, 5);
    EXPECT_EQ(Textos().size(), 1);
    EXPECT_EQ(Estado(5), u"PE"_s);
}

TEST_F(PermisosBD, MasterShowsTheRightToCreateDatabases)
{
    Prepara(En,
            {u"if not exists (select 1 from master.dbo.syslogins where name = 'ana') exec sp_addlogin 'ana', "
             u"'x'"_s,
             u"use master"_s, u"exec sp_grantdbaccess 'ana', 'ana'"_s});
    forma = Propiedades(u"master"_s);
    for (fila = 0; forma->Datos.PermisosBD.at(fila, ColPermiso::Usuario) != u"ana"_s;)
        ++fila;
    mano::ClicPestaña(forma->sstBaseDatos, Pagina::Permisos);
    Llegado();
    for (int vez = 0; vez < 3; ++vez) {
        mano::ClicCelda(forma->TDBGridPermisos, fila, ColPermiso::CrearBD);
        QTest::qWait(1);
    }
    EXPECT_EQ(Llegado(), Lineas({u"USE master"_s, u"GRANT CREATE DATABASE TO ana"_s, u"USE master"_s,
                                 u"DENY  CREATE DATABASE TO ana"_s, u"USE master"_s,
                                 u"REVOKE CREATE DATABASE TO ana"_s}));
    EXPECT_EQ(Textos(), QStringList());
    Ejecuta({u"use master"_s, u"exec sp_revokedbaccess 'ana'"_s});
}

} // namespace pruebas
