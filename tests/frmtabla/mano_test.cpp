// The designer under the hand: cells, keys, menus, pages, focus.
#include "Mesa.h"

#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "platform/controls/Pointer.h"

#include <QApplication>
#include <QStyleOptionTitleBar>
#include <QTemporaryDir>
#include <QTest>
#include <QWindow>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {

class Mano : public Mesa
{};

TEST_F(Mano, ATableIsOpenedAndShowsWhatTheServerHas)
{
    Prepara(Es, {u"create table Hija (id int not null primary key, nombre nvarchar(20) null default "
                 u"('a(b)'), [otro dato] decimal(10,2) null)"_s});
    auto* forma = Diseña(u"Hija"_s);
    ASSERT_NE(forma, nullptr);
    EXPECT_EQ(forma->Caption(), u"Tabla [Hija]"_s);
    EXPECT_EQ(forma->txtNombreTabla->Text(), u"Hija"_s);
    EXPECT_FALSE(forma->txtNombreTabla->isEnabled());
    EXPECT_EQ(FilaDe(forma, 0), (Fila{u"id"_s, u"8"_s, u"4"_s, u"10"_s, u"0"_s, u"0"_s, u""_s}));
    EXPECT_EQ(FilaDe(forma, 1), (Fila{u"nombre"_s, u"13"_s, u"20"_s, u"0"_s, u"0"_s, u"-1"_s, u"'ab'"_s}));
    EXPECT_EQ(FilaDe(forma, 2), (Fila{u"otro dato"_s, u"5"_s, u"9"_s, u"10"_s, u"2"_s, u"-1"_s, u""_s}));
    EXPECT_EQ(Cambios(), QString());
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    EXPECT_TRUE(Cierra(controls::Answer::No));
    EXPECT_EQ(Cambios(), QString());
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u"¿Desea Guardar los cambios?"_s, 35, u"Quermo"_s}}));
    EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
}

TEST_F(Mano, ANewTableIsTypedAndCreatedOnClosing)
{
    Prepara(En);
    auto* forma = Nueva();
    ASSERT_NE(forma, nullptr);
    EXPECT_EQ(forma->Caption(), u"Tabla [Nueva]"_s);
    EXPECT_FALSE(Cierra(controls::Answer::Yes));
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u"Do you want save the changes?"_s, 35, u"Quermo"_s},
                                      {u"Insert Table Name."_s, 48, u"Quermo"_s}}));
    EXPECT_EQ(QApplication::focusWidget(), forma->txtNombreTabla);
    Escribe(u"Nueva"_s);
    Cambios();
    auto* rejilla = forma->TDBGridTabla;
    PonCelda(rejilla, 0, ColCampo::Nombre, u"a"_s);
    Escribe(u"int"_s);
    Tecla(Qt::Key_Return);
    PonCelda(rejilla, 1, ColCampo::Nombre, u"b"_s);
    PonCelda(rejilla, 1, ColCampo::Predeterminado, u"'x'"_s);
    ClicCelda(rejilla, 1, ColCampo::Nulo);
    EXPECT_TRUE(Cierra(controls::Answer::Yes));
    EXPECT_EQ(
        Cambios(),
        u"BEGIN TRANSACTION\n"
        u"USE Taller\n"
        u"EXEC sp_rename 'Nueva.[]', 'a', 'COLUMN'\n"
        u"EXEC sp_rename 'Nueva.[]', 'b', 'COLUMN'\n"
        u"CREATE TABLE Taller..Nueva (a int·· NOT NULL,\\rb char (10)··NULL CONSTRAINT [DF_Nueva_b] DEFAULT "
        u"('x'))\n"
        u"COMMIT TRANSACTION\n"_s);
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u"Do you want save the changes?"_s, 35, u"Quermo"_s}}));
    Pulsa(u"DTTaller"_s);
    EXPECT_NE(Elemento(u"Nueva"_s), nullptr);
}

