#include "query/frmProcedimiento.h"

#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "query/ObjetoTexto.h"

using namespace Qt::Literals::StringLiterals;

controls::Slot<formularios::frmProcedimiento> frmProcedimiento;

namespace formularios {

namespace {

const ClaseObjeto& ClaseProcedimiento()
{
    static const ClaseObjeto clase{u"CREATE PROCEDURE [NOMBRE_PROCEDIMIENTO] AS "_s,
                                   u" where obj.type = 'P'"_s, u"DROP PROCEDURE "_s};
    return clase;
}

} // namespace

frmProcedimiento::frmProcedimiento()
{
    setupUi(this);
    connect(cmdAceptar, &QPushButton::clicked, this, &frmProcedimiento::cmdAceptar_Click);
    connect(cmdCancelar, &QPushButton::clicked, this, &frmProcedimiento::cmdCancelar_Click);
}

void frmProcedimiento::Form_Load()
try {
    txtSQL->setText(ClaseProcedimiento().textoNuevo);
} catch (...) {
    InformaError(u"Form_Load"_s);
}

void frmProcedimiento::Form_Activate()
try {
    setTop(0);
    setLeft(0);
    PonIdioma();
} catch (...) {
    InformaError(u"Form_Activate"_s);
}

void frmProcedimiento::PonIdioma()
try {
    PonIdiomaEditor(this, cmdAceptar, cmdCancelar);
} catch (...) {
    InformaError(u"PonIdioma"_s);
}

void frmProcedimiento::CapturaProcedimiento_SQL(const QString& nombre)
try {
    QString texto;
    if (CapturaTextoObjeto_SQL(ClaseProcedimiento(), nombre, texto, NombreObjeto))
        txtSQL->setText(texto);
} catch (...) {
    InformaError(u"CapturaProcedimiento_SQL"_s);
}

void frmProcedimiento::cmdAceptar_Click()
try {
    ReemplazaObjeto_SQL(ClaseProcedimiento(), NombreObjeto, txtSQL->Text());
    ::frmAdministrador->MuestraProcedimientos(BaseDatosActual);
    Unload();
} catch (...) {
    InformaError(u"cmdAceptar_Click"_s);
}

void frmProcedimiento::cmdCancelar_Click()
{
    Unload();
}

} // namespace formularios
