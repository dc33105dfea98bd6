// A day's work at full speed: a user who opens, asks, edits, drops and closes in no order at all.
#include "Consola.h"

#include "browser/frmAdministrador.h"
#include "core/Global.h"
#include "core/mdiPrincipal.h"
#include "platform/controls/FileDialog.h"
#include "platform/controls/Pointer.h"
#include "query/frmAnalizadorConsultas.h"
#include "query/frmProcedimiento.h"
#include "query/frmVista.h"
#include "support/PracticeServer.h"
#include "tabledesigner/frmTabla.h"

#include <QElapsedTimer>
#include <QTest>

#include <array>
#include <map>
#include <random>

using namespace Qt::Literals::StringLiterals;

namespace pruebas {

class Jornada : public Consola
{
protected:
    void SetUp() override
    {
        Consola::SetUp();
        m_servidor = support::PracticeServer::start();
        Arranca(0);
        Reconecta();
        controls::setFileDialogAnswerer([this](bool, const QString&) {
            return Azar(3) == 0 ? QString() : m_carpeta.filePath(QString::number(Azar(5)) + u".sql"_s);
        });
    }

    void TearDown() override
    {
        controls::setFileDialogAnswerer({});
        Consola::TearDown();
    }

    std::size_t Azar(std::size_t bajo)
    {
        return std::uniform_int_distribution<std::size_t>(0, bajo - 1)(m_azar);
    }

    template <class Lista>
    auto UnoDe(const Lista& lista)
    {
        return lista[Azar(std::size(lista))];
    }

    /// One thing that a user may do next; some are refused by the state of the moment, as in life.
    void Haz()
    {
        using Accion = void (Jornada::*)();
        static constexpr Accion acciones[] = {
            &Jornada::AbreFormulario, &Jornada::PulsaNodo,
            &Jornada::PulsaNodo,      &Jornada::MandaSobreElemento,
            &Jornada::Consulta,       &Jornada::Consulta,
            &Jornada::Edita,          &Jornada::MandaSobreElemento,
            &Jornada::Cierra,         &Jornada::LlevaScript,
            &Jornada::CambiaBase,     &Jornada::Diseña,
        };
        if (Azar(200) == 0)
            Reconecta();
        if (Azar(300) == 0)
            Idioma = static_cast<qint16>(Azar(2));
        using controls::Answer;
        respuesta = UnoDe(std::array{Answer::Yes, Answer::No, Answer::Cancel});
        (this->*acciones[Azar(std::size(acciones))])();
        QTest::qWait(0);
    }

    std::map<int, int> m_errores; ///< how often each error number was shown

    static QList<formularios::frmTabla*> Diseños()
    {
        QList<formularios::frmTabla*> diseños;
        for (controls::Form* formulario : controls::LoadedForms())
            if (auto* diseño = dynamic_cast<formularios::frmTabla*>(formulario))
                diseños += diseño;
        return diseños;
    }

private:
    void Reconecta()
    {
        Conecta(u"127.0.0.1,"_s + QString::number(m_servidor->port()), u"sa"_s, ClaveDePrueba);
    }

    void AbreFormulario()
    {
        QAction* const entradas[] = {::mdiPrincipal->mnuAdministrador, ::mdiPrincipal->mnuAnalizadorConsultas,
                                     ::mdiPrincipal->mnuAñadirVista, ::mdiPrincipal->mnuAñadirProcedimiento,
                                     ::mdiPrincipal->mnuAñadirTabla};
        UnoDe(entradas)->trigger();
    }

    void PulsaNodo()
    {
        if (!::frmAdministrador.exists())
            return;
        auto* arbol = ::frmAdministrador->trvBD;
        if (arbol->Count() == 0)
            return;
        arbol->EnsureVisible(arbol->Find(u"S"_s));
        const auto nodos = arbol->model()->match(arbol->model()->index(0, 0), Qt::DisplayRole, QString(), -1,
                                                 Qt::MatchContains | Qt::MatchRecursive);
        arbol->setCurrentIndex(UnoDe(nodos));
        ::frmAdministrador->trvBD_Click();
    }

    void MandaSobreElemento()
    {
        if (!::frmAdministrador.exists() || ::frmAdministrador->ltvTablas->ListCount() == 0)
            return;
        auto* lista = ::frmAdministrador->ltvTablas;
        auto* elemento = lista->Item(static_cast<int>(Azar(static_cast<std::size_t>(lista->ListCount()))));
        lista->EnsureVisible(elemento);
        const QPoint punto = lista->itemRect(elemento).center();
        ::frmAdministrador->ltvTablas_MouseDown(2, 0, punto.x(), punto.y());
        ::mdiPrincipal->mnuBaseDatos->close();
        QAction* const entradas[] = {::mdiPrincipal->mnuDiseño, ::mdiPrincipal->mnuVerRegistros,
                                     ::mdiPrincipal->mnuEliminar};
        UnoDe(entradas)->trigger();
    }

