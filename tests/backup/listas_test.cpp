// The lists of the file system, and the folder picker.
#include "Consola.h"
#include "Mano.h"

#include "backup/frmUbicacion.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "platform/controls/FileLists.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>

#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::Literals::StringLiterals;
using namespace pruebas::mano;

namespace pruebas {

class Listas : public Consola
{
protected:
    QTemporaryDir carpeta;
    void Haz(const QByteArray& nombre) const
    {
        ASSERT_EQ(::mkdir((carpeta.path().toUtf8() + '/' + nombre).constData(), 0700), 0)
            << nombre.toStdString();
    }
    static QStringList Entradas(const controls::FolderList& lista)
    {
        QStringList nombres;
        for (int i = 0; lista.count() + lista.ListIndex() - lista.currentRow() > i; ++i)
            nombres += lista.List(i).section(u'\\', -1);
        return nombres;
    }
};

TEST_F(Listas, PathsHaveTheServersForm)
{
    EXPECT_EQ(controls::shownPath(u"/"_s), u"C:\\"_s);
    EXPECT_EQ(controls::shownPath(u"/a/b c/"_s), u"C:\\a\\b c"_s);
    EXPECT_EQ(controls::localPath(u"C:"_s), u"/"_s);
    EXPECT_EQ(controls::localPath(u"C:\\"_s), u"/"_s);
    EXPECT_EQ(controls::localPath(u"C:\\a\\b c"_s), u"/a/b c"_s);
}

TEST_F(Listas, OddFoldersAreShownOrLeftOutAndNeverBreakTheList)
{
    for (const char* nombre : {"uno", "dos huecos", "o'brien", ".oculta", "con\\barra",
                               "ma\xf1"
                               "ana"})
        Haz(nombre);
    controls::FolderList lista;
    int cambios = 0;
    QObject::connect(&lista, &controls::FolderList::Change, [&cambios] { ++cambios; });
    const QString ruta = controls::shownPath(carpeta.path());
    lista.setPath(ruta);
    EXPECT_EQ(cambios, 1);
    EXPECT_EQ(Entradas(lista), (QStringList{u"dos huecos"_s, u"o'brien"_s, u"uno"_s}));
    EXPECT_EQ(lista.ListIndex(), -1);
    EXPECT_EQ(lista.List(-1), ruta);
    EXPECT_EQ(lista.List(-2), ruta.section(u'\\', 0, -2));
    const auto profundidad = static_cast<int>(ruta.count(u'\\'));
    EXPECT_EQ(lista.List(-profundidad - 1), u"C:\\"_s);
    for (const int fuera : {3, -profundidad - 2})
        EXPECT_THROW(lista.List(fuera), basic::RuntimeError);
    EXPECT_THROW(lista.setPath(ruta + u"\\nada"_s), basic::RuntimeError);
    EXPECT_EQ(lista.Path(), ruta) << "the list stays";
    lista.setPath(ruta);
    EXPECT_EQ(cambios, 1) << "the same folder again is no change";
}

TEST_F(Listas, AFolderThatVanishesIsToldAndManyAreShown)
{
    for (int n = 0; n < 10'000; ++n)
        Haz(QByteArray::number(n));
    controls::FolderList lista;
    lista.setPath(controls::shownPath(carpeta.path()));
    EXPECT_EQ(Entradas(lista).size(), 10'000);
    int errores = 0;
    QObject::connect(&lista, &controls::FolderList::OpenFailed, [&errores](const basic::RuntimeError& error) {
        EXPECT_EQ(error.number(), basic::error::PathNotFound);
        ++errores;
    });
    lista.setCurrentRow(lista.count() - 1);
    ASSERT_EQ(::rmdir(controls::localPath(lista.List(lista.ListIndex())).toUtf8().constData()), 0);
    QTest::keyClick(&lista, Qt::Key_Return);
    EXPECT_EQ(errores, 1);
    EXPECT_EQ(lista.Path(), controls::shownPath(carpeta.path()));
}

TEST_F(Listas, FilesAreListedWithTheirSizes)
{
    QFile archivo(carpeta.filePath(u"a b.bak"_s));
    ASSERT_TRUE(archivo.open(QIODevice::WriteOnly) && archivo.write(QByteArray(2048, 'x')) > 0);
    archivo.close();
    Haz("carpeta");
    controls::FileList lista;
    int pulsadas = 0;
    QObject::connect(&lista, &controls::FileList::Click, [&pulsadas] { ++pulsadas; });
    lista.setPath(controls::shownPath(carpeta.path()));
    ASSERT_EQ(lista.topLevelItemCount(), 1);
    EXPECT_EQ(lista.ListIndex(), -1);
    EXPECT_EQ(lista.List(0), u"a b.bak"_s);
    EXPECT_TRUE(lista.topLevelItem(0)->text(1).startsWith(u"2"_s));
    EXPECT_TRUE(Qt::Alignment(lista.topLevelItem(0)->textAlignment(1)).testFlag(Qt::AlignRight));
    EXPECT_FALSE(Qt::Alignment(lista.topLevelItem(0)->textAlignment(2)).testFlag(Qt::AlignRight));
    EXPECT_EQ(pulsadas, 0) << "filling is no choice";
    lista.setCurrentItem(lista.topLevelItem(0));
    EXPECT_EQ(pulsadas, 1);
}

TEST_F(Listas, OneClickPicksAFolderAndOnlyTheButtonsAnswer)
{
    Haz("elegida");
    Arranca(En);
    ASSERT_TRUE(QTest::qWaitForWindowActive(&*::mdiPrincipal));
    const auto abre = [this] {
        ::frmUbicacion->Show();
        ::frmUbicacion->DirUbicacion->setPath(controls::shownPath(carpeta.path()));
        auto* lista = ::frmUbicacion->DirUbicacion;
        Clic(lista->viewport(), lista->visualItemRect(lista->item(lista->count() - 1)).center());
    };
    abre();
    const QString elegida = controls::shownPath(carpeta.filePath(u"elegida"_s));
    EXPECT_EQ(::frmUbicacion->Caption(), u"Ubicación Archivo"_s);
    EXPECT_EQ(::frmUbicacion->lblUbicacion->text(), elegida);
    EXPECT_EQ(::frmUbicacion->DirUbicacion->Path(), controls::shownPath(carpeta.path()))
        << "chosen, not opened";
    Clic(::frmUbicacion->cmdAceptar);
    EXPECT_EQ(RutaUbicacion, elegida);
    abre();
    RutaUbicacion = u"antes"_s;
    ::frmUbicacion->Unload();
    EXPECT_EQ(RutaUbicacion, u"antes"_s);
    abre();
    Clic(::frmUbicacion->cmdCancelar);
    EXPECT_EQ(RutaUbicacion, QString());
}

} // namespace pruebas
