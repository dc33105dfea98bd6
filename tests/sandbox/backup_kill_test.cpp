// The server dies in the middle of a backup or a restore. QUERMO_BACKUP_KILLS tells how often.
#include "engine_harness.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdlib>
#include <random>
#include <stdexcept>
#include <thread>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace practice::test {
namespace {

int killsWanted()
{
    constexpr int usual = 6;
    const char* wanted = std::getenv("QUERMO_BACKUP_KILLS");
    return wanted == nullptr ? usual : std::atoi(wanted);
}

/// A server in a folder, opened for one batch at a time.
std::string runOn(const std::filesystem::path& folder, const std::string& batch, int ready = -1)
{
    const auto server = openServer({folder, "PRACTICE", "Secret1"});
    Answer answer;
    const auto session = server->login({"sa", "Secret1", "", "tests", "here", ""}, answer);
    answer.text.clear();
    if (ready >= 0 && ::write(ready, "r", 1) != 1)
        return "Msg ";
    session->executeBatch(batch, answer);
    return answer.text;
}

int killed = 0;

/// Runs the batch in a process that is killed after a while.
/// @return whether it came to its end before
bool runAndKill(const std::filesystem::path& folder, const std::string& batch,
                std::chrono::microseconds after)
{
    std::array<int, 2> ready{};
    if (::pipe(ready.data()) != 0)
        throw std::runtime_error("no pipe");
    const pid_t child = ::fork();
    if (child == 0) {
        const std::string answer = runOn(folder, batch, ready[1]);
        ::_exit(answer.find("Msg ") == std::string::npos ? 0 : 1);
    }
    // From here on the time runs: its server is open.
    char byte = 0;
    EXPECT_EQ(::read(ready[0], &byte, 1), 1);
    ::close(ready[0]);
    ::close(ready[1]);
    std::this_thread::sleep_for(after);
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (WIFEXITED(status)) {
        EXPECT_EQ(WEXITSTATUS(status), 0) << batch;
    }
    killed += WIFSIGNALED(status) ? 1 : 0;
    return WIFEXITED(status);
}

/// Every row of a state has its number; `a` tells that there are all of them.
std::string stateIn(const std::filesystem::path& folder)
{
    return runOn(folder, "SELECT COUNT(*) AS n, MIN(a) AS least, MAX(a) AS most FROM Ventas..t; "
                         "SELECT COUNT(*) AS n, MAX(b) AS most FROM Ventas..u; "
                         "SELECT name FROM Ventas..sysobjects WHERE xtype = 'PK' ORDER BY name");
}

class Rounds
{
public:
    Rounds()
    {
        must("CREATE DATABASE Ventas");
        must("CREATE TABLE Ventas..t (a int NOT NULL, b char(100) NOT NULL, c int IDENTITY PRIMARY KEY); "
             "CREATE TABLE Ventas..u (b int CONSTRAINT pk_u PRIMARY KEY)");
        must("INSERT INTO Ventas..t (a, b) SELECT TOP 20000 0, 'x' FROM master..sysobjects a, "
             "master..sysobjects b, master..sysobjects c; "
             "INSERT INTO Ventas..u VALUES (0)");
        must("BACKUP DATABASE Ventas TO " + disk);
        states.push_back(stateIn(store()));
        must("BACKUP LOG Ventas TO " + disk);
        states.push_back(states.back());
        kinds = "FL";
    }

    void must(const std::string& batch) const
    {
        const std::string answer = runOn(store(), batch);
        ASSERT_EQ(answer.find("Msg "), std::string::npos) << batch << '\n' << answer;
    }

