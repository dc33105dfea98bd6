#include "query/frmAnalizadorConsultas.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"
#include "core/mdiPrincipal.h"
#include "platform/controls/Menus.h"
#include "platform/controls/Pointer.h"

using namespace Qt::Literals::StringLiterals;

controls::Slot<formularios::frmAnalizadorConsultas> frmAnalizadorConsultas;

namespace formularios {

namespace {

constexpr int TeclaF5 = 116;
constexpr int BloqueoOptimista = 3; // what sets this copy of CreaRecordset apart

} // namespace

frmAnalizadorConsultas::frmAnalizadorConsultas()
{
    setupUi(this);
    cboResultados->hide();
    txtMensajes->hide();
    connect(cboBD, &controls::ComboBox::Click, this, &frmAnalizadorConsultas::cboBD_Click);
    connect(cmdEjecuta, &QPushButton::clicked, this, &frmAnalizadorConsultas::cmdEjecuta_Click);
    connect(cboResultados, &controls::ComboBox::Click, this, &frmAnalizadorConsultas::cboResultados_Click);
    connect(txtSQL, &controls::SqlEditor::KeyDown, this, &frmAnalizadorConsultas::txtSQL_KeyDown);
}

void frmAnalizadorConsultas::PonIdioma()
try {
    PonTexto(this, u"Analizado Consultas"_s, u"Query Analyzer"_s);
    PonTexto(cmdEjecuta, u"(F5) &Ejecutar"_s, u"(F5) &Execute"_s);
} catch (...) {
    InformaError(u"PonIdioma"_s);
}

void frmAnalizadorConsultas::Form_Load()
try {
    CargaComboBDSQL();
} catch (...) {
    InformaError(u"Form_Load"_s);
}

void frmAnalizadorConsultas::Form_Activate()
try {
    setTop(0);
    setLeft(0);
    controls::setVisible(::mdiPrincipal->mnuBaseDatos, false);
    controls::setVisible(::mdiPrincipal->mnuConsulta, true);
    PonIdioma();
} catch (...) {
    InformaError(u"Form_Activate"_s);
}

void frmAnalizadorConsultas::CargaComboBDSQL()
try {
    cboBD->Clear();
    ado::Recordset bases;
    bool correcto = false;
    CreaRecordset(ConexionSQL, bases, u"Select name from master.dbo.sysdatabases order by name"_s, correcto);
    if (correcto) {
        for (; !bases.Eof(); bases.MoveNext())
            cboBD->AddItem(TextoCampo(bases, u"Name"_s).trimmed());
        BuscarComboCadena(u"master"_s, cboBD);
    }
    controls::setMousePointer(controls::Pointer::Default);
} catch (...) {
    InformaErrorYPuntero(u"CargaComboBDSQL"_s);
}

void frmAnalizadorConsultas::CreaRecordset(ado::Connection& Conexion, ado::Recordset& Registros,
                                           const QString& Texto, bool& Correcto)
{
    Correcto = ::CreaRecordset(Conexion, Registros, Texto, BloqueoOptimista);
}

void frmAnalizadorConsultas::cboBD_Click()
try {
    if (cboBD->ListIndex() == -1)
        return;
    const QString base = cboBD->List(cboBD->ListIndex());
    if (base.isEmpty())
        return;
    Ejecuta_SQL(u"Use "_s + base);
} catch (...) {
    InformaError(u"cboBD_Click"_s);
}

void frmAnalizadorConsultas::cmdEjecuta_Click()
{
    Ejecuta();
}

void frmAnalizadorConsultas::txtSQL_KeyDown(int KeyCode, int /*Shift*/)
{
    if (KeyCode == TeclaF5)
        Ejecuta();
}

QString frmAnalizadorConsultas::TextoParaEjecutar() const
{
    QString seleccion = txtSQL->SelText();
    if (!seleccion.trimmed().isEmpty())
        return seleccion;
    const QString texto = txtSQL->Text();
    return texto.trimmed().isEmpty() ? QString() : texto;
}

void frmAnalizadorConsultas::Ejecuta()
try {
    const QString texto = TextoParaEjecutar();
    if (texto.isEmpty())
        return;
    bool correcto = false;
    CreaRecordset(ConexionSQL, Registros, texto, correcto);
    if (correcto)
        MuestraResultados();
    else
        MuestraMensajes(ConexionSQL.Messages());
} catch (...) {
    InformaError(u"Ejecuta"_s);
}

} // namespace formularios
