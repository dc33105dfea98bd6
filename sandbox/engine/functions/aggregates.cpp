// Aggregates that SQLite has not, or has otherwise.
#include "engine/functions/sql_functions.h"

#include "engine/store/store.h"
#include "types/decimal.h"

#include <cmath>
#include <memory>
#include <new>

namespace practice {

namespace {

/// An aggregate's memory lies in SQLite's zeroed buffer, which stays where it is; all of these are plain
/// data. SQLite aligns for 8 bytes only.
template <typename State>
State* stateOf(sqlite3_context* context, bool create)
{
    std::size_t room = sizeof(State) + alignof(State);
    void* memory = sqlite3_aggregate_context(context, create ? static_cast<int>(room) : 0);
    if (memory == nullptr)
        return nullptr;
    return static_cast<State*>(std::align(alignof(State), sizeof(State), memory, room));
}

/// A 38 digit sum can pass 128 bits only after more rows than a store can hold.
struct DecimalSum
{
    __int128 total;
    std::int64_t count;
};

// The argument is a decimal of 38 digits in storage form; its scale passes through untouched.
constexpr SqlType widest = widestDecimal();

void addDecimal(sqlite3_context* context, sqlite3_value* argument, int sign)
{
    auto* sum = stateOf<DecimalSum>(context, true);
    if (sum == nullptr || sqlite3_value_type(argument) == SQLITE_NULL)
        return;
    const auto value = std::get<Decimal>(decodeValue(argument, widest).data);
    const auto magnitude = static_cast<__int128>(value.magnitude);
    sum->total += value.negative == (sign > 0) ? -magnitude : magnitude;
    sum->count += sign;
}

void sumStep(sqlite3_context* context, int, sqlite3_value** arguments)
{
    addDecimal(context, arguments[0], 1);
}
void sumInverse(sqlite3_context* context, int, sqlite3_value** arguments)
{
    addDecimal(context, arguments[0], -1);
}

void sumValue(sqlite3_context* context)
{
    const auto* sum = stateOf<DecimalSum>(context, false);
    if (sum == nullptr || sum->count == 0)
        return sqlite3_result_null(context);
    const bool negative = sum->total < 0;
    const auto magnitude = static_cast<unsigned __int128>(negative ? -sum->total : sum->total);
    const Decimal total{magnitude, 0, negative};
    if (!fits(total, maxPrecision))
        return resultError(context, makeMessage(8115, {"numeric"}));
    resultStorage(context, Value{total, {}}, widest);
}

struct Moments
{
    std::int64_t count;
    double mean;
    double squares; ///< sum of squared distances from the mean
};

void momentsStep(sqlite3_context* context, int, sqlite3_value** arguments)
{
    auto* moments = stateOf<Moments>(context, true);
    if (moments == nullptr || sqlite3_value_type(arguments[0]) == SQLITE_NULL)
        return;
    const double value = sqlite3_value_double(arguments[0]);
    ++moments->count;
    const double distance = value - moments->mean;
    moments->mean += distance / static_cast<double>(moments->count);
    moments->squares += distance * (value - moments->mean);
}

void momentsInverse(sqlite3_context* context, int, sqlite3_value** arguments)
{
    auto* moments = stateOf<Moments>(context, false);
    if (moments == nullptr || sqlite3_value_type(arguments[0]) == SQLITE_NULL)
        return;
    const double value = sqlite3_value_double(arguments[0]);
    if (--moments->count == 0) {
        moments->mean = moments->squares = 0;
        return;
    }
    const double before = moments->mean;
    moments->mean -= (value - before) / static_cast<double>(moments->count);
    moments->squares -= (value - before) * (value - moments->mean);
}

enum class Spread : std::uint8_t
{
    Deviation,
    DeviationOfAll,
    Variance,
    VarianceOfAll
};

template <Spread spread>
void momentsValue(sqlite3_context* context)
{
    const auto* moments = stateOf<Moments>(context, false);
    constexpr bool all = spread == Spread::DeviationOfAll || spread == Spread::VarianceOfAll;
    const std::int64_t freedom = moments == nullptr ? 0 : moments->count - (all ? 0 : 1);
    if (freedom <= 0)
        return sqlite3_result_null(context);
    const double variance = std::max(moments->squares, 0.0) / static_cast<double>(freedom);
    constexpr bool root = spread == Spread::Deviation || spread == Spread::DeviationOfAll;
    sqlite3_result_double(context, root ? std::sqrt(variance) : variance);
}

struct ChecksumSum
{
    std::uint32_t sum;
    bool any;
};

void checksumStep(sqlite3_context* context, int, sqlite3_value** arguments)
{
    auto* state = stateOf<ChecksumSum>(context, true);
    if (state == nullptr || sqlite3_value_type(arguments[0]) == SQLITE_NULL)
        return;
    state->sum ^= static_cast<std::uint32_t>(sqlite3_value_int64(arguments[0]));
    state->any = true;
}

void checksumFinal(sqlite3_context* context)
{
    const auto* state = stateOf<ChecksumSum>(context, false);
    if (state == nullptr || !state->any)
        return sqlite3_result_null(context);
    sqlite3_result_int(context, static_cast<std::int32_t>(state->sum));
}

using Step = void (*)(sqlite3_context*, int, sqlite3_value**);
using Final = void (*)(sqlite3_context*);

void defineAggregate(sqlite3* connection, const char* name, Step step, Final value, Step inverse)
{
    const int code =
        sqlite3_create_window_function(connection, name, 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, step,
                                       value, inverse == nullptr ? nullptr : value, inverse, nullptr);
    if (code != SQLITE_OK)
        throwStoreFailure(connection, code);
}

} // namespace

void registerAggregates(sqlite3* connection)
{
    defineAggregate(connection, "t_sumdec", sumStep, sumValue, sumInverse);
    defineAggregate(connection, "t_stdev", momentsStep, momentsValue<Spread::Deviation>, momentsInverse);
    defineAggregate(connection, "t_stdevp", momentsStep, momentsValue<Spread::DeviationOfAll>,
                    momentsInverse);
    defineAggregate(connection, "t_var", momentsStep, momentsValue<Spread::Variance>, momentsInverse);
    defineAggregate(connection, "t_varp", momentsStep, momentsValue<Spread::VarianceOfAll>, momentsInverse);
    defineAggregate(connection, "t_checksumagg", checksumStep, checksumFinal, nullptr);
}

} // namespace practice
