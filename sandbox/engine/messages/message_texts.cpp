#include "engine/messages/message_texts.h"

#include "engine/messages/ddl_message_texts.h"

#include <algorithm>
#include <iterator>

namespace practice {

namespace {

// Ascending by number: it is searched by halves, and the assertion below holds it to that.
constexpr MessageText texts[] = {
    {102, 15, 1, "Incorrect syntax near '%s'."},
    {103, 15, 4, "The %s that starts with '%s' is too long. Maximum length is %s."},
    {104, 16, 1,
     "ORDER BY items must appear in the select list if the statement contains a UNION, INTERSECT or EXCEPT "
     "operator."},
    {105, 15, 1, "Unclosed quotation mark after the character string '%s'."},
    {106, 16, 1, "Too many table names in the query. The maximum allowable is %s."},
    {107, 15, 1, "The column prefix '%s' does not match with a table name or alias name used in the query."},
    {108, 16, 1,
     "The ORDER BY position number %s is out of range of the number of items in the select list."},
    {109, 15, 1,
     "There are more columns in the INSERT statement than values specified in the VALUES clause. The number "
     "of "
     "values in the VALUES clause must match the number of columns specified in the INSERT statement."},
    {110, 15, 1,
     "There are fewer columns in the INSERT statement than values specified in the VALUES clause. The number "
     "of "
     "values in the VALUES clause must match the number of columns specified in the INSERT statement."},
    {111, 15, 1, "'%s' must be the first statement in a query batch."},
    {112, 15, 1, "Variables are not allowed in the %s statement."},
    {113, 15, 1, "Missing end comment mark '*/'."},
    {116, 16, 1,
     "Only one expression can be specified in the select list when the subquery is not introduced with "
     "EXISTS."},
    {117, 15, 1, "The %s name '%s' contains more than the maximum number of prefixes. The maximum is %s."},
    {119, 15, 1,
     "Must pass parameter number %s and subsequent parameters as '@name = value'. After the form '@name = "
     "value' "
     "has been used, all subsequent parameters must be passed in the form '@name = value'."},
    {120, 15, 1,
     "The select list for the INSERT statement contains fewer items than the insert list. The number of "
     "SELECT "
     "values must match the number of INSERT columns."},
    {121, 15, 1,
     "The select list for the INSERT statement contains more items than the insert list. The number of "
     "SELECT "
     "values must match the number of INSERT columns."},
    {127, 15, 1, "A TOP N or FETCH rowcount value may not be negative."},
    {128, 15, 1,
     "The name \"%s\" is not permitted in this context. Valid expressions are constants, constant "
     "expressions, and "
     "(in some contexts) variables. Column names are not permitted."},
    {130, 16, 1,
     "Cannot perform an aggregate function on an expression containing an aggregate or a subquery."},
    {131, 15, 3, "The size (%s) given to the %s '%s' exceeds the maximum allowed for any data type (%s)."},
    {132, 15, 1,
     "The label '%s' has already been declared. Label names must be unique within a query batch or stored "
     "procedure."},
    {133, 15, 1, "A GOTO statement references the label '%s' but the label has not been declared."},
    {134, 15, 2,
     "The variable name '%s' has already been declared. Variable names must be unique within a query batch "
     "or stored "
     "procedure."},
    {135, 15, 1, "Cannot use a BREAK statement outside the scope of a WHILE statement."},
    {136, 15, 1, "Cannot use a CONTINUE statement outside the scope of a WHILE statement."},
    {137, 15, 2, "Must declare the scalar variable \"%s\"."},
    {139, 15, 1, "Cannot assign a default value to a local variable."},
    {141, 15, 1,
     "A SELECT statement that assigns a value to a variable must not be combined with data-retrieval "
     "operations."},
    {142, 15, 2, "Incorrect syntax for definition of the '%s' constraint."},
    {144, 15, 1,
     "Cannot use an aggregate or a subquery in an expression used for the group by list of a GROUP BY "
     "clause."},
    {145, 15, 1, "ORDER BY items must appear in the select list if SELECT DISTINCT is specified."},
    {147, 15, 1,
     "An aggregate may not appear in the WHERE clause unless it is in a subquery contained in a HAVING "
     "clause or a "
     "select list, and the column being aggregated is an outer reference."},
    {148, 15, 1, "Incorrect time syntax in time string '%s' used with WAITFOR."},
    {149, 15, 1, "Time value '%s' used with WAITFOR is not a valid value. Check date/time syntax."},
    {153, 15, 1, "Invalid usage of the option %s in the %s statement."},
    {154, 15, 1, "%s is not allowed in %s."},
    {155, 15, 1, "'%s' is not a recognized %s option."},
    {156, 15, 1, "Incorrect syntax near the keyword '%s'."},
    {157, 15, 1, "An aggregate may not appear in the set list of an UPDATE statement."},
    {158, 15, 1, "An aggregate may not appear in the OUTPUT clause."},
    {163, 15, 1, "The compute by list does not match the order by list."},
    {164, 15, 1, "Each GROUP BY expression must contain at least one column that is not an outer reference."},
    {165, 16, 2, "Privilege %s may not be granted or revoked."},
    {166, 15, 1, "'%s' does not allow specifying the database name as a prefix to the object name."},
    {168, 15, 1, "The floating point value '%s' is out of the range of computer representation (%s bytes)."},
    {170, 15, 1, "Line %s: Incorrect syntax near '%s'."},
    {173, 15, 1, "The definition for column '%s' must include a data type."},
    {174, 15, 1, "The %s function requires %s argument(s)."},
    {178, 15, 1, "A RETURN statement with a return value cannot be used in this context."},
    {179, 15, 1, "Cannot use the OUTPUT option when passing a constant to a stored procedure."},
    {180, 15, 1, "There are too many parameters in this %s statement. The maximum number is %s."},
    {183, 15, 1, "The scale (%s) for column '%s' must be within the range %s to %s."},
    {189, 15, 1, "The %s function requires %s to %s arguments."},
    {191, 15, 1,
     "Some part of your SQL statement is nested too deeply. Rewrite the query or break it up into smaller "
     "queries."},
    {192, 16, 1, "The scale must be less than or equal to the precision."},
    {195, 15, 10, "'%s' is not a recognized %s."},
    {201, 16, 4, "Procedure or function '%s' expects parameter '%s', which was not supplied."},
    {203, 16, 2, "The name '%s' is not a valid identifier."},
    {205, 16, 1,
     "All queries combined using a UNION, INTERSECT or EXCEPT operator must have an equal number of "
     "expressions in "
     "their target lists."},
    {206, 16, 2, "Operand type clash: %s is incompatible with %s"},
    {207, 16, 1, "Invalid column name '%s'."},
    {208, 16, 1, "Invalid object name '%s'."},
    {209, 16, 1, "Ambiguous column name '%s'."},
    {213, 16, 1, "Column name or number of supplied values does not match table definition."},
    {214, 16, 2, "Procedure expects parameter '%s' of type '%s'."},
    {216, 16, 1, "Parameters were not supplied for the function '%s'."},
    {217, 16, 1, "Maximum stored procedure, function, trigger, or view nesting level exceeded (limit %s)."},
    {220, 16, 2, "Arithmetic overflow error for data type %s, value = %s."},
    {229, 14, 5, "The %s permission was denied on the object '%s', database '%s', schema '%s'."},
    {230, 14, 1,
     "The %s permission was denied on the column '%s' of the object '%s', database '%s', schema '%s'."},
    {232, 16, 3, "Arithmetic overflow error for type %s, value = %s."},
    {233, 16, 2, "The column '%s' in table '%s' cannot be null."},
    {235, 16, 0, "Cannot convert a char value to money. The char value has incorrect syntax."},
    {241, 16, 1, "Conversion failed when converting date and/or time from character string."},
    {242, 16, 3, "The conversion of a %s data type to a %s data type resulted in an out-of-range value."},
    {243, 16, 1, "Type %s is not a defined system type."},
    {244, 16, 1, "The conversion of the %s value '%s' overflowed an %s column. Use a larger integer column."},
    {245, 16, 1, "Conversion failed when converting the %s value '%s' to data type %s."},
    {248, 16, 1, "The conversion of the %s value '%s' overflowed an int column."},
    {252, 16, 1, "Recursive common table expression '%s' does not contain a top-level UNION ALL operator."},
    {257, 16, 3,
     "Implicit conversion from data type %s to %s is not allowed. Use the CONVERT function to run this "
     "query."},
    {259, 16, 1, "Ad hoc updates to system catalogs are not allowed."},
    {260, 16, 1,
     "Disallowed implicit conversion from data type %s to data type %s, table '%s', column '%s'. Use the "
     "CONVERT "
     "function to run this query."},
    {262, 14, 1, "%s permission denied in database '%s'."},
    {263, 16, 1, "Must specify table to select from."},
    {264, 16, 1,
     "The column name '%s' is specified more than once in the SET clause or column list of an INSERT. A "
     "column "
     "cannot be assigned more than one value in the same clause. Modify the clause to make sure that a "
     "column is "
     "updated only once. If this statement updates or inserts columns into a view, column aliasing can "
     "conceal the "
     "duplication in your code."},
    {266, 16, 2,
     "Transaction count after EXECUTE indicates a mismatching number of BEGIN and COMMIT statements. "
     "Previous count "
     "= %s, current count = %s."},
    {270, 16, 1, "Object '%s' cannot be modified."},
    {271, 16, 1,
     "The column \"%s\" cannot be modified because it is either a computed column or is the result of a "
     "UNION "
     "operator."},
    {272, 16, 1, "Cannot update a timestamp column."},
    {273, 16, 1,
     "Cannot insert an explicit value into a timestamp column. Use INSERT with a column list to exclude the "
     "timestamp column, or insert a DEFAULT into the timestamp column."},
    {278, 16, 1, "The text, ntext, and image data types cannot be used in a GROUP BY clause."},
    {280, 16, 1, "Only base table columns are allowed in the TEXTPTR function."},
    {281, 16, 1, "%s is not a valid style number when converting from %s to a character string."},
    {289, 16, 1, "Cannot construct data type %s, some of the arguments have values which are not valid."},
    {291, 16, 1, "CAST or CONVERT: invalid attributes specified for type '%s'"},
    {295, 16, 3, "Conversion failed when converting character string to smalldatetime data type."},
    {297, 16, 10, "The user does not have permission to perform this action."},
    {306, 16, 2,
     "The text, ntext, and image data types cannot be compared or sorted, except when using IS NULL or LIKE "
     "operator."},
    {310, 16, 1, "The value %s specified for the MAXRECURSION option exceeds the allowed maximum of %s."},
    {319, 15, 1,
     "Incorrect syntax near the keyword 'with'. If this statement is a common table expression, an "
     "xmlnamespaces "
     "clause or a change tracking context clause, the previous statement must be terminated with a "
     "semicolon."},
    {334, 16, 1,
     "The target table '%s' of the DML statement cannot have any enabled triggers if the statement contains "
     "an "
     "OUTPUT clause without INTO clause."},
    {336, 15, 1, "Incorrect syntax near '%s'."},
    {402, 16, 1, "The data types %s and %s are incompatible in the %s operator."},
    {403, 16, 1, "Invalid operator for data type. Operator equals %s, type equals %s."},
    {406, 16, 1, "%s cannot be used in the PIVOT operator because it is not invariant to NULLs."},
    {408, 16, 1, "A constant expression was encountered in the ORDER BY list, position %s."},
    {409, 16, 2, "The %s operator cannot take a %s data type as an argument."},
    {412, 16, 1, "Operand data type %s is invalid for %s operator."},
    {421, 16, 1, "The %s data type cannot be selected as DISTINCT because it is not comparable."},
    {425, 16, 1, "Data type %s of receiving variable is not equal to the data type %s of column '%s'."},
    {434, 16, 1, "Function '%s' is not allowed in the OUTPUT clause."},
    {443, 16, 1, "Invalid use of a side-effecting operator '%s' within a function."},
    {446, 16, 8, "Cannot resolve collation conflict for %s operation."},
    {447, 16, 0, "Expression type %s is invalid for COLLATE clause."},
    {448, 16, 1, "Invalid collation '%s'."},
    {457, 16, 1,
     "Implicit conversion of %s value to %s cannot be performed because the collation of the value is "
     "unresolved due "
     "to a collation conflict."},
    {468, 16, 9, "Cannot resolve the collation conflict between \"%s\" and \"%s\" in the %s operation."},
    {492, 16, 1,
     "Duplicate column names are not allowed in result sets obtained through OPENQUERY and OPENROWSET. "
     "The column name \"%s\" is a duplicate."},
    {506, 16, 1, "The invalid escape character \"%s\" was specified in a %s predicate."},
    {507, 16, 1, "Invalid argument for SET ROWCOUNT. Must be a non-null non-negative integer."},
    {511, 16, 1, "Cannot create a row that is greater than the allowable maximum row size of 8060."},
    {512, 16, 1,
     "Subquery returned more than 1 value. This is not permitted when the subquery follows =, !=, <, <= , >, "
     ">= or "
     "when the subquery is used as an expression."},
    {513, 16, 0,
     "A column insert or update conflicts with a rule imposed by a previous CREATE RULE statement. The "
     "statement was "
     "terminated. The conflict occurred in database '%s', table '%s', column '%s'."},
    {515, 16, 2,
     "Cannot insert the value NULL into column '%s', table '%s'; column does not allow nulls. %s fails."},
    {517, 16, 1, "Adding a value to a '%s' column caused an overflow."},
    {518, 16, 1, "Cannot convert data type %s to data type %s."},
    {529, 16, 2, "Explicit conversion from data type %s to %s is not allowed."},
    {530, 16, 1,
     "The statement terminated. The maximum recursion %s has been exhausted before statement completion."},
    {532, 16, 1, "The timestamp (changed to %s) shows that the row has been updated by another user."},
    {535, 16, 0,
     "The datediff function resulted in an overflow. The number of dateparts separating two date/time "
     "instances is "
     "too large. Try to use datediff with a less precise datepart."},
    {536, 16, 1, "Invalid length parameter passed to the %s function."},
    {537, 16, 2, "Invalid length parameter passed to the LEFT or SUBSTRING function."},
    {544, 16, 1,
     "Cannot insert explicit value for identity column in table '%s' when IDENTITY_INSERT is set to OFF."},
    {545, 16, 1,
     "Explicit value must be specified for identity column in table '%s' either when IDENTITY_INSERT is set "
     "to ON or "
     "when a replication user is inserting into a NOT FOR REPLICATION identity column."},
    {547, 16, 0,
     "The %s statement conflicted with the %s constraint \"%s\". The conflict occurred in database "
     "\"%s\", table \"%s\"%s."},
    {550, 16, 1,
     "The attempted insert or update failed because the target view either specifies WITH CHECK OPTION or "
     "spans a "
     "view that specifies WITH CHECK OPTION and one or more rows resulting from the operation did not "
     "qualify under "
     "the CHECK OPTION constraint."},
    {556, 16, 2, "INSERT EXEC failed because the stored procedure altered the schema of the target table."},
    {557, 16, 2,
     "Only functions and some extended stored procedures can be executed from within a function."},
    {615, 21, 1, "Could not find database ID %s, name '%s'."},
    {628, 16, 0, "Cannot issue SAVE TRANSACTION when there is no active transaction."},
    {650, 16, 1,
     "You can only specify the READPAST lock in the READ COMMITTED or REPEATABLE READ isolation levels."},
    {701, 17, 1, "There is insufficient system memory in resource pool '%s' to run this query."},
    {911, 16, 1, "Database '%s' does not exist. Make sure that the name is entered correctly."},
    {916, 14, 1,
     "The server principal \"%s\" is not able to access the database \"%s\" under the current security "
     "context."},
    {921, 14, 2, "Database '%s' has not been recovered yet. Wait and try again."},
    {927, 14, 2, "Database '%s' cannot be opened. It is in the middle of a restore."},
    {942, 14, 4, "Database '%s' cannot be opened because it is offline."},
    {1001, 15, 1, "Line %s: Length or precision specification %s is invalid."},
    {1002, 15, 1, "Line %s: Specified scale %s is invalid."},
    {1007, 15, 1, "The number '%s' is out of the range for numeric representation (maximum precision 38)."},
    {1010, 15, 1, "Invalid escape character '%s'."},
    {1011, 15, 1, "The correlation name '%s' is specified multiple times in a FROM clause."},
    {1012, 15, 1, "The correlation name '%s' has the same exposed name as table '%s'."},
    {1013, 15, 1,
     "The objects \"%s\" and \"%s\" in the FROM clause have the same exposed names. Use correlation names to "
     "distinguish them."},
    {1014, 15, 1, "A TOP or FETCH clause contains an invalid value."},
    {1015, 15, 1,
     "An aggregate cannot appear in an ON clause unless it is in a subquery contained in a HAVING clause or "
     "select "
     "list, and the column being aggregated is an outer reference."},
    {1023, 15, 1, "Invalid parameter %s specified for %s."},
    {1031, 15, 1, "Percent values must be between 0 and 100."},
    {1033, 15, 1,
     "The ORDER BY clause is invalid in views, inline functions, derived tables, subqueries, and common "
     "table "
     "expressions, unless TOP, OFFSET or FOR XML is also specified."},
    {1035, 15, 10, "Incorrect syntax near '%s', expected '%s'."},
    {1038, 15, 5,
     "An object or column name is missing or empty. For SELECT INTO statements, verify each column has a "
     "name. For "
     "other statements, look for empty alias names. Aliases defined as \"\" or [] are not allowed. Change "
     "the alias "
     "to a valid name."},
    {1046, 15, 1, "Subqueries are not allowed in this context. Only scalar expressions are allowed."},
    {1051, 15, 1,
     "Cursor parameters in a stored procedure must be declared with OUTPUT and VARYING options, and they "
     "must be "
     "specified in the order CURSOR VARYING OUTPUT."},
    {1056, 15, 1,
     "The number of elements in the select list exceeds the maximum allowed number of %s elements."},
    {1060, 15, 1,
     "The number of rows provided for a TOP or FETCH clauses row count parameter must be an integer."},
    {1062, 15, 1, "The TOP N WITH TIES clause is not allowed without a corresponding ORDER BY clause."},
    {1087, 15, 2, "Must declare the table variable \"%s\"."},
    {1205, 13, 51,
     "Transaction (Process ID %s) was deadlocked on lock resources with another process and has been chosen "
     "as the "
     "deadlock victim. Rerun the transaction."},
    {1222, 16, 51, "Lock request time out period exceeded."},
    {1934, 16, 1,
     "%s failed because the following SET options have incorrect settings: '%s'. Verify that SET options are "
     "correct "
     "for use with indexed views and/or indexes on computed columns and/or filtered indexes and/or query "
     "notifications and/or XML data type methods and/or spatial index operations."},
    {2557, 14, 5, "User '%s' does not have permission to run DBCC %s for object '%s'."},
    {2571, 14, 3, "User '%s' does not have permission to run DBCC %s."},
    {2601, 14, 1,
     "Cannot insert duplicate key row in object '%s' with unique index '%s'. The duplicate key value is "
     "(%s)."},
    {2627, 14, 1,
     "Violation of %s constraint '%s'. Cannot insert duplicate key in object '%s'. The duplicate key value "
     "is (%s)."},
    {2628, 16, 1,
     "String or binary data would be truncated in table '%s', column '%s'. Truncated value: '%s'."},
    {2732, 16, 1,
     "Error number %s is invalid. The number must be from %s through %s and it cannot be 50000."},
    {2740, 16, 1,
     "SET LANGUAGE failed because '%s' is not an official language name or a language alias on this SQL "
     "Server."},
    {2741, 16, 1, "SET DATEFORMAT date order '%s' is invalid."},
    {2742, 16, 1, "SET DATEFIRST %s is out of range."},
    {2747, 16, 1,
     "Too many substitution parameters for RAISERROR. Cannot exceed %s substitution parameters."},
    {2748, 16, 1, "Cannot specify %s data type (parameter %s) as a substitution parameter."},
    {2754, 16, 1,
     "Error severity levels greater than 18 can only be specified by members of the sysadmin role, using the "
     "WITH LOG option."},
    {2786, 16, 1,
     "The data type of substitution parameter %s does not match the expected type of the format "
     "specification."},
    {2787, 16, 1, "Invalid format specification: '%s'."},
    {2812, 16, 62, "Could not find stored procedure '%s'."},
    {3606, 0, 0, "Arithmetic overflow occurred."},
    {3609, 16, 1, "The transaction ended in the trigger. The batch has been aborted."},
    {3616, 16, 1,
     "An error was raised during trigger execution. The batch has been aborted and the user transaction, if "
     "any, has "
     "been rolled back."},
    {3621, 0, 0, "The statement has been terminated."},
    {3623, 16, 1, "An invalid floating point operation occurred."},
    {3704, 16, 1, "User does not have permission to perform this operation on %s '%s'."},
    {3902, 16, 1, "The COMMIT TRANSACTION request has no corresponding BEGIN TRANSACTION."},
    {3903, 16, 1, "The ROLLBACK TRANSACTION request has no corresponding BEGIN TRANSACTION."},
    {3930, 16, 1,
     "The current transaction cannot be committed and cannot support operations that write to the log file. "
     "Roll "
     "back the transaction."},
    {3998, 16, 1,
     "Uncommittable transaction is detected at the end of the batch. The transaction is rolled back."},
    {4019, 16, 1,
     "Language requested in login '%s' is not an official language name on this SQL Server. Login fails."},
    {4060, 11, 1, "Cannot open database \"%s\" requested by the login. The login failed."},
    {4064, 11, 1, "Cannot open user default database. Login failed."},
    {4104, 16, 1, "The multi-part identifier \"%s\" could not be bound."},
    {4108, 15, 1, "Windowed functions can only appear in the SELECT or ORDER BY clauses."},
    {4112, 15, 1, "The function '%s' must have an OVER clause with ORDER BY."},
    {4116, 16, 1, "The function '%s' takes only a positive int or bigint expression as its input."},
    {4121, 16, 1,
     "Cannot find either column \"%s\" or the user-defined function or aggregate \"%s\", or the name is "
     "ambiguous."},
    {4127, 16, 1,
     "At least one of the arguments to COALESCE must be an expression that is not the NULL constant."},
    {4145, 15, 1,
     "An expression of non-boolean type specified in a context where a condition is expected, near '%s'."},
    {4147, 15, 1,
     "The query uses non-ANSI outer join operators (\"*=\" or \"=*\"). To run this query without "
     "modification, please "
     "set the compatibility level for current database to 80, using the SET COMPATIBILITY_LEVEL option of "
     "ALTER "
     "DATABASE. It is strongly recommended to rewrite the query using ANSI outer join operators (LEFT OUTER "
     "JOIN, RIGHT "
     "OUTER JOIN). In the future versions of SQL Server, non-ANSI join operators will not be supported even "
     "in "
     "backward-compatibility modes."},
    {4151, 16, 1,
     "The type of the first argument to NULLIF cannot be the NULL constant because the type of the first "
     "argument has "
     "to be known."},
    {4405, 16, 1,
     "View or function '%s' is not updatable because the modification affects multiple base tables."},
    {4406, 16, 1,
     "Update or insert of view or function '%s' failed because it contains a derived or constant field."},
    {4413, 16, 1, "Could not use view or function '%s' because of binding errors."},
    {4502, 16, 1, "View or function '%s' has more column names specified than columns defined."},
    {4701, 16, 1, "Cannot find the object \"%s\" because it does not exist or you do not have permissions."},
    {4708, 16, 2, "Could not truncate object '%s' because it is not a table."},
    {4712, 16, 1, "Cannot truncate table '%s' because it is being referenced by a FOREIGN KEY constraint."},
    {5300, 16, 1, "SELECT INTO cannot be submitted with OPTION clause."},
    {5308, 16, 1, "Windowed functions do not support integer indices as ORDER BY clause expressions."},
    {5309, 16, 1, "Windowed functions do not support constants as ORDER BY clause expressions."},
    {5701, 0, 2, "Changed database context to '%s'."},
    {5703, 0, 1, "Changed language setting to %s."},
    {6104, 16, 1, "Cannot use KILL to kill your own process."},
    {6106, 16, 2, "Process ID %s is not an active process ID."},
    {6401, 16, 1, "Cannot roll back %s. No transaction or savepoint of that name was found."},
    {6522, 16, 1,
     "A .NET Framework error occurred during execution of user-defined routine or aggregate \"%s\"."},
    {7601, 16, 1, "Cannot use a CONTAINS or FREETEXT predicate on %s because it is not full-text indexed."},
    {7983, 14, 36, "User '%s' does not have permission to run DBCC %s for database '%s'."},
    {7997, 16, 1, "'%s' does not contain an identity column."},
    {8101, 16, 1,
     "An explicit value for the identity column in table '%s' can only be specified when a column list is "
     "used and "
     "IDENTITY_INSERT is ON."},
    {8102, 16, 1, "Cannot update identity column '%s'."},
    {8106, 16, 1, "Table '%s' does not have the identity property. Cannot perform SET operation."},
    {8107, 16, 1,
     "IDENTITY_INSERT is already ON for table '%s'. Cannot perform SET operation for table '%s'."},
    {8114, 16, 5, "Error converting data type %s to %s."},
    {8115, 16, 2, "Arithmetic overflow error converting expression to data type %s."},
    {8116, 16, 1, "Argument data type %s is invalid for argument %s of %s function."},
    {8117, 16, 1, "Operand data type %s is invalid for %s operator."},
    {8118, 16, 1,
     "Column '%s' is invalid in the select list because it is not contained in an aggregate function and "
     "there is no "
     "GROUP BY clause."},
    {8119, 16, 1,
     "Column '%s' is invalid in the HAVING clause because it is not contained in an aggregate function and "
     "there is "
     "no GROUP BY clause."},
    {8120, 16, 1,
     "Column '%s' is invalid in the select list because it is not contained in either an aggregate function "
     "or the "
     "GROUP BY clause."},
    {8121, 16, 1,
     "Column '%s' is invalid in the HAVING clause because it is not contained in either an aggregate "
     "function or the "
     "GROUP BY clause."},
    {8124, 16, 1,
     "Multiple columns are specified in an aggregated expression containing an outer reference. If an "
     "expression "
     "being aggregated contains an outer reference, then that outer reference must be the only column "
     "referenced in "
     "the expression."},
    {8126, 16, 1,
     "Column \"%s\" is invalid in the ORDER BY clause because it is not contained in an aggregate function "
     "and there "
     "is no GROUP BY clause."},
    {8127, 16, 1,
     "Column \"%s\" is invalid in the ORDER BY clause because it is not contained in either an aggregate "
     "function or "
     "the GROUP BY clause."},
    {8133, 16, 1,
     "At least one of the result expressions in a CASE specification must be an expression other than the "
     "NULL "
     "constant."},
    {8134, 16, 1, "Divide by zero error encountered."},
    {8143, 16, 1, "Parameter '%s' was supplied multiple times."},
    {8144, 16, 2, "Procedure or function %s has too many arguments specified."},
    {8145, 16, 2, "%s is not a parameter for procedure %s."},
    {8146, 16, 2, "Procedure %s has no parameters and arguments were supplied."},
    {8152, 16, 14, "String or binary data would be truncated."},
    {8153, 0, 1, "Warning: Null value is eliminated by an aggregate or other SET operation."},
    {8155, 16, 2, "No column name was specified for column %s of '%s'."},
    {8156, 16, 1, "The column '%s' was specified multiple times for '%s'."},
    {8158, 16, 1, "'%s' has more columns than were specified in the column list."},
    {8159, 16, 1, "'%s' has fewer columns than were specified in the column list."},
    {8162, 16, 2,
     "The formal parameter \"%s\" was not declared as an OUTPUT parameter, but the actual parameter passed "
     "in "
     "requested output."},
    {8169, 16, 2, "Conversion failed when converting from a character string to uniqueidentifier."},
    {8178, 16, 1, "The parameterized query '%s' expects the parameter '%s', which was not supplied."},
    {8179, 16, 2, "Could not find prepared statement with handle %s."},
    {8180, 16, 1, "Statement(s) could not be prepared."},
    {8501, 16, 3, "MSDTC on server '%s' is unavailable."},
    {8623, 16, 1,
     "The query processor ran out of internal resources and could not produce a query plan. This is a rare "
     "event and only expected for extremely complex queries or queries that reference a very large number "
     "of tables or partitions. Please simplify the query. If you believe you have received this message in "
     "error, contact Customer Support Services for more information."},
    {8630, 16, 1,
     "Internal Query Processor Error: The query processor encountered an unexpected error during execution."},
    {8672, 16, 1, "The MERGE statement attempted to UPDATE or DELETE the same row more than once."},
    {8921, 16, 1,
     "Check terminated. A failure was detected while collecting facts. Possibly tempdb out of space or a "
     "system table "
     "is inconsistent. Check previous errors."},
    {9002, 17, 2, "The transaction log for database '%s' is full due to '%s'."},
    {9810, 16, 1, "The datepart %s is not supported by date function %s for data type %s."},
    {9815, 16, 1, "Waitfor delay and waitfor time cannot be of type %s."},
    {10704, 15, 1,
     "To rethrow an error, a THROW statement must be used inside a CATCH block. Insert the THROW statement "
     "inside a "
     "CATCH block, or add error parameters to the THROW statement."},
    {10709, 16, 1, "The number of columns for each row in a table value constructor must be the same."},
    {10727, 15, 1,
     "A nested INSERT, UPDATE, DELETE, or MERGE statement is not allowed on either side of a JOIN or APPLY "
     "operator."},
    {10733, 15, 1,
     "The %s clause is not allowed when the FROM clause contains a nested INSERT, UPDATE, DELETE, or MERGE "
     "statement."},
    {10738, 15, 1,
     "The number of row value expressions in the INSERT statement exceeds the maximum allowed number of %s "
     "row values."},
    {10739, 15, 1,
     "The insert column list used in the MERGE statement cannot contain multi-part identifiers. Use single "
     "part identifiers instead."},
    {10741, 15, 2, "A TOP can not be used in the same query or sub-query as a OFFSET."},
    {10753, 15, 3, "The function '%s' must have an OVER clause."},
    {16905, 16, 1, "The cursor is already open."},
    {16911, 16, 1, "%s: The fetch type %s cannot be used with forward only cursors."},
    {16915, 16, 1, "A cursor with the name '%s' already exists."},
    {16916, 16, 1, "A cursor with the name '%s' does not exist."},
    {16917, 16, 2, "Cursor is not open."},
    {16924, 16, 1,
     "Cursorfetch: The number of variables declared in the INTO list must match that of selected columns."},
    {16929, 16, 1, "The cursor is READ ONLY."},
    {16931, 16, 1, "There are no rows in the current fetch buffer."},
    {18054, 16, 1,
     "Error %s, severity %s, state %s was raised, but no message with that error number was found in "
     "sys.messages. If error is larger than 50000, make sure the user-defined message is added using "
     "sp_addmessage."},
    {18456, 14, 1, "Login failed for user '%s'."},
};

} // namespace

const MessageText* findMessageText(int number)
{
    const auto* found =
        std::lower_bound(std::begin(texts), std::end(texts), number,
                         [](const MessageText& text, int wanted) { return text.number < wanted; });
    return found != std::end(texts) && found->number == number ? found : findDdlMessageText(number);
}

static_assert(std::is_sorted(std::begin(texts), std::end(texts),
                             [](const MessageText& a, const MessageText& b) { return a.number < b.number; }),
              "messages stand in the order of their numbers");

} // namespace practice
