// Families of "statement, answer": each is run in turn in one session.
#pragma once

#include "engine_harness.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace practice::test {

struct Case
{
    const char* statement;
    const char* answer; ///< as Answer renders it, without the line of column names when they are all empty
};

/// Takes away the blank lines of result sets whose columns have no name.
inline std::string withoutBareHeads(const std::string& text)
{
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = text.find('\n', at);
        const std::string line = text.substr(at, end - at);
        if (line.find_first_not_of("| ") != std::string::npos)
            result += line + "\n";
        at = end + 1;
    }
    return result;
}

inline void expectAnswers(Engine& engine, std::initializer_list<Case> cases)
{
    for (const Case& expected : cases) {
        SCOPED_TRACE(expected.statement);
        std::string answer = withoutBareHeads(engine.run(expected.statement));
        if (!answer.empty())
            answer.pop_back();
        EXPECT_EQ(answer, expected.answer);
    }
}

/// The server of this program, with an empty database in use.
inline Engine& freshDatabase()
{
    static Engine engine;
    engine.run("USE master");
    engine.run("DROP DATABASE Ventas");
    engine.run("CREATE DATABASE Ventas");
    engine.run("USE Ventas");
    return engine;
}

} // namespace practice::test
