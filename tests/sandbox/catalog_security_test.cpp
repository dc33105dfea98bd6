// Logins, users, roles and permissions, and what they keep a user from.
#include "engine_cases.h"

namespace practice::test {

/// Runs a batch as somebody else.
std::string runAs(Engine& engine, const std::string& login, const std::string& password,
                  const std::string& batch)
{
    const auto session = engine.login(login, password, "Ventas");
    return Engine::run(*session, batch);
}

TEST(Security, RefusesWhatAUserMayNotDo)
{
    Engine& engine = freshDatabase();
    engine.run(
        "EXEC sp_addlogin 'ana', 'Clave-1' EXEC sp_grantdbaccess 'ana' EXEC sp_addlogin 'eva', 'Clave-2'");
    engine.run("CREATE TABLE ajena (a int)");
    const auto session = engine.login("ana", "Clave-1", "Ventas");
    const auto expect = [&](const char* batch, const char* answer) {
        SCOPED_TRACE(batch);
        EXPECT_EQ(Engine::run(*session, batch), answer);
    };
    expect("CREATE TABLE t (a int)",
           "Msg 262, Level 14, State 1: CREATE TABLE permission denied in database 'Ventas'.\n");
    expect("CREATE DATABASE x",
           "Msg 262, Level 14, State 1: CREATE DATABASE permission denied in database 'master'.\n");
    expect("DROP TABLE ajena",
           "Msg 3701, Level 14, State 20: Cannot drop the table 'ajena', because it does not exist "
           "or you do not have permission.\n");
    expect("ALTER TABLE ajena ADD b int",
           "Msg 1088, Level 16, State 13: Cannot find the object \"ajena\" because it "
           "does not exist or you do not have permissions.\n");
    expect("GRANT SELECT ON ajena TO public",
           "Msg 4613, Level 16, State 1: Grantor does not have GRANT permission.\n");
    expect("EXEC sp_addlogin 'otro'",
           "Msg 15247, Level 16, State 1: User does not have permission to perform this action.\n");
    expect("EXEC sp_addrole 'otro'",
           "Msg 15247, Level 16, State 1: User does not have permission to perform this action.\n");
    expect("EXEC sp_helplogins",
           "Msg 15247, Level 16, State 1: User does not have permission to perform this action.\n");
    engine.run("GRANT CREATE TABLE TO ana");
    expect("CREATE TABLE t (a int) DROP TABLE t", "");
    engine.run("EXEC sp_addrolemember 'db_owner', 'ana'");
    expect("ALTER TABLE ajena ADD b int DROP TABLE ajena EXEC sp_addrole 'otro' EXEC sp_droprole 'otro'",
           "-- New role added.\n-- Role dropped.\n");
    expect("EXEC sp_password 'Clave-1', 'Clave-3'", "-- Password changed.\n");
    EXPECT_THROW((void)engine.login("ana", "Clave-1", "Ventas"), LoginRefused);
    EXPECT_EQ(runAs(engine, "ana", "Clave-3", "SELECT user_name() AS u"), "u\nana\n");
    EXPECT_THROW((void)engine.login("eva", "Clave-2", "Ventas"), LoginRefused);
    EXPECT_EQ(Engine::run(*engine.login("eva", "Clave-2"), "USE Ventas"),
              "Msg 916, Level 14, State 1: The server principal \"eva\" is not able to access the database "
              "\"Ventas\" "
              "under the current security context.\n");
    EXPECT_THROW((void)engine.login("nadie", ""), LoginRefused);
    engine.run("ALTER LOGIN eva DISABLE");
    EXPECT_THROW((void)engine.login("eva", "Clave-2"), LoginRefused);
    engine.run("EXEC sp_revokedbaccess 'ana'");
}

TEST(Security, KeepsWhoIsConnected)
{
    Engine& engine = freshDatabase();
    engine.run("EXEC sp_addlogin 'luz', 'Clave-1' EXEC sp_grantdbaccess 'luz'");
    {
        const auto session = engine.login("luz", "Clave-1", "Ventas");
        EXPECT_EQ(engine.run("SELECT rtrim(loginame) AS l, db_name(dbid) AS d, rtrim(status) AS s, "
                             "rtrim(program_name) AS p "
                             "FROM master..sysprocesses ORDER BY spid DESC"),
                  "l | d | s | p\nluz | Ventas | sleeping | tests\nsa | Ventas | runnable | tests\n");
        EXPECT_EQ(
            engine.run("USE master DROP DATABASE Ventas"),
            "-- Changed database context to 'master'.\n"
            "Msg 3702, Level 16, State 4: Cannot drop database \"Ventas\" because it is currently in use.\n");
        EXPECT_EQ(engine.run("EXEC sp_renamedb 'Ventas', 'Otra'"),
                  "Msg 5030, Level 16, State 2: The database could not be exclusively locked to perform the "
                  "operation.\n");
        EXPECT_EQ(
            engine.run("ALTER DATABASE Ventas SET SINGLE_USER"),
            "Msg 5070, Level 16, State 2: Database state cannot be changed while other users are using the "
            "database 'Ventas'\nMsg 5069, Level 16, State 1: ALTER DATABASE statement failed.\n");
        EXPECT_EQ(
            engine.run("USE Ventas EXEC sp_revokedbaccess 'luz' EXEC sp_droplogin 'luz'"),
            "-- Changed database context to 'Ventas'.\n-- User has been dropped from current database.\n"
            "Msg 15434, Level 16, State 1: Could not drop login 'luz' as the user is currently logged in.\n");
    }
    EXPECT_EQ(engine.run("EXEC sp_droplogin 'luz'"), "-- Login dropped.\n");
}

TEST(Security, ChecksWhatIsCalledOverTheWire)
{
    Engine& engine = freshDatabase();
    engine.run("EXEC sp_addlogin 'wil', 'Clave-1' EXEC sp_grantdbaccess 'wil' CREATE TABLE t (a int) "
               "INSERT t VALUES (1) CREATE DATABASE Cerrada");
    engine.run("CREATE PROCEDURE p AS SELECT a FROM t");
    const auto session = engine.login("wil", "Clave-1", "Ventas");
    const auto call = [&session](const char* name, const std::vector<std::string>& texts) {
        std::vector<Parameter> parameters;
        for (const std::string& text : texts) {
            Parameter parameter;
            parameter.type = SqlType{TypeId::NVarChar, 4000};
            parameter.value = Value{text, {}};
            parameters.push_back(std::move(parameter));
        }
        Answer answer;
        session->executeProcedure(name, std::move(parameters), answer);
        return answer.text.substr(0, answer.text.find(','));
    };
    EXPECT_EQ(call("p", {}), "Msg 229");
    EXPECT_EQ(call("sp_executesql", {"SELECT a FROM t"}), "Msg 229");
    EXPECT_EQ(call("sp_executesql", {"DELETE t"}), "Msg 229");
    EXPECT_EQ(call("Cerrada..sp_helpuser", {}), "Msg 916");
    EXPECT_EQ(call("Cerrada..sp_executesql", {"SELECT 1"}), "Msg 916");
    EXPECT_EQ(call("tempdb..sp_executesql", {"SELECT db_name() AS d"}), "d\ntempdb\n");
    engine.run("GRANT EXECUTE ON p TO wil");
    EXPECT_EQ(call("p", {}), "a\n1\n");
    engine.run("USE master DROP DATABASE Cerrada");
}

/// Grants of the statements, each tried by the user whom it is for.
class StatementRights : public ::testing::Test
{
protected:
    StatementRights() : engine_(freshDatabase())
    {
        engine_.run("EXEC sp_addlogin 'rut', 'Clave-1' EXEC sp_grantdbaccess 'rut' EXEC sp_addrole 'taller' "
                    "EXEC sp_addrole 'casa' EXEC sp_addrolemember 'taller', 'rut' EXEC sp_addrolemember "
                    "'casa', 'taller' USE master EXEC sp_grantdbaccess 'rut' USE Ventas");
    }

