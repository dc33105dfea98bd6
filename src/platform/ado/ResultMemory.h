// How much memory the results of this process may hold together, so that a batch that never ends is refused
// long before the machine has none left.
#pragma once

#include <cstddef>

namespace ado {

/// A quarter of the machine's memory, in bytes, unless set otherwise; 0 sets it so again.
void setResultLimit(std::size_t bytes);
[[nodiscard]] std::size_t resultLimit();
/// What all results hold now.
[[nodiscard]] std::size_t resultBytes();

/// What one result holds of it; given back when the result goes.
class ResultShare
{
public:
    ResultShare() = default;
    ~ResultShare();
    ResultShare(const ResultShare&) = delete;
    ResultShare& operator=(const ResultShare&) = delete;

    /// Raises -2147024882 when all shares together pass the limit.
    void grow(std::size_t bytes);
    void release();
    [[nodiscard]] std::size_t bytes() const { return m_bytes; }

private:
    std::size_t m_bytes = 0;
};

} // namespace ado
