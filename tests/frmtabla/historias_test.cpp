// Whole stories of the designer: drawn by hand, read where the statements arrive.
#include "Mesa.h"

#include "browser/frmAdministrador.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "platform/controls/Pointer.h"
#include "tabledesigner/TiposDato.h"

#include <QApplication>
#include <QMdiArea>
#include <QTest>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {

class Historias : public Mesa
{
protected:
    void TearDown() override
    {
        EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
        if (ConexionSQL.State() != 0) {
            EXPECT_EQ(TransaccionesAbiertas(), 0);
        }
        Mesa::TearDown();
    }
    /// Ends the program of this test and readies another.
    void DeNuevo()
    {
        TearDown();
        SetUp();
    }

    /// abuelo.a <- padre.p <- hija.h and [otra hija].o, with keys, indexes and a default in the way.
    static QStringList Familia()
    {
        return {
            u"create table abuelo (a int not null constraint PK_a primary key)"_s,
            u"create table padre (p int not null constraint DF_suyo default (7), n int null, constraint PK_p "
            u"primary key nonclustered (p), constraint FK_p foreign key (p) references abuelo (a))"_s,
            u"create table hija (h int null constraint FK_h references padre (p))"_s,
            u"create index ih on hija (h)"_s,
            u"create table [otra hija] (o int null constraint DF_o default (3), constraint FK_o foreign key "
            u"(o) "
            u"references padre (p))"_s};
    }

    /// The walk over the family of padre; its default is dropped where it still has one.
    static QString CambioDeFamilia(bool conPredeterminado)
    {
        const QString predeterminado =
            conPredeterminado ? u"ALTER TABLE Taller..padre DROP CONSTRAINT [DF_suyo]\n"_s : QString();
        return u"ALTER TABLE Taller..hija DROP CONSTRAINT FK_h\n"
               u"DROP INDEX hija.ih\n"
               u"ALTER TABLE Taller..hija··ALTER COLUMN h smallint··NULL\n"
               u"ALTER TABLE Taller..[otra hija] DROP CONSTRAINT FK_o\n"
               u"ALTER TABLE Taller..[otra hija] DROP CONSTRAINT [DF_o]\n"
               u"ALTER TABLE Taller..[otra hija]··ALTER COLUMN o smallint··NULL\n"
               u"ALTER TABLE Taller..[otra hija] WITH NOCHECK ADD··CONSTRAINT [DF_o] DEFAULT (3) FOR [o]\n"
               u"ALTER TABLE Taller..padre DROP CONSTRAINT FK_p\n"
               u"ALTER TABLE Taller..abuelo DROP CONSTRAINT PK_a\n"
               u"ALTER TABLE Taller..abuelo··ALTER COLUMN a smallint··NOT NULL\n"
               u"ALTER TABLE Taller..padre DROP CONSTRAINT PK_p\n"_s +
               predeterminado +
               u"ALTER TABLE Taller..padre··ALTER COLUMN p smallint··NOT NULL\n"
               u" CREATE·· NONCLUSTERED INDEX ih ON hija (h)··ON [PRIMARY] \n"
               u"··ALTER TABLE abuelo ADD CONSTRAINT [PK_a] PRIMARY KEY·· CLUSTERED··(a)·· ON [PRIMARY] \n"
               u"··ALTER TABLE padre ADD CONSTRAINT [PK_p] PRIMARY KEY·· NONCLUSTERED··(p)·· ON [PRIMARY]\n"
               u" ALTER TABLE hija ADD CONSTRAINT [FK_h] FOREIGN KEY (h) REFERENCES padre (p) \n"
               u"··ALTER TABLE [otra hija] ADD CONSTRAINT [FK_o] FOREIGN KEY (o) REFERENCES padre (p) \n"
               u"··ALTER TABLE padre ADD CONSTRAINT [FK_p] FOREIGN KEY (p) REFERENCES abuelo (a)\n"_s;
    }
};

