#include "platform/ado/DriverEncoding.h"

#include "platform/ado/ErrorNumbers.h"
#include "platform/basic/Language.h"
#include "platform/basic/RuntimeError.h"
#include <algorithm>
#include <cstring>
#include <dlfcn.h>
#include <iconv.h>

namespace {

thread_local const std::vector<ado::StandIn>* restoring = nullptr;
thread_local unsigned long encodings = 0;

/// UTF-16, low byte first, as the wire has it. In UTF-8, which the driver also makes, no stand-in can appear.
void restore(char* begin, const char* end)
{
    for (char* at = begin; at + 1 < end; at += 2) {
        const auto unit = static_cast<char16_t>(static_cast<unsigned char>(at[0]) |
                                                static_cast<unsigned char>(at[1]) << 8U);
        for (const ado::StandIn& standIn : *restoring) {
            if (unit != standIn.sent)
                continue;
            at[0] = static_cast<char>(standIn.meant & 0xffU);
            at[1] = static_cast<char>(standIn.meant >> 8U);
        }
    }
}

} // namespace

/// Stands before the C library's own for all of this program; see the header.
extern "C" std::size_t iconv(iconv_t conversion, char** input, std::size_t* inputLeft, char** output,
                             std::size_t* outputLeft)
{
    static const auto original = reinterpret_cast<decltype(&iconv)>(dlsym(RTLD_NEXT, "iconv"));
    char* const begin = output == nullptr ? nullptr : *output;
    const std::size_t result = original(conversion, input, inputLeft, output, outputLeft);
    ++encodings;
    if (restoring != nullptr && begin != nullptr)
        restore(begin, *output);
    return result;
}

namespace ado {

namespace {

constexpr char16_t privateFirst = 0xE000;
constexpr char16_t privateLast = 0xF8FF;

/// Low bytes that UTF-8 never has.
bool isUnlikeUtf8(char16_t unit)
{
    const unsigned low = unit & 0xffU;
    return low == 0xC0 || low == 0xC1 || low >= 0xF5;
}

bool isChanged(const QString& text, qsizetype at)
{
    const QChar sign = text[at];
    if (sign == u'{' || sign == u'?' || sign.isNull())
        return true;
    if (sign.isHighSurrogate())
        return at + 1 == text.size() || !text[at + 1].isLowSurrogate();
    return sign.isLowSurrogate() && (at == 0 || !text[at - 1].isHighSurrogate());
}

char16_t freeStandIn(const QString& text, char16_t from)
{
    for (unsigned unit = from; unit <= privateLast; ++unit) {
        const auto candidate = static_cast<char16_t>(unit);
        if (isUnlikeUtf8(candidate) && !text.contains(QChar(candidate)))
            return candidate;
    }
    basic::raise(
        number::BadStatement,
        basic::uiText("La instrucción contiene demasiadas mitades de caracteres para enviarla al servidor.",
                      "The statement contains too many halves of characters to be sent to the server."));
}

} // namespace

EncodedText withStandIns(const QString& text)
{
    EncodedText encoded{text, {}};
    char16_t next = privateFirst;
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (!isChanged(text, at))
            continue;
        const char16_t meant = text[at].unicode();
        auto known = std::ranges::find(encoded.standIns, meant, &StandIn::meant);
        if (known == encoded.standIns.end()) {
            const char16_t sent = freeStandIn(text, next);
            next = static_cast<char16_t>(sent + 1);
            known = encoded.standIns.insert(known, {meant, sent});
        }
        encoded.text[at] = QChar(known->sent);
    }
    return encoded;
}

StandInsRestored::StandInsRestored(const std::vector<StandIn>& standIns)
{
    restoring = standIns.empty() ? nullptr : &standIns;
}

StandInsRestored::~StandInsRestored()
{
    restoring = nullptr;
}

unsigned long encodingsDone()
{
    return encodings;
}

} // namespace ado
