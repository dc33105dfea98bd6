// Script files as the menu loads and saves them, and what the keys do to texts in the editors.
#include "Consola.h"

#include "browser/frmAdministrador.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "platform/controls/FileDialog.h"
#include "query/ArchivoScript.h"
#include "query/frmAnalizadorConsultas.h"
#include "query/frmProcedimiento.h"
#include "query/frmVista.h"

#include <QFile>
#include <QKeyEvent>
#include <QTemporaryDir>
#include <QTest>

#include <cstdlib>

#include <fcntl.h>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {

class Guiones : public Consola
{
protected:
    void SetUp() override
    {
        Consola::SetUp();
        controls::setFileDialogAnswerer([this](bool, const QString&) { return elegido; });
        ArrancaYConecta(Es);
    }

    void TearDown() override
    {
        controls::setFileDialogAnswerer({});
        Avisos();
        if (ConexionSQL.State() != 0)
            ConexionSQL.Execute(u"use master"_s);
        Consola::TearDown();
    }

    /// A database with a view and a procedure, open in the browser.
    void CreaObjetos()
    {
        for (const QString& sentencia :
             {u"if db_id('Guiones') is not null drop database Guiones"_s, u"create database Guiones"_s,
              u"use Guiones"_s, vista, procedimiento, u"use master"_s})
            ConexionSQL.Execute(sentencia);
        Abre(::mdiPrincipal->mnuAdministrador);
    }

    /// Right click on an object of a folder, then an entry of the menu.
    void Manda(const QString& carpeta, const QString& objeto, QAction* entrada)
    {
        Pulsa(carpeta);
        auto* lista = ::frmAdministrador->ltvTablas;
        const auto* elemento = Elemento(objeto);
        ASSERT_NE(elemento, nullptr) << objeto.toStdString();
        const QPoint punto = lista->itemRect(elemento).center();
        ::frmAdministrador->ltvTablas_MouseDown(2, 0, punto.x(), punto.y());
        ::mdiPrincipal->mnuBaseDatos->close();
        Abre(entrada);
    }

    static void Escribe(const QString& nombre, const QByteArray& bytes)
    {
        QFile archivo(nombre);
        ASSERT_TRUE(archivo.open(QIODevice::WriteOnly));
        archivo.write(bytes);
    }

    static void Deshaz(controls::SqlEditor* editor)
    {
        QTest::mouseClick(editor->viewport(), Qt::LeftButton, {}, {60, 10});
        QTest::keyClick(editor, Qt::Key_Z, Qt::ControlModifier);
    }

    const QString vista = u"create view Ver as select 1 as uno"_s;
    const QString procedimiento = u"create procedure Haz as select 1 as uno"_s;
    const QTemporaryDir carpeta;
    QString elegido;
};

TEST_F(Guiones, AFileThatCannotBeOpenedMakesNoFormAndSendsNothing)
{
    elegido = carpeta.filePath(u"no/hay.sql"_s);
    for (auto* entrada : {::mdiPrincipal->mnuAbrir, ::mdiPrincipal->mnuGuardar}) {
        entrada->trigger();
        EXPECT_EQ(Avisos(),
                  (QList<Aviso>{{u" Error Nº:76 (No se encuentra la ruta)."_s, 48, u"Atención."_s}}));
        EXPECT_FALSE(::frmAnalizadorConsultas.exists());
        EXPECT_EQ(Transcripcion(), QString());
    }
}

TEST_F(Guiones, ASaveWithoutRoomSaysSo)
{
    Abre(::mdiPrincipal->mnuAnalizadorConsultas);
    const QString texto = u"select 1\r\n"_s.repeated(300);
    forma()->txtSQL->setText(texto);
    elegido = u"/dev/full"_s;
    ::mdiPrincipal->mnuGuardar->trigger();
    EXPECT_EQ(Avisos(), (QList<Aviso>{{u" Error Nº:61 (Disco lleno)."_s, 48, u"Atención."_s}}));
    EXPECT_EQ(forma()->txtSQL->Text(), texto);
}

