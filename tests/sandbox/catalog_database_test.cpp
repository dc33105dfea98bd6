// Databases with their files, filegroups and options; devices.
#include "engine/catalog/database_files.h"
#include "engine_cases.h"

#include <filesystem>
#include <fstream>

namespace practice::test {

/// The cases with $DIR standing for a directory, in the server's form of paths.
void expectAnswersIn(const TemporaryDirectory& directory, std::initializer_list<Case> cases)
{
    const std::string path = windowsPath(directory.path());
    const auto replaced = [&](std::string text) {
        for (std::size_t at = 0; (at = text.find("$DIR", at)) != std::string::npos; at += path.size())
            text.replace(at, 4, path);
        return text;
    };
    Engine& engine = freshDatabase();
    for (const Case& each : cases) {
        const std::string statement = replaced(each.statement);
        const std::string answer = replaced(each.answer);
        expectAnswers(engine, {{statement.c_str(), answer.c_str()}});
    }
}

/// CREATE DATABASE with one file of its name, as the designer puts it together.
std::string createStatement(const std::string& name, const std::string& folder, const char* clauses)
{
    return "CREATE DATABASE " + name + "\r ON PRIMARY (NAME = " + name + ", FILENAME = '" + folder + "\\" +
           name + ".mdf'," + clauses + "\r";
}

TEST(Databases, OfTheDesignerHaveTheFilesThatItWrites)
{
    const TemporaryDirectory directory;
    const std::string path = windowsPath(directory.path());
    Engine& engine = freshDatabase();
    struct Form
    {
        const char* name;
        const char* clauses;  ///< as they stand behind the file's name
        const char* expected; ///< size, maxsize, growth, status; or the refusal
        std::uintmax_t megabytes = 0;
    };
    const Form forms[] = {
        {"a", " SIZE = 2MB, MAXSIZE =UNLIMITED,FILEGROWTH=10%)", "256 | -1 | 10 | 1048578", 2},
        {"b", " SIZE = 2MB, MAXSIZE =50MB,FILEGROWTH=10MB)", "256 | 6400 | 1280 | 2", 2},
        {"c", " SIZE = 10MB, MAXSIZE =UNLIMITED)", "1280 | -1 | 128 | 2", 10},
        {"d", " SIZE = 2MB, MAXSIZE =UNLIMITED,FILEGROWTH=0MB)", "256 | -1 | 0 | 2", 2},
        {"e", " SIZE = 1MB, MAXSIZE =UNLIMITED,FILEGROWTH=10%)",
         "Msg 1803, Level 16, State 1: The CREATE DATABASE statement failed. The primary file must be at "
         "least 2 MB to accommodate a copy of the model database."},
        {"e", " SIZE = 2MB, MAXSIZE =1MB,FILEGROWTH=3MB)",
         "Msg 5103, Level 16, State 1: MAXSIZE cannot be less than SIZE for file 'e'.\nMsg 1802, Level 16, "
         "State 4: CREATE DATABASE failed. Some file names listed could not be created. Check related "
         "errors."},
        {"e", " SIZE = 2MB, MAXSIZE =MB)", "Msg 102, Level 15, State 1: Incorrect syntax near 'MB'."},
        {"e", " SIZE = 2.5MB, MAXSIZE =UNLIMITED)",
         "Msg 102, Level 15, State 1: Incorrect syntax near '2.5'."},
        {"e", " SIZE = 512KB MAXSIZE =UNLIMITED)",
         "Msg 102, Level 15, State 1: Incorrect syntax near 'MAXSIZE'."},
        {"e", " SIZE = 2MB, MAXSIZE =UNLIMITED),\rPRIMARY (NAME = f)",
         "Msg 156, Level 15, State 1: Incorrect syntax near the keyword 'PRIMARY'."},
        {"e", " SIZE = 2MB, MAXSIZE =UNLIMITED)\r LOG ON  (NAME = l)\r LOG ON  (NAME = m)",
         "Msg 102, Level 15, State 1: Incorrect syntax near 'LOG'."},
    };
    for (const Form& form : forms) {
        const std::string name = form.name;
        const std::string statement = createStatement(name, path, form.clauses);
        SCOPED_TRACE(statement);
        std::string answer = engine.run(statement);
        const auto file = directory.path() / (name + ".mdf");
        EXPECT_EQ(std::filesystem::exists(file), answer.empty());
        if (answer.empty()) {
            EXPECT_EQ(std::filesystem::file_size(file), form.megabytes << 20);
            answer = engine.run("Select size, maxsize, growth, status from " + name +
                                "..sysfiles  where groupid <> 0");
            answer.erase(0, answer.find('\n') + 1);
        }
        EXPECT_EQ(answer, std::string(form.expected) + "\n");
    }
    expectAnswers(
        engine,
        {
            {"DROP DATABASE a, nada, master, b",
             "Msg 3701, Level 11, State 1: Cannot drop the database 'nada', because it does not exist "
             "or you do not have permission.\nMsg 3708, Level 16, State 1: Cannot drop the database "
             "'master' because it is a system database."},
            {"SELECT name FROM master..sysdatabases WHERE name IN ('a', 'b', 'c', 'd') ORDER BY name",
             "name\nc\nd"},
            {"DROP DATABASE c, d", ""},
        });
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

TEST(Databases, TakeOptions)
{
    const TemporaryDirectory directory;
    expectAnswersIn(
        directory,
        {
            {"alter database Ventas set RECOVERY BULK_LOGGED", ""},
            {"alter database Ventas set ANSI_NULL_DEFAULT ON", ""},
            {"alter database Ventas set AUTO_CREATE_STATISTICS OFF", ""},
            {"alter database Ventas set AUTO_UPDATE_STATISTICS OFF", ""},
            {"alter database Ventas set AUTO_CLOSE ON", ""},
            {"alter database Ventas set QUOTED_IDENTIFIER  ON", ""},
            {"alter database Ventas set TORN_PAGE_DETECTION OFF", ""},
            {"alter database Ventas set AUTO_SHRINK ON", ""},
            {"alter database Ventas set RECURSIVE_TRIGGERS ON", ""},
            {"select DATABASEPROPERTYEX ('Ventas','Recovery'), DATABASEPROPERTYEX "
             "('Ventas','IsAnsiNullDefault'), DATABASEPROPERTYEX ('Ventas','IsAutoCreateStatistics'), "
             "DATABASEPROPERTYEX ('Ventas','IsAutoUpdateStatistics'), DATABASEPROPERTYEX "
             "('Ventas','IsAutoClose'), DATABASEPROPERTYEX ('Ventas','IsQuotedIdentifiersEnabled'), "
             "DATABASEPROPERTYEX ('Ventas','IsTornPageDetectionEnabled'), DATABASEPROPERTYEX "
             "('Ventas','IsAutoShrink'), DATABASEPROPERTYEX ('Ventas','IsRecursiveTriggersEnabled')",
             "BULK_LOGGED | 1 | 0 | 0 | 1 | 1 | 0 | 1 | 1"},
            {"select DATABASEPROPERTYEX ('nada','Recovery'), DATABASEPROPERTYEX ('Ventas','nada'), "
             "DATABASEPROPERTYEX('Ventas','Collation'), DATABASEPROPERTYEX( 'Ventas' , 'status' )",
             "NULL | NULL | SQL_Latin1_General_CP1_CI_AS | ONLINE"},
            {"SELECT status, status2 FROM master..sysdatabases WHERE name = 'Ventas'",
             "status | status2\n1077936133 | 545406976"},
            {"EXEC sp_dboption 'Ventas'",
             "The following options are set:\nANSI null default\nautoclose\nautoshrink\nquoted "
             "identifier\nrecursive triggers\nselect into/bulkcopy"},
            {"EXEC sp_dboption 'Ventas', 'autoclose', 'false'", ""},
            {"EXEC sp_dboption 'Ventas', 'autoclose'", "OptionName | CurrentSetting\nautoclose | OFF"},
            {"EXEC sp_dboption 'Ventas', 'nada', 'true'",
             "Msg 15241, Level 16, State 1: Usage: sp_dboption [dbname [,optname [,'true' | 'false']]]"},
            {"EXEC sp_dboption 'Ventas', 'ansi', 'true'",
             "Msg 15242, Level 16, State 1: Database option 'ansi' is not unique."},
            {"ALTER DATABASE Ventas SET NADA ON",
             "Msg 155, Level 15, State 1: 'NADA' is not a recognized ALTER DATABASE option.\nMsg 5069, Level "
             "16, State 1: ALTER DATABASE statement failed."},
            {"ALTER DATABASE tempdb SET RECOVERY FULL",
             "Msg 5058, Level 16, State 1: Option 'RECOVERY' cannot be set in database 'tempdb'.\nMsg 5069, "
             "Level 16, State 1: ALTER DATABASE statement failed."},
            {"ALTER DATABASE master SET OFFLINE",
             "Msg 5058, Level 16, State 1: Option 'OFFLINE' cannot be set in database 'master'.\nMsg 5069, "
             "Level 16, State 1: ALTER DATABASE statement failed."},
            {"ALTER DATABASE Ventas SET READ_ONLY", ""},
            {"CREATE TABLE t (a int)", "Msg 3906, Level 16, State 1: Failed to update database \"Ventas\" "
                                       "because the database is read-only."},
            {"ALTER DATABASE Ventas SET READ_WRITE", ""},
            {"CREATE TABLE t (a int)", ""},
            {"USE master", "-- Changed database context to 'master'."},
            {"ALTER DATABASE Ventas SET OFFLINE", ""},
            {"USE Ventas",
             "Msg 942, Level 14, State 4: Database 'Ventas' cannot be opened because it is offline."},
            {"ALTER DATABASE Ventas SET ONLINE", ""},
            {"EXEC sp_renamedb 'Ventas', 'tempdb'",
             "Msg 15032, Level 16, State 1: The database 'tempdb' already exists."},
            {"EXEC sp_renamedb 'nada', 'x'", "Msg 15010, Level 16, State 1: The database 'nada' does not "
                                             "exist. Use sp_helpdb to show available databases."},
            {"EXEC sp_renamedb 'Ventas', 'Otra'", "-- The database name 'Otra' has been set."},
            {"USE Otra", "-- Changed database context to 'Otra'."},
            {"EXEC sp_renamedb 'Otra', 'Ventas'", "-- The database name 'Ventas' has been set."},
            {"SELECT db_name()", "Ventas"},
        });
}

TEST(Databases, HaveDevices)
{
    const TemporaryDirectory directory;
    expectAnswersIn(
        directory,
        {
            {"EXEC sp_addumpdevice 'disk', 'copia',   'C:\\tmp\\copia.bak'", "-- 'Disk' device added."},
            {"select * from master.dbo.sysdevices where name = 'copia'",
             "name | size | low | high | status | cntrltype | phyname\ncopia | 0 | 0 | 0 | 16 | 2 | "
             "C:\\tmp\\copia.bak"},
            {"EXEC sp_addumpdevice 'disk', 'copia',   'C:\\tmp\\copia.bak'",
             "Msg 15026, Level 16, State 1: Logical device 'copia' already exists."},
            {"EXEC sp_addumpdevice 'nada', 'copia2',   'C:\\tmp\\copia.bak'",
             "Msg 15044, Level 16, State 1: The type, 'nada', is an unknown backup device type. Use the type "
             "'disk', 'tape', or 'pipe'."},
            {"EXEC sp_dropdevice 'copia'", "-- Device dropped."},
            {"EXEC sp_dropdevice 'copia'", "Msg 15012, Level 16, State 1: The device 'copia' does not exist. "
                                           "Use sp_helpdevice to show available devices."},
            {"EXEC sp_dropdevice 'mastlog'",
             "Msg 15105, Level 16, State 1: The device 'mastlog' is no backup device and cannot be dropped."},
        });
}

TEST(Databases, HaveFilesOnDisk)
{
    const TemporaryDirectory directory;
    const std::string path = windowsPath(directory.path());
    Engine& engine = freshDatabase();
    EXPECT_EQ(engine.run("CREATE DATABASE Otra ON PRIMARY (NAME = o, FILENAME = '" + path +
                         "\\o.mdf', SIZE = 3MB) LOG ON (NAME = ol, FILENAME = '" + path +
                         "\\ol.ldf', SIZE = 1MB)"),
              "");
    EXPECT_EQ(std::filesystem::file_size(directory.path() / "o.mdf"), 3U << 20);
    EXPECT_EQ(std::filesystem::file_size(directory.path() / "ol.ldf"), 1U << 20);
    EXPECT_EQ(engine.run("ALTER DATABASE Otra MODIFY FILE (NAME = o, SIZE = 5MB)"), "");
    EXPECT_EQ(std::filesystem::file_size(directory.path() / "o.mdf"), 5U << 20);
    // A failure at the second file takes the first away again.
    std::ofstream(directory.path() / "x2.ndf") << "in the way";
    EXPECT_EQ(engine.run("CREATE DATABASE Tercera ON PRIMARY (NAME = x1, FILENAME = '" + path +
                         "\\x1.mdf'), (NAME = x2, FILENAME = '" + path + "\\x2.ndf')"),
              "Msg 5170, Level 16, State 1: Cannot create file '" + path +
                  "\\x2.ndf' because it already exists. Change the file path or the file name, and retry the "
                  "operation.\n"
                  "Msg 1802, Level 16, State 4: CREATE DATABASE failed. Some file names listed could not be "
                  "created. "
                  "Check related errors.\n");
    EXPECT_FALSE(std::filesystem::exists(directory.path() / "x1.mdf"));
    EXPECT_EQ(engine.run("SELECT name FROM master..sysdatabases WHERE name = 'Tercera'"), "name\n");
    EXPECT_EQ(engine.run("DROP DATABASE Otra"), "");
    EXPECT_FALSE(std::filesystem::exists(directory.path() / "o.mdf"));
    EXPECT_FALSE(std::filesystem::exists(directory.path() / "ol.ldf"));
}

TEST(Databases, TakeTheirFilesAwayWithThem)
{
    const TemporaryDirectory directory;
    const std::string path = windowsPath(directory.path());
    Engine& engine = freshDatabase();
    const auto expectFile = [&](const char* name, bool exists) {
        EXPECT_EQ(std::filesystem::exists(directory.path() / name), exists) << name;
    };
    engine.run("ALTER DATABASE Ventas ADD FILE (NAME = v3, FILENAME = '" + path +
               "\\v3.ndf') ALTER DATABASE "
               "Ventas ADD LOG FILE (NAME = v4, FILENAME = '" +
               path + "\\v4.ldf')");
    expectFile("v3.ndf", true);
    expectFile("v4.ldf", true);
    engine.run("ALTER DATABASE Ventas REMOVE FILE v3 ALTER DATABASE Ventas REMOVE FILE v4");
    expectFile("v3.ndf", false);
    expectFile("v4.ldf", false);
    // Nobody has an offline database's files open, and nobody deletes them.
    engine.run("CREATE DATABASE Otra ON (NAME = o, FILENAME = '" + path + "\\o.mdf')");
    EXPECT_EQ(engine.run("ALTER DATABASE Otra SET OFFLINE DROP DATABASE Otra"), "");
    expectFile("o.mdf", true);
    EXPECT_EQ(engine.run("CREATE DATABASE Otra ON (NAME = o, FILENAME = '" + path + "\\o.mdf')"),
              "Msg 5170, Level 16, State 1: Cannot create file '" + path +
                  "\\o.mdf' because it already exists. Change the file path or the file name, and retry the "
                  "operation.\nMsg 1802, Level 16, State 4: CREATE DATABASE failed. Some file names listed "
                  "could not be created. Check related errors.\n");
}

TEST(Databases, KeepTheirNamesWhileOthersUseThem)
{
    Engine& engine = freshDatabase();
    const std::string rename = " EXEC sp_renamedb 'Ventas','Otra'";
    {
        const auto other = engine.login("sa", "Secret1", "Ventas");
        EXPECT_EQ(engine.run(rename), "Msg 5030, Level 16, State 2: The database could not be exclusively "
                                      "locked to perform the operation.\n");
    }
    EXPECT_EQ(engine.run(rename), "-- The database name 'Otra' has been set.\n");
    EXPECT_EQ(engine.run("EXEC sp_renamedb 'Otra','Ventas'"),
              "-- The database name 'Ventas' has been set.\n");
}

} // namespace practice::test
