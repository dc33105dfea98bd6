#include "engine/interpreter/interpreter.h"

#include "engine/backup/backup.h"
#include "engine/context/permissions.h"
#include "engine/execution/statements.h"
#include "engine/messages/errors.h"
#include "engine/session/session_scope.h"
#include "types/conversion.h"

#include <algorithm>
#include <array>
#include <utility>

#include <sqlite3.h>

namespace practice {

namespace {

using Kind = ast::StatementKind;

/// Faults of binding end the module that they stand in; what ends the batch ends its transaction too.
bool endsTransaction(int number)
{
    static constexpr std::array numbers = {235,  241,  242,  244,  245,  248, 295,
                                           1205, 3609, 8114, 8169, 9420, 9436};
    return std::binary_search(numbers.begin(), numbers.end(), number);
}

Message messageOf(const StoreError& failure)
{
    if ((failure.code & 0xff) == SQLITE_FULL)
        return makeMessage(9002, {"master", "LOG_BACKUP"});
    Message message = makeMessage(8630);
    message.text += " " + failure.text;
    return message;
}

/// What is said behind the error of a statement of rows.
int endOf(const Message& error)
{
    return error.number == 8115 && error.state == identityOverflow ? 3606 : 3621;
}

/// Errors of running, as opposed to those of binding, end a change of rows with message 3621. A table
/// that is altered or indexed changes its rows too, but what it checks in them is its own affair.
bool terminates(const ast::Statement& statement, const SqlError& error)
{
    static constexpr std::array ofData = {220, 232, 512,  515,  517,  530,  535,  544,
                                          547, 550, 2601, 2627, 3623, 8115, 8134, 8152};
    static constexpr std::array ofTables = {220, 232, 241,  242,  244,  245,  248,
                                            295, 515, 1505, 8114, 8115, 8152, 8169};
    const int number = error.cause == 0 ? error.message.number : error.cause;
    switch (statement.kind) {
    case Kind::Insert:
    case Kind::Update:
    case Kind::Delete:
        return std::binary_search(ofData.begin(), ofData.end(), number);
    case Kind::AlterTable:
    case Kind::CreateIndex:
        return std::binary_search(ofTables.begin(), ofTables.end(), number);
    default:
        return false;
    }
}

/// NOEXEC leaves all but SET undone, FMTONLY what would change anything.
bool isSkipped(const SessionOptions& options, Kind kind)
{
    if (options.noExec)
        return kind != Kind::SetOption;
    return options.formatOnly && kind >= Kind::Insert && kind < Kind::Use;
}

std::uint16_t commandOf(const ast::Statement& statement)
{
    switch (statement.kind) {
    case Kind::Select:
    case Kind::SetVariable:
    case Kind::Declare:
    case Kind::Fetch:
        return commands::select;
    case Kind::Insert:
        return commands::insertRows;
    case Kind::Update:
        return commands::updateRows;
    case Kind::Delete:
        return commands::deleteRows;
    case Kind::Execute:
    case Kind::ExecuteString:
        return commands::execute;
    default:
        return commands::other;
    }
}

} // namespace

void Interpreter::runBatch(const std::string& text)
{
    runRequest(text);
    if (session_.transactions().doomed) {
        session_.transactions().rollbackAll();
        session_.sendMessage(makeMessage(3998));
        session_.done(std::nullopt, commands::other, true);
    }
}

void Interpreter::runRequest(const std::string& text)
{
    const FrameScope scope(session_, std::make_unique<Frame>(), ScopeKind::Request);
    try {
        session_.frame().compiled = session_.compile(text);
        if (prepare(session_.frame().compiled->batch.statements))
            run(session_.frame().compiled->batch.statements);
    } catch (const SqlError& error) {
        // The batch could not be read, or a fault came from outside any statement.
        session_.sink().message(error.message);
        for (const Message& next : error.more)
            session_.sink().message(next);
        session_.outcome().lastError = error.message.number;
        session_.done(std::nullopt, commands::other, true);
    } catch (const BatchAborted&) {
        // reported already
    } catch (const ScopeAborted&) {
        // reported already
    }
}

void Interpreter::requireRoomToNest() const
{
    constexpr int deepestNesting = 32;
    if (session_.calls().nestLevel() >= deepestNesting)
        raise(217, {std::to_string(deepestNesting)});
}

void Interpreter::runNested(const std::string& text)
{
    auto frame = std::make_unique<Frame>();
    frame->compiled = session_.compile(text);
    frame->silent = true;
    frame->tryDepth = 1; // so that errors come back to the caller
    if (!session_.calls().empty()) {
        frame->procedure = session_.frame().procedure;
        frame->database = session_.frame().database;
    }
    const FrameScope scope(session_, std::move(frame), ScopeKind::Nested);
    run(session_.frame().compiled->batch.statements);
}

void Interpreter::runInner(const std::string& text, Frame& prepared, const std::string& family)
{
    requireRoomToNest();
    auto frame = std::make_unique<Frame>(std::exchange(prepared, Frame{}));
    frame->compiled = session_.compile(text, family);
    frame->completion = Completion::Kind::InProcedure;
    if (!session_.calls().empty())
        frame->database = session_.frame().database;
    const FrameScope scope(session_, std::move(frame), ScopeKind::Inner);
    try {
        if (prepare(session_.frame().compiled->batch.statements))
            run(session_.frame().compiled->batch.statements);
    } catch (const ScopeAborted&) {
        // reported already
    }
    prepared.variables = std::move(session_.frame().variables);
}

Interpreter::Flow Interpreter::run(const ast::StatementList& statements)
{
    for (std::size_t i = 0; i < statements.size(); ++i) {
        const Flow flow = statement(*statements[i]);
        if (flow == Flow::Next)
            continue;
        if (flow != Flow::Goto)
            return flow;
        const auto target = std::find_if(statements.begin(), statements.end(), [this](const auto& candidate) {
            const auto* label = ast::tryAs<ast::LabelStatement>(candidate.get());
            return label != nullptr && sameName(label->label, label_);
        });
        if (target == statements.end())
            return flow;
        i = static_cast<std::size_t>(target - statements.begin());
    }
    return Flow::Next;
}

void Interpreter::report(const SqlError& error, std::uint16_t command, bool terminated)
{
    const Message& message = error.message;
    session_.sendMessage(message);
    for (const Message& next : error.more)
        session_.sendMessage(next);
    session_.outcome().lastError = message.number;
    session_.outcome().lastRowCount = 0;
    if (terminated)
        session_.sendMessage(makeMessage(endOf(message)));
    session_.done(std::nullopt, command, true);
    const bool aborted = !error.confined && abortsBatch(message.number);
    const bool all = (!error.confined && endsTransaction(message.number)) ||
                     (session_.options().xactAbort && !aborted && message.number != 50000);
    if (all && session_.transactionCount() > 0)
        session_.transactions().rollbackAll();
    if (all)
        throw BatchAborted{};
    if (aborted)
        throw ScopeAborted{};
}

/// A statement that a TRY block watches over ends without a word of its error: one of rows with none.
void Interpreter::closeCaught(const ast::Statement& statement)
{
    const bool counts = statement.kind <= Kind::Delete;
    session_.done(counts ? std::optional<std::uint64_t>(0) : std::nullopt, commandOf(statement));
}

template <typename Work>
void Interpreter::guarded(const ast::Statement& statement, Work work)
{
    const auto failed = [this, &statement](SqlError error) {
        Message& message = error.message;
        if (message.procedure.empty())
            message.procedure = session_.frame().procedure;
        if (!std::exchange(error.placed, true))
            message.line = session_.frame().line;
        const bool terminated = terminates(statement, error);
        error.confined =
            terminated && (statement.kind == Kind::AlterTable || statement.kind == Kind::CreateIndex);
        if (session_.calls().catchesErrors()) {
            closeCaught(statement);
            throw SqlError(std::move(error));
        }
        report(error, commandOf(statement), terminated);
        if (statement.kind == Kind::Throw)
            throw BatchAborted{};
    };
    const StatementEnd end(session_);
    session_.outcome().statementError = 0;
    try {
        work();
        session_.outcome().lastError = session_.outcome().errorOfStatement();
    } catch (const SqlError& error) {
        failed(error);
    } catch (const StoreError& failure) {
        failed({messageOf(failure)});
    } catch (const Cancelled&) {
        if (session_.options().xactAbort && session_.transactionCount() > 0)
            session_.transactions().rollbackAll();
        throw;
    }
}

Interpreter::Flow Interpreter::statement(const ast::Statement& statement)
{
    if (session_.store().cancelled())
        throw Cancelled{};
    session_.frame().line = static_cast<int>(statement.source.line);
    if (isSkipped(session_.options(), statement.kind))
        return Flow::Next;
    session_.limitPlans();
    session_.beginStatement();
    const bool structured =
        statement.kind == Kind::If || statement.kind == Kind::While || statement.kind == Kind::Block ||
        statement.kind == Kind::TryCatch || statement.kind == Kind::Return || statement.kind == Kind::Break ||
        statement.kind == Kind::Continue || statement.kind == Kind::Goto || statement.kind == Kind::Label;
    if (structured)
        return controlled(statement);
    session_.frame().closed = false;
    guarded(statement, [this, &statement] {
        simple(statement);
        if (!session_.frame().closed && statement.kind != Kind::Declare)
            session_.done(std::nullopt, commandOf(statement));
    });
    return Flow::Next;
}

Interpreter::Flow Interpreter::controlled(const ast::Statement& statement)
{
    switch (statement.kind) {
    case Kind::If: {
        const auto& node = ast::as<ast::IfStatement>(statement);
        std::optional<bool> outcome;
        guarded(statement, [this, &node, &outcome] { outcome = session_.isTrue(*node.condition); });
        if (!outcome)
            return Flow::Next;
        if (*outcome)
            return this->statement(*node.then);
        return node.otherwise ? this->statement(*node.otherwise) : Flow::Next;
    }
    case Kind::While:
        return loop(ast::as<ast::WhileStatement>(statement));
    case Kind::Block:
        return run(ast::as<ast::BlockStatement>(statement).statements);
    case Kind::TryCatch:
        return tryCatch(ast::as<ast::TryCatchStatement>(statement));
    case Kind::Return:
        return returned(ast::as<ast::ReturnStatement>(statement));
    case Kind::Break:
        return Flow::Break;
    case Kind::Continue:
        return Flow::Continue;
    case Kind::Goto:
        label_ = ast::as<ast::GotoStatement>(statement).label;
        return Flow::Goto;
    default:
        return Flow::Next;
    }
}

Interpreter::Flow Interpreter::loop(const ast::WhileStatement& node)
{
    for (;;) {
        if (session_.store().cancelled())
            throw Cancelled{};
        session_.beginStatement();
        std::optional<bool> outcome;
        guarded(node, [this, &node, &outcome] { outcome = session_.isTrue(*node.condition); });
        if (!outcome.value_or(false))
            return Flow::Next;
        const Flow flow = statement(*node.body);
        if (flow == Flow::Break)
            return Flow::Next;
        if (flow == Flow::Return || flow == Flow::Goto)
            return flow;
    }
}

Interpreter::Flow Interpreter::tryCatch(const ast::TryCatchStatement& node)
{
    Frame& frame = session_.frame();
    try {
        const Temporarily<int> depth(frame.tryDepth, frame.tryDepth + 1);
        return run(node.tryPart);
    } catch (const SqlError& error) {
        if (error.message.severity >= 20)
            throw;
        const bool dooms =
            session_.options().xactAbort || (!error.confined && endsTransaction(error.message.number));
        session_.transactions().doomed =
            session_.transactions().doomed || (dooms && session_.transactionCount() > 0);
        session_.outcome().lastError = error.message.number;
        std::vector<Message> caught = frame.caught;
        caught.push_back(error.message);
        const Temporarily<std::vector<Message>> shown(frame.caught, std::move(caught));
        return run(node.catchPart);
    }
}

Interpreter::Flow Interpreter::returned(const ast::ReturnStatement& node)
{
    if (node.value) {
        guarded(node, [this, &node] {
            if (session_.frame().procedureId == 0)
                raise(178);
            const Value value = session_.evaluate(*node.value, intType());
            status_ = value.isNull() ? 0 : static_cast<int>(std::get<std::int64_t>(value.data));
        });
    }
    return Flow::Return;
}

void Interpreter::simple(const ast::Statement& node)
{
    switch (node.kind) {
    case Kind::Select:
        return executeSelect(session_, ast::as<ast::SelectStatement>(node));
    case Kind::Insert: {
        const auto& insert = ast::as<ast::InsertStatement>(node);
        return insert.sourceKind == ast::InsertSource::Execute ? insertRowsOf(insert)
                                                               : executeInsert(session_, insert);
    }
    case Kind::Update:
        return executeUpdate(session_, ast::as<ast::UpdateStatement>(node));
    case Kind::Delete:
        return executeDelete(session_, ast::as<ast::DeleteStatement>(node));
    case Kind::Truncate:
        return executeTruncate(session_, ast::as<ast::TruncateStatement>(node));
    case Kind::Use:
        return session_.useDatabase(ast::as<ast::UseStatement>(node).database);
    case Kind::Declare:
        return declare(ast::as<ast::DeclareStatement>(node));
    case Kind::SetVariable:
        return setVariable(ast::as<ast::SetVariableStatement>(node));
    case Kind::SetOption:
        return executeSetOption(session_, ast::as<ast::SetOptionStatement>(node));
    case Kind::Transaction:
        return transaction(ast::as<ast::TransactionStatement>(node));
    case Kind::WaitFor:
        return executeWaitFor(session_, ast::as<ast::WaitForStatement>(node));
    case Kind::Print:
        return executePrint(session_, ast::as<ast::PrintStatement>(node));
    case Kind::Raiserror:
        return executeRaiserror(session_, ast::as<ast::RaiserrorStatement>(node));
    case Kind::Throw:
        return throwMessage(ast::as<ast::ThrowStatement>(node));
    case Kind::Execute:
        return execute(ast::as<ast::ExecuteStatement>(node));
    case Kind::ExecuteString:
        return executeString(ast::as<ast::ExecuteStringStatement>(node));
    case Kind::DeclareCursor:
        return declareCursor(session_, ast::as<ast::DeclareCursorStatement>(node));
    case Kind::Cursor:
        return executeCursor(session_, ast::as<ast::CursorStatement>(node));
    case Kind::Fetch:
        return executeFetch(session_, ast::as<ast::FetchStatement>(node));
    case Kind::Dbcc:
        return executeDbcc(session_, ast::as<ast::DbccStatement>(node));
    case Kind::Kill:
        return kill(ast::as<ast::KillStatement>(node));
    case Kind::Checkpoint:
        return requireStatementPermission(session_, *session_.database(), "CHECKPOINT");
    case Kind::Reconfigure:
        return;
    case Kind::Shutdown:
    case Kind::ExecuteAs:
    case Kind::Revert:
        raise(15247);
    case Kind::Backup:
        return executeBackup(session_, ast::as<ast::BackupStatement>(node), constantTexts());
    case Kind::Restore:
        return executeRestore(session_, ast::as<ast::RestoreStatement>(node), constantTexts());
    default:
        return definition(node);
    }
}

TextOf Interpreter::constantTexts()
{
    return [this](const ast::Expression& node) {
        if (const auto* literal = ast::tryAs<ast::Literal>(&node))
            return literal->text;
        const Value text = session_.evaluate(node, nVarCharType(4000));
        return text.isNull() ? std::string() : std::get<std::string>(text.data);
    };
}

void Interpreter::definition(const ast::Statement& node)
{
    session_.startImplicitTransaction();
    const auto rows = session_.atomically([this, &node] { return executeDdl(session_, node); });
    if (const auto* table = ast::tryAs<ast::CreateTableStatement>(&node))
        session_.temporaries().ownGlobal(table->name.object);
    else if (const auto* procedure = ast::tryAs<ast::CreateProcedureStatement>(&node))
        session_.temporaries().ownGlobal(procedure->name.object);
    session_.done(rows, commands::other, session_.outcome().statementError != 0);
}

void Interpreter::declare(const ast::DeclareStatement& node)
{
    for (const ast::Declaration& declaration : node.declarations) {
        if (declaration.kind == ast::DeclarationKind::Table) {
            session_.createTableVariable(declaration);
        } else if (declaration.kind == ast::DeclarationKind::Scalar) {
            session_.calls().declare(declaration.name, declaredType(session_, declaration.type));
            if (declaration.initial) {
                const Variable value = session_.evaluate(*declaration.initial);
                session_.assign(declaration.name, value.value, value.type);
                session_.outcome().lastRowCount = 1;
                session_.done(1, commands::select);
            }
        }
    }
}

void Interpreter::setVariable(const ast::SetVariableStatement& node)
{
    const Variable& target = session_.calls().variable(node.variable);
    Variable value = session_.evaluate(*node.value);
    if (node.op != ast::AssignmentOperator::Set)
        value = session_.combined(target, node.op, value);
    requireConversion(value.type, target.type, Conversion::Implicit);
    session_.assign(node.variable, value.value, value.type);
    session_.outcome().lastRowCount = 1;
    session_.done(1, commands::select);
}

void Interpreter::transaction(const ast::TransactionStatement& node)
{
    std::string name = node.name;
    if (name.starts_with('@')) {
        const Variable& held = session_.calls().variable(name);
        name = held.value.isNull() ? "" : toText(held.value, held.type);
    }
    switch (node.action) {
    case ast::TransactionAction::Begin:
        session_.transactions().begin(name);
        break;
    case ast::TransactionAction::Commit:
        session_.transactions().commit();
        break;
    case ast::TransactionAction::Rollback:
        session_.transactions().rollback(name);
        break;
    case ast::TransactionAction::Save:
        session_.transactions().save(name);
        break;
    }
    constexpr std::uint16_t tokens[] = {commands::begin, commands::commit, commands::rollback,
                                        commands::begin};
    session_.done(std::nullopt, tokens[static_cast<std::size_t>(node.action)]);
}

void Interpreter::throwMessage(const ast::ThrowStatement& node)
{
    if (!node.number) {
        if (session_.frame().caught.empty())
            raise(10704);
        throw SqlError{session_.frame().caught.back()};
    }
    Message message;
    const Value number = session_.evaluate(*node.number, intType());
    message.number = number.isNull() ? 0 : static_cast<int>(std::get<std::int64_t>(number.data));
    const Value text = session_.evaluate(*node.message, nVarCharType(2048));
    message.text = text.isNull() ? "" : std::get<std::string>(text.data);
    const Value state = session_.evaluate(*node.state, intType());
    message.state = state.isNull() ? 1 : static_cast<int>(std::get<std::int64_t>(state.data));
    throw SqlError{std::move(message)};
}

void Interpreter::kill(const ast::KillStatement& node)
{
    const Value value = session_.evaluate(*node.spid, intType());
    const std::int64_t spid = value.isNull() ? 0 : std::get<std::int64_t>(value.data);
    if (spid == session_.spid())
        raise(6104);
    raise(6106, {std::to_string(spid)});
}

} // namespace practice
