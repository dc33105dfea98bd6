#include "engine/session/temporaries.h"

#include "engine/catalog/catalog_types.h"
#include "engine/context/temporary_names.h"

#include <algorithm>
#include <array>

namespace practice {

namespace {

/// Milliseconds that a session which cleans up waits for another that writes.
constexpr int patience = 250;

} // namespace

/// The name of an object of the list that is still there; "" when there is none.
std::string Temporaries::known(const std::vector<TemporaryObject>& list, const std::string& fold) const
{
    for (auto object = list.rbegin(); object != list.rend(); ++object) {
        if (object->fold == fold && ground_.catalog.object(tempdbId, "", object->stored))
            return object->stored;
    }
    return {};
}

std::string Temporaries::storedName(const std::string& name) const
{
    if (isGlobalTemporary(name))
        return name;
    const std::string fold = foldName(name);
    for (auto [frame, end] = ground_.calls.inwards(); frame != end; ++frame) {
        if (std::string found = known((*frame)->temporaries, fold); !found.empty())
            return found;
    }
    std::string found = known(lasting_, fold);
    return found.empty() ? temporaryStoredName(name, ground_.spid, 0) : found;
}

std::string Temporaries::newStoredName(const std::string& name)
{
    if (isGlobalTemporary(name))
        return name;
    const std::string fold = foldName(name);
    Frame* scope = ground_.calls.innermostScope();
    const bool outermost = scope == nullptr || ground_.calls.isOutermost(scope);
    const std::array<std::vector<TemporaryObject>*, 2> lists{scope == nullptr ? nullptr : &scope->temporaries,
                                                             outermost ? &lasting_ : nullptr};
    for (std::vector<TemporaryObject>* list : lists) {
        if (list == nullptr)
            continue;
        if (std::string found = known(*list, fold); !found.empty())
            return found;
        std::erase_if(*list, [&fold](const TemporaryObject& object) { return object.fold == fold; });
    }
    std::string stored = temporaryStoredName(name, ground_.spid, ++names_);
    (scope == nullptr ? lasting_ : scope->temporaries).push_back({fold, stored});
    return stored;
}

void Temporaries::ownGlobal(const std::string& name)
{
    ground_.catalog.version();
    if (const ObjectPtr made = isGlobalTemporary(name) ? ground_.catalog.object(tempdbId, "", name) : nullptr)
        globals_.push_back(made->id);
}

std::string Temporaries::tableVariableName(const std::string& variable)
{
    return "#" + variable.substr(1) + "_" + std::to_string(++tableVariables_);
}

void Temporaries::endScope(Frame& ended, bool tablesStay) noexcept
try {
    if (ended.temporaries.empty())
        return;
    const CancelShield shield(ground_.store);
    ground_.view.end();
    ground_.catalog.version();
    const auto isVariable = [&ended](const TemporaryObject& object) {
        return std::any_of(
            ended.tableVariables.begin(), ended.tableVariables.end(),
            [&object](const auto& variable) { return foldName(variable.second) == object.fold; });
    };
    std::vector<int> ids;
    for (TemporaryObject& object : ended.temporaries) {
        const ObjectPtr found = ground_.catalog.object(tempdbId, "", object.stored);
        if (!found)
            continue;
        const bool stays = found->kind == ObjectKind::Procedure || (tablesStay && !isVariable(object));
        if (stays)
            lasting_.push_back(std::move(object));
        else
            ids.push_back(found->id);
    }
    drop(ids);
} catch (...) {
    ++visibility_; // the store does not answer; all goes with the session
}

void Temporaries::drop(const std::vector<int>& ids) noexcept
{
    if (ids.empty())
        return;
    ground_.view.end();
    Store& store = ground_.store;
    const CancelShield shield(store);
    const bool alone = !store.inTransaction();
    const int lockTimeout = store.lockTimeout();
    store.setLockTimeout(patience);
    try {
        if (alone)
            store.beginWrite();
        Savepoint savepoint(store);
        dropTemporaryObjects(store.connection(), ids);
        savepoint.release();
        if (alone)
            store.commit();
    } catch (...) {
        if (alone)
            store.rollback();
        leftovers_.add(ids);
        ++visibility_;
    }
    store.setLockTimeout(lockTimeout);
}

void Temporaries::dropAll() noexcept
{
    try {
        const CancelShield shield(ground_.store);
        ground_.view.end();
        std::vector<int> ids = temporaryObjectsOf(ground_.store.connection(), ground_.spid);
        ids.insert(ids.end(), globals_.begin(), globals_.end());
        drop(ids);
    } catch (...) {
        ++visibility_; // the store does not answer; the next start empties tempdb
    }
    lasting_.clear();
    globals_.clear();
}

} // namespace practice
