#include "engine_harness.h"

#include "types/conversion.h"

#include <cstdlib>

namespace practice::test {

void Answer::columns(std::span<const ColumnInfo> columns)
{
    columns_.assign(columns.begin(), columns.end());
    for (std::size_t i = 0; i < columns.size(); ++i) {
        text += (i == 0 ? "" : " | ") + columns[i].name;
        if (showTypes)
            text += ":" + describe(columns[i].type) + (columns[i].nullable ? "" : " not null");
    }
    text += "\n";
}

void Answer::row(std::span<const Value> values)
{
    for (std::size_t i = 0; i < values.size(); ++i)
        text += (i == 0 ? "" : " | ") + (values[i].isNull() ? "NULL" : toText(values[i], columns_[i].type));
    text += "\n";
}

void Answer::message(const Message& message)
{
    if (message.severity <= 10) {
        text += "-- " + message.text + "\n";
        return;
    }
    text += "Msg " + std::to_string(message.number) + ", Level " + std::to_string(message.severity) +
            ", State " + std::to_string(message.state);
    if (!message.procedure.empty())
        text += ", Procedure " + message.procedure;
    if (showLines)
        text += ", Line " + std::to_string(message.line);
    text += ": " + message.text + "\n";
}

void Answer::done(const Completion& completion)
{
    if (showCounts && completion.rows)
        text += "(" + std::to_string(*completion.rows) + " rows)\n";
}

void Answer::environment(EnvironmentChange, const std::string&, const std::string&) {}

void Answer::returnStatus(int status)
{
    if (showCounts)
        text += "status " + std::to_string(status) + "\n";
}

void Answer::outputParameter(const std::string& name, const SqlType& type, const Value& value)
{
    text += name + " = " + (value.isNull() ? "NULL" : toText(value, type)) + "\n";
}

TemporaryDirectory::TemporaryDirectory()
{
    const std::string unique(6, 'X'); // what mkdtemp replaces
    std::string pattern = std::filesystem::temp_directory_path() / ("engine-test-" + unique);
    if (mkdtemp(pattern.data()) == nullptr)
        throw std::runtime_error("cannot make a temporary directory");
    path_ = pattern;
}

TemporaryDirectory::~TemporaryDirectory()
{
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

Engine::Engine()
{
    restart();
}

void Engine::restart()
{
    session_.reset();
    server_.reset();
    server_ = openServer({directory_.path(), "PRACTICE", "Secret1"});
    session_ = login();
}

std::unique_ptr<Session> Engine::login(const std::string& user, const std::string& password,
                                       const std::string& database)
{
    Answer ignored;
    return server_->login({user, password, database, "tests", "here", ""}, ignored);
}

std::string Engine::run(Session& session, const std::string& batch)
{
    Answer answer;
    session.executeBatch(batch, answer);
    return answer.text;
}

std::string Engine::run(const std::string& batch)
{
    return run(*session_, batch);
}

std::string Engine::runCounted(const std::string& batch)
{
    Answer answer;
    answer.showCounts = true;
    answer.showLines = true;
    session_->executeBatch(batch, answer);
    return answer.text;
}

std::string Engine::describe(const std::string& batch)
{
    Answer answer;
    answer.showTypes = true;
    session_->executeBatch(batch, answer);
    return answer.text;
}

} // namespace practice::test
