// A server in this process that sends the same rows again and again, so that little but the client's
// work is measured.
#pragma once

#include "tds/server.h"

#include <algorithm>
#include <charconv>
#include <memory>
#include <string>
#include <vector>

namespace bench {

inline constexpr int databases = 5'000;
inline constexpr int tables = 20'000;

/// Answers "N" with N rows of six columns, and the browser's two questions with 5,000 databases and
/// 20,000 tables.
class RowsSession final : public practice::Session
{
public:
    void executeBatch(std::string_view text, practice::ResultSink& sink) override
    {
        std::int64_t count = 0;
        std::from_chars(text.data(), text.data() + text.size(), count);
        if (text.find("sysdatabases") != std::string_view::npos)
            sendDatabases(sink);
        else if (text.find("sysobjects") != std::string_view::npos)
            sendTables(sink);
        else if (!text.empty() && text.front() >= '0' && text.front() <= '9')
            sendRows(sink, count);
        else
            sink.done({});
    }
    void executeProcedure(std::string_view, std::vector<practice::Parameter>, practice::ResultSink&) override
    {}
    void beginTransaction(const std::string&, practice::ResultSink&) override {}
    void commitTransaction(practice::ResultSink&) override {}
    void rollbackTransaction(const std::string&, practice::ResultSink&) override {}
    void reset(practice::ResultSink&) override {}
    void cancel() noexcept override {}
    [[nodiscard]] const std::string& database() const override { return m_database; }
    [[nodiscard]] int id() const override { return 51; }
    [[nodiscard]] int textSize() const override { return -1; }

private:
    using Columns = std::vector<practice::ColumnInfo>;
    using Type = practice::TypeId;

    static void counted(practice::ResultSink& sink, std::int64_t rows)
    {
        sink.done({practice::Completion::Kind::Statement, static_cast<std::uint64_t>(rows), 0xC1});
    }

    static void sendRows(practice::ResultSink& sink, std::int64_t rows)
    {
        const Columns columns{{"id", {Type::Int, 4, 0, 0}},         {"total", {Type::Decimal, 9, 12, 2}},
                              {"share", {Type::Float, 8, 0, 0}},    {"changed", {Type::DateTime, 8, 0, 0}},
                              {"name", {Type::NVarChar, 60, 0, 0}}, {"note", {Type::VarChar, 200, 0, 0}}};
        std::vector<practice::Value> row{{std::int64_t{0}, {}},
                                         {practice::Decimal{12'345'678, 2, false}, {}},
                                         {0.125, {}},
                                         {practice::DateTimeValue{738'000, 432'000'000'000, 0}, {}},
                                         {std::string("José Núñez Ibáñez"), {}},
                                         {std::string("a note of some thirty letters."), {}}};
        sink.columns(columns);
        for (std::int64_t index = 0; index < rows; ++index) {
            row[0].data = index;
            sink.row(row);
        }
        counted(sink, rows);
    }

    static void sendDatabases(practice::ResultSink& sink)
    {
        sink.columns(Columns{{"name", {Type::NVarChar, 256, 0, 0}}});
        for (int index = 0; index < databases; ++index)
            sink.row(std::vector<practice::Value>{{"Database" + std::to_string(index), {}}});
        counted(sink, databases);
    }

    static void sendTables(practice::ResultSink& sink)
    {
        sink.columns(Columns{{"tabla", {Type::NVarChar, 256, 0, 0}},
                             {"tipo", {Type::Char, 2, 0, 0}},
                             {"usuario", {Type::NVarChar, 256, 0, 0}},
                             {"fecha", {Type::DateTime, 8, 0, 0}}});
        for (int index = 0; index < tables; ++index)
            sink.row(
                std::vector<practice::Value>{{"TableOfTheList" + std::to_string(index), {}},
                                             {std::string("U "), {}},
                                             {std::string("dbo"), {}},
                                             {practice::DateTimeValue{738'000, 432'000'000'000, 0}, {}}});
        counted(sink, tables);
    }

    std::string m_database = "master";
};

class RowsEngine final : public practice::Server
{
public:
    [[nodiscard]] std::unique_ptr<practice::Session> login(const practice::LoginRequest&,
                                                           practice::ResultSink&) override
    {
        return std::make_unique<RowsSession>();
    }
    [[nodiscard]] const std::string& name() const override { return m_name; }

private:
    std::string m_name = "BENCH";
};

/// Such an engine, and its listener on a free port.
class RowsServer
{
public:
    [[nodiscard]] int port() const { return m_listener.port(); }

private:
    static practice::tds::ListenOptions anyPort()
    {
        practice::tds::ListenOptions options;
        options.port = 0;
        return options;
    }

    RowsEngine m_engine;
    practice::tds::TdsServer m_listener{m_engine, anyPort()};
};

} // namespace bench
