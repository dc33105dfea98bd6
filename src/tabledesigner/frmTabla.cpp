#include "tabledesigner/frmTabla.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"
#include "tabledesigner/CargaTabla.h"
#include "tabledesigner/TiposDato.h"

using namespace Qt::Literals::StringLiterals;

std::array<QPointer<formularios::frmTabla>, UltimaRanura + 1> TablasAbiertas;

namespace formularios {

namespace {

// Widths of the columns in characters of the form's font.
constexpr int AnchoEstado = 8;
constexpr int AnchoNumero = 11;
constexpr int AnchoTipo = 20;
constexpr int AnchoNombre = 28;
constexpr int AnchoNombreSolo = 50; ///< where it is all that the grid shows
constexpr int AnchoNombreEnPareja = 34;

void PonAncho(controls::DataGrid* rejilla, int columna, int caracteres)
{
    rejilla->Columns(columna).setWidth(caracteres * rejilla->fontMetrics().averageCharWidth());
}

// The list's column is locked: it shows what the program writes.
void PonEstado(controls::DataGrid* rejilla)
{
    rejilla->Columns(ColCampo::Estado).setLocked(true);
    PonAncho(rejilla, ColCampo::Estado, AnchoEstado);
}

void PonLista(controls::DataGrid* rejilla, int columna, int caracteres)
{
    rejilla->Columns(columna).ValueItems().setPresentation(controls::ValueItems::Presentation::DropDown);
    PonAncho(rejilla, columna, caracteres);
}

} // namespace

frmTabla::frmTabla()
{
    setupUi(this);
    PonColumnas();
    EnlazaCampos();
    EnlazaIndices();
    EnlazaRelaciones();
}

void frmTabla::PonColumnas()
{
    TDBGridTabla->setColumnCount(ColCampo::UltimaVisible + 1);
    PonEstado(TDBGridTabla);
    PonAncho(TDBGridTabla, ColCampo::Nombre, AnchoNombre);
    PonLista(TDBGridTabla, ColCampo::Tipo, AnchoTipo);
    int numero = 0;
    for (const TipoDato& tipo : TiposDato())
        TDBGridTabla->Columns(ColCampo::Tipo)
            .ValueItems()
            .Add(QString::number(++numero), tipo.nombre.toString());
    for (const int columna : {ColCampo::Longitud, ColCampo::Precision, ColCampo::Escala}) {
        TDBGridTabla->Columns(columna).setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        PonAncho(TDBGridTabla, columna, AnchoNumero);
    }
    TDBGridTabla->Columns(ColCampo::Nulo)
        .ValueItems()
        .setPresentation(controls::ValueItems::Presentation::CheckBox);
    PonAncho(TDBGridTabla, ColCampo::Nulo, AnchoNumero);
    PonAncho(TDBGridTabla, ColCampo::Predeterminado, AnchoNombre);

    TDBGridIndices->setColumnCount(ColCampoIndice::Nombre + 1);
    PonEstado(TDBGridIndices);
    PonLista(TDBGridIndices, ColCampoIndice::Nombre, AnchoNombreSolo);

    TDBGridRelaciones->setColumnCount(ColCampoRelacion::TablaExterna + 1);
    PonEstado(TDBGridRelaciones);
    PonLista(TDBGridRelaciones, ColCampoRelacion::Propia, AnchoNombreEnPareja);
    PonLista(TDBGridRelaciones, ColCampoRelacion::Externa, AnchoNombreEnPareja);
    // The table comes with the choice of a column, never by hand.
    TDBGridRelaciones->Columns(ColCampoRelacion::TablaExterna).setLocked(true);
    PonAncho(TDBGridRelaciones, ColCampoRelacion::TablaExterna, AnchoNombreEnPareja);
}

void frmTabla::Form_Load()
try {
    SSTabIndicesRelaciones->setCurrentIndex(0);
    CargaGrupoArchivos();
    IniciaDatosTabla(Datos, BaseDatosActual);
    if (NuevaTabla)
        CargaTablaNueva();
    else
        CargaTablaExistente();
    HabilitaIndices(cboIndices->ListCount() > 0);
    HabilitaRelaciones(cboRelaciones->ListCount() > 0);
    GestionaBloqueoCeldas();
    // A designer counts as changed from the start, so that closing it always asks.
    Datos.TablaModificada = true;
} catch (...) {
    InformaError(u"Form_Load"_s);
}

void frmTabla::CargaTablaNueva()
{
    txtNombreTabla->setEnabled(true);
    TDBGridTabla->setArray(&Datos.CamposTabla);
    EnlazaMatrizIndice(0);
    EnlazaMatrizRelacion(0);
}

void frmTabla::CargaTablaExistente()
{
    txtNombreTabla->setText(Datos.NombreTablaInicial);
    txtNombreTabla->setEnabled(false);
    CargaTabla_SQL(Datos);
    BuscarComboCadena(DimeGrupoFicheros(Datos), cboGrupoArchivoDatos);
    TDBGridTabla->setArray(&Datos.CamposTabla);
    CargaIndices();
    CargaRelaciones();
    CargaValoresIndices();
    CargaTablasExternas();
    EnlazaMatrizIndice(0);
    EnlazaMatrizRelacion(0);
    if (cboIndices->ListCount() > 0)
        cboIndices->setListIndex(0);
    if (cboRelaciones->ListCount() > 0)
        cboRelaciones->setListIndex(0);
    fraTipoIndice->setEnabled(false);
}

void frmTabla::CargaGrupoArchivos()
{
    cboGrupoArchivoIndices->Clear();
    for (int fila = 0; fila < UltimaFilaGrupos; ++fila) {
        const QString grupo = GruposFicheros.at(fila, 0).trimmed();
        if (grupo.isEmpty())
            continue;
        cboGrupoArchivoDatos->AddItem(grupo);
        cboGrupoArchivoIndices->AddItem(grupo);
    }
}

void frmTabla::Form_Activate()
try {
    PonIdioma();
} catch (...) {
    InformaError(u"Form_Activate"_s);
}

void frmTabla::PonIdioma()
try {
    const QString tabla = Datos.BaseDatos + u"."_s + txtNombreTabla->Text() + u"]"_s;
    PonTexto(this, u"Tabla ["_s + tabla, u"Table ["_s + tabla);
    PonIdiomaCampos();
    PonIdiomaIndices();
    PonIdiomaRelaciones();
} catch (...) {
    InformaError(u"PonIdioma"_s);
}

void frmTabla::PonIdiomaCampos()
{
    PonPestaña(SSTabIndicesRelaciones, 0, u"Campos"_s, u"Fields"_s);
    PonTexto(lblNombre, u"Nombre:"_s, u"Name:"_s);
    PonTexto(lblGrupo, u"Grupo de archivo de datos:"_s, u"Group Files data:"_s);
    PonTexto(cmdEliminarFila, u"Eliminar"_s, u"Delete"_s);
    PonCabecera(TDBGridTabla, ColCampo::Estado, u"Estado"_s, u"State"_s);
    PonCabecera(TDBGridTabla, ColCampo::Nombre, u"Nombre de Campo"_s, u"Field Name"_s);
    PonCabecera(TDBGridTabla, ColCampo::Tipo, u"Tipo de dato"_s, u"Data Type"_s);
    PonCabecera(TDBGridTabla, ColCampo::Longitud, u"Longitud"_s, u"Length "_s);
    PonCabecera(TDBGridTabla, ColCampo::Precision, u"Precisión"_s, u"Precision"_s);
    PonCabecera(TDBGridTabla, ColCampo::Escala, u"Escala"_s, u"Scale"_s);
    PonCabecera(TDBGridTabla, ColCampo::Nulo, u"Valor Nulo"_s, u"Null Value"_s);
    PonCabecera(TDBGridTabla, ColCampo::Predeterminado, u"Valor Predeterminado"_s, u"Default Value"_s);
}

void frmTabla::PonIdiomaIndices()
{
    PonPestaña(SSTabIndicesRelaciones, 1, u"Claves e índices"_s, u"Keys and Indexes"_s);
    PonTexto(lblNombreIndice, u"Nombre Indice:"_s, u"Index Name:"_s);
    PonTexto(cmdNuevoIndice, u"&Numevo"_s, u"&New"_s);
    PonTexto(cmdEliminarIndice, u"&Eliminar"_s, u"&Delete"_s);
    PonTexto(lblIndices, u"Indice Seleccionado:"_s, u"Delected Index:"_s);
    PonTexto(fraTipoIndice, u" Tipo "_s, u" Type "_s);
    PonTexto(optClavePrimaria, u"Clave Principal"_s, u"Primary Key"_s);
    PonTexto(optIndice, u"Indice"_s, u"Index"_s);
    PonTexto(chkIndiceUnico, u"Indice Unico"_s, u"Unique Index"_s);
    PonTexto(chkAgrupado, u"Indice Agrupado"_s, u"Clustered Index"_s);
    PonTexto(fraGrupo, u" Grupo de archivos de indices  "_s, u" Group Files Index  "_s);
    PonTexto(lblFillFactor, u"Factor Relleno:"_s, u"Fill Factor:"_s);
    PonCabecera(TDBGridIndices, ColCampo::Estado, u"Estado"_s, u"State"_s);
    PonCabecera(TDBGridIndices, ColCampoIndice::Nombre, u"Nombre de Campo"_s, u"Field Name"_s);
}

void frmTabla::PonIdiomaRelaciones()
{
    PonPestaña(SSTabIndicesRelaciones, 2, u"Relaciones"_s, u"Relations"_s);
    PonTexto(lblNombreRelacion, u"Nombre Relación:"_s, u"Relacition Name:"_s);
    PonTexto(cmdNuevaRelacion, u"&Nueva"_s, u"&New"_s);
    PonTexto(cmdEliminarRelacion, u"&Eliminar"_s, u"&Delete"_s);
    PonTexto(lblRelaciones, u"Relación Seleccionada:"_s, u"Selected Relation:"_s);
    PonTexto(lblExterna, u"Tabla externa:"_s, u"Foreing Table:"_s);
    PonTexto(lblClavesPrincipales, u"Claves Principales"_s, u"Principals Keys"_s);
    PonTexto(lblClavesExterna, u"Claves Expternas"_s, u"ForeingKey"_s);
    // The two labels are the headings of the grid's columns.
    PonCabecera(TDBGridRelaciones, ColCampo::Estado, u"Estado"_s, u"State"_s);
    TDBGridRelaciones->Columns(ColCampoRelacion::Propia).setCaption(lblClavesPrincipales->text());
    TDBGridRelaciones->Columns(ColCampoRelacion::Externa).setCaption(lblClavesExterna->text());
    TDBGridRelaciones->Columns(ColCampoRelacion::TablaExterna).setCaption(lblExterna->text());
}

void frmTabla::PonFoco(QWidget* control)
{
    for (int pagina = 0; pagina < SSTabIndicesRelaciones->count(); ++pagina)
        if (SSTabIndicesRelaciones->widget(pagina)->isAncestorOf(control))
            SSTabIndicesRelaciones->setCurrentIndex(pagina);
    if (auto* rejilla = qobject_cast<controls::DataGrid*>(control))
        rejilla->SetFocus();
    else
        control->setFocus();
}

} // namespace formularios
