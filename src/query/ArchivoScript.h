// Script files: bytes on disk to and from the query text.
#pragma once

#include <QByteArray>
#include <QString>

/// The text of a script's bytes. UTF-16 and UTF-8 by their marks, then UTF-8 when the bytes are well formed,
/// else Latin-1 with the Windows additions.
QString TextoDeBytes(const QByteArray& bytes);

/// UTF-8; with a mark only when there is a character beyond ASCII, so that tools that expect the machine's
/// code page read either kind back.
QByteArray BytesDeTexto(const QString& texto);

/// Reads a whole script; its lines end in CR LF, the last one too.
/// @throws basic::RuntimeError 53, 70, 75, 76 or 57
QString LeeScript(const QString& nombre);

/// Writes the text and a line end, replacing the file only once all is written.
/// @throws basic::RuntimeError 70, 75, 76, 61 or 57
void EscribeScript(const QString& nombre, const QString& texto);
