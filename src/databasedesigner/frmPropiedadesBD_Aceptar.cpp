// The end of the form: renaming, creating or changing the database, then its options.
#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "core/Idioma.h"
#include "databasedesigner/CreaBD.h"
#include "databasedesigner/ModificaBD.h"
#include "databasedesigner/Paginas.h"
#include "databasedesigner/frmPropiedadesBD.h"
#include "platform/controls/Pointer.h"

using namespace Qt::Literals::StringLiterals;

namespace formularios {

// Takes in what is being typed. False when a cell refused it.
bool frmPropiedadesBD::TerminaEdicion()
{
    for (auto* rejilla : {TDBGridGrupos, TDBGridArchivos, TDBGridTransacciones}) {
        if (!rejilla->EditActive())
            continue;
        CeldaRechazada = false;
        rejilla->setEditActive(false);
        if (CeldaRechazada)
            return false;
    }
    return true;
}

bool frmPropiedadesBD::GuardaBD()
{
    PrefijoBD = Datos.NombreBD + u".."_s;
    controls::setMousePointer(controls::Pointer::Hourglass);
    Ejecuta_SQL(u" USE master"_s);
    if (!(Datos.EsNueva ? Crea_BD(Datos) : Modifica_BD(Datos)))
        return false;
    GruposFicheros.Redim(UltimaFilaGrupos, UltimaColumnaGrupos);
    GrabaOpciones(Datos.NombreBD, OpcionesElegidas());
    if (Datos.EsNueva)
        ::frmAdministrador->CapturaBD_SQL();
    return true;
}

void frmPropiedadesBD::cmdAceptar_Click()
try {
    if (!TerminaEdicion())
        return;
    Datos.NombreBD = txtNombreBD->Text();
    Datos.FilaArchivos = TDBGridArchivos->Row();
    if (Datos.NombreBD.trimmed().isEmpty()) {
        MuestraMensaje(u"Introduzca nombre de la base de datos."_s, u"Insert database name."_s);
        return;
    }
    if (Renombra_BD(Datos))
        ::frmAdministrador->CapturaBD_SQL();
    if (EsBDFija(Datos.NombreBD)) {
        Unload();
        return;
    }
    const bool correcto = GuardaBD();
    controls::setMousePointer(controls::Pointer::Default);
    if (correcto)
        Unload();
} catch (...) {
    InformaErrorYPuntero(u"cmdAceptar_Click"_s);
}

void frmPropiedadesBD::cmdCancelar_Click()
{
    GruposFicheros.Redim(UltimaFilaGrupos, UltimaColumnaGrupos);
    Unload();
}

} // namespace formularios
