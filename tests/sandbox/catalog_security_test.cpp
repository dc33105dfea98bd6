// Logins, users, roles and permissions, and what they keep a user from.
#include "engine_cases.h"

namespace practice::test {

TEST(Security, AddLoginsUsersAndRoles)
{
    expectAnswers(
        freshDatabase(),
        {
            {"EXEC sp_addlogin 'ana','uno','nada'", "Msg 15010, Level 16, State 1: The database 'nada' does "
                                                    "not exist. Use sp_helpdb to show available databases."},
            {"EXEC sp_addlogin 'ana','uno','Ventas'", "-- New login created."},
            {"EXEC sp_addlogin 'ana','uno'", "Msg 15025, Level 16, State 1: The login 'ana' already exists."},
            {"EXEC sp_addlogin 'a\\b','uno'", "Msg 15006, Level 16, State 1: 'a\\b' is not a valid name "
                                              "because it contains invalid characters."},
            {"EXEC sp_addlogin", "Msg 201, Level 16, State 4: Procedure or function 'sp_addlogin' expects "
                                 "parameter '@loginame', which was not supplied."},
            {"EXEC sp_addlogin @loginame = 'x', @nada = 1",
             "Msg 8145, Level 16, State 2: @nada is not a parameter for procedure sp_addlogin."},
            {"EXEC sp_addlogin 'a', 'b', 'c', 'd', 'e', 'f', 'g'",
             "Msg 8144, Level 16, State 2: Procedure or function sp_addlogin has too many arguments "
             "specified."},
            {"exec sp_grantdbaccess 'nadie','nadie'",
             "Msg 15007, Level 16, State 1: The login 'nadie' does not exist."},
            {"exec sp_grantdbaccess 'ana','ana'", "-- Granted database access to 'ana'."},
            {"exec sp_grantdbaccess 'ana','otra'",
             "Msg 15063, Level 16, State 1: The login already has an account under a different user name."},
            {"exec sp_grantdbaccess 'sa','ana'",
             "Msg 15023, Level 16, State 1: User or role 'ana' already exists in the current database."},
            {" EXEC sp_addrole 'r'", "-- New role added."},
            {" EXEC sp_addrole 'ANA'",
             "Msg 15023, Level 16, State 1: User or role 'ANA' already exists in the current database."},
            {" EXEC sp_addrolemember  'nada','ana'",
             "Msg 15014, Level 16, State 1: The role 'nada' does not exist in the current database."},
            {" EXEC sp_addrolemember  'r','nadie'",
             "Msg 15410, Level 11, State 1: User or role 'nadie' does not exist in this database."},
            {" EXEC sp_addrolemember  'public','ana'",
             "Msg 15081, Level 11, State 1: Membership of the public role cannot be changed."},
            {" EXEC sp_addrolemember  'r','r'",
             "Msg 15413, Level 11, State 1: Cannot make a role a member of itself."},
            {" EXEC sp_addrolemember  'r','dbo'",
             "Msg 15405, Level 11, State 1: Cannot use the reserved user or role name 'dbo'."},
            {" EXEC sp_addrolemember  'r','ana'", "-- 'ana' added to role 'r'."},
            {" EXEC sp_addrolemember  'db_datareader','r'", "-- 'r' added to role 'db_datareader'."},
            {" EXEC sp_addrolemember  'r','db_datareader'",
             "Msg 15413, Level 11, State 1: Cannot make a role a member of itself."},
            {"EXEC sp_addsrvrolemember 'ana','nada'",
             "Msg 15402, Level 11, State 1: 'nada' is not a fixed server role."},
            {"EXEC sp_addsrvrolemember 'ana','dbcreator'", "-- 'ana' added to role 'dbcreator'."},
            {"SELECT usu.name, grupo.name FROM sysmembers m, sysusers usu, sysusers grupo WHERE usu.uid = "
             "m.memberuid AND grupo.uid = m.groupuid ORDER BY 1",
             "name | name\nana | r\ndbo | db_owner\nr | db_datareader"},
            {"select loginname, dbname, sysadmin, dbcreator from master..syslogins where loginname = 'ana'",
             "loginname | dbname | sysadmin | dbcreator\nana | Ventas | 0 | 1"},
            {" SELECT usu.Name as nombre,lo.loginname as login         From                    "
             "Ventas..sysusers usu ,master.dbo.syslogins lo         Where usu.sid = lo.sid and               "
             "     (usu.islogin = 1 and usu.isaliased = 0 and usu.hasdbaccess = 1)          and "
             "usu.Name='ana'",
             "nombre | login\nana | ana"},
            {"EXEC sp_helpuser 'nadie'", "Msg 15198, Level 16, State 1: The name supplied (nadie) is not a "
                                         "user, role, or aliased login."},
            {"EXEC sp_helprole 'nada'", "Msg 15409, Level 11, State 1: 'nada' is not a role."},
            {"EXEC sp_helpsrvrole 'dbcreator'", "ServerRole | Description\ndbcreator | Database Creators"},
            {"sp_helplogins 'nadie'", "Msg 15007, Level 16, State 1: The login 'nadie' does not exist."},
            {" EXEC sp_droplogin 'ana'",
             "Msg 15175, Level 16, State 1: Login 'ana' is aliased or mapped to a user in one or more "
             "database(s). Drop the user or alias before dropping the login."},
            {"EXEC sp_droprole 'r'", "Msg 15144, Level 16, State 1: The role has members. It must be empty "
                                     "before it can be dropped."},
            {" EXEC sp_droprolemember   'r','ana'", "-- 'ana' dropped from role 'r'."},
            {"EXEC sp_droprole 'r'", "-- Role dropped."},
            {"EXEC sp_droprole 'db_owner'",
             "Msg 15405, Level 11, State 1: Cannot use the reserved user or role name 'db_owner'."},
            {"exec sp_revokedbaccess  'dbo'",
             "Msg 15181, Level 16, State 1: Cannot drop the database owner."},
            {"exec sp_revokedbaccess  'nadie'",
             "Msg 15008, Level 16, State 1: User 'nadie' does not exist in the current database."},
            {"exec sp_revokedbaccess  'ana'", "-- User has been dropped from current database."},
            {" EXEC sp_droplogin 'ana'", "-- Login dropped."},
            {" EXEC sp_droplogin 'ana'", "Msg 15007, Level 16, State 1: The login 'ana' does not exist."},
            {" EXEC sp_droplogin 'sa'",
             "Msg 15405, Level 11, State 1: Cannot use the reserved user or role name 'sa'."},
        });
}

TEST(Security, ChangeLogins)
{
    expectAnswers(
        freshDatabase(),
        {
            {"EXEC sp_addlogin 'ana','uno'", "-- New login created."},
            {" EXEC sp_password '','dos','ana'", "-- Password changed."},
            {" EXEC sp_password 'mal','tres','ana'", "Msg 15211, Level 16, State 1: Old (current) password "
                                                     "incorrect for user. The password was not changed."},
            {" EXEC sp_password 'dos','tres','ana'", "-- Password changed."},
            {" EXEC sp_password NULL,'tres','nadie'",
             "Msg 15007, Level 16, State 1: The login 'nadie' does not exist."},
            {" EXEC sp_defaultdb  'ana','nada'", "Msg 15010, Level 16, State 1: The database 'nada' does not "
                                                 "exist. Use sp_helpdb to show available databases."},
            {" EXEC sp_defaultdb  'ana','Ventas'", "-- Default database changed."},
            {"EXEC sp_defaultlanguage 'ana', 'Español'", "-- ana's default language is changed to Español."},
            {"select name, dbname, language, password from master.dbo.syslogins where name = 'ana'",
             "name | dbname | language | password\nana | Ventas | Español | NULL"},
            {"BEGIN TRAN EXEC sp_addlogin 'luis'", "Msg 15002, Level 16, State 1: The procedure "
                                                   "'sp_addlogin' cannot be executed within a transaction."},
            {"ROLLBACK", ""},
            {"CREATE LOGIN eva WITH PASSWORD = 'tres', DEFAULT_DATABASE = Ventas", ""},
            {"CREATE USER eva FOR LOGIN eva", ""},
            {"CREATE ROLE rr", ""},
            {"ALTER ROLE rr ADD MEMBER eva", ""},
            {"DROP ROLE rr", "Msg 15144, Level 16, State 1: The role has members. It must be empty before it "
                             "can be dropped."},
            {"DROP USER eva DROP ROLE rr", ""},
            {"ALTER LOGIN eva DISABLE", ""},
            {"DROP LOGIN eva", ""},
            {"DROP LOGIN eva", "Msg 15151, Level 16, State 1: Cannot drop the login 'eva', because it does "
                               "not exist or you do not have permission."},
            {"DROP LOGIN ana", ""},
        });
}

TEST(Security, ProceduresThatFailLeaveNothingBehind)
{
    const char* refused =
        "Msg 15014, Level 16, State 1: The role 'nada' does not exist in the current database.";
    expectAnswers(freshDatabase(),
                  {
                      {"CREATE TABLE t (a int)", ""},
                      {"EXEC sp_addlogin 'eva', 'Clave-1'", "-- New login created."},
                      {"EXEC sp_adduser 'eva', 'eva', 'nada'", refused},
                      {"BEGIN TRAN SAVE TRAN antes EXEC sp_adduser 'eva', 'eva', 'nada'", refused},
                      {"SELECT @@TRANCOUNT, count(*) FROM sysusers WHERE name = 'eva'", "1 | 0"},
                      {"INSERT t VALUES (1) EXEC sp_adduser 'eva', 'eva', 'nada'", refused},
                      {"SELECT (SELECT count(*) FROM t), count(*) FROM sysusers WHERE name = 'eva'", "1 | 0"},
                      {"ROLLBACK TRAN antes SELECT @@TRANCOUNT, count(*) FROM t", "1 | 0"},
                      {"COMMIT", ""},
                      {"EXEC sp_droplogin 'eva'", "-- Login dropped."},
                  });
}

TEST(Security, RecordPermissions)
{
    expectAnswers(
        freshDatabase(),
        {
            {"EXEC sp_addlogin 'ana' EXEC sp_grantdbaccess 'ana'",
             "-- New login created.\n-- Granted database access to 'ana'."},
            {"CREATE TABLE t (a int) CREATE TABLE u (a int)", ""},
            {"CREATE PROC p AS SELECT 1", ""},
            {"GRANT SELECT ON nada TO ana", "Msg 15151, Level 16, State 1: Cannot find the object 'nada', "
                                            "because it does not exist or you do not have permission."},
            {"GRANT SELECT ON t TO nadie", "Msg 15151, Level 16, State 1: Cannot find the user 'nadie', "
                                           "because it does not exist or you do not have permission."},
            {"GRANT SELECT ON t TO dbo",
             "Msg 4624, Level 16, State 1: Cannot grant, deny, or revoke permissions to sa, dbo, entity "
             "owner, information_schema, sys, or yourself."},
            {"GRANT EXECUTE ON t TO ana", "Msg 4606, Level 16, State 1: Granted or revoked privilege EXECUTE "
                                          "is not compatible with object."},
            {"GRANT SELECT ON p TO ana", "Msg 4606, Level 16, State 1: Granted or revoked privilege SELECT "
                                         "is not compatible with object."},
            {"GRANT CREATE DATABASE TO ana", "Msg 4621, Level 16, State 10: Permissions at the server scope "
                                             "can only be granted when the current database is master."},
            {"GRANT SELECT (zz) ON t TO ana", "Msg 4615, Level 16, State 1: Invalid column name 'zz'."},
            {"GRANT SELECT ON t TO db_owner", "Msg 4617, Level 16, State 1: Cannot grant, deny or revoke "
                                              "permissions to or from special roles."},
            {"GRANT SELECT ON master..sysobjects TO ana",
             "Msg 4610, Level 16, State 1: You can only grant or revoke permissions on objects in the "
             "current database."},
            {"GRANT ALL ON t TO ana WITH GRANT OPTION", ""},
            {"DENY SELECT ON t TO ana", ""},
            {"REVOKE INSERT ON t TO ana", ""},
            {"REVOKE GRANT OPTION FOR UPDATE ON t FROM ana", ""},
            {"GRANT REFERENCES ON u TO ana GRANT EXECUTE ON p TO public", ""},
            {"GRANT CREATE TABLE TO ana DENY BACKUP LOG  TO ana GRANT CREATE VIEW TO ana REVOKE CREATE VIEW "
             "TO ana",
             ""},
            {"SELECT o.name, p.uid, p.action, p.protecttype FROM sysprotects p LEFT JOIN sysobjects o ON "
             "o.id = p.id ORDER BY o.name, p.action",
             "name | uid | action | protecttype\nNULL | 5 | 198 | 205\nNULL | 5 | 235 | 206\np | 0 | 224 | "
             "205\nt | 5 | 26 | 204\nt | 5 | 193 | 206\nt | 5 | 196 | 204\nt | 5 | 197 | 205\nu | 5 | 26 | "
             "205"},
            {"select action, protecttype from sysprotects where uid=5and action "
             "IN(203,198,207,222,236,178,228,235 )",
             "action | protecttype\n198 | 205\n235 | 206"},
            {"DROP TABLE t", ""},
            {"EXEC sp_helprotect",
             "Owner | Object | Grantee | Grantor | ProtectType | Action | Column\n. | . | ana | dbo | Deny   "
             "    | Backup Transaction | .\n. | . | ana | dbo | Grant      | Create Table | .\ndbo | p | "
             "public | dbo | Grant      | Execute | .\ndbo | u | ana | dbo | Grant      | References | ."},
            {"EXEC sp_changeobjectowner 'u', 'ana'",
             "-- Caution: Changing any part of an object name could break scripts and stored procedures."},
            {"EXEC sp_revokedbaccess 'ana'",
             "Msg 15183, Level 16, State 1: The user owns objects in the database and cannot be dropped."},
            {"SELECT u.name FROM sysobjects o, sysusers u WHERE o.name = 'u' AND u.uid = o.uid", "name\nana"},
            {"EXEC sp_changeobjectowner 'ana.u', 'dbo' EXEC sp_revokedbaccess 'ana'",
             "-- Caution: Changing any part of an object name could break scripts and stored procedures.\n-- "
             "User has been dropped from current database."},
            {"EXEC sp_droplogin 'ana'", "-- Login dropped."},
            {"SELECT count(*) FROM sysprotects WHERE uid = 5", "0"},
        });
}

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
           "Msg 3701, Level 11, State 5: Cannot drop the table 'ajena', because it does not exist "
           "or you do not have permission.\n");
    expect("ALTER TABLE ajena ADD b int",
           "Msg 4902, Level 16, State 1: Cannot find the object \"ajena\" because it "
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

} // namespace practice::test
