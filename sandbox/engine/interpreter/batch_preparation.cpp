// What is done with a batch before anything of it runs.
#include "engine/execution/statements.h"
#include "engine/interpreter/interpreter.h"
#include "engine/messages/errors.h"
#include "types/text_encoding.h"

#include <algorithm>
#include <array>

namespace practice {

namespace {

/// Names that may still come to be while the batch runs, and rights, which are asked for when a statement's
/// turn comes.
bool isDeferred(int number)
{
    static constexpr std::array numbers = {208, 229, 230, 911, 916, 1087, 2812, 4121};
    return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

} // namespace

/// @return false when the batch must not run at all; its faults are reported then
bool Interpreter::prepare(const ast::StatementList& statements)
{
    bool sound = true;
    bool moved = false;
    for (const auto& statement : statements)
        prepare(*statement, sound, moved);
    if (!sound)
        session_.done(std::nullopt, commands::other, true);
    return sound;
}

/// @param moved behind a USE, or after definitions, names may mean something else than now
void Interpreter::prepare(const ast::Statement& statement, bool& sound, bool& moved)
{
    const auto list = [this, &sound, &moved](const ast::StatementList& statements) {
        for (const auto& inner : statements)
            prepare(*inner, sound, moved);
    };
    const auto fault = [this, &sound, &statement](const SqlError& error) {
        if (isDeferred(error.message.number))
            return;
        session_.frame().line = static_cast<int>(statement.source.line);
        if (session_.calls().catchesErrors())
            throw SqlError(error);
        session_.sendMessage(error.message);
        session_.outcome().lastError = error.message.number;
        sound = false;
    };
    switch (statement.kind) {
    case ast::StatementKind::Declare:
        for (const ast::Declaration& declaration : ast::as<ast::DeclareStatement>(statement).declarations) {
            if (declaration.kind != ast::DeclarationKind::Scalar)
                continue;
            try {
                if (session_.frame().variables.contains(lowerCase(declaration.name)))
                    raise(134, {declaration.name});
                session_.calls().declare(declaration.name, declaredType(session_, declaration.type));
            } catch (const SqlError& error) {
                fault(error);
            }
        }
        return;
    case ast::StatementKind::SetVariable:
        try {
            (void)session_.calls().variable(ast::as<ast::SetVariableStatement>(statement).variable);
        } catch (const SqlError& error) {
            if (ast::as<ast::SetVariableStatement>(statement).cursor == nullptr)
                fault(error);
        }
        return;
    case ast::StatementKind::If: {
        const auto& node = ast::as<ast::IfStatement>(statement);
        prepare(*node.then, sound, moved);
        if (node.otherwise)
            prepare(*node.otherwise, sound, moved);
        return;
    }
    case ast::StatementKind::While:
        return prepare(*ast::as<ast::WhileStatement>(statement).body, sound, moved);
    case ast::StatementKind::Block:
        return list(ast::as<ast::BlockStatement>(statement).statements);
    case ast::StatementKind::TryCatch:
        list(ast::as<ast::TryCatchStatement>(statement).tryPart);
        return list(ast::as<ast::TryCatchStatement>(statement).catchPart);
    case ast::StatementKind::Select:
    case ast::StatementKind::Update:
    case ast::StatementKind::Delete:
        if (moved)
            return;
        try {
            planAhead(session_, statement);
        } catch (const SqlError& error) {
            fault(error);
        }
        return;
    case ast::StatementKind::WaitFor:
        try {
            checkWaitFor(ast::as<ast::WaitForStatement>(statement));
        } catch (const SqlError& error) {
            fault(error);
        }
        return;
    default:
        moved = moved || (statement.kind >= ast::StatementKind::CreateTable &&
                          statement.kind <= ast::StatementKind::Use);
    }
}

} // namespace practice
