// The query window: a database, a text, and the rows that it brings.
#pragma once

#include "platform/ado/Recordset.h"
#include "platform/basic/RuntimeError.h"
#include "platform/controls/Form.h"
#include "platform/controls/Slot.h"
#include "ui_frmAnalizadorConsultas.h"

#include <optional>
#include <vector>

namespace formularios {

class frmAnalizadorConsultas : public controls::Form, public Ui::frmAnalizadorConsultas
{
public:
    frmAnalizadorConsultas();

    void PonIdioma();

    /// Runs the selected text, or the whole when the selection is blank; blank text runs nothing.
    void Ejecuta();

    void CargaComboBDSQL();

    void cboBD_Click();
    void cmdEjecuta_Click();
    void cboResultados_Click();
    void txtSQL_KeyDown(int KeyCode, int Shift);

protected:
    void Form_Load() override;
    void Form_Activate() override;

private:
    /// What a run brought beside its rows.
    struct Balance
    {
        QStringList lineas;      ///< what the server said, errors behind the first result included
        QList<qint64> afectadas; ///< rows changed, one entry a counting statement without rows
        std::vector<basic::RuntimeError> errores; ///< behind the first result
    };

    void CreaRecordset(ado::Connection& Conexion, ado::Recordset& Registros, const QString& Texto,
                       bool& Correcto);
    QString TextoParaEjecutar() const;

    void MuestraResultados();
    Balance CapturaResultados();
    static std::optional<ado::Recordset> SiguienteResultado(ado::Recordset& actual, Balance& balance);
    void CargaConjuntos();
    void MuestraSinFilas(const QList<qint64>& afectadas);
    void MuestraMensajes(const QStringList& lineas);

    ado::Recordset Registros;               ///< the last run's first result
    std::vector<ado::Recordset> Conjuntos_; ///< all its results that have columns
};

} // namespace formularios

extern controls::Slot<formularios::frmAnalizadorConsultas> frmAnalizadorConsultas;
