// The table designer: the columns of a table in a grid, its keys and indexes, its relations. Closing it
// saves.
#pragma once

#include "platform/controls/Form.h"
#include "tabledesigner/DatosTabla.h"
#include "ui_frmTabla.h"

#include <QPointer>

#include <array>

namespace formularios {

class frmTabla : public controls::Form, public Ui::frmTabla
{
public:
    frmTabla();

    /// The design. The opener sets `ClaveTabla`, `NombreTablaInicial` and `EsTablaSistema` in it before the
    /// form loads; `NuevaTabla` tells whether there is a table to load.
    DatosTabla Datos;

    void PonIdioma();

    // the grid of columns
    bool CompruebaCelda(int columna);
    void GestionaBloqueoCeldas();
    void InsertarFila();
    void EliminarFila();
    void TDBGridTabla_ColEdit(int columna, bool& cancela);
    void TDBGridTabla_AfterColEdit(int columna);
    void TDBGridTabla_BeforeColUpdate(int columna, bool& cancela);
    void TDBGridTabla_BeforeRowColChange();
    void TDBGridTabla_RowColChange();
    void TDBGridTabla_KeyDown(int& tecla);
    void TDBGridTabla_KeyPress(int& tecla);
    void TDBGridTabla_MouseDown(int boton, int x, int y);
    void TDBGridTabla_LostFocus();
    void TDBGridTabla_ValueItemError(int columna);
    void cboGrupoArchivoDatos_Click();

    // keys and indexes
    void CargaIndices();
    void CargaValoresIndices();
    void cboIndices_Click();
    void cboGrupoArchivoIndices_Click();
    void optClavePrimaria_Click();
    void optIndice_Click();
    void chkAgrupado_Click();
    void chkIndiceUnico_Click();
    void cmdNuevoIndice_Click();
    void cmdEliminarIndice_Click();
    void TDBGridIndices_ButtonClick();
    void TDBGridIndices_LostFocus();
    void TDBGridIndices_ValueItemError(int columna);
    void txtNombreIndice_KeyPress(int tecla);
    void txtNombreIndice_Validate(bool& cancela);
    void txtFillFactor_Validate(bool& cancela);

    // relations
    void CargaRelaciones();
    void cboRelaciones_Click();
    void cmdNuevaRelacion_Click();
    void cmdEliminarRelacion_Click();
    void TDBGridRelaciones_ButtonClick(int columna);
    void TDBGridRelaciones_LostFocus();
    void TDBGridRelaciones_ValueItemError(int columna);
    void txtNombreRelacion_KeyPress(int tecla);
    void txtNombreRelacion_Validate(bool& cancela);

protected:
    void Form_Load() override;
    void Form_Activate() override;
    void Form_QueryUnload(bool& cancela) override;
    void Form_Unload(bool& cancela) override;

private:
    // the window: loading, captions, closing
    void EnlazaCampos();
    void EnlazaIndices();
    void EnlazaRelaciones();
    void PonColumnas();
    void CargaTablaNueva();
    void CargaTablaExistente();
    void CargaGrupoArchivos();
    void CargaTablasExternas();
    void PonIdiomaCampos();
    void PonIdiomaIndices();
    void PonIdiomaRelaciones();
    /// Makes the page of a control the current one and gives the control the focus.
    void PonFoco(QWidget* control);
    /// What the model needs to know of the form: the name, the filegroup, the current row.
    void CapturaFormulario();
    [[nodiscard]] controls::DataGrid* RejillaDePagina() const;
    /// Asks and saves. False when the form must stay.
    bool TerminaDiseño();
    bool Guarda();
    void RehaceLista() const;

    /// Takes a pending edit of a grid in, by moving the row away and back.
    static void ConfirmaCelda(controls::DataGrid* rejilla);
    /// The same for the text box that has the focus.
    void ConfirmaCaja(bool& cancela);
    /// The cells of the current row that the model has changed go back to the grid.
    void DevuelveFila();
    void PonTipoEnFila();
    void PasaALaSiguiente();

    void HabilitaIndices(bool hay);
    void HabilitaRelaciones(bool hay);
    void EnlazaMatrizIndice(int posicion);
    void EnlazaMatrizRelacion(int posicion);
    void QuitaIndice(int posicion);
    void QuitaRelacion(int posicion);
    /// The list of the relations anew, when some have left the stores.
    void MuestraRelaciones();
};

} // namespace formularios

/// The designers by their slots; a slot that is used again forgets the older one, which stays on screen.
extern std::array<QPointer<formularios::frmTabla>, UltimaRanura + 1> TablasAbiertas;