TEST_F(Mano, CellsAreTestedAndCorrectedAsTheyAreLeft)
{
    Prepara(Es);
    auto* rejilla = Nueva()->TDBGridTabla;
    const struct
    {
        QString tipo;
        int columna;
        QString tecleado;
        QString queda;
        QString aviso;
    } casos[] = {
        {u"varchar"_s, ColCampo::Longitud, u"abc"_s, u"1"_s, u"Valor de Longitud debe ser de 1 a 8000."_s},
        {u"varchar"_s, ColCampo::Longitud, u"8001"_s, u"8000"_s,
         u"Valor de Longitud debe ser de 1 a 8000."_s},
        {u"varchar"_s, ColCampo::Longitud, u"4001"_s, u"4001"_s, {}},
        {u"varchar"_s, ColCampo::Longitud, u"12kg"_s, u"12"_s, {}},
        {u"nvarchar"_s, ColCampo::Longitud, u"5000"_s, u"4000"_s,
         u"Valor de Longitud debe ser de 1 a 4000."_s},
        {u"nchar"_s, ColCampo::Longitud, u"5000"_s, u"5000"_s, {}},
        {u"decimal"_s, ColCampo::Precision, u"29"_s, u"28"_s, u"Valor de Precisión debe ser de 1 a 28."_s},
        {u"decimal"_s, ColCampo::Precision, u"-3"_s, u"1"_s, u"Valor de Precisión debe ser de 1 a 28."_s},
        {u"decimal"_s, ColCampo::Precision, u"15"_s, u"15"_s, {}},
        {u"decimal"_s, ColCampo::Escala, u"0"_s, u"0"_s, {}},
        {u"decimal"_s, ColCampo::Escala, u"-3"_s, u"1"_s, u"Valor de Escala debe ser de 1 a 28."_s},
        {u"decimal"_s, ColCampo::Escala, u"20"_s, u"18"_s,
         u"Valor de Escala debe estar comprendida entre 0 y 18."_s},
    };
    Avisos();
    int fila = 0;
    for (const auto& caso : casos) {
        SCOPED_TRACE(caso.tecleado.toStdString() + " in " + caso.tipo.toStdString());
        PonCelda(rejilla, fila, ColCampo::Nombre, u"c%1"_s.arg(fila));
        PonCelda(rejilla, fila, ColCampo::Tipo, caso.tipo);
        PonCelda(rejilla, fila, caso.columna, caso.tecleado);
        EXPECT_EQ(rejilla->Columns(caso.columna).Text(), caso.queda);
        EXPECT_EQ(rejilla->Col(), caso.aviso.isEmpty() ? caso.columna + 1 : caso.columna);
        EXPECT_EQ(Avisos(),
                  caso.aviso.isEmpty() ? QList<Aviso>{} : (QList<Aviso>{{caso.aviso, 48, u"Quermo"_s}}));
        Tecla(Qt::Key_Escape);
        ++fila;
    }
    ClicCelda(rejilla, 8, ColCampo::Longitud);
    EXPECT_EQ(rejilla->Columns(ColCampo::Longitud).Text(), u"9"_s) << "15 digits take nine bytes";
}

TEST_F(Mano, ATooLargeNumberIsTheRunTimesOverflow)
{
    Prepara(En);
    auto* rejilla = Nueva()->TDBGridTabla;
    PonCelda(rejilla, 0, ColCampo::Nombre, u"a"_s);
    PonCelda(rejilla, 0, ColCampo::Tipo, u"varchar"_s);
    PonCelda(rejilla, 0, ColCampo::Longitud, u"99999999999"_s);
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u" Error Nº:6 (Overflow)."_s, 48, u"Atención."_s}}));
    EXPECT_EQ(rejilla->Col(), ColCampo::Longitud);
}

