// The tabs of filegroups and files: what their grids ask and are told while the user types.
#include "backup/frmUbicacion.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"
#include "databasedesigner/ModificaBD.h"
#include "databasedesigner/Paginas.h"
#include "databasedesigner/PermisosBD.h"
#include "databasedesigner/frmPropiedadesBD.h"
#include "platform/basic/Numbers.h"
#include "platform/controls/Keys.h"

#include <QApplication>

using namespace Qt::Literals::StringLiterals;

namespace formularios {

namespace {

constexpr int UltimaFilaRejilla = 200;

// Enter in the last column goes on in the next row.
void PasaDeFila(controls::DataGrid* rejilla)
{
    rejilla->setRow(rejilla->Row() == UltimaFilaRejilla ? 0 : rejilla->Row() + 1);
}

// A key other than Enter in a column that takes none.
void RehusaSiBloqueada(controls::DataGrid* rejilla, int& tecla)
{
    if (!rejilla->Columns(rejilla->Col()).Locked())
        return;
    tecla = 0;
    QApplication::beep();
}

// Without the tick its amount is empty, and with it the cursor goes there.
void SigueMarca(controls::DataGrid* rejilla, int marca, int cantidad, int siguiente)
{
    if (ValorCelda(rejilla->Columns(marca).Text()) == 0)
        rejilla->Columns(cantidad).setText(QString());
    else
        rejilla->setCol(siguiente);
}

void RejillaAfterColUpdate(controls::DataGrid* rejilla, int columna)
try {
    if (columna == ColArchivo::Automatico)
        SigueMarca(rejilla, columna, ColArchivo::Cantidad, ColArchivo::Unidad);
    else if (columna == ColArchivo::Limitado)
        SigueMarca(rejilla, columna, ColArchivo::Maximo, ColArchivo::Maximo);
} catch (...) {
    InformaError(u"TDBGridArchivos_AfterColUpdate"_s);
}

} // namespace

void frmPropiedadesBD::EnlazaRejillas()
{
    using controls::DataGrid;
    EnlazaArchivos(TDBGridArchivos);
    EnlazaArchivos(TDBGridTransacciones);
    connect(TDBGridArchivos, &DataGrid::BeforeColEdit, this,
            [this](int columna, int /*tecla*/, bool& cancela) {
                TDBGridArchivos_BeforeColEdit(columna, cancela);
            });
    connect(TDBGridTransacciones, &DataGrid::BeforeColEdit, this,
            [this](int columna, int /*tecla*/, bool& cancela) {
                TDBGridTransacciones_BeforeColEdit(columna, cancela);
            });
    connect(TDBGridArchivos, &DataGrid::BeforeColUpdate, this,
            [this](int columna, const QString& /*antes*/, bool& cancela) {
                TDBGridArchivos_BeforeColUpdate(columna, cancela);
            });
    connect(TDBGridTransacciones, &DataGrid::BeforeColUpdate, this,
            [this](int columna, const QString& /*antes*/, bool& cancela) {
                TDBGridTransacciones_BeforeColUpdate(columna, cancela);
            });
    connect(TDBGridGrupos, &DataGrid::KeyPress, this, &frmPropiedadesBD::TDBGridGrupos_KeyPress);
    // Users are not renamed here, and the row below them has nobody to grant to.
    connect(TDBGridPermisos, &DataGrid::BeforeColEdit, this,
            [this](int columna, int /*tecla*/, bool& cancela) {
                cancela = columna == ColPermiso::Usuario ||
                          TDBGridPermisos->Columns(ColPermiso::Usuario).Text().isEmpty();
            });
    connect(TDBGridPermisos, &DataGrid::AfterColUpdate, this,
            &frmPropiedadesBD::TDBGridPermisos_AfterColUpdate);
}

void frmPropiedadesBD::EnlazaArchivos(controls::DataGrid* rejilla)
{
    using controls::DataGrid;
    connect(rejilla, &DataGrid::AfterColUpdate, this,
            [rejilla](int columna) { RejillaAfterColUpdate(rejilla, columna); });
    connect(rejilla, &DataGrid::ButtonClick, this, &frmPropiedadesBD::PideUbicacion);
    connect(rejilla, &DataGrid::KeyPress, this,
            [this, rejilla](int& tecla) { EntraEnCelda(rejilla, tecla); });
}

bool frmPropiedadesBD::CompruebaCeldaArchivos(int columna)
{
    return CompruebaCelda(TDBGridArchivos, columna);
}

bool frmPropiedadesBD::CompruebaCeldaTransacciones(int columna)
{
    return CompruebaCelda(TDBGridTransacciones, columna);
}

bool frmPropiedadesBD::CompruebaCelda(controls::DataGrid* rejilla, int columna)
try {
    const bool esLog = rejilla == TDBGridTransacciones;
    const auto blanca = [rejilla](int c) { return rejilla->Columns(c).Text().trimmed().isEmpty(); };
    switch (columna) {
    case ColArchivo::Nombre:
        // A file of the server always has a unit, also where its group could not be looked up.
        if (rejilla->Columns(ColArchivo::Grupo).Text().isEmpty() && blanca(ColArchivo::Unidad))
            PonPorDefecto(rejilla, esLog ? u"LOG"_s : u"PRIMARY"_s);
        return true;
    case ColArchivo::Tamaño:
        return CompruebaNumero(rejilla, columna);
    case ColArchivo::Cantidad:
        return (esLog && blanca(columna)) || CompruebaNumero(rejilla, columna);
    case ColArchivo::Limitado:
        return CompruebaLimite(rejilla);
    case ColArchivo::Maximo:
        return (blanca(columna) || CompruebaNumero(rejilla, columna)) && CompruebaLimite(rejilla);
    default:
        return true;
    }
} catch (...) {
    InformaError(u"CompruebaCeldaArchivos"_s);
    return false;
}

void frmPropiedadesBD::PonPorDefecto(controls::DataGrid* rejilla, const QString& grupo)
{
    const QString celdas[] = {u"1"_s, grupo, u"-1"_s, u"P"_s, u"10"_s, u"0"_s, QString()};
    int columna = ColArchivo::Tamaño;
    for (const QString& celda : celdas)
        rejilla->Columns(columna++).setValue(celda);
}

bool frmPropiedadesBD::CompruebaNumero(controls::DataGrid* rejilla, int columna)
{
    if (basic::isNumeric(rejilla->Columns(columna).Text()))
        return true;
    MuestraMensaje(u"Valor no numérico."_s, u"Not numerical value."_s);
    rejilla->Columns(columna).setText(QString());
    rejilla->SetFocus();
    rejilla->setCol(columna);
    return false;
}

bool frmPropiedadesBD::CompruebaLimite(controls::DataGrid* rejilla)
{
    if (ValorCelda(rejilla->Columns(ColArchivo::Limitado).Text()) != -1 ||
        !rejilla->Columns(ColArchivo::Maximo).Text().isEmpty())
        return true;
    MuestraMensaje(u"Inserte Cantidad limite."_s, u"Insetrt limit quantity."_s);
    rejilla->SetFocus();
    rejilla->setCol(ColArchivo::Maximo);
    return false;
}

void frmPropiedadesBD::RehusaEdicion(controls::DataGrid* rejilla, int columna, bool& cancela)
{
    CeldaRechazada = false;
    const auto esCero = [rejilla](int marca) { return rejilla->Columns(marca).Text() == u"0"_s; };
    if (columna == ColArchivo::Grupo)
        cancela = rejilla->Bookmark() == 0;
    else if (columna == ColArchivo::Unidad || columna == ColArchivo::Cantidad)
        cancela = esCero(ColArchivo::Automatico);
    else if (columna == ColArchivo::Maximo)
        cancela = esCero(ColArchivo::Limitado);
}

void frmPropiedadesBD::TDBGridArchivos_BeforeColEdit(int columna, bool& cancela)
try {
    RehusaEdicion(TDBGridArchivos, columna, cancela);
} catch (...) {
    InformaError(u"TDBGridArchivos_BeforeColEdit"_s);
}

void frmPropiedadesBD::TDBGridTransacciones_BeforeColEdit(int columna, bool& cancela)
try {
    RehusaEdicion(TDBGridTransacciones, columna, cancela);
    if (!cancela && columna == ColArchivo::Grupo)
        cancela = GrupoDesconocido(TDBGridTransacciones);
} catch (...) {
    InformaError(u"TDBGridTransacciones_BeforeColEdit"_s);
}

// Only an existing database shows its groups.
bool frmPropiedadesBD::GrupoDesconocido(controls::DataGrid* rejilla)
{
    if (!sstBaseDatos->isTabEnabled(Pagina::Grupos) ||
        ExisteGrupoFichero(Datos, rejilla->Columns(ColArchivo::Grupo).Text()))
        return false;
    MuestraMensaje(u"No existe el grupo de ficheros."_s, u"File group not exists."_s);
    return true;
}

// Whether a file of the server would be smaller than it is.
bool frmPropiedadesBD::Encoge(controls::DataGrid* rejilla)
{
    const QString archivo = rejilla->Columns(ColArchivo::Nombre).Text().trimmed();
    if (Datos.EsNueva || archivo.isEmpty())
        return false;
    PrefijoBD = Datos.NombreInicial + u".."_s; // clicks in the browser may have changed it
    const double existente = TamañoExistente(archivo);
    if (basic::toDouble(rejilla->Columns(ColArchivo::Tamaño).Text()) >= existente)
        return false;
    MuestraMensaje(u"Tamaño inicial debe se mayor del existente."_s,
                   u"Initial size must be major that exists."_s);
    return true;
}

void frmPropiedadesBD::TDBGridArchivos_BeforeColUpdate(int columna, bool& cancela)
try {
    cancela = true;
    if (columna == ColArchivo::Tamaño)
        cancela = Encoge(TDBGridArchivos);
    else if (columna == ColArchivo::Limitado)
        cancela = false; // its amount can be typed only once it is ticked
    else if (columna != ColArchivo::Grupo || !GrupoDesconocido(TDBGridArchivos))
        cancela = !CompruebaCeldaArchivos(columna);
    CeldaRechazada = cancela;
} catch (...) {
    CeldaRechazada = true;
    InformaError(u"TDBGridArchivos_BeforeColUpdate"_s);
}

void frmPropiedadesBD::TDBGridTransacciones_BeforeColUpdate(int columna, bool& cancela)
try {
    cancela = true;
    if (columna == ColArchivo::Tamaño)
        cancela = Encoge(TDBGridTransacciones);
    else if (columna == ColArchivo::Limitado)
        cancela = false;
    else
        cancela = !CompruebaCeldaTransacciones(columna);
    CeldaRechazada = cancela;
} catch (...) {
    CeldaRechazada = true;
    InformaError(u"TDBGridTransacciones_BeforeColUpdate"_s);
}

void frmPropiedadesBD::PideUbicacion(int columna)
try {
    if (columna != ColArchivo::Ubicacion)
        return;
    EsperandoUbicacion = true;
    ::frmUbicacion->Show();
} catch (...) {
    InformaError(u"TDBGridArchivos_ButtonClick"_s);
}

void frmPropiedadesBD::EntraEnCelda(controls::DataGrid* rejilla, int& tecla)
try {
    if (tecla != controls::keyEnter) {
        RehusaSiBloqueada(rejilla, tecla);
        return;
    }
    const int columna = rejilla->Col();
    if (!CompruebaCelda(rejilla, columna))
        return;
    tecla = 0;
    if (columna == ColArchivo::Maximo) {
        rejilla->setCol(ColArchivo::Nombre);
        PasaDeFila(rejilla);
    } else if (columna != ColArchivo::Automatico && columna != ColArchivo::Limitado) {
        rejilla->setCol(columna + 1);
    }
} catch (...) {
    InformaError(u"TDBGridArchivos_KeyPress"_s);
}

void frmPropiedadesBD::TDBGridGrupos_KeyPress(int& tecla)
try {
    if (tecla != controls::keyEnter) {
        RehusaSiBloqueada(TDBGridGrupos, tecla);
        return;
    }
    tecla = 0;
    if (TDBGridGrupos->Col() == ColGrupo::UltimaVisible)
        PasaDeFila(TDBGridGrupos);
    else
        TDBGridGrupos->setCol(TDBGridGrupos->Col() + 1);
} catch (...) {
    InformaError(u"TDBGridGrupos_KeyPress"_s);
}

void frmPropiedadesBD::cmdEliminarFila_Click()
try {
    Datos.NombreBD = txtNombreBD->Text();
    switch (sstBaseDatos->currentIndex()) {
    case Pagina::Archivos:
        EliminaArchivo(TDBGridArchivos, Datos.ArchivosBD);
        break;
    case Pagina::Transacciones:
        EliminaArchivo(TDBGridTransacciones, Datos.TransaccionesBD);
        break;
    default:
        EliminaGrupo();
        break;
    }
    CapturaGrupos_SQL(Datos);
    TDBGridGrupos->ReBind();
    TDBGridGrupos->Refresh();
    TDBGridGrupos->setFirstRow(0);
} catch (...) {
    InformaError(u"cmdEliminarFila_Click"_s);
}

// A free row has nothing to remove, and what was typed in others stays.
void frmPropiedadesBD::EliminaArchivo(controls::DataGrid* rejilla, Matriz& archivos)
{
    const QString archivo = archivos.at(rejilla->Bookmark(), ColArchivo::Nombre).trimmed();
    if (archivo.isEmpty())
        return;
    EliminaArchivo_SQL(Datos, archivo);
    archivos.Redim(-1, -1);
    CargaFicheros(Datos);
    rejilla->ReBind();
    rejilla->Refresh();
    rejilla->setFirstRow(0);
}

void frmPropiedadesBD::EliminaGrupo()
{
    if (basic::toDouble(TDBGridGrupos->Columns(ColGrupo::Archivos).Text()) != 0) {
        MuestraMensaje(u"El grupo de archivo contiene un o mas archivos. No se puede eliminar."_s,
                       u"File group have one or more files. Can't delete it."_s);
        return;
    }
    const QString grupo = Datos.GruposBD.at(TDBGridGrupos->Bookmark(), ColGrupo::Nombre).trimmed();
    if (!grupo.isEmpty())
        EliminaGrupo_SQL(Datos, grupo);
}

} // namespace formularios