    ~StatementRights() override
    {
        engine_.run("USE master EXEC sp_revokedbaccess 'rut' DROP DATABASE Ventas EXEC sp_droplogin 'rut'");
    }

    void expect(const std::string& change, const std::string& statement, bool allowed,
                const std::string& right, const std::string& database = "Ventas")
    {
        SCOPED_TRACE(change + ": " + statement);
        EXPECT_EQ(engine_.run(change), "");
        const std::string refusal =
            "Msg 262, Level 14, State 1: " + right + " permission denied in database '" + database + "'.\n";
        EXPECT_EQ(Engine::run(*engine_.login("rut", "Clave-1", "Ventas"), statement), allowed ? "" : refusal);
    }

    Engine& engine_;
};

TEST_F(StatementRights, AreHeldOnlyWhenGranted)
{
    const std::pair<const char*, const char*> forms[] = {
        {"CREATE TABLE", "CREATE TABLE a (n int) IF object_id('a') > 0 DROP TABLE a"},
        {"CREATE VIEW", "CREATE VIEW v AS SELECT 1 AS n"},
        {"CREATE PROCEDURE", "CREATE PROCEDURE p AS SELECT 1"},
    };
    for (const auto& [right, statement] : forms) {
        const std::string name = right;
        expect("", statement, false, name);
        expect("GRANT " + name + " TO rut", statement, true, name);
        expect("DENY " + name + " TO rut", statement, false, name);
        expect("REVOKE " + name + " TO rut", statement, false, name);
    }
    expect("", "CREATE DATABASE deRut", false, "CREATE DATABASE", "master");
    engine_.run("USE master GRANT CREATE DATABASE TO rut USE Ventas");
    expect("", "CREATE DATABASE deRut DROP DATABASE deRut", true, "CREATE DATABASE", "master");
    engine_.run("USE master DENY  CREATE DATABASE TO rut USE Ventas");
    expect("", "CREATE DATABASE deRut", false, "CREATE DATABASE", "master");
}

TEST_F(StatementRights, GoByRoleAndDenialBeatsThem)
{
    const char* table = "CREATE TABLE a (n int) IF object_id('a') > 0 DROP TABLE a";
    const char* right = "CREATE TABLE";
    expect("GRANT CREATE TABLE TO casa", table, true, right);
    expect("DENY CREATE TABLE TO taller", table, false, right);
    expect("GRANT CREATE TABLE TO rut", table, false, right);
    expect("REVOKE CREATE TABLE TO taller", table, true, right);
    expect("DENY CREATE TABLE TO public", table, false, right);
    engine_.run("EXEC sp_addrolemember 'db_ddladmin', 'rut'");
    expect("", table, false, right);
    expect("REVOKE CREATE TABLE TO public REVOKE CREATE TABLE TO rut REVOKE CREATE TABLE TO casa", table,
           true, right);
}

TEST_F(StatementRights, OfObjectsGoByRolesOfRolesToo)
{
    const auto select = [this](const char* change) {
        EXPECT_EQ(engine_.run(change), "");
        return Engine::run(*engine_.login("rut", "Clave-1", "Ventas"), "SELECT n FROM ajena");
    };
    const char* refusal =
        "Msg 229, Level 14, State 5: The SELECT permission was denied on the object 'ajena', "
        "database 'Ventas', schema 'dbo'.\n";
    EXPECT_EQ(select("CREATE TABLE ajena (n int)"), refusal);
    EXPECT_EQ(select("GRANT SELECT ON ajena TO casa"), "n\n");
    EXPECT_EQ(select("GRANT SELECT ON ajena TO rut DENY SELECT ON ajena TO casa"), refusal);
}

} // namespace practice::test