    /// Changes everything, and is killed while it backs up.
    void backUp()
    {
        ++number;
        must("UPDATE Ventas..t SET a = " + std::to_string(number) +
             (number % 3 == 0 ? " WHERE c % 1000 = 7" : "") + "; INSERT INTO Ventas..u VALUES (" +
             std::to_string(number) + ")");
        const std::string now = stateIn(store());
        const bool isLog = random() % 2 == 0;
        runAndKill(store(),
                   isLog ? "BACKUP LOG Ventas TO " + disk
                         : "BACKUP DATABASE Ventas TO " + disk + " WITH DIFFERENTIAL",
                   pause());
        EXPECT_EQ(stateIn(store()), now);
        // The set is whole in the file or not there at all; the sets before it are what they were.
        if (sets() > states.size())
            add(isLog ? 'L' : 'D', now);
        EXPECT_EQ(sets(), states.size());
        must("BACKUP LOG Ventas TO " + disk);
        add('L', now);
    }

    /// Is killed while it restores, and then brings back what a chain leads to.
    void restore()
    {
        const std::string before = stateIn(store());
        const std::string copy = (folder.path() / "copy").string();
        std::filesystem::copy(store(), copy, std::filesystem::copy_options::recursive);
        const bool ended =
            runAndKill(copy, "RESTORE DATABASE Ventas FROM " + disk + " WITH FILE = 1, REPLACE", pause());
        const std::string after = stateIn(copy);
        EXPECT_TRUE(after == states.front() || (after == before && !ended)) << after;
        std::filesystem::remove_all(copy);
        const std::size_t last = random() % states.size();
        replayTo(last);
        EXPECT_EQ(stateIn(store()), states[last]) << "set " << last + 1 << " of " << states.size();
        replayTo(states.size() - 1);
        EXPECT_EQ(stateIn(store()), before);
        // Begins anew with a chain of its own.
        must("BACKUP DATABASE Ventas TO " + disk + " WITH INIT");
        states = {before};
        kinds = "F";
    }

    std::mt19937 random{20};
    int number = 0;

private:
    [[nodiscard]] std::filesystem::path store() const { return folder.path() / "store"; }
    std::chrono::microseconds pause() { return std::chrono::microseconds(random() % 60'000); }

    void add(char kind, const std::string& state)
    {
        kinds += kind;
        states.push_back(state);
    }

    /// By the logs, or over the last differential set on the way.
    void replayTo(std::size_t last)
    {
        must("RESTORE DATABASE Ventas FROM " + disk + " WITH NORECOVERY");
        std::size_t set = 0;
        const std::size_t differential = kinds.rfind('D', last);
        if (differential != std::string::npos && (differential == last || random() % 2 == 0)) {
            set = differential;
            must("RESTORE DATABASE Ventas FROM " + disk +
                 " WITH NORECOVERY, FILE = " + std::to_string(set + 1));
        }
        while (++set <= last) {
            if (kinds[set] == 'L')
                must("RESTORE LOG Ventas FROM " + disk +
                     " WITH NORECOVERY, FILE = " + std::to_string(set + 1));
        }
        must("RESTORE DATABASE Ventas WITH RECOVERY");
    }

    [[nodiscard]] std::size_t sets() const
    {
        const std::string verified = runOn(store(), "RESTORE VERIFYONLY FROM " + disk);
        EXPECT_EQ(verified, "-- The backup set on file 1 is valid.\n");
        const std::string list = runOn(store(), "RESTORE HEADERONLY FROM " + disk);
        return static_cast<std::size_t>(std::count(list.begin(), list.end(), '\n')) - 1;
    }

    TemporaryDirectory folder;
    std::string disk = "DISK = 'C:" + (folder.path() / "a.bak").string() + "'";
    std::vector<std::string> states; ///< after each set
    std::string kinds;               ///< full, log or differential: of each set
};

TEST(BackupKill, NothingIsLost)
{
    Rounds rounds;
    for (int round = 0; round < killsWanted() && !testing::Test::HasFailure(); ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        if (round % 4 == 3)
            rounds.restore();
        else
            rounds.backUp();
    }
    RecordProperty("killed", killed);
}

} // namespace
} // namespace practice::test
