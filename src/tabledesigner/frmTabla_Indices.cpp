// The page of the keys and indexes. A position in cboIndices is the index's position in the stores.
#include "tabledesigner/frmTabla.h"

#include "core/Funciones.h"
#include "core/Idioma.h"
#include "platform/controls/Keys.h"
#include "tabledesigner/Campos.h"
#include "tabledesigner/Indices.h"

using namespace Qt::Literals::StringLiterals;

namespace formularios {

void frmTabla::EnlazaIndices()
{
    connect(cboIndices, &controls::ComboBox::Click, this, &frmTabla::cboIndices_Click);
    connect(cboGrupoArchivoIndices, &controls::ComboBox::Click, this,
            &frmTabla::cboGrupoArchivoIndices_Click);
    connect(optClavePrimaria, &QRadioButton::toggled, this, &frmTabla::optClavePrimaria_Click);
    connect(optIndice, &QRadioButton::toggled, this, &frmTabla::optIndice_Click);
    connect(chkAgrupado, &QCheckBox::toggled, this, &frmTabla::chkAgrupado_Click);
    connect(chkIndiceUnico, &QCheckBox::toggled, this, &frmTabla::chkIndiceUnico_Click);
    connect(cmdNuevoIndice, &QPushButton::clicked, this, &frmTabla::cmdNuevoIndice_Click);
    connect(cmdEliminarIndice, &QPushButton::clicked, this, &frmTabla::cmdEliminarIndice_Click);
    connect(TDBGridIndices, &controls::DataGrid::ButtonClick, this, &frmTabla::TDBGridIndices_ButtonClick);
    connect(TDBGridIndices, &controls::DataGrid::LostFocus, this, &frmTabla::TDBGridIndices_LostFocus);
    connect(TDBGridIndices, &controls::DataGrid::ValueItemError, this,
            &frmTabla::TDBGridIndices_ValueItemError);
    connect(txtNombreIndice, &controls::TextBox::KeyPress, this, &frmTabla::txtNombreIndice_KeyPress);
    connect(txtNombreIndice, &controls::TextBox::Validate, this, &frmTabla::txtNombreIndice_Validate);
    connect(txtFillFactor, &controls::TextBox::Validate, this, &frmTabla::txtFillFactor_Validate);
    EnlazaSalidaCampo(txtFillFactor);
}

void frmTabla::HabilitaIndices(bool hay)
{
    for (QWidget* control :
         QList<QWidget*>{lblNombreIndice, fraNombreIndice, lblIndices, fraIndices, cmdEliminarIndice})
        control->setEnabled(hay);
}

void frmTabla::EnlazaMatrizIndice(int posicion)
{
    TDBGridIndices->setArray(&Datos.CamposIndice.CreaSiFalta(posicion));
}

void frmTabla::CargaIndices()
try {
    cboIndices->Clear();
    for (const int i : ::CargaIndices(Datos)) {
        const auto atributo = [&](int columna) { return Datos.Indices.at(i, columna); };
        (atributo(ColIndice::Clase) == u"P"_s ? optClavePrimaria : optIndice)->setChecked(true);
        chkIndiceUnico->setChecked(atributo(ColIndice::Unico) == u"1"_s);
        chkAgrupado->setChecked(atributo(ColIndice::Agrupado) == u"1"_s);
        cboIndices->AddItem(atributo(ColIndice::Nombre), i);
    }
} catch (...) {
    InformaError(u"CargaIndices"_s);
}

void frmTabla::CargaValoresIndices()
try {
    controls::ValueItems& lista = TDBGridIndices->Columns(ColCampoIndice::Nombre).ValueItems();
    lista.Clear();
    for (const QString& campo : DameCamposParaIndice(Datos, cboIndices->ListIndex()))
        lista.Add(campo);
    TDBGridIndices->ReBind();
} catch (...) {
    InformaError(u"CargaValoresIndices"_s);
}

void frmTabla::cboIndices_Click()
try {
    const int i = cboIndices->ListIndex();
    if (i < 0)
        return;
    txtNombreIndice->setText(cboIndices->Text());
    (Datos.Indices.at(i, ColIndice::Clase) == u"P"_s ? optClavePrimaria : optIndice)->setChecked(true);
    chkAgrupado->setChecked(Datos.Indices.at(i, ColIndice::Agrupado) == u"1"_s);
    chkIndiceUnico->setChecked(Datos.Indices.at(i, ColIndice::Unico) == u"1"_s);
    if (const QString grupo = Datos.Indices.at(i, ColIndice::Grupo); !grupo.isEmpty())
        BuscarComboCadena(grupo.trimmed(), cboGrupoArchivoIndices);
    else
        cboGrupoArchivoIndices->setListIndex(-1);
    txtFillFactor->setText(Datos.Indices.at(i, ColIndice::Relleno));
    EnlazaMatrizIndice(i);
    TDBGridIndices->ReBind();
    TDBGridIndices->Refresh();
    TDBGridIndices->setFirstRow(0);
    TDBGridIndices->setRow(0);
} catch (...) {
    InformaError(u"cboIndices_Click"_s);
}

void frmTabla::cboGrupoArchivoIndices_Click()
try {
    const int i = cboIndices->ListIndex();
    if (cboGrupoArchivoIndices->ListIndex() < 0)
        Datos.Indices(i, ColIndice::Grupo) = QString();
    else if (i >= 0)
        Datos.Indices(i, ColIndice::Grupo) = cboGrupoArchivoIndices->Text();
    Datos.TablaModificada = true;
} catch (...) {
    InformaError(u"chkAgrupado_Click"_s);
}

void frmTabla::optClavePrimaria_Click()
try {
    const int i = cboIndices->ListIndex();
    if (i < 0)
        return;
    PonClavePrimaria(Datos, i, optClavePrimaria->isChecked());
    if (optClavePrimaria->isChecked())
        chkIndiceUnico->setChecked(true);
} catch (...) {
    InformaError(u"optClavePrimaria_Click"_s);
}

void frmTabla::optIndice_Click()
try {
    if (cboIndices->ListIndex() >= 0 && optIndice->isChecked())
        PonClavePrimaria(Datos, cboIndices->ListIndex(), false);
} catch (...) {
    InformaError(u"optIndice_Click"_s);
}

void frmTabla::chkAgrupado_Click()
try {
    if (cboIndices->ListIndex() >= 0)
        Datos.Indices(cboIndices->ListIndex(), ColIndice::Agrupado) =
            chkAgrupado->isChecked() ? u"1"_s : u"0"_s;
} catch (...) {
    InformaError(u"chkAgrupado_Click"_s);
}

void frmTabla::chkIndiceUnico_Click()
try {
    if (cboIndices->ListIndex() >= 0)
        Datos.Indices(cboIndices->ListIndex(), ColIndice::Unico) =
            chkIndiceUnico->isChecked() ? u"1"_s : u"0"_s;
} catch (...) {
    InformaError(u"chkIndiceUnico_Click"_s);
}

void frmTabla::cmdNuevoIndice_Click()
try {
    for (QWidget* control : QList<QWidget*>{fraNombreIndice, fraTipoIndice, lblNombreIndice})
        control->setEnabled(true);
    cboIndices->setListIndex(-1);
    txtNombreIndice->clear();
    PonFoco(txtNombreIndice);
} catch (...) {
    InformaError(u"cmdNuevoIndice_Click"_s);
}

void frmTabla::cmdEliminarIndice_Click()
try {
    const bool hay = !::CargaIndices(Datos).empty();
    HabilitaIndices(hay);
    if (hay && cboIndices->ListIndex() >= 0)
        QuitaIndice(cboIndices->ListIndex());
    Datos.TablaModificada = true;
} catch (...) {
    InformaError(u"cmdEliminarIndice_Click"_s);
}

void frmTabla::QuitaIndice(int posicion)
{
    EliminaIndice(Datos, posicion);
    TDBGridIndices->ReBind();
    TDBGridIndices->Refresh();
    CargaIndices();
    txtNombreIndice->clear();
    if (cboIndices->ListCount() > 0)
        return cboIndices->setListIndex(0);
    EnlazaMatrizIndice(0);
    HabilitaIndices(false);
}

void frmTabla::TDBGridIndices_ButtonClick()
{
    CargaValoresIndices();
}

void frmTabla::TDBGridIndices_LostFocus()
try {
    if (TDBGridIndices->Row() == -1)
        return;
    ConfirmaCelda(TDBGridIndices);
    const int i = cboIndices->ListIndex();
    if (i < 0 || txtNombreIndice->Text().isEmpty() || !IndiceSinCampos(Datos, i))
        return;
    if (MuestraMensaje(u"No puede existir un indice con columnas en blanco. ¿Desea eliminar el indice?"_s,
                       u"Index can't exist with space column. Do you want to delete index?"_s,
                       EstiloPregunta) == controls::Answer::Yes)
        cmdEliminarIndice_Click();
    else
        PonFoco(TDBGridIndices);
} catch (...) {
    InformaError(u"TDBGridIndices_LostFocus"_s);
}

void frmTabla::TDBGridIndices_ValueItemError(int columna)
try {
    if (!TDBGridIndices->Columns(columna).Text().isEmpty())
        MuestraMensaje(u"Su entrada debe coincidir con un elemento de la lista."_s,
                       u"His entry must coincide with an element of the list."_s);
} catch (...) {
    InformaError(u"TDBGridIndices_ValueItemError"_s);
}

void frmTabla::txtNombreIndice_KeyPress(int tecla)
{
    bool cancela = false;
    if (tecla == controls::keyEnter)
        txtNombreIndice_Validate(cancela);
}

void frmTabla::txtNombreIndice_Validate(bool& cancela)
try {
    const QString nombre = txtNombreIndice->Text();
    if (nombre.trimmed().isEmpty())
        return;
    int posicion = -1;
    if (ExisteTodosIndice(Datos, nombre, posicion)) {
        const QString tabla = Datos.NombresTabla.at(posicion, 0) + u"."_s;
        MuestraMensaje(u"El nombre de indice existe en la base de datos "_s + tabla,
                       u"Index exist in database "_s + tabla);
        cancela = true;
        return;
    }
    if (ExisteIndice(Datos, nombre, posicion)) {
        cboIndices->setList(posicion, nombre);
        cboIndices->setListIndex(posicion);
        Datos.TablaModificada = true;
        return;
    }
    posicion = AñadeIndice(Datos, nombre);
    cboIndices->AddItem(nombre, posicion + 1);
    cboIndices->setListIndex(posicion);
    for (QWidget* control : QList<QWidget*>{lblIndices, fraIndices, cmdEliminarIndice})
        control->setEnabled(true);
    PonFoco(TDBGridIndices);
} catch (...) {
    InformaError(u"txtNombreIndice_Validate"_s);
}

void frmTabla::txtFillFactor_Validate(bool& cancela)
try {
    if (PonFactorRelleno(Datos, cboIndices->ListIndex(), txtFillFactor->Text()))
        return;
    MuestraMensaje(u"Valor no numérico."_s, u"Not numeric value."_s);
    cancela = true;
} catch (...) {
    InformaError(u"txtFillFactor_Validate"_s);
}

} // namespace formularios
