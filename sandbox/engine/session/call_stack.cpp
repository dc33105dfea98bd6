#include "engine/session/call_stack.h"

#include "types/text_encoding.h"

#include <algorithm>

namespace practice {

std::unique_ptr<Frame> CallStack::pop()
{
    std::unique_ptr<Frame> top = std::move(frames_.back());
    frames_.pop_back();
    return top;
}

Frame* CallStack::innermostScope() const
{
    const auto found =
        std::find_if(frames_.rbegin(), frames_.rend(), [](const auto& frame) { return frame->ownScope; });
    return found == frames_.rend() ? nullptr : found->get();
}

const Variable* CallStack::find(const std::string& folded) const
{
    if (frames_.empty())
        return nullptr;
    const auto found = top().variables.find(folded);
    return found == top().variables.end() ? nullptr : &found->second;
}

Variable& CallStack::variable(const std::string& name) const
{
    const auto found = top().variables.find(lowerCase(name));
    if (found == top().variables.end())
        raise(137, {name});
    return found->second;
}

void CallStack::declare(const std::string& name, const SqlType& type) const
{
    top().variables[lowerCase(name)] = {type, {}};
}

bool CallStack::catchesErrors() const
{
    return std::any_of(frames_.begin(), frames_.end(), [](const auto& frame) { return frame->tryDepth > 0; });
}

} // namespace practice
