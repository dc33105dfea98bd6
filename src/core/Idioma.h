// The two languages: every caption and message stands once, as a Spanish/English pair, at its place
// of use. With a foreign value of Idioma captions stay as stored and messages repeat the last one.
#pragma once

#include "platform/controls/MessageBox.h"

#include <QString>

#include <optional>

class QAbstractButton;
class QAction;
class QGroupBox;
class QLabel;
class QMenu;
class QTabWidget;

namespace controls {
class DataGrid;
class Form;
class ListView;
} // namespace controls

inline constexpr qint16 Español = 0;
inline constexpr qint16 Ingles = 1;

/// Styles of the message box in use.
inline constexpr int EstiloAviso = 48;     ///< OK, exclamation
inline constexpr int EstiloPregunta = 292; ///< Yes and No, question, No the default
inline constexpr int EstiloSalida = 35;    ///< Yes, No and Cancel, question
inline constexpr int EstiloCritico = 16;   ///< OK, critical

/// The text of the current language; nothing when Idioma is foreign.
[[nodiscard]] std::optional<QString> EnIdioma(const QString& español, const QString& ingles);

void PonTexto(controls::Form* formulario, const QString& español, const QString& ingles);
void PonTexto(QAbstractButton* boton, const QString& español, const QString& ingles);
void PonTexto(QAction* entrada, const QString& español, const QString& ingles);
void PonTexto(QGroupBox* marco, const QString& español, const QString& ingles);
void PonTexto(QLabel* etiqueta, const QString& español, const QString& ingles);
void PonTexto(QMenu* menu, const QString& español, const QString& ingles);
/// `posicion` counts column headers from 1.
void PonCabecera(controls::ListView* lista, int posicion, const QString& español, const QString& ingles);
/// `columna` counts the grid's columns from 0.
void PonCabecera(controls::DataGrid* rejilla, int columna, const QString& español, const QString& ingles);
/// `pestaña` counts from 0.
void PonPestaña(QTabWidget* pestañas, int pestaña, const QString& español, const QString& ingles);

/// Puts the text of the language into Mensaje and shows Mensaje under the program's title.
controls::Answer MuestraMensaje(const QString& español, const QString& ingles, int estilo = EstiloAviso);
