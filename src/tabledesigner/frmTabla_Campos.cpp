// The page of the columns: what the grid asks and is told while the user types.
#include "tabledesigner/frmTabla.h"

#include "core/Funciones.h"
#include "core/Idioma.h"
#include "core/mdiPrincipal.h"
#include "platform/controls/Keys.h"
#include "platform/controls/Menus.h"
#include "platform/controls/Pointer.h"
#include "tabledesigner/Campos.h"
#include "tabledesigner/Relaciones.h"
#include "tabledesigner/Vinculos.h"

#include <QApplication>

using namespace Qt::Literals::StringLiterals;

namespace formularios {

namespace {

constexpr int TeclaSuprimir = 46;
constexpr int PasadasAlSalir = 10;

// A list's cell is known by its value, any other by its text.
QString Celda(controls::DataGrid* rejilla, int columna)
{
    const controls::GridColumn celda = rejilla->Columns(columna);
    return columna == ColCampo::Tipo ? celda.Value() : celda.Text();
}

} // namespace

void frmTabla::EnlazaCampos()
{
    auto* rejilla = TDBGridTabla;
    connect(rejilla, &controls::DataGrid::BeforeColEdit, this,
            [this](int columna, int /*tecla*/, bool& cancela) { TDBGridTabla_ColEdit(columna, cancela); });
    connect(rejilla, &controls::DataGrid::BeforeColUpdate, this,
            [this](int columna, const QString& /*antes*/, bool& cancela) {
                TDBGridTabla_BeforeColUpdate(columna, cancela);
            });
    connect(rejilla, &controls::DataGrid::AfterColEdit, this, &frmTabla::TDBGridTabla_AfterColEdit);
    connect(rejilla, &controls::DataGrid::BeforeRowColChange, this,
            [this](bool& /*cancela*/) { TDBGridTabla_BeforeRowColChange(); });
    connect(rejilla, &controls::DataGrid::RowColChange, this, &frmTabla::TDBGridTabla_RowColChange);
    connect(rejilla, &controls::DataGrid::KeyDown, this,
            [this](int& tecla, int /*estado*/) { TDBGridTabla_KeyDown(tecla); });
    connect(rejilla, &controls::DataGrid::KeyPress, this, &frmTabla::TDBGridTabla_KeyPress);
    connect(rejilla, &controls::DataGrid::MouseDown, this,
            [this](int boton, int /*estado*/, int x, int y) { TDBGridTabla_MouseDown(boton, x, y); });
    connect(rejilla, &controls::DataGrid::LostFocus, this, &frmTabla::TDBGridTabla_LostFocus);
    connect(rejilla, &controls::DataGrid::ValueItemError, this, &frmTabla::TDBGridTabla_ValueItemError);
    connect(cboGrupoArchivoDatos, &controls::ComboBox::Click, this, &frmTabla::cboGrupoArchivoDatos_Click);
    connect(cmdEliminarFila, &QPushButton::clicked, this, &frmTabla::EliminarFila);
    EnlazaSalidaCampo(txtNombreTabla);
}

void frmTabla::CapturaFormulario()
{
    Datos.NombreTabla = txtNombreTabla->Text();
    Datos.GrupoDatos = cboGrupoArchivoDatos->ListIndex() < 0 ? QString() : cboGrupoArchivoDatos->Text();
    Datos.FilaActual.Fila = TDBGridTabla->Bookmark();
    for (int columna = 0; columna <= ColCampo::UltimaVisible; ++columna)
        Datos.FilaActual.Celdas.at(static_cast<std::size_t>(columna)) = Celda(TDBGridTabla, columna);
}

void frmTabla::DevuelveFila()
{
    for (int columna = ColCampo::Nombre; columna <= ColCampo::UltimaVisible; ++columna) {
        const QString& celda = Datos.FilaActual.Celdas.at(static_cast<std::size_t>(columna));
        if (celda == Celda(TDBGridTabla, columna))
            continue;
        if (columna == ColCampo::Tipo)
            TDBGridTabla->Columns(columna).setValue(celda);
        else
            TDBGridTabla->Columns(columna).setText(celda);
    }
}

bool frmTabla::CompruebaCelda(int columna)
try {
    CapturaFormulario();
    const std::optional<int> destino = ::CompruebaCelda(Datos.FilaActual, columna);
    DevuelveFila();
    if (columna == ColCampo::Tipo)
        GestionaBloqueoCeldas();
    if (!destino)
        return true;
    PonFoco(TDBGridTabla);
    TDBGridTabla->setCol(*destino);
    return false;
} catch (...) {
    InformaError(u"CompruebaCelda"_s);
    return false;
}

void frmTabla::GestionaBloqueoCeldas()
try {
    const Bloqueo bloqueo = BloqueoDeTipo(TDBGridTabla->Columns(ColCampo::Tipo).Value());
    TDBGridTabla->Columns(ColCampo::Longitud).setLocked(bloqueo.longitud);
    TDBGridTabla->Columns(ColCampo::Precision).setLocked(bloqueo.precision);
    TDBGridTabla->Columns(ColCampo::Escala).setLocked(bloqueo.escala);
} catch (...) {
    InformaError(u"GestionaBloqueoCeldas"_s);
}

void frmTabla::TDBGridTabla_ColEdit(int columna, bool& cancela)
try {
    const auto vacia = [this](int c) { return TDBGridTabla->Columns(c).Text().trimmed().isEmpty(); };
    int falta = ColCampo::Estado;
    if (columna > ColCampo::Nombre && vacia(ColCampo::Nombre)) {
        MuestraMensaje(u"Introduzca Nombre del campo."_s, u"Insert field Name."_s);
        falta = ColCampo::Nombre;
    } else if (columna > ColCampo::Tipo && vacia(ColCampo::Tipo)) {
        MuestraMensaje(u"Introduzca tipo de dato."_s, u"Insert Data type."_s);
        falta = ColCampo::Tipo;
    }
    if (falta == ColCampo::Estado) {
        Datos.TablaModificada = true;
        return;
    }
    cancela = true;
    PonFoco(TDBGridTabla);
    TDBGridTabla->setCol(falta);
} catch (...) {
    InformaError(u"TDBGridTabla_ColEdit"_s);
}

void frmTabla::TDBGridTabla_AfterColEdit(int columna)
try {
    if (columna == ColCampo::Tipo) {
        CapturaFormulario();
        PonMedidasDeTipo(Datos.FilaActual);
        DevuelveFila();
    }
    GestionaBloqueoCeldas();
} catch (...) {
    InformaError(u"TDBGridTabla_AfterColEdit"_s);
}

void frmTabla::TDBGridTabla_BeforeColUpdate(int columna, bool& cancela)
try {
    CapturaFormulario();
    if (Datos.FilaActual.Celdas[ColCampo::Estado] != u"M"_s)
        return;
    if (columna == ColCampo::Nombre)
        RenombraEnMemoria(Datos);
    if (columna < ColCampo::Tipo || columna > ColCampo::Predeterminado)
        return;
    controls::setMousePointer(controls::Pointer::Hourglass);
    if (CambiaCelda_SQL(Datos))
        Datos.TablaModificada = true;
    else
        cancela = true;
    controls::setMousePointer(controls::Pointer::Default);
} catch (...) {
    cancela = true;
    InformaErrorYPuntero(u"TDBGridTabla_BeforeColUpdate"_s);
}

void frmTabla::PonTipoEnFila()
{
    CapturaFormulario();
    if (PonTipoPorDefecto(Datos.FilaActual))
        DevuelveFila();
}

void frmTabla::TDBGridTabla_BeforeRowColChange()
try {
    PonTipoEnFila();
} catch (...) {
    InformaError(u"TDBGridTabla_BeforeRowColChange"_s);
}

void frmTabla::TDBGridTabla_RowColChange()
try {
    if (TDBGridTabla->Col() == ColCampo::Tipo)
        PonTipoEnFila();
    GestionaBloqueoCeldas();
} catch (...) {
    InformaError(u"TDBGridTabla_RowColChange"_s);
}

void frmTabla::TDBGridTabla_KeyDown(int& tecla)
try {
    if (tecla != TeclaSuprimir)
        return;
    tecla = 0;
    EliminarFila();
} catch (...) {
    InformaError(u"TDBGridTabla_KeyDown"_s);
}

void frmTabla::TDBGridTabla_KeyPress(int& tecla)
try {
    const int columna = TDBGridTabla->Col();
    if (tecla == controls::keyEnter) {
        tecla = 0;
        if (!CompruebaCelda(columna))
            return;
        Datos.TablaModificada = true;
        PasaALaSiguiente();
    } else if (TDBGridTabla->Columns(columna).Locked()) {
        tecla = 0;
        QApplication::beep();
    }
} catch (...) {
    InformaError(u"TDBGridTabla_KeyPress"_s);
}

void frmTabla::PasaALaSiguiente()
{
    const int columna = TDBGridTabla->Col();
    if (columna != ColCampo::UltimaVisible)
        return TDBGridTabla->setCol(columna + 1);
    TDBGridTabla->setCol(ColCampo::Nombre);
    if (TDBGridTabla->Col() != ColCampo::Nombre)
        return; // the edit was refused, and the cell stays
    const int fila = TDBGridTabla->Row();
    TDBGridTabla->setRow(fila == UltimaFila ? 0 : fila + 1);
}

void frmTabla::TDBGridTabla_MouseDown(int boton, int x, int y)
try {
    if (boton == controls::rightButton)
        controls::popup(::mdiPrincipal->mnuTabla, TDBGridTabla->viewport()->mapToGlobal(QPoint(x, y)));
} catch (...) {
    InformaError(u"TDBGridTabla_MouseDown"_s);
}

void frmTabla::TDBGridTabla_LostFocus()
try {
    if (TDBGridTabla->Columns(ColCampo::Nombre).Text().isEmpty())
        return;
    for (int pasada = 0; pasada < PasadasAlSalir; ++pasada)
        if (!CompruebaCelda(TDBGridTabla->Col()))
            return;
} catch (...) {
    InformaError(u"TDBGridTabla_LostFocus"_s);
}

void frmTabla::TDBGridTabla_ValueItemError(int columna)
try {
    if (columna == ColCampo::Tipo && !TDBGridTabla->Columns(columna).Text().isEmpty())
        MuestraMensaje(u"Su entrada debe coincidir con un elemento de la lista."_s,
                       u"His entry must coincide with an element of the list."_s);
} catch (...) {
    InformaError(u"TDBGridTabla_ValueItemError"_s);
}

void frmTabla::InsertarFila()
try {
    if (TDBGridTabla->EditActive())
        ConfirmaCelda(TDBGridTabla); // what is being typed goes along with its row
    const int primera = TDBGridTabla->FirstRow();
    const int fila = TDBGridTabla->Row();
    ::InsertarFila(Datos, fila);
    TDBGridTabla->ReBind();
    TDBGridTabla->Refresh();
    TDBGridTabla->setFirstRow(primera);
    TDBGridTabla->setRow(fila);
    GestionaBloqueoCeldas();
} catch (...) {
    InformaError(u"InsertarFila"_s);
}

void frmTabla::EliminarFila()
try {
    if (MuestraMensaje(u"¿Desea eliminar la fila?"_s, u"Do you want to delete row?"_s, EstiloPregunta) !=
        controls::Answer::Yes)
        return;
    const QString campo = TDBGridTabla->Columns(ColCampo::Nombre).Text();
    if (ExisteCampo_EnIndice(Datos, campo)) {
        MuestraMensaje(u"El campo existe en algún indice. No se puede eliminar."_s,
                       u"Field exits in some index. Can't delete it."_s);
        return;
    }
    if (ExisteCampo_EnRelacion(Datos, campo)) {
        MuestraMensaje(u"El campo existe en algúna relacion. No se puede eliminar."_s,
                       u"Field exits in some Relations. Can't delete it."_s);
        return;
    }
    const int primera = TDBGridTabla->FirstRow();
    CapturaFormulario();
    EliminaCampo(Datos, TDBGridTabla->Row());
    TDBGridTabla->ReBind();
    TDBGridTabla->Refresh();
    TDBGridTabla->setFirstRow(primera);
    GestionaBloqueoCeldas();
    // Relations that referenced the column have gone with it, and the others have moved up.
    if (::CargaRelaciones(Datos).size() != cboRelaciones->ListCount())
        MuestraRelaciones();
    Datos.TablaModificada = true;
} catch (...) {
    InformaError(u"EliminarFila"_s);
}

void frmTabla::cboGrupoArchivoDatos_Click()
{
    Datos.TablaModificada = true;
}

} // namespace formularios
