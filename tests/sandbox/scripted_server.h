// A server whose sessions know a few words instead of Transact-SQL, so that the wire can be tried
// without an engine.
#pragma once

#include "engine/api/session.h"
#include "types/conversion.h"
#include "types/text_encoding.h"

#include <atomic>
#include <chrono>
#include <thread>

namespace practice::test {

struct Sample
{
    const char* name;
    SqlType type;
    const char* text; ///< nullptr for NULL
};

inline constexpr SqlType sized(TypeId id, int length)
{
    return {id, length, 0, 0};
}

/// A value or two of every type, with what it looks like as text.
inline const std::vector<Sample>& samples()
{
    static const std::vector<Sample> all{
        {"bit", sized(TypeId::Bit, 1), "1"},
        {"tinyint", sized(TypeId::TinyInt, 1), "255"},
        {"smallint", sized(TypeId::SmallInt, 2), "-32768"},
        {"int", sized(TypeId::Int, 4), "-2147483648"},
        {"bigint", sized(TypeId::BigInt, 8), "-9223372036854775808"},
        {"real", sized(TypeId::Real, 4), "1.5"},
        {"float", sized(TypeId::Float, 8), "-0.25"},
        {"smallmoney", sized(TypeId::SmallMoney, 4), "-214748.3648"},
        {"money", sized(TypeId::Money, 8), "-922337203685477.5808"},
        {"decimal", {TypeId::Decimal, 17, 38, 10}, "-1234567890123456789012345678.0123456789"},
        {"numeric", {TypeId::Numeric, 5, 9, 2}, "1234567.89"},
        {"smalldatetime", sized(TypeId::SmallDateTime, 4), "2079-06-06 23:59"},
        {"datetime", sized(TypeId::DateTime, 8), "1753-01-01 23:59:59.997"},
        {"date", sized(TypeId::Date, 3), "0001-01-01"},
        {"time", {TypeId::Time, 5, 0, 7}, "23:59:59.9999999"},
        {"datetime2", {TypeId::DateTime2, 7, 0, 3}, "9999-12-31 23:59:59.999"},
        {"datetimeoffset", {TypeId::DateTimeOffset, 10, 0, 7}, "2024-02-29 01:02:03.1234567 -05:30"},
        {"char", sized(TypeId::Char, 4), "ñ€  "},
        {"varchar", sized(TypeId::VarChar, 20), "año €"},
        {"varchar_max", sized(TypeId::VarChar, maxLength), "ilimitado ñ"},
        {"text", sized(TypeId::Text, 16), "texto ñ"},
        {"nchar", sized(TypeId::NChar, 4), "日本  "},
        {"nvarchar", sized(TypeId::NVarChar, 20), "ñ€日😀"},
        {"nvarchar_max", sized(TypeId::NVarChar, maxLength), "😀 sin límite"},
        {"ntext", sized(TypeId::NText, 16), "ntexto 日"},
        {"uniqueidentifier", sized(TypeId::UniqueIdentifier, 16), "00112233-4455-6677-8899-AABBCCDDEEFF"},
        {"empty", sized(TypeId::VarChar, 10), ""},
        {"null", sized(TypeId::NVarChar, 10), nullptr},
    };
    return all;
}

inline Value valueOf(const Sample& sample)
{
    if (sample.text == nullptr)
        return {};
    return convert({std::string(sample.text), {}}, sized(TypeId::NVarChar, maxLength), sample.type);
}

class ScriptedSession final : public Session
{
public:
    ScriptedSession(std::string database, std::atomic<int>& cancels)
        : database_(std::move(database)), cancels_(cancels)
    {}

    void executeBatch(std::string_view text, ResultSink& sink) override
    {
        cancelled_ = false;
        if (text.starts_with("types"))
            return sendTypes(sink);
        if (text.starts_with("several"))
            return sendSeveral(sink);
        if (text.starts_with("rows "))
            return sendRows(std::stoll(std::string(text.substr(5))), sink);
        if (text.starts_with("wait"))
            return waitForCancel(sink);
        if (text.starts_with("echo "))
            return sendText(text.substr(5), sink);
        sink.done({});
    }

    /// Gives every parameter back as a row, and every output one as such, too.
    void executeProcedure(std::string_view name, std::vector<Parameter> parameters, ResultSink& sink) override
    {
        for (const auto& parameter : parameters) {
            const std::vector<ColumnInfo> columns{{parameter.name, parameter.type}};
            sink.columns(columns);
            sink.row(std::vector<Value>{parameter.value});
            sink.done({Completion::Kind::InProcedure, 1, 0xC1});
        }
        sink.returnStatus(static_cast<int>(name.size()));
        for (const auto& parameter : parameters) {
            if (parameter.output)
                sink.outputParameter(parameter.name, parameter.type, parameter.value);
        }
        sink.done({Completion::Kind::Procedure, {}, 0xE0});
    }

