#include "platform/ado/Transcript.h"

#include "platform/ado/Observer.h"
#include <utility>

namespace ado {

namespace {

StatementObserver& installed()
{
    static StatementObserver observer;
    return observer;
}

} // namespace

StatementObserver setStatementObserver(StatementObserver observer)
{
    return std::exchange(installed(), std::move(observer));
}

void observe(const QString& text)
{
    if (installed())
        installed()(text);
}

} // namespace ado
