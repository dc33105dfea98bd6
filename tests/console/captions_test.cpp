// Every caption of every form in both languages, as captions.txt has them side by side. With
// QUERMO_WRITE_CAPTIONS the table is written instead of compared.
#include "Consola.h"

#include "app/ConsolaSQL_Glo.h"
#include "backup/frmCopiaSeguridad.h"
#include "backup/frmRestaurarCopia.h"
#include "backup/frmUbicacion.h"
#include "browser/frmAdministrador.h"
#include "core/Global.h"
#include "core/frmConectar.h"
#include "core/mdiPrincipal.h"
#include "databasedesigner/frmPropiedadesBD.h"
#include "platform/controls/DataGrid.h"
#include "query/frmAnalizadorConsultas.h"
#include "query/frmProcedimiento.h"
#include "query/frmVista.h"

#include <QAbstractButton>
#include <QFile>
#include <QGroupBox>
#include <QLabel>
#include <QMap>
#include <QMenu>
#include <QRegularExpression>
#include <QTabWidget>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {
namespace {

using Textos = QMap<QString, QString>; ///< by "form control"

class Recogida
{
public:
    Recogida(Textos& textos, const QWidget* ventana) : m_textos(textos), m_ventana(ventana)
    {
        Toma(u""_s, ventana->windowTitle());
        TomaTodos<QLabel>([](const auto* control) { return control->text(); });
        TomaTodos<QAbstractButton>([](const auto* control) { return control->text(); });
        TomaTodos<QGroupBox>([](const auto* control) { return control->title(); });
        for (const auto* pestañas : ventana->findChildren<QTabWidget*>())
            for (int pagina = 0; pagina < pestañas->count(); ++pagina)
                Toma(pestañas->objectName() + u'.' + QString::number(pagina), pestañas->tabText(pagina));
        for (auto* rejilla : ventana->findChildren<controls::DataGrid*>())
            for (int columna = 0; columna < rejilla->model()->columnCount(); ++columna)
                Toma(rejilla->objectName() + u'.' + QString::number(columna),
                     rejilla->model()->headerData(columna, Qt::Horizontal).toString());
        for (const auto* lista : ventana->findChildren<controls::ListView*>())
            for (int columna = 1; columna <= 4; ++columna)
                Toma(lista->objectName() + u'.' + QString::number(columna), lista->columnHeader(columna));
    }

    /// The main window holds the other forms: of it only the menus are taken.
    static void Menus(Textos& textos, const QWidget* ventana)
    {
        for (const auto* entrada : ventana->findChildren<QAction*>(QRegularExpression(u"^mnu"_s)))
            textos[u"menu "_s + entrada->objectName()] = entrada->text();
        for (const auto* menu : ventana->findChildren<QMenu*>(QRegularExpression(u"^mnu"_s)))
            textos[u"menu "_s + menu->objectName()] = menu->title();
    }

private:
    void Toma(const QString& control, const QString& texto)
    {
        // What a form has read is no caption.
        static const QStringList leidos{u"lblEstado"_s,   u"lblPropietario"_s, u"lblFechaCreacion"_s,
                                        u"lblTamaño"_s,   u"lblUsuarios"_s,    u"lblIntercalacion"_s,
                                        u"lblUbicacion"_s};
        if (!texto.isEmpty() && !control.startsWith(u"qt_"_s) && !leidos.contains(control))
            m_textos[m_ventana->objectName() + u' ' + control] = texto;
    }
    template <class Control, class Texto>
    void TomaTodos(Texto texto)
    {
        for (const auto* control : m_ventana->findChildren<Control*>())
            if (!control->objectName().isEmpty() &&
                qobject_cast<const QTabBar*>(control->parentWidget()) == nullptr)
                Toma(control->objectName(), texto(control));
    }

    Textos& m_textos;
    const QWidget* m_ventana;
};

} // namespace

class Rotulos : public Consola
{
protected:
    Textos Recoge(int idioma)
    {
        Textos textos;
        Arranca(idioma);
        ::frmConectar->Show();
        Recogida(textos, &*::frmConectar);
        ::frmConectar->Unload();
        Conecta(ServidorDePrueba(), u"sa"_s, ClaveDePrueba);
        Abre(::mdiPrincipal->mnuAdministrador);
        Abre(::mdiPrincipal->mnuAnalizadorConsultas);
        BaseDatosActual = u"master"_s;
        NuevaBD = false;
        NuevaTabla = true;
        auto* tabla = CreaDiseño(QString());
        tabla->setObjectName(u"frmTabla"_s);
        tabla->Show();
        ::frmPropiedadesBD->Show();
        ::frmUbicacion->Show();
        ::frmCopiaSeguridad->Show();
        ::frmRestaurarCopia->Show();
        ::frmVista->Show();
        ::frmProcedimiento->Show();
        ::frmAdministrador->SetFocus();
        for (const controls::Form* forma : controls::LoadedForms())
            Recogida(textos, forma);
        Recogida::Menus(textos, &*::mdiPrincipal);
        respuesta = controls::Answer::No;
        tabla->Unload();
        for (controls::Form* forma : controls::LoadedForms())
            forma->Unload();
        Avisos();
        return textos;
    }
};

TEST_F(Rotulos, EveryCaptionInBothLanguages)
{
    const Textos español = Recoge(Es);
    TearDown();
    SetUp();
    const Textos ingles = Recoge(En);
    QStringList lineas;
    for (auto texto = español.begin(); texto != español.end(); ++texto)
        lineas += texto.key() + u" | "_s + *texto + u" | "_s + ingles.value(texto.key());
    EXPECT_EQ(español.keys(), ingles.keys());
    QFile tabla(QStringLiteral(QUERMO_CAPTIONS));
    if (qEnvironmentVariableIsSet("QUERMO_WRITE_CAPTIONS")) {
        ASSERT_TRUE(tabla.open(QIODevice::WriteOnly));
        tabla.write(lineas.join(u'\n').toUtf8() + '\n');
        return;
    }
    ASSERT_TRUE(tabla.open(QIODevice::ReadOnly));
    const QStringList esperadas = QString::fromUtf8(tabla.readAll()).split(u'\n', Qt::SkipEmptyParts);
    EXPECT_EQ(lineas.size(), esperadas.size());
    for (qsizetype linea = 0; linea < std::min(lineas.size(), esperadas.size()); ++linea)
        EXPECT_EQ(lineas[linea], esperadas[linea]);
}

} // namespace pruebas
