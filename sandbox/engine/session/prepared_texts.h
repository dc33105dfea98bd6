// The texts that a client has prepared, by their handles.
#pragma once

#include <map>
#include <string>

namespace practice {

struct PreparedText
{
    std::string declarations; ///< of its parameters
    std::string text;
};

class PreparedTexts
{
public:
    /// The handle under which it stands from now on.
    int add(PreparedText prepared)
    {
        texts_[++lastHandle_] = std::move(prepared);
        return lastHandle_;
    }
    /// Null for a handle that none has.
    [[nodiscard]] const PreparedText* find(int handle) const
    {
        const auto found = texts_.find(handle);
        return found == texts_.end() ? nullptr : &found->second;
    }
    bool remove(int handle) { return texts_.erase(handle) > 0; }
    /// Takes back the last one that was added.
    void removeLast() { texts_.erase(lastHandle_); }
    void clear() { texts_.clear(); }

private:
    std::map<int, PreparedText> texts_;
    int lastHandle_ = 0;
};

} // namespace practice
