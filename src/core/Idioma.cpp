#include "core/Idioma.h"

#include "core/Global.h"
#include "platform/controls/DataGrid.h"
#include "platform/controls/Form.h"
#include "platform/controls/ListView.h"

#include <QAbstractButton>
#include <QAction>
#include <QGroupBox>
#include <QLabel>
#include <QMenu>
#include <QTabWidget>

using namespace Qt::Literals::StringLiterals;

std::optional<QString> EnIdioma(const QString& español, const QString& ingles)
{
    if (Idioma == Español)
        return español;
    if (Idioma == Ingles)
        return ingles;
    return std::nullopt;
}

void PonTexto(controls::Form* formulario, const QString& español, const QString& ingles)
{
    if (const auto texto = EnIdioma(español, ingles))
        formulario->setCaption(*texto);
}

void PonTexto(QAbstractButton* boton, const QString& español, const QString& ingles)
{
    if (const auto texto = EnIdioma(español, ingles))
        boton->setText(*texto);
}

void PonTexto(QAction* entrada, const QString& español, const QString& ingles)
{
    if (const auto texto = EnIdioma(español, ingles))
        entrada->setText(*texto);
}

void PonTexto(QGroupBox* marco, const QString& español, const QString& ingles)
{
    if (const auto texto = EnIdioma(español, ingles))
        marco->setTitle(*texto);
}

void PonTexto(QLabel* etiqueta, const QString& español, const QString& ingles)
{
    if (const auto texto = EnIdioma(español, ingles))
        etiqueta->setText(*texto);
}

void PonTexto(QMenu* menu, const QString& español, const QString& ingles)
{
    if (const auto texto = EnIdioma(español, ingles))
        menu->setTitle(*texto);
}

void PonCabecera(controls::ListView* lista, int posicion, const QString& español, const QString& ingles)
{
    if (const auto texto = EnIdioma(español, ingles))
        lista->setColumnHeader(posicion, *texto);
}

void PonCabecera(controls::DataGrid* rejilla, int columna, const QString& español, const QString& ingles)
{
    if (const auto texto = EnIdioma(español, ingles))
        rejilla->Columns(columna).setCaption(*texto);
}

void PonPestaña(QTabWidget* pestañas, int pestaña, const QString& español, const QString& ingles)
{
    if (const auto texto = EnIdioma(español, ingles))
        pestañas->setTabText(pestaña, *texto);
}

controls::Answer MuestraMensaje(const QString& español, const QString& ingles, int estilo)
{
    if (const auto texto = EnIdioma(español, ingles))
        Mensaje = *texto;
    return controls::messageBox(Mensaje, estilo, u"Quermo"_s);
}
