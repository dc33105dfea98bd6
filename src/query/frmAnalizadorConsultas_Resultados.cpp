// What a run brought: the sets of rows, one at a time in the grid, and what the server said beside them.
#include "query/frmAnalizadorConsultas.h"

#include "core/Funciones.h"
#include "core/Idioma.h"
#include "platform/basic/RuntimeError.h"

#include <QLocale>

using namespace Qt::Literals::StringLiterals;

namespace formularios {

namespace {

// A batch can go on failing; past this many errors of later results the rest is left unread.
constexpr std::size_t MaximoErrores = 100;

QString EnTexto(const QString& español, const QString& ingles)
{
    return EnIdioma(español, ingles).value_or(español);
}

QString CuentaFilas(qint64 filas)
{
    const QString numero = QLocale().toString(filas);
    return filas == 1 ? EnTexto(u"1 fila"_s, u"1 row"_s) : EnTexto(numero + u" filas"_s, numero + u" rows"_s);
}

QString CuentaAfectadas(qint64 filas)
{
    if (filas < 0)
        return EnTexto(u"Instrucción ejecutada."_s, u"Statement executed."_s);
    const QString numero = QLocale().toString(filas);
    return filas == 1 ? EnTexto(u"1 fila afectada."_s, u"1 row affected."_s)
                      : EnTexto(numero + u" filas afectadas."_s, numero + u" rows affected."_s);
}

} // namespace

/// Reads the results behind the first to the batch's end. An error among them ends its statement only.
frmAnalizadorConsultas::Balance frmAnalizadorConsultas::CapturaResultados()
{
    Balance balance;
    std::optional<ado::Recordset> resultado = Registros;
    while (resultado && balance.errores.size() < MaximoErrores) {
        balance.lineas += resultado->Messages();
        if (resultado->FieldCount() > 0)
            Conjuntos_.push_back(*resultado);
        else if (resultado->RecordsAffected() >= 0)
            balance.afectadas += resultado->RecordsAffected();
        resultado = SiguienteResultado(*resultado, balance);
    }
    return balance;
}

std::optional<ado::Recordset> frmAnalizadorConsultas::SiguienteResultado(ado::Recordset& actual,
                                                                         Balance& balance)
{
    while (balance.errores.size() < MaximoErrores) {
        try {
            return actual.NextRecordset();
        } catch (const basic::RuntimeError& error) {
            balance.errores.push_back(error);
            balance.lineas += u"Nº "_s + QString::number(error.number()) + u": "_s + error.description();
        }
    }
    return std::nullopt;
}

void frmAnalizadorConsultas::MuestraResultados()
{
    Conjuntos_.clear();
    const Balance balance = CapturaResultados();
    CargaConjuntos();
    if (Conjuntos_.empty())
        MuestraSinFilas(balance.afectadas);
    MuestraMensajes(balance.lineas);
    if (!balance.errores.empty())
        MuestraError(u"Error cargando datos."_s, u"Ejecuta"_s, balance.errores.front().number(),
                     balance.errores.front().description());
}

/// One entry a set of rows; choosing one shows it. A single set needs no choice.
void frmAnalizadorConsultas::CargaConjuntos()
{
    cboResultados->Clear();
    cboResultados->setVisible(Conjuntos_.size() > 1);
    for (std::size_t i = 0; i < Conjuntos_.size(); ++i)
        cboResultados->AddItem(EnTexto(u"Resultado "_s, u"Result "_s) + QString::number(i + 1));
    if (!Conjuntos_.empty())
        cboResultados->setListIndex(0);
}

void frmAnalizadorConsultas::cboResultados_Click()
try {
    if (cboResultados->ListIndex() == -1)
        return;
    const ado::Recordset& conjunto = Conjuntos_.at(static_cast<std::size_t>(cboResultados->ListIndex()));
    GridSQL->setDataSource(conjunto);
    GridSQL->ReBind();
    lblResultado->setText(CuentaFilas(conjunto.RecordCount()));
} catch (...) {
    InformaError(u"cboResultados_Click"_s);
}

void frmAnalizadorConsultas::MuestraSinFilas(const QList<qint64>& afectadas)
{
    QStringList lineas;
    for (const qint64 filas : afectadas)
        lineas += CuentaAfectadas(filas);
    const QString texto = lineas.isEmpty() ? CuentaAfectadas(-1) : lineas.join(u'\n');
    GridSQL->showMessage(texto);
    lblResultado->setText(lineas.isEmpty() ? texto : lineas.last());
}

/// What the server printed, and the errors behind the first result, below the grid, in the order in which
/// they came.
void frmAnalizadorConsultas::MuestraMensajes(const QStringList& lineas)
{
    txtMensajes->setPlainText(lineas.join(u'\n'));
    txtMensajes->setVisible(!lineas.isEmpty());
}

} // namespace formularios
