// Tables loaded, changed and saved on a real wire; what arrives at the server is compared whole.
#include "core/Global.h"
#include "tabledesigner/ActualizaLaTabla.h"
#include "tabledesigner/BD_SQL.h"
#include "tabledesigner/Campos.h"
#include "tabledesigner/CargaTabla.h"
#include "tabledesigner/Indices.h"
#include "tabledesigner/Relaciones.h"
#include "tabledesigner/Restricciones.h"
#include "tabledesigner/Taller.h"
#include "tabledesigner/TiposDato.h"

using namespace Qt::Literals::StringLiterals;

namespace pruebas {
namespace {

// The rows in use, columns 0 to 9 each.
QString Celdas(const DatosTabla& datos)
{
    QString texto;
    for (int fila = 0; fila < DameNombresCampos(datos).size(); ++fila) {
        QStringList celdas;
        for (int columna = 0; columna <= ColCampo::NombreServidor; ++columna)
            celdas += datos.CamposTabla.at(fila, columna);
        texto += celdas.join(u'|') + u'\n';
    }
    return texto;
}

QString Atributos(const DatosTabla& datos, int i)
{
    QStringList atributos;
    for (int k = 0; k <= ColIndice::Ultima; ++k)
        atributos += datos.Indices.at(i, k);
    for (int linea = 0; linea < 3; ++linea)
        atributos += datos.CamposIndice(i).at(linea, ColCampoIndice::Nombre);
    return atributos.join(u'|');
}

} // namespace

class Guardado : public Taller
{};

TEST_F(Guardado, LoadsEveryTypeAndDefaultWithTheStatementsThatLoadingSends)
{
    Ejecuta(
        {u"create table t (a nvarchar(20) null default ('x(y)'), b varchar(20) not null, c decimal(10,2) not "
         u"null constraint DF_c default (0))"_s});
    Llegado();
    const auto datos = Abre(u"t"_s);
    EXPECT_EQ(Llegado(),
              Lineas({u" select convert(sysname,DatabasePropertyEx('Taller','Collation'))"_s,
                      u"Select * from Taller..sysobjects  where type = 'U' and name = 't' order by name"_s,
                      u"Select * from Taller..syscolumns  where id = # order by colid"_s,
                      u"Select text from Taller..syscomments where id=#"_s,
                      u"Select name from Taller..sysobjects  where id=# and xtype Like 'D'"_s,
                      u"Select text from Taller..syscomments where id=#"_s,
                      u"Select name from Taller..sysobjects  where id=# and xtype Like 'D'"_s,
                      u"Select * from Taller..sysobjects  where type = 'U' and name = 't' order by name"_s,
                      u"Select * from Taller..sysindexes  where id = # and indid <> 255 and (status & 64)=0 "
                      u"order by indid"_s,
                      u"Select * from Taller..sysobjects  where type = 'U' and name = 't' order by name"_s,
                      u"Select * from Taller..sysreferences  where fkeyid = #"_s}));
    EXPECT_EQ(Celdas(*datos),
              u"M|a|13|20|0|0|-1|'xy'|%1|a\nM|b|23|20|0|0|0|||b\nM|c|5|9|10|2|0|0|DF_c|c\n"_s.arg(
                  datos->CamposTabla.at(0, ColCampo::NombreDF)));
    EXPECT_TRUE(datos->CamposTabla.at(0, ColCampo::NombreDF).startsWith(u"DF__t__a__"_s));
    EXPECT_EQ(datos->NombresTabla.at(3, 0), u"t"_s);
    EXPECT_EQ(DimeGrupoFicheros(*datos), u"PRIMARY"_s);
    EXPECT_EQ(DameCamposTabla_SQL(*datos, u"t"_s), (QStringList{u"a"_s, u"b"_s, u"c"_s}));
    EXPECT_EQ(Avisos(), QStringList());
}

TEST_F(Guardado, LoadsKeysAndRelations)
{
    Ejecuta(
        {u"create table p (a int not null, b int not null, constraint PK_p primary key nonclustered (b, a))"_s,
         u"create table [con hueco] (x int not null, y int null, z int null)"_s,
         u"create unique clustered index unico on [con hueco] (y, x) with fillfactor = 70"_s,
         u"create index otro on [con hueco] (z)"_s,
         u"alter table [con hueco] add constraint FK_h foreign key (x, z) references p (b, a)"_s});
    const auto datos = Abre(u"con hueco"_s);
    ASSERT_EQ(ContadorIndices, 2);
    EXPECT_EQ(Atributos(*datos, 0), u"unico|I|1|0|PRIMARY|70|x|y|"_s);
    EXPECT_EQ(Atributos(*datos, 1), u"otro|I|0|0|PRIMARY|0|z||"_s);
    ASSERT_EQ(ContadorRelaciones, 1);
    EXPECT_EQ(datos->Relaciones.at(0, 0), u"FK_h"_s);
    const Matriz& lineas = datos->CamposRelacion(0);
    EXPECT_EQ(lineas.at(0, 1) + lineas.at(0, 2) + lineas.at(0, 3), u"xbp"_s);
    EXPECT_EQ(lineas.at(1, 1) + lineas.at(1, 2) + lineas.at(1, 3), u"zap"_s);
    EXPECT_EQ(lineas.at(2, 1), QString());
    const auto padre = Abre(u"p"_s);
    EXPECT_EQ(Atributos(*padre, 0), u"PK_p|P|0|1|PRIMARY|0|a|b|"_s) << "in the order of the table's columns";
    EXPECT_EQ(Avisos(), QStringList());
}

TEST_F(Guardado, ANewTableIsOneStatementAndItsRenamesAreRefusedUnseen)
{
    const auto datos = Nueva(u"t"_s);
    Escribe(*datos, 0, {u"a"_s, 8});
    Escribe(*datos, 2, {u"b"_s, 3, u"10"_s, u"0"_s, u"'x'"_s});
    datos->GrupoDatos = u"PRIMARY"_s;
    Llegado();
    EXPECT_TRUE(Guarda(*datos));
    const QString busca = u"Select id from Taller..sysobjects where name = 't' and type Like 'U'"_s;
    EXPECT_EQ(
        Llegado(),
        Lineas({u"BEGIN TRANSACTION"_s, busca, u"USE Taller"_s,
                u"Select name from Taller..sysobjects where name = 't' and type = 'U'"_s,
                u"EXEC sp_rename 't.[]', 'a', 'COLUMN'"_s, busca, u"EXEC sp_rename 't.[]', 'b', 'COLUMN'"_s,
                busca,
                u"CREATE TABLE Taller..t (a int   NULL,\rb char (10)  NOT NULL CONSTRAINT [DF_t_b] DEFAULT "
                u"('x'))"_s,
                busca, u"SELECT * from Taller..sysreferences WHERE fkeyid=#"_s, busca,
                u"SELECT * from Taller..sysreferences WHERE fkeyid=#"_s,
                u"Select * from Taller..sysobjects  where type = 'U' and name = 't' order by name"_s,
                u"Select * from Taller..syscolumns  where id = # order by colid"_s,
                u"COMMIT TRANSACTION"_s}));
    EXPECT_EQ(Avisos(), QStringList());
    EXPECT_EQ(TransaccionesAbiertas(), 0);
    EXPECT_EQ(Catalogo(), u"t.a:int,4,1,-\nt.b:char,10,0,('x')\n\n\n"_s);
}

TEST_F(Guardado, EveryTypeComesBackAsItWasMade)
{
    for (const QString& nulo : {u"-1"_s, u"0"_s}) {
        const QString nombre = nulo == u"0"_s ? u"llena"_s : u"vacia"_s;
        const auto datos = Nueva(nombre);
        int fila = 0;
        for (int tipo = 1; tipo <= 23; ++tipo) {
            const bool conValor =
                nulo == u"-1"_s && tipo != 19 && tipo != 7 && tipo != 21 && tipo != 1 && tipo != 22;
            Escribe(*datos, fila++, {u"c%1"_s.arg(tipo), tipo, u"12"_s, nulo, conValor ? u"1"_s : QString()});
        }
        ASSERT_TRUE(Guarda(*datos)) << Avisos().join(u'\n').toStdString();
        const auto otra = Abre(nombre);
        for (fila = 0; fila < 23; ++fila) {
            const auto celda = [&](int columna) { return otra->CamposTabla.at(fila, columna); };
            const TipoDato& tipo = TiposDato()[static_cast<std::size_t>(fila)];
            const bool larga = tipo.editables == MedidasEditables::Longitud;
            SCOPED_TRACE(tipo.nombre.toString().toStdString());
            EXPECT_EQ(celda(ColCampo::Tipo), QString::number(fila + 1));
            // The one argument of decimal is a precision, whatever the grid calls it.
            const int precision = fila + 1 == TipoDecimal ? tipo.longitud : tipo.precision;
            EXPECT_EQ(celda(ColCampo::Precision), QString::number(precision));
            const bool sinEscala = tipo.nombre == u"float"_s || tipo.nombre == u"real"_s;
            EXPECT_EQ(celda(ColCampo::Escala), sinEscala ? QString() : QString::number(tipo.escala));
            EXPECT_EQ(celda(ColCampo::Longitud),
                      larga ? u"12"_s : QString::number(fila + 1 == TipoDecimal ? 5 : tipo.longitud));
            EXPECT_EQ(celda(ColCampo::Nulo), nulo);
            EXPECT_EQ(celda(ColCampo::Predeterminado), datos->CamposTabla.at(fila, ColCampo::Predeterminado));
        }
        Cambios();
        EXPECT_TRUE(Guarda(*otra));
        EXPECT_EQ(Cambios(), Lineas({u"BEGIN TRANSACTION"_s, u"USE Taller"_s, u"COMMIT TRANSACTION"_s}));
        EXPECT_EQ(Avisos(), QStringList());
    }
}

TEST_F(Guardado, ChangesDropsAndAddsColumnsOfATableWithData)
{
    Ejecuta(
        {u"create table t (a varchar(10) collate Latin1_General_CI_AS null constraint DF_viejo default "
         u"('x'), "
         u"b int not null, c int not null constraint DF_t_c default (1), d text null, e decimal(9,2) null)"_s,
         u"insert t (a, b) values ('uno', 1)"_s});
    const auto datos = Abre(u"t"_s);
    datos->CamposTabla(0, ColCampo::Longitud) = u"20"_s;
    datos->CamposTabla(1, ColCampo::Nombre) = u"bb"_s;
    datos->CamposTabla(1, ColCampo::Predeterminado) = u"5"_s;
    datos->CamposTabla(3, ColCampo::Nulo) = u"0"_s;
    datos->CamposTabla(4, ColCampo::Escala) = u"1"_s;
    EliminaCampo(*datos, 2);
    Escribe(*datos, 4, {u"f"_s, 16});
    Escribe(*datos, UltimaFila - 1, {u"g"_s, 23, u"9"_s});
    Escribe(*datos, UltimaFila, {u"nunca"_s, 8});
    Cambios();
    EXPECT_TRUE(Guarda(*datos));
    const QString colacion = datos->IntercalacionBase;
    EXPECT_EQ(
        Cambios(),
        Lineas({u"BEGIN TRANSACTION"_s, u"USE Taller"_s,
                u"ALTER TABLE Taller..t DROP CONSTRAINT [DF_viejo]"_s,
                u"ALTER TABLE Taller..t  ALTER COLUMN a varchar  (20)  COLLATE %1  NULL"_s.arg(colacion),
                u"ALTER TABLE Taller..t WITH NOCHECK ADD  CONSTRAINT [DF_viejo] DEFAULT ('x') FOR [a]"_s,
                u"EXEC sp_rename 't.[b]', 'bb', 'COLUMN'"_s,
                u"ALTER TABLE Taller..t  ALTER COLUMN bb int   NOT NULL"_s,
                u"ALTER TABLE Taller..t WITH NOCHECK ADD  CONSTRAINT [DF_t_bb] DEFAULT (5) FOR [bb]"_s,
                u"ALTER TABLE Taller..t  ALTER COLUMN d text  COLLATE %1  NOT NULL"_s.arg(colacion),
                u"EXEC sp_rename 't.[]', 'f', 'COLUMN'"_s, u"EXEC sp_rename 't.[]', 'g', 'COLUMN'"_s,
                u"ALTER TABLE Taller..t  ADD f smallint  NULL,\rg varchar  (9)  NULL"_s,
                u"ALTER TABLE Taller..t DROP CONSTRAINT [DF_t_c]"_s,
                u"ALTER TABLE Taller..t  DROP COLUMN c"_s, u"COMMIT TRANSACTION"_s}));
    EXPECT_EQ(Avisos().size(), 1) << "text is not altered, which the server says and the save survives";
    EXPECT_EQ(Catalogo(), u"t.a:varchar,20,1,('x')\nt.bb:int,4,0,(5)\nt.d:text,16,1,-\nt.e:decimal,5,1,-\n"
                          u"t.f:smallint,2,1,-\nt.g:varchar,9,1,-\n\n\n"_s);
    EXPECT_EQ(Consulta(u"select a + cast(bb as varchar) from Taller..t"_s), u"uno1"_s);
}

TEST_F(Guardado, KeysAndIndexesAreMadeAndRebuilt)
{
    const auto datos = Nueva(u"mi t"_s);
    Escribe(*datos, 0, {u"a"_s, 8, {}, u"0"_s});
    Escribe(*datos, 1, {u"b"_s, 8});
    PonIndice(*datos, u"PK_t"_s, {u"a"_s}, true);
    PonIndice(*datos, u"con hueco"_s, {u"b"_s, u"a"_s});
    datos->Indices(0, ColIndice::Relleno) = u"0,0"_s;
    datos->Indices(1, ColIndice::Relleno) = u"70"_s;
    datos->Indices(1, ColIndice::Agrupado) = u"1"_s;
    Cambios();
    EXPECT_TRUE(Guarda(*datos));
    EXPECT_EQ(
        Cambios(),
        Lineas({u"BEGIN TRANSACTION"_s, u"USE Taller"_s, u"EXEC sp_rename '[mi t].[]', 'a', 'COLUMN'"_s,
                u"EXEC sp_rename '[mi t].[]', 'b', 'COLUMN'"_s,
                u"CREATE TABLE Taller..[mi t] (a int   NOT NULL,\rb int   NULL)"_s,
                u"ALTER TABLE Taller..[mi t] WITH NOCHECK ADD CONSTRAINT PK_t PRIMARY KEY  NONCLUSTERED  "
                u"(a)\r"_s,
                u"CREATE  CLUSTERED  INDEX [con hueco]  ON Taller..[mi t]  (b,a)\r WITH FILLFACTOR = 70"_s,
                u"COMMIT TRANSACTION"_s}));
    const auto otra = Abre(u"mi t"_s);
    Cambios();
    EXPECT_TRUE(Guarda(*otra));
    EXPECT_EQ(
        Cambios(),
        Lineas({u"BEGIN TRANSACTION"_s, u"USE Taller"_s,
                u"CREATE  CLUSTERED  INDEX [con hueco]  ON Taller..[mi t]  (a,b)\r WITH FILLFACTOR = 70 "
                u",DROP_EXISTING  ON [PRIMARY]"_s,
                u"ALTER TABLE Taller..[mi t] DROP CONSTRAINT PK_t"_s,
                u"ALTER TABLE Taller..[mi t] WITH NOCHECK ADD CONSTRAINT PK_t PRIMARY KEY  NONCLUSTERED  "
                u"(a)\r ON [PRIMARY]"_s,
                u"COMMIT TRANSACTION"_s}));
    EXPECT_EQ(Avisos(), QStringList());
    EXPECT_EQ(Catalogo(), u"mi\nt.a:int,4,0,-\nmi\nt.b:int,4,1,-\nmi\nt.con\nhueco:1\nmi\nt.PK_t:0\n\n"_s);
}

TEST_F(Guardado, RelationsAreDroppedAndMadeAndThoseOfOthersComeBack)
{
    Ejecuta({u"create table p (a int not null constraint PK_p primary key, b int null)"_s,
             u"create table h (x int null constraint FK_h references p (a), y int null)"_s});
    const auto datos = Abre(u"p"_s);
    PonIndice(*datos, u"ib"_s, {u"b"_s});
    PonRelacion(*datos, u"FK propia"_s, u"b"_s, u"p"_s, u"a"_s);
    Llegado();
    EXPECT_TRUE(Guarda(*datos));
    EXPECT_EQ(
        Cambios(),
        Lineas({u"BEGIN TRANSACTION"_s, u"USE Taller"_s, u"ALTER TABLE Taller..h DROP CONSTRAINT FK_h"_s,
                u"ALTER TABLE Taller..p DROP CONSTRAINT PK_p"_s,
                u"ALTER TABLE Taller..p WITH NOCHECK ADD CONSTRAINT PK_p PRIMARY KEY  CLUSTERED  (a)\r ON "
                u"[PRIMARY]"_s,
                u"CREATE  INDEX ib  ON Taller..p  (b)\r"_s,
                u" ALTER TABLE h ADD CONSTRAINT [FK_h] FOREIGN KEY (x) REFERENCES p (a)"_s, u"Use Taller"_s,
                u"ALTER TABLE p ADD CONSTRAINT [FK propia] FOREIGN KEY (b ) REFERENCES p (a)"_s,
                u"COMMIT TRANSACTION"_s}));
    EXPECT_EQ(Avisos(), QStringList());

    const auto hija = Abre(u"h"_s);
    EliminaRelacion(*hija, 0);
    PonRelacion(*hija, u"FK_y"_s, u"y"_s, u"p"_s, u"a"_s);
    Llegado();
    EXPECT_TRUE(Guarda(*hija));
    EXPECT_EQ(Cambios(), Lineas({u"BEGIN TRANSACTION"_s, u"USE Taller"_s,
                                 u"ALTER TABLE Taller..h DROP CONSTRAINT FK_h"_s, u"Use Taller"_s,
                                 u"ALTER TABLE h ADD CONSTRAINT [FK_y] FOREIGN KEY (y ) REFERENCES p (a)"_s,
                                 u"COMMIT TRANSACTION"_s}));
    EXPECT_EQ(Avisos(), QStringList());
}

TEST_F(Guardado, WhatTheServerRefusesRollsBackAndTheDesignStays)
{
    Ejecuta({u"create table t (a int not null, b int null)"_s, u"create index i on t (a)"_s});
    const QString antes = Catalogo();
    const auto probar = [&](const std::function<void(DatosTabla&)>& cambio, int avisos) {
        const auto datos = Abre(u"t"_s);
        cambio(*datos);
        EXPECT_FALSE(Guarda(*datos));
        EXPECT_EQ(Avisos().size(), avisos);
        EXPECT_EQ(TransaccionesAbiertas(), 0);
        EXPECT_EQ(Catalogo(), antes);
    };
    probar([](DatosTabla& d) { d.Indices(0, ColIndice::Unico) = u"1"_s; }, 1);
    probar(
        [](DatosTabla& d) {
            Escribe(d, 2, {u"c"_s, 8});
            d.GrupoDatos = u"OTRO"_s;
        },
        1);
    probar([](DatosTabla& d) { d.CamposTabla(0, ColCampo::Nombre) = u"b"_s; }, 1);
    probar([](DatosTabla& d) { AñadeRelacion(d, u"sin lineas"_s); }, 1);
    probar(
        [](DatosTabla& d) {
            Escribe(d, 2, {u"c"_s, 8});
            d.CamposTabla(2, ColCampo::Tipo) = u"0"_s;
        },
        1);

    const auto nueva = Nueva(u"n"_s);
    Escribe(*nueva, 0, {u"a"_s, 8});
    PonIndice(*nueva, u"PK"_s, {u"no_hay"_s}, true);
    EXPECT_FALSE(Guarda(*nueva));
    nueva->CamposIndice(0)(0, 1) = u"a"_s;
    nueva->CamposTabla(0, ColCampo::Nulo) = u"0"_s;
    EXPECT_TRUE(Guarda(*nueva)) << "the next save works";
    EXPECT_EQ(TransaccionesAbiertas(), 0);
}

TEST_F(Guardado, ADroppedColumnWithoutADefaultStopsTheDropsAndNotTheSave)
{
    Ejecuta({u"create table t (a int null, b int null)"_s});
    const auto datos = Abre(u"t"_s);
    Ejecuta({u"alter table t add ajena int null constraint DF_t_ajena default (1)"_s});
    EliminaCampo(*datos, 0);
    EXPECT_TRUE(Guarda(*datos));
    EXPECT_EQ(Avisos().size(), 1);
    EXPECT_EQ(TransaccionesAbiertas(), 0);
    EXPECT_EQ(Catalogo(), u"t.a:int,4,1,-\nt.ajena:int,4,1,(1)\nt.b:int,4,1,-\n\n\n"_s)
        << "a column that this designer never had is no column that it lost";
}

TEST_F(Guardado, ATableBeyondTheGridLosesNothing)
{
    QStringList columnas;
    for (int i = 0; i < 1024; ++i)
        columnas +=
            i < UltimaFila ? u"c%1 int"_s.arg(i) : u"c%1 int constraint DF_ancha_c%1 default (1)"_s.arg(i);
    Ejecuta({u"create table ancha (%1)"_s.arg(columnas.join(u", "_s))});
    const auto datos = Abre(u"ancha"_s);
    EXPECT_EQ(Avisos(), QStringList{u" Error Nº:9 (Subscript out of range)."_s});
    const QString antes = Catalogo();
    EXPECT_TRUE(Guarda(*datos));
    EXPECT_EQ(Catalogo(), antes);
}

TEST_F(Guardado, AnotherDesignersDatabaseAndCountsDoNotReachThisOne)
{
    Ejecuta({u"create table p (a int not null constraint PK_p primary key)"_s,
             u"create table h (x int null constraint FK_h references p (a))"_s});
    const auto hija = Abre(u"h"_s);
    const auto padre = Abre(u"p"_s);
    const QString antes = Catalogo();
    PrefijoBD = u"master.."_s;
    ContadorRelaciones = 0;
    EXPECT_TRUE(Guarda(*hija));
    ContadorIndices = 7;
    EXPECT_TRUE(Guarda(*padre));
    EXPECT_EQ(Avisos(), QStringList());
    EXPECT_EQ(Catalogo(), antes);
}

TEST_F(Guardado, ASystemTableLoadsAndTheBuildingBlocksDrop)
{
    auto datos = std::make_unique<DatosTabla>();
    IniciaDatosTabla(*datos, u"Taller"_s);
    datos->EsTablaSistema = true;
    CapturaCampos_SQL(*datos, u"sysobjects"_s);
    EXPECT_TRUE(ExisteElCampo(*datos, u"XTYPE"_s));

    Ejecuta(
        {u"create table p (a int not null constraint PK_p primary key, b int null constraint DF_b default (1))"_s,
         u"create table h (x int null constraint FK_h references p (a))"_s});
    EXPECT_TRUE(ExisteLaRelacion(ConexionSQL, u"h"_s, u"p"_s, u"x,"_s));
    EXPECT_FALSE(ExisteLaRelacion(ConexionSQL, u"h"_s, u"p"_s, u"no,"_s));
    EXPECT_FALSE(ExisteLaRelacion(ConexionSQL, u"h"_s, u"p"_s, {}));
    EXPECT_FALSE(ExisteLaRelacion(ConexionSQL, u"p"_s, u"h"_s, u"a,"_s));
    Ejecuta({u"alter table h add y int null constraint FK_y references p (a)"_s});
    EliminaLosVinculos(ConexionSQL, u"h"_s, u"Y"_s);
    EXPECT_EQ(Consulta(u"select name from Taller..sysobjects where xtype = 'F'"_s), u"FK_h"_s);
    RelacionConOtrasTablas(ConexionSQL, u"p"_s);
    EliminaConstraint(ConexionSQL, u"p"_s);
    EXPECT_EQ(Catalogo(), u"h.x:int,4,1,-\nh.y:int,4,1,-\np.a:int,4,0,-\np.b:int,4,1,-\np.PK_p:1\n\n"_s);
    EXPECT_EQ(Avisos(), QStringList());
}

} // namespace pruebas
