// The object browser: the tree of the server's folders, and the list of what the chosen one holds.
#pragma once

#include "platform/ado/Recordset.h"
#include "platform/controls/Form.h"
#include "platform/controls/ImageList.h"
#include "platform/controls/Slot.h"
#include "ui_frmAdministrador.h"

#include <array>

namespace formularios {

class frmAdministrador : public controls::Form, public Ui::frmAdministrador
{
public:
    frmAdministrador();

    void PonIdioma();

    /// Rebuilds the whole tree from the server; the list keeps what it showed.
    void CapturaBD_SQL();

    // Fill the list. The database of the first three is the one in PrefijoBD.
    void MuestraTablas(const QString& Nombre);
    void MuestraProcedimientos(const QString& BaseDatos);
    void MuestraVistas();
    void MuestraUsuarios(const QString& BaseDatos);
    void Muestra_InicioSesion();

    /// Turns the entries of the object menu on by the key of what was clicked. The whole key is
    /// searched, so an object's name can steer the result.
    void GestionMenu(const QString& Clave);

    void trvBD_Click();
    void trvbd_MouseDown(int Button, int Shift, int x, int y);
    void ltvTablas_MouseDown(int Button, int Shift, int x, int y);

    /// The selected node or item, or the text of the node's parent.
    /// @throws basic::RuntimeError 91 when there is none.
    controls::TreeView::Node* NodoSeleccionado() const;
    controls::ListItem* ItemSeleccionado() const;
    QString TextoPadre() const;

protected:
    void Form_Load() override;
    void Form_Activate() override;
    void Form_Unload(bool& cancel) override;

private:
    /// A folder of every database, in the language that the tree was built in.
    struct Carpeta
    {
        QString Prefijo;
        QString Texto;
        QString Imagen;
    };

    controls::ImageList* ImageList1;
    std::array<Carpeta, 4> Carpetas;

    void AñadeBases(ado::Recordset& bases);
    /// Runs when a database is first opened: with thousands of them their folders would be most of the
    /// tree, and of the time to build it.
    void AñadeCarpetas(const controls::TreeView::Node* base);
    void AñadeSeguridad();
    void MuestraCarpeta(const controls::TreeView::Node* nodo);
    void PonCabecerasObjetos();
    bool AbreLista(ado::Recordset& registros, const QString& texto, const QString& palabraEspañol,
                   const QString& palabraIngles);
};

} // namespace formularios

extern controls::Slot<formularios::frmAdministrador> frmAdministrador;
