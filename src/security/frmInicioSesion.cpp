// The form itself: loading, captions, and what its buttons do.
#include "security/frmInicioSesion.h"

#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"
#include "platform/controls/Pointer.h"

using namespace Qt::Literals::StringLiterals;

controls::Slot<formularios::frmInicioSesion> frmInicioSesion;

namespace formularios {

frmInicioSesion::frmInicioSesion()
{
    setupUi(this);
    for (auto* caja : {txtUsuario, txtClave, txtConfClave})
        EnlazaSalidaCampo(caja);
    connect(cmdAceptar, &QPushButton::clicked, this, &frmInicioSesion::cmdAceptar_Click);
    connect(cmdCancelar, &QPushButton::clicked, this, &frmInicioSesion::cmdCancelar_Click);
    EnlazaAccesos();
}

void frmInicioSesion::Form_Load()
try {
    txtUsuario->setText(UsuarioActual);
    controls::setMousePointer(controls::Pointer::Hourglass);
    Cargando = true;
    CapturaBaseDatos(txtUsuario->Text());
    CapturaFunciones();
    TDBGridBaseDatos->setArray(&BaseDatosLogin);
    TDBGridBaseDatos->ReBind();
    txtUsuario->setEnabled(UsuarioActual.isEmpty());
    Cargando = false;
    controls::setMousePointer(controls::Pointer::Default);
} catch (...) {
    Cargando = false;
    InformaErrorYPuntero(u"Form_Load"_s);
}

void frmInicioSesion::Form_Activate()
try {
    setLeft(0);
    setTop(0);
    PonIdioma();
} catch (...) {
    InformaError(u"Form_Activate"_s);
}

void frmInicioSesion::PonIdioma()
try {
    PonTexto(this, u"Inicio Sesion"_s, u"Inicio Sesion"_s);
    PonTexto(cmdAceptar, u"&Aceptar"_s, u"&Accept"_s);
    PonTexto(cmdCancelar, u"&Cancelar"_s, u"&Cancel"_s);
    PonTexto(lblUsuario, u"Usuario:"_s, u"User:"_s);
    PonTexto(lblContraseña, u"Contraseña:"_s, u"Password:"_s);
    PonTexto(lblConfirmarContraseña, u"Confirmar Contraseña:"_s, u"Confirm Password:"_s);
    PonTexto(fraAccesoBD, u" Acceso a base de datos "_s, u" Database Access "_s);
    PonTexto(fraFunciones, u" Funciones para la base de datos "_s, u" Database functions "_s);
} catch (...) {
    InformaError(u"PonIdioma"_s);
}

CajasClave frmInicioSesion::Cajas() const
{
    return {txtUsuario, txtClave, txtConfClave};
}

bool frmInicioSesion::Comprobar()
try {
    return CompruebaNueva(Cajas());
} catch (...) {
    InformaError(u"Comprobar"_s);
    return false;
}

// From now on the login stands, with the password of the boxes: only another one is sent again.
void frmInicioSesion::PonCreado()
{
    txtUsuario->setEnabled(false);
    txtClave->setModified(false);
    txtConfClave->setModified(false);
}

void frmInicioSesion::CreaLogin()
{
    AñadeLogin_SQL(Cajas());
    PonCreado();
    if (::frmAdministrador.exists())
        ::frmAdministrador->Muestra_InicioSesion();
}

void frmInicioSesion::cmdAceptar_Click()
try {
    if (txtUsuario->isEnabled()) {
        if (!Comprobar())
            return;
        CreaLogin();
    } else if (txtClave->isModified() || txtConfClave->isModified()) {
        if (!CompruebaCambio(Cajas()))
            return;
        if (HayClaveNueva(Cajas()))
            CambiaClave_SQL(Cajas(), ClaveAnterior);
    }
    Unload();
} catch (...) {
    InformaError(u"cmdAceptar_Click"_s);
}

void frmInicioSesion::cmdCancelar_Click()
{
    Unload();
}

} // namespace formularios
