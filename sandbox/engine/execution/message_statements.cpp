// PRINT, RAISERROR and THROW.
#include "engine/execution/statements.h"
#include "engine/messages/errors.h"
#include "engine/messages/message_texts.h"
#include "tsql/parser.h"
#include "types/conversion.h"
#include "types/text_encoding.h"

#include <algorithm>

namespace practice {

namespace {

constexpr int firstUserNumber = 50000;
constexpr int worstSeverity = 25;
constexpr int highestOpenSeverity = 18;

std::string asText(SessionState& session, const ast::Expression& expression)
{
    const Variable value = session.evaluate(expression);
    if (value.value.isNull())
        return "(null)";
    return toText(value.value, value.type);
}

/// PRINT cuts a text at the length that a variable without max can have.
std::string printed(const Variable& value)
{
    const std::size_t most = isUnicode(value.type.id) ? 4000 : 8000;
    const std::string text = toText(value.value, value.type);
    const std::u16string units = toUtf16(text);
    return units.size() > most ? toUtf8(std::u16string_view(units).substr(0, most)) : text;
}

std::string padded(const std::string& text, std::string_view flags, int width)
{
    const auto wanted = static_cast<std::size_t>(std::max(width, 0));
    if (text.size() >= wanted)
        return text;
    const bool left = flags.find('-') != std::string_view::npos;
    const bool zero = flags.find('0') != std::string_view::npos && !left;
    const std::string fill(wanted - text.size(), zero ? '0' : ' ');
    return left ? text + fill : fill + text;
}

std::string inBase(std::uint32_t number, char conversion)
{
    const std::uint32_t base = conversion == 'o' ? 8 : 16;
    const char* digits = conversion == 'X' ? "0123456789ABCDEF" : "0123456789abcdef";
    std::string text;
    do {
        text.insert(text.begin(), digits[number % base]);
        number /= base;
    } while (number != 0);
    return text;
}

/// Fills the places of a RAISERROR text: %[flags][width][.precision]type with d, i, u, o, x, X or s.
class Formatter
{
public:
    /// @param catalogued the text is the server's own, whose places all read %s
    Formatter(SessionState& session, const std::vector<ast::ExpressionPtr>& arguments, bool catalogued)
        : session_(session), arguments_(arguments), catalogued_(catalogued)
    {}

    std::string format(std::string_view text)
    {
        std::string result;
        for (std::size_t at = 0; at < text.size();) {
            if (text[at] != '%') {
                result.push_back(text[at++]);
            } else if (at + 1 < text.size() && text[at + 1] == '%') {
                result.push_back('%');
                at += 2;
            } else {
                result += place(text, at);
            }
        }
        return result;
    }

private:
    std::string place(std::string_view text, std::size_t& at)
    {
        const std::size_t start = at++;
        const auto digits = [&text, &at, this] {
            if (at < text.size() && text[at] == '*') {
                ++at;
                return number().value_or(0);
            }
            int value = 0;
            for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at)
                value = value * 10 + (text[at] - '0');
            return value;
        };
        const std::size_t flagsAt = at;
        while (at < text.size() && std::string_view("-+ #0").find(text[at]) != std::string_view::npos)
            ++at;
        const std::string_view flags = text.substr(flagsAt, at - flagsAt);
        const int width = digits();
        int precision = -1;
        if (at < text.size() && text[at] == '.') {
            ++at;
            precision = digits();
        }
        while (at < text.size() &&
               (text[at] == 'l' || text[at] == 'h' || text[at] == 'I' || text[at] == '6' || text[at] == '4'))
            ++at;
        if (at == text.size())
            raise(2787, {std::string(text.substr(start))});
        const char conversion = text[at++];
        if (conversion == 's') {
            std::string value = words();
            if (precision >= 0 && static_cast<std::size_t>(precision) < value.size())
                value.resize(static_cast<std::size_t>(precision));
            return padded(value, flags, width);
        }
        if (std::string_view("diuoxXp").find(conversion) == std::string_view::npos)
            raise(2787, {std::string(text.substr(start, at - start))});
        const std::optional<int> given = number();
        if (!given)
            return padded("(null)", flags, width);
        const int value = *given;
        const bool natural = conversion == 'd' || conversion == 'i';
        std::string shown = natural             ? std::to_string(value)
                            : conversion == 'u' ? std::to_string(static_cast<std::uint32_t>(value))
                                                : inBase(static_cast<std::uint32_t>(value), conversion);
        if (natural && value >= 0 && flags.find('+') != std::string_view::npos)
            shown.insert(0, "+");
        if (!natural && value != 0 && flags.find('#') != std::string_view::npos)
            shown.insert(0, conversion == 'o'   ? "0"
                            : conversion == 'X' ? "0X"
                            : conversion == 'x' ? "0x"
                                                : "");
        return padded(shown, flags, width);
    }

    /// What the next place of %s shows.
    std::string words()
    {
        if (next_ >= arguments_.size())
            return "(null)";
        const Variable value = session_.evaluate(*arguments_[next_++]);
        if (value.value.isNull())
            return "(null)";
        if (!catalogued_ && !isCharacter(value.type.id))
            raise(2786, {std::to_string(next_)});
        return toText(value.value, value.type);
    }