    void Consulta()
    {
        if (!::frmAnalizadorConsultas.exists())
            return;
        static const QStringList textos{
            u"create database Obra"_s,
            u"use Obra"_s,
            u"create table Piezas (id int identity primary key, nombre nvarchar(40), precio money)"_s,
            u"create table Cajas (id int references Piezas(id))"_s,
            u"create view Ver as select id, nombre from Piezas"_s,
            u"create procedure Haz @n int = 3 as select @n as n print 'hecho' return @n"_s,
            u"insert Piezas (nombre, precio) values (N'tuerca ñ', 1.5) insert Piezas (nombre) values (null)"_s,
            u"insert Piezas (nombre) select nombre from Piezas where id < 40"_s,
            u"select * from Piezas select count(*) from Piezas select name from sysobjects"_s,
            u"exec Haz 7"_s,
            u"exec sp_addlogin 'ana', 'Clave1!'"_s,
            u"exec sp_grantdbaccess 'ana'"_s,
            u"select * from nada"_s,
            u"selec 1"_s,
            u"select 1 / 0"_s,
            u"print 'uno' raiserror('dos', 16, 1) select 3"_s,
            u"begin tran update Piezas set precio = 2 rollback"_s,
            u"exec sp_helplogins"_s,
            u" "_s,
            u"drop table Cajas drop table Piezas"_s,
            u"use master drop database Obra"_s,
        };
        ::frmAnalizadorConsultas->txtSQL->setText(UnoDe(textos));
        ::frmAnalizadorConsultas->Ejecuta();
    }

    void CambiaBase()
    {
        if (!::frmAnalizadorConsultas.exists() || ::frmAnalizadorConsultas->cboBD->count() == 0)
            return;
        auto* combo = ::frmAnalizadorConsultas->cboBD;
        combo->setCurrentIndex(static_cast<int>(Azar(static_cast<std::size_t>(combo->count()))));
    }

    void Edita()
    {
        const QString añadido = UnoDe(QStringList{u"\r\n-- visto"_s, u"\r\n)"_s, QString()});
        if (::frmVista.exists() && Azar(2) == 0) {
            ::frmVista->txtSQL->setText(::frmVista->txtSQL->Text() + añadido);
            (Azar(4) == 0 ? ::frmVista->cmdCancelar : ::frmVista->cmdAceptar)->click();
        } else if (::frmProcedimiento.exists()) {
            ::frmProcedimiento->txtSQL->setText(::frmProcedimiento->txtSQL->Text() + añadido);
            (Azar(4) == 0 ? ::frmProcedimiento->cmdCancelar : ::frmProcedimiento->cmdAceptar)->click();
        }
    }

    /// Types into a designer, or closes all when many are open.
    void Diseña()
    {
        const auto diseños = Diseños();
        if (diseños.size() > 4) {
            for (auto* diseño : diseños)
                diseño->Unload();
            return;
        }
        if (diseños.isEmpty())
            return;
        auto* diseño = UnoDe(diseños);
        diseño->txtNombreTabla->setText(UnoDe(QStringList{u"Piezas"_s, u"Nueva"_s, QString()}));
        auto* rejilla = diseño->TDBGridTabla;
        rejilla->setBookmark(static_cast<int>(Azar(4)));
        rejilla->setCol(1 + static_cast<int>(Azar(7)));
        for (const auto tecla :
             {Qt::Key_A, Qt::Key_1, UnoDe(std::array{Qt::Key_Return, Qt::Key_Delete, Qt::Key_Tab})})
            QTest::keyClick(rejilla->EditActive() ? rejilla->findChild<QWidget*>(u"gridEditor"_s) : rejilla,
                            tecla);
    }

    void LlevaScript() { (Azar(2) == 0 ? ::mdiPrincipal->mnuAbrir : ::mdiPrincipal->mnuGuardar)->trigger(); }

    void Cierra()
    {
        const auto abiertos = controls::LoadedForms();
        if (!abiertos.isEmpty())
            UnoDe(abiertos)->Unload();
    }

    std::unique_ptr<support::PracticeServer> m_servidor;
    QTemporaryDir m_carpeta;
    std::mt19937 m_azar{20010203};
};

TEST_F(Jornada, LeavesNothingBehind)
{
    constexpr int acciones = 6000;
    constexpr qint64 limite = 60'000; // milliseconds; a sanitised build does fewer
    QElapsedTimer reloj;
    reloj.start();
    int hechas = 0;
    for (; hechas < acciones && reloj.elapsed() < limite; ++hechas) {
        Haz();
        ASSERT_LE(controls::LoadedForms().size(), 5 + Diseños().size());
        ASSERT_EQ(controls::mousePointer(), controls::Pointer::Default);
        for (const Aviso& aviso : Avisos()) {
            if (aviso.titulo == u"Quermo"_s)
                continue; // the designer's own questions and remarks
            ASSERT_EQ(aviso.estilo, 48) << aviso.texto.toStdString();
            ++m_errores[aviso.texto.section(u':', 1).section(u' ', 0, 0).toInt()];
        }
    }
    EXPECT_GT(hechas, 500);
    respuesta = controls::Answer::No;
    for (controls::Form* formulario : controls::LoadedForms())
        formulario->Unload();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(controls::LoadedForms().isEmpty());
    EXPECT_FALSE(::frmAdministrador.exists() || ::frmAnalizadorConsultas.exists() || ::frmVista.exists() ||
                 ::frmProcedimiento.exists());
    // Both a refused statement and one that succeeds later prove that the work was real.
    EXPECT_GT(m_errores[208], 0);
    EXPECT_GT(m_errores[102] + m_errores[2812], 0);
    EXPECT_EQ(m_errores[0], 0) << "a box without an error number";
    for (const auto& [numero, veces] : m_errores)
        RecordProperty("error_" + std::to_string(numero), veces);
}

} // namespace pruebas
