#include "Mano.h"

#include "core/mdiPrincipal.h"
#include "platform/controls/DataGrid.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QTabBar>
#include <QTabWidget>
#include <QTest>
#include <QWindow>

namespace pruebas::mano {
namespace {

QWidget* Teclado()
{
    return QApplication::activePopupWidget() ? QApplication::activePopupWidget()
                                             : QApplication::focusWidget();
}

/// What is under way; and the main window comes back when a list has closed, as a window manager does it.
void Atiende()
{
    QCoreApplication::processEvents();
    if (!::mdiPrincipal.exists() || QApplication::activePopupWidget() || QApplication::activeModalWidget() ||
        QApplication::activeWindow() == &*::mdiPrincipal)
        return;
    ::mdiPrincipal->activateWindow();
    QCoreApplication::processEvents();
}

} // namespace

void Clic(QWidget* control, const QPoint& punto, Qt::MouseButton boton)
{
    QWidget* ventana = control->window();
    const QPoint lugar = control->mapTo(ventana, punto);
    const QWidget* debajo = ventana->childAt(lugar);
    ASSERT_TRUE(debajo == control || control->isAncestorOf(debajo))
        << "covered by " << (debajo ? debajo->objectName().toStdString() : "nothing");
    QTest::mouseMove(ventana->windowHandle(), lugar);
    QTest::mouseClick(ventana->windowHandle(), boton, {}, lugar);
    Atiende();
}

void Clic(QWidget* control)
{
    const auto* boton = qobject_cast<QAbstractButton*>(control);
    constexpr int Marca = 8; // of a tick box, whose caption need not fill the rest
    const QPoint centro = control->rect().center();
    Clic(control, boton != nullptr && boton->isCheckable() ? QPoint(Marca, centro.y()) : centro);
}

void ClicCelda(controls::DataGrid* rejilla, int fila, int columna, Qt::MouseButton boton)
{
    const QRect celda = rejilla->cellRect(fila, columna) & rejilla->viewport()->rect();
    ASSERT_FALSE(celda.isEmpty()) << "out of sight: " << fila << "," << columna;
    Clic(rejilla->viewport(), celda.center(), boton);
}

void ClicEntrada(QMenu* menu, QAction* entrada)
{
    ASSERT_TRUE(menu->isVisible());
    const QPoint punto = menu->actionGeometry(entrada).center();
    QTest::mouseMove(menu->windowHandle(), punto);
    QTest::mouseClick(menu->windowHandle(), Qt::LeftButton, {}, punto);
    QTest::qWait(1);
}

void ClicPestaña(QTabWidget* pestañas, int pagina)
{
    Clic(pestañas->tabBar(), pestañas->tabBar()->tabRect(pagina).center());
}

void Escribe(const QString& texto)
{
    for (const char32_t letra : texto.toUcs4())
        QTest::sendKeyEvent(QTest::Click, Teclado(), Qt::Key_unknown, QString::fromUcs4(&letra, 1), {});
}

void Tecla(int tecla, Qt::KeyboardModifiers con)
{
    ASSERT_NE(Teclado(), nullptr);
    QTest::keyClick(Teclado(), static_cast<Qt::Key>(tecla), con);
    Atiende();
}

void PonCelda(controls::DataGrid* rejilla, int fila, int columna, const QString& texto)
{
    // A click into the current cell would begin an edit behind its text.
    if (rejilla->Bookmark() != fila || rejilla->Col() != columna || !rejilla->hasFocus())
        ClicCelda(rejilla, fila, columna);
    Escribe(texto);
    Tecla(Qt::Key_Return);
}

} // namespace pruebas::mano