namespace {

/// A default that a column of the type takes, as it is typed and as it is shown after loading.
QString PredeterminadoDe(const QString& tipo)
{
    if (tipo == u"timestamp"_s)
        return {};
    if (tipo.contains(u"char"_s) || tipo.contains(u"text"_s))
        return u"'x'"_s;
    if (tipo.contains(u"datetime"_s))
        return u"'20200229'"_s;
    if (tipo.contains(u"binary"_s) || tipo == u"image"_s)
        return u"0x1F"_s;
    if (tipo == u"uniqueidentifier"_s)
        return u"'6F9619FF-8B86-D011-B42D-00C04FC964FF'"_s;
    return u"1"_s;
}

} // namespace

TEST_F(Historias, EachTypeIsDrawnCreatedReopenedChangedAndReopened)
{
    Prepara(Es);
    auto* forma = Nueva();
    ASSERT_NE(forma, nullptr);
    Clic(forma->txtNombreTabla);
    Escribe(u"Tipos"_s);
    auto* rejilla = forma->TDBGridTabla;
    Clic(rejilla->viewport(), rejilla->cellRect(0, ColCampo::Nombre).center());
    QList<Fila> tecleadas;
    for (const TipoDato& tipo : TiposDato())
        for (const bool nulo : {false, true})
            for (const bool conPredeterminado : {false, true}) {
                const QString nombre = tipo.nombre.toString();
                const QString predeterminado = conPredeterminado ? PredeterminadoDe(nombre) : QString();
                if (nombre == u"timestamp"_s && (nulo || conPredeterminado))
                    continue; // one a table, and no default
                const auto fila = static_cast<int>(tecleadas.size());
                const QString columna =
                    u"%1_%2%3"_s.arg(nombre).arg(nulo ? 1 : 0).arg(conPredeterminado ? 1 : 0);
                PonCelda(rejilla, fila, ColCampo::Nombre, columna);
                Escribe(nombre);
                Tecla(Qt::Key_Return);
                VeA(rejilla, fila, ColCampo::Predeterminado);
                if (!predeterminado.isEmpty())
                    Escribe(predeterminado);
                VeA(rejilla, fila, ColCampo::Nulo);
                if (nulo)
                    Tecla(Qt::Key_Space);
                tecleadas += FilaDe(forma, fila);
            }
    ASSERT_EQ(tecleadas.size(), 89);
    EXPECT_TRUE(Cierra(controls::Answer::Yes));
    EXPECT_EQ(Avisos().size(), 1);
    Pulsa(u"DTTaller"_s);

    // A decimal is made with its length as precision, what is a float has no scale, and a tick that was never
    // touched is none.
    forma = Diseña(u"Tipos"_s);
    ASSERT_NE(forma, nullptr);
    for (int fila = 0; fila < tecleadas.size(); ++fila) {
        const QString tipo = tecleadas[fila][0].section(u'_', 0, 0);
        Fila& esperada = tecleadas[fila];
        if (tipo == u"decimal"_s) {
            esperada[2] = u"5"_s;
            esperada[3] = u"9"_s;
        }
        if (tipo == u"float"_s || tipo == u"real"_s)
            esperada[4].clear();
        if (esperada[5].isEmpty())
            esperada[5] = u"0"_s;
        EXPECT_EQ(FilaDe(forma, fila), esperada) << tipo.toStdString();
    }
    rejilla = forma->TDBGridTabla;
    for (int fila = 0; fila < tecleadas.size(); ++fila) {
        if (BloqueoDeLongitud(tecleadas[fila][1]))
            continue;
        VeA(rejilla, fila, ColCampo::Longitud);
        Escribe(u"12"_s);
        Tecla(Qt::Key_Return);
        tecleadas[fila][2] = u"12"_s;
    }
    VeA(rejilla, 0, ColCampo::Nombre); // a precision of 0 would be remarked on
    Cambios();
    EXPECT_TRUE(Cierra(controls::Answer::Yes));
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u"¿Desea Guardar los cambios?"_s, 35, u"Quermo"_s}}));
    forma = Diseña(u"Tipos"_s);
    for (int fila = 0; fila < tecleadas.size(); ++fila)
        EXPECT_EQ(FilaDe(forma, fila), tecleadas[fila]);
}

