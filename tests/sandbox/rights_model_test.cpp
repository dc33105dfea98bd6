// Random grants, denials and memberships, each followed by statements whose outcome a small model of the
// rules foretells.
#include "engine_harness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace practice::test {
namespace {

const std::vector<std::string> users = {"ana", "eva"};
const std::vector<std::string> roles = {"r1", "r2", "r3"};
const std::vector<std::string> fixedRoles = {"db_owner",      "db_datareader",     "db_datawriter",
                                             "db_ddladmin",   "db_denydatareader", "db_denydatawriter",
                                             "db_accessadmin"};
const std::vector<std::string> columns = {"a", "b", "c"};
const std::vector<std::string> rights = {"SELECT", "INSERT", "UPDATE", "DELETE", "REFERENCES", "CONTROL"};

bool onColumns(const std::string& right)
{
    return right == "SELECT" || right == "UPDATE" || right == "REFERENCES";
}

enum class State : std::uint8_t
{
    None,
    Granted,
    Denied,
    Taken ///< of a column: the grant or denial of the object does not hold there
};

/// What was said to one principal of one right on one object.
struct Word
{
    State object = State::None;
    std::map<std::string, State> columns;
};

/// The rules as they are told in words, kept apart from how the server keeps them.
class Model
{
public:
    void say(const std::string& verb, const std::string& right, const std::string& object,
             const std::vector<std::string>& chosen, const std::string& principal)
    {
        Word& word = words_[{principal, object, right}];
        const State state = verb == "GRANT" ? State::Granted : verb == "DENY" ? State::Denied : State::None;
        if (chosen.empty()) {
            word = {state, {}};
            return;
        }
        for (const std::string& column : chosen) {
            word.columns.erase(column);
            if (state == State::None && word.object != State::None)
                word.columns[column] = State::Taken;
            else if (state != State::None && state != word.object)
                word.columns[column] = state;
        }
    }

    void join(const std::string& member, const std::string& role) { memberships_.insert({member, role}); }
    void leave(const std::string& member, const std::string& role) { memberships_.erase({member, role}); }
    [[nodiscard]] bool holds(const std::string& member, const std::string& role) const
    {
        return memberships_.contains({member, role});
    }

    /// The first error: 0 for none.
    [[nodiscard]] int ask(const std::string& user, const std::string& right, const std::string& object,
                          const std::vector<std::string>& wanted) const
    {
        const std::set<std::string> all = everybodyOf(user);
        if (deniedByRole(all, right))
            return 229;
        if (wanted.empty()) {
            const bool any = onColumns(right)
                                 ? std::ranges::any_of(columns,
                                                       [&](const std::string& column) {
                                                           return allows(all, right, object, column);
                                                       })
                                 : allows(all, right, object, "");
            return any ? 0 : 229;
        }
        bool one = false;
        bool whole = false;
        for (const std::string& column : wanted) {
            if (allows(all, right, object, column))
                continue;
            (spokenOf(all, right, object, column) ? one : whole) = true;
        }
        return whole ? 229 : one ? 230 : 0;
    }

private:
    [[nodiscard]] std::set<std::string> everybodyOf(const std::string& user) const
    {
        std::set<std::string> all = {user, "public"};
        for (bool grew = true; grew;) {
            grew = false;
            for (const auto& [member, role] : memberships_)
                grew = (all.contains(member) && all.insert(role).second) || grew;
        }
        return all;
    }

    static bool deniedByRole(const std::set<std::string>& all, const std::string& right)
    {
        if (right == "SELECT")
            return all.contains("db_denydatareader");
        return right != "REFERENCES" && all.contains("db_denydatawriter");
    }

    static bool grantedByRole(const std::set<std::string>& all, const std::string& right)
    {
        if (all.contains("db_owner"))
            return true;
        if (right == "SELECT")
            return all.contains("db_datareader");
        return all.contains(right == "REFERENCES" ? "db_ddladmin" : "db_datawriter");
    }

    [[nodiscard]] Word said(const std::string& principal, const std::string& object,
                            const std::string& right) const
    {
        const auto found = words_.find({principal, object, right});
        return found == words_.end() ? Word() : found->second;
    }

