// Runs the cases of the folder `cases`: statements with their answers, in plain text.
//
//     Of what the file is.
//     > CREATE TABLE t (a int)           statements ahead of the first group run before each group
//
//     == AGroup                          begins with an empty database in use
//     > SELECT a FROM t                  each further line of a statement begins with > as well
//     > WHERE a = 1
//     a                                  its answer, as Answer renders it, up to the empty line
//     1
//
//     ana> SELECT a FROM t              as the login ana, whose password is `uno`, in a session that
//     a                                  lasts until the group ends
//     1
//
// An answer has no line of column names when they all are empty. A line that ends in a blank is written with
// a ¶ behind it, a carriage return as ␍. $DIR is an empty folder of the group's own, in the server's form of
// paths.
#include "engine/catalog/database_files.h"
#include "engine_harness.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <string>
#include <vector>

namespace practice::test {
namespace {

struct Case
{
    int line;
    std::string login; ///< "" for sa
    std::string statement;
    std::string answer;
};

struct Group
{
    std::string name;
    std::vector<Case> cases;
};

struct CaseFile
{
    std::vector<Case> setUp;
    std::vector<Group> groups;
};

/// Every `from` becomes `to`.
std::string replaced(std::string text, const std::string& from, const std::string& to)
{
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size()))
        text.replace(at, from.size(), to);
    return text;
}

void addLine(std::string& text, const std::string& line)
{
    text += (text.empty() ? "" : "\n") + line;
}

/// Where the name before > ends in a line "ana> SELECT 1"; npos in any other.
std::size_t endOfLogin(const std::string& line)
{
    const std::size_t end = line.find_first_not_of("abcdefghijklmnopqrstuvwxyz");
    return end != 0 && end != std::string::npos && line.substr(end).starts_with("> ") ? end
                                                                                      : std::string::npos;
}

/// @throws std::runtime_error for a line that is no part of a case
CaseFile readCases(const std::filesystem::path& path)
{
    CaseFile file;
    std::ifstream in(path);
    std::string line;
    Case* open = nullptr;
    bool answering = false;
    for (int number = 1; std::getline(in, line); ++number) {
        auto& cases = file.groups.empty() ? file.setUp : file.groups.back().cases;
        if (line.starts_with("== ")) {
            file.groups.push_back({line.substr(3), {}});
            open = nullptr;
        } else if (line.starts_with(">")) {
            if (open == nullptr || answering)
                open = &cases.emplace_back(Case{number, "", "", ""});
            else
                open->statement += '\n';
            open->statement += replaced(line.substr(line.starts_with("> ") ? 2 : 1), "␍", "\r");
            answering = false;
        } else if (const std::size_t end = endOfLogin(line); open == nullptr && end != std::string::npos) {
            open = &cases.emplace_back(Case{number, line.substr(0, end), line.substr(end + 2), ""});
            answering = false;
        } else if (line.empty()) {
            open = nullptr;
        } else if (open != nullptr) {
            addLine(open->answer, line);
            answering = true;
        } else if (!file.groups.empty() || !file.setUp.empty()) {
            throw std::runtime_error(path.string() + ':' + std::to_string(number) + ": no case is open");
        }
    }
    return file;
}

/// As the files write it: without empty lines, blanks at the end made visible.
std::string written(const std::string& answer)
{
    std::string result;
    for (std::size_t at = 0; at < answer.size();) {
        const std::size_t end = answer.find('\n', at);
        const std::string line = answer.substr(at, end - at);
        if (line.find_first_not_of("| ") != std::string::npos)
            addLine(result, replaced(line.ends_with(' ') ? line + "¶" : line, "\r", "␍"));
        at = end + 1;
    }
    return result;
}

class CaseGroup : public ::testing::Test
{
public:
    CaseGroup(std::filesystem::path path, std::vector<Case> setUp, Group group)
        : path_(std::move(path)), setUp_(std::move(setUp)), group_(std::move(group))
    {}

    void TestBody() override
    {
        static Engine engine;
        const TemporaryDirectory directory;
        for (const char* statement :
             {"USE master", "DROP DATABASE Ventas", "CREATE DATABASE Ventas", "USE Ventas"})
            engine.run(statement);
        run(engine, setUp_, windowsPath(directory.path()));
        run(engine, group_.cases, windowsPath(directory.path()));
        for (const auto& [login, session] : std::exchange(sessions_, {}))
            logins_.push_back(login);
        if (!logins_.empty())
            engine.run("USE master DROP DATABASE Ventas");
        for (const std::string& login : logins_)
            engine.run("EXEC sp_droplogin '" + login + "'");
    }

private:
    void run(Engine& engine, const std::vector<Case>& cases, const std::string& folder)
    {
        for (const Case& expected : cases) {
            const testing::ScopedTrace trace(path_.c_str(), expected.line, expected.statement);
            const std::string statement = replaced(expected.statement, "$DIR", folder);
            const std::string answer = expected.login.empty()
                                           ? engine.run(statement)
                                           : Engine::run(sessionOf(engine, expected.login), statement);
            EXPECT_EQ(replaced(written(answer), folder, "$DIR"), expected.answer);
        }
    }

    Session& sessionOf(Engine& engine, const std::string& login)
    {
        std::unique_ptr<Session>& session = sessions_[login];
        if (!session)
            session = engine.login(login, "uno");
        return *session;
    }

    std::filesystem::path path_;
    std::vector<Case> setUp_;
    Group group_;
    std::map<std::string, std::unique_ptr<Session>> sessions_;
    std::vector<std::string> logins_;
};

void registerFile(const std::filesystem::path& path)
{
    const CaseFile file = readCases(path);
    for (const Group& group : file.groups)
        testing::RegisterTest(path.stem().c_str(), group.name.c_str(), nullptr, nullptr, path.c_str(), 1,
                              [path, setUp = file.setUp, group]() -> testing::Test* {
                                  return new CaseGroup(path, setUp, group);
                              });
}

} // namespace
} // namespace practice::test

int main(int argc, char** argv)
{
    testing::InitGoogleTest(&argc, argv);
    for (const auto& entry : std::filesystem::directory_iterator(QUERMO_CASES)) {
        if (entry.path().extension() == ".txt")
            practice::test::registerFile(entry.path());
    }
    return RUN_ALL_TESTS();
}
