#include "engine/session/transactions.h"

#include "engine/catalog/catalog_types.h"
#include "engine/messages/errors.h"
#include "engine/store/storage.h"

#include <algorithm>

namespace practice {

namespace {

std::string savepointName(const std::string& name)
{
    return quotedName("save " + foldName(name));
}

std::string descriptorBytes(std::uint64_t descriptor)
{
    std::string bytes;
    for (int shift = 0; shift < 64; shift += 8)
        bytes.push_back(static_cast<char>(descriptor >> shift));
    return bytes;
}

} // namespace

void Transactions::setCount(int count)
{
    count_ = count;
    if (changed)
        changed(count);
}

void Transactions::begin(const std::string& name)
{
    setCount(count_ + 1);
    if (count_ > 1)
        return;
    name_ = name;
    announce_(EnvironmentChange::BeginTransaction, descriptorBytes(++descriptor_));
}

void Transactions::replaySavepoints()
{
    for (const std::string& name : pending_)
        execute(store_.connection(), "SAVEPOINT " + savepointName(name));
    pending_.clear();
}

void Transactions::end(EnvironmentChange kind)
{
    savepoints_.clear();
    pending_.clear();
    if (count_ == 0)
        return;
    setCount(0);
    announce_(kind, descriptorBytes(descriptor_));
}

void Transactions::commit()
{
    if (count_ == 0)
        raise(3902);
    if (doomed)
        raise(3930);
    if (count_ > 1) {
        setCount(count_ - 1);
        return;
    }
    if (store_.inTransaction())
        store_.commit();
    end(EnvironmentChange::CommitTransaction);
}

void Transactions::rollbackAll()
{
    store_.rollback();
    doomed = false;
    end(EnvironmentChange::RollbackTransaction);
}

void Transactions::undoFirstWrites()
{
    store_.rollback();
    pending_ = savepoints_;
}

void Transactions::rollback(const std::string& name)
{
    if (count_ == 0)
        raise(3903);
    const auto saved = std::find_if(savepoints_.rbegin(), savepoints_.rend(),
                                    [&name](const std::string& known) { return sameName(known, name); });
    if (name.empty() || (saved == savepoints_.rend() && sameName(name, name_)))
        return rollbackAll();
    if (saved == savepoints_.rend())
        raise(6401, {name});
    // Before the first write there is nothing to take back.
    if (store_.inTransaction())
        execute(store_.connection(), "ROLLBACK TO " + savepointName(name));
    savepoints_.erase(saved.base(), savepoints_.end());
}

void Transactions::save(const std::string& name)
{
    if (count_ == 0)
        raise(628);
    savepoints_.push_back(name);
    if (store_.inTransaction())
        execute(store_.connection(), "SAVEPOINT " + savepointName(name));
    else
        pending_.push_back(name);
}

} // namespace practice