TEST_F(Historias, ColumnsOfATableWithDataAreAddedRenamedRetypedAndDropped)
{
    Prepara(
        En,
        {u"create table t (a int not null constraint PK_t primary key, b varchar(10) null, c int null constraint DF_t_c default (5), d int null)"_s,
         u"insert t values (1, 'uno', 2, 3)"_s});
    auto* forma = Diseña(u"t"_s);
    auto* rejilla = forma->TDBGridTabla;
    Cambios();
    ClicCelda(rejilla, 1, ColCampo::Nombre);
    Escribe(u"largo"_s);
    Tecla(Qt::Key_Return);
    EXPECT_EQ(Cambios(), QString()) << "a name alone waits";
    PonCelda(rejilla, 1, ColCampo::Longitud, u"30"_s);
    EXPECT_EQ(Cambios(), u"USE Taller\nEXEC sp_rename 't.[b]', 'largo', 'COLUMN'\n"_s);
    PonCelda(rejilla, 4, ColCampo::Nombre, u"e"_s);
    Escribe(u"datetime"_s);
    Tecla(Qt::Key_Return);
    ClicCelda(rejilla, 4, ColCampo::Nulo);
    PonCelda(rejilla, 4, ColCampo::Predeterminado, u"getdate()"_s);
    respuesta = controls::Answer::Yes;
    ClicCelda(rejilla, 2, ColCampo::Nombre);
    Tecla(Qt::Key_Delete);
    Avisos();
    EXPECT_TRUE(Cierra(controls::Answer::Yes));
    EXPECT_EQ(Cambios(),
              u"BEGIN TRANSACTION\n"
              u"USE Taller\n"
              u"ALTER TABLE Taller..t··ALTER COLUMN largo varchar··(30)··COLLATE "
              u"SQL_Latin1_General_CP1_CI_AS··NULL\n"
              u"EXEC sp_rename 't.[]', 'e', 'COLUMN'\n"
              u"ALTER TABLE Taller..t··ADD e datetime·· NULL CONSTRAINT [DF_t_e] DEFAULT (getdate())\n"
              u"ALTER TABLE Taller..t DROP CONSTRAINT PK_t\n"
              u"ALTER TABLE Taller..t WITH NOCHECK ADD CONSTRAINT PK_t PRIMARY KEY··CLUSTERED··(a)\\r ON "
              u"[PRIMARY]\n"
              u"ALTER TABLE Taller..t DROP CONSTRAINT [DF_t_c]\n"
              u"ALTER TABLE Taller..t··DROP COLUMN c\n"
              u"COMMIT TRANSACTION\n"_s);
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u"Do you want save the changes?"_s, 35, u"Quermo"_s}}));
    EXPECT_EQ(Consulta(u"select largo from Taller..t"_s), u"uno"_s);
    EXPECT_EQ(
        Consulta(u"select name from Taller..syscolumns where id = object_id('Taller..t') order by colid"_s),
        u"a|largo|d|e"_s);
}

