// What runs in a session: the batch or module at hand with its variables, and those that called it.
#pragma once

#include "engine/messages/errors.h"
#include "engine/session/plan.h"
#include "engine/session/temporary_objects.h"

#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

namespace practice {

struct Variable
{
    SqlType type;
    Value value;
};

/// The rows of a cursor's query, read when it was opened.
struct Cursor
{
    const ast::Query* query = nullptr;
    CompiledBatchPtr owner; ///< keeps the query's tree alive
    bool open = false;
    bool forwardOnly = true;
    std::vector<QueryColumn> columns;
    std::vector<std::vector<Value>> rows;
    std::int64_t position = -1; ///< index of the row fetched last
};

/// One running batch or module.
struct Frame
{
    CompiledBatchPtr compiled;
    std::unordered_map<std::string, Variable> variables;
    std::unordered_map<std::string, std::string> tableVariables; ///< to their names in tempdb
    std::map<std::string, Cursor> cursors;                       ///< local ones
    std::string procedure;                                       ///< shown in messages; "" in a batch
    int procedureId = 0;
    std::optional<ModuleOwner> module; ///< whose rights the statements of a procedure borrow
    DatabasePtr database;              ///< where a module's names are looked up; none for the session's own
    std::vector<TemporaryObject> temporaries;
    bool ownScope = true;        ///< its temporary objects and theirs alone go when it ends
    std::vector<Message> caught; ///< errors of the CATCH blocks that run, the innermost last
    int tryDepth = 0;
    Completion::Kind completion = Completion::Kind::Statement;
    bool silent = false; ///< the server's own work, whose statements tell no completions
    bool closed = false; ///< the running statement has told its completion
    int line = 1;        ///< of the running statement
};

/// The outermost frame is a client's request; between requests there is none.
class CallStack
{
public:
    [[nodiscard]] bool empty() const { return frames_.empty(); }
    [[nodiscard]] std::size_t depth() const { return frames_.size(); }
    [[nodiscard]] Frame& top() const { return *frames_.back(); }
    void push(std::unique_ptr<Frame> frame) { frames_.push_back(std::move(frame)); }
    std::unique_ptr<Frame> pop();
    /// From the innermost to the outermost.
    [[nodiscard]] auto inwards() const { return std::pair(frames_.rbegin(), frames_.rend()); }
    /// The innermost frame whose temporary objects go with it; null when there is none.
    [[nodiscard]] Frame* innermostScope() const;
    [[nodiscard]] bool isOutermost(const Frame* frame) const { return frame == frames_.front().get(); }
    void clear() { frames_.clear(); }

    /// @@NESTLEVEL
    [[nodiscard]] int nestLevel() const { return nestLevel_; }
    void enterModule() { ++nestLevel_; }
    void leaveModule() { --nestLevel_; }

    /// Of the top frame, by the folded name; null when it has no such variable.
    [[nodiscard]] const Variable* find(const std::string& folded) const;
    /// @throws SqlError 137
    [[nodiscard]] Variable& variable(const std::string& name) const;
    void declare(const std::string& name, const SqlType& type) const;

    /// True while a TRY block, or a caller inside the server, waits for errors.
    [[nodiscard]] bool catchesErrors() const;

private:
    std::vector<std::unique_ptr<Frame>> frames_;
    int nestLevel_ = 0;
};

} // namespace practice