    /// @param column "" for the object alone
    [[nodiscard]] bool allows(const std::set<std::string>& all, const std::string& right,
                              const std::string& object, const std::string& column) const
    {
        std::set<State> ofColumn;
        std::set<State> ofObject;
        for (const std::string& principal : all) {
            const Word word = said(principal, object, right);
            const auto own = word.columns.find(column);
            if (own != word.columns.end())
                ofColumn.insert(own->second);
            // A grant or denial of a column leaves what the principal has on the object in force.
            if (own != word.columns.end() && own->second == State::Taken)
                continue;
            ofObject.insert(word.object);
            ofObject.insert(said(principal, object, "CONTROL").object);
        }
        if (ofColumn.contains(State::Denied))
            return false;
        if (ofColumn.contains(State::Granted))
            return true;
        if (ofObject.contains(State::Denied))
            return false;
        return ofObject.contains(State::Granted) || grantedByRole(all, right);
    }

    /// A column is named in a refusal where the right is had on another, or denied on this one.
    [[nodiscard]] bool spokenOf(const std::set<std::string>& all, const std::string& right,
                                const std::string& object, const std::string& column) const
    {
        for (const std::string& principal : all) {
            for (const auto& [name, state] : said(principal, object, right).columns) {
                if (state == State::Denied && name == column)
                    return true;
            }
        }
        return std::ranges::any_of(
            columns, [&](const std::string& other) { return allows(all, right, object, other); });
    }

    std::map<std::array<std::string, 3>, Word> words_;
    std::set<std::pair<std::string, std::string>> memberships_;
};

struct Probe
{
    std::string statement;
    std::string object;
    /// Asked for in this order; the first refusal counts.
    std::vector<std::pair<std::string, std::vector<std::string>>> needs;
};

const std::vector<Probe> probes = {
    {"SELECT a FROM dbo.t", "t", {{"SELECT", {"a"}}}},
    {"SELECT a, b FROM dbo.t WHERE c = 1", "t", {{"SELECT", {"a", "b", "c"}}}},
    {"SELECT * FROM dbo.t", "t", {{"SELECT", {"a", "b", "c"}}}},
    {"SELECT count(*) FROM dbo.t", "t", {{"SELECT", {}}}},
    {"SELECT b FROM dbo.v", "v", {{"SELECT", {"b"}}}},
    {"INSERT dbo.t VALUES (7, 7, 7)", "t", {{"INSERT", {}}}},
    {"UPDATE dbo.t SET b = 1", "t", {{"UPDATE", {"b"}}}},
    {"UPDATE dbo.t SET b = a, c = 1", "t", {{"SELECT", {"a"}}, {"UPDATE", {"b", "c"}}}},
    {"UPDATE dbo.t SET c = 1 WHERE b = 2", "t", {{"SELECT", {"b"}}, {"UPDATE", {"c"}}}},
    {"DELETE dbo.t", "t", {{"DELETE", {}}}},
    {"DELETE dbo.t WHERE c = 2", "t", {{"SELECT", {"c"}}, {"DELETE", {}}}},
    {"DELETE dbo.t OUTPUT deleted.a", "t", {{"DELETE", {}}, {"SELECT", {"a"}}}},
    {"ALTER TABLE $USER.propia ADD FOREIGN KEY (x) REFERENCES dbo.t (a)", "t", {{"REFERENCES", {"a"}}}},
};

class RightsModel : public ::testing::TestWithParam<unsigned>
{
protected:
    RightsModel() : random_(GetParam())
    {
        run("CREATE DATABASE Ventas");
        run("USE Ventas");
        for (const std::string& user : users) {
            run("EXEC sp_addlogin '" + user + "', 'uno', 'Ventas'");
            run("EXEC sp_grantdbaccess '" + user + "'");
        }
        for (const std::string& role : roles)
            run("EXEC sp_addrole '" + role + "'");
        run("CREATE TABLE dbo.t (a int PRIMARY KEY, b int, c int) INSERT dbo.t VALUES (1, 1, 1)");
        run("CREATE VIEW dbo.v AS SELECT a, b, c FROM dbo.t");
        for (const std::string& user : users) {
            run("CREATE TABLE " + user + ".propia (x int)");
            sessions_.push_back(engine_.login(user, "uno"));
        }
    }