TEST_F(Historias, AKeyColumnTakesTheTablesThatHangOnItAlong)
{
    for (const auto contestacion : {controls::Answer::Yes, controls::Answer::No}) {
        SCOPED_TRACE(static_cast<int>(contestacion));
        Prepara(Es, Familia());
        auto* forma = Diseña(u"padre"_s);
        Cambios();
        respuesta = contestacion;
        PonCelda(forma->TDBGridTabla, 0, ColCampo::Tipo, u"smallint"_s);
        const QList<Aviso> avisos = Avisos();
        ASSERT_EQ(avisos.size(), 1);
        EXPECT_EQ(avisos[0].estilo, 292);
        EXPECT_TRUE(avisos[0].texto.contains(
            u"En la columna (h) de la tabla HIJA\rEn la columna (o) de la tabla OTRA HIJA\rEn la columna (a) de la tabla ABUELO\r"_s));
        if (contestacion == controls::Answer::No)
            EXPECT_EQ(Cambios(), u"USE Taller\n"_s);
        else
            EXPECT_EQ(Cambios(), u"USE Taller\n"_s + CambioDeFamilia(true));
        EXPECT_EQ(FilaDe(forma, 0)[1], u"16"_s) << "the cell keeps its new value";
        ClicCelda(forma->TDBGridTabla, 0, ColCampo::Nombre);
        EXPECT_TRUE(Cierra(controls::Answer::Yes));
        const QString cambios = Cambios();
        EXPECT_TRUE(cambios.startsWith(u"BEGIN TRANSACTION\nUSE Taller\n"_s +
                                       CambioDeFamilia(contestacion == controls::Answer::No)))
            << cambios.toStdString();
        EXPECT_TRUE(cambios.endsWith(
            u"ALTER TABLE Taller..padre··ALTER COLUMN p smallint··NOT NULL\n"
            u"ALTER TABLE Taller..padre WITH NOCHECK ADD··CONSTRAINT [DF_suyo] DEFAULT (7) FOR [p]\n"
            u"ALTER TABLE Taller..hija DROP CONSTRAINT FK_h\n"
            u"ALTER TABLE Taller..[otra hija] DROP CONSTRAINT FK_o\n"
            u"ALTER TABLE Taller..padre DROP CONSTRAINT PK_p\n"
            u"ALTER TABLE Taller..padre WITH NOCHECK ADD CONSTRAINT PK_p PRIMARY KEY··NONCLUSTERED··(p)\\r "
            u"ON [PRIMARY]\n"
            u"ALTER TABLE Taller..padre DROP CONSTRAINT FK_p\n"
            u" ALTER TABLE hija ADD CONSTRAINT [FK_h] FOREIGN KEY (h) REFERENCES padre (p) \n"
            u"··ALTER TABLE [otra hija] ADD CONSTRAINT [FK_o] FOREIGN KEY (o) REFERENCES padre (p)\n"
            u"Use Taller\n"
            u"ALTER TABLE padre ADD CONSTRAINT [FK_p] FOREIGN KEY (p ) REFERENCES abuelo (a)\n"
            u"COMMIT TRANSACTION\n"_s))
            << cambios.toStdString();
        EXPECT_EQ(Avisos().size(), 1);
        EXPECT_EQ(
            Consulta(
                u"select t.name from Taller..syscolumns c join Taller..systypes t on t.xusertype = c.xusertype where c.name in ('a', 'p', 'h', 'o')"_s),
            u"smallint|smallint|smallint|smallint"_s);
        EXPECT_EQ(Consulta(u"select count(*) from Taller..sysreferences"_s), u"3"_s);
        DeNuevo();
    }
}

TEST_F(Historias, ATableNameWithABlankIsBracketedInStatementsOnly)
{
    Prepara(En, {u"create table [mi t] (a int not null, b int null)"_s});
    auto* forma = Diseña(u"mi t"_s);
    EXPECT_TRUE(Llegado().contains(u"and name = 'mi t' order by name"_s));
    PonCelda(forma->TDBGridTabla, 1, ColCampo::Nombre, u"c"_s);
    PonCelda(forma->TDBGridTabla, 2, ColCampo::Nombre, u"d"_s);
    EXPECT_TRUE(Cierra(controls::Answer::Yes));
    const QString llegado = Llegado();
    EXPECT_TRUE(llegado.contains(u"EXEC sp_rename '[mi t].[b]', 'c', 'COLUMN'\n"_s)) << llegado.toStdString();
    EXPECT_TRUE(llegado.contains(u"ALTER TABLE Taller..[mi t]··ADD d char (10)··NOT NULL"_s));
    EXPECT_FALSE(llegado.contains(u"name = '[mi t]'"_s));
    EXPECT_EQ(Avisos().size(), 1);
}

