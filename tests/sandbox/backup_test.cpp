// BACKUP and RESTORE: what comes back, moment by moment, and what is told and refused on the way.
#include "backup_harness.h"

#include "engine/backup/set_reader.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <random>
#include <regex>

#include <csignal>
#include <sys/resource.h>

namespace practice::test {
namespace {

constexpr const char* furnished = R"sql(
CREATE TABLE clientes (id int IDENTITY(1, 1) CONSTRAINT pk_clientes PRIMARY KEY, nombre nvarchar(40) NOT NULL,
    alta datetime NULL, saldo money DEFAULT 0, doble AS saldo * 2, foto varbinary(max) NULL, v timestamp);
CREATE TABLE pedidos (id int NOT NULL, cliente int NOT NULL CONSTRAINT fk_pedidos REFERENCES clientes (id),
    importe decimal(25, 4) CONSTRAINT ck_importe CHECK (importe >= 0), g uniqueidentifier NULL);
CREATE UNIQUE INDEX ix_pedidos ON pedidos (id);
)sql";

/// 3014's figures are the machine's own.
std::string withoutRate(const std::string& answer)
{
    return std::regex_replace(answer, std::regex(R"(in [0-9.]+ seconds \([0-9.]+ MB/sec\))"), "in time");
}

class BackupTest : public ::testing::Test
{
protected:
    static BackupEngine& server()
    {
        static BackupEngine engine;
        return engine;
    }
    void SetUp() override
    {
        for (const char* statement : {"USE master", "DROP DATABASE Ventas", "DROP DATABASE Copia"})
            server().run(statement);
        server().mustRun("CREATE DATABASE Ventas");
        for (const auto& entry : std::filesystem::directory_iterator(server().path("").parent_path()))
            std::filesystem::remove(entry);
    }
    static void furnish()
    {
        server().mustRun("USE Ventas");
        server().mustRun(furnished);
        server().mustRun("INSERT INTO clientes (nombre, foto) VALUES (N'Peña', 0x00FF); "
                         "INSERT INTO clientes (nombre, alta) SELECT name, crdate FROM master..sysobjects; "
                         "INSERT INTO pedidos VALUES (1, 1, 12.5, NEWID())");
        server().mustRun("CREATE VIEW altas AS SELECT id, nombre FROM clientes");
        server().mustRun("CREATE PROCEDURE cuenta AS SELECT COUNT(*) FROM pedidos");
        server().mustRun("EXEC sp_addrole 'lectores'; GRANT SELECT ON clientes TO lectores; "
                         "DENY DELETE ON pedidos TO lectores; GRANT CREATE TABLE TO lectores; "
                         "EXEC sp_addrolemember 'db_datareader', 'lectores'");
        server().mustRun("ALTER DATABASE Ventas SET ANSI_NULL_DEFAULT ON; "
                         "ALTER DATABASE Ventas SET RECOVERY BULK_LOGGED; USE master");
    }
    static std::string run(const std::string& batch) { return withoutRate(server().run(batch)); }
};

TEST_F(BackupTest, AFullSetBringsBackAllThatWasThere)
{
    furnish();
    const std::string before = server().stateOf("Ventas");
    EXPECT_TRUE(std::regex_match(
        run("BACKUP DATABASE Ventas TO " + server().disk("a.bak") + " WITH STATS = 50, NAME = N'lunes'"),
        std::regex(
            "(-- 0 percent processed\\.\n|-- 50 percent processed\\.\n)*-- Processed \\d+ pages for database "
            "'Ventas', file 'Ventas' on file 1\\.\n-- Processed 1 pages for database 'Ventas', file "
            "'Ventas_log' on file 1\\.\n-- 100 percent processed\\.\n-- BACKUP DATABASE successfully "
            "processed \\d+ pages in time\\.\n")));
    server().mustRun("DROP TABLE Ventas..pedidos; UPDATE Ventas..clientes SET nombre = 'nadie'; "
                     "ALTER DATABASE Ventas SET RECOVERY SIMPLE");
    EXPECT_EQ(run("RESTORE VERIFYONLY  FROM " + server().disk("a.bak")),
              "-- The backup set on file 1 is valid.\n");
    EXPECT_NE(run("RESTORE DATABASE Ventas FROM " + server().disk("a.bak"))
                  .find("-- RESTORE DATABASE successfully processed"),
              std::string::npos);
    EXPECT_EQ(server().stateOf("Ventas"), before);
    // The keys hold again, and what is written in Transact-SQL runs.
    EXPECT_NE(run("INSERT INTO Ventas..pedidos VALUES (1, 1, 0, NULL)").find("Msg 2601"), std::string::npos);
    EXPECT_NE(run("INSERT INTO Ventas..pedidos VALUES (2, 999999, 0, NULL)").find("Msg 547"),
              std::string::npos);
    EXPECT_EQ(run("EXEC Ventas..cuenta"), "\n1\n");
}

TEST_F(BackupTest, ADatabaseGoesElsewhereUnderAnotherName)
{
    furnish();
    server().mustRun("ALTER DATABASE Ventas ADD FILE (NAME = mas, FILENAME = 'C:" +
                     server().path("mas.ndf").string() + "')");
    const std::string before = server().stateOf("Ventas");
    server().mustRun("BACKUP DATABASE Ventas TO " + server().disk("con blancos y eñe.bak"));
    const std::string to = "RESTORE DATABASE Copia FROM " + server().disk("con blancos y eñe.bak") +
                           " WITH MOVE 'Ventas' TO 'C:" + server().path("copia.mdf").string() +
                           "', MOVE 'VENTAS_LOG' TO 'C:" + server().path("copia.ldf").string() + "'";
    const std::string refused = run(to);
    for (const char* message : {"Msg 1834", "Msg 3156", "Msg 3119", "Msg 3013"})
        EXPECT_NE(refused.find(message), std::string::npos) << refused;
    server().mustRun(to + ", MOVE 'mas' TO 'C:" + server().path("copia.ndf").string() + "'");
    EXPECT_EQ(server().stateOf("Copia"), before);
    EXPECT_TRUE(std::filesystem::exists(server().path("copia.mdf")));
    EXPECT_EQ(std::filesystem::file_size(server().path("copia.ndf")),
              std::filesystem::file_size(server().path("mas.ndf")));
    server().mustRun("DROP DATABASE Copia");
    EXPECT_FALSE(std::filesystem::exists(server().path("copia.mdf")));
    EXPECT_EQ(server().stateOf("Ventas"), before);
}

TEST_F(BackupTest, OtherSessionsWriteWhileABackupRuns)
{
    server().mustRun("CREATE TABLE Ventas..t (a int, b char(200))");
    server().mustRun("INSERT INTO Ventas..t SELECT TOP 20000 1, 'x' FROM master..sysobjects a, "
                     "master..sysobjects b, master..sysobjects c");
    // Every progress message comes from within the backup: each time another session changes all rows.
    class Meddler : public Answer
    {
    public:
        explicit Meddler(Session& other) : other_(other) {}
        void message(const Message& message) override
        {
            if (message.number != 3211 || message.text.starts_with("100"))
                return Answer::message(message);
            text += Engine::run(other_, "SET LOCK_TIMEOUT 1000; UPDATE Ventas..t SET a = a + 1");
            ++times;
        }
        int times = 0;

    private:
        Session& other_;
    };
    const auto other = server().engine().login();
    Meddler meddler(*other);
    server().engine().session().executeBatch(
        "BACKUP DATABASE Ventas TO " + server().disk("a.bak") + " WITH STATS = 25", meddler);
    EXPECT_GE(meddler.times, 3);
    EXPECT_EQ(meddler.text.find("Msg "), std::string::npos) << meddler.text;
    EXPECT_EQ(run("SELECT MIN(a) AS x, MAX(a) AS y FROM Ventas..t"),
              "x | y\n" + std::to_string(1 + meddler.times) + " | " + std::to_string(1 + meddler.times) +
                  "\n");
    server().mustRun("RESTORE DATABASE Ventas FROM " + server().disk("a.bak"));
    EXPECT_EQ(run("SELECT COUNT(*) AS n, MIN(a) AS x, MAX(a) AS y FROM Ventas..t"),
              "n | x | y\n20000 | 1 | 1\n");
}

/// One change drawn at random; each may touch rows, tables, keys or rights.
void change(BackupEngine& server, std::mt19937& random)
{
    const auto number = [&random](int below) {
        return std::to_string(random() % static_cast<unsigned>(below));
    };
    const std::string table = "Ventas..t" + number(4);
    const std::string name = table.substr(8);
    switch (random() % 15) {
    case 0:
        server.run("CREATE TABLE " + table + " (a int IDENTITY PRIMARY KEY, b varchar(300) NULL)");
        break;
    case 1:
        server.run("DROP TABLE " + table);
        break;
    case 2:
        server.run("ALTER TABLE " + table + " ADD c" + number(9) + " decimal(20, 3) NULL");
        break;
    case 3:
        server.run("USE Ventas; CREATE INDEX i" + number(3) + " ON " + name + " (b); USE master");
        break;
    case 4:
        server.run("USE Ventas; GRANT SELECT ON " + name + " TO public; DENY INSERT ON " + name +
                   " TO guest; USE master");
        break;
    case 5:
        server.run("DELETE FROM " + table + " WHERE a % 7 = " + number(7));
        break;
    case 6:
        server.run("TRUNCATE TABLE " + table);
        break;
    case 7:
        server.run("USE Ventas; EXEC sp_addrole 'r" + number(20) + "'; USE master");
        break;
    case 9:
        server.run("USE Ventas; EXEC sp_addrolemember 'r" + number(20) + "', 'r" + number(20) +
                   "'; EXEC sp_addrolemember 'db_datareader', 'r" + number(20) + "'; USE master");
        break;
    case 10:
        server.run("USE Ventas; REVOKE SELECT ON " + name +
                   " FROM public; GRANT CREATE TABLE, CREATE VIEW TO r" + number(20) +
                   "; DENY UPDATE, DELETE ON " + name + " TO r" + number(20) + "; USE master");
        break;
    case 11:
        server.run("USE Ventas; EXEC sp_droprolemember 'db_datareader', 'r" + number(20) +
                   "'; EXEC sp_droprole 'r" + number(20) + "'; USE master");
        break;
    case 8:
        // There and back again: what is as it was at a base must still reach those who saw it otherwise.
        server.run("UPDATE " + table + " SET b = 'x" + number(2) + "' WHERE a < 300");
        break;
    default:
        server.run("INSERT INTO " + table + " (b) SELECT TOP " + std::to_string(1 + random() % 900) +
                   " REPLICATE('y', " + number(300) + ") FROM master..sysobjects a, master..sysobjects b");
    }
}

struct Taken
{
    char kind = 'F';
    std::string state;
};

/// The statements that lead to the state after set `last`: the newest full one, the newest
/// differential one behind it if there is any (or, when `byLogs`, none), and the logs behind that.
std::vector<std::size_t> wayTo(const std::vector<Taken>& sets, std::size_t last, std::mt19937& random)
{
    std::vector<std::size_t> fulls;
    for (std::size_t i = 0; i <= last; ++i) {
        if (sets[i].kind == 'F' && (i == last || sets[last].kind == 'L'))
            fulls.push_back(i);
        if (sets[i].kind == 'F' && sets[last].kind == 'D')
            fulls = {i};
    }
    std::vector<std::size_t> way{fulls[random() % fulls.size()]};
    if (sets[last].kind == 'D') {
        way.push_back(last);
        return way;
    }
    bool onNewestFull = true;
    for (std::size_t i = way.front() + 1; i <= last; ++i) {
        onNewestFull = onNewestFull && sets[i].kind != 'F';
        if (sets[i].kind == 'L' || (sets[i].kind == 'D' && onNewestFull && random() % 2 == 0))
            way.push_back(i);
    }
    return way;
}

TEST_F(BackupTest, EveryMomentOfARandomChainComesBack)
{
    constexpr int usual = 6;
    const char* wanted = std::getenv("QUERMO_BACKUP_CHAINS");
    const int chains = wanted == nullptr ? usual : std::atoi(wanted);
    for (int seed = 1; seed <= chains; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        SetUp();
        std::mt19937 random(static_cast<unsigned>(seed));
        const std::string disk = server().disk("cadena.bak");
        std::vector<Taken> sets;
        for (int step = 0; step < 9; ++step) {
            for (auto changes = 1 + random() % 6; changes > 0; --changes)
                change(server(), random);
            const char kind = sets.empty() ? 'F' : "FDDLLLL"[random() % 7];
            server().mustRun(kind == 'L' ? "BACKUP LOG Ventas TO " + disk
                                         : "BACKUP DATABASE Ventas TO " + disk +
                                               (kind == 'D' ? " WITH DIFFERENTIAL" : ""));
            sets.push_back({kind, server().stateOf("Ventas")});
        }
        for (std::size_t last = 0; last < sets.size(); ++last) {
            std::string told;
            const auto way = wayTo(sets, last, random);
            for (const std::size_t set : way) {
                const std::string statement = std::string("RESTORE ") +
                                              (sets[set].kind == 'L' ? "LOG" : "DATABASE") + " Ventas FROM " +
                                              disk + " WITH FILE = " + std::to_string(set + 1) +
                                              (set == way.back() ? ", RECOVERY" : ", NORECOVERY");
                told += statement + '\n';
                server().mustRun(statement);
            }
            ASSERT_EQ(server().stateOf("Ventas"), sets[last].state) << told;
        }
    }
}

TEST_F(BackupTest, AChainIsKeptInOrder)
{
    furnish();
    const std::string disk = server().disk("a.bak");
    server().mustRun("BACKUP DATABASE Ventas TO " + disk);
    for (int log = 0; log < 3; ++log) {
        server().mustRun("INSERT INTO Ventas..pedidos VALUES (" + std::to_string(10 + log) + ", 1, 1, NULL)");
        server().mustRun("BACKUP LOG Ventas TO " + disk);
    }
    server().mustRun("BACKUP DATABASE Ventas TO " + disk); // set 5
    server().mustRun("BACKUP DATABASE Ventas TO " + disk + " WITH DIFFERENTIAL");
    EXPECT_NE(run("RESTORE LOG Ventas FROM " + disk + " WITH FILE = 2").find("Msg 3117"), std::string::npos);
    server().mustRun("RESTORE DATABASE Ventas FROM " + disk + " WITH NORECOVERY");
    EXPECT_NE(run("USE Ventas").find("Msg 927"), std::string::npos);
    EXPECT_NE(run("RESTORE LOG Ventas FROM " + disk + " WITH FILE = 3, NORECOVERY").find("Msg 4305"),
              std::string::npos);
    EXPECT_NE(run("RESTORE DATABASE Ventas FROM " + disk + " WITH FILE = 6").find("Msg 3136"),
              std::string::npos);
    EXPECT_NE(run("RESTORE DATABASE Ventas FROM " + disk + " WITH FILE = 2").find("Msg 3135"),
              std::string::npos);
    EXPECT_NE(run("RESTORE DATABASE Ventas FROM " + disk + " WITH FILE = 7").find("Msg 3287"),
              std::string::npos);
    server().mustRun("RESTORE LOG Ventas FROM " + disk + " WITH FILE = 2, NORECOVERY");
    EXPECT_NE(run("RESTORE LOG Ventas FROM " + disk + " WITH FILE = 2, NORECOVERY").find("Msg 4326"),
              std::string::npos);
    server().mustRun("RESTORE DATABASE Ventas WITH RECOVERY");
    EXPECT_EQ(run("SELECT MAX(id) FROM Ventas..pedidos"), "\n10\n");
    // A restored database begins its backups anew.
    EXPECT_NE(run("BACKUP LOG Ventas TO " + disk).find("Msg 4214"), std::string::npos);
}

TEST_F(BackupTest, InitDropsWhatWasThereAndNothingElse)
{
    const std::string disk = server().disk("a.bak");
    server().mustRun("BACKUP DATABASE Ventas TO " + disk + " WITH NAME = 'uno'");
    server().mustRun("BACKUP DATABASE Ventas TO " + disk + " WITH NAME = 'dos', DESCRIPTION = 'algo'");
    const std::string two = run("RESTORE HEADERONLY FROM " + disk);
    EXPECT_NE(two.find("uno | NULL | 1 | NULL | 0 | 1 | 2 | sa | PRACTICE | Ventas"), std::string::npos)
        << two;
    EXPECT_NE(two.find("dos | algo | 1 | NULL | 0 | 2 | 2 | sa | PRACTICE | Ventas"), std::string::npos)
        << two;
    server().mustRun("BACKUP DATABASE Ventas TO " + disk + " WITH INIT, NAME = 'tres'");
    const std::string one = run("RESTORE HEADERONLY FROM " + disk);
    EXPECT_EQ(one.find("uno |"), std::string::npos);
    EXPECT_NE(one.find("tres | NULL | 1 | NULL | 0 | 1 |"), std::string::npos) << one;
    std::ofstream(server().path("carta.txt")) << "Querida Ana, esto no es una copia.";
    for (const char* with : {"", " WITH INIT"})
        EXPECT_NE(run("BACKUP DATABASE Ventas TO " + server().disk("carta.txt") + with).find("Msg 3241"),
                  std::string::npos);
    std::string text;
    std::getline(std::ifstream(server().path("carta.txt")), text);
    EXPECT_EQ(text, "Querida Ana, esto no es una copia.");
}

TEST_F(BackupTest, ListsHaveTheServersColumns)
{
    server().mustRun("BACKUP DATABASE Ventas TO " + server().disk("a.bak"));
    const std::string files =
        server().engine().describe("RESTORE FILELISTONLY FROM " + server().disk("a.bak"));
    EXPECT_EQ(
        files.substr(0, files.find('\n')),
        "LogicalName:nvarchar(128) | PhysicalName:nvarchar(260) | Type:char(1) | FileGroupName:nvarchar(128) "
        "| "
        "Size:numeric(20,0) | MaxSize:numeric(20,0) | FileId:bigint | CreateLSN:numeric(25,0) | "
        "DropLSN:numeric(25,0) | UniqueId:uniqueidentifier | ReadOnlyLSN:numeric(25,0) | "
        "ReadWriteLSN:numeric(25,0) | BackupSizeInBytes:bigint | SourceBlockSize:int | FileGroupId:int | "
        "LogGroupGUID:uniqueidentifier | DifferentialBaseLSN:numeric(25,0) | "
        "DifferentialBaseGUID:uniqueidentifier | IsReadOnly:bit | IsPresent:bit | "
        "TDEThumbprint:varbinary(32)");
    EXPECT_NE(files.find("\nVentas_log | "), std::string::npos) << files;
    const std::string headers =
        server().engine().describe("RESTORE HEADERONLY FROM " + server().disk("a.bak"));
    const std::string first = headers.substr(0, headers.find('\n'));
    EXPECT_EQ(std::count(first.begin(), first.end(), '|'), 51);
    EXPECT_TRUE(first.ends_with("CompressedBackupSize:bigint")) << first;
    EXPECT_NE(run("RESTORE LABELONLY FROM " + server().disk("a.bak")).find("Microsoft SQL Server | 4608"),
              std::string::npos);
}

TEST_F(BackupTest, RestoreRefusesWhatWouldHarmOthers)
{
    server().mustRun("CREATE DATABASE Copia; BACKUP DATABASE Ventas TO " + server().disk("a.bak"));
    const auto refuses = [](const std::string& batch, std::initializer_list<int> numbers) {
        const std::string answer = run(batch);
        for (const int number : numbers)
            EXPECT_NE(answer.find("Msg " + std::to_string(number) + ","), std::string::npos) << batch << '\n'
                                                                                             << answer;
    };
    const std::string from = " FROM " + server().disk("a.bak");
    const std::string here = "C:" + server().path("x").string();
    std::ofstream(server().path("carta.txt")) << "no";
    const std::string letter = "C:" + server().path("carta.txt").string();
    refuses("RESTORE DATABASE Copia" + from, {3154, 3013});
    refuses("RESTORE DATABASE Ventas" + from + " WITH MOVE 'nada' TO '" + here + "'", {3234, 3013});
    refuses("RESTORE LOG Ventas" + from, {3135, 3013});
    refuses("RESTORE DATABASE Ventas" + from + " WITH FILE = 9", {3287, 3013});
    refuses("RESTORE DATABASE Ventas" + from + " WITH MOVE 'Ventas' TO 'C:\\no\\hay.mdf'",
            {5133, 3156, 3119, 3013});
    const std::string overLetter =
        "RESTORE DATABASE Ventas" + from + " WITH MOVE 'Ventas' TO '" + letter + "'";
    for (const char* with : {"", ", REPLACE"})
        refuses(overLetter + with, {5170, 3156, 3119, 3013});
    EXPECT_TRUE(std::filesystem::exists(server().path("carta.txt")));
    refuses("RESTORE DATABASE Ventas" + from + " WITH MOVE 'Ventas' TO '" + here +
                "', MOVE 'Ventas_log' TO '" + here + "'",
            {3176, 3013});
    const auto other = server().engine().login("sa", "Secret1", "Ventas");
    refuses("RESTORE DATABASE Ventas" + from, {3101, 3013});
    Engine::run(*other, "USE master");
    server().mustRun("RESTORE DATABASE Copia" + from + " WITH REPLACE, MOVE 'Ventas' TO '" + here +
                     "1', MOVE 'Ventas_log' TO '" + here + "2'");
    EXPECT_EQ(run("SELECT RTRIM(name) AS name FROM Copia..sysfiles ORDER BY fileid"),
              "name\nVentas\nVentas_log\n");
}

TEST_F(BackupTest, WhoMayAndWhoMayNot)
{
    server().run("CREATE LOGIN ana WITH PASSWORD = 'Secret1'");
    server().mustRun("USE Ventas; CREATE USER ana FOR LOGIN ana; USE master");
    const auto ana = server().engine().login("ana", "Secret1");
    const std::string disk = server().disk("a.bak");
    const auto refused = [&ana](const std::string& batch, const std::string& message) {
        const std::string answer = Engine::run(*ana, batch);
        EXPECT_TRUE(answer.starts_with("Msg " + message)) << answer;
        EXPECT_NE(answer.find("Msg 3013"), std::string::npos) << answer;
    };
    refused("BACKUP DATABASE Ventas TO " + disk,
            "262, Level 14, State 1: BACKUP DATABASE permission denied in database 'Ventas'.");
    refused("BACKUP LOG Ventas TO " + disk,
            "262, Level 14, State 1: BACKUP LOG permission denied in database 'Ventas'.");
    server().mustRun("USE Ventas; GRANT BACKUP DATABASE TO ana; USE master");
    EXPECT_EQ(Engine::run(*ana, "BACKUP DATABASE Ventas TO " + disk).find("Msg "), std::string::npos);
    refused("BACKUP LOG Ventas TO " + disk, "262");
    server().mustRun("USE Ventas; EXEC sp_addrolemember 'db_backupoperator', 'ana'; USE master");
    EXPECT_EQ(Engine::run(*ana, "BACKUP LOG Ventas TO " + disk).find("Msg "), std::string::npos);
    refused("RESTORE DATABASE Ventas FROM " + disk, "3110");
    refused("RESTORE DATABASE Nueva FROM " + disk, "262");
    refused("RESTORE VERIFYONLY FROM " + disk, "262");
}

// Files ------------------------------------------------------------------------------------------

std::string contents(const std::filesystem::path& path)
{
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

void replaceContents(const std::filesystem::path& path, const std::string& bytes)
{
    std::ofstream(path, std::ios::binary) << bytes;
}

void putByte(const std::filesystem::path& path, std::size_t at, char byte)
{
    std::fstream(path, std::ios::binary | std::ios::in | std::ios::out)
        .seekp(static_cast<std::streamoff>(at))
        .put(byte);
}

void readAll(const std::filesystem::path& path)
{
    BackupReader file(path);
    (void)readSets(file, true, [](std::uint64_t, std::uint64_t) {});
}

TEST_F(BackupTest, AFlippedBitAnywhereIsRefused)
{
    server().mustRun("CREATE TABLE Ventas..t (a int); INSERT INTO Ventas..t VALUES (1)");
    const std::string disk = server().disk("a.bak");
    server().mustRun("BACKUP DATABASE Ventas TO " + disk + "; BACKUP LOG Ventas TO " + disk);
    server().mustRun("UPDATE Ventas..t SET a = 2");
    const std::string whole = contents(server().path("a.bak"));
    std::mt19937 random(7);
    for (std::size_t at = 0; at < whole.size() && !HasFailure(); ++at) {
        putByte(server().path("a.bak"), at, static_cast<char>(whole[at] ^ (1 << random() % 8)));
        EXPECT_THROW(readAll(server().path("a.bak")), DamagedBackup) << at;
        for (const char* statement : {"RESTORE VERIFYONLY", "RESTORE DATABASE Ventas"}) {
            if (at % 64 != 0)
                break;
            const std::string answer = server().run(statement + (" FROM " + disk));
            EXPECT_TRUE(answer.starts_with("Msg 3183, ")) << at << ": " << answer;
            EXPECT_NE(answer.find("Msg 3013, "), std::string::npos) << at << ": " << answer;
        }
        putByte(server().path("a.bak"), at, whole[at]);
    }
    EXPECT_EQ(run("SELECT a FROM Ventas..t"), "a\n2\n");
    server().mustRun("RESTORE DATABASE Ventas FROM " + disk);
    EXPECT_EQ(run("SELECT a FROM Ventas..t"), "a\n1\n");
}

TEST_F(BackupTest, WhatABackupThatDiedLeftBehindIsNoPartOfTheFile)
{
    const std::string disk = server().disk("a.bak");
    server().mustRun("BACKUP DATABASE Ventas TO " + disk);
    const std::string one = contents(server().path("a.bak"));
    server().mustRun("BACKUP DATABASE Ventas TO " + disk);
    const std::string two = contents(server().path("a.bak"));
    // Of the second set only the blocks were written, and not all of them.
    const std::string torn = one + two.substr(one.size(), (two.size() - one.size()) / 2);
    replaceContents(server().path("a.bak"), torn);
    EXPECT_EQ(run("RESTORE VERIFYONLY FROM " + disk), "-- The backup set on file 1 is valid.\n");
    server().mustRun("BACKUP DATABASE Ventas TO " + disk);
    server().mustRun("RESTORE DATABASE Ventas FROM " + disk + " WITH FILE = 2");
    // A file that was cut is not whole.
    replaceContents(server().path("a.bak"), two.substr(0, two.size() - 1));
    EXPECT_NE(run("RESTORE VERIFYONLY FROM " + disk).find("3183"), std::string::npos);
    replaceContents(server().path("a.bak"), "");
    EXPECT_NE(run("RESTORE VERIFYONLY FROM " + disk).find("3254"), std::string::npos);
}

/// Files can't grow beyond a size, as if the disk were full.
class FullDisk
{
public:
    explicit FullDisk(std::uintmax_t bytes) : before_(std::signal(SIGXFSZ, SIG_IGN))
    {
        getrlimit(RLIMIT_FSIZE, &limit_);
        rlimit full = limit_;
        full.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &full);
    }
    ~FullDisk()
    {
        setrlimit(RLIMIT_FSIZE, &limit_);
        (void)std::signal(SIGXFSZ, before_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

private:
    void (*before_)(int);
    rlimit limit_{};
};

TEST_F(BackupTest, AFullDiskIsToldAndLeavesTheSetsThatAreThere)
{
    server().mustRun("CREATE TABLE Ventas..t (a int, b char(200))");
    server().mustRun("INSERT INTO Ventas..t SELECT TOP 10000 1, 'x' FROM master..sysobjects a, "
                     "master..sysobjects b, master..sysobjects c");
    const std::string backup = "BACKUP DATABASE Ventas TO " + server().disk("a.bak");
    // The file is larger than the store, so that the limit is the file's alone.
    for (int set = 0; set < 12; ++set)
        server().mustRun(backup);
    const std::uintmax_t size = std::filesystem::file_size(server().path("a.bak"));
    {
        const FullDisk disk(size + 100'000);
        const std::string answer = run(backup);
        EXPECT_TRUE(answer.starts_with("Msg 3202, ")) << answer;
        EXPECT_NE(answer.find("112(There is not enough space on the disk.)\nMsg 3013, "), std::string::npos)
            << answer;
    }
    EXPECT_EQ(std::filesystem::file_size(server().path("a.bak")), size);
    EXPECT_EQ(run("RESTORE VERIFYONLY FROM " + server().disk("a.bak")),
              "-- The backup set on file 1 is valid.\n");
    server().mustRun(backup + "; RESTORE DATABASE Ventas FROM " + server().disk("a.bak") + " WITH FILE = 13");
}

TEST_F(BackupTest, AFullDiskInARestoreLeavesTheDatabaseThatWasThere)
{
    server().mustRun("CREATE TABLE Ventas..t (a int, b char(200))");
    server().mustRun("INSERT INTO Ventas..t SELECT TOP 30000 1, 'x' FROM master..sysobjects a, "
                     "master..sysobjects b, master..sysobjects c");
    const std::string disk = server().disk("a.bak");
    server().mustRun("BACKUP DATABASE Ventas TO " + disk + "; UPDATE Ventas..t SET a = 2 WHERE b = 'x'");
    const std::string before = server().stateOf("Ventas");
    for (const std::uintmax_t bytes : {100'000, 3'000'000}) {
        {
            const FullDisk full(bytes);
            const std::string answer = run("RESTORE DATABASE Ventas FROM " + disk);
            EXPECT_NE(answer.find("Msg "), std::string::npos) << answer;
            EXPECT_EQ(answer.find("successfully"), std::string::npos) << answer;
        }
        EXPECT_EQ(server().stateOf("Ventas"), before);
    }
    server().mustRun("RESTORE DATABASE Ventas FROM " + disk);
    EXPECT_EQ(run("SELECT COUNT(*) AS n, MAX(a) AS x FROM Ventas..t"), "n | x\n30000 | 1\n");
}

TEST_F(BackupTest, ACancelInTheMiddleLeavesFileAndDatabaseAsTheyWere)
{
    /// Cancels its session when the work is on its way.
    class Impatient : public Answer
    {
    public:
        explicit Impatient(Session& session) : session_(session) {}
        void message(const Message& message) override
        {
            Answer::message(message);
            if (message.number == 3211)
                session_.cancel();
        }

    private:
        Session& session_;
    };
    server().mustRun("CREATE TABLE Ventas..t (a int, b char(200))");
    server().mustRun("INSERT INTO Ventas..t SELECT TOP 20000 1, 'x' FROM master..sysobjects a, "
                     "master..sysobjects b, master..sysobjects c");
    const std::string disk = server().disk("a.bak");
    server().mustRun("BACKUP DATABASE Ventas TO " + disk + "; UPDATE Ventas..t SET a = 2");
    const std::string before = server().stateOf("Ventas");
    const auto size = std::filesystem::file_size(server().path("a.bak"));
    Session& session = server().engine().session();
    for (const std::string& statement : {"BACKUP DATABASE Ventas TO " + disk + " WITH STATS = 10",
                                         "BACKUP DATABASE Ventas TO " + disk + " WITH INIT, STATS = 10",
                                         "RESTORE DATABASE Ventas FROM " + disk + " WITH STATS = 10"}) {
        Impatient sink(session);
        session.executeBatch(statement, sink);
        EXPECT_EQ(sink.text.find("successfully"), std::string::npos) << statement << sink.text;
        EXPECT_EQ(std::filesystem::file_size(server().path("a.bak")), size) << statement;
        EXPECT_FALSE(std::filesystem::exists(server().path("a.bak.new"))) << statement;
        EXPECT_EQ(run("RESTORE VERIFYONLY FROM " + disk), "-- The backup set on file 1 is valid.\n");
        EXPECT_EQ(server().stateOf("Ventas"), before) << statement;
    }
    server().mustRun("RESTORE DATABASE Ventas FROM " + disk);
    EXPECT_EQ(run("SELECT MAX(a) AS x FROM Ventas..t"), "x\n1\n");
}

} // namespace
} // namespace practice::test
