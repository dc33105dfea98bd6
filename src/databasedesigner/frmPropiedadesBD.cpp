// The form itself: loading, activation, and the tabs of facts and options.
#include "databasedesigner/frmPropiedadesBD.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"
#include "databasedesigner/Paginas.h"
#include "databasedesigner/PermisosBD.h"

using namespace Qt::Literals::StringLiterals;

controls::Slot<formularios::frmPropiedadesBD> frmPropiedadesBD;

namespace formularios {

frmPropiedadesBD::frmPropiedadesBD()
{
    setupUi(this);
    for (auto* boton : {cmdEliminarFilaGrupos, cmdEliminarFilaArchivos, cmdEliminarFilaTransacciones}) {
        boton->setObjectName(u"cmdEliminarFila"_s); // one control, on three tabs
        connect(boton, &QPushButton::clicked, this, &frmPropiedadesBD::cmdEliminarFila_Click);
    }
    EnlazaSalidaCampo(txtNombreBD);
    EnlazaSalidaCampo(cboModelo);
    for (auto* caja : CajasOpciones())
        EnlazaSalidaCampo(caja);
    connect(cmdAceptar, &QPushButton::clicked, this, &frmPropiedadesBD::cmdAceptar_Click);
    connect(cmdCancelar, &QPushButton::clicked, this, &frmPropiedadesBD::cmdCancelar_Click);
    PonColumnas();
    EnlazaRejillas();
}

void frmPropiedadesBD::Form_Load()
try {
    sstBaseDatos->setCurrentIndex(Pagina::General);
    EsperandoUbicacion = false;
    txtNombreBD->setText(BaseDatosActual);
    Datos.NombreBD = BaseDatosActual;
    Datos.NombreInicial = BaseDatosActual;
    TDBGridPermisos->Columns(ColPermiso::CrearBD).setVisible(BaseDatosActual.toUpper() == u"MASTER"_s);
    Datos.EsNueva = NuevaBD;
    if (NuevaBD)
        IniciaBDNueva(Datos);
    else
        CargaBDExistente();
    for (const int pagina : {Pagina::Grupos, Pagina::Permisos})
        sstBaseDatos->setTabEnabled(pagina, !Datos.EsNueva);
    TDBGridArchivos->setArray(&Datos.ArchivosBD);
    TDBGridTransacciones->setArray(&Datos.TransaccionesBD);
    TDBGridGrupos->setArray(&Datos.GruposBD);
    CargaModelos();
    DatosGenerales();
    PonOpciones();
} catch (...) {
    InformaError(u"Form_Load"_s);
}

void frmPropiedadesBD::CargaBDExistente()
{
    txtNombreBD->setEnabled(!EsBDFija(Datos.NombreBD));
    CargaFicheros(Datos);
    CapturaGrupos_SQL(Datos);
    if (CargaPermisos(Datos))
        TDBGridPermisos->setArray(&Datos.PermisosBD);
}

void frmPropiedadesBD::CargaModelos()
{
    const QList<std::pair<QString, QString>> modelos{
        {u"Completo"_s, u"Full"_s}, {u"Registro Masivo"_s, u"Bulk logged"_s}, {u"Sencillo"_s, u"Simple"_s}};
    cboModelo->Clear();
    for (const auto& [español, ingles] : modelos)
        if (const auto texto = EnIdioma(español, ingles))
            cboModelo->AddItem(*texto);
}

void frmPropiedadesBD::Form_Activate()
try {
    setTop(0);
    setLeft(0);
    PonIdioma();
    if (!RutaUbicacion.isEmpty() && EsperandoUbicacion)
        RecogeUbicacion();
} catch (...) {
    InformaError(u"Form_Activate"_s);
}

void frmPropiedadesBD::RecogeUbicacion()
{
    const int pagina = sstBaseDatos->currentIndex();
    if (pagina == Pagina::Archivos)
        TDBGridArchivos->Columns(ColArchivo::Ubicacion).setText(RutaUbicacion + u"\\"_s);
    else if (pagina == Pagina::Transacciones)
        TDBGridTransacciones->Columns(ColArchivo::Ubicacion).setText(RutaUbicacion + u"\\"_s);
    EsperandoUbicacion = false;
    RutaUbicacion.clear();
}

void frmPropiedadesBD::DatosGenerales()
try {
    const FichaBD ficha = CapturaFicha_SQL(txtNombreBD->Text());
    const auto pon = [](QLabel* etiqueta, const std::optional<QString>& valor) {
        if (valor)
            etiqueta->setText(*valor);
    };
    pon(lblEstado, ficha.Estado);
    pon(lblPropietario, ficha.Propietario);
    pon(lblFechaCreacion, ficha.FechaCreacion);
    pon(lblTamaño, ficha.Tamaño);
    pon(lblUsuarios, ficha.Usuarios);
    lblIntercalacion->setText(ficha.Intercalacion);
} catch (...) {
    InformaError(u"DatosGenerales"_s);
}

std::array<QCheckBox*, NumeroOpciones> frmPropiedadesBD::CajasOpciones() const
{
    return {chkNULL,         chkCrearEstadisticas, chkActEstadisticas, chkCerrar,
            chkIdenComillas, chkPaginaRasgada,     chkReducir,         chkDesencadenadores};
}

void frmPropiedadesBD::PonOpciones()
try {
    const OpcionesLeidas leidas = CapturaOpciones_SQL(txtNombreBD->Text());
    if (leidas.Modelo && *leidas.Modelo < cboModelo->ListCount())
        cboModelo->setListIndex(*leidas.Modelo);
    const auto cajas = CajasOpciones();
    for (std::size_t opcion = 0; opcion < NumeroOpciones; ++opcion)
        if (leidas.Marcas.at(opcion))
            cajas.at(opcion)->setChecked(*leidas.Marcas.at(opcion));
} catch (...) {
    InformaError(u"PonOpciones"_s);
}

OpcionesBD frmPropiedadesBD::OpcionesElegidas() const
{
    OpcionesBD opciones;
    opciones.Modelo = cboModelo->ListIndex();
    const auto cajas = CajasOpciones();
    for (std::size_t opcion = 0; opcion < NumeroOpciones; ++opcion)
        opciones.Marcas.at(opcion) = cajas.at(opcion)->isChecked();
    return opciones;
}

} // namespace formularios
