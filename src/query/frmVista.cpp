#include "query/frmVista.h"

#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "query/ObjetoTexto.h"

using namespace Qt::Literals::StringLiterals;

controls::Slot<formularios::frmVista> frmVista;

namespace formularios {

namespace {

const ClaseObjeto& ClaseVista()
{
    static const ClaseObjeto clase{u"CREATE VIEW [NOMBRE_VISTA] AS "_s, u" where obj.type = 'V'"_s,
                                   u"DROP VIEW "_s};
    return clase;
}

} // namespace

frmVista::frmVista()
{
    setupUi(this);
    connect(cmdAceptar, &QPushButton::clicked, this, &frmVista::cmdAceptar_Click);
    connect(cmdCancelar, &QPushButton::clicked, this, &frmVista::cmdCancelar_Click);
}

void frmVista::Form_Load()
try {
    txtSQL->setText(ClaseVista().textoNuevo);
} catch (...) {
    InformaError(u"Form_Load"_s);
}

void frmVista::Form_Activate()
try {
    setTop(0);
    setLeft(0);
    PonIdioma();
} catch (...) {
    InformaError(u"Form_Activate"_s);
}

void frmVista::PonIdioma()
try {
    PonIdiomaEditor(this, cmdAceptar, cmdCancelar);
} catch (...) {
    InformaError(u"PonIdioma"_s);
}

void frmVista::CapturaVistas_SQL(const QString& nombre)
try {
    QString texto;
    if (CapturaTextoObjeto_SQL(ClaseVista(), nombre, texto, NombreObjeto))
        txtSQL->setText(texto);
} catch (...) {
    InformaError(u"CapturaVistas_SQL"_s);
}

void frmVista::cmdAceptar_Click()
try {
    ReemplazaObjeto_SQL(ClaseVista(), NombreObjeto, txtSQL->Text());
    ::frmAdministrador->MuestraVistas();
    Unload();
} catch (...) {
    InformaError(u"cmdAceptar_Click"_s);
}

void frmVista::cmdCancelar_Click()
{
    Unload();
}

} // namespace formularios
