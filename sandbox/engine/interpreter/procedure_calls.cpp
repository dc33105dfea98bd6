// Calls of procedures, by EXEC and from the wire, and prepared texts.
#include "engine/api/collecting_sink.h"
#include "engine/binder/parsed_texts.h"
#include "engine/context/object_rights.h"
#include "engine/context/permissions.h"
#include "engine/context/temporary_names.h"
#include "engine/execution/statements.h"
#include "engine/functions/sql_functions.h"
#include "engine/interpreter/interpreter.h"
#include "engine/messages/errors.h"
#include "engine/session/session_scope.h"
#include "tsql/parser.h"
#include "types/conversion.h"
#include "types/text_encoding.h"

#include <algorithm>
#include <utility>

namespace practice {

namespace {

const ast::CreateProcedureStatement& definitionOf(const CompiledBatch& compiled, const std::string& name)
{
    const auto& statements = compiled.batch.statements;
    const auto* definition =
        statements.empty() ? nullptr : ast::tryAs<ast::CreateProcedureStatement>(statements.front().get());
    if (definition == nullptr)
        raise(2812, {name});
    return *definition;
}

/// Which of the arguments is meant for a parameter: by name, else by place.
Parameter* argumentFor(std::vector<Parameter>& arguments, const std::string& name, std::size_t place)
{
    for (Parameter& argument : arguments) {
        if (!argument.name.empty() && sameName(argument.name, name))
            return &argument;
    }
    const bool positional = place < arguments.size() && arguments[place].name.empty();
    return positional ? &arguments[place] : nullptr;
}

void requireKnownArguments(const std::string& procedure,
                           const std::vector<ast::ParameterDefinition>& parameters,
                           const std::vector<Parameter>& arguments)
{
    if (parameters.empty() && !arguments.empty())
        raise(8146, {procedure});
    if (arguments.size() > parameters.size())
        raise(8144, {procedure});
    for (const Parameter& argument : arguments) {
        const bool known = argument.name.empty() ||
                           std::any_of(parameters.begin(), parameters.end(), [&argument](const auto& p) {
                               return sameName(p.name, argument.name);
                           });
        if (!known)
            raise(8145, {argument.name, procedure});
        const bool twice = !argument.name.empty() &&
                           std::any_of(arguments.data(), &argument, [&argument](const Parameter& earlier) {
                               return sameName(earlier.name, argument.name);
                           });
        if (twice)
            raise(8143, {argument.name});
    }
}

Value textOf(const Parameter& parameter)
{
    return convert(parameter.value, parameter.type, nVarCharType(maxLength));
}

std::string plainText(const Parameter& parameter)
{
    const Value value = textOf(parameter);
    return value.isNull() ? std::string() : std::get<std::string>(value.data);
}

struct Declared
{
    std::string name;
    SqlType type;
    bool output = false;
};

/// The declarations of sp_executesql, "@a int, @b varchar(10) output", are a procedure's parameters.
std::vector<Declared> declaredParameters(SessionState& session, const std::string& declarations)
{
    std::vector<Declared> declared;
    if (declarations.find_first_not_of(" \t\r\n") == std::string::npos)
        return declared;
    const auto compiled = session.compile("CREATE PROCEDURE p " + declarations + "\nAS RETURN");
    for (const ast::ParameterDefinition& parameter : definitionOf(*compiled, "p").parameters)
        declared.push_back({parameter.name, declaredType(session, parameter.type), parameter.output});
    return declared;
}

/// What a parameter comes back with has the type that the caller declared.
void giveBack(Parameter& parameter, const Variable& result)
{
    if (parameter.type.id == TypeId::Null)
        parameter.type = result.type;
    requireConversion(result.type, parameter.type, Conversion::Implicit);
    try {
        parameter.value = convert(result.value, result.type, parameter.type);
    } catch (const ConversionError&) {
        raise(8114, {typeName(result.type.id), typeName(parameter.type.id)});
    }
}

int numberOf(const Parameter& parameter)
{
    const Value value = convert(parameter.value, parameter.type, intType());
    return static_cast<int>(std::get<std::int64_t>(value.data));
}

int handleOf(const std::vector<Parameter>& arguments)
{
    if (arguments.empty() || arguments.front().value.isNull())
        raise(8179, {"0"});
    return numberOf(arguments.front());
}

} // namespace

bool Interpreter::runProcedureRequest(const ast::ObjectName& name, const std::string& written,
                                      std::vector<Parameter>& arguments)
{
    auto frame = std::make_unique<Frame>();
    frame->compiled = std::make_shared<CompiledBatch>();
    frame->completion = Completion::Kind::Procedure;
    const FrameScope scope(session_, std::move(frame), ScopeKind::Request);
    const StatementEnd end(session_);
    bool ended = false;
    try {
        session_.beginStatement();
        if (name.empty())
            raise(2812, {written});
        session_.sink().returnStatus(callProcedure(name, arguments));
        ended = true;
    } catch (const BatchAborted&) {
        // reported already
    } catch (const ScopeAborted&) {
        // reported already
    }
    return ended;
}

int Interpreter::callProcedure(const ast::ObjectName& name, std::vector<Parameter>& arguments)
{
    bool known = false;
    const bool maybeSystem =
        lowerCase(name.object).starts_with("sp_") || lowerCase(name.object).starts_with("xp_");
    if (maybeSystem) {
        const int status = systemProcedure(name, arguments, known);
        if (known)
            return status;
    }
    Catalog& catalog = session_.catalog();
    const DatabasePtr database =
        name.database.empty() ? session_.database() : catalog.database(name.database);
    ObjectPtr found;
    if (isTemporary(name.object))
        found = catalog.object(tempdbId, "", session_.temporaryName(name.object));
    else if (database) {
        requireOnline(*database);
        requireAccess(session_, *database);
        const auto& module = session_.frame().module;
        found = catalog.object(database->id, name.schema, name.object,
                               module ? module->ownerId : session_.user().id);
    }
    // Procedures called sp_ are looked for in master too.
    if (!found && maybeSystem)
        found = catalog.object(masterId, name.schema, name.object);
    if (!found || found->kind != ObjectKind::Procedure)
        raise(2812, {writtenName(name)});
    if (!lends(session_, session_.frame().module, *found))
        requireRight(session_, found, Right::Execute);
    return runModule(found, arguments);
}

int Interpreter::runModule(const ObjectPtr& procedure, std::vector<Parameter>& arguments)
{
    requireRoomToNest();
    const CompiledBatchPtr compiled = session_.compile(procedure->text);
    const ast::CreateProcedureStatement& definition = definitionOf(*compiled, procedure->name);
    auto frame = std::make_unique<Frame>();
    frame->compiled = compiled;
    const std::string shown = temporaryWrittenName(procedure->name);
    frame->procedure = shown;
    frame->procedureId = procedure->id;
    frame->completion = Completion::Kind::InProcedure;
    // A temporary procedure works where it is called, and by the rights of its caller alone.
    if (procedure->databaseId != tempdbId || !isTemporary(procedure->name)) {
        frame->database = session_.catalog().database(procedure->databaseId);
        frame->module = ModuleOwner{procedure->databaseId, procedure->ownerId};
    } else {
        frame->database = session_.frame().database;
    }
    // Defaults and conversions are the procedure's own affair: its frame stands already.
    const FrameScope scope(session_, std::move(frame), ScopeKind::Module);
    const Temporarily<int> status(status_, 0);
    try {
        requireKnownArguments(shown, definition.parameters, arguments);
        passArguments(shown, definition.parameters, arguments);
        if (prepare(definition.body))
            run(definition.body);
        for (std::size_t i = 0; i < definition.parameters.size(); ++i) {
            Parameter* argument = argumentFor(arguments, definition.parameters[i].name, i);
            if (argument == nullptr || !argument->output)
                continue;
            giveBack(*argument, session_.calls().variable(definition.parameters[i].name));
        }
    } catch (const ScopeAborted&) {
        return -6;
    } catch (SqlError& error) {
        if (error.message.procedure.empty())
            error.message.procedure = shown;
        throw;
    }
    return status_;
}

void Interpreter::passArguments(const std::string& procedure,
                                const std::vector<ast::ParameterDefinition>& parameters,
                                std::vector<Parameter>& arguments)
{
    for (std::size_t i = 0; i < parameters.size(); ++i) {
        const ast::ParameterDefinition& parameter = parameters[i];
        session_.calls().declare(parameter.name, declaredType(session_, parameter.type));
        const Parameter* argument = argumentFor(arguments, parameter.name, i);
        if (argument != nullptr && !argument->isDefault) {
            if (argument->output && !parameter.output)
                raise(8162, {parameter.name});
            const SqlType target = session_.calls().variable(parameter.name).type;
            try {
                requireConversion(argument->type, target, Conversion::Implicit);
                session_.assign(parameter.name, argument->value, argument->type);
            } catch (const SqlError&) {
                raise(8114, {typeName(argument->type.id), typeName(target.id)});
            }
            continue;
        }
        if (!parameter.defaultValue)
            raise(201, {procedure, parameter.name});
        const Variable value = constantArgument(*parameter.defaultValue);
        session_.assign(parameter.name, value.value, value.type);
    }
}

Variable Interpreter::constantArgument(const ast::Expression& expression)
{
    if (const auto* literal = ast::tryAs<ast::Literal>(&expression); literal != nullptr && literal->bareWord)
        return {varCharType(std::max<int>(1, static_cast<int>(literal->text.size()))),
                Value{literal->text, {}}};
    return session_.evaluate(expression);
}

void Interpreter::execute(const ast::ExecuteStatement& node)
{
    std::vector<Parameter> arguments;
    for (const ast::Argument& argument : node.arguments) {
        Parameter parameter;
        parameter.name = argument.name;
        parameter.output = argument.output;
        parameter.isDefault = argument.value->kind == ast::ExpressionKind::Default;
        if (argument.output && argument.value->kind != ast::ExpressionKind::Variable)
            raise(179);
        if (!parameter.isDefault) {
            Variable value = constantArgument(*argument.value);
            parameter.type = value.type;
            parameter.value = std::move(value.value);
        }
        if (!arguments.empty() && !arguments.back().name.empty() && parameter.name.empty())
            raise(119, {std::to_string(arguments.size() + 1)});
        arguments.push_back(std::move(parameter));
    }
    ast::ObjectName name = node.procedure;
    if (!node.variable.empty()) {
        const Variable& variable = session_.calls().variable(node.variable);
        const std::string written = variable.value.isNull() ? "" : toText(variable.value, variable.type);
        name = parseObjectName(written);
        if (name.empty())
            raise(2812, {written});
    }
    const int transactions = session_.transactionCount();
    const int status = callProcedure(name, arguments);
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (!arguments[i].output)
            continue;
        const auto& variable = ast::as<ast::Variable>(*node.arguments[i].value);
        session_.assign(variable.name, arguments[i].value, arguments[i].type);
    }
    if (!node.returnVariable.empty())
        session_.assign(node.returnVariable, Value{std::int64_t{status}, {}}, intType());
    if (session_.transactionCount() != transactions && session_.transactionCount() != 0) {
        Message mismatch =
            makeMessage(266, {std::to_string(transactions), std::to_string(session_.transactionCount())});
        mismatch.procedure = name.object;
        session_.sendMessage(mismatch);
    }
    if (session_.frame().completion == Completion::Kind::Statement)
        session_.sink().returnStatus(status);
    session_.done(std::nullopt, commands::execute);
}

