#include "Consola.h"

#include "app/Main.h"
#include "browser/frmAdministrador.h"
#include "core/Funciones.h"
#include "core/Global.h"
#include "core/frmConectar.h"
#include "core/mdiPrincipal.h"
#include "core/mdlRegistro.h"
#include "platform/ado/Transcript.h"
#include "platform/controls/Pointer.h"
#include "query/frmAnalizadorConsultas.h"
#include "support/PracticeServer.h"

#include <QCoreApplication>
#include <QRegularExpression>
#include <QTest>

#include <ostream>

using namespace Qt::Literals::StringLiterals;

void PrintTo(const QString& texto, std::ostream* salida)
{
    *salida << '"' << texto.toStdString() << '"';
}

namespace pruebas {

void PrintTo(const Aviso& aviso, std::ostream* salida)
{
    *salida << aviso.estilo << " [" << aviso.titulo.toStdString() << "] " << aviso.texto.toStdString();
}

QString Lineas(const QStringList& lineas)
{
    QString texto;
    for (QString linea : lineas) {
        linea.replace(u"\r"_s, u"\\r"_s).replace(u"\n"_s, u"\\n"_s).replace(u"  "_s, u"··"_s);
        texto += linea + u"\n"_s;
    }
    return texto;
}

namespace {

const support::PracticeServer& Servidor()
{
    static const auto servidor = support::PracticeServer::start();
    return *servidor;
}

/// All that forms share goes back to what it is at the start of the program.
void OlvidaLoCompartido()
{
    ConexionSQL = ado::Connection();
    for (QString* texto : {&ProveedorSQL, &ServidorSQL, &UsuarioSQL, &ClaveSQL, &BaseDatosActual, &PrefijoBD,
                           &Mensaje, &UsuarioActual, &LoginActual, &RutaUbicacion})
        texto->clear();
    Idioma = 0;
    NuevaBD = false;
    NuevaTabla = false;
    GruposFicheros.Redim(UltimaFilaGrupos, UltimaColumnaGrupos);
    controls::setMousePointer(controls::Pointer::Default);
}

} // namespace

QString ServidorDePrueba()
{
    return u"127.0.0.1,"_s + QString::number(Servidor().port());
}

QStringList LlegadoAlServidor()
{
    static qint64 lugar = 0;
    return Servidor().statementsFrom(lugar);
}

int EntornoONumero(const char* nombre, int numero)
{
    bool vale = false;
    const int entorno = qEnvironmentVariableIntValue(nombre, &vale);
    return vale ? entorno : numero;
}

QString UltimaEnElServidor(const QString& comienzo)
{
    const QStringList llegadas = Servidor().statementLog().filter(QRegularExpression(u"^"_s + comienzo));
    return llegadas.value(llegadas.size() - 1);
}

void Consola::SetUp()
{
    m_sentencias.clear();
    m_avisos.clear();
    ado::setStatementObserver([this](const QString& texto) { m_sentencias += texto; });
    controls::setMessageBoxAnswerer([this](const QString& texto, int estilo, const QString& titulo) {
        m_avisos += Aviso{texto, estilo, titulo};
        return respuesta;
    });
}

void Consola::TearDown()
{
    respuesta = controls::Answer::No; // a designer that asks is not saved
    for (controls::Form* formulario : controls::LoadedForms())
        formulario->Unload();
    if (::mdiPrincipal.exists()) {
        auto* ventana = &*::mdiPrincipal;
        ventana->Unload();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    OlvidaLoCompartido();
    ado::setStatementObserver({});
    controls::setMessageBoxAnswerer({});
}

void Consola::Arranca(int idioma)
{
    CrearClave(HKEY_CURRENT_USER, ClaveRegistro);
    EscribirValor(HKEY_CURRENT_USER, ClaveRegistro, ValorIdioma, basic::Variant(idioma), ValorNumero);
    Main();
    QTest::qWait(10);
}

void Consola::Conecta(const QString& servidor, const QString& usuario, const QString& clave)
{
    ::mdiPrincipal->mnuConectar->trigger();
    ::frmConectar->txtServidor->setText(servidor);
    ::frmConectar->txtUsuario->setText(usuario);
    ::frmConectar->txtClave->setText(clave);
    ::frmConectar->cmdConectar->click();
    QTest::qWait(1);
}

void Consola::ArrancaYConecta(int idioma)
{
    Arranca(idioma);
    Conecta(ServidorDePrueba(), u"sa"_s, ClaveDePrueba);
    ASSERT_EQ(Avisos(), QList<Aviso>{});
    ASSERT_EQ(Transcripcion(), QString());
}

void Consola::Ejecuta(const QStringList& sentencias)
{
    for (const QString& sentencia : sentencias)
        ASSERT_NO_THROW(ConexionSQL.Execute(sentencia)) << sentencia.toStdString();
}

QString Consola::Consulta(const QString& texto)
{
    ado::Recordset filas;
    filas.Open(texto, ConexionSQL);
    QStringList valores;
    for (; !filas.Eof(); filas.MoveNext())
        valores += TextoCampo(filas, 0);
    return valores.join(u'|');
}

QString Consola::Transcripcion()
{
    return Lineas(std::exchange(m_sentencias, {}));
}

QList<Aviso> Consola::Avisos()
{
    return std::exchange(m_avisos, {});
}

void Consola::Abre(QAction* entrada)
{
    entrada->trigger();
    QTest::qWait(1);
}

void Consola::Pulsa(const QString& claveDelNodo)
{
    auto* arbol = ::frmAdministrador->trvBD;
    auto* nodo = arbol->Find(claveDelNodo);
    ASSERT_NE(nodo, nullptr) << claveDelNodo.toStdString();
    arbol->Select(nodo);
    ::frmAdministrador->trvBD_Click();
}

formularios::frmAnalizadorConsultas* Consola::forma()
{
    return &*::frmAnalizadorConsultas;
}

QString Consola::Celda(int fila, int columna)
{
    return forma()->GridSQL->model()->index(fila, columna).data().toString();
}

QString Consola::Corre(const QString& texto)
{
    forma()->txtSQL->setText(texto);
    QTest::keyClick(forma()->txtSQL, Qt::Key_F5);
    return Transcripcion();
}

controls::ListItem* Consola::Elemento(const QString& texto)
{
    auto* lista = ::frmAdministrador->ltvTablas;
    for (int i = 0; i < lista->ListCount(); ++i)
        if (lista->Item(i)->Text() == texto)
            return lista->Item(i);
    return nullptr;
}

} // namespace pruebas
