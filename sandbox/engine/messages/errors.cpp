#include "engine/messages/errors.h"

#include "engine/messages/message_texts.h"

#include <algorithm>
#include <array>

namespace practice {

namespace {

std::string fill(std::string_view text, std::initializer_list<std::string> arguments)
{
    std::string result;
    const auto* argument = arguments.begin();
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool place = text[i] == '%' && i + 1 < text.size() && text[i + 1] == 's';
        if (!place) {
            result.push_back(text[i]);
            continue;
        }
        ++i;
        if (argument != arguments.end())
            result += *argument++;
    }
    return result;
}

} // namespace

Message makeMessage(int number, std::initializer_list<std::string> arguments)
{
    Message message;
    message.number = number;
    const MessageText* known = findMessageText(number);
    if (known == nullptr) {
        message.text = "Error " + std::to_string(number) + ".";
        return message;
    }
    message.severity = known->severity;
    message.state = known->state;
    message.text = fill(known->text, arguments);
    return message;
}

void raise(int number, std::initializer_list<std::string> arguments)
{
    throw SqlError{makeMessage(number, arguments)};
}

bool abortsBatch(int number)
{
    static constexpr std::array numbers = {
        137, 156,  195,  207,  208,  209,  235,  241,  242,  243,  244,  245,  248,  257,   266,
        295, 1205, 1934, 3609, 3930, 3998, 4104, 4121, 6401, 8114, 8169, 9420, 9436, 15600,
    };
    return std::binary_search(numbers.begin(), numbers.end(), number);
}

} // namespace practice
