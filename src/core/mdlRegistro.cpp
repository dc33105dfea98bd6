#include "core/mdlRegistro.h"

#include "platform/basic/Numbers.h"
#include "platform/basic/RuntimeError.h"
#include "platform/basic/VariantText.h"

#include <QSettings>
#include <QVariant>

#include <memory>

using namespace Qt::Literals::StringLiterals;

namespace {

constexpr int Bien = 0;
constexpr int Mal = -1;

// A file keeps no types, so that a text is marked.
const QString MarcaTexto = QStringLiteral("text:");

std::unique_ptr<QSettings> Abre(const QString& clave)
{
    auto ajustes = std::make_unique<QSettings>(QSettings::IniFormat, QSettings::UserScope, u"quermo"_s);
    ajustes->setFallbacksEnabled(false); // what the machine's administrator left is another hive
    ajustes->beginGroup(QString(clave).replace(u'\\', u'/'));
    return ajustes;
}

int Estado(QSettings& ajustes)
{
    ajustes.sync();
    return ajustes.status() == QSettings::NoError && ajustes.isWritable() ? Bien : Mal;
}

} // namespace

bool CrearClave(Colmena /*colmena*/, const QString& clave)
{
    const auto ajustes = Abre(clave);
    return Estado(*ajustes) == Bien;
}

bool EscribirValor(Colmena /*colmena*/, const QString& clave, const QString& nombre,
                   const basic::Variant& valor, int tipo)
{
    const auto ajustes = Abre(clave);
    return EscribirValorEx(*ajustes, nombre, tipo, valor) == Bien;
}

int EscribirValorEx(QSettings& claveAbierta, const QString& nombre, int tipo, const basic::Variant& valor)
try {
    if (tipo == ValorNumero)
        claveAbierta.setValue(nombre, basic::toInt32(basic::text(valor)));
    else if (tipo == ValorTexto)
        claveAbierta.setValue(nombre, MarcaTexto + basic::text(valor));
    else
        return Mal;
    return Estado(claveAbierta);
} catch (const basic::RuntimeError&) {
    return Mal;
}

basic::Variant LeerValor(Colmena /*colmena*/, const QString& clave, const QString& nombre)
{
    const auto ajustes = Abre(clave);
    basic::Variant valor;
    LeerValorEx(*ajustes, nombre, valor);
    return valor;
}

int LeerValorEx(QSettings& claveAbierta, const QString& nombre, basic::Variant& valor)
{
    if (!claveAbierta.contains(nombre))
        return Bien;
    const QVariant guardado = claveAbierta.value(nombre);
    const QString texto = guardado.toString();
    bool esNumero = false;
    const int numero = texto.toInt(&esNumero); // the variant itself would wrap a large one round
    if (guardado.typeId() == QMetaType::QString && texto.startsWith(MarcaTexto))
        valor = basic::Variant(texto.mid(MarcaTexto.size()));
    else if (esNumero)
        valor = basic::Variant(numero);
    else
        return Mal;
    return Bien;
}