TEST_F(Guiones, AReadErrorLeavesTheLinesReadSoFar)
{
    const int mando = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(mando >= 0 && grantpt(mando) == 0 && unlockpt(mando) == 0);
    {
        QFile terminal(QString::fromLatin1(ptsname(mando)));
        ASSERT_TRUE(terminal.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
        terminal.write("select 1\nselect 2\nsel");
    }
    const ScriptLeido leido = LeeScript(basic::InputFile(basic::Descriptor(mando)));
    EXPECT_EQ(leido.texto, u"select 1\r\nselect 2\r\n"_s);
    EXPECT_TRUE(leido.error && leido.error->number() == basic::error::DeviceIo);

    Abre(::mdiPrincipal->mnuAnalizadorConsultas);
    forma()->txtSQL->setText(u"otra"_s);
    elegido = u"/proc/self/mem"_s; // opens, and fails at its first byte
    ::mdiPrincipal->mnuAbrir->trigger();
    EXPECT_EQ(Avisos(),
              (QList<Aviso>{{u" Error Nº:57 (Error de E/S de dispositivo)."_s, 48, u"Atención."_s}}));
    EXPECT_EQ(forma()->txtSQL->Text(), QString());
}

TEST_F(Guiones, AltAndALetterNeverChangeAViewThatIsAccepted)
{
    CreaObjetos();
    Manda(u"DVGuiones"_s, u"Ver"_s, ::mdiPrincipal->mnuDiseño);
    auto* editor = ::frmVista->txtSQL;
    QTest::mouseClick(editor->viewport(), Qt::LeftButton, {}, {60, 10});
    const QList<std::pair<int, QString>> teclas{
        {Qt::Key_A, u"a"_s}, {Qt::Key_Q, u"q"_s}, {Qt::Key_V, u"v"_s}, {Qt::Key_1, u"1"_s}};
    for (const auto& [tecla, texto] : teclas) {
        QKeyEvent pulsacion(QEvent::KeyPress, tecla, Qt::AltModifier, texto);
        QApplication::sendEvent(editor, &pulsacion);
    }
    EXPECT_EQ(editor->Text(), vista);
    auto* aceptar = ::frmVista->cmdAceptar;
    QTest::mouseClick(aceptar, Qt::LeftButton, {}, aceptar->rect().center());
    EXPECT_EQ(Avisos(), QList<Aviso>{});
    Manda(u"DVGuiones"_s, u"Ver"_s, ::mdiPrincipal->mnuDiseño);
    EXPECT_EQ(::frmVista->txtSQL->Text(), vista);
}

TEST_F(Guiones, UndoNeverGoesBehindALoadedText)
{
    CreaObjetos();
    Manda(u"DVGuiones"_s, u"Ver"_s, ::mdiPrincipal->mnuDiseño);
    Deshaz(::frmVista->txtSQL);
    EXPECT_EQ(::frmVista->txtSQL->Text(), vista);
    ::frmVista->Unload();
    Manda(u"DPGuiones"_s, u"Haz"_s, ::mdiPrincipal->mnuDiseño);
    Deshaz(::frmProcedimiento->txtSQL);
    EXPECT_EQ(::frmProcedimiento->txtSQL->Text(), procedimiento);
    ::frmProcedimiento->Unload();
    Manda(u"DVGuiones"_s, u"Ver"_s, ::mdiPrincipal->mnuVerRegistros);
    Deshaz(forma()->txtSQL);
    EXPECT_EQ(forma()->txtSQL->Text(), u"select * from Ver"_s);
    elegido = carpeta.filePath(u"uno.sql"_s);
    Escribe(elegido, "select 2\r\n");
    ::mdiPrincipal->mnuAbrir->trigger();
    QTest::keyClicks(forma()->txtSQL, u"--"_s);
    for (int i = 0; i < 3; ++i)
        Deshaz(forma()->txtSQL);
    EXPECT_EQ(forma()->txtSQL->Text(), u"select 2\r\n"_s);
}

} // namespace pruebas
