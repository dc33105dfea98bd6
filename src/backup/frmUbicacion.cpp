#include "backup/frmUbicacion.h"

#include "core/Funciones.h"
#include "core/Global.h"

#include <QScreen>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

controls::Slot<formularios::frmUbicacion> frmUbicacion;

namespace formularios {

frmUbicacion::frmUbicacion()
{
    setupUi(this);
    connect(DriveUbicacion, &controls::DriveList::Change, this, &frmUbicacion::DriveUbicacion_Change);
    connect(DirUbicacion, &controls::FolderList::Change, this, &frmUbicacion::DirUbicacion_Change);
    connect(DirUbicacion, &controls::FolderList::Click, this, &frmUbicacion::DirUbicacion_Click);
    connect(DirUbicacion, &controls::FolderList::OpenFailed, this, [](const basic::RuntimeError& error) {
        MuestraError(QString(), u"DirUbicacion_Change"_s, error.number(), error.description());
    });
    connect(cmdAceptar, &QPushButton::clicked, this, &frmUbicacion::cmdAceptar_Click);
    connect(cmdCancelar, &QPushButton::clicked, this, &frmUbicacion::cmdCancelar_Click);
}

void frmUbicacion::Form_Load()
try {
    lblUbicacion->setText(DirUbicacion->Path());
} catch (...) {
    InformaError(u"Form_Load"_s);
}

void frmUbicacion::Form_Activate()
try {
    // In the middle of the screen, as far as the main window's area goes.
    const QSize pantalla = screen()->size();
    const QWidget* marco = parentWidget();
    const QSize area =
        marco != nullptr && marco->parentWidget() != nullptr ? marco->parentWidget()->size() : pantalla;
    setLeft(std::clamp((pantalla.width() - width()) / 2, 0, std::max(0, area.width() - width())));
    setTop(std::clamp((pantalla.height() - height()) / 2, 0, std::max(0, area.height() - height())));
} catch (...) {
    InformaError(u"Form_Activate"_s);
}

void frmUbicacion::DriveUbicacion_Change()
try {
    DirUbicacion->setPath(DriveUbicacion->Drive());
} catch (...) {
    InformaError(u"DriveUbicacion_Change"_s);
}

void frmUbicacion::DirUbicacion_Change()
try {
    lblUbicacion->setText(DirUbicacion->Path());
} catch (...) {
    InformaError(u"DirUbicacion_Change"_s);
}

void frmUbicacion::DirUbicacion_Click()
try {
    if (DirUbicacion->ListIndex() != -1)
        lblUbicacion->setText(DirUbicacion->List(DirUbicacion->ListIndex()));
} catch (...) {
    InformaError(u"DirUbicacion_Click"_s);
}

void frmUbicacion::cmdAceptar_Click()
{
    RutaUbicacion = lblUbicacion->text();
    Unload();
}

void frmUbicacion::cmdCancelar_Click()
{
    RutaUbicacion.clear();
    Unload();
}

} // namespace formularios
