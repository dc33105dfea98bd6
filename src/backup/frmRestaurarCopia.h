// Restores a backup file over a database, each of its files where the user wants it.
#pragma once

#include "platform/basic/BoundedArray.h"
#include "platform/controls/Form.h"
#include "platform/controls/Slot.h"
#include "ui_frmRestaurarCopia.h"

namespace formularios {

class frmRestaurarCopia : public controls::Form, public Ui::frmRestaurarCopia
{
public:
    frmRestaurarCopia();

    void PonIdioma();
    void CargaBD();

    void DriveUbicacion_Change();
    void DirUbicacion_Change();
    void FileUbicacion_Click();
    void TDBGridFicheros_KeyPress(int& KeyAscii);
    void cmdAceptar_Click();
    void cmdCancelar_Click();

protected:
    void Form_Load() override;
    void Form_Activate() override;

private:
    /// The chosen file with its folder.
    [[nodiscard]] QString Archivo() const;
    void CapturaFicheros_SQL(const QString& archivo);

    basic::BoundedArray2<QString> Ficheros; ///< of the backup: logical name, physical name, unused
    int NumeroFicheros = 0;
};

} // namespace formularios

extern controls::Slot<formularios::frmRestaurarCopia> frmRestaurarCopia;
