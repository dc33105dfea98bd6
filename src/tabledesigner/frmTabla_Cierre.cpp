// Closing: what is pending is taken in, the user is asked, the design is saved.
#include "tabledesigner/frmTabla.h"

#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"
#include "platform/controls/Pointer.h"
#include "tabledesigner/ActualizaLaTabla.h"
#include "tabledesigner/Campos.h"

using namespace Qt::Literals::StringLiterals;

namespace formularios {

namespace {

// The database in which a node of the browser's tree lies; "" for none.
QString BaseDeNodo(const controls::TreeView::Node* nodo)
{
    if (nodo->Key().startsWith(u"BD"_s))
        return nodo->Text();
    const auto* padre = nodo->Parent();
    return padre != nullptr && padre->Key().startsWith(u"BD"_s) ? padre->Text() : QString();
}

} // namespace

void frmTabla::ConfirmaCelda(controls::DataGrid* rejilla)
{
    const int fila = rejilla->Bookmark();
    if (fila == -1)
        return rejilla->setRow(0);
    rejilla->setRow(rejilla->Row() == 0 ? 1 : 0);
    rejilla->setBookmark(fila);
}

// A window that closes takes the focus from nobody, and what was typed last must not be lost.
void frmTabla::ConfirmaCaja(bool& cancela)
{
    if (txtNombreIndice->hasFocus())
        txtNombreIndice_Validate(cancela);
    else if (txtFillFactor->hasFocus())
        txtFillFactor_Validate(cancela);
    else if (txtNombreRelacion->hasFocus())
        txtNombreRelacion_Validate(cancela);
}

void frmTabla::Form_QueryUnload(bool& cancela)
try {
    ConfirmaCaja(cancela);
    ConfirmaCelda(TDBGridTabla);
    for (controls::DataGrid* rejilla : {TDBGridIndices, TDBGridRelaciones})
        if (rejilla->Row() >= 1)
            ConfirmaCelda(rejilla);
} catch (...) {
    InformaError(u"Form_QueryUnload"_s);
}

void frmTabla::Form_Unload(bool& cancela)
try {
    controls::setMousePointer(controls::Pointer::Hourglass);
    if (txtNombreTabla->Text() != Datos.NombreTablaCargado)
        Datos.TablaModificada = true;
    cancela = Datos.TablaModificada && !TerminaDiseño();
    controls::setMousePointer(controls::Pointer::Default);
} catch (...) {
    cancela = true; // nothing of the design is lost
    InformaErrorYPuntero(u"Form_Unload"_s);
}

controls::DataGrid* frmTabla::RejillaDePagina() const
{
    const std::array rejillas{TDBGridTabla, TDBGridIndices, TDBGridRelaciones};
    return rejillas.at(static_cast<std::size_t>(SSTabIndicesRelaciones->currentIndex()));
}

bool frmTabla::TerminaDiseño()
{
    TDBGridTabla_LostFocus();
    TDBGridIndices_LostFocus();
    TDBGridRelaciones_LostFocus();
    switch (
        MuestraMensaje(u"¿Desea Guardar los cambios?"_s, u"Do you want save the changes?"_s, EstiloSalida)) {
    case controls::Answer::Yes:
        return Guarda();
    case controls::Answer::No:
        return true;
    default:
        RejillaDePagina()->SetFocus();
        return false;
    }
}

bool frmTabla::Guarda()
{
    CapturaFormulario();
    if (Datos.NombreTabla.trimmed().isEmpty()) {
        MuestraMensaje(u"Introduzca Nombre Tabla."_s, u"Insert Table Name."_s);
        PonFoco(txtNombreTabla);
        return false;
    }
    PreparaGuardado(Datos);
    if (!ActualizaLaTabla(Datos))
        return false;
    RehaceLista();
    return true;
}

// The list may show another database's objects by now, and those of this one would be dropped there.
void frmTabla::RehaceLista() const
{
    if (!::frmAdministrador.exists())
        return;
    const auto* nodo = ::frmAdministrador->trvBD->SelectedItem();
    if (nodo == nullptr || BaseDeNodo(nodo) != Datos.BaseDatos)
        return;
    PrefijoBD = Datos.BaseDatos + u".."_s;
    ::frmAdministrador->MuestraTablas(nodo->Text());
}

} // namespace formularios