TEST_F(Historias, ABlankAheadOfATableNameIsPartOfIt)
{
    Prepara(En, {u"create table [ t] (a varchar(5) null)"_s, u"create table t (a int null, b int null)"_s});
    auto* forma = Diseña(u" t"_s);
    PonCelda(forma->TDBGridTabla, 0, ColCampo::Longitud, u"7"_s);
    EXPECT_TRUE(Cierra(controls::Answer::Yes));
    EXPECT_EQ(Cambios(), u"USE Taller\n"
                         u"BEGIN TRANSACTION\n"
                         u"USE Taller\n"
                         u"ALTER TABLE Taller..[ t]··ALTER COLUMN a varchar··(7)··COLLATE "
                         u"SQL_Latin1_General_CP1_CI_AS··NULL\n"
                         u"COMMIT TRANSACTION\n"_s);
}

TEST_F(Historias, TwoDesignersOfTablesThatReferenceEachOtherKeepApart)
{
    Prepara(
        Es,
        {u"create table a (x int not null constraint PK_a primary key, y int null)"_s,
         u"create table b (x int not null constraint PK_b primary key, y int null constraint FK_b references a (x))"_s,
         u"alter table a add constraint FK_a foreign key (y) references b (x)"_s,
         u"create index ia on a (y)"_s, u"create database Ajena"_s, u"create table Ajena..a (x int null)"_s});
    auto* formaA = Diseña(u"a"_s);
    auto* formaB = Diseña(u"b"_s);
    ASSERT_NE(formaA, formaB);
    EXPECT_EQ(TablasAbiertas[0], formaA);
    EXPECT_EQ(TablasAbiertas[1], formaB);
    // The browser goes elsewhere meanwhile: the saves must not.
    ::frmAdministrador->SetFocus();
    Abre(::mdiPrincipal->mnuAdministrador);
    ::frmAdministrador->CapturaBD_SQL();
    Pulsa(u"DTAjena"_s);
    Cambios();
    formaB->SetFocus();
    PonCelda(formaB->TDBGridTabla, 2, ColCampo::Nombre, u"nueva"_s);
    EXPECT_TRUE(Cierra(controls::Answer::Yes));
    EXPECT_EQ(Cambios(), u"BEGIN TRANSACTION\n"
                         u"USE Taller\n"
                         u"EXEC sp_rename 'b.[]', 'nueva', 'COLUMN'\n"
                         u"ALTER TABLE Taller..b··ADD nueva char (10)··NOT NULL\n"
                         u"ALTER TABLE Taller..a DROP CONSTRAINT FK_a\n"
                         u"ALTER TABLE Taller..b DROP CONSTRAINT PK_b\n"
                         u"ALTER TABLE Taller..b WITH NOCHECK ADD CONSTRAINT PK_b PRIMARY "
                         u"KEY··CLUSTERED··(x)\\r ON [PRIMARY]\n"
                         u"ALTER TABLE Taller..b DROP CONSTRAINT FK_b\n"
                         u" ALTER TABLE a ADD CONSTRAINT [FK_a] FOREIGN KEY (y) REFERENCES b (x)\n"
                         u"Use Taller\n"
                         u"ALTER TABLE b ADD CONSTRAINT [FK_b] FOREIGN KEY (y ) REFERENCES a (x)\n"
                         u"COMMIT TRANSACTION\n"_s);
    formaA->SetFocus();
    PonCelda(formaA->TDBGridTabla, 2, ColCampo::Nombre, u"otra"_s);
    EXPECT_TRUE(Cierra(controls::Answer::Yes));
    EXPECT_EQ(Cambios(), u"BEGIN TRANSACTION\n"
                         u"USE Taller\n"
                         u"EXEC sp_rename 'a.[]', 'otra', 'COLUMN'\n"
                         u"ALTER TABLE Taller..a··ADD otra char (10)··NOT NULL\n"
                         u"ALTER TABLE Taller..b DROP CONSTRAINT FK_b\n"
                         u"ALTER TABLE Taller..a DROP CONSTRAINT PK_a\n"
                         u"ALTER TABLE Taller..a WITH NOCHECK ADD CONSTRAINT PK_a PRIMARY "
                         u"KEY··CLUSTERED··(x)\\r ON [PRIMARY]\n"
                         u"CREATE··INDEX ia··ON Taller..a··(y)\\r WITH DROP_EXISTING··ON [PRIMARY]\n"
                         u"ALTER TABLE Taller..a DROP CONSTRAINT FK_a\n"
                         u" ALTER TABLE b ADD CONSTRAINT [FK_b] FOREIGN KEY (y) REFERENCES a (x)\n"
                         u"Use Taller\n"
                         u"ALTER TABLE a ADD CONSTRAINT [FK_a] FOREIGN KEY (y ) REFERENCES b (x)\n"
                         u"COMMIT TRANSACTION\n"_s);
    EXPECT_EQ(Consulta(u"select name from Taller..sysobjects where xtype in ('F', 'PK') order by name"_s),
              u"FK_a|FK_b|PK_a|PK_b"_s);
    EXPECT_EQ(Consulta(u"select name from Ajena..syscolumns where id = object_id('Ajena..a')"_s), u"x"_s);
    EXPECT_EQ(Elemento(u"b"_s), nullptr) << "the list shows the other database still";
    Ejecuta({u"use master"_s, u"drop database Ajena"_s});
}

