// A session's temporary objects: how its names lead to them, and when they go.
#include "engine/catalog/catalog_types.h"
#include "engine/session/session_scope.h"

#include <algorithm>
#include <array>

namespace practice {

namespace {

/// Milliseconds that a session which cleans up waits for another that writes.
constexpr int patience = 250;

bool isGlobal(const std::string& name)
{
    return name.starts_with("##");
}

} // namespace

Frame* SessionState::innermostScope() const
{
    const auto found =
        std::find_if(frames_.rbegin(), frames_.rend(), [](const auto& frame) { return frame->ownScope; });
    return found == frames_.rend() ? nullptr : found->get();
}

std::string SessionState::temporaryName(const std::string& name) const
{
    if (isGlobal(name))
        return name;
    const std::string fold = foldName(name);
    const auto stored = [this, &fold](const std::vector<TemporaryObject>& list) {
        for (auto known = list.rbegin(); known != list.rend(); ++known) {
            if (known->fold == fold && catalog_->object(tempdbId, "", known->stored))
                return known->stored;
        }
        return std::string();
    };
    for (auto frame = frames_.rbegin(); frame != frames_.rend(); ++frame) {
        if (std::string found = stored((*frame)->temporaries); !found.empty())
            return found;
    }
    std::string found = stored(temporaries_);
    return found.empty() ? temporaryStoredName(name, spid_, 0) : found;
}

std::string SessionState::newTemporaryName(const std::string& name)
{
    if (isGlobal(name))
        return name;
    const std::string fold = foldName(name);
    Frame* scope = innermostScope();
    const bool outermost = scope == nullptr || scope == frames_.front().get();
    const std::array<std::vector<TemporaryObject>*, 2> lists{scope == nullptr ? nullptr : &scope->temporaries,
                                                             outermost ? &temporaries_ : nullptr};
    for (std::vector<TemporaryObject>* list : lists) {
        if (list == nullptr)
            continue;
        for (const TemporaryObject& known : *list) {
            if (known.fold == fold && catalog_->object(tempdbId, "", known.stored))
                return known.stored;
        }
        std::erase_if(*list, [&fold](const TemporaryObject& known) { return known.fold == fold; });
    }
    std::string stored = temporaryStoredName(name, spid_, ++temporaryNames_);
    (scope == nullptr ? temporaries_ : scope->temporaries).push_back({fold, stored});
    return stored;
}

void SessionState::ownGlobalTemporary(const std::string& name)
{
    catalog_->version();
    if (const ObjectPtr made = isGlobal(name) ? catalog_->object(tempdbId, "", name) : nullptr)
        globalTemporaries_.push_back(made->id);
}

void SessionState::endScope(Frame& ended, bool tablesStay) noexcept
try {
    if (ended.temporaries.empty())
        return;
    const CancelShield shield(store_);
    endStatement();
    catalog_->version();
    const auto isVariable = [&ended](const TemporaryObject& object) {
        return std::any_of(
            ended.tableVariables.begin(), ended.tableVariables.end(),
            [&object](const auto& variable) { return foldName(variable.second) == object.fold; });
    };
    std::vector<int> ids;
    for (TemporaryObject& object : ended.temporaries) {
        const ObjectPtr found = catalog_->object(tempdbId, "", object.stored);
        if (!found)
            continue;
        const bool stays = found->kind == ObjectKind::Procedure || (tablesStay && !isVariable(object));
        if (stays)
            temporaries_.push_back(std::move(object));
        else
            ids.push_back(found->id);
    }
    dropTemporaries(ids);
} catch (...) {
    ++visibility_; // the store does not answer; all goes with the session
}

void SessionState::dropTemporaries(const std::vector<int>& ids) noexcept
{
    if (ids.empty())
        return;
    endStatement();
    const CancelShield shield(store_);
    const bool alone = !store_.inTransaction();
    const int lockTimeout = store_.lockTimeout();
    store_.setLockTimeout(patience);
    try {
        if (alone)
            store_.beginWrite();
        Savepoint savepoint(store_);
        dropTemporaryObjects(connection(), ids);
        savepoint.release();
        if (alone)
            store_.commit();
    } catch (...) {
        if (alone)
            store_.rollback();
        leftovers_.add(ids);
        ++visibility_;
    }
    store_.setLockTimeout(lockTimeout);
}

void SessionState::dropAllTemporaries() noexcept
{
    try {
        const CancelShield shield(store_);
        endStatement();
        std::vector<int> ids = temporaryObjectsOf(connection(), spid_);
        ids.insert(ids.end(), globalTemporaries_.begin(), globalTemporaries_.end());
        dropTemporaries(ids);
    } catch (...) {
        ++visibility_; // the store does not answer; the next start empties tempdb
    }
    temporaries_.clear();
    globalTemporaries_.clear();
}

} // namespace practice
