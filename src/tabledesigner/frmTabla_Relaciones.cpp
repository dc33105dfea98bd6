// The page of the relations. A position in cboRelaciones is the relation's position in the stores.
#include "tabledesigner/frmTabla.h"

#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/Idioma.h"
#include "platform/controls/Keys.h"
#include "tabledesigner/Campos.h"
#include "tabledesigner/CargaTabla.h"
#include "tabledesigner/Relaciones.h"

using namespace Qt::Literals::StringLiterals;

namespace formularios {

namespace {

void PonValores(controls::DataGrid* rejilla, int columna, const QStringList& valores)
{
    controls::ValueItems& lista = rejilla->Columns(columna).ValueItems();
    lista.Clear();
    for (const QString& valor : valores)
        lista.Add(valor);
}

} // namespace

void frmTabla::EnlazaRelaciones()
{
    connect(cboRelaciones, &controls::ComboBox::Click, this, &frmTabla::cboRelaciones_Click);
    connect(cmdNuevaRelacion, &QPushButton::clicked, this, &frmTabla::cmdNuevaRelacion_Click);
    connect(cmdEliminarRelacion, &QPushButton::clicked, this, &frmTabla::cmdEliminarRelacion_Click);
    connect(TDBGridRelaciones, &controls::DataGrid::ButtonClick, this,
            &frmTabla::TDBGridRelaciones_ButtonClick);
    connect(TDBGridRelaciones, &controls::DataGrid::LostFocus, this, &frmTabla::TDBGridRelaciones_LostFocus);
    connect(TDBGridRelaciones, &controls::DataGrid::ValueItemError, this,
            &frmTabla::TDBGridRelaciones_ValueItemError);
    connect(txtNombreRelacion, &controls::TextBox::KeyPress, this, &frmTabla::txtNombreRelacion_KeyPress);
    connect(txtNombreRelacion, &controls::TextBox::Validate, this, &frmTabla::txtNombreRelacion_Validate);
}

void frmTabla::HabilitaRelaciones(bool hay)
{
    for (QWidget* control : QList<QWidget*>{lblNombreRelacion, fraNombreRelacion, lblRelaciones, lblExterna,
                                            fraRelaciones, cmdEliminarRelacion})
        control->setEnabled(hay);
}

void frmTabla::EnlazaMatrizRelacion(int posicion)
{
    TDBGridRelaciones->setArray(&Datos.CamposRelacion.CreaSiFalta(posicion));
}

void frmTabla::CargaTablasExternas()
try {
    const auto* lista = ::frmAdministrador->ltvTablas;
    for (int n = 0; n < lista->ListCount(); ++n)
        if (const QString tabla = lista->Item(n)->Text(); tabla != Datos.NombreTabla) {
            cboExterna->AddItem(tabla);
            TDBGridRelaciones->Columns(ColCampoRelacion::TablaExterna).ValueItems().Add(tabla);
        }
} catch (...) {
    InformaError(u"CargaTablasExternas"_s);
}

void frmTabla::CargaRelaciones()
try {
    cboRelaciones->Clear();
    for (const int i : ::CargaRelaciones(Datos))
        cboRelaciones->AddItem(Datos.Relaciones.at(i, 0), i);
} catch (...) {
    InformaError(u"CargaRelaciones"_s);
}

void frmTabla::cboRelaciones_Click()
try {
    const int i = cboRelaciones->ListIndex();
    if (i < 0)
        return;
    txtNombreRelacion->setText(cboRelaciones->Text());
    EnlazaMatrizRelacion(i);
    TDBGridRelaciones->ReBind();
    TDBGridRelaciones->Refresh();
    TDBGridRelaciones->setFirstRow(0);
    TDBGridRelaciones->setRow(0);
    if (const QString tabla = TDBGridRelaciones->Columns(ColCampoRelacion::TablaExterna).Text();
        !tabla.isEmpty())
        BuscarComboCadena(tabla, cboExterna);
} catch (...) {
    InformaError(u"cboRelaciones_Click"_s);
}

void frmTabla::cmdNuevaRelacion_Click()
try {
    fraNombreRelacion->setEnabled(true);
    lblNombreRelacion->setEnabled(true);
    cboRelaciones->setListIndex(-1);
    txtNombreRelacion->clear();
    PonFoco(txtNombreRelacion);
} catch (...) {
    InformaError(u"cmdNuevaRelacion_Click"_s);
}

void frmTabla::cmdEliminarRelacion_Click()
try {
    const bool hay = !::CargaRelaciones(Datos).empty();
    HabilitaRelaciones(hay);
    if (hay && cboRelaciones->ListIndex() >= 0)
        QuitaRelacion(cboRelaciones->ListIndex());
    Datos.TablaModificada = true;
} catch (...) {
    InformaError(u"cmdEliminarRelacion_Click"_s);
}

void frmTabla::QuitaRelacion(int posicion)
{
    EliminaRelacion(Datos, posicion);
    TDBGridRelaciones->ReBind();
    TDBGridRelaciones->Refresh();
    MuestraRelaciones();
}

void frmTabla::MuestraRelaciones()
{
    CargaRelaciones();
    txtNombreRelacion->clear();
    if (cboRelaciones->ListCount() > 0)
        return cboRelaciones->setListIndex(0);
    EnlazaMatrizRelacion(0);
    HabilitaRelaciones(false);
}

void frmTabla::TDBGridRelaciones_ButtonClick(int columna)
try {
    if (cboExterna->ListIndex() < 0) {
        MuestraMensaje(u"Introduzca tabla externa."_s, u"Insert foreing table."_s);
        return;
    }
    if (columna == ColCampoRelacion::Propia)
        PonValores(TDBGridRelaciones, columna, DameNombresCampos(Datos));
    if (columna != ColCampoRelacion::Externa)
        return;
    PonValores(TDBGridRelaciones, columna, DameCamposTabla_SQL(Datos, cboExterna->Text()));
    TDBGridRelaciones->Columns(ColCampoRelacion::TablaExterna).setText(cboExterna->Text());
} catch (...) {
    InformaError(u"TDBGridRelaciones_ButtonClick"_s);
}

void frmTabla::TDBGridRelaciones_LostFocus()
try {
    if (TDBGridRelaciones->Row() == -1)
        return;
    ConfirmaCelda(TDBGridRelaciones);
    const int i = cboRelaciones->ListIndex();
    const int linea = i < 0 ? -1 : DameLineaIncompleta(Datos, i);
    if (linea < 0)
        return;
    if (MuestraMensaje(
            u"No puede existir una relación con columnas en blanco. ¿Desea eliminar la relación?"_s,
            u"Relation can't exist with space column. Do you want to delete relation?"_s,
            EstiloPregunta) == controls::Answer::Yes) {
        cmdEliminarRelacion_Click();
        return;
    }
    TDBGridRelaciones->setBookmark(linea);
    PonFoco(TDBGridRelaciones);
} catch (...) {
    InformaError(u"TDBGridRelaciones_LostFocus"_s);
}

void frmTabla::TDBGridRelaciones_ValueItemError(int columna)
try {
    if (!TDBGridRelaciones->Columns(columna).Text().isEmpty())
        MuestraMensaje(u"Su entrada debe coincidir con un elemento de la lista."_s,
                       u"His entry must coincide with an element of the list."_s);
} catch (...) {
    InformaError(u"TDBGridRelaciones_ValueItemError"_s);
}

void frmTabla::txtNombreRelacion_KeyPress(int tecla)
{
    bool cancela = false;
    if (tecla == controls::keyEnter)
        txtNombreRelacion_Validate(cancela);
}

void frmTabla::txtNombreRelacion_Validate(bool& /*cancela*/)
try {
    const QString nombre = txtNombreRelacion->Text();
    if (nombre.trimmed().isEmpty())
        return;
    int posicion = -1;
    if (ExisteRelacion(Datos, nombre, posicion)) {
        cboRelaciones->setList(posicion, nombre);
        cboRelaciones->setListIndex(posicion);
        Datos.TablaModificada = true;
        return;
    }
    posicion = AñadeRelacion(Datos, nombre);
    cboRelaciones->AddItem(nombre, posicion + 1);
    cboRelaciones->setListIndex(posicion);
    for (QWidget* control : QList<QWidget*>{lblRelaciones, lblExterna, fraRelaciones, cmdEliminarRelacion})
        control->setEnabled(true);
    PonFoco(cboExterna);
} catch (...) {
    InformaError(u"txtNombreRelacion_Validate"_s);
}

} // namespace formularios
