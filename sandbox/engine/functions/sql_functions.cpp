#include "engine/functions/sql_functions.h"

#include "engine/store/store.h"

#include <exception>
#include <new>
#include <string>

namespace practice {

namespace {

template <typename Work>
void invoke(Work body, Nulls nulls, const Call& call)
{
    try {
        if (nulls == Nulls::Propagate) {
            for (int i = 0; i < call.count(); ++i) {
                if (call.isNull(i))
                    return sqlite3_result_null(call.context());
            }
        }
        body(call);
    } catch (const SqlError& error) {
        resultError(call.context(), error.message);
    } catch (const ConversionError& error) {
        resultError(call.context(), messageOf(error));
    } catch (const std::bad_alloc&) {
        sqlite3_result_error_nomem(call.context());
    } catch (const std::exception&) {
        resultError(call.context(), makeMessage(8630));
    }
}

template <Nulls nulls>
void onCall(sqlite3_context* context, int count, sqlite3_value** arguments)
{
    const auto body = reinterpret_cast<CallBody>(sqlite3_user_data(context));
    invoke(body, nulls, Call(context, count, arguments));
}

struct DatedDefinition
{
    DatedBody body;
    const DateSettings& dates;
    Nulls nulls;
};

void onDatedCall(sqlite3_context* context, int count, sqlite3_value** arguments)
{
    const auto& definition = *static_cast<const DatedDefinition*>(sqlite3_user_data(context));
    const auto body = [&definition](const Call& call) { definition.body(call, definition.dates); };
    invoke(body, definition.nulls, Call(context, count, arguments));
}

} // namespace

Message messageOf(const ConversionError& error)
{
    Message message = makeMessage(error.number);
    message.text = error.text;
    // An overflow of a numeric's digits is told apart by its state.
    const bool ofDigits = error.number == 8115 && error.text.ends_with("to data type numeric.") &&
                          error.text.find("expression") == std::string::npos;
    if (ofDigits)
        message.state = 8;
    return message;
}

void defineFunction(sqlite3* connection, const char* name, int arguments, CallBody body, Nulls nulls,
                    Purity purity)
{
    const int flags = SQLITE_UTF8 | (purity == Purity::Deterministic ? SQLITE_DETERMINISTIC : 0);
    const auto entry = nulls == Nulls::Propagate ? &onCall<Nulls::Propagate> : &onCall<Nulls::Handle>;
    const int code = sqlite3_create_function_v2(
        connection, name, arguments, flags, reinterpret_cast<void*>(body), entry, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK)
        throwStoreFailure(connection, code);
}

void defineDatedFunction(sqlite3* connection, const char* name, int arguments, DatedBody body,
                         const DateSettings& dates, Nulls nulls)
{
    const int code =
        sqlite3_create_function_v2(connection, name, arguments, SQLITE_UTF8 | SQLITE_DETERMINISTIC,
                                   new DatedDefinition{body, dates, nulls}, &onDatedCall, nullptr, nullptr,
                                   [](void* owned) { delete static_cast<DatedDefinition*>(owned); });
    if (code != SQLITE_OK)
        throwStoreFailure(connection, code);
}

void registerSqlFunctions(sqlite3* connection, const DateSettings& dates)
{
    registerConversionFunctions(connection, dates);
    registerArithmeticFunctions(connection);
    registerNumberFunctions(connection);
    registerTextFunctions(connection);
    registerPatternFunctions(connection);
    registerDateFunctions(connection, dates);
    registerHashFunctions(connection);
    registerVariantFunctions(connection);
    registerAggregates(connection);
}

} // namespace practice
