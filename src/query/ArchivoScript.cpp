#include "query/ArchivoScript.h"

#include <QStringDecoder>

#include <algorithm>

using namespace Qt::Literals::StringLiterals;

namespace {

// What Windows puts on the 32 places that Latin-1 leaves to control characters; 0 where it has none.
constexpr char16_t AñadidosWindows[] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                        0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                        0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                        0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

QString DeLatino(const QByteArray& bytes)
{
    constexpr char16_t primero = 0x80;
    constexpr char16_t ultimo = 0x9F;
    QString texto = QString::fromLatin1(bytes);
    for (QChar& letra : texto)
        if (letra >= QChar(primero) && letra <= QChar(ultimo))
            if (const char16_t añadido = AñadidosWindows[letra.unicode() - primero]; añadido != 0)
                letra = QChar(añadido);
    return texto;
}

// One pass, since a replacement in place moves the rest of the text at each of its lines.
QString ConLineasDeWindows(const QString& texto)
{
    QString lineas;
    lineas.reserve(texto.size() + texto.size() / 16);
    for (qsizetype i = 0; i < texto.size(); ++i) {
        if (texto[i] == u'\r' && i + 1 < texto.size() && texto[i + 1] == u'\n')
            continue;
        if (texto[i] == u'\r' || texto[i] == u'\n')
            lineas += u"\r\n"_s;
        else
            lineas += texto[i];
    }
    if (!lineas.isEmpty() && !lineas.endsWith(u'\n'))
        lineas += u"\r\n"_s;
    return lineas;
}

/// Without the beginning of a line whose end was not read.
QString SoloLineasEnteras(const QString& texto)
{
    return texto.left(texto.lastIndexOf(u'\n') + 1);
}

} // namespace

QString TextoDeBytes(const QByteArray& bytes)
{
    if (const auto marca = QStringConverter::encodingForData(bytes)) {
        QStringDecoder decodificador(*marca);
        return decodificador(bytes);
    }
    QStringDecoder utf8(QStringConverter::Utf8);
    const QString texto = utf8(bytes);
    return utf8.hasError() ? DeLatino(bytes) : texto;
}

QByteArray BytesDeTexto(const QString& texto)
{
    const bool soloAscii =
        std::all_of(texto.begin(), texto.end(), [](QChar letra) { return letra.unicode() < 0x80; });
    return soloAscii ? texto.toLatin1() : QByteArray("\xEF\xBB\xBF") + texto.toUtf8();
}

ScriptLeido LeeScript(const basic::InputFile& archivo)
{
    QByteArray bytes;
    try {
        archivo.readAll(bytes);
    } catch (const basic::RuntimeError& error) {
        return {ConLineasDeWindows(SoloLineasEnteras(TextoDeBytes(bytes))), error};
    }
    return {ConLineasDeWindows(TextoDeBytes(bytes)), std::nullopt};
}

void EscribeScript(basic::OutputFile& archivo, const QString& texto)
{
    archivo.replace(BytesDeTexto(texto + u"\r\n"_s));
}
