// The texts that reach the platform from outside before anything is sent: the connection string, the
// server's address in it, and what a statement becomes for the driver.
#include "fuzz_check.h"

#include "platform/ado/Driver.h"
#include "platform/ado/StatementText.h"
#include "platform/basic/RuntimeError.h"

using namespace Qt::StringLiterals;

namespace {

void connect(const QString& text)
{
    const ado::ConnectionRequest request = ado::parseConnectionString(text);
    const ado::ServerAddress address = ado::parseServerAddress(request.dataSource);
    fuzz::check(address.port >= 0 && address.port <= 65535);
    fuzz::check(!address.description().isEmpty());
    for (const auto family : {ado::Driver::Family::FreeTds, ado::Driver::Family::Microsoft})
        fuzz::check(!ado::odbcConnectionString({u"driver"_s, family}, address, request).isEmpty());
}

void quoteBack(const QString& text)
{
    if (text.contains(QChar(0)))
        return;
    const QString doubled = QString(text).replace(u'"', u"\"\""_s);
    fuzz::check(ado::parseConnectionString(u"Password=\""_s + doubled + u"\";UID=x"_s).password == text);
}

template <class Work>
void expectSentence(Work work)
{
    try {
        work();
    } catch (const basic::RuntimeError& error) {
        fuzz::check(error.number() != 0 && !error.description().isEmpty());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
    expectSentence([&] { connect(text); });
    quoteBack(text);
    for (const auto family : {ado::Driver::Family::FreeTds, ado::Driver::Family::Microsoft})
        expectSentence([&] {
            fuzz::check(ado::textForDriver(text, family, false).text.size() >= text.size());
            fuzz::check(ado::textForDriver(text, family, true).text.size() == text.size());
        });
    return 0;
}
