#include "engine/session/plan.h"

namespace practice {

CompiledBatchPtr BatchCache::find(const std::string& key)
{
    const auto found = index_.find(key);
    if (found == index_.end())
        return nullptr;
    entries_.splice(entries_.begin(), entries_, found->second);
    return found->second->second;
}

void BatchCache::insert(const std::string& key, CompiledBatchPtr batch)
{
    if (key.size() > longestText)
        return;
    if (const auto known = index_.find(key); known != index_.end()) {
        entries_.erase(known->second);
        index_.erase(known);
    }
    entries_.emplace_front(key, std::move(batch));
    index_[key] = entries_.begin();
    if (entries_.size() <= capacity)
        return;
    index_.erase(entries_.back().first);
    entries_.pop_back();
}

} // namespace practice