TEST_F(Mano, NamesTypesAndDefaultsAreAskedFor)
{
    Prepara(Es);
    auto* rejilla = Nueva()->TDBGridTabla;
    const auto avisa = [this](const QString& texto) {
        EXPECT_EQ(Avisos(), (QList<Aviso>{{texto, 48, u"Quermo"_s}}));
    };
    ClicCelda(rejilla, 0, ColCampo::Longitud);
    Escribe(u"5"_s);
    avisa(u"Introduzca Nombre del campo."_s);
    EXPECT_EQ(rejilla->Col(), ColCampo::Nombre);
    EXPECT_FALSE(rejilla->EditActive());

    PonCelda(rejilla, 0, ColCampo::Nombre, u"a"_s);
    EXPECT_EQ(rejilla->Columns(ColCampo::Tipo).Text(), u"char"_s);
    EXPECT_EQ(rejilla->Columns(ColCampo::Longitud).Text(), u"10"_s);
    PonCelda(rejilla, 0, ColCampo::Tipo, u"nada"_s);
    avisa(u"Su entrada debe coincidir con un elemento de la lista."_s);
    EXPECT_EQ(rejilla->Columns(ColCampo::Tipo).Text(), u"char"_s);

    ClicCelda(rejilla, 0, ColCampo::Nulo);
    Tecla(Qt::Key_Return);
    avisa(u"Inserte valor predeterminado."_s);
    EXPECT_EQ(rejilla->Col(), ColCampo::Predeterminado);
    Tecla(Qt::Key_Return);
    avisa(u"Inserte valor predeterminado."_s);
    EXPECT_EQ(rejilla->Col(), ColCampo::Predeterminado);
    Escribe(u"'x'"_s);
    Tecla(Qt::Key_Return);
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    EXPECT_EQ(rejilla->Col(), ColCampo::Nombre);
    EXPECT_EQ(rejilla->Bookmark(), 1);
}

TEST_F(Mano, MeasuresAreLockedByTheTypeOfTheCurrentRow)
{
    Prepara(Es, {u"create table t (a int null, b decimal(10,2) null, c varchar(9) null)"_s});
    auto* forma = Diseña(u"t"_s);
    auto* rejilla = forma->TDBGridTabla;
    const auto cerradas = [rejilla] {
        QString texto;
        for (const int columna : {ColCampo::Longitud, ColCampo::Precision, ColCampo::Escala})
            texto += rejilla->Columns(columna).Locked() ? u'x' : u'-';
        return texto;
    };
    EXPECT_EQ(cerradas(), u"xxx"_s);
    ClicCelda(rejilla, 0, ColCampo::Longitud);
    Escribe(u"7"_s);
    EXPECT_FALSE(rejilla->EditActive());
    EXPECT_EQ(FilaDe(forma, 0)[2], u"4"_s);
    Tecla(Qt::Key_Return);
    EXPECT_EQ(rejilla->Col(), ColCampo::Precision);
    ClicCelda(rejilla, 1, ColCampo::Nombre);
    EXPECT_EQ(cerradas(), u"x--"_s);
    ClicCelda(rejilla, 2, ColCampo::Nombre);
    EXPECT_EQ(cerradas(), u"-xx"_s);
    ClicCelda(rejilla, 5, ColCampo::Nombre);
    EXPECT_EQ(cerradas(), u"---"_s);
    EXPECT_EQ(Cambios(), QString());
}

