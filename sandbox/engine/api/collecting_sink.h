// Keeps the rows that a nested statement yields.
#pragma once

#include "engine/api/result_sink.h"

namespace practice {

class CollectingSink : public ResultSink
{
public:
    void columns(std::span<const ColumnInfo> given) override { described.assign(given.begin(), given.end()); }
    void row(std::span<const Value> values) override { rows.emplace_back(values.begin(), values.end()); }
    void message(const Message& message) override
    {
        if (messages_ != nullptr)
            messages_->message(message);
    }
    void done(const Completion&) override {}
    void environment(EnvironmentChange, const std::string&, const std::string&) override {}
    void returnStatus(int) override {}
    void outputParameter(const std::string&, const SqlType&, const Value&) override {}

    void passMessagesTo(ResultSink& sink) { messages_ = &sink; }

    std::vector<ColumnInfo> described;
    std::vector<std::vector<Value>> rows;

private:
    ResultSink* messages_ = nullptr;
};

} // namespace practice
