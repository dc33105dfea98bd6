#include "platform/ado/ResultMemory.h"

#include "platform/ado/ErrorNumbers.h"
#include "platform/basic/Language.h"
#include "platform/basic/RuntimeError.h"
#include <atomic>
#include <unistd.h>
#include <utility>

namespace ado {

namespace {

constexpr std::size_t bytesPerMegabyte = std::size_t{1} << 20U;

std::atomic<std::size_t> held = 0;
std::atomic<std::size_t> chosenLimit = 0;

std::size_t usualLimit()
{
    static const auto quarter = static_cast<std::size_t>(sysconf(_SC_PHYS_PAGES)) / 4 *
                                static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    return quarter;
}

} // namespace

void setResultLimit(std::size_t bytes)
{
    chosenLimit = bytes;
}

std::size_t resultLimit()
{
    const std::size_t chosen = chosenLimit;
    return chosen == 0 ? usualLimit() : chosen;
}

std::size_t resultBytes()
{
    return held;
}

ResultShare::~ResultShare()
{
    release();
}

void ResultShare::grow(std::size_t bytes)
{
    m_bytes += bytes;
    if (held.fetch_add(bytes) + bytes <= resultLimit())
        return;
    basic::raise(
        number::ResultsTooLarge,
        basic::uiText("Los resultados superan los %1 MB que este programa conserva de ellos. El resto se ha "
                      "cancelado: lea menos filas a la vez o cierre otros resultados.",
                      "The results are larger than the %1 MB that this program keeps of them. The rest was "
                      "cancelled: read fewer rows at a time, or close other results.")
            .arg(resultLimit() / bytesPerMegabyte));
}

void ResultShare::release()
{
    held -= std::exchange(m_bytes, 0);
}

} // namespace ado