TEST_F(Mano, RowsComeAndGoByTheMenuAndTheKey)
{
    Prepara(En, {u"create table t (a int not null primary key, b int null, c int null)"_s});
    auto* forma = Diseña(u"t"_s);
    auto* rejilla = forma->TDBGridTabla;
    const auto nombres = [forma] {
        QStringList lista;
        for (int fila = 0; fila < 6; ++fila)
            lista += forma->Datos.CamposTabla.at(fila, ColCampo::Nombre);
        return lista.join(u',');
    };
    const auto manda = [&](int fila, QAction* entrada) {
        ClicCelda(rejilla, fila, ColCampo::Nombre, Qt::RightButton);
        ClicEntrada(::mdiPrincipal->mnuTabla, entrada);
    };
    manda(1, ::mdiPrincipal->mnuInsertarFila);
    EXPECT_EQ(nombres(), u"a,,b,c,,"_s);
    EXPECT_EQ(rejilla->Bookmark(), 1);
    ClicCelda(rejilla, 4, ColCampo::Nombre);
    Escribe(u"d"_s);
    manda(4, ::mdiPrincipal->mnuInsertarFila);
    EXPECT_EQ(nombres(), u"a,,b,c,,d"_s) << "typed in the row that makes room";
    EXPECT_EQ(FilaDe(forma, 5)[1], u"3"_s);
    respuesta = controls::Answer::Yes;
    manda(5, ::mdiPrincipal->mnuEliminarFila);
    Avisos();
    respuesta = controls::Answer::No;
    manda(3, ::mdiPrincipal->mnuEliminarFila);
    EXPECT_EQ(nombres(), u"a,,b,c,,"_s);
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u"Do you want to delete row?"_s, 292, u"Quermo"_s}}));
    respuesta = controls::Answer::Yes;
    ClicCelda(rejilla, 3, ColCampo::Nombre);
    Tecla(Qt::Key_Delete);
    EXPECT_EQ(nombres(), u"a,,b,,,"_s);
    Avisos();
    ClicCelda(rejilla, 0, ColCampo::Nombre);
    Tecla(Qt::Key_F2);
    Tecla(Qt::Key_Delete);
    EXPECT_EQ(nombres(), u"a,,b,,,"_s);
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u"Do you want to delete row?"_s, 292, u"Quermo"_s},
                                      {u"Field exits in some index. Can't delete it."_s, 48, u"Quermo"_s}}));
    // The row above the first is none; the rows have moved by then.
    manda(0, ::mdiPrincipal->mnuInsertarFila);
    EXPECT_EQ(nombres(), u"a,a,,b,,"_s);
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u" Error Nº:9 (Subscript out of range)."_s, 48, u"Atención."_s}}));
    EXPECT_EQ(Cambios(), QString());
}

