// A server with a folder for backups, and a database's whole state as text.
#pragma once

#include "engine_harness.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace practice::test {

class BackupEngine
{
public:
    std::string run(const std::string& batch) { return engine_.run(batch); }
    /// Runs what has to succeed.
    void mustRun(const std::string& batch)
    {
        const std::string answer = run(batch);
        ASSERT_EQ(answer.find("Msg "), std::string::npos) << batch << '\n' << answer;
    }
    Engine& engine() { return engine_; }
    [[nodiscard]] std::filesystem::path path(const std::string& file) const { return folder_.path() / file; }
    /// As it stands in a statement.
    [[nodiscard]] std::string disk(const std::string& file) const
    {
        return "DISK = 'C:" + path(file).string() + "'";
    }

    /// Objects, columns, keys, principals, rights, options, files and rows.
    std::string stateOf(const std::string& database)
    {
        const std::string from = " FROM " + database + "..";
        std::string state;
        for (const char* query :
             {"SELECT name, id, xtype, uid, parent_obj, crdate#sysobjects ORDER BY id",
              "SELECT id, colid, name, xtype, length, prec, scale#syscolumns ORDER BY id, colid",
              "SELECT id, colid, isnullable, cdefault#syscolumns ORDER BY id, colid",
              "SELECT id, colid, collation#syscolumns ORDER BY id, colid",
              "SELECT id, indid, name, status, OrigFillFactor, groupid#sysindexes ORDER BY id, indid",
              "SELECT id, indid, colid, keyno#sysindexkeys ORDER BY id, indid, keyno",
              "SELECT id, colid, text#syscomments ORDER BY id, colid",
              "SELECT constid, fkeyid, rkeyid, fkey1, rkey1#sysreferences ORDER BY constid",
              "SELECT uid, name, sid, issqlrole, hasdbaccess#sysusers ORDER BY uid",
              "SELECT memberuid, groupuid#sysmembers ORDER BY groupuid, memberuid",
              "SELECT id, uid, action, protecttype, columns, grantor#sysprotects ORDER BY 1, 2, 3, 4",
              "SELECT fileid, groupid, size, maxsize, growth, name#sysfiles ORDER BY fileid",
              "SELECT groupid, groupname, status#sysfilegroups ORDER BY groupid"}) {
            std::string text = query;
            text.replace(text.find('#'), 1, from);
            state += run(text);
        }
        state +=
            run("SELECT DATABASEPROPERTYEX('" + database + "', 'Recovery'), DATABASEPROPERTYEX('" + database +
                "', 'IsAnsiNullDefault'), DATABASEPROPERTYEX('" + database + "', 'Collation')");
        const std::string prefix = database + "..";
        for (const std::string& table : tablesOf(database)) {
            const std::string full = prefix + table;
            state.append(table).append("\n").append(run("SELECT * FROM " + full + " ORDER BY 1, 2"));
            state += run("SELECT IDENT_CURRENT('" + full + "')");
        }
        EXPECT_EQ(state.find("Msg "), std::string::npos) << state;
        return state;
    }

private:
    std::vector<std::string> tablesOf(const std::string& database)
    {
        std::istringstream lines(
            run("SELECT name FROM " + database + "..sysobjects WHERE xtype = 'U' ORDER BY 1"));
        std::vector<std::string> names;
        for (std::string line; std::getline(lines, line);) {
            if (line != "name" && !line.empty())
                names.push_back(line);
        }
        return names;
    }

    TemporaryDirectory folder_;
    Engine engine_;
};

} // namespace practice::test
