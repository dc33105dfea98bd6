// A batch is read into a tree whose statements lie within it, or refused with a number and a sentence.
#include "fuzz_check.h"

#include "tsql/parser.h"

namespace {

template <class Parse>
void attempt(Parse parse)
{
    try {
        parse();
    } catch (const practice::SyntaxError& error) {
        fuzz::check(error.number > 0 && error.line > 0 && !error.text.empty());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    for (const bool quotedIdentifier : {true, false}) {
        attempt([&] {
            const auto batch = practice::parseBatch(text, {quotedIdentifier});
            for (const auto& statement : batch.statements)
                fuzz::check(statement->source.begin <= statement->source.end &&
                            statement->source.end <= text.size());
        });
    }
    attempt([&] { static_cast<void>(practice::parseExpression(text)); });
    attempt([&] { static_cast<void>(practice::parseCondition(text)); });
    attempt([&] { static_cast<void>(practice::parseDataType(text)); });
    // A name that was read can be written and read again.
    const auto name = practice::parseObjectName(text);
    const auto written = practice::renderName(name);
    fuzz::check(practice::renderName(practice::parseObjectName(written)) == written);
    return 0;
}
