// Statements that define and administer: properties of their trees.
#include "tsql_render.h"

#include "tsql/parser.h"

#include <gtest/gtest.h>

using namespace practice;
using namespace practice::ast;
using test::render;

namespace {

/// The one statement of a batch; the batch is kept so that references stay good.
template <class Node>
class Parsed
{
public:
    explicit Parsed(std::string_view text) : m_batch(parseBatch(text))
    {
        if (m_batch.statements.size() != 1)
            throw std::runtime_error("not one statement: " + std::string(text));
    }
    const Node* operator->() const { return &as<Node>(*m_batch.statements.front()); }

private:
    Batch m_batch;
};

std::string refusal(std::string_view text)
{
    try {
        (void)parseBatch(text);
        return "accepted";
    } catch (const SyntaxError& error) {
        return std::to_string(error.number) + " " + error.text;
    }
}

std::string words(const std::vector<std::string>& list)
{
    std::string text;
    for (const auto& each : list)
        text += (text.empty() ? "" : ",") + each;
    return text;
}

std::string columns(const std::vector<IndexColumn>& list)
{
    std::string text;
    for (const auto& each : list)
        text += (text.empty() ? "" : ",") + each.name + (each.descending ? " desc" : "");
    return text;
}

std::string options(const std::vector<NamedOption>& list)
{
    std::string text;
    for (const auto& each : list) {
        text += (text.empty() ? "" : ", ") + each.name;
        for (const auto& value : each.values)
            text += " " + render(value.get());
    }
    return text;
}

std::string size(const std::optional<FileSize>& value)
{
    constexpr const char* units[] = {"", "KB", "MB", "GB", "TB", "%"};
    return value ? std::to_string(value->number) + units[static_cast<int>(value->unit)] : "-";
}

std::string file(const FileSpec& node)
{
    return node.name + " " + node.fileName.value_or("-") + " " + size(node.size) + " " +
           (node.unlimited ? "unlimited" : size(node.maxSize)) + " " + size(node.growth);
}

} // namespace

TEST(Tables, TakeEveryFormOfColumnAndConstraint)
{
    const std::string text =
        "create table db..[t x] (\n"
        " a int identity(-5, 2) not for replication not null constraint pk primary key clustered,\n"
        " b varchar  (20)  COLLATE Latin1_General_CI_AS  NULL default ('x') check (b <> ''),\n"
        " c as a * 2 persisted,\n"
        " d uniqueidentifier rowguidcol constraint df default newid() unique nonclustered,\n"
        " e int references u (i) on delete cascade on update set null foreign key references v,\n"
        " timestamp,\n"
        " f dbo.phone constraint fk foreign key (f, a) references w (x, y) not for replication,\n"
        " constraint uq unique (a desc, b) with fillfactor = 80 on [g 1],\n"
        " check not for replication (a > 0 or b is null),\n"
        ") on fg textimage_on \"default\"";
    const Parsed<CreateTableStatement> table(text);
    EXPECT_EQ(renderName(table->name), "db..[t x]");
    EXPECT_EQ(table->fileGroup + "/" + table->textFileGroup, "fg/default");
    const auto& column = table->elements.columns;
    ASSERT_EQ(column.size(), 7U);
    EXPECT_EQ(column[0].identity->seed + "," + column[0].identity->increment, "-5,2");
    EXPECT_TRUE(column[0].identity->notForReplication);
    EXPECT_EQ(column[0].nullable, false);
    EXPECT_EQ(column[0].constraints.at(0).name, "pk");
    EXPECT_EQ(column[0].constraints[0].clustered, true);
    EXPECT_EQ(column[1].type.id, TypeId::VarChar);
    EXPECT_EQ(column[1].collation, "Latin1_General_CI_AS");
    EXPECT_EQ(column[1].nullable, true);
    const auto slice = [&](const SourceRange& range) {
        return text.substr(range.begin, range.end - range.begin);
    };
    EXPECT_EQ(slice(column[1].constraints.at(0).expression->source), "('x')");
    EXPECT_EQ(slice(column[1].constraints.at(1).expression->source), "b <> ''");
    EXPECT_EQ(slice(column[2].computed->source), "a * 2");
    EXPECT_TRUE(column[2].persisted);
    EXPECT_TRUE(column[3].rowGuid);
    EXPECT_EQ(render(column[3].constraints.at(0).expression.get()), "newid()");
    EXPECT_EQ(column[3].constraints.at(1).clustered, false);
    EXPECT_EQ(column[4].constraints.size(), 2U);
    EXPECT_EQ(column[4].constraints[0].onDelete, ReferentialAction::Cascade);
    EXPECT_EQ(column[4].constraints[0].onUpdate, ReferentialAction::SetNull);
    EXPECT_EQ(column[5].name, "timestamp");
    EXPECT_EQ(column[5].type.id, TypeId::Timestamp);
    EXPECT_EQ(column[6].type.id, TypeId::Null);
    const auto& constraint = table->elements.constraints;
    ASSERT_EQ(constraint.size(), 3U);
    EXPECT_EQ(columns(constraint[0].columns) + ">" + words(constraint[0].referencedColumns), "f,a>x,y");
    EXPECT_TRUE(constraint[0].notForReplication);
    EXPECT_EQ(columns(constraint[1].columns), "a desc,b");
    EXPECT_EQ(constraint[1].options.fillFactor, 80);
    EXPECT_EQ(constraint[1].fileGroup, "g 1");
    EXPECT_EQ(slice(constraint[2].expression->source), "a > 0 or b is null");
}

