#include "core/Funciones.h"

#include "core/Global.h"
#include "core/Idioma.h"
#include "platform/basic/RuntimeError.h"
#include "platform/basic/VariantText.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/Keys.h"
#include "platform/controls/Pointer.h"
#include "platform/controls/TextBox.h"

#include <QKeyEvent>

#include <cstddef>
#include <exception>
#include <new>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int TiempoMaximo = 120; // seconds that a statement may run
constexpr int CursorClaves = 1;   // keyset
constexpr int LadoCliente = 3;    // client-side cursor
constexpr int TextoDeOrden = 1;   // the source is a command's text
constexpr int Enter = 13;

QString Igualdad(const Condicion& condicion, const QString& comparador)
{
    if (condicion.Tipo == TipoCondicion::Numerico)
        return u"="_s + condicion.Valor;
    return comparador + u"'"_s + condicion.Valor + u"'"_s;
}

QString CodigoMostrado(const Condicion& primera, std::initializer_list<Condicion> otras)
{
    const auto grupo = [&](std::size_t n) { return n < otras.size() ? otras.begin()[n] : Condicion{}; };
    if (!grupo(1).Campo.isEmpty())
        return primera.Valor + u"/"_s + grupo(0).Valor + u"/"_s + grupo(1).Valor;
    if (grupo(0).Campo.isEmpty())
        return primera.Valor;
    return primera.Valor + u"/"_s + grupo(0).Valor;
}

/// Takes Enter from a control.
class FiltroEntrada : public QObject
{
public:
    using QObject::QObject;

    bool eventFilter(QObject* /*control*/, QEvent* evento) override
    {
        if (evento->type() != QEvent::KeyPress)
            return false;
        const int tecla = static_cast<QKeyEvent*>(evento)->key();
        return (tecla == Qt::Key_Return || tecla == Qt::Key_Enter) && SalidaCampo(Enter) == 0;
    }
};

} // namespace

bool Conecta_SQL(ado::Connection& Conexion, const QString& BaseDatos)
try {
    Conexion = ado::Connection();
    Conexion.setCommandTimeout(TiempoMaximo);
    Conexion.Open(u"Provider="_s + ProveedorSQL + u";Data Source="_s + ServidorSQL + u";Initial Catalog="_s +
                      BaseDatos + u";User Id="_s + UsuarioSQL + u";Password="_s + ClaveSQL + u";"_s,
                  QString(), QString(), -1);
    return true;
} catch (...) {
    InformaError(u"Conecta_SQL"_s, u"Error conectando con SQL Server."_s);
    return false;
}

bool CreaRecordset(ado::Connection& Conexion, ado::Recordset& Registros, const QString& Texto,
                   std::optional<int> Bloqueo)
try {
    Registros = ado::Recordset();
    Registros.setCursorType(CursorClaves);
    Registros.setCursorLocation(LadoCliente);
    if (Bloqueo)
        Registros.setLockType(*Bloqueo);
    Registros.Open(Texto, Conexion, -1, -1, TextoDeOrden);
    return true;
} catch (...) {
    InformaError(u"CreaRecordset"_s, u"Error cargando datos."_s);
    return false;
}

void Ejecuta_SQL(const QString& Texto)
{
    ConexionSQL.Execute(Texto, nullptr, -1);
}

QString BuscaRegistro(ado::Connection& Conexion, const QString& Tabla, const QString& CampoResultado,
                      Condicion& Primera, std::initializer_list<Condicion> Otras)
try {
    if (Primera.Tipo == TipoCondicion::Numerico)
        Primera.Valor = Primera.Valor.trimmed();
    if (Primera.Valor.isEmpty())
        return {};
    QString texto = u"Select "_s + CampoResultado + u" from "_s + PrefijoBD + Tabla + u" where "_s +
                    Primera.Campo + Igualdad(Primera, u" = "_s);
    for (const Condicion& otra : Otras)
        if (!otra.Campo.isEmpty())
            texto += u" and "_s + otra.Campo + Igualdad(otra, u" Like "_s);
    ado::Recordset registros;
    if (!CreaRecordset(Conexion, registros, texto))
        return {};
    QString resultado = registros.RecordCount() > 0 ? TextoCampo(registros, 0) : QString();
    registros.Close();
    return resultado;
} catch (...) {
    InformaError(u"BuscaRegistro"_s, u"Error buscando registro."_s);
    return {};
}

