// Variables, and what expressions give outside queries.
#include "engine/messages/errors.h"
#include "engine/session/session_state.h"
#include "types/date_time.h"
#include "types/product_version.h"

#include <functional>

namespace practice {

namespace {

/// @@VERSION
const std::string& versionText()
{
    static const std::string text =
        std::string("Microsoft SQL Server 2008 R2 (") + productLevel + ") - " + productVersionText +
        " (X64) \n\tAug 19 2014 12:21:34 \n\tCopyright (c) Microsoft Corporation\n"
        "\tPractice Server (64-bit) on this machine\n";
    return text;
}

constexpr std::int64_t microsoftVersion =
    productVersion.major << 24 | productVersion.minor << 16 | productVersion.build;

Value number(std::int64_t value)
{
    return {value, {}};
}
Value text(std::string value)
{
    return {std::move(value), {}};
}
Value decimal(const std::optional<std::int64_t>& value)
{
    if (!value)
        return {};
    const bool negative = *value < 0;
    const auto magnitude =
        negative ? 0 - static_cast<std::uint64_t>(*value) : static_cast<std::uint64_t>(*value);
    return {Decimal{magnitude, 0, negative}, {}};
}

/// The bits of @@OPTIONS.
std::int64_t optionBits(const SessionOptions& options)
{
    const auto bit = [](bool set, int place) { return set ? std::int64_t{1} << place : 0; };
    return bit(options.implicitTransactions, 1) | bit(options.ansiWarnings, 3) | bit(options.ansiPadding, 4) |
           bit(options.ansiNulls, 5) | bit(options.arithAbort, 6) | bit(options.quotedIdentifier, 8) |
           bit(options.noCount, 9) | bit(options.ansiNullDefault, 10) |
           bit(options.concatNullYieldsNull, 12) | bit(options.xactAbort, 14);
}

Value point(DateTimeValue value, const SqlType& type)
{
    const auto fitted = fitToType(value, type);
    return {fitted ? *fitted : value, {}};
}

DateTimeValue withOffset(SessionState& session)
{
    DateTimeValue utc = session.clock().now(true);
    utc.offsetMinutes = session.clock().now(false).offsetMinutes;
    return utc;
}

const Message* caught(SessionState& session)
{
    return session.frame().caught.empty() ? nullptr : &session.frame().caught.back();
}

Value procedureOf(const Message& message)
{
    return message.procedure.empty() ? Value{} : text(message.procedure);
}

using Reader = std::function<Value(SessionState&)>;

template <typename Field>
Reader ofError(Field field)
{
    return [field](SessionState& session) {
        const Message* message = caught(session);
        return message == nullptr ? Value{} : field(*message);
    };
}

Reader fixed(std::int64_t value)
{
    return [value](SessionState&) { return number(value); };
}

const std::unordered_map<std::string, Reader>& readers()
{
    static const std::unordered_map<std::string, Reader> map = {
        {"@@version", [](SessionState&) { return text(versionText()); }},
        {"@@rowcount", [](SessionState& s) { return number(s.outcome().lastRowCount); }},
        {"@@error", [](SessionState& s) { return number(s.outcome().lastError); }},
        {"@@identity", [](SessionState& s) { return decimal(s.outcome().lastIdentity); }},
        {"@@trancount", [](SessionState& s) { return number(s.transactionCount()); }},
        {"@@spid", [](SessionState& s) { return number(s.spid()); }},
        {"@@servername", [](SessionState& s) { return text(s.serverName()); }},
        {"@@remserver", [](SessionState&) { return Value{}; }},
        {"@@servicename", [](SessionState&) { return text("MSSQLSERVER"); }},
        {"@@language", [](SessionState& s) { return text(std::string(s.options().dates.language->name)); }},
        {"@@langid", [](SessionState& s) { return number(s.options().dates.language->id); }},
        {"@@max_precision", fixed(38)},
        {"@@max_connections", fixed(32767)},
        {"@@datefirst", [](SessionState& s) { return number(s.options().dateFirst); }},
        {"@@options", [](SessionState& s) { return number(optionBits(s.options())); }},
        {"@@microsoftversion", fixed(microsoftVersion)},
        {"@@fetch_status", [](SessionState& s) { return number(s.outcome().fetchStatus); }},
        {"@@cursor_rows", [](SessionState& s) { return number(s.outcome().cursorRows); }},
        {"@@nestlevel", [](SessionState& s) { return number(s.calls().nestLevel()); }},
        {"@@lock_timeout", [](SessionState& s) { return number(s.store().lockTimeout()); }},
        {"@@textsize", [](SessionState& s) { return number(s.options().textSize); }},
        {"@@procid", [](SessionState& s) { return number(s.frame().procedureId); }},
        {"@@timeticks", fixed(31250)},
        {"@@dbts",
         [](SessionState& s) {
             Statement stamp(s.connection(), "SELECT value FROM engine_timestamp");
             Bytes bytes(8);
             auto last = static_cast<std::uint64_t>(stamp.step() ? stamp.integer(0) : 0);
             for (std::size_t i = 8; i > 0; --i, last >>= 8)
                 bytes[i - 1] = static_cast<std::uint8_t>(last);
             return Value{bytes, {}};
         }},
        {"getdate()",
         [](SessionState& s) {
             return point(s.clock().now(false), {TypeId::DateTime, 8});
         }},
        {"getutcdate()",
         [](SessionState& s) {
             return point(s.clock().now(true), {TypeId::DateTime, 8});
         }},
        {"sysdatetime()",
         [](SessionState& s) {
             return point(s.clock().now(false), {TypeId::DateTime2, 8, 0, 7});
         }},
        {"sysutcdatetime()",
         [](SessionState& s) {
             return point(s.clock().now(true), {TypeId::DateTime2, 8, 0, 7});
         }},
        {"sysdatetimeoffset()",
         [](SessionState& s) {
             return Value{withOffset(s), {}};
         }},
        {"app_name()", [](SessionState& s) { return text(s.client().application); }},
        {"host_name()", [](SessionState& s) { return text(s.client().host); }},
        {"host_id()", [](SessionState& s) { return text(std::to_string(s.spid())); }},
        {"user_name()", [](SessionState& s) { return text(s.user().name); }},
        {"user_id()", [](SessionState& s) { return number(s.user().id); }},
        {"suser_sname()", [](SessionState& s) { return text(s.login().name); }},
        {"original_login()", [](SessionState& s) { return text(s.login().name); }},
        {"suser_id()", fixed(1)},
        {"suser_sid()",
         [](SessionState& s) {
             return Value{Bytes(s.login().sid.begin(), s.login().sid.end()), {}};
         }},
        {"db_name()", [](SessionState& s) { return text(s.database()->name); }},
        {"db_id()", [](SessionState& s) { return number(s.database()->id); }},
        {"schema_name()", [](SessionState&) { return text("dbo"); }},
        {"schema_id()", fixed(1)},
        {"scope_identity()", [](SessionState& s) { return decimal(s.outcome().scopeIdentity); }},
        {"xact_state()",
         [](SessionState& s) {
             return number(s.transactionCount() == 0 ? 0 : s.transactions().doomed ? -1 : 1);
         }},
        {"getansinull()", fixed(1)},
        {"context_info()", [](SessionState&) { return Value{}; }},
        {"error_number()", ofError([](const Message& m) { return number(m.number); })},
        {"error_severity()", ofError([](const Message& m) { return number(m.severity); })},
        {"error_state()", ofError([](const Message& m) { return number(m.state); })},
        {"error_line()", ofError([](const Message& m) { return number(m.line); })},
        {"error_message()", ofError([](const Message& m) { return text(m.text); })},
        {"error_procedure()", ofError(procedureOf)},
    };
    return map;
}

} // namespace

Value SessionState::globalValue(const std::string& name)
{
    const auto found = readers().find(name);
    // The counters of a real machine's load stay at nought here.
    return found == readers().end() ? Value{std::int64_t{0}, {}} : found->second(*this);
}

int SessionState::number(const ast::Expression& expression)
{
    const Value value = evaluate(expression, intType());
    return value.isNull() ? 0 : static_cast<int>(std::get<std::int64_t>(value.data));
}

} // namespace practice
