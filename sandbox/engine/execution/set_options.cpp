// SET of the session's options.
#include "engine/context/permissions.h"
#include "engine/execution/change_target.h"
#include "engine/execution/statements.h"
#include "engine/messages/errors.h"
#include "types/date_time.h"
#include "types/text_encoding.h"

#include <algorithm>
#include <array>

namespace practice {

namespace {

struct Switch
{
    std::string_view name;
    bool SessionOptions::*member;
};

constexpr std::array switches = {
    Switch{"ANSI_NULLS", &SessionOptions::ansiNulls},
    Switch{"ANSI_NULL_DFLT_ON", &SessionOptions::ansiNullDefault},
    Switch{"ANSI_PADDING", &SessionOptions::ansiPadding},
    Switch{"ANSI_WARNINGS", &SessionOptions::ansiWarnings},
    Switch{"ARITHABORT", &SessionOptions::arithAbort},
    Switch{"CONCAT_NULL_YIELDS_NULL", &SessionOptions::concatNullYieldsNull},
    Switch{"FMTONLY", &SessionOptions::formatOnly},
    Switch{"IMPLICIT_TRANSACTIONS", &SessionOptions::implicitTransactions},
    Switch{"NOCOUNT", &SessionOptions::noCount},
    Switch{"NOEXEC", &SessionOptions::noExec},
    Switch{"PARSEONLY", &SessionOptions::parseOnly},
    Switch{"QUOTED_IDENTIFIER", &SessionOptions::quotedIdentifier},
    Switch{"XACT_ABORT", &SessionOptions::xactAbort},
};

void setSwitch(SessionState& session, const std::string& name, bool on)
{
    SessionOptions& options = session.options();
    for (const Switch& known : switches) {
        if (known.name == name)
            options.*known.member = on;
    }
    if (name == "ANSI_NULL_DFLT_OFF" && on)
        options.ansiNullDefault = false;
    if (name == "ANSI_DEFAULTS") {
        options.ansiNulls = options.ansiNullDefault = options.ansiPadding = options.ansiWarnings = on;
        options.quotedIdentifier = options.implicitTransactions = on;
    }
}

void setIdentityInsert(SessionState& session, const ast::SetOptionStatement& statement)
{
    Translator translator(session.bindContext());
    ObjectPtr table;
    try {
        table = translator.object(statement.table);
    } catch (const SqlError& error) {
        if (error.message.number != 208)
            throw;
    }
    if (!table || !mayChange(session, *table)) {
        constexpr int ofIdentityInsert = 11;
        Message hidden = makeMessage(1088, {writtenName(statement.table)});
        hidden.state = ofIdentityInsert;
        throw SqlError{hidden};
    }
    if (table->identityColumn() == nullptr)
        raise(8106, {writtenName(statement.table)});
    std::string& held = session.options().identityInsert;
    const std::string key = identityInsertKey(*table);
    if (!statement.on.value_or(false)) {
        if (held == key)
            held.clear();
        return;
    }
    if (!held.empty() && held != key) {
        const auto point = held.find('.');
        const int database = std::stoi(held);
        const ObjectPtr other = session.catalog().object(database, std::stoi(held.substr(point + 1)));
        if (other) {
            const std::string name =
                session.catalog().database(database)->name + '.' + other->owner + '.' + other->name;
            raise(8107, {name, writtenName(statement.table)});
        }
    }
    held = key;
}

std::string wordOf(SessionState& session, const ast::Expression& value)
{
    if (const auto* literal = ast::tryAs<ast::Literal>(&value))
        return literal->text;
    const Value text = session.evaluate(value, nVarCharType(128));
    return text.isNull() ? std::string() : std::get<std::string>(text.data);
}

int isolationLevel(const std::string& name)
{
    constexpr std::array<std::string_view, 5> levels = {"read uncommitted", "read committed",
                                                        "repeatable read", "serializable", "snapshot"};
    for (std::size_t i = 0; i < levels.size(); ++i) {
        if (levels[i] == lowerCase(name))
            return static_cast<int>(i) + 1;
    }
    return 2;
}

void setValue(SessionState& session, const std::string& name, const ast::Expression& value)
{
    SessionOptions& options = session.options();
    if (name == "ROWCOUNT") {
        const int rows = session.number(value);
        if (rows < 0)
            raise(507);
        options.rowCount = rows;
    } else if (name == "TEXTSIZE") {
        constexpr int least = 4096;
        const int bytes = session.number(value);
        options.textSize = bytes == 0 ? least : std::max(bytes, -1);
    } else if (name == "LOCK_TIMEOUT") {
        const auto* unary = ast::tryAs<ast::Unary>(&value);
        session.store().setLockTimeout(unary != nullptr ? -1 : session.number(value));
    } else if (name == "DATEFIRST") {
        const int first = session.number(value);
        if (first < 1 || first > 7)
            raise(2742, {std::to_string(first)});
        options.dateFirst = first;
    } else if (name == "DATEFORMAT") {
        const std::string word = wordOf(session, value);
        const auto order = dateOrderNamed(word);
        if (!order)
            raise(2741, {word});
        options.dates.order = *order;
    } else if (name == "LANGUAGE") {
        const std::string word = wordOf(session, value);
        const Language* language = findLanguage(word);
        if (language == nullptr)
            raise(2740, {word});
        session.useLanguage(*language, std::string(options.dates.language->name));
    } else if (name == "TRANSACTION ISOLATION LEVEL") {
        options.isolationLevel = isolationLevel(wordOf(session, value));
    }
}

} // namespace

void executeSetOption(SessionState& session, const ast::SetOptionStatement& statement)
{
    for (const std::string& name : statement.options) {
        if (name == "IDENTITY_INSERT")
            setIdentityInsert(session, statement);
        else if (statement.on)
            setSwitch(session, name, *statement.on);
        else if (statement.value)
            setValue(session, name, *statement.value);
    }
}

} // namespace practice