    /// What the next place of %d shows; none for NULL and for an argument that is not there.
    std::optional<int> number()
    {
        if (next_ >= arguments_.size())
            return std::nullopt;
        const Variable value = session_.evaluate(*arguments_[next_++]);
        const auto* integer = std::get_if<std::int64_t>(&value.value.data);
        if (integer == nullptr && !value.value.isNull())
            raise(2786, {std::to_string(next_)});
        return integer == nullptr ? std::nullopt : std::optional(static_cast<int>(*integer));
    }

    SessionState& session_;
    const std::vector<ast::ExpressionPtr>& arguments_;
    bool catalogued_;
    std::size_t next_ = 0;
};

/// The old form: RAISERROR 50001 'text'.
Message oldForm(SessionState& session, const ast::RaiserrorStatement& statement)
{
    Message message;
    message.number = session.number(*statement.message);
    if (!statement.arguments.empty())
        message.text = asText(session, *statement.arguments.front());
    return message;
}

/// RAISERROR (number, ...): the text of sysmessages.
Message catalogued(SessionState& session, const ast::RaiserrorStatement& statement, std::int64_t number)
{
    constexpr int firstNumber = 13000;
    if (number < firstNumber || number > INT32_MAX || number == firstUserNumber)
        raise(2732, {std::to_string(number), std::to_string(firstNumber), std::to_string(INT32_MAX)});
    const MessageText* known = findMessageText(static_cast<int>(number));
    if (known == nullptr)
        raise(18054, {std::to_string(number), std::to_string(session.number(*statement.severity)),
                      std::to_string(session.number(*statement.state))});
    Message message;
    message.number = known->number;
    message.severity = known->severity;
    message.text = Formatter(session, statement.arguments, true).format(known->text);
    return message;
}

/// A longer text ends in an ellipsis.
std::string shortened(const std::string& text)
{
    constexpr std::size_t most = 2047;
    constexpr std::size_t shown = 2044;
    const std::u16string units = toUtf16(text);
    return units.size() > most ? toUtf8(std::u16string_view(units).substr(0, shown)) + "..." : text;
}

Message composed(SessionState& session, const ast::RaiserrorStatement& statement)
{
    Message message;
    const Variable given = session.evaluate(*statement.message);
    if (const auto* number = std::get_if<std::int64_t>(&given.value.data)) {
        message = catalogued(session, statement, *number);
    } else {
        message.number = firstUserNumber;
        const std::string text = given.value.isNull() ? "" : toText(given.value, given.type);
        message.text = shortened(Formatter(session, statement.arguments, false).format(text));
    }
    constexpr int own = -1; // the severity and the state that the message has of itself
    if (const int severity = session.number(*statement.severity); severity != own)
        message.severity = std::clamp(severity, 0, worstSeverity);
    const int state = session.number(*statement.state);
    message.state = state < 0 ? 1 : std::min(state, 255);
    if (message.severity > highestOpenSeverity && !statement.log)
        raise(2754);
    return message;
}

} // namespace

void executePrint(SessionState& session, const ast::PrintStatement& statement)
{
    const Variable value = session.evaluate(*statement.value);
    Message message;
    message.severity = 0;
    message.text = value.value.isNull() ? "" : printed(value);
    // A line without a text is shown by a blank.
    if (message.text.empty())
        message.text = " ";
    session.sendMessage(message);
    session.outcome().lastRowCount = 0;
}

void executeRaiserror(SessionState& session, const ast::RaiserrorStatement& statement)
{
    const Message message = statement.severity ? composed(session, statement) : oldForm(session, statement);
    constexpr int lastInformation = 10;
    if (message.severity > lastInformation && session.calls().catchesErrors())
        throw SqlError{message};
    session.sendMessage(message);
    const bool error = message.severity > lastInformation || statement.setError;
    session.outcome().statementError = error ? message.number : 0;
    session.done(std::nullopt, commands::other, message.severity > lastInformation);
}

namespace {

ObjectPtr checkedTable(SessionState& session, const ast::ObjectName& name)
try {
    return Translator(session.bindContext()).object(name);
} catch (const SqlError& error) {
    if (error.message.number != 208)
        throw;
    raise(2501, {name.object});
}

} // namespace

void executeDbcc(SessionState& session, const ast::DbccStatement& statement)
{
    const auto argument = [&session, &statement](std::size_t i) {
        if (i >= statement.arguments.size())
            return std::string();
        const auto* literal = ast::tryAs<ast::Literal>(statement.arguments[i].get());
        return literal != nullptr ? literal->text : asText(session, *statement.arguments[i]);
    };
    if (statement.command == "CHECKIDENT") {
        const ast::ObjectName name = parseObjectName(argument(0));
        const ObjectPtr table = checkedTable(session, name);
        if (table->identityColumn() == nullptr)
            raise(7997, {name.object});
        if (lowerCase(argument(1)) == "reseed" && statement.arguments.size() > 2) {
            const int seed = session.number(*statement.arguments[2]);
            session.atomically([&session, &table, seed] {
                session.catalog().setLastIdentity(table->databaseId, table->id, seed);
                return 0;
            });
        }
    } else if (statement.command == "CHECKDB" || statement.command == "CHECKTABLE") {
        Statement check(session.connection(), "PRAGMA quick_check(1)");
        if (check.step() && check.text(0) != "ok")
            raise(8921);
    }
    Message message;
    message.number = 2528;
    message.severity = 0;
    message.text =
        "DBCC execution completed. If DBCC printed error messages, contact your system administrator.";
    session.sendMessage(message);
}

} // namespace practice