void Interpreter::executeString(const ast::ExecuteStringStatement& node)
{
    const Value text = session_.evaluate(*node.text, nVarCharType(maxLength));
    if (!text.isNull()) {
        Frame frame;
        runInner(std::get<std::string>(text.data), frame);
    }
    if (session_.frame().completion == Completion::Kind::Statement)
        session_.sink().returnStatus(0);
    session_.done(std::nullopt, commands::execute);
}

int Interpreter::systemProcedure(const ast::ObjectName& name, std::vector<Parameter>& arguments, bool& known)
{
    known = true;
    const std::string procedure = lowerCase(name.object);
    // A database prefix makes the procedure work on that database.
    const DatabasePtr wanted = name.database.empty() ? nullptr : session_.catalog().database(name.database);
    if (wanted) {
        requireOnline(*wanted);
        requireAccess(session_, *wanted);
    }
    const Temporarily<DatabasePtr> database(session_.frame().database,
                                            wanted ? wanted : session_.frame().database);
    if (procedure == "sp_executesql")
        return executeSql(arguments);
    if (procedure == "sp_prepare" || procedure == "sp_prepexec")
        return prepareText(arguments, procedure == "sp_prepexec");
    if (procedure == "sp_execute") {
        const int handle = handleOf(arguments);
        const PreparedText* found = session_.preparedTexts().find(handle);
        if (found == nullptr)
            raise(8179, {std::to_string(handle)});
        const PreparedText prepared = *found; // what runs may remove it
        std::vector<Parameter> values(arguments.begin() + 1, arguments.end());
        runPrepared(prepared.declarations, prepared.text, values);
        std::move(values.begin(), values.end(), arguments.begin() + 1);
        return 0;
    }
    if (procedure == "sp_unprepare") {
        const int handle = handleOf(arguments);
        if (!session_.preparedTexts().remove(handle))
            raise(8179, {std::to_string(handle)});
        return 0;
    }
    requireAccess(session_, *session_.database());
    const Temporarily<Completion::Kind> completion(session_.frame().completion,
                                                   Completion::Kind::InProcedure);
    // What it writes outside a transaction is its own to commit, like a statement's.
    const bool alone = session_.transactionCount() == 0 && !session_.store().inTransaction();
    std::optional<Savepoint> savepoint;
    if (session_.store().inTransaction())
        savepoint.emplace(session_.store());
    std::optional<int> status;
    try {
        status = callSystemProcedure(session_, procedure, arguments);
        if (savepoint)
            savepoint->release();
        else if (alone && session_.store().inTransaction() && session_.transactionCount() == 0)
            session_.store().commit();
    } catch (...) {
        if (!savepoint && session_.store().inTransaction())
            session_.transactions().undoFirstWrites();
        throw;
    }
    known = status.has_value();
    return status.value_or(0);
}