TEST_F(Mano, IndexesAreNamedFilledAndDeleted)
{
    Prepara(Es, {u"create table t (a int not null, b int not null, c int null)"_s});
    auto* forma = Diseña(u"t"_s);
    Pagina(forma, 1);
    EXPECT_FALSE(forma->fraIndices->isEnabled());
    const auto nuevo = [&](const QString& nombre) {
        Clic(forma->cmdNuevoIndice);
        EXPECT_EQ(QApplication::focusWidget(), forma->txtNombreIndice);
        Escribe(nombre);
        Tecla(Qt::Key_Return);
        EXPECT_EQ(QApplication::focusWidget(), forma->TDBGridIndices);
    };
    const auto entradas = [&forma] {
        QStringList lista;
        for (int i = 0; i < forma->cboIndices->ListCount(); ++i)
            lista += forma->cboIndices->List(i) + forma->Datos.Indices.at(i, ColIndice::Clase) +
                     forma->Datos.Indices.at(i, ColIndice::Unico) +
                     forma->Datos.Indices.at(i, ColIndice::Agrupado);
        return lista.join(u' ');
    };
    // From the list of the cell, by key: the column that is taken isn't offered again.
    const auto elige = [&](int linea, int bajadas) {
        ClicCelda(forma->TDBGridIndices, linea, ColCampoIndice::Nombre);
        Tecla(Qt::Key_Down, Qt::AltModifier);
        for (int n = 0; n < bajadas; ++n)
            Tecla(Qt::Key_Down);
        Tecla(Qt::Key_Return);
        Tecla(Qt::Key_Down);
    };
    nuevo(u"PK_t"_s);
    respuesta = controls::Answer::No;
    Clic(forma->chkAgrupado);
    EXPECT_EQ(QApplication::focusWidget(), forma->TDBGridIndices);
    respuesta = controls::Answer::Yes;
    Clic(forma->cboGrupoArchivoIndices);
    EXPECT_EQ(Avisos(),
              (QList<Aviso>(2, {u"No puede existir un indice con columnas en blanco. ¿Desea eliminar "
                                u"el indice?"_s,
                                292, u"Quermo"_s})));
    EXPECT_EQ(entradas(), QString());
    EXPECT_FALSE(forma->fraIndices->isEnabled());
    nuevo(u"PK_t"_s);
    elige(0, 0);
    elige(1, 0);
    Clic(forma->optClavePrimaria);
    EXPECT_TRUE(forma->chkIndiceUnico->isChecked());
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    nuevo(u"otro indice"_s);
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    elige(0, 2);
    Clic(forma->chkAgrupado);
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    ASSERT_EQ(entradas(), u"PK_tP10 otro indiceI01"_s);
    EXPECT_EQ(forma->Datos.CamposIndice(0).at(0, 1) + forma->Datos.CamposIndice(0).at(1, 1) +
                  forma->Datos.CamposIndice(1).at(0, 1),
              u"abc"_s);
    EXPECT_EQ(Avisos(), QList<Aviso>{});

    Clic(forma->txtFillFactor);
    Escribe(u"mucho"_s);
    Tecla(Qt::Key_Tab);
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u"Valor no numérico."_s, 48, u"Quermo"_s}}));
    EXPECT_EQ(QApplication::focusWidget(), forma->txtFillFactor);
    Tecla(Qt::Key_A, Qt::ControlModifier);
    Escribe(u"80"_s);
    EXPECT_TRUE(Cierra(controls::Answer::Yes));
    EXPECT_EQ(Cambios(),
              u"BEGIN TRANSACTION\n"
              u"USE Taller\n"
              u"ALTER TABLE Taller..t WITH NOCHECK ADD CONSTRAINT PK_t PRIMARY KEY··NONCLUSTERED··(a,b)\\r\n"
              u"CREATE··CLUSTERED··INDEX [otro indice]··ON Taller..t··(c)\\r WITH FILLFACTOR = 80\n"
              u"COMMIT TRANSACTION\n"_s);

    forma = Diseña(u"t"_s);
    Pagina(forma, 1);
    EXPECT_EQ(entradas(), u"otro indiceI01 PK_tP10"_s);
    Clic(forma->cmdEliminarIndice);
    EXPECT_EQ(entradas(), u"PK_tI01"_s) << "only the name moves up";
    Clic(forma->cmdEliminarIndice);
    EXPECT_EQ(entradas(), QString());
    EXPECT_FALSE(forma->fraIndices->isEnabled());
}

TEST_F(Mano, AClickThatAQuestionCameBetweenDoesNoMore)
{
    Prepara(En, {u"create table t (a int not null constraint PK_t primary key)"_s});
    auto* forma = Diseña(u"t"_s);
    Pagina(forma, 1);
    Clic(forma->cmdNuevoIndice);
    Escribe(u"vacio"_s);
    Tecla(Qt::Key_Return);
    respuesta = controls::Answer::No;
    const auto pregunta = [this] { return Avisos().size(); };
    Pagina(forma, 0);
    EXPECT_EQ(pregunta(), 1);
    EXPECT_EQ(forma->SSTabIndicesRelaciones->currentIndex(), 1) << "the answer was to stay";
    EXPECT_EQ(QApplication::focusWidget(), forma->TDBGridIndices);
    Clic(forma->chkAgrupado);
    EXPECT_EQ(pregunta(), 1);
    EXPECT_FALSE(forma->chkAgrupado->isChecked());
    respuesta = controls::Answer::Yes;
    Clic(forma->cmdEliminarIndice);
    EXPECT_EQ(pregunta(), 1);
    EXPECT_EQ(forma->cboIndices->Text(), u"PK_t"_s) << "only the empty index goes";
    EXPECT_FALSE(forma->cmdEliminarIndice->isDown());
    Clic(forma->chkAgrupado);
    EXPECT_FALSE(forma->chkAgrupado->isChecked()) << "the next click is one again";
}

