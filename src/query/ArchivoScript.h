// Script files: bytes on disk to and from the query text.
#pragma once

#include "platform/basic/Files.h"
#include "platform/basic/RuntimeError.h"

#include <QByteArray>
#include <QString>

#include <optional>

/// The text of a script's bytes. UTF-16 and UTF-8 by their marks, then UTF-8 when the bytes are well formed,
/// else Latin-1 with the Windows additions.
QString TextoDeBytes(const QByteArray& bytes);

/// UTF-8; with a mark only when there is a character beyond ASCII, so that tools that expect the machine's
/// code page read either kind back.
QByteArray BytesDeTexto(const QString& texto);

/// A script's text, with lines that end in CR LF, the last one too.
struct ScriptLeido
{
    QString texto;
    std::optional<basic::RuntimeError> error; ///< the text then holds the lines read before it
};

ScriptLeido LeeScript(const basic::InputFile& archivo);

/// Puts the text and a line end in the place of what the file holds.
/// @throws basic::RuntimeError 61, 70 or 57; the file then holds its old text
void EscribeScript(basic::OutputFile& archivo, const QString& texto);