int Interpreter::executeSql(std::vector<Parameter>& arguments)
{
    if (arguments.empty())
        raise(201, {"sp_executesql", "@statement"});
    const std::string text = plainText(arguments[0]);
    const std::string declarations = arguments.size() > 1 ? plainText(arguments[1]) : "";
    std::vector<Parameter> values(arguments.begin() + std::min<std::ptrdiff_t>(2, std::ssize(arguments)),
                                  arguments.end());
    runPrepared(declarations, text, values);
    if (arguments.size() > 2)
        std::move(values.begin(), values.end(), arguments.begin() + 2);
    return 0;
}

int Interpreter::prepareText(std::vector<Parameter>& arguments, bool execute)
{
    if (arguments.size() < 3)
        raise(201, {execute ? "sp_prepexec" : "sp_prepare", "@stmt"});
    const std::string declarations = plainText(arguments[1]);
    const std::string text = plainText(arguments[2]);
    const int handle = session_.preparedTexts().add({declarations, text});
    giveBack(arguments[0], {intType(), Value{std::int64_t{handle}, {}}});
    if (!execute) {
        constexpr int returnMetadata = 1;
        const Parameter* options = argumentFor(arguments, "@options", 3);
        const bool described = options == nullptr || options->value.isNull() || options->isDefault ||
                               (numberOf(*options) & returnMetadata) != 0;
        describePrepared(declarations, text, described);
        return 0;
    }
    std::vector<Parameter> values(arguments.begin() + 3, arguments.end());
    runPrepared(declarations, text, values);
    std::move(values.begin(), values.end(), arguments.begin() + 3);
    return 0;
}

