// A server over a store of its own, and what a session answers as lines of text.
#pragma once

#include "engine/api/session.h"

#include <filesystem>
#include <memory>
#include <string>

namespace practice::test {

/// Renders what a session tells: a result set as "a | b" under its names, "(3 rows)" per
/// completion that counts, "Msg 208, Level 16, State 1, Line 2: ..." for errors, "-- text" for
/// information.
class Answer : public ResultSink
{
public:
    void columns(std::span<const ColumnInfo> columns) override;
    void row(std::span<const Value> values) override;
    void message(const Message& message) override;
    void done(const Completion& completion) override;
    void environment(EnvironmentChange kind, const std::string& now, const std::string& before) override;
    void returnStatus(int status) override;
    void outputParameter(const std::string& name, const SqlType& type, const Value& value) override;

    bool showCounts = false;
    bool showTypes = false;
    bool showLines = false;
    std::string text;

private:
    std::vector<ColumnInfo> columns_;
};

/// A directory that vanishes with its owner.
class TemporaryDirectory
{
public:
    TemporaryDirectory();
    ~TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

/// One server with one session of sa, shared by the tests of a program.
class Engine
{
public:
    Engine();
    /// Runs a batch in the session of sa.
    std::string run(const std::string& batch);
    /// With the counts of the completions.
    std::string runCounted(const std::string& batch);
    /// With "name:type" for columns.
    std::string describe(const std::string& batch);
    std::unique_ptr<Session> login(const std::string& user = "sa", const std::string& password = "Secret1",
                                   const std::string& database = "");
    static std::string run(Session& session, const std::string& batch);
    [[nodiscard]] Session& session() { return *session_; }
    /// Closes the server and opens it again over the same store.
    void restart();

private:
    TemporaryDirectory directory_;
    std::unique_ptr<Server> server_;
    std::unique_ptr<Session> session_;
};

} // namespace practice::test
