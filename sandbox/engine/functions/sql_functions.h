// The functions that translated statements call inside SQLite. Their arguments and results are in
// storage form; an argument called `type` is a packed SqlType.
#pragma once

#include "engine/messages/errors.h"
#include "engine/store/storage.h"
#include "types/conversion.h"
#include "types/language.h"
#include "types/value.h"

#include <cstdint>
#include <string>
#include <string_view>

#include <sqlite3.h>

namespace practice {

/// One call of a function from SQLite.
class Call
{
public:
    Call(sqlite3_context* context, int count, sqlite3_value** arguments)
        : context_(context), count_(count), arguments_(arguments)
    {}

    [[nodiscard]] int count() const { return count_; }
    [[nodiscard]] sqlite3_value* argument(int i) const { return arguments_[i]; }
    [[nodiscard]] bool isNull(int i) const { return sqlite3_value_type(arguments_[i]) == SQLITE_NULL; }
    [[nodiscard]] std::int64_t integer(int i) const { return sqlite3_value_int64(arguments_[i]); }
    [[nodiscard]] double real(int i) const { return sqlite3_value_double(arguments_[i]); }
    [[nodiscard]] std::string_view text(int i) const
    {
        const auto* data = reinterpret_cast<const char*>(sqlite3_value_text(arguments_[i]));
        return {data == nullptr ? "" : data, static_cast<std::size_t>(sqlite3_value_bytes(arguments_[i]))};
    }
    [[nodiscard]] std::string_view blob(int i) const
    {
        const auto* data = static_cast<const char*>(sqlite3_value_blob(arguments_[i]));
        return {data == nullptr ? "" : data, static_cast<std::size_t>(sqlite3_value_bytes(arguments_[i]))};
    }
    [[nodiscard]] SqlType type(int i) const { return unpackType(integer(i)); }
    [[nodiscard]] Value value(int i, const SqlType& type) const { return decodeValue(arguments_[i], type); }

    void result(std::int64_t value) const { sqlite3_result_int64(context_, value); }
    void result(int value) const { sqlite3_result_int(context_, value); }
    void result(double value) const { sqlite3_result_double(context_, value); }
    void result(std::string_view value) const
    {
        sqlite3_result_text64(context_, value.data(), value.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    void resultBlob(std::string_view value) const
    {
        sqlite3_result_blob64(context_, value.data(), value.size(), SQLITE_TRANSIENT);
    }
    void result(const Value& value, const SqlType& type) const { resultStorage(context_, value, type); }
    /// Hands an argument through.
    void resultArgument(int i) const { sqlite3_result_value(context_, arguments_[i]); }
    [[nodiscard]] sqlite3_context* context() const { return context_; }

private:
    sqlite3_context* context_;
    int count_;
    sqlite3_value** arguments_;
};

using CallBody = void (*)(const Call&);

enum class Nulls : std::uint8_t
{
    Propagate, ///< NULL as soon as one argument is NULL
    Handle,    ///< the body looks itself
};
enum class Purity : std::uint8_t
{
    Deterministic,
    Volatile
};

/// @param arguments -1 for any number
void defineFunction(sqlite3* connection, const char* name, int arguments, CallBody body,
                    Nulls nulls = Nulls::Propagate, Purity purity = Purity::Deterministic);

using DatedBody = void (*)(const Call&, const DateSettings&);

/// For what reads or writes dates. The settings are looked at in each call and outlive the connection.
void defineDatedFunction(sqlite3* connection, const char* name, int arguments, DatedBody body,
                         const DateSettings& dates, Nulls nulls = Nulls::Propagate);

void registerConversionFunctions(sqlite3* connection, const DateSettings& dates);
void registerArithmeticFunctions(sqlite3* connection);
void registerNumberFunctions(sqlite3* connection);
void registerTextFunctions(sqlite3* connection);
void registerPatternFunctions(sqlite3* connection);
void registerDateFunctions(sqlite3* connection, const DateSettings& dates);
void registerHashFunctions(sqlite3* connection);
void registerVariantFunctions(sqlite3* connection);
void registerAggregates(sqlite3* connection);

/// All of the above.
void registerSqlFunctions(sqlite3* connection, const DateSettings& dates);

/// The message that a failed conversion of ours becomes.
[[nodiscard]] Message messageOf(const ConversionError& error);

} // namespace practice