TEST_F(Mano, AMessageHoldsAClickOnlyWhereTheFocusIsHeld)
{
    Prepara(En, {u"create table t (a int not null constraint PK_t primary key, b int null)"_s});
    auto* forma = Diseña(u"t"_s);
    ClicCelda(forma->TDBGridTabla, 1, ColCampo::Predeterminado);
    Clic(forma->cmdEliminarFila);
    EXPECT_EQ(Avisos().size(), 1) << "the message, and not the button's question";
    Pagina(forma, 1);
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u"Insetrt default value."_s, 48, u"Quermo"_s}}));
    EXPECT_EQ(forma->SSTabIndicesRelaciones->currentIndex(), 1);
    Clic(forma->txtFillFactor);
    Escribe(u"x"_s);
    Pagina(forma, 2);
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u"Not numeric value."_s, 48, u"Quermo"_s}}));
    EXPECT_EQ(forma->SSTabIndicesRelaciones->currentIndex(), 1);
    EXPECT_EQ(QApplication::focusWidget(), forma->txtFillFactor);
    Tecla(Qt::Key_A, Qt::ControlModifier);
    Tecla(Qt::Key_Backspace);
    EXPECT_TRUE(Cierra(controls::Answer::No));
}

TEST_F(Mano, AClickWhoseReleaseTheBoxHadStillClosesTheWindow)
{
    Prepara(En, {u"create table t (a int not null, b int null)"_s});
    auto* forma = Diseña(u"t"_s);
    ClicCelda(forma->TDBGridTabla, 1, ColCampo::Predeterminado);
    QWidget* marco = forma->parentWidget();
    QStyleOptionTitleBar titulo;
    titulo.initFrom(marco);
    titulo.titleBarFlags = marco->windowFlags();
    titulo.subControls = QStyle::SC_All;
    titulo.rect.setHeight(marco->style()->pixelMetric(QStyle::PM_TitleBarHeight, &titulo, marco));
    const QPoint aspa =
        marco->mapTo(&*::mdiPrincipal,
                     marco->style()
                         ->subControlRect(QStyle::CC_TitleBar, &titulo, QStyle::SC_TitleBarCloseButton, marco)
                         .center());
    auto* ventana = ::mdiPrincipal->windowHandle();
    QList<int> estilos;
    controls::setMessageBoxAnswerer([&](const QString&, int estilo, const QString&) {
        estilos += estilo;
        if (estilos.size() == 1) { // the mouse is over the box when it is let go
            QEvent fuera(QEvent::Leave);
            QCoreApplication::sendEvent(marco, &fuera);
            QTest::mouseRelease(ventana, Qt::LeftButton, {}, QPoint(1, 1));
        }
        return controls::Answer::Cancel;
    });
    QTest::mouseMove(ventana, aspa);
    QTest::mousePress(ventana, Qt::LeftButton, {}, aspa);
    QTest::qWait(10);
    controls::setMessageBoxAnswerer([](const QString&, int, const QString&) { return controls::Answer::No; });
    EXPECT_EQ(estilos, (QList<int>{48, 48, 35})) << "as it is left, and as it closes";
}

TEST_F(Mano, AButtonsShortcutTakesInWhatIsTypedFirst)
{
    Prepara(Es, {u"create table t (a int not null constraint PK_t primary key)"_s});
    auto* forma = Diseña(u"t"_s);
    Pagina(forma, 1);
    Clic(forma->txtFillFactor);
    Tecla(Qt::Key_A, Qt::ControlModifier);
    Escribe(u"80"_s);
    Tecla(Qt::Key_N, Qt::AltModifier);
    QTest::qWait(200); // the button stays pressed for a while
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    EXPECT_EQ(forma->Datos.Indices.at(0, ColIndice::Relleno), u"80"_s);
    EXPECT_EQ(QApplication::focusWidget(), forma->txtNombreIndice);
    Escribe(u"vacio"_s);
    Tecla(Qt::Key_Return);
    respuesta = controls::Answer::Yes;
    Tecla(Qt::Key_E, Qt::AltModifier);
    QTest::qWait(200);
    EXPECT_EQ(Avisos().size(), 1);
    EXPECT_EQ(forma->cboIndices->Text(), u"PK_t"_s) << "only the empty index goes";
}