bool ExisteRegistro(ado::Connection& Conexion, bool MostrarMensaje, const QString& Tabla,
                    const Condicion& Primera, std::initializer_list<Condicion> Otras)
try {
    if (Primera.Valor.isEmpty())
        return false;
    QString texto = u"Select "_s + Primera.Campo + u" from "_s + PrefijoBD + Tabla + u" where "_s +
                    Primera.Campo + Igualdad(Primera, u" = "_s);
    for (const Condicion& otra : Otras)
        if (!otra.Campo.isEmpty())
            texto += u" and "_s + otra.Campo + Igualdad(otra, u" = "_s);
    ado::Recordset registros;
    if (!CreaRecordset(Conexion, registros, texto))
        return true;
    if (registros.RecordCount() < 1)
        return false;
    if (MostrarMensaje)
        controls::messageBox(u"El codigo "_s + CodigoMostrado(Primera, Otras) + u" ya existe en la tabla "_s +
                                 Tabla,
                             EstiloAviso, u"Atención"_s);
    return true;
} catch (...) {
    InformaError(u"ExisteRegistro"_s);
    return true;
}

bool BuscarComboCadena(const QString& Cadena, controls::ComboBox* Combo)
try {
    for (int i = 0; i < Combo->ListCount(); ++i) {
        if (Combo->List(i).trimmed() != Cadena)
            continue;
        Combo->setListIndex(i);
        return true;
    }
    Combo->setListIndex(-1);
    return false;
} catch (...) {
    InformaError(u"BuscarComboCadena"_s);
    return false;
}

QString DameIntercalacion(const QString& BaseDatos)
try {
    ado::Recordset registros;
    if (!CreaRecordset(ConexionSQL, registros,
                       u" select convert(sysname,DatabasePropertyEx('"_s + BaseDatos + u"','Collation'))"_s))
        return {};
    return registros.RecordCount() > 0 ? TextoCampo(registros, 0) : QString();
} catch (...) {
    InformaError(u"DameIntercalacion"_s);
    return {};
}

int SalidaCampo(int KeyAscii)
{
    if (KeyAscii != Enter)
        return KeyAscii;
    controls::synthesizeTab();
    return 0;
}

void EnlazaSalidaCampo(controls::TextBox* Caja)
{
    QObject::connect(Caja, &controls::TextBox::KeyPress, Caja,
                     [](int& KeyAscii) { KeyAscii = SalidaCampo(KeyAscii); });
}

void EnlazaSalidaCampo(QWidget* Control)
{
    Control->installEventFilter(new FiltroEntrada(Control));
}

void MuestraError(const QString& Texto, const QString& Procedimiento, int Numero, const QString& Descripcion)
try {
    controls::messageBox(u" Error Nº:"_s + QString::number(Numero) + u" ("_s + Descripcion + u")."_s,
                         EstiloAviso, u"Atención."_s);
} catch (...) {
    controls::messageBox(u"Error critico. \r"_s + Texto + u"."_s + Procedimiento + u"\rNº:"_s +
                             QString::number(Numero) + u" ("_s + Descripcion + u")."_s,
                         EstiloCritico, u"Atención."_s);
}

void InformaError(const QString& Procedimiento, const QString& Texto)
{
    constexpr int SinMemoria = 7;
    constexpr int ErrorInterno = 51;
    try {
        throw;
    } catch (const basic::RuntimeError& error) {
        MuestraError(Texto, Procedimiento, error.number(), error.description());
    } catch (const std::bad_alloc&) {
        MuestraError(Texto, Procedimiento, SinMemoria, u"Out of memory"_s);
    } catch (const std::exception& error) {
        MuestraError(Texto, Procedimiento, ErrorInterno, QString::fromUtf8(error.what()));
    }
}

void InformaErrorYPuntero(const QString& Procedimiento, const QString& Texto)
{
    InformaError(Procedimiento, Texto);
    controls::setMousePointer(controls::Pointer::Default);
}

QString TextoCampo(const ado::Recordset& Registros, const QString& Campo)
{
    return basic::text(Registros.Value(Campo));
}

QString TextoCampo(const ado::Recordset& Registros, int Numero)
{
    return basic::text(Registros.Value(Numero));
}
