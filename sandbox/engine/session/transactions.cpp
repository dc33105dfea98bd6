// Transactions and savepoints of a session.
#include "engine/messages/errors.h"
#include "engine/session/session_state.h"

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

void SessionState::announceTransaction(EnvironmentChange kind)
{
    const std::string descriptor = descriptorBytes(transactionDescriptor_);
    const bool begins = kind == EnvironmentChange::BeginTransaction;
    sink().environment(kind, begins ? descriptor : "", begins ? "" : descriptor);
}

void SessionState::setTransactionCount(int count)
{
    transactionCount_ = count;
    if (transactionsChanged)
        transactionsChanged(count);
}

void SessionState::beginTransaction(const std::string& name)
{
    setTransactionCount(transactionCount_ + 1);
    if (transactionCount_ > 1)
        return;
    transactionName_ = name;
    ++transactionDescriptor_;
    announceTransaction(EnvironmentChange::BeginTransaction);
}

/// The store's transaction begins with the first write, so that a session which only reads neither
/// blocks a writer nor grows stale.
void SessionState::beginWrite()
{
    endStatement();
    if (store_.inTransaction())
        return;
    store_.beginWrite();
    catalog_->version();
    for (const std::string& pending : pendingSavepoints_)
        execute(connection(), "SAVEPOINT " + savepointName(pending));
    pendingSavepoints_.clear();
}

void SessionState::attempt(const std::function<void()>& part)
{
    Savepoint savepoint(store_);
    try {
        catalog_->version();
        part();
        savepoint.release();
    } catch (const SqlError& error) {
        if (catchesErrors())
            throw;
        sendMessage(error.message);
        statementError = error.message.number;
    }
}

void SessionState::startImplicitTransaction()
{
    if (options_.implicitTransactions && transactionCount_ == 0)
        beginTransaction("");
}

void SessionState::commitTransaction()
{
    if (transactionCount_ == 0)
        raise(3902);
    if (doomed)
        raise(3930);
    if (transactionCount_ > 1) {
        setTransactionCount(transactionCount_ - 1);
        return;
    }
    if (store_.inTransaction())
        store_.commit();
    setTransactionCount(0);
    savepoints_.clear();
    pendingSavepoints_.clear();
    announceTransaction(EnvironmentChange::CommitTransaction);
}

void SessionState::rollbackAll()
{
    store_.rollback();
    doomed = false;
    savepoints_.clear();
    pendingSavepoints_.clear();
    if (transactionCount_ == 0)
        return;
    setTransactionCount(0);
    announceTransaction(EnvironmentChange::RollbackTransaction);
}

void SessionState::undoFirstWrites()
{
    store_.rollback();
    pendingSavepoints_ = savepoints_;
}

void SessionState::rollbackTransaction(const std::string& name)
{
    if (transactionCount_ == 0)
        raise(3903);
    const auto saved = std::find_if(savepoints_.rbegin(), savepoints_.rend(),
                                    [&name](const std::string& known) { return sameName(known, name); });
    if (name.empty() || (saved == savepoints_.rend() && sameName(name, transactionName_)))
        return rollbackAll();
    if (saved == savepoints_.rend())
        raise(6401, {name});
    // Before the first write there is nothing to take back.
    if (store_.inTransaction())
        execute(connection(), "ROLLBACK TO " + savepointName(name));
    savepoints_.erase(saved.base(), savepoints_.end());
}

void SessionState::saveTransaction(const std::string& name)
{
    if (transactionCount_ == 0)
        raise(628);
    savepoints_.push_back(name);
    if (store_.inTransaction())
        execute(connection(), "SAVEPOINT " + savepointName(name));
    else
        pendingSavepoints_.push_back(name);
}

} // namespace practice