TEST_F(Mano, ARelationThatGoesWithItsColumnLeavesTheList)
{
    Prepara(En, {u"create table p (p int not null primary key)"_s,
                 u"create table t (id int not null constraint UQ_t unique, jefe int null constraint FK_a "
                 u"references t(id), p int null constraint FK_p references p(p))"_s});
    auto* forma = Diseña(u"t"_s);
    ASSERT_EQ(forma->cboRelaciones->List(0), u"FK_a"_s);
    Pagina(forma, 1);
    Clic(forma->cmdEliminarIndice);
    Pagina(forma, 0);
    ClicCelda(forma->TDBGridTabla, 0, ColCampo::Nombre);
    respuesta = controls::Answer::Yes;
    Tecla(Qt::Key_Delete);
    Pagina(forma, 2);
    EXPECT_EQ(forma->cboRelaciones->ListCount(), 1);
    EXPECT_EQ(forma->txtNombreRelacion->Text(), u"FK_p"_s);
    EXPECT_EQ(forma->TDBGridRelaciones->Columns(ColCampoRelacion::Propia).Text(), u"p"_s);
}

TEST_F(Mano, RelationsAreNamedFilledAndDeleted)
{
    Prepara(Es, {u"create table Padre (p int not null primary key, q int null)"_s,
                 u"create table t (a int null, b int null)"_s});
    auto* forma = Diseña(u"t"_s);
    Pagina(forma, 2);
    auto* rejilla = forma->TDBGridRelaciones;
    const auto elige = [&](int linea, int columna, int bajadas) {
        ClicCelda(rejilla, linea, columna);
        Tecla(Qt::Key_F4);
        for (int n = 0; n < bajadas; ++n)
            Tecla(Qt::Key_Down);
        Tecla(Qt::Key_Return);
        Tecla(Qt::Key_Return);
    };
    Clic(forma->cmdNuevaRelacion);
    Escribe(u"FK_t"_s);
    Tecla(Qt::Key_Tab);
    EXPECT_EQ(QApplication::focusWidget(), forma->cboExterna);
    elige(0, ColCampoRelacion::Propia, 0);
    EXPECT_EQ(Avisos().value(0), (Aviso{u"Introduzca tabla externa."_s, 48, u"Quermo"_s}));
    BuscaExterna(forma, u"Padre"_s);
    elige(0, ColCampoRelacion::Propia, 1);
    respuesta = controls::Answer::No;
    Clic(forma->txtNombreRelacion);
    EXPECT_EQ(Avisos(),
              (QList<Aviso>{{u"No puede existir una relación con columnas en blanco. ¿Desea eliminar la "
                             u"relación?"_s,
                             292, u"Quermo"_s}}));
    EXPECT_EQ(QApplication::focusWidget(), rejilla);
    elige(0, ColCampoRelacion::Externa, 0);
    EXPECT_EQ(forma->Datos.CamposRelacion(0).at(0, 1) + forma->Datos.CamposRelacion(0).at(0, 2) +
                  forma->Datos.CamposRelacion(0).at(0, 3),
              u"bpPadre"_s);
    Clic(forma->cmdNuevaRelacion);
    Escribe(u"vacia"_s);
    Tecla(Qt::Key_Return);
    Clic(forma->cmdEliminarRelacion);
    EXPECT_EQ(forma->cboRelaciones->ListCount(), 1);
    EXPECT_EQ(forma->txtNombreRelacion->Text(), u"FK_t"_s);
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    EXPECT_TRUE(Cierra(controls::Answer::Yes));
    EXPECT_EQ(Cambios(), u"BEGIN TRANSACTION\n"
                         u"USE Taller\n"
                         u"Use Taller\n"
                         u"ALTER TABLE t ADD CONSTRAINT [FK_t] FOREIGN KEY (b ) REFERENCES Padre (p)\n"
                         u"COMMIT TRANSACTION\n"_s);
    forma = Diseña(u"t"_s);
    Pagina(forma, 2);
    EXPECT_EQ(forma->cboExterna->Text(), u"Padre"_s);
    Clic(forma->cmdEliminarRelacion);
    EXPECT_FALSE(forma->fraRelaciones->isEnabled());
    EXPECT_TRUE(Cierra(controls::Answer::Yes));
    EXPECT_EQ(Cambios(), u"BEGIN TRANSACTION\n"
                         u"USE Taller\n"
                         u"ALTER TABLE Taller..t DROP CONSTRAINT FK_t\n"
                         u"COMMIT TRANSACTION\n"_s);
}

