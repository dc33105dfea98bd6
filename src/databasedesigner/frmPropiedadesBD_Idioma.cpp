// The captions of the form, and the shape of its grids.
#include "core/EstadosPermiso.h"
#include "core/Funciones.h"
#include "core/Idioma.h"
#include "databasedesigner/Paginas.h"
#include "databasedesigner/PermisosBD.h"
#include "databasedesigner/frmPropiedadesBD.h"

using namespace Qt::Literals::StringLiterals;

namespace formularios {

namespace {

using Presentacion = controls::ValueItems::Presentation;

struct Titulo
{
    QString español;
    QString ingles;
};

const QList<Titulo>& TitulosArchivos()
{
    static const QList<Titulo> titulos{{u"Nombre Archivo"_s, u"File name"_s},
                                       {u"Ubicación"_s, u"Path"_s},
                                       {u"Tamaño Inicial (MB)"_s, u"Initial size (MB)"_s},
                                       {u"Grupo de Archivos"_s, u"Files Group"_s},
                                       {u"Crecimiento Automatico"_s, u"Automatic growth"_s},
                                       {u"Crecimiento de archivo"_s, u"Growth of file"_s},
                                       {u"Cantidad Crecimiento (MB)"_s, u"Quantity Growth (MB)"_s},
                                       {u"Limitar Crecimiento"_s, u"Growth limit"_s},
                                       {u"Cantidad Max. (MB)"_s, u"Quantity Max. (MB)"_s}};
    return titulos;
}

const QList<Titulo>& TitulosGrupos()
{
    static const QList<Titulo> titulos{{u"Nombre"_s, u"Name"_s},
                                       {u"Nº Archivos"_s, u"Files number"_s},
                                       {u"Solo Lectura"_s, u"Read only"_s},
                                       {u"Predeterminado"_s, u"Default"_s}};
    return titulos;
}

// As stored: what shows when the language is neither of the two.
void PonTitulosGuardados(controls::DataGrid* rejilla, const QList<Titulo>& titulos)
{
    for (int columna = 0; columna < titulos.size(); ++columna)
        rejilla->Columns(columna).setCaption(titulos.at(columna).español);
}

void PonTitulos(controls::DataGrid* rejilla, const QList<Titulo>& titulos)
{
    for (int columna = 0; columna < titulos.size(); ++columna)
        PonCabecera(rejilla, columna, titulos.at(columna).español, titulos.at(columna).ingles);
}

// So many digits wide.
void PonAncho(controls::DataGrid* rejilla, int columna, int letras)
{
    rejilla->Columns(columna).setWidth(letras * rejilla->fontMetrics().horizontalAdvance(u'0'));
}

void PonMarca(const controls::GridColumn& columna)
{
    columna.ValueItems().setPresentation(Presentacion::CheckBox);
}

constexpr int LetrasUsuario = 16;
constexpr int LetrasNombre = 20;
constexpr int LetrasRuta = 32;

} // namespace

void frmPropiedadesBD::PonColumnasArchivos(controls::DataGrid* rejilla, const QString& enPorcentaje)
{
    rejilla->setColumnCount(ColArchivo::UltimaVisible + 1);
    PonTitulosGuardados(rejilla, TitulosArchivos());
    PonAncho(rejilla, ColArchivo::Nombre, LetrasNombre);
    PonAncho(rejilla, ColArchivo::Ubicacion, LetrasRuta);
    rejilla->Columns(ColArchivo::Ubicacion).setButton(true);
    for (const int columna : {ColArchivo::Tamaño, ColArchivo::Cantidad, ColArchivo::Maximo})
        rejilla->Columns(columna).setAlignment(Qt::AlignRight);
    PonMarca(rejilla->Columns(ColArchivo::Automatico));
    PonMarca(rejilla->Columns(ColArchivo::Limitado));
    controls::ValueItems& unidades = rejilla->Columns(ColArchivo::Unidad).ValueItems();
    unidades.setPresentation(Presentacion::DropDown);
    unidades.Add(u"M"_s, u"En Megabytes"_s);
    unidades.Add(u"P"_s, enPorcentaje);
}

void frmPropiedadesBD::PonColumnas()
{
    PonColumnasArchivos(TDBGridArchivos, u"En Porcentaje"_s);
    PonColumnasArchivos(TDBGridTransacciones, u"En porcentaje"_s);

    TDBGridGrupos->setColumnCount(ColGrupo::UltimaVisible + 1);
    PonTitulosGuardados(TDBGridGrupos, TitulosGrupos());
    PonAncho(TDBGridGrupos, ColGrupo::Nombre, LetrasRuta);
    TDBGridGrupos->Columns(ColGrupo::Archivos).setAlignment(Qt::AlignRight);
    for (const int columna : {ColGrupo::SoloLectura, ColGrupo::Predeterminado})
        PonMarca(TDBGridGrupos->Columns(columna));
    // The server counts the files, and a change of the two flags is never sent.
    for (const int columna : {ColGrupo::Archivos, ColGrupo::SoloLectura, ColGrupo::Predeterminado})
        TDBGridGrupos->Columns(columna).setLocked(true);

    TDBGridPermisos->setColumnCount(ColPermiso::UltimaVisible + 1);
    TDBGridPermisos->Columns(ColPermiso::Usuario).setCaption(u"Usuario"_s);
    PonAncho(TDBGridPermisos, ColPermiso::Usuario, LetrasUsuario);
    for (int columna = ColPermiso::CrearBD; columna <= ColPermiso::UltimaVisible; ++columna)
        TDBGridPermisos->Columns(columna).setCaption(TituloPermiso(columna));
}

void frmPropiedadesBD::PonIdioma()
try {
    PonTexto(this, u"Propiedades BD"_s, u"Properties DB"_s);
    PonTexto(lblNombre, u"Nombre BD:"_s, u"DB Name:"_s);
    PonTexto(cmdAceptar, u"&Aceptar"_s, u"&Accept"_s);
    PonTexto(cmdCancelar, u"&Cancelar"_s, u"&Cancel"_s);
    PonIdiomaGeneral();
    PonIdiomaOpciones();
    PonIdiomaArchivos();
    PonIdiomaPermisos();
} catch (...) {
    InformaError(u"PonIdioma"_s);
}

void frmPropiedadesBD::PonIdiomaGeneral()
{
    PonPestaña(sstBaseDatos, Pagina::General, u"General"_s, u"General"_s);
    PonTexto(lbEstado, u"Estado:"_s, u"Status:"_s);
    PonTexto(lbPropietario, u"Propietario:"_s, u"Owner:"_s);
    PonTexto(lbFecha, u"Fecha creación:"_s, u"Create date:"_s);
    PonTexto(lbTamaño, u"Tamaño:"_s, u"Size:"_s);
    PonTexto(lbEspacio, u"Espacio disponible:"_s, u"Available space:"_s);
    PonTexto(lbUsuarios, u"Número usuarios:"_s, u"Number Users:"_s);
    PonTexto(lbIntercalacion, u"Nombre de Intercalación:"_s, u"Collate name:"_s);
}

void frmPropiedadesBD::PonIdiomaOpciones()
{
    PonPestaña(sstBaseDatos, Pagina::Opciones, u"Opciones"_s, u"Opcions"_s);
    PonTexto(fraConfiguracion, u" Configuracion "_s, u" Configuration "_s);
    PonTexto(chkNULL, u"NULL_ANSI Predeterminado"_s, u"NULL_ANSI default"_s);
    PonTexto(chkDesencadenadores, u"Desencadenadores Recursivos"_s, u"Recursive Triggers"_s);
    PonTexto(chkActEstadisticas, u"Actualizar estadisticas automaticamente"_s, u"Auto update statistics"_s);
    PonTexto(chkPaginaRasgada, u"Detección página rasgada"_s, u"Torn page detection"_s);
    PonTexto(chkCerrar, u"Cerrar Automaticamente"_s, u"Auto close"_s);
    PonTexto(chkReducir, u"Reducir automaticamente"_s, u"Auto Shrink"_s);
    PonTexto(chkCrearEstadisticas, u"Crear estadisticas automaticamente"_s, u"Auto create statistics"_s);
    PonTexto(chkIdenComillas, u"Utilizar identificadores entre comillas"_s, u"Quoted identifier"_s);
    PonTexto(fraRecuperacion, u" Recuperacion "_s, u" Recuperation "_s);
}

void frmPropiedadesBD::PonIdiomaArchivos()
{
    PonPestaña(sstBaseDatos, Pagina::Grupos, u"Grupo archivos"_s, u"Files Group"_s);
    PonPestaña(sstBaseDatos, Pagina::Archivos, u"Archivo Datos"_s, u"Data Files"_s);
    PonPestaña(sstBaseDatos, Pagina::Transacciones, u"Reg Transacciones"_s, u"Transaction Reg."_s);
    PonTexto(lblArchivos, u"Archivos de la Base de datos"_s, u"Database files"_s);
    PonTexto(lblTransacciones, u"Archivos del registro de transacciones"_s, u"Transactions record files"_s);
    PonTitulos(TDBGridGrupos, TitulosGrupos());
    PonTitulos(TDBGridArchivos, TitulosArchivos());
    PonTitulos(TDBGridTransacciones, TitulosArchivos());
    for (auto* boton : {cmdEliminarFilaGrupos, cmdEliminarFilaArchivos, cmdEliminarFilaTransacciones})
        PonTexto(boton, u"Eliminar"_s, u"Delete"_s);
}

void frmPropiedadesBD::PonIdiomaPermisos()
{
    PonPestaña(sstBaseDatos, Pagina::Permisos, u"Permisos"_s, u"Grants"_s);
    PonCabecera(TDBGridPermisos, ColPermiso::Usuario, u"Usuario"_s, u"User"_s);
    for (int columna = ColPermiso::CrearBD; columna <= ColPermiso::UltimaVisible; ++columna)
        PonEstadosPermiso(TDBGridPermisos->Columns(columna));
}

} // namespace formularios