TEST(Tables, AreAltered)
{
    const Parsed<AlterTableStatement> add(
        "ALTER TABLE db..t  ADD a int  NULL,\rb numeric  (5,2)  NOT NULL CONSTRAINT [DF_t_b] DEFAULT (0)");
    ASSERT_EQ(add->elements.columns.size(), 2U);
    EXPECT_EQ(add->elements.columns[1].type.facets, (std::vector{5, 2}));
    EXPECT_EQ(add->elements.columns[1].constraints.at(0).name, "DF_t_b");

    const Parsed<AlterTableStatement> key("ALTER TABLE db..t WITH NOCHECK ADD CONSTRAINT k PRIMARY KEY  "
                                          "NONCLUSTERED  (a,b)\r WITH FILLFACTOR = 90 ON [PRIMARY]");
    EXPECT_EQ(key->withCheck, false);
    EXPECT_EQ(key->elements.constraints.at(0).options.fillFactor, 90);
    EXPECT_EQ(key->elements.constraints[0].fileGroup, "PRIMARY");

    const Parsed<AlterTableStatement> byDefault(
        "ALTER TABLE db..t WITH NOCHECK ADD  CONSTRAINT [DF_t_a] DEFAULT (getdate()) FOR [a] with values");
    EXPECT_EQ(byDefault->elements.constraints.at(0).forColumn, "a");
    EXPECT_TRUE(byDefault->elements.constraints[0].withValues);

    const Parsed<AlterTableStatement> column(
        "ALTER TABLE db..t  ALTER COLUMN c varchar  (20)  COLLATE Modern_Spanish_CI_AS  NOT NULL");
    EXPECT_EQ(column->action, AlterTableAction::AlterColumn);
    EXPECT_EQ(column->column.collation + column->column.type.name.object, "Modern_Spanish_CI_ASvarchar");
    EXPECT_EQ(column->column.nullable, false);
    EXPECT_EQ(Parsed<AlterTableStatement>("alter table t alter column c add rowguidcol")->columnProperty,
              "ROWGUIDCOL");

    const Parsed<AlterTableStatement> drop("alter table t drop constraint a, b, column c, d");
    ASSERT_EQ(drop->drops.size(), 4U);
    EXPECT_FALSE(drop->drops[1].column);
    EXPECT_TRUE(drop->drops[3].column);

    const Parsed<AlterTableStatement> checks("alter table t with check check constraint all");
    EXPECT_TRUE(checks->enable && checks->all && checks->withCheck.value());
    EXPECT_EQ(words(Parsed<AlterTableStatement>("alter table t disable trigger a, b")->names), "a,b");
}

