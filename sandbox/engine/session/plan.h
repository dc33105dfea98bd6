// What a statement was compiled into, and the batches that are kept with their plans for the next
// time the same text comes.
#pragma once

#include "engine/binder/translator.h"
#include "engine/store/store.h"
#include "tsql/ast.h"

#include <list>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace practice {

/// Holds as long as the catalog, the database, the option and the module it was bound with stay as they were.
struct Plan
{
    virtual ~Plan() = default;
    std::uint64_t catalogVersion = 0;
    int databaseId = 0;
    bool concatNullYieldsNull = true;
    std::uint64_t visibility = 0;
    std::optional<ModuleOwner> module; ///< a cursor that a procedure declared may be opened outside
    std::vector<ParameterSlot> slots;
};

/// A query, ready to be stepped.
struct QueryPlan : Plan
{
    Statement statement;
    std::vector<QueryColumn> columns;
    std::vector<ColumnInfo> described;
    /// Of SELECT @v = ...: the variable of each column.
    std::vector<std::string> assigned;
    const ast::SelectBlock* block = nullptr; ///< the first one, where INTO stands
};

/// A batch as a tree, with the plans of its statements by their nodes.
struct CompiledBatch
{
    std::string text;
    ast::Batch batch;
    std::unordered_map<const void*, std::unique_ptr<Plan>> plans;
};

using CompiledBatchPtr = std::shared_ptr<CompiledBatch>;

/// The batches used last, by their text.
class BatchCache
{
public:
    /// @return nullptr when it is not there
    [[nodiscard]] CompiledBatchPtr find(const std::string& key);
    void insert(const std::string& key, CompiledBatchPtr batch);

private:
    static constexpr std::size_t capacity = 200;
    /// A longer text is seldom sent twice, and its tree and plans are large.
    static constexpr std::size_t longestText = std::size_t{64} * 1024;
    using Entry = std::pair<std::string, CompiledBatchPtr>;
    std::list<Entry> entries_; ///< the one used last in front
    std::unordered_map<std::string, std::list<Entry>::iterator> index_;
};

} // namespace practice
