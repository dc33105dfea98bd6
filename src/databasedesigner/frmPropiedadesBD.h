// The properties of a database: its facts, options, filegroups, files and rights. Accepting creates the
// database or changes it; rights, and the removal of files and groups, act at once.
#pragma once

#include "databasedesigner/CargaBD.h"
#include "databasedesigner/OpcionesBD.h"
#include "platform/controls/Form.h"
#include "platform/controls/Slot.h"
#include "ui_frmPropiedadesBD.h"

#include <array>

namespace formularios {

/// Works on BaseDatosActual; NuevaBD tells whether it is to be made.
class frmPropiedadesBD : public controls::Form, public Ui::frmPropiedadesBD
{
public:
    frmPropiedadesBD();

    DatosBD Datos;

    void PonIdioma();

    // general and options
    void DatosGenerales();
    void PonOpciones();

    // the grids of files and groups
    bool CompruebaCeldaArchivos(int columna);
    bool CompruebaCeldaTransacciones(int columna);
    void TDBGridArchivos_BeforeColEdit(int columna, bool& cancela);
    void TDBGridTransacciones_BeforeColEdit(int columna, bool& cancela);
    void TDBGridArchivos_BeforeColUpdate(int columna, bool& cancela);
    void TDBGridTransacciones_BeforeColUpdate(int columna, bool& cancela);
    void TDBGridGrupos_KeyPress(int& tecla);
    void cmdEliminarFila_Click();

    // creation and modification
    void cmdAceptar_Click();
    void cmdCancelar_Click();

    // rights
    void TDBGridPermisos_AfterColUpdate(int columna);

protected:
    void Form_Load() override;
    void Form_Activate() override;

private:
    bool EsperandoUbicacion = false; ///< a folder is being picked for the current cell of a file
    bool CeldaRechazada = false;     ///< the last edit of a file ended with its old value

    void EnlazaRejillas();
    void EnlazaArchivos(controls::DataGrid* rejilla);
    void PonColumnas();
    static void PonColumnasArchivos(controls::DataGrid* rejilla, const QString& enPorcentaje);
    void CargaBDExistente();
    void CargaModelos();
    [[nodiscard]] std::array<QCheckBox*, NumeroOpciones> CajasOpciones() const;
    [[nodiscard]] OpcionesBD OpcionesElegidas() const;
    void RecogeUbicacion();

    void PonIdiomaGeneral();
    void PonIdiomaOpciones();
    void PonIdiomaArchivos();
    void PonIdiomaPermisos();

    bool CompruebaCelda(controls::DataGrid* rejilla, int columna);
    bool CompruebaNumero(controls::DataGrid* rejilla, int columna);
    bool CompruebaLimite(controls::DataGrid* rejilla);
    static void PonPorDefecto(controls::DataGrid* rejilla, const QString& grupo);
    void RehusaEdicion(controls::DataGrid* rejilla, int columna, bool& cancela);
    [[nodiscard]] bool GrupoDesconocido(controls::DataGrid* rejilla);
    [[nodiscard]] bool Encoge(controls::DataGrid* rejilla);
    void PideUbicacion(int columna);
    void EntraEnCelda(controls::DataGrid* rejilla, int& tecla);
    void EliminaArchivo(controls::DataGrid* rejilla, Matriz& archivos);
    void EliminaGrupo();
    bool TerminaEdicion();
    bool GuardaBD();
};

} // namespace formularios

extern controls::Slot<formularios::frmPropiedadesBD> frmPropiedadesBD;
