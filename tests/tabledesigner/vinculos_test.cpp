// A changed column and the columns that foreign keys link to it.
#include "core/Global.h"
#include "tabledesigner/BD_SQL.h"
#include "tabledesigner/Campos.h"
#include "tabledesigner/Restricciones.h"
#include "tabledesigner/Taller.h"
#include "tabledesigner/Vinculos.h"

using namespace Qt::Literals::StringLiterals;

namespace pruebas {

class Vinculos : public Taller
{
protected:
    /// abuelo.a <- padre.p <- hija.h and [otra hija].o, with keys, indexes and a default in the way.
    static void CreaFamilia()
    {
        Ejecuta({u"create table abuelo (a int not null constraint PK_a primary key)"_s,
                 u"create table padre (p int not null constraint DF_suyo default (7), n int null, constraint "
                 u"PK_p "
                 u"primary key nonclustered (p), constraint FK_p foreign key (p) references abuelo (a))"_s,
                 u"create table hija (h int null constraint FK_h references padre (p))"_s,
                 u"create index ih on hija (h)"_s,
                 u"create table [otra hija] (o int null constraint DF_o default (3), constraint FK_o foreign "
                 u"key (o) "
                 u"references padre (p))"_s,
                 u"create unique index io on [otra hija] (o) with fillfactor = 80"_s});
    }
};

TEST_F(Vinculos, AColumnWithoutLinksAsksNothingAndChangesNothing)
{
    Ejecuta({u"create table p (id int not null constraint PK_p primary key)"_s,
             u"create table h (id int null constraint FK_h references p (id))"_s});
    const auto datos = Abre(u"p"_s);
    Cambios();
    EXPECT_TRUE(Edita(*datos, 0, ColCampo::Tipo, u"23"_s));
    EXPECT_EQ(Cambios(), Lineas({u"USE Taller"_s})) << "a column of the same name is passed over";
    EXPECT_EQ(Avisos(), QStringList());
    EXPECT_TRUE(datos->TablaModificada);
}

TEST_F(Vinculos, YesChangesAllThatHangsOnTheColumnAndRebuildsWhatWasInTheWay)
{
    CreaFamilia();
    const auto datos = Abre(u"padre"_s);
    datos->CamposTabla(0, ColCampo::Longitud) = u"12"_s;
    Cambios();
    EXPECT_TRUE(Edita(*datos, 0, ColCampo::Tipo, u"12"_s));
    EXPECT_EQ(
        Avisos(),
        (QStringList{
            u"Para conservar las relaciones exitentes se modificará una o más propiedades (Tipo de dato, "
            u"Longitud,Precision, Escala) en cada una de las siguientes columnas:\r\rEn la columna (h) "
            u"de la tabla HIJA\rEn la columna (o) de la tabla OTRA HIJA\rEn la columna (a) de la tabla "
            u"ABUELO\r\r¿Desea contimnuar con las modificaciones?"_s,
            u" Error Nº:156 (Incorrect syntax near the keyword 'WITH'.)."_s}))
        << "a fill factor ahead of the columns is refused";
    EXPECT_EQ(
        Cambios(),
        Lineas(
            {u"USE Taller"_s,
             u"ALTER TABLE Taller..hija DROP CONSTRAINT FK_h"_s,
             u"DROP INDEX hija.ih"_s,
             u"ALTER TABLE Taller..hija  ALTER COLUMN h numeric  (12)  NULL"_s,
             u"ALTER TABLE Taller..[otra hija] DROP CONSTRAINT FK_o"_s,
             u"DROP INDEX [otra hija].io"_s,
             u"ALTER TABLE Taller..[otra hija] DROP CONSTRAINT [DF_o]"_s,
             u"ALTER TABLE Taller..[otra hija]  ALTER COLUMN o numeric  (12)  NULL"_s,
             u"ALTER TABLE Taller..[otra hija] WITH NOCHECK ADD  CONSTRAINT [DF_o] DEFAULT (3) FOR [o]"_s,
             u"ALTER TABLE Taller..padre DROP CONSTRAINT FK_p"_s,
             u"ALTER TABLE Taller..abuelo DROP CONSTRAINT PK_a"_s,
             u"ALTER TABLE Taller..abuelo  ALTER COLUMN a numeric  (12)  NOT NULL"_s,
             u"ALTER TABLE Taller..padre DROP CONSTRAINT PK_p"_s,
             u"ALTER TABLE Taller..padre DROP CONSTRAINT [DF_suyo]"_s,
             u"ALTER TABLE Taller..padre  ALTER COLUMN p numeric  (12)  NOT NULL"_s,
             u" CREATE   NONCLUSTERED INDEX ih ON hija (h)  ON [PRIMARY] "_s,
             u"  CREATE   UNIQUE  NONCLUSTERED INDEX io ON [otra hija] WITH FILLFACTOR = 80 (o)  ON [PRIMARY] "_s,
             u"  ALTER TABLE abuelo ADD CONSTRAINT [PK_a] PRIMARY KEY   CLUSTERED  (a)   ON [PRIMARY] "_s,
             u"  ALTER TABLE padre ADD CONSTRAINT [PK_p] PRIMARY KEY   NONCLUSTERED  (p)   ON [PRIMARY]"_s,
             u" ALTER TABLE hija ADD CONSTRAINT [FK_h] FOREIGN KEY (h) REFERENCES padre (p) "_s,
             u"  ALTER TABLE [otra hija] ADD CONSTRAINT [FK_o] FOREIGN KEY (o) REFERENCES padre (p) "_s,
             u"  ALTER TABLE padre ADD CONSTRAINT [FK_p] FOREIGN KEY (p) REFERENCES abuelo (a)"_s}))
        << "what comes behind a refused statement is rebuilt all the same";
}

TEST_F(Vinculos, ARebuiltFamilyIsWholeAgain)
{
    CreaFamilia();
    Ejecuta({u"drop index [otra hija].io"_s});
    const auto datos = Abre(u"padre"_s);
    datos->CamposTabla(0, ColCampo::Longitud) = u"12"_s;
    Cambios();
    EXPECT_TRUE(Edita(*datos, 0, ColCampo::Tipo, u"12"_s));
    const QString cambios = Cambios();
    EXPECT_TRUE(cambios.endsWith(
        Lineas({u" CREATE   NONCLUSTERED INDEX ih ON hija (h)  ON [PRIMARY] "_s,
                u"  ALTER TABLE abuelo ADD CONSTRAINT [PK_a] PRIMARY KEY   CLUSTERED  (a)   ON [PRIMARY] "_s,
                u"  ALTER TABLE padre ADD CONSTRAINT [PK_p] PRIMARY KEY   NONCLUSTERED  (p)   ON [PRIMARY]"_s,
                u" ALTER TABLE hija ADD CONSTRAINT [FK_h] FOREIGN KEY (h) REFERENCES padre (p) "_s,
                u"  ALTER TABLE [otra hija] ADD CONSTRAINT [FK_o] FOREIGN KEY (o) REFERENCES padre (p) "_s,
                u"  ALTER TABLE padre ADD CONSTRAINT [FK_p] FOREIGN KEY (p) REFERENCES abuelo (a)"_s})))
        << cambios.toStdString();
    EXPECT_EQ(Avisos().size(), 1) << "the question alone";
    EXPECT_EQ(Catalogo(),
              u"abuelo.a:numeric,9,0,-\nhija.h:numeric,9,1,-\notra\nhija.o:numeric,9,1,(3)\n"
              u"padre.n:int,4,1,-\npadre.p:numeric,9,0,-\nabuelo.PK_a:1\nhija.ih:0\npadre.PK_p:0\n"
              u"hija.FK_h>padre\notra\nhija.FK_o>padre\npadre.FK_p>abuelo\n"_s);
}

TEST_F(Vinculos, NoLeavesTheServerAloneAndTheSaveWalksWithoutAQuestion)
{
    CreaFamilia();
    Ejecuta({u"drop index [otra hija].io"_s});
    const auto datos = Abre(u"padre"_s);
    const QString antes = Catalogo();
    respuesta = controls::Answer::No;
    datos->CamposTabla(0, ColCampo::Longitud) = u"12"_s;
    EXPECT_TRUE(Edita(*datos, 0, ColCampo::Tipo, u"12"_s)) << "the cell keeps its new value";
    EXPECT_EQ(Avisos().size(), 1);
    EXPECT_EQ(Catalogo(), antes);
    datos->FilaActual.Celdas[ColCampo::Tipo] = u"12"_s;
    EXPECT_TRUE(Guarda(*datos));
    EXPECT_EQ(Avisos(), QStringList());
    EXPECT_EQ(TransaccionesAbiertas(), 0);
    EXPECT_EQ(Consulta(u"select t.name from Taller..syscolumns c join Taller..systypes t on t.xusertype = "
                       u"c.xusertype where c.name in ('a', 'p', 'h', 'o')"_s),
              u"numeric numeric numeric numeric"_s);
    EXPECT_EQ(Consulta(u"select count(*) from Taller..sysreferences"_s), u"3"_s);
}

TEST_F(Vinculos, ARenameGoesOutWithTheNextCell)
{
    Ejecuta({u"create table [con hueco] (a int null)"_s});
    const auto datos = Abre(u"con hueco"_s);
    Cambios();
    EXPECT_TRUE(Edita(*datos, 0, ColCampo::Nombre, u"b"_s));
    EXPECT_EQ(Cambios(), QString());
    EXPECT_TRUE(Edita(*datos, 0, ColCampo::Nulo, u"0"_s));
    EXPECT_EQ(Cambios(), Lineas({u"USE Taller"_s, u"EXEC sp_rename '[con hueco].[a]', 'b', 'COLUMN'"_s}));
    EXPECT_EQ(datos->CamposTabla.at(0, ColCampo::NombreServidor), u"b"_s);
    EXPECT_TRUE(Guarda(*datos));
    EXPECT_EQ(Cambios(), Lineas({u"BEGIN TRANSACTION"_s, u"USE Taller"_s,
                                 u"ALTER TABLE Taller..[con hueco]  ALTER COLUMN b int   NOT NULL"_s,
                                 u"COMMIT TRANSACTION"_s}));
    EXPECT_EQ(Avisos(), QStringList());
}

TEST_F(Vinculos, AColumnRenamedByAnEditIsDroppedUnderItsNewName)
{
    Ejecuta({u"create table t (a int null constraint DF_t_b default (1), z int null)"_s});
    const auto datos = Abre(u"t"_s);
    Edita(*datos, 0, ColCampo::Nombre, u"b"_s);
    EXPECT_TRUE(Edita(*datos, 0, ColCampo::Nulo, u"0"_s));
    EliminaCampo(*datos, 0);
    EXPECT_TRUE(Guarda(*datos));
    EXPECT_EQ(Catalogo(), u"t.z:int,4,1,-\n\n\n"_s);
    EXPECT_EQ(Avisos(), QStringList());
}

TEST_F(Vinculos, TablesThatReferenceEachOtherEndTheWalk)
{
    Ejecuta({u"create table x (a int not null constraint PK_x primary key)"_s,
             u"create table y (b int not null constraint PK_y primary key, constraint FK_y foreign key (b) "
             u"references x (a))"_s,
             u"alter table x add constraint FK_x foreign key (a) references y (b)"_s});
    QString texto;
    PrefijoBD = u"Taller.."_s;
    BuscaDetectaVinculos(ConexionSQL, u"x"_s, u"a"_s, u"a"_s, texto);
    EXPECT_EQ(texto.count(u'\r'), 3) << texto.toStdString();
    const auto datos = Abre(u"x"_s);
    datos->CamposTabla(0, ColCampo::Longitud) = u"8"_s;
    EXPECT_TRUE(Edita(*datos, 0, ColCampo::Tipo, u"16"_s));
    EXPECT_EQ(Catalogo(),
              u"x.a:smallint,2,0,-\ny.b:smallint,2,0,-\nx.PK_x:1\ny.PK_y:1\nx.FK_x>y\ny.FK_y>x\n"_s);
    EXPECT_EQ(Avisos().size(), 1);
}

TEST_F(Vinculos, ATypeThatTheCatalogueDoesNotKnowChangesNothing)
{
    Ejecuta({u"create table t (a bigint null constraint DF_a default (1), b int null)"_s});
    const auto datos = Abre(u"t"_s);
    EXPECT_EQ(datos->CamposTabla.at(0, ColCampo::Tipo), u"0"_s);
    datos->CamposTabla(0, ColCampo::Nulo) = u"0"_s;
    const QString antes = Catalogo();
    Cambios();
    EXPECT_TRUE(Guarda(*datos));
    EXPECT_EQ(Cambios(), Lineas({u"BEGIN TRANSACTION"_s, u"USE Taller"_s, u"COMMIT TRANSACTION"_s}));
    EXPECT_EQ(Catalogo(), antes);
}

TEST_F(Vinculos, AnIndexIsInTheWayWhenItsListContainsTheText)
{
    Ejecuta({u"create table t (id int null, idioma int null, otro int null)"_s,
             u"create index i on t (idioma)"_s, u"create index j on t (otro)"_s});
    const auto datos = Abre(u"t"_s);
    QString indices;
    QString relaciones;
    BuscaCargaIndices(*datos, u"t"_s, u"nada"_s, indices, datos->IdTabla, relaciones);
    EXPECT_EQ(indices + relaciones, QString());
    Cambios();
    BuscaCargaIndices(*datos, u"t"_s, u"id"_s, indices, datos->IdTabla, relaciones);
    EXPECT_EQ(Cambios(), Lineas({u"DROP INDEX t.i"_s}));
    EXPECT_EQ(indices, u" CREATE   NONCLUSTERED INDEX i ON t (idioma)  ON [PRIMARY]"_s);
}

TEST_F(Vinculos, AKeyOfSixteenColumnsLosesALetterAndOneOfTwoDoesNot)
{
    QStringList nombres;
    QStringList columnas;
    for (int i = 0; i < 16; ++i) {
        nombres += u"col%1"_s.arg(i);
        columnas += nombres.last() + u" int not null"_s;
    }
    const QString lista = nombres.join(u',');
    Ejecuta({u"create table p (%1, primary key (%2))"_s.arg(columnas.join(u','), lista),
             u"create table h (%1, constraint FK_h foreign key (%2) references p (%2))"_s.arg(
                 columnas.join(u','), lista),
             u"create table q (a int not null, b int not null, primary key (a, b))"_s,
             u"create table [h q] (a int, b int, constraint FK_q foreign key (a, b) references q (a, b))"_s});
    PrefijoBD = u"Taller.."_s;
    QString cola;
    EXPECT_TRUE(EliminaVinculos(ConexionSQL, u"p"_s, cola));
    EXPECT_TRUE(EliminaVinculos(ConexionSQL, u"q"_s, cola));
    const QString recortada = lista.chopped(1);
    EXPECT_EQ(
        cola,
        u" ALTER TABLE h ADD CONSTRAINT [FK_h] FOREIGN KEY (%1) REFERENCES p (%1) *  ALTER TABLE [h q] ADD "
        u"CONSTRAINT [FK_q] FOREIGN KEY (a,b) REFERENCES q (a,b)"_s.arg(recortada));
}

} // namespace pruebas