TEST_F(Mano, WhatIsStillBeingTypedIsTakenInOnClosing)
{
    Prepara(En, {u"create table t (a int null)"_s});
    auto* forma = Diseña(u"t"_s);
    ClicCelda(forma->TDBGridTabla, 1, ColCampo::Nombre);
    Escribe(u"nuevo"_s);
    EXPECT_TRUE(Cierra(controls::Answer::Yes));
    EXPECT_TRUE(Cambios().contains(u"ALTER TABLE Taller..t··ADD nuevo char (10)··NOT NULL"_s))
        << "the row's type came with it";

    forma = Diseña(u"t"_s);
    Pagina(forma, 1);
    Clic(forma->cmdNuevoIndice);
    Escribe(u"i"_s);
    EXPECT_FALSE(Cierra(controls::Answer::Cancel));
    EXPECT_EQ(forma->cboIndices->Text(), u"i"_s);
    EXPECT_EQ(controls::mousePointer(), controls::Pointer::Default);
    EXPECT_EQ(QApplication::focusWidget(), forma->TDBGridIndices) << "the page stays";
    PonCelda(forma->TDBGridIndices, 0, ColCampoIndice::Nombre, u"a"_s);
    Clic(forma->txtFillFactor);
    Escribe(u"x"_s);
    Avisos();
    EXPECT_FALSE(Cierra(controls::Answer::No));
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u"Not numeric value."_s, 48, u"Quermo"_s}}));
    Tecla(Qt::Key_Backspace);
    EXPECT_TRUE(Cierra(controls::Answer::No));

    forma = Diseña(u"t"_s);
    Pagina(forma, 1);
    Clic(forma->cmdNuevoIndice);
    Escribe(u"i"_s);
    Tecla(Qt::Key_Return);
    PonCelda(forma->TDBGridIndices, 0, ColCampoIndice::Nombre, u"a"_s);
    ClicCelda(forma->TDBGridIndices, 1, ColCampoIndice::Nombre);
    Escribe(u"nuevo"_s); // the second line of the index, not left yet
    Cambios();
    EXPECT_TRUE(Cierra(controls::Answer::Yes));
    EXPECT_TRUE(Cambios().contains(u"nuevo"_s));
}

TEST_F(Mano, TheFilegroupOfTheTableIsShown)
{
    const QTemporaryDir carpeta;
    const QString archivo = u"C:"_s + carpeta.filePath(u"sec.ndf"_s).replace(u'/', u'\\');
    Prepara(
        Es,
        {u"alter database Taller add filegroup SEC"_s,
         u"alter database Taller add file (name = sec, filename = '%1', size = 1MB) to filegroup SEC"_s.arg(
             archivo),
         u"create table t (a int null) on SEC"_s, u"create table u (a int null)"_s});
    for (const auto& [tabla, grupo] : {std::pair(u"t"_s, u"SEC"_s), std::pair(u"u"_s, u"PRIMARY"_s)}) {
        auto* forma = Diseña(tabla);
        ASSERT_NE(forma, nullptr);
        EXPECT_EQ(forma->cboGrupoArchivoDatos->Text(), grupo);
        EXPECT_TRUE(Cierra(controls::Answer::No));
    }
    Ejecuta({u"use master"_s, u"drop database Taller"_s}); // before the folder of its file goes
}

} // namespace pruebas
