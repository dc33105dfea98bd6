// A person's hand: clicks where the pointer would be, keys to what has the keyboard.
#pragma once

#include <QPoint>
#include <QString>

class QAction;
class QMenu;
class QTabWidget;
class QWidget;

namespace controls {
class DataGrid;
} // namespace controls

namespace pruebas::mano {

/// The point must lie on the control and on nothing before it.
void Clic(QWidget* control, const QPoint& punto, Qt::MouseButton boton = Qt::LeftButton);
void Clic(QWidget* control);
void ClicCelda(controls::DataGrid* rejilla, int fila, int columna, Qt::MouseButton boton = Qt::LeftButton);
void ClicEntrada(QMenu* menu, QAction* entrada);
void ClicPestaña(QTabWidget* pestañas, int pagina);
void Escribe(const QString& texto);
void Tecla(int tecla, Qt::KeyboardModifiers con = Qt::NoModifier);
/// A cell in sight is clicked, its text typed and left by Enter.
void PonCelda(controls::DataGrid* rejilla, int fila, int columna, const QString& texto);

} // namespace pruebas::mano