TEST_F(Historias, ASystemTableIsShownInSpanishAndFoundAsNoUserTableInEnglish)
{
    for (const int idioma : {Es, En}) {
        Prepara(idioma);
        auto* forma = Diseña(u"sysusers"_s);
        ASSERT_NE(forma, nullptr);
        EXPECT_EQ(FilaDe(forma, 0)[0], idioma == Es ? u"uid"_s : QString());
        EXPECT_TRUE(Cierra(controls::Answer::No));
        DeNuevo();
    }
}

TEST_F(Historias, WhatTheServerRefusesIsShownAndTheDesignStays)
{
    Prepara(En, {u"create table t (a int null)"_s, u"create table otra (b int)"_s});
    const auto rechaza = [this](formularios::frmTabla* forma, const QString& error) {
        const QString antes = Consulta(u"select count(*) from Taller..syscolumns"_s);
        Avisos();
        EXPECT_FALSE(Cierra(controls::Answer::Yes));
        EXPECT_EQ(Avisos().value(1).texto, error);
        EXPECT_EQ(TransaccionesAbiertas(), 0);
        EXPECT_EQ(Consulta(u"select count(*) from Taller..syscolumns"_s), antes);
        EXPECT_TRUE(forma->isVisible());
    };
    auto* forma = Diseña(u"t"_s);
    PonCelda(forma->TDBGridTabla, 1, ColCampo::Nombre, u"b]"_s);
    rechaza(forma, u" Error Nº:102 (Incorrect syntax near ']'.)."_s);
    PonCelda(forma->TDBGridTabla, 1, ColCampo::Nombre, QString(300, u'n'));
    rechaza(
        forma,
        u" Error Nº:103 (The identifier that starts with '%1' is too long. Maximum length is 128.)."_s.arg(
            QString(128, u'n')));
    PonCelda(forma->TDBGridTabla, 1, ColCampo::Nombre, u"o'"_s);
    rechaza(forma, u" Error Nº:156 (Incorrect syntax near the keyword 'COLUMN'.)."_s);
    PonCelda(forma->TDBGridTabla, 1, ColCampo::Nombre, u"b"_s);
    Pagina(forma, 1);
    Clic(forma->cmdNuevoIndice);
    Escribe(u"u"_s);
    Tecla(Qt::Key_Return);
    PonCelda(forma->TDBGridIndices, 0, ColCampoIndice::Nombre, u"a"_s);
    Clic(forma->chkIndiceUnico);
    rechaza(forma, u" Error Nº:156 (Incorrect syntax near the keyword 'UNIQUE'.)."_s);
    Clic(forma->chkIndiceUnico);
    Clic(forma->txtFillFactor);
    Escribe(u"-5"_s);
    rechaza(forma, u" Error Nº:102 (Incorrect syntax near '-'.)."_s);
    Tecla(Qt::Key_A, Qt::ControlModifier);
    Tecla(Qt::Key_Backspace);
    EXPECT_TRUE(Cierra(controls::Answer::Yes));
    EXPECT_EQ(
        Consulta(u"select name from Taller..syscolumns where id = object_id('Taller..t') order by colid"_s),
        u"a|b"_s);
}

