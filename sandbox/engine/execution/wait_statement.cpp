// WAITFOR: a time of day, read as the server reads it.
#include "engine/execution/statements.h"
#include "engine/messages/errors.h"
#include "types/date_time.h"

#include <algorithm>

#include <sqlite3.h>

namespace practice {

namespace {

constexpr std::int64_t millisecondsPerDay = ticksPerDay / ticksPerMillisecond;

/// Milliseconds since midnight of "h:m[:s[.mmm]] [AM]"; none for what is no such time, a date included.
std::optional<std::int64_t> timeOfText(std::string_view text)
{
    if (text.find_first_not_of(' ') == std::string_view::npos)
        return 0;
    const bool plain = text.find(':') != std::string_view::npos &&
                       text.find_first_not_of("0123456789:. aApPmM") == std::string_view::npos;
    const ParsedDate parsed = parseDate(text);
    if (!plain || parsed.fault != DateFault::None || parsed.fractionDigits > 3 ||
        parsed.value.days != day1900)
        return std::nullopt;
    return parsed.value.ticks / ticksPerMillisecond;
}

[[noreturn]] void refuseType(const SqlType& type)
{
    Message message = makeMessage(9815, {typeName(type.id)});
    message.state = 0;
    throw SqlError{std::move(message)};
}

/// @return a negative number for a wait without end
std::int64_t timeOf(const Variable& given)
{
    const bool seconds = given.type.id == TypeId::Int || given.type.id == TypeId::SmallInt;
    const bool ofDate = given.type.id == TypeId::DateTime || given.type.id == TypeId::SmallDateTime;
    const bool text = isCharacter(given.type.id);
    if (!seconds && !ofDate && !text)
        refuseType(given.type);
    if (given.value.isNull())
        return 0;
    if (seconds)
        return std::get<std::int64_t>(given.value.data) * 1000;
    if (ofDate)
        return std::get<DateTimeValue>(given.value.data).ticks / ticksPerMillisecond;
    const auto time =
        given.type.length == maxLength ? std::nullopt : timeOfText(std::get<std::string>(given.value.data));
    if (!time)
        raise(241);
    return *time;
}

void sleepFor(SessionState& session, std::int64_t milliseconds)
{
    constexpr std::int64_t slice = 10;
    const bool endless = milliseconds < 0;
    session.endStatement();
    for (std::int64_t left = milliseconds; endless || left > 0; left -= endless ? 0 : slice) {
        if (session.store().cancelled())
            throw Cancelled{};
        sqlite3_sleep(static_cast<int>(endless ? slice : std::min(left, slice)));
    }
}

} // namespace

void checkWaitFor(const ast::WaitForStatement& statement)
{
    const auto* literal = ast::tryAs<ast::Literal>(statement.time.get());
    if (literal != nullptr && !timeOfText(literal->text))
        raise(148, {literal->text});
}

void executeWaitFor(SessionState& session, const ast::WaitForStatement& statement)
{
    std::int64_t left = timeOf(session.evaluate(*statement.time));
    if (!statement.delay && left >= 0) {
        left -= session.clock().now(false).ticks / ticksPerMillisecond;
        left += left < 0 ? millisecondsPerDay : 0;
    }
    sleepFor(session, left);
    session.outcome().lastRowCount = 0;
    session.done(std::nullopt, 0);
}

} // namespace practice
