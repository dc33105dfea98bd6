#include "backup/frmCopiaSeguridad.h"

#include "backup/Copia.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"
#include "platform/controls/Pointer.h"

using namespace Qt::Literals::StringLiterals;

controls::Slot<formularios::frmCopiaSeguridad> frmCopiaSeguridad;

namespace formularios {

frmCopiaSeguridad::frmCopiaSeguridad()
{
    setupUi(this);
    connect(cboBD, &controls::ComboBox::Click, this, &frmCopiaSeguridad::cboBD_Click);
    connect(cmdAceptar, &QPushButton::clicked, this, &frmCopiaSeguridad::cmdAceptar_Click);
    connect(cmdCancelar, &QPushButton::clicked, this, &frmCopiaSeguridad::cmdCancelar_Click);
    EnlazaSalidaCampo(txtNombreCopia);
    EnlazaSalidaCampo(txtDestino);
}

void frmCopiaSeguridad::Form_Load()
try {
    CargaBD();
} catch (...) {
    InformaError(u"Form_Load"_s);
}

void frmCopiaSeguridad::Form_Activate()
try {
    setTop(0);
    setLeft(0);
    PonIdioma();
} catch (...) {
    InformaError(u"Form_Activate"_s);
}

void frmCopiaSeguridad::PonIdioma()
try {
    PonTexto(this, u"Restaurar copia seguridad"_s, u"Restore backup"_s);
    PonTexto(cmdAceptar, u"&Aceptar"_s, u"&Acept"_s);
    PonTexto(cmdCancelar, u"&Cancelar"_s, u"&Cancel"_s);
    PonTexto(fraBaseDatos, u" Base de Datos "_s, u" Database "_s);
    PonTexto(lblNombre, u"Nombre Copia:"_s, u"Name:"_s);
    PonTexto(fraDestino, u" Destino "_s, u" Source "_s);
    PonTexto(FraTipo, u" Tipo de Copia "_s, u" Type "_s);
    PonTexto(chkComprobar, u"Comprobar la copia al concluir"_s, u"Verify backup"_s);
    PonTexto(optCompleta, u"Completa"_s, u"Full"_s);
    PonTexto(optDiferencial, u"Diferencial"_s, u"Diferential"_s);
    PonTexto(optRegistro, u"Registro transacciones"_s, u"Transactions log"_s);
} catch (...) {
    InformaError(u"PonIdioma"_s);
}

void frmCopiaSeguridad::CargaBD()
try {
    if (const int actual = CargaBases(cboBD, BaseDatosActual); actual >= 0) {
        cboBD->setListIndex(actual);
        txtNombreCopia->setText(u"Copia"_s + cboBD->Text());
    }
    controls::setMousePointer(controls::Pointer::Default);
} catch (...) {
    InformaErrorYPuntero(u"CargaBD"_s);
}

void frmCopiaSeguridad::cboBD_Click()
try {
    for (QRadioButton* opcion : {optCompleta, optDiferencial, optRegistro})
        opcion->setEnabled(true);
    if (cboBD->ListIndex() == -1)
        return;
    ado::Recordset modelo;
    if (CreaRecordset(ConexionSQL, modelo,
                      u"select DATABASEPROPERTYEX ('"_s + cboBD->Text() + u"','Recovery')"_s) &&
        modelo.RecordCount() > 0 && TextoCampo(modelo, 0) == u"SIMPLE"_s)
        optRegistro->setEnabled(false);
} catch (...) {
    InformaError(u"cboBD_Click"_s);
}

void frmCopiaSeguridad::cmdAceptar_Click()
try {
    if (!HayBaseElegida(cboBD))
        return;
    controls::setMousePointer(controls::Pointer::Hourglass);
    CreaDispositivo();
    Ejecuta_SQL(Sentencia());
    if (chkComprobar->isChecked()) {
        Ejecuta_SQL(u"RESTORE VERIFYONLY  FROM "_s + txtNombreCopia->Text());
        MuestraMensaje(u"Copia y verificación realizada con exito."_s,
                       u"Copy and verification realized successfully"_s);
    } else {
        MuestraMensaje(u"Copia realizada con exito."_s, u"Copy realized successfully"_s);
    }
    controls::setMousePointer(controls::Pointer::Default);
    Unload();
} catch (...) {
    InformaErrorYPuntero(u"cmdAceptar_Click"_s);
}

// An earlier device of that name gives way.
void frmCopiaSeguridad::CreaDispositivo()
{
    const QString copia = txtNombreCopia->Text();
    ado::Recordset dispositivos;
    if (CreaRecordset(ConexionSQL, dispositivos,
                      u"select * from master.dbo.sysdevices where name = '"_s + copia + u"'"_s) &&
        dispositivos.RecordCount() > 0)
        Ejecuta_SQL(u"EXEC sp_dropdevice '"_s + copia + u"'"_s);
    Ejecuta_SQL(u"EXEC sp_addumpdevice 'disk', '"_s + copia + u"',   '"_s + txtDestino->Text() + u"'"_s);
}

QString frmCopiaSeguridad::Sentencia() const
{
    TipoCopia tipo = TipoCopia::Completa;
    if (optRegistro->isChecked())
        tipo = TipoCopia::Registro;
    else if (optDiferencial->isChecked())
        tipo = TipoCopia::Diferencial;
    return SentenciaCopia(tipo, cboBD->Text(), txtNombreCopia->Text());
}

void frmCopiaSeguridad::cmdCancelar_Click()
{
    Unload();
}

} // namespace formularios