TEST(Indexes, TakeBothFormsOfOptions)
{
    const Parsed<CreateIndexStatement> old("create unique clustered index i on db..t (a desc, b asc)\r WITH "
                                           "PAD_INDEX, FILLFACTOR = 80 ,DROP_EXISTING  ON [PRIMARY]");
    EXPECT_TRUE(old->unique && old->clustered);
    EXPECT_EQ(columns(old->columns), "a desc,b");
    EXPECT_EQ(old->options.fillFactor, 80);
    EXPECT_EQ(old->options.padIndex, true);
    EXPECT_EQ(old->options.dropExisting, true);
    EXPECT_EQ(old->fileGroup, "PRIMARY");

    const Parsed<CreateIndexStatement> fresh(
        "create index i on t (a) include (b, c) where a > 1 with (ignore_dup_key = off, maxdop = 2) on fg");
    EXPECT_EQ(words(fresh->included), "b,c");
    EXPECT_EQ(render(fresh->where.get()), "(a > 1)");
    EXPECT_EQ(fresh->options.ignoreDuplicateKey, false);
    EXPECT_EQ(options(fresh->options.others), "MAXDOP 2");

    const Parsed<DropIndexStatement> drop("drop index t.i, dbo.u.j, k on db..v");
    ASSERT_EQ(drop->indexes.size(), 3U);
    EXPECT_EQ(renderName(drop->indexes[1].table) + ">" + drop->indexes[1].name, "dbo.u>j");
    EXPECT_EQ(renderName(drop->indexes[2].table) + ">" + drop->indexes[2].name, "db..v>k");
    EXPECT_EQ(Parsed<AlterIndexStatement>("alter index all on t rebuild with (fillfactor = 70)")
                  ->options.fillFactor,
              70);
}