/// Binds what sp_prepare was given, and tells the columns of its results, which have no rows yet.
void Interpreter::describePrepared(const std::string& declarations, const std::string& text, bool tell)
try {
    auto frame = std::make_unique<Frame>();
    for (const Declared& parameter : declaredParameters(session_, declarations))
        frame->variables[lowerCase(parameter.name)] = {parameter.type, {}};
    frame->compiled = session_.compile(text, declarations);
    frame->completion = Completion::Kind::InProcedure;
    frame->tryDepth = 1; // so that errors come back here
    frame->database = session_.frame().database;
    const FrameScope scope(session_, std::move(frame), ScopeKind::Inner);
    const ast::StatementList& statements = session_.frame().compiled->batch.statements;
    (void)prepare(statements);
    for (const auto& statement : statements) {
        // What comes first may make what the others read.
        const auto* select = ast::tryAs<ast::SelectStatement>(statement.get());
        if (select == nullptr)
            return;
        const QueryPlan& plan = planQuery(session_, select->query);
        if (!plan.assigned.empty() || plan.block->into)
            return;
        if (tell) {
            session_.sink().columns(plan.described);
            session_.done(0, commands::select);
        }
    }
} catch (const SqlError& error) {
    session_.preparedTexts().removeLast();
    if (session_.calls().catchesErrors())
        throw;
    session_.sendMessage(error.message);
    raise(8180);
}