    void beginTransaction(const std::string&, ResultSink& sink) override
    {
        sink.environment(EnvironmentChange::BeginTransaction, std::string("\1\0\0\0\0\0\0\0", 8), {});
    }
    void commitTransaction(ResultSink& sink) override
    {
        sink.environment(EnvironmentChange::CommitTransaction, {}, std::string("\1\0\0\0\0\0\0\0", 8));
    }
    void rollbackTransaction(const std::string&, ResultSink& sink) override
    {
        sink.environment(EnvironmentChange::RollbackTransaction, {}, std::string("\1\0\0\0\0\0\0\0", 8));
    }
    void reset(ResultSink& sink) override { sink.environment(EnvironmentChange::ResetConnection, {}, {}); }
    void cancel() noexcept override
    {
        cancelled_ = true;
        ++cancels_;
    }

    [[nodiscard]] const std::string& database() const override { return database_; }
    [[nodiscard]] int id() const override { return 51; }
    [[nodiscard]] int textSize() const override { return -1; }

private:
    static void sendTypes(ResultSink& sink)
    {
        std::vector<ColumnInfo> columns;
        std::vector<Value> values;
        for (const auto& sample : samples()) {
            columns.push_back({sample.name, sample.type});
            values.push_back(valueOf(sample));
        }
        columns.push_back({"varbinary", sized(TypeId::VarBinary, 10)});
        values.push_back({Bytes{0x00, 0xFF, 0x10}, {}});
        columns.push_back({"image", sized(TypeId::Image, 16)});
        values.push_back({Bytes{0x01, 0x02}, {}});
        for (const Sample& inner : {samples()[9], samples()[22], samples()[12]}) {
            columns.push_back({std::string("variant_") + inner.name, sized(TypeId::SqlVariant, 8016)});
            Value value = valueOf(inner);
            value.variantType = inner.type;
            values.push_back(std::move(value));
        }
        sink.columns(columns);
        sink.row(values);
        sink.done({Completion::Kind::Statement, 1, 0xC1});
    }

    static void sendText(std::string_view text, ResultSink& sink)
    {
        const std::vector<ColumnInfo> columns{{"echo", sized(TypeId::NVarChar, maxLength)}};
        sink.columns(columns);
        sink.row(std::vector<Value>{{std::string(text), {}}});
        sink.done({Completion::Kind::Statement, 1, 0xC1});
    }

    /// A result, an error in the middle, a message, a count, a result.
    static void sendSeveral(ResultSink& sink)
    {
        sendText("first", sink);
        Message error;
        error.number = 547;
        error.text = "The INSERT statement conflicted with the FOREIGN KEY constraint \"FK_año\".";
        error.state = 0;
        error.line = 3;
        sink.message(error);
        sink.done({Completion::Kind::Statement, {}, 0xC3, true});
        Message note;
        note.severity = 0;
        note.text = "información";
        sink.message(note);
        sink.done({Completion::Kind::Statement, 7, 0xC5});
        sendText("last", sink);
    }

    void sendRows(std::int64_t count, ResultSink& sink)
    {
        const std::vector<ColumnInfo> columns{{"n", sized(TypeId::Int, 4)},
                                              {"t", sized(TypeId::NVarChar, 50)}};
        sink.columns(columns);
        std::vector<Value> values{{std::int64_t{0}, {}}, {std::string("una fila cualquiera"), {}}};
        std::int64_t n = 0;
        for (; n < count && !cancelled_; ++n) {
            values[0].data = n;
            sink.row(values);
        }
        sink.done({Completion::Kind::Statement, static_cast<std::uint64_t>(n), 0xC1});
    }

    void waitForCancel(ResultSink& sink)
    {
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!cancelled_ && std::chrono::steady_clock::now() < limit)
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        sink.done({Completion::Kind::Statement, {}, 0, true});
    }

    std::string database_;
    std::atomic<bool> cancelled_ = false;
    std::atomic<int>& cancels_;
};

/// Lets in "sa" with the password "contraseña".
class ScriptedServer final : public Server
{
public:
    [[nodiscard]] std::unique_ptr<Session> login(const LoginRequest& request, ResultSink& sink) override
    {
        if (request.user != "sa" || request.password != "contraseña") {
            Message why;
            why.number = 18456;
            why.severity = 14;
            why.text = "Login failed for user '" + request.user + "'.";
            throw LoginRefused(why);
        }
        const std::string database = request.database.empty() ? "master" : request.database;
        sink.environment(EnvironmentChange::Database, database, "master");
        Message changed;
        changed.number = 5701;
        changed.severity = 0;
        changed.state = 2;
        changed.text = "Changed database context to '" + database + "'.";
        sink.message(changed);
        sink.environment(EnvironmentChange::Language, "us_english", "");
        return std::make_unique<ScriptedSession>(database, cancels_);
    }
    [[nodiscard]] const std::string& name() const override { return name_; }
    [[nodiscard]] int cancels() const { return cancels_; }

private:
    std::string name_ = "PRACTICE";
    std::atomic<int> cancels_ = 0;
};

} // namespace practice::test
