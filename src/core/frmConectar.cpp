#include "core/frmConectar.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"
#include "core/mdiPrincipal.h"
#include "platform/controls/Menus.h"
#include "platform/controls/Pointer.h"

using namespace Qt::Literals::StringLiterals;

controls::Slot<formularios::frmConectar> frmConectar;

namespace formularios {

frmConectar::frmConectar()
{
    setupUi(this);
    for (auto* caja : {txtServidor, txtUsuario, txtClave})
        EnlazaSalidaCampo(caja);
    connect(cmdConectar, &QPushButton::clicked, this, &frmConectar::cmdConectar_Click);
}

void frmConectar::Form_Load()
try {
    txtUsuario->setText(u"sa"_s);
    txtServidor->setText(qEnvironmentVariable("QUERMO_SERVER", u"(local)"_s));
} catch (...) {
    InformaError(u"Form_Load"_s);
}

void frmConectar::Form_Activate()
{
    PonIdioma();
}

void frmConectar::PonIdioma()
try {
    PonTexto(this, u"Conectar"_s, u"Connect"_s);
    PonTexto(cmdConectar, u"&Conectar"_s, u"&Connect"_s);
    PonTexto(lblServidor, u"Servidor:"_s, u"Server:"_s);
    PonTexto(lblUsuario, u"Usuario:"_s, u"User:"_s);
    PonTexto(lblClave, u"Contraseña:"_s, u"Password:"_s);
} catch (...) {
    InformaError(u"PonIdioma"_s);
}

void frmConectar::cmdConectar_Click()
try {
    if (txtServidor->Text().trimmed().isEmpty()) {
        MuestraMensaje(u"Introduzca servidor."_s, u"Insert server."_s);
        txtServidor->setFocus();
        return;
    }
    if (txtUsuario->Text().trimmed().isEmpty()) {
        MuestraMensaje(u"Introduzca usuario."_s, u"Insert user."_s);
        txtUsuario->setFocus();
        return;
    }
    controls::setMousePointer(controls::Pointer::Hourglass);
    ServidorSQL = txtServidor->Text();
    UsuarioSQL = txtUsuario->Text();
    ClaveSQL = txtClave->Text();
    ProveedorSQL = u"SQLOLEDB.1"_s;
    const bool conectado = Conecta_SQL(ConexionSQL, u"master"_s);
    controls::setVisible(::mdiPrincipal->mnuAdministrador, conectado);
    controls::setVisible(::mdiPrincipal->mnuAnalizadorConsultas, conectado);
    controls::setMousePointer(controls::Pointer::Default);
    Unload();
} catch (...) {
    InformaError(u"cmdConectar_Click"_s);
}

} // namespace formularios