void Interpreter::runPrepared(const std::string& declarations, const std::string& text,
                              std::vector<Parameter>& values)
{
    const std::vector<Declared> declared = declaredParameters(session_, declarations);
    if (values.size() > declared.size())
        raise(8144, {"sp_executesql"});
    Frame frame;
    for (std::size_t i = 0; i < declared.size(); ++i) {
        const Parameter* value = argumentFor(values, declared[i].name, i);
        if (value == nullptr || value->isDefault) {
            std::string written = "(";
            raise(8178, {written.append(declarations).append(")").append(text), declared[i].name});
        }
        if (value->output && !declared[i].output)
            raise(8162, {declared[i].name});
        Variable variable{declared[i].type, value->value};
        if (!value->value.isNull() && !(value->type == variable.type))
            variable.value = convert(value->value, value->type, variable.type, 0, session_.options().dates);
        frame.variables[lowerCase(declared[i].name)] = std::move(variable);
    }
    // The same text may come with other declarations: its plans are kept apart by them.
    runInner(text, frame, declarations);
    for (std::size_t i = 0; i < declared.size(); ++i) {
        Parameter* value = argumentFor(values, declared[i].name, i);
        if (value == nullptr || !value->output)
            continue;
        giveBack(*value, frame.variables[lowerCase(declared[i].name)]);
    }
}

void Interpreter::insertRowsOf(const ast::InsertStatement& node)
{
    requireMayInsert(session_, *node.target);
    CollectingSink collected;
    collected.passMessagesTo(session_.sink());
    {
        const SinkScope scope(session_, collected);
        if (const auto* call = ast::tryAs<ast::ExecuteStatement>(node.execute.get()))
            execute(*call);
        else
            executeString(ast::as<ast::ExecuteStringStatement>(*node.execute));
    }
    insertRows(session_, node, collected.described, collected.rows);
}

} // namespace practice
