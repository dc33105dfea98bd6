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

TEST(Databases, AreCreatedWithTheirFiles)
{
    const TemporaryDirectory directory;
    expectAnswersIn(
        directory,
        {
            {"CREATE DATABASE Ventas", "Msg 1801, Level 16, State 3: Database 'Ventas' already exists. "
                                       "Choose a different database name."},
            {"CREATE DATABASE W ON PRIMARY (NAME = w1, FILENAME = 'C:\\no\\hay\\w1.mdf')",
             "Msg 5133, Level 16, State 1: Directory lookup for the file \"C:\\no\\hay\\w1.mdf\" failed with "
             "the operating system error 2(The system cannot find the file specified.).\nMsg 1802, Level 16, "
             "State 4: CREATE DATABASE failed. Some file names listed could not be created. Check related "
             "errors."},
            {"CREATE DATABASE W ON PRIMARY (NAME = w1, FILENAME = 'w1.mdf')",
             "Msg 5105, Level 16, State 2: A file activation error occurred. The physical file name 'w1.mdf' "
             "may be incorrect. Diagnose and correct additional errors, and retry the operation.\nMsg 1802, "
             "Level 16, State 4: CREATE DATABASE failed. Some file names listed could not be created. Check "
             "related errors."},
            {"CREATE DATABASE W ON PRIMARY (NAME = w1, FILENAME = '$DIR\\w1.mdf', SIZE = 512KB)",
             "Msg 1803, Level 16, State 1: The CREATE DATABASE statement failed. The primary file must be at "
             "least 1 MB to accommodate a copy of the model database."},
            {"CREATE DATABASE W ON PRIMARY (NAME = w1, FILENAME = '$DIR\\w1.mdf', SIZE = 5MB, MAXSIZE = 2MB)",
             "Msg 5103, Level 16, State 1: MAXSIZE cannot be less than SIZE for file 'w1'.\nMsg 1802, Level "
             "16, State 4: CREATE DATABASE failed. Some file names listed could not be created. Check "
             "related errors."},
            {"CREATE DATABASE W ON PRIMARY (NAME = w1, FILENAME = '$DIR\\w1.mdf') LOG ON (NAME = W1, "
             "FILENAME = '$DIR\\w2.ldf')",
             "Msg 1828, Level 16, State 3: The logical file name \"W1\" is already in use. Choose a "
             "different name."},
            {"CREATE DATABASE W COLLATE Nada", "Msg 448, Level 16, State 1: Invalid collation 'Nada'."},
            {"BEGIN TRAN CREATE DATABASE W", "Msg 226, Level 16, State 6: CREATE DATABASE statement not "
                                             "allowed within multi-statement transaction."},
            {"ROLLBACK", ""},
            {"CREATE DATABASE W\n ON PRIMARY (NAME = w1, FILENAME = '$DIR\\w1.mdf', SIZE = 1MB, MAXSIZE "
             "=UNLIMITED,FILEGROWTH=10%),\n FILEGROUP g2 (NAME = w2, FILENAME = '$DIR\\w2.ndf', SIZE = 10MB, "
             "MAXSIZE =50MB,FILEGROWTH=10MB)\n LOG ON  (NAME = wl, FILENAME = '$DIR\\wl.ldf', SIZE = 512KB "
             "MAXSIZE =UNLIMITED)",
             "Msg 102, Level 15, State 1: Incorrect syntax near 'MAXSIZE'."},
            {"CREATE DATABASE W\n ON PRIMARY (NAME = w1, FILENAME = '$DIR\\w1.mdf', SIZE = 1MB, MAXSIZE "
             "=UNLIMITED,FILEGROWTH=10%),\n FILEGROUP g2 (NAME = w2, FILENAME = '$DIR\\w2.ndf', SIZE = 10MB, "
             "MAXSIZE =50MB,FILEGROWTH=10MB)\n LOG ON  (NAME = wl, FILENAME = '$DIR\\wl.ldf', SIZE = 512KB, "
             "MAXSIZE =UNLIMITED)",
             ""},
            {"CREATE DATABASE X ON PRIMARY (NAME = w1, FILENAME = '$DIR\\w1.mdf')",
             "Msg 5104, Level 16, State 1: File '$DIR\\w1.mdf' already used.\nMsg 1802, Level 16, State 4: "
             "CREATE DATABASE failed. Some file names listed could not be created. Check related errors."},
            {"SELECT rtrim(name), fileid, groupid, size, maxsize, growth, status, rtrim(filename) FROM "
             "W..sysfiles",
             " | fileid | groupid | size | maxsize | growth | status | \nw1 | 1 | 1 | 128 | -1 | 10 | "
             "1048578 | $DIR\\w1.mdf\nwl | 2 | 0 | 64 | -1 | 10 | 1048642 | $DIR\\wl.ldf\nw2 | 3 | 2 | 1280 "
             "| 6400 | 1280 | 2 | $DIR\\w2.ndf"},
            {"EXEC sp_helpdb nada", "Msg 15010, Level 16, State 1: The database 'nada' does not exist. Use "
                                    "sp_helpdb to show available databases."},
            {"EXEC W..sp_helpfilegroup", "groupname | groupid | filecount\nPRIMARY | 1 | 1\ng2 | 2 | 1"},
            {"USE W", "-- Changed database context to 'W'."},
            {"DROP DATABASE W",
             "Msg 3702, Level 16, State 4: Cannot drop database \"W\" because it is currently in use."},
            {"USE master", "-- Changed database context to 'master'."},
            {"DROP DATABASE W", ""},
            {"DROP DATABASE W", "Msg 3701, Level 11, State 1: Cannot drop the database 'W', because it does "
                                "not exist or you do not have permission."},
            {"DROP DATABASE model", "Msg 3708, Level 16, State 1: Cannot drop the database 'model' because "
                                    "it is a system database."},
        });
}

