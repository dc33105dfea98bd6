// Runs the statements of a batch or module one after another: control of flow, and what an error
// ends.
#pragma once

#include "engine/backup/backup_options.h"
#include "engine/messages/errors.h"
#include "engine/session/session_state.h"

#include <string>

namespace practice {

class Interpreter
{
public:
    explicit Interpreter(SessionState& session) : session_(session) {}

    /// A client's batch: errors are reported to the sink.
    void runBatch(const std::string& text);
    /// A batch inside a running statement: errors are raised.
    void runNested(const std::string& text);
    /// EXEC ('text') and sp_executesql: a batch of its own scope whose errors are reported where the
    /// caller's would be. `frame` brings its variables along
    /// and has them as they are at the end.
    /// `family` keeps apart the plans of equal texts whose variables differ.
    void runInner(const std::string& text, Frame& frame, const std::string& family = {});

    /// Calls a procedure of a user or of the system. Output parameters are written back.
    /// @param line of the EXEC, for messages
    /// @throws SqlError 2812 ...
    int callProcedure(const ast::ObjectName& name, std::vector<Parameter>& arguments);
    /// A call that comes by itself, not in a batch.
    /// @return false when a fault took it whole: nothing comes back then
    bool runProcedureRequest(const ast::ObjectName& name, const std::string& written,
                             std::vector<Parameter>& arguments);

private:
    enum class Flow : std::uint8_t
    {
        Next,
        Break,
        Continue,
        Return,
        Goto
    };

    /// A fault took the whole batch, or only the module that it happened in.
    struct BatchAborted
    {};
    struct ScopeAborted
    {};

    void runRequest(const std::string& text);
    Flow run(const ast::StatementList& statements);
    Flow statement(const ast::Statement& statement);
    Flow controlled(const ast::Statement& statement);
    Flow loop(const ast::WhileStatement& statement);
    Flow tryCatch(const ast::TryCatchStatement& statement);
    Flow returned(const ast::ReturnStatement& statement);
    void simple(const ast::Statement& statement);
    void definition(const ast::Statement& statement);
    TextOf constantTexts();
    void declare(const ast::DeclareStatement& statement);
    void setVariable(const ast::SetVariableStatement& statement);
    void transaction(const ast::TransactionStatement& statement);
    void execute(const ast::ExecuteStatement& statement);
    void executeString(const ast::ExecuteStringStatement& statement);
    void throwMessage(const ast::ThrowStatement& statement);
    void kill(const ast::KillStatement& statement);

    /// @throws SqlError 217
    void requireRoomToNest() const;
    template <typename Work>
    void guarded(const ast::Statement& statement, Work work);
    void report(const SqlError& error, std::uint16_t command, bool terminated);
    void closeCaught(const ast::Statement& statement);

    // Before anything runs: declarations are hoisted, and what can be bound already is.
    bool prepare(const ast::StatementList& statements);
    void prepare(const ast::Statement& statement, bool& sound, bool& moved);

    int runModule(const ObjectPtr& procedure, std::vector<Parameter>& arguments);
    void passArguments(const std::string& procedure, const std::vector<ast::ParameterDefinition>& parameters,
                       std::vector<Parameter>& arguments);
    Variable constantArgument(const ast::Expression& expression);
    int systemProcedure(const ast::ObjectName& name, std::vector<Parameter>& arguments, bool& known);
    int prepareText(std::vector<Parameter>& arguments, bool execute);
    int executeSql(std::vector<Parameter>& arguments);
    void describePrepared(const std::string& declarations, const std::string& text, bool tell);
    void runPrepared(const std::string& declarations, const std::string& text,
                     std::vector<Parameter>& values);
    void insertRowsOf(const ast::InsertStatement& statement);

    SessionState& session_;
    std::string label_; ///< where a GOTO leads
    int status_ = 0;    ///< of RETURN
};

} // namespace practice
