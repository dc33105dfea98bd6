#include "browser/frmAdministrador.h"

#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"
#include "core/mdiPrincipal.h"
#include "platform/basic/RuntimeError.h"
#include "platform/controls/Menus.h"
#include "platform/controls/Pointer.h"

using namespace Qt::Literals::StringLiterals;

controls::Slot<formularios::frmAdministrador> frmAdministrador;

namespace formularios {

namespace {

constexpr int BotonDerecho = 2;

} // namespace

frmAdministrador::frmAdministrador() : ImageList1(new controls::ImageList(this))
{
    setupUi(this);
    ImageList1->setObjectName(u"ImageList1"_s);
    splPaneles->setSizes({300, 550});
    trvBD->setImageList(ImageList1);
    trvBD->setFiller([this](const controls::TreeView::Node* nodo) { AñadeCarpetas(nodo); });
    connect(trvBD, &controls::TreeView::Click, this, &frmAdministrador::trvBD_Click);
    connect(trvBD, &controls::TreeView::MouseDown, this, &frmAdministrador::trvbd_MouseDown);
    connect(ltvTablas, &controls::ListView::MouseDown, this, &frmAdministrador::ltvTablas_MouseDown);
}

void frmAdministrador::PonIdioma()
try {
    PonTexto(this, u"Administrador"_s, u"Administrator"_s);
} catch (...) {
    InformaError(u"PonIdioma"_s);
}

void frmAdministrador::Form_Load()
try {
    controls::setVisible(::mdiPrincipal->mnuBaseDatos, true);
    CapturaBD_SQL();
    PonCabecerasObjetos();
} catch (...) {
    InformaError(u"Form_Load"_s);
}

void frmAdministrador::Form_Activate()
try {
    PonIdioma();
    if (windowStateValue() == Minimized)
        setWindowStateValue(Normal);
    setTop(0);
    setLeft(0);
    controls::setVisible(::mdiPrincipal->mnuBaseDatos, true);
    controls::setVisible(::mdiPrincipal->mnuConsulta, false);
    // The first activation comes before anything is selected.
    if (const auto* nodo = trvBD->SelectedItem())
        MuestraCarpeta(nodo);
} catch (...) {
    InformaError(u"Form_Activate"_s);
}

void frmAdministrador::Form_Unload(bool& /*cancel*/)
try {
    controls::setVisible(::mdiPrincipal->mnuBaseDatos, false);
} catch (...) {
    InformaError(u"Form_Unload"_s);
}

void frmAdministrador::CapturaBD_SQL()
try {
    trvBD->Clear();
    if (Idioma != Español && Idioma != Ingles)
        return;
    trvBD->Add(QString(), u"S"_s, ServidorSQL, u"Servidor"_s)->setExpanded(true);
    ado::Recordset bases;
    if (CreaRecordset(ConexionSQL, bases, u"Select name from master.dbo.sysdatabases order by name"_s))
        AñadeBases(bases);
    AñadeSeguridad();
} catch (...) {
    InformaErrorYPuntero(u"CapturaBD_SQL"_s);
}

void frmAdministrador::AñadeBases(ado::Recordset& bases)
{
    trvBD->Add(u"S"_s, u"B"_s, *EnIdioma(u"Bases de Datos"_s, u"Databases"_s), u"CarpetaCerrada"_s)
        ->setExpanded(true);
    Carpetas = {
        {{u"DT"_s, *EnIdioma(u"Tablas"_s, u"Tables"_s), u"Tabla"_s},
         {u"DV"_s, *EnIdioma(u"Vistas"_s, u"Views"_s), u"Vista"_s},
         {u"DP"_s, *EnIdioma(u"Procedimientos almacenados"_s, u"Procedures Stores"_s), u"Procedimientos"_s},
         {u"DU"_s, *EnIdioma(u"Usuarios"_s, u"Users"_s), u"Usuario"_s}}};
    for (; !bases.Eof(); bases.MoveNext()) {
        const QString nombre = TextoCampo(bases, u"Name"_s).trimmed();
        trvBD->Add(u"B"_s, u"BD"_s + nombre, nombre, u"BaseDatos"_s)->fillLater();
    }
}

void frmAdministrador::AñadeCarpetas(const controls::TreeView::Node* base)
try {
    for (const Carpeta& carpeta : Carpetas)
        trvBD->Add(base->Key(), carpeta.Prefijo + base->Text(), carpeta.Texto, carpeta.Imagen);
} catch (...) {
    InformaError(u"AñadeCarpetas"_s);
}

void frmAdministrador::AñadeSeguridad()
{
    trvBD->Add(u"S"_s, u"SG"_s, *EnIdioma(u"Seguridad"_s, u"Security"_s), u"CarpetaCerrada"_s)
        ->setExpanded(true);
    trvBD->Add(u"SG"_s, u"DI"_s, *EnIdioma(u"Inicio Sesión"_s, u"Inicio Sesion"_s), u"Usuarios"_s)
        ->setExpanded(true);
}

void frmAdministrador::MuestraCarpeta(const controls::TreeView::Node* nodo)
{
    const QString prefijo = nodo->Key().left(2);
    if (!QStringList{u"DT"_s, u"DV"_s, u"DI"_s, u"DU"_s, u"DP"_s}.contains(prefijo)) {
        ltvTablas->Clear();
        return;
    }
    const QString padre = TextoPadre();
    PrefijoBD = padre + u".."_s;
    if (prefijo == u"DT"_s)
        MuestraTablas(nodo->Text());
    else if (prefijo == u"DV"_s)
        MuestraVistas();
    else if (prefijo == u"DI"_s)
        Muestra_InicioSesion();
    else if (prefijo == u"DU"_s)
        MuestraUsuarios(padre);
    else
        MuestraProcedimientos(padre);
}

void frmAdministrador::trvBD_Click()
try {
    controls::setMousePointer(controls::Pointer::Hourglass);
    const auto* nodo = NodoSeleccionado();
    const QString clave = nodo->Key();
    MuestraCarpeta(nodo);
    GestionMenu(clave);
    controls::setMousePointer(controls::Pointer::Default);
} catch (...) {
    InformaErrorYPuntero(u"trvBD_Click"_s);
}

void frmAdministrador::trvbd_MouseDown(int Button, int /*Shift*/, int x, int y)
try {
    auto* nodo = trvBD->HitTest({x, y});
    if (!nodo)
        return;
    trvBD->Select(nodo);
    if (Button != BotonDerecho)
        return;
    GestionMenu(NodoSeleccionado()->Key());
    controls::popup(::mdiPrincipal->mnuBaseDatos, trvBD->viewport()->mapToGlobal(QPoint(x, y)));
} catch (...) {
    InformaError(u"trvbd_MouseDown"_s);
}

void frmAdministrador::ltvTablas_MouseDown(int Button, int /*Shift*/, int x, int y)
try {
    auto* item = ltvTablas->HitTest({x, y});
    if (!item)
        return;
    ltvTablas->Select(item);
    if (Button != BotonDerecho)
        return;
    GestionMenu(ItemSeleccionado()->Key());
    controls::popup(::mdiPrincipal->mnuBaseDatos, ltvTablas->viewport()->mapToGlobal(QPoint(x, y)));
} catch (...) {
    InformaError(u"ltvTablas_MouseDown"_s);
}

controls::TreeView::Node* frmAdministrador::NodoSeleccionado() const
{
    auto* nodo = trvBD->SelectedItem();
    if (!nodo)
        basic::raise(basic::error::ObjectNotSet);
    return nodo;
}

controls::ListItem* frmAdministrador::ItemSeleccionado() const
{
    auto* item = ltvTablas->SelectedItem();
    if (!item)
        basic::raise(basic::error::ObjectNotSet);
    return item;
}

QString frmAdministrador::TextoPadre() const
{
    const auto* padre = NodoSeleccionado()->Parent();
    if (!padre)
        basic::raise(basic::error::ObjectNotSet);
    return padre->Text();
}

void frmAdministrador::GestionMenu(const QString& Clave)
try {
    const auto* m = &*::mdiPrincipal;
    for (auto* entrada :
         {m->mnuNuevaBD, m->mnuAñadirTabla, m->mnuAñadirVista, m->mnuAñadirProcedimiento, m->mnuPropiedadesBD,
          m->mnuDiseño, m->mnuEliminar, m->mnuCopiaSeguridad, m->mnuRestaurarCopia, m->mnuAñadirInicioSesion,
          m->mnuVerRegistros, m->mnuAñadirUsuario})
        controls::setVisible(entrada, false);

    const struct
    {
        QString buscado;
        QList<QAction*> entradas;
    } reglas[] = {
        {u"B"_s,
         {m->mnuNuevaBD, m->mnuAñadirTabla, m->mnuAñadirVista, m->mnuPropiedadesBD, m->mnuEliminar,
          m->mnuCopiaSeguridad, m->mnuRestaurarCopia}},
        {u"DT"_s, {m->mnuAñadirTabla}},
        {u"DV"_s, {m->mnuAñadirVista}},
        {u"DP"_s, {m->mnuAñadirProcedimiento}},
        {u"DI"_s, {m->mnuAñadirInicioSesion}},
        {u"DU"_s, {m->mnuAñadirUsuario}},
        {u"C"_s, {m->mnuEliminar}},
        {u"T"_s, {m->mnuAñadirTabla, m->mnuDiseño, m->mnuEliminar, m->mnuVerRegistros}},
        {u"V"_s, {m->mnuAñadirVista, m->mnuDiseño, m->mnuEliminar, m->mnuVerRegistros}},
        {u"P"_s, {m->mnuAñadirProcedimiento, m->mnuDiseño, m->mnuEliminar}},
        {u"I"_s, {m->mnuAñadirInicioSesion, m->mnuDiseño, m->mnuEliminar}},
        {u"U"_s, {m->mnuAñadirUsuario, m->mnuDiseño, m->mnuEliminar}},
    };
    if (Clave == u"B"_s) {
        controls::setVisible(m->mnuNuevaBD, true);
        return;
    }
    for (const auto& regla : reglas) {
        if (!Clave.contains(regla.buscado))
            continue;
        for (auto* entrada : regla.entradas)
            controls::setVisible(entrada, true);
        return;
    }
} catch (...) {
    InformaError(u"GestionMenu"_s);
}

} // namespace formularios