TEST(Definitions, ThatTheConsoleComposesAreRefusedWhereTheServerRefusesThem)
{
    const struct
    {
        const char* text;
        const char* expected;
    } cases[] = {
        {"CREATE  CLUSTERED  INDEX i  ON db..t  UNIQUE  (a)",
         "156 Incorrect syntax near the keyword 'UNIQUE'."},
        {" CREATE   UNIQUE  NONCLUSTERED INDEX i ON t WITH FILLFACTOR = 80 (a)  ON [PRIMARY]",
         "156 Incorrect syntax near the keyword 'WITH'."},
        {"ALTER TABLE t ADD CONSTRAINT [r] FOREIGN KEY (a ) REFERENCES u (b) CONSTRAINT [r] FOREIGN KEY (c ) "
         "REFERENCES u (d)",
         "156 Incorrect syntax near the keyword 'CONSTRAINT'."},
        {"ALTER TABLE db..t  ADD a int  NULL ON fg", "156 Incorrect syntax near the keyword 'ON'."},
        {"CREATE TABLE db..t (a int ) ON PRIMARY", "156 Incorrect syntax near the keyword 'PRIMARY'."},
        {"CREATE DATABASE d\r ON PRIMARY (NAME = d, FILENAME = 'C:\\d.mdf', SIZE = 512KB MAXSIZE =UNLIMITED)",
         "102 Incorrect syntax near 'MAXSIZE'."},
        {"CREATE DATABASE d\r ON PRIMARY (NAME = d, FILENAME = 'C:\\d.mdf', SIZE = 1.5MB)",
         "102 Incorrect syntax near '1.5'."},
        {"CREATE DATABASE d\r ON PRIMARY (NAME = d),\rPRIMARY (NAME = e)\r",
         "156 Incorrect syntax near the keyword 'PRIMARY'."},
        {"CREATE DATABASE d\r ON PRIMARY (NAME = d)\r LOG ON  (NAME = e)\r LOG ON  (NAME = f)\r",
         "102 Incorrect syntax near 'LOG'."},
        {"ALTER DATABASE d\r MODIFY FILE  (NAME = d,)", "102 Incorrect syntax near ')'."},
        {"DROP TABLE my table", "156 Incorrect syntax near the keyword 'table'."},
        {"BACKUP DATABASE d TO  WITH DIFFERENTIAL", "156 Incorrect syntax near the keyword 'WITH'."},
        {"RESTORE VERIFYONLY  FROM ", "102 Incorrect syntax near 'FROM'."},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(refusal(text), expected) << text;
}

TEST(Queries, ThatTheConsoleSendsAreReadAsTheyStand)
{
    const struct
    {
        const char* text;
        const char* expected;
    } cases[] = {
        {" SELECT usu.Name,case                    when (usg.uid is null) then 'public'                    "
         "Else: usg.Name"
         "                   End                  ,lo.loginname                  ,usu.sid         From"
         "                   sysusers usu left outer join                    (sysmembers mem inner join "
         "sysusers usg on "
         "mem.groupuid = usg.uid) on usu.uid = mem.memberuid                   left outer join "
         "master.dbo.syslogins  lo "
         "on usu.sid = lo.sid         Where                   (usu.islogin = 1 and usu.hasdbaccess = 1) and"
         "                   (usg.issqlrole = 1 or usg.uid is null)",
         "[select usu.Name, case( (usg.uid is null)=>'public' else usg.Name), lo.loginname, usu.sid from "
         "((sysusers usu "
         "left (sysmembers mem inner sysusers usg on (mem.groupuid = usg.uid)) on (usu.uid = mem.memberuid)) "
         "left "
         "master.dbo.syslogins lo on (usu.sid = lo.sid)) where (((usu.islogin = 1) and (usu.hasdbaccess = "
         "1)) and "
         "((usg.issqlrole = 1) or (usg.uid is null)))]"},
        {"declare @low nvarchar(11)\rselect @low = convert(varchar(11),low) from master.dbo.spt_values  "
         "where type = N'E' "
         "and number = 1\r(select str(convert(dec(15),sum(size))*  @low / 1048576,10,2) from "
         "db.dbo.sysfiles)",
         "declare @low nvarchar(11); [select @low=varchar(11)<low> from master.dbo.spt_values where ((type = "
         "N'E') and "
         "(number = 1))]; [select str(((decimal(15)<sum(size)> * @low) / 1048576), 10, 2) from "
         "db.dbo.sysfiles]"},
        {"select  g.groupname,g.status,  g.groupid, 'filecount' =         (select count(*) from db..sysfiles "
         "f"
         "             Where f.groupid = g.groupid                 and (f.status & 0x40 <> 0x40))     from "
         "db..sysfilegroups g order by groupid",
         "[select g.groupname, g.status, g.groupid, [select count(*) from db..sysfiles f where ((f.groupid = "
         "g.groupid) and "
         "((f.status & 0x40) <> 0x40))] as filecount from db..sysfilegroups g order groupid]"},
        {"Select t.name as tabla from db..sysobjects t,db..sysusers u where (t.xtype = 'U'or t.xtype = 'S') "
         "and u.uid = "
         "t.uid order by t.name",
         "[select t.name as tabla from db..sysobjects t, db..sysusers u where (((t.xtype = 'U') or (t.xtype "
         "= 'S')) and "
         "(u.uid = t.uid)) order t.name]"},
        {"EXEC sp_rename 't.[a b]', 'c', 'COLUMN'", "exec sp_rename('t.[a b]', 'c', 'COLUMN')"},
        {" EXEC sp_password '','x','sa'", "exec sp_password('', 'x', 'sa')"},
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(render(parseBatch(text).statements), expected) << text;
}

TEST(Programs, KeepTheirHeadsAndBodies)
{
    const std::string text =
        "-- kept\ncreate view dbo.v (a, b) with encryption as\n select 1, 2 with check option\n";
    const Parsed<CreateViewStatement> view(text);
    EXPECT_EQ(words(view->columns), "a,b");
    EXPECT_TRUE(view->encryption && view->checkOption);
    EXPECT_EQ(text.substr(view->query.source.begin, view->query.source.end - view->query.source.begin),
              "select 1, 2");

    const Parsed<CreateProcedureStatement> procedure(
        "alter proc p;2 (@a int = 5, @b varchar(10) = null output, @c cursor varying out) with recompile, "
        "encryption as begin select @a end return 1");
    EXPECT_EQ(procedure->mode, DefinitionMode::Alter);
    EXPECT_EQ(procedure->number, 2);
    ASSERT_EQ(procedure->parameters.size(), 3U);
    EXPECT_EQ(render(procedure->parameters[0].defaultValue.get()), "5");
    EXPECT_TRUE(procedure->parameters[1].output && procedure->parameters[2].type.varying &&
                procedure->recompile);
    EXPECT_EQ(render(procedure->body), "{[select @a]}; return 1");

    const Parsed<CreateFunctionStatement> scalar(
        "create function f (@a int) returns int with schemabinding as begin return @a + 1 end");
    EXPECT_EQ(scalar->returnType.id, TypeId::Int);
    EXPECT_EQ(render(scalar->body), "return (@a + 1)");
    const Parsed<CreateFunctionStatement> inlined(
        "create function f () returns table as return (select 1 a)");
    EXPECT_EQ(inlined->form, FunctionForm::InlineTable);
    const Parsed<CreateFunctionStatement> multi(
        "create function f () returns @r table (a int) begin insert @r values (1) return end");
    EXPECT_EQ(multi->tableVariable + ": " + render(multi->body), "@r: insert @r (1); return");

    const Parsed<CreateTriggerStatement> trigger(
        "create trigger g on t instead of insert, update as if update(a) print 'x'");
    EXPECT_EQ(words(trigger->events), "INSERT,UPDATE");
    EXPECT_EQ(render(trigger->body), "if ([update](a) = 1) {print 'x'}");
}

TEST(Programs, OfTheRarerKindsAreTakenWhole)
{
    const Parsed<CreateTypeStatement> alias("create type dbo.codigo from varchar(5) null");
    EXPECT_EQ(alias->base.facets.front(), 5);
    EXPECT_EQ(alias->nullable, true);
    EXPECT_EQ(alias->table, nullptr);
    EXPECT_EQ(Parsed<CreateTypeStatement>("create type c from int not null")->nullable, false);
    EXPECT_EQ(Parsed<CreateTypeStatement>("create type c from int")->nullable, std::nullopt);
    EXPECT_EQ(Parsed<CreateTypeStatement>("create type c as table (a int, b int)")->table->columns.size(),
              2U);

    EXPECT_EQ(render(Parsed<CreateDefaultStatement>("create default dbo.d as -1")->value.get()), "-1");
    EXPECT_EQ(render(Parsed<CreateRuleStatement>("create rule r as @x > 0")->condition.get()), "(@x > 0)");

    const Parsed<EnableTriggerStatement> two("disable trigger a, dbo.b on t");
    EXPECT_FALSE(two->enable || two->all);
    EXPECT_EQ(two->names.size(), 2U);
    EXPECT_EQ(two->table.object, "t");
    const Parsed<EnableTriggerStatement> all("enable trigger all on all server");
    EXPECT_TRUE(all->enable && all->all && all->names.empty() && all->table.object.empty());

    const Parsed<CreateTriggerStatement> ddl(
        "create trigger g on database with encryption after create_table, drop_table not for replication as "
        "return");
    EXPECT_TRUE(ddl->onDatabase && !ddl->onServer && ddl->encryption && ddl->notForReplication);
    EXPECT_EQ(words(ddl->events), "CREATE_TABLE,DROP_TABLE");
    EXPECT_TRUE(
        Parsed<CreateTriggerStatement>("create trigger g on all server for logon as return")->onServer);

    const Parsed<CreateStatisticsStatement> statistics("create statistics s on t (a, b) with fullscan");
    EXPECT_EQ(words(statistics->columns), "a,b");
    EXPECT_EQ(options(statistics->options), "FULLSCAN");
    EXPECT_EQ(words(Parsed<UpdateStatisticsStatement>("update statistics t (a, b)")->names), "a,b");
    EXPECT_EQ(words(Parsed<UpdateStatisticsStatement>("update statistics t s")->names), "s");
    EXPECT_TRUE(Parsed<UpdateStatisticsStatement>("update statistics t")->names.empty());

    EXPECT_TRUE(Parsed<KillStatement>("kill 52 with statusonly")->statusOnly);
    EXPECT_FALSE(Parsed<KillStatement>("kill @spid")->statusOnly);
    EXPECT_TRUE(Parsed<ShutdownStatement>("shutdown with nowait")->noWait);
    EXPECT_FALSE(Parsed<ShutdownStatement>("shutdown")->noWait);
    EXPECT_TRUE(Parsed<ReconfigureStatement>("reconfigure with override")->withOverride);
    EXPECT_FALSE(Parsed<ReconfigureStatement>("reconfigure")->withOverride);
}

TEST(Security, TakesWhoActsAndWhoOwns)
{
    EXPECT_TRUE(Parsed<ExecuteAsStatement>("execute as caller")->caller);
    const Parsed<ExecuteAsStatement> login("exec as login = 'ana' with no revert");
    EXPECT_TRUE(login->login && !login->caller);
    EXPECT_EQ(login->name, "ana");
    EXPECT_FALSE(Parsed<ExecuteAsStatement>("execute as user = 'ana'")->login);
    EXPECT_EQ(Parsed<ExecuteStringStatement>("exec ('x') as login = 'ana'")->asLogin, "ana");
    EXPECT_EQ(Parsed<ExecuteStringStatement>("exec ('x') as user = 'ana' at lejos")->asUser, "ana");

    EXPECT_EQ(options(Parsed<AlterUserStatement>("alter user u with name = v, default_schema = s")->options),
              "NAME `v`, DEFAULT_SCHEMA `s`");
    const Parsed<CreateRoleStatement> role("create role r authorization dbo");
    EXPECT_EQ(role->name + " of " + role->owner, "r of dbo");
    EXPECT_FALSE(role->server);
    EXPECT_TRUE(Parsed<CreateRoleStatement>("create server role r")->server);
    EXPECT_EQ(Parsed<AlterSchemaStatement>("alter schema s transfer dbo.t")->transferred.object, "t");
    EXPECT_EQ(Parsed<AlterSchemaStatement>("alter schema s transfer object::dbo.t")->transferred.schema,
              "dbo");
    const Parsed<AlterAuthorizationStatement> owner("alter authorization on schema::s to ana");
    EXPECT_EQ(owner->securableClass + " " + owner->securable.object + " " + owner->owner, "SCHEMA s ana");
    EXPECT_EQ(Parsed<AlterAuthorizationStatement>("alter authorization on dbo.t to schema owner")->owner,
              "SCHEMA OWNER");
}

TEST(Databases, TakeFilesGroupsAndOptions)
{
    const Parsed<CreateDatabaseStatement> create(
        "CREATE DATABASE d\r ON PRIMARY (NAME = d, FILENAME = 'C:\\d.mdf', SIZE = 1MB, MAXSIZE "
        "=50MB,FILEGROWTH=10%),\r"
        " FILEGROUP g (NAME = 'd 2', FILENAME = 'C:\\e.ndf', SIZE = 512KB, MAXSIZE "
        "=UNLIMITED,FILEGROWTH=1GB)\r"
        " LOG ON  (NAME = l, FILENAME = 'C:\\l.ldf') collate Modern_Spanish_CI_AS for attach");
    ASSERT_EQ(create->groups.size(), 2U);
    EXPECT_TRUE(create->primaryKeyword && create->forAttach);
    EXPECT_EQ(file(create->groups[0].files.at(0)), "d C:\\d.mdf 1MB 50MB 10%");
    EXPECT_EQ(create->groups[1].name + ": " + file(create->groups[1].files.at(0)),
              "g: d 2 C:\\e.ndf 512KB unlimited 1GB");
    EXPECT_EQ(file(create->logFiles.at(0)), "l C:\\l.ldf - - -");

    const Parsed<AlterDatabaseStatement> add("ALTER DATABASE d\r ADD FILE  (NAME = x, FILENAME = "
                                             "'C:\\x.ndf', SIZE = 2MB, MAXSIZE =UNLIMITED) TO FILEGROUP g");
    EXPECT_EQ(add->action, AlterDatabaseAction::AddFile);
    EXPECT_EQ(add->fileGroup, "g");
    EXPECT_EQ(file(Parsed<AlterDatabaseStatement>("ALTER DATABASE d\r MODIFY FILE  (NAME = x,FILEGROWTH=10%)")
                       ->files.at(0)),
              "x - - - 10%");
    EXPECT_EQ(Parsed<AlterDatabaseStatement>("ALTER DATABASE d\r REMOVE FILEGROUP g")->action,
              AlterDatabaseAction::RemoveFileGroup);
    EXPECT_EQ(Parsed<AlterDatabaseStatement>("alter database d modify filegroup g default")->property,
              "DEFAULT");
    EXPECT_EQ(Parsed<AlterDatabaseStatement>("alter database d modify name = [e f]")->newName, "e f");

    const Parsed<AlterDatabaseStatement> set(
        "alter database d set RECOVERY FULL, QUOTED_IDENTIFIER  ON, single_user, compatibility_level = 80 "
        "with rollback after 5 seconds");
    EXPECT_EQ(options(set->options),
              "RECOVERY `FULL`, QUOTED_IDENTIFIER `ON`, SINGLE_USER, COMPATIBILITY_LEVEL 80");
    EXPECT_EQ(set->termination, Termination::RollbackAfter);
    EXPECT_EQ(set->terminationSeconds, 5);
}

TEST(Backups, TakeDevicesAndOptions)
{
    const Parsed<BackupStatement> backup("BACKUP DATABASE d filegroup = 'g' TO Copia, disk = 'C:\\x.bak' "
                                         "WITH DIFFERENTIAL, init, name = 'n', stats = 10");
    EXPECT_EQ(render(backup->database.get()), "`d`");
    EXPECT_TRUE(backup->files.at(0).group);
    ASSERT_EQ(backup->devices.size(), 2U);
    EXPECT_EQ(backup->devices[0].kind, DeviceKind::Logical);
    EXPECT_EQ(backup->devices[1].kind, DeviceKind::Disk);
    EXPECT_EQ(options(backup->options), "DIFFERENTIAL, INIT, NAME 'n', STATS 10");
    EXPECT_TRUE(Parsed<BackupStatement>("backup log d with truncate_only")->devices.empty());

    const Parsed<RestoreStatement> restore("RESTORE DATABASE d FROM  DISK ='C:\\x.bak' WITH MOVE 'a' TO "
                                           "'C:\\a.mdf', MOVE 'b' TO 'C:\\b.ldf', replace");
    EXPECT_EQ(options(restore->options), "MOVE 'a' 'C:\\a.mdf', MOVE 'b' 'C:\\b.ldf', REPLACE");
    EXPECT_EQ(Parsed<RestoreStatement>("RESTORE VERIFYONLY  FROM Copia")->restoreKind,
              RestoreKind::VerifyOnly);
    EXPECT_EQ(Parsed<RestoreStatement>(" RESTORE FILELISTONLY FROM DISK = 'x' with file = 2")->restoreKind,
              RestoreKind::FileListOnly);
    EXPECT_TRUE(Parsed<RestoreStatement>("restore log d with recovery")->devices.empty());
}

TEST(Security, TakesPermissionsLoginsUsersAndRoles)
{
    const Parsed<PermissionStatement> grant(
        "grant select (a, b), update on dbo.t to u, public with grant option as dbo");
    ASSERT_EQ(grant->permissions.size(), 2U);
    EXPECT_EQ(grant->permissions[0].name + ":" + words(grant->permissions[0].columns), "SELECT:a,b");
    EXPECT_EQ(words(grant->principals) + " " + grant->grantor, "u,public dbo");
    EXPECT_TRUE(grant->withGrantOption);
    EXPECT_EQ(Parsed<PermissionStatement>("DENY  CREATE DATABASE TO u")->permissions.at(0).name,
              "CREATE DATABASE");
    EXPECT_EQ(words(Parsed<PermissionStatement>("REVOKE BACKUP LOG  TO u")->principals), "u");
    const Parsed<PermissionStatement> revoke("revoke grant option for exec on object::p from u cascade");
    EXPECT_TRUE(revoke->grantOptionFor && revoke->cascade);
    EXPECT_EQ(revoke->permissions.at(0).name + revoke->securableClass + revoke->securable.object,
              "EXECUTEOBJECTp");

    const Parsed<CreateLoginStatement> login(
        "create login l with password = 'p' must_change, default_database = d, check_policy = off");
    EXPECT_EQ(login->password, "p");
    EXPECT_TRUE(login->mustChange);
    EXPECT_EQ(options(login->options), "DEFAULT_DATABASE `d`, CHECK_POLICY `off`");
    EXPECT_EQ(Parsed<AlterLoginStatement>("alter login l disable")->enable, false);
    EXPECT_EQ(
        Parsed<AlterLoginStatement>("alter login l with password = 'n' old_password = 'o'")->oldPassword,
        "o");
    EXPECT_EQ(Parsed<CreateUserStatement>("create user u for login l with default_schema = s")->login, "l");
    EXPECT_EQ(Parsed<AlterRoleStatement>("alter role r drop member u")->action, AlterRoleAction::DropMember);
    EXPECT_EQ(Parsed<CreateSchemaStatement>("create schema authorization u")->name, "u");
    const Parsed<DropStatement> drop("drop procedure if exists dbo.a, b");
    EXPECT_TRUE(drop->ifExists);
    EXPECT_EQ(drop->names.size(), 2U);
}