TEST(Databases, AreAltered)
{
    const TemporaryDirectory directory;
    expectAnswersIn(
        directory,
        {
            {"ALTER DATABASE nada ADD FILEGROUP x",
             "Msg 5011, Level 14, State 5: User does not have permission to alter database 'nada', the "
             "database does not exist, or the database is not in a state that allows access checks.\nMsg "
             "5069, Level 16, State 1: ALTER DATABASE statement failed."},
            {"ALTER DATABASE Ventas\n ADD FILEGROUP g2", ""},
            {"ALTER DATABASE Ventas ADD FILEGROUP G2",
             "Msg 5035, Level 16, State 1: Filegroup 'G2' already exists in this database. Specify a "
             "different name or remove the conflicting filegroup if it is empty.\nMsg 5069, Level 16, State "
             "1: ALTER DATABASE statement failed."},
            {"ALTER DATABASE Ventas\n ADD FILE  (NAME = v2, FILENAME = '$DIR\\v2.ndf', SIZE = 10MB, MAXSIZE "
             "=50MB,FILEGROWTH=10%) TO FILEGROUP g2",
             ""},
            {"ALTER DATABASE Ventas ADD FILE (NAME = V2, FILENAME = '$DIR\\v3.ndf')",
             "Msg 1828, Level 16, State 3: The logical file name \"V2\" is already in use. Choose a "
             "different name.\nMsg 5069, Level 16, State 1: ALTER DATABASE statement failed."},
            {"ALTER DATABASE Ventas ADD FILE (NAME = v3, FILENAME = '$DIR\\v3.ndf') TO FILEGROUP nada",
             "Msg 5043, Level 16, State 1: The filegroup 'nada' cannot be found in sysfilegroups.\nMsg 5069, "
             "Level 16, State 1: ALTER DATABASE statement failed."},
            {"CREATE TABLE t (a int) ON g2", ""},
            {"SELECT s.groupname FROM Ventas..sysfilegroups s, Ventas..sysindexes i WHERE i.id = "
             "object_id('t') AND i.indid < 2 AND i.groupid = s.groupid",
             "groupname\ng2"},
            {"select  g.groupname,g.status,  g.groupid, 'filecount' =         (select count(*) from "
             "Ventas..sysfiles f             Where f.groupid = g.groupid                 and (f.status & "
             "0x40 <> 0x40))     from Ventas..sysfilegroups g order by groupid",
             "groupname | status | groupid | filecount\nPRIMARY | 16 | 1 | 1\ng2 | 0 | 2 | 1"},
            {"ALTER DATABASE Ventas\n REMOVE FILE v2",
             "Msg 5042, Level 16, State 1: The file 'v2' cannot be removed because it is not empty.\nMsg "
             "5069, Level 16, State 1: ALTER DATABASE statement failed."},
            {"ALTER DATABASE Ventas\n REMOVE FILEGROUP g2",
             "Msg 5042, Level 16, State 1: The filegroup 'g2' cannot be removed because it is not "
             "empty.\nMsg 5069, Level 16, State 1: ALTER DATABASE statement failed."},
            {"ALTER DATABASE Ventas REMOVE FILE Ventas",
             "Msg 5020, Level 16, State 1: The primary data or log file cannot be removed from a "
             "database.\nMsg 5069, Level 16, State 1: ALTER DATABASE statement failed."},
            {"ALTER DATABASE Ventas REMOVE FILE nada",
             "Msg 5009, Level 16, State 9: One or more files listed in the statement could not be found or "
             "could not be initialized.\nMsg 5069, Level 16, State 1: ALTER DATABASE statement failed."},
            {"ALTER DATABASE Ventas\n MODIFY FILE  (NAME = v2, SIZE = 5MB)",
             "Msg 5039, Level 16, State 1: MODIFY FILE failed. Specified size is less than or equal to "
             "current size.\nMsg 5069, Level 16, State 1: ALTER DATABASE statement failed."},
            {"ALTER DATABASE Ventas\n MODIFY FILE  (NAME = v2, SIZE = 60MB)",
             "Msg 5040, Level 16, State 1: MODIFY FILE failed. Size is greater than MAXSIZE.\nMsg 5069, "
             "Level 16, State 1: ALTER DATABASE statement failed."},
            {"ALTER DATABASE Ventas\n MODIFY FILE  (NAME = v2, SIZE = 20MB)", ""},
            {"ALTER DATABASE Ventas\n MODIFY FILE  (NAME = v2,FILEGROWTH=10MB)", ""},
            {"ALTER DATABASE Ventas\n MODIFY FILE  (NAME = v2, MAXSIZE =UNLIMITED)", ""},
            {"ALTER DATABASE Ventas\n MODIFY FILE  (NAME = v2,)",
             "Msg 102, Level 15, State 1: Incorrect syntax near ')'."},
            {"ALTER DATABASE Ventas MODIFY FILE (NAME = nada, SIZE = 5MB)",
             "Msg 5041, Level 16, State 1: MODIFY FILE failed. File 'nada' does not exist.\nMsg 5069, Level "
             "16, State 1: ALTER DATABASE statement failed."},
            {"ALTER DATABASE Ventas MODIFY FILE (NAME = v2, NEWNAME = segundo)", ""},
            {"ALTER DATABASE Ventas MODIFY FILEGROUP [PRIMARY] READONLY",
             "Msg 5047, Level 16, State 1: Cannot change the READONLY property of the filegroup "
             "'PRIMARY'.\nMsg 5069, Level 16, State 1: ALTER DATABASE statement failed."},
            {"ALTER DATABASE Ventas MODIFY FILEGROUP g2 DEFAULT", ""},
            {"CREATE TABLE u (a int) SELECT groupid FROM sysindexes WHERE id = object_id('u')", "groupid\n2"},
            {"SELECT rtrim(name), groupid, size, maxsize, growth, status FROM sysfiles ORDER BY fileid",
             " | groupid | size | maxsize | growth | status\nVentas | 1 | 128 | -1 | 10 | "
             "1048578\nVentas_log | 0 | 128 | -1 | 10 | 1048642\nsegundo | 2 | 2560 | -1 | 1280 | 2"},
            {"DROP TABLE t DROP TABLE u", ""},
            {"ALTER DATABASE Ventas MODIFY FILEGROUP [PRIMARY] DEFAULT", ""},
            {"ALTER DATABASE Ventas\n REMOVE FILE segundo", ""},
            {"ALTER DATABASE Ventas\n REMOVE FILEGROUP g2", ""},
            {"SELECT groupname, status FROM sysfilegroups", "groupname | status\nPRIMARY | 16"},
        });
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
        {"a", " SIZE = 1MB, MAXSIZE =UNLIMITED,FILEGROWTH=10%)", "128 | -1 | 10 | 1048578", 1},
        {"b", " SIZE = 1MB, MAXSIZE =50MB,FILEGROWTH=10MB)", "128 | 6400 | 1280 | 2", 1},
        {"c", " SIZE = 10MB, MAXSIZE =UNLIMITED)", "1280 | -1 | 10 | 1048578", 10},
        {"d", " SIZE = 1MB, MAXSIZE =UNLIMITED,FILEGROWTH=0MB)", "128 | -1 | 0 | 2", 1},
        {"e", " SIZE = 0MB, MAXSIZE =UNLIMITED)",
         "Msg 1803, Level 16, State 1: The CREATE DATABASE statement failed. The primary file must be at "
         "least "
         "1 MB to accommodate a copy of the model database."},
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
        const std::string statement = "CREATE DATABASE " + name + "\r ON PRIMARY (NAME = " + name +
                                      ", FILENAME = '" + path + "\\" + name + ".mdf'," + form.clauses + "\r";
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
            {"ALTER DATABASE Ventas MODIFY NAME = master",
             "Msg 1801, Level 16, State 3: Database 'master' already exists. Choose a different database "
             "name.\nMsg 5069, Level 16, State 1: ALTER DATABASE statement failed."},
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

} // namespace practice::test
