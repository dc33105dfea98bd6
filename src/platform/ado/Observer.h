// Where sent texts are told to the observer of Transcript.h.
#pragma once

#include <QString>

namespace ado {

/// Tells the installed observer that `text` is about to be sent.
void observe(const QString& text);

} // namespace ado