TEST_F(Historias, MoreThanTheGridHoldsIsToldAndLosesNothing)
{
    QString ancha = u"create table ancha (c0 int null"_s;
    for (int n = 1; n < 1024; ++n)
        ancha += u", c%1 int null"_s.arg(n);
    Prepara(En, {ancha + u')'});
    auto* forma = Diseña(u"ancha"_s);
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u" Error Nº:9 (Subscript out of range)."_s, 48, u"Atención."_s}}));
    EXPECT_EQ(FilaDe(forma, 200)[0], u"c200"_s);
    EXPECT_TRUE(Cierra(controls::Answer::Yes));
    EXPECT_EQ(Consulta(u"select count(*) from Taller..syscolumns where id = object_id('Taller..ancha')"_s),
              u"1024"_s);
}

TEST_F(Historias, TheLastRowIsNeverSaved)
{
    Prepara(Es, {u"create table t (a int null)"_s});
    auto* forma = Diseña(u"t"_s);
    auto* rejilla = forma->TDBGridTabla;
    ClicCelda(rejilla, 1, ColCampo::Nombre);
    Tecla(Qt::Key_End, Qt::ControlModifier);
    ASSERT_EQ(rejilla->Bookmark(), UltimaFila);
    VeA(rejilla, UltimaFila, ColCampo::Nombre);
    Escribe(u"perdida"_s);
    Tecla(Qt::Key_Up);
    Escribe(u"\U0001F600 ñ"_s);
    Tecla(Qt::Key_Up);
    EXPECT_FALSE(Cierra(controls::Answer::Yes)) << "a name with a blank goes without brackets";
    VeA(rejilla, UltimaFila - 1, ColCampo::Nombre);
    Escribe(u"[\U0001F600 ñ]"_s);
    EXPECT_TRUE(Cierra(controls::Answer::Yes)) << "as a user may write them";
    EXPECT_EQ(
        Consulta(u"select name from Taller..syscolumns where id = object_id('Taller..t') order by colid"_s),
        u"a|\U0001F600 ñ"_s);
}

TEST_F(Historias, TwoHundredAndOneDesignersOpenAndNoMore)
{
    QStringList tablas;
    for (int n = 0; n <= 201; ++n)
        tablas += u"create table a%1 (x int null)"_s.arg(n, 3, 10, QLatin1Char('0'));
    Prepara(Es, tablas);
    for (const QString& nombre : {u"a000"_s, u"a200"_s})
        EXPECT_EQ(Diseña(nombre)->txtNombreTabla->Text(), nombre);
    EXPECT_NE(TablasAbiertas[200], nullptr);
    Diseña(u"a201"_s);
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u" Error Nº:9 (El subíndice está fuera del intervalo)."_s, 48,
                                       u"Atención."_s}}));
    EXPECT_EQ(controls::LoadedForms().size(), 3);
}

} // namespace pruebas
