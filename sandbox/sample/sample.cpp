#include "sample/sample.h"

#include "engine/api/session.h"
#include "sample/sample_scripts.h"

#include <stdexcept>
#include <string>

namespace practice {
namespace {

/// Keeps the first error and how many rows came.
class Outcome : public ResultSink
{
public:
    void columns(std::span<const ColumnInfo>) override {}
    void row(std::span<const Value>) override { ++rows; }
    void message(const Message& message) override
    {
        constexpr int lowestError = 11;
        if (message.severity >= lowestError && error.empty())
            error = "error " + std::to_string(message.number) + ": " + message.text;
    }
    void done(const Completion&) override {}
    void environment(EnvironmentChange, const std::string&, const std::string&) override {}
    void returnStatus(int) override {}
    void outputParameter(const std::string&, const SqlType&, const Value&) override {}

    int rows = 0;
    std::string error;
};

int run(Session& session, const char* batch)
{
    Outcome outcome;
    session.executeBatch(batch, outcome);
    if (!outcome.error.empty())
        throw std::runtime_error("the sample can't be made: " + outcome.error + "\n" + batch);
    return outcome.rows;
}

} // namespace

void buildSample(Server& server)
{
    LoginRequest request;
    request.user = "sa";
    request.application = "sample";
    request.trusted = true;
    Outcome ignored;
    const auto session = server.login(request, ignored);
    if (run(*session, "SELECT name FROM master.dbo.sysdatabases WHERE name = 'Comercial'") > 0)
        return;
    for (const auto batches : {sampleTables(), sampleData(), sampleCode()}) {
        for (const char* batch : batches)
            run(*session, batch);
    }
}

} // namespace practice
