// A login: its name and password, and its access to databases and roles, which is sent as it is ticked.
#pragma once

#include "platform/basic/BoundedArray.h"
#include "platform/controls/Form.h"
#include "platform/controls/Slot.h"
#include "security/Funciones_SQL.h"
#include "ui_frmInicioSesion.h"

/// Columns of TDBGridBaseDatos.
namespace ColBaseDatos {
inline constexpr int Acceso = 0; ///< "-1" the login has access, "0" not
inline constexpr int Nombre = 1;
inline constexpr int Usuario = 2; ///< always empty
inline constexpr int Ultima = 3;
} // namespace ColBaseDatos

namespace formularios {

class frmInicioSesion : public controls::Form, public Ui::frmInicioSesion
{
public:
    frmInicioSesion();

    basic::BoundedArray2<QString> BaseDatosLogin; ///< a row for each database

    void PonIdioma();

    // access to databases and roles
    void CapturaBaseDatos(const QString& login);
    void CapturaFunciones();
    void PermisosFunciones(const QString& bd);
    void TDBGridBaseDatos_BeforeColUpdate(bool& cancela);
    void TDBGridBaseDatos_AfterColUpdate();
    void TDBGridBaseDatos_RowColChange();
    void lstFunciones_ItemCheck(int item);

    bool Comprobar();
    void cmdAceptar_Click();
    void cmdCancelar_Click();

protected:
    void Form_Load() override;
    void Form_Activate() override;

private:
    bool Cargando = false; ///< the list of roles is being filled
    QString ClaveAnterior; ///< of the login; never asked for

    [[nodiscard]] CajasClave Cajas() const;
    [[nodiscard]] QString BaseDatosFila() const;
    void EnlazaAccesos();
    void CreaLogin();
    void PonCreado();
};

} // namespace formularios

extern controls::Slot<formularios::frmInicioSesion> frmInicioSesion;
