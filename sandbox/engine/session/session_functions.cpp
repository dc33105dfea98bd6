#include "engine/session/session_functions.h"

#include "engine/messages/errors.h"
#include "engine/store/store.h"
#include "types/conversion.h"

#include <exception>

namespace practice {

namespace {

struct Definition
{
    SessionState& session;
    SessionBody body;
    Nulls nulls;
};

void onCall(sqlite3_context* context, int count, sqlite3_value** arguments)
{
    const auto& definition = *static_cast<const Definition*>(sqlite3_user_data(context));
    const Call call(context, count, arguments);
    try {
        for (int i = 0; i < count && definition.nulls == Nulls::Propagate; ++i) {
            if (call.isNull(i))
                return sqlite3_result_null(context);
        }
        definition.body(definition.session, call);
    } catch (const SqlError& error) {
        resultError(context, error.message);
    } catch (const ConversionError& error) {
        resultError(context, messageOf(error));
    } catch (const StoreError& failure) {
        sqlite3_result_error(context, failure.text.c_str(), -1);
    } catch (const Cancelled&) {
        sqlite3_result_error_code(context, SQLITE_INTERRUPT);
    } catch (const std::exception&) {
        resultError(context, makeMessage(8630));
    }
}

// variable(name): as it stands at this row
void variable(SessionState& session, const Call& call)
{
    const Variable* found = session.calls().find(std::string(call.text(0)));
    if (found == nullptr)
        return sqlite3_result_null(call.context());
    call.result(found->value, found->type);
}

// global(name, type)
void global(SessionState& session, const Call& call)
{
    call.result(session.globalValue(std::string(call.text(0))), call.type(1));
}

// identity(): the next identity value of the running INSERT
void identity(SessionState& session, const Call& call)
{
    call.result(session.outcome().identityCounter.take());
}

// timestamp(): the next value for a timestamp column
void timestamp(SessionState& session, const Call& call)
{
    auto value = static_cast<std::uint64_t>(session.nextTimestamp());
    std::string bytes(8, '\0');
    for (std::size_t i = 8; i > 0; --i, value >>= 8)
        bytes[i - 1] = static_cast<char>(value);
    call.resultBlob(bytes);
}

} // namespace

void defineSessionFunction(SessionState& session, const char* name, int arguments, SessionBody body,
                           Nulls nulls, Purity purity)
{
    const int flags = SQLITE_UTF8 | (purity == Purity::Deterministic ? SQLITE_DETERMINISTIC : 0);
    const int code = sqlite3_create_function_v2(
        session.connection(), name, arguments, flags, new Definition{session, body, nulls}, &onCall, nullptr,
        nullptr, [](void* owned) { delete static_cast<Definition*>(owned); });
    if (code != SQLITE_OK)
        throwStoreFailure(session.connection(), code);
}

void registerSessionFunctions(SessionState& session)
{
    defineSessionFunction(session, "s_variable", 1, variable, Nulls::Handle, Purity::Volatile);
    defineSessionFunction(session, "s_global", 2, global);
    defineSessionFunction(session, "s_identity", 0, identity, Nulls::Handle, Purity::Volatile);
    defineSessionFunction(session, "s_timestamp", 0, timestamp, Nulls::Handle, Purity::Volatile);
    registerObjectFunctions(session);
    registerDatabaseFunctions(session);
    registerPrincipalFunctions(session);
}

} // namespace practice