    const std::string& any(const std::vector<std::string>& list) { return list[number(list.size())]; }
    std::size_t number(std::size_t below)
    {
        return std::uniform_int_distribution<std::size_t>(0, below - 1)(random_);
    }

    void run(const std::string& statement)
    {
        const std::string answer = engine_.run(statement);
        ASSERT_EQ(answer.find("Msg "), std::string::npos) << statement << '\n' << answer;
        told_ += statement + '\n';
    }

    std::string anyGrantee()
    {
        std::vector<std::string> all = users;
        all.insert(all.end(), roles.begin(), roles.end());
        all.emplace_back("public");
        return any(all);
    }

    void sayOfRights()
    {
        const std::string verb = any({"GRANT", "GRANT", "DENY", "REVOKE"});
        const std::string& right = any(rights);
        const std::string object = number(4) == 0 ? "v" : "t";
        std::vector<std::string> chosen;
        for (const std::string& column : columns) {
            if (onColumns(right) && number(4) == 0)
                chosen.push_back(column);
        }
        std::string list;
        for (const std::string& column : chosen)
            list += (list.empty() ? " (" : ", ") + column;
        const std::string grantee = anyGrantee();
        run(verb + " " + right + list + (list.empty() ? "" : ")") + " ON dbo." + object +
            (verb == "REVOKE" ? " FROM " : " TO ") + grantee);
        model_.say(verb, right, object, chosen, grantee);
    }

    void changeMembership()
    {
        // Roles are in later ones only, so that no circle arises.
        const std::size_t place = number(users.size() + roles.size());
        const bool isUser = place < users.size();
        const std::string member = isUser ? users[place] : roles[place - users.size()];
        std::vector<std::string> open = fixedRoles;
        for (std::size_t i = isUser ? 0 : place - users.size() + 1; i < roles.size(); ++i)
            open.insert(open.end(), 4, roles[i]);
        const std::string& role = any(open);
        const bool leaves = model_.holds(member, role);
        run(std::string(leaves ? "EXEC sp_droprolemember '" : "EXEC sp_addrolemember '") + role + "', '" +
            member + "'");
        if (leaves)
            model_.leave(member, role);
        else
            model_.join(member, role);
    }

    void expectAsForetold(std::size_t user, const Probe& probe)
    {
        std::string statement = probe.statement;
        if (const std::size_t at = statement.find("$USER"); at != std::string::npos)
            statement.replace(at, 5, users[user]);
        int expected = 0;
        for (const auto& [right, wanted] : probe.needs) {
            if (expected == 0)
                expected = model_.ask(users[user], right, probe.object, wanted);
        }
        const std::string answer = Engine::run(*sessions_[user], "BEGIN TRAN " + statement);
        Engine::run(*sessions_[user], "IF @@TRANCOUNT > 0 ROLLBACK");
        const std::size_t at = answer.find("Msg ");
        const int number = at == std::string::npos ? 0 : std::stoi(answer.substr(at + 4));
        ++(number == 0 ? done_ : refused_);
        ASSERT_EQ(number, expected) << users[user] << ": " << statement << '\n'
                                    << answer << "after\n"
                                    << told_;
    }

    Engine engine_;
    std::vector<std::unique_ptr<Session>> sessions_;
    Model model_;
    std::mt19937 random_;
    std::string told_;
    int done_ = 0;
    int refused_ = 0;
};

TEST_P(RightsModel, ForetellsEachOutcome)
{
    constexpr int steps = 150;
    constexpr int probesOfStep = 6;
    for (int step = 0; step < steps; ++step) {
        if (number(4) == 0)
            changeMembership();
        else
            sayOfRights();
        for (int i = 0; i < probesOfStep; ++i)
            ASSERT_NO_FATAL_FAILURE(expectAsForetold(number(users.size()), probes[number(probes.size())]));
    }
    // A run that only ever refuses, or never does, would show little.
    EXPECT_GT(done_, steps / 3);
    EXPECT_GT(refused_, steps / 3);
}

INSTANTIATE_TEST_SUITE_P(Seeds, RightsModel, ::testing::Range(1U, 9U));

} // namespace
} // namespace practice::test
