// What the view and procedure editors share: loading an object's text from the catalog, and replacing
// the object by running the edited text.
#pragma once

#include <QString>

class QAbstractButton;

namespace controls {
class Form;
} // namespace controls

/// In what the two kinds of object differ.
struct ClaseObjeto
{
    QString textoNuevo;   ///< what a new object's editor starts with
    QString filtro;       ///< condition on the catalog's row
    QString prefijoBorra; ///< drop statement up to the name
};

/// Reads the whole text of `nombre` in BaseDatosActual into `texto`; several catalog rows are joined with
/// nothing between. `nombreObjeto` takes the name only when a row came back. False when the query fails.
bool CapturaTextoObjeto_SQL(const ClaseObjeto& clase, const QString& nombre, QString& texto,
                            QString& nombreObjeto);

/// Drops the loaded object, if any, and runs the text, in BaseDatosActual. There is no way back: when the
/// text is refused the old object is gone.
/// @throws basic::RuntimeError of the first refused statement
void ReemplazaObjeto_SQL(const ClaseObjeto& clase, const QString& nombreObjeto, const QString& texto);

/// The captions of both editors; the procedure editor is titled as a view, too.
void PonIdiomaEditor(controls::Form* editor, QAbstractButton* aceptar, QAbstractButton* cancelar);
