#include "query/ArchivoScript.h"

#include "platform/basic/RuntimeError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
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

[[noreturn]] void ErrorDeArchivo(const QString& nombre, QFileDevice::FileError error)
{
    const QFileInfo archivo(nombre);
    if (archivo.isDir())
        basic::raise(basic::error::PathFileAccess);
    if (!archivo.absoluteDir().exists())
        basic::raise(basic::error::PathNotFound);
    if (error == QFileDevice::ResourceError)
        basic::raise(basic::error::DiskFull);
    if (error == QFileDevice::PermissionsError)
        basic::raise(basic::error::PermissionDenied);
    if (!archivo.exists())
        basic::raise(basic::error::FileNotFound);
    basic::raise(error == QFileDevice::OpenError ? basic::error::PathFileAccess : basic::error::DeviceIo);
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

QString LeeScript(const QString& nombre)
{
    QFile archivo(nombre);
    if (!archivo.open(QIODevice::ReadOnly))
        ErrorDeArchivo(nombre, archivo.error());
    const QByteArray bytes = archivo.readAll();
    if (archivo.error() != QFileDevice::NoError)
        ErrorDeArchivo(nombre, archivo.error());
    return ConLineasDeWindows(TextoDeBytes(bytes));
}

void EscribeScript(const QString& nombre, const QString& texto)
{
    QSaveFile archivo(nombre);
    archivo.setDirectWriteFallback(
        true); // a folder that takes no new files may hold a file that can be written
    if (!archivo.open(QIODevice::WriteOnly))
        ErrorDeArchivo(nombre, archivo.error());
    archivo.write(BytesDeTexto(texto + u"\r\n"_s));
    if (!archivo.commit())
        ErrorDeArchivo(nombre, archivo.error());
}
