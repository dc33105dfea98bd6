#include "backup/frmRestaurarCopia.h"

#include "backup/Copia.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"
#include "platform/controls/Keys.h"
#include "platform/controls/Pointer.h"

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

controls::Slot<formularios::frmRestaurarCopia> frmRestaurarCopia;

namespace formularios {

frmRestaurarCopia::frmRestaurarCopia()
{
    setupUi(this);
    constexpr int LetrasNombre = 24;
    constexpr int LetrasRuta = 60;
    TDBGridFicheros->setColumnCount(ColFichero::NombreFisico + 1);
    TDBGridFicheros->Columns(ColFichero::Nombre).setLocked(true);
    const int letra = TDBGridFicheros->fontMetrics().averageCharWidth();
    TDBGridFicheros->Columns(ColFichero::Nombre).setWidth(LetrasNombre * letra);
    TDBGridFicheros->Columns(ColFichero::NombreFisico).setWidth(LetrasRuta * letra);
    connect(DriveUbicacion, &controls::DriveList::Change, this, &frmRestaurarCopia::DriveUbicacion_Change);
    connect(DirUbicacion, &controls::FolderList::Change, this, &frmRestaurarCopia::DirUbicacion_Change);
    connect(DirUbicacion, &controls::FolderList::OpenFailed, this, [](const basic::RuntimeError& error) {
        MuestraError(QString(), u"DirUbicacion_Change"_s, error.number(), error.description());
    });
    connect(FileUbicacion, &controls::FileList::Click, this, &frmRestaurarCopia::FileUbicacion_Click);
    connect(TDBGridFicheros, &controls::DataGrid::KeyPress, this,
            &frmRestaurarCopia::TDBGridFicheros_KeyPress);
    connect(cmdAceptar, &QPushButton::clicked, this, &frmRestaurarCopia::cmdAceptar_Click);
    connect(cmdCancelar, &QPushButton::clicked, this, &frmRestaurarCopia::cmdCancelar_Click);
}

void frmRestaurarCopia::Form_Load()
try {
    FileUbicacion->setPath(DirUbicacion->Path());
    CargaBD();
    cmdAceptar->setEnabled(false);
} catch (...) {
    InformaError(u"Form_Load"_s);
}

void frmRestaurarCopia::Form_Activate()
try {
    setTop(0);
    setLeft(0);
    PonIdioma();
} catch (...) {
    InformaError(u"Form_Activate"_s);
}

void frmRestaurarCopia::PonIdioma()
try {
    PonTexto(this, u"Restaurar copia seguridad"_s, u"Restore backup"_s);
    PonTexto(cmdAceptar, u"&Restaurar"_s, u"&Restore"_s);
    PonTexto(cmdCancelar, u"&Cancelar"_s, u"&Cancel"_s);
    PonTexto(fraBaseDatos, u" Base de Datos "_s, u" Database "_s);
    PonTexto(fraOrigen, u" Origen "_s, u" Origin "_s);
    PonCabecera(TDBGridFicheros, ColFichero::Nombre, u"Nombre"_s, u"Name"_s);
    PonCabecera(TDBGridFicheros, ColFichero::NombreFisico, u"Nombre fisico"_s, u"Fisic Name"_s);
} catch (...) {
    InformaError(u"PonIdioma"_s);
}

void frmRestaurarCopia::CargaBD()
try {
    if (const int actual = CargaBases(cboBD, BaseDatosActual); actual >= 0)
        cboBD->setListIndex(actual);
    controls::setMousePointer(controls::Pointer::Default);
} catch (...) {
    InformaErrorYPuntero(u"CargaBD"_s);
}

void frmRestaurarCopia::DriveUbicacion_Change()
try {
    DirUbicacion->setPath(DriveUbicacion->Drive());
} catch (...) {
    InformaError(u"DriveUbicacion_Change"_s);
}

void frmRestaurarCopia::DirUbicacion_Change()
try {
    FileUbicacion->setPath(DirUbicacion->Path());
} catch (...) {
    InformaError(u"DirUbicacion_Change"_s);
}

QString frmRestaurarCopia::Archivo() const
{
    QString ruta = FileUbicacion->Path();
    if (!ruta.endsWith(u'\\'))
        ruta += u'\\';
    return ruta +
           (FileUbicacion->ListIndex() < 0 ? QString() : FileUbicacion->List(FileUbicacion->ListIndex()));
}

void frmRestaurarCopia::FileUbicacion_Click()
try {
    if (FileUbicacion->ListIndex() == -1)
        return;
    const QString entrada = FileUbicacion->List(FileUbicacion->ListIndex());
    if (entrada.trimmed().isEmpty())
        return;
    ado::Recordset dispositivos;
    CreaRecordset(ConexionSQL, dispositivos,
                  u"select * from master.dbo.sysdevices where name = '"_s + entrada + u"'"_s);
    Ejecuta_SQL(u"RESTORE VERIFYONLY FROM DISK = '"_s + Archivo() + u"'"_s);
    CapturaFicheros_SQL(Archivo());
} catch (...) {
    InformaError(u"FileUbicacion_Click"_s);
}

void frmRestaurarCopia::CapturaFicheros_SQL(const QString& archivo)
{
    ado::Recordset ficheros;
    if (!CreaRecordset(ConexionSQL, ficheros, u" RESTORE FILELISTONLY FROM DISK = '"_s + archivo + u"'"_s)) {
        NumeroFicheros = 0;
        return;
    }
    Ficheros.Redim(static_cast<int>(std::max<qint64>(ficheros.RecordCount() - 1, 0)), ColFichero::Ultima);
    int fila = 0;
    for (; !ficheros.Eof(); ficheros.MoveNext(), ++fila) {
        Ficheros(fila, ColFichero::Nombre) = TextoCampo(ficheros, 0);
        Ficheros(fila, ColFichero::NombreFisico) = TextoCampo(ficheros, 1);
    }
    TDBGridFicheros->setArray(&Ficheros);
    TDBGridFicheros->ReBind();
    TDBGridFicheros->Refresh();
    cmdAceptar->setEnabled(true);
    NumeroFicheros = fila;
}

void frmRestaurarCopia::TDBGridFicheros_KeyPress(int& KeyAscii)
try {
    if (KeyAscii != controls::keyEnter)
        return;
    KeyAscii = 0;
    const int columna = TDBGridFicheros->Col();
    if (columna != ColFichero::NombreFisico)
        return TDBGridFicheros->setCol(columna + 1);
    const int fila = TDBGridFicheros->Bookmark();
    TDBGridFicheros->setBookmark(fila == NumeroFicheros - 1 ? 0 : fila + 1);
} catch (...) {
    InformaError(u"TDBGridFicheros_KeyPress"_s);
}

void frmRestaurarCopia::cmdAceptar_Click()
try {
    if (!HayBaseElegida(cboBD))
        return;
    controls::setMousePointer(controls::Pointer::Hourglass);
    TDBGridFicheros->setEditActive(false);
    // A database in which the session stands can't be restored.
    Ejecuta_SQL(cboBD->Text().toUpper() == u"MASTER"_s ? u"use msdb"_s : u"use master"_s);
    Ejecuta_SQL(SentenciaRestauracion(cboBD->Text(), Archivo(), Ficheros, NumeroFicheros));
    controls::setMousePointer(controls::Pointer::Default);
    MuestraMensaje(u"Restauración realizada con exito."_s, u"Restore realized successfully"_s);
    Unload();
} catch (...) {
    InformaErrorYPuntero(u"cmdAceptar_Click"_s);
}

void frmRestaurarCopia::cmdCancelar_Click()
{
    Unload();
}

} // namespace formularios
