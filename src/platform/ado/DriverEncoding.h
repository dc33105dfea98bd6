// What a statement's text must not lose on its way through the driver. FreeTDS looks for '?' and braces in
// the text that it sends, whatever stands around them, and takes NUL for its end; so such characters travel
// through it as others that the text does not hold, and come back where it encodes the text for the wire,
// which is a call of the C library's iconv().
#pragma once

#include <QString>
#include <vector>

namespace ado {

struct StandIn
{
    char16_t meant;
    char16_t sent;
};

/// A text as the driver gets it.
struct EncodedText
{
    QString text;
    std::vector<StandIn> standIns; ///< what the wire gets instead
};

/// The text with stand-ins for what the driver would change. Raises -2147217900 when it holds more kinds of
/// such characters than there are stand-ins, which takes several hundred lone surrogates.
[[nodiscard]] EncodedText withStandIns(const QString& text);

/// While it lives, what this thread encodes gets the meant characters back. One at a time.
class StandInsRestored
{
public:
    explicit StandInsRestored(const std::vector<StandIn>& standIns);
    ~StandInsRestored();
    StandInsRestored(const StandInsRestored&) = delete;
    StandInsRestored& operator=(const StandInsRestored&) = delete;
};

/// Encodings that this thread has done so far: a driver that encodes while it connects is one whose text can
/// be restored.
[[nodiscard]] unsigned long encodingsDone();

} // namespace ado
