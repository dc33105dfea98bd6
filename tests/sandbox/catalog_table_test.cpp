// Tables and indexes: statements, what they answer, and what is there afterwards.
#include "engine_cases.h"

namespace practice::test {

TEST(Tables, InAListAreDroppedEachByItself)
{
    const char* missing = "Msg 3701, Level 11, State 5: Cannot drop the table 'nada', because it does not "
                          "exist or you do not have permission.";
    const std::string referenced = std::string(missing) + "\nMsg 3726, Level 16, State 1: Could not drop "
                                                          "object 'p' because it is referenced by a FOREIGN "
                                                          "KEY constraint.";
    expectAnswers(
        freshDatabase(),
        {
            {"CREATE TABLE a (x int) CREATE TABLE p (x int PRIMARY KEY) CREATE TABLE h (x int "
             "REFERENCES p)",
             ""},
            {"DROP TABLE nada, p, h, a", referenced.c_str()},
            {"SELECT name FROM sysobjects WHERE xtype = 'U'", "name\np"},
            {"DROP TABLE p, nada IF @@ERROR = 3701 PRINT 'seguido'",
             (std::string(missing) + "\n-- seguido").c_str()},
            {"CREATE TABLE a (x int)", ""},
            {"BEGIN TRY DROP TABLE a, nada PRINT 'nunca' END TRY BEGIN CATCH PRINT ERROR_NUMBER() "
             "END CATCH",
             "-- 3701"},
            {"CREATE TABLE t (a int, b int) CREATE INDEX i1 ON t (a) CREATE INDEX i2 ON t (b)", ""},
            {"DROP INDEX t.i1, t.nada, t.i2",
             "Msg 3701, Level 11, State 7: Cannot drop the index 't.nada', because it does not exist "
             "or you do not have permission."},
            {"EXEC sp_helpindex t", "-- The object does not have any indexes."},
        });
}

} // namespace practice::test
