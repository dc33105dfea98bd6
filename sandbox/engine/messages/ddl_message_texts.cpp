#include "engine/messages/ddl_message_texts.h"

#include <algorithm>
#include <iterator>

namespace practice {
namespace {

// Ascending by number, as the assertion below holds it to.
constexpr MessageText ddlTexts[] = {
    {129, 15, 1, "Fillfactor %s is not a valid percentage; fillfactor must be between 1 and 100."},
    {188, 15, 1,
     "Cannot specify a log file in a CREATE DATABASE statement without also specifying at least one data "
     "file."},
    {226, 16, 6, "%s statement not allowed within multi-statement transaction."},
    {574, 16, 0, "%s statement cannot be used inside a user transaction."},
    {622, 16, 3,
     "The filegroup \"%s\" has no files assigned to it. Tables, indexes, text columns, ntext columns, and "
     "image columns cannot be populated on this filegroup until a file is added."},
    {1020, 15, 1,
     "Sub-entity lists (such as column or security expressions) cannot be specified for entity-level "
     "permissions."},
    {1088, 16, 12, "Cannot find the object \"%s\" because it does not exist or you do not have permissions."},
    {1505, 16, 1,
     "The CREATE UNIQUE INDEX statement terminated because a duplicate key was found for the object name "
     "'%s' and "
     "the index name '%s'. The duplicate key value is (%s)."},
    {1701, 16, 1,
     "Creating or altering table '%s' failed because the minimum row size would be %s, including %s bytes of "
     "internal overhead. This exceeds the maximum allowable table row size of %s bytes."},
    {1702, 16, 1, "CREATE TABLE failed because column '%s' in table '%s' exceeds the maximum of %s columns."},
    {1750, 16, 0, "Could not create constraint or index. See previous errors."},
    {1752, 16, 0, "Column '%s' in table '%s' is invalid for creating a default constraint."},
    {1753, 16, 0,
     "Column '%s.%s' is not the same length or scale as referencing column '%s.%s' in foreign key '%s'. "
     "Columns "
     "participating in a foreign key relationship must be defined with the same length and scale."},
    {1754, 16, 0,
     "Defaults cannot be created on columns with an IDENTITY attribute. Table '%s', column '%s'."},
    {1755, 16, 0, "Defaults cannot be created on columns of data type timestamp. Table '%s', column '%s'."},
    {1757, 16, 0,
     "Column '%s.%s' is not of same collation as referencing column '%s.%s' in foreign key '%s'."},
    {1759, 16, 0,
     "Computed column '%s' in table '%s' is not allowed to be used in another computed-column definition."},
    {1763, 16, 0, "Cross-database foreign key references are not supported. Foreign key '%s'."},
    {1767, 16, 0, "Foreign key '%s' references invalid table '%s'."},
    {1769, 16, 1, "Foreign key '%s' references invalid column '%s' in referencing table '%s'."},
    {1770, 16, 0, "Foreign key '%s' references invalid column '%s' in referenced table '%s'."},
    {1773, 16, 0,
     "Foreign key '%s' has implicit reference to object '%s' which does not have a primary key defined on "
     "it."},
    {1774, 16, 0,
     "The number of columns in the referencing column list for foreign key '%s' does not match those of the "
     "primary "
     "key in the referenced table '%s'."},
    {1776, 16, 0,
     "There are no primary or candidate keys in the referenced table '%s' that match the referencing column "
     "list in "
     "the foreign key '%s'."},
    {1778, 16, 0,
     "Column '%s.%s' is not the same data type as referencing column '%s.%s' in foreign key '%s'."},
    {1779, 16, 0, "Table '%s' already has a primary key defined on it."},
    {1781, 16, 1, "Column already has a DEFAULT bound to it."},
    {1785, 16, 0,
     "Introducing FOREIGN KEY constraint '%s' on table '%s' may cause cycles or multiple cascade paths. "
     "Specify ON "
     "DELETE NO ACTION or ON UPDATE NO ACTION, or modify other FOREIGN KEY constraints."},
    {1801, 16, 3, "Database '%s' already exists. Choose a different database name."},
    {1802, 16, 4,
     "CREATE DATABASE failed. Some file names listed could not be created. Check related errors."},
    {1803, 16, 1,
     "The CREATE DATABASE statement failed. The primary file must be at least %s MB to accommodate a copy of "
     "the "
     "model database."},
    {1813, 16, 2, "Could not open new database '%s'. CREATE DATABASE is aborted."},
    {1826, 16, 1, "User-defined filegroups are not allowed on \"%s\"."},
    {1828, 16, 3, "The logical file name \"%s\" is already in use. Choose a different name."},
    {1834, 16, 1, "The file '%s' cannot be overwritten. It is being used by database '%s'."},
    {1842, 16, 1,
     "The file size, max size cannot be greater than 2147483647 in units of a page size. The file growth "
     "cannot be "
     "greater than 2147483647 in units of both page size and percentage."},
    {1902, 16, 3,
     "Cannot create more than one clustered index on table '%s'. Drop the existing clustered index '%s' "
     "before "
     "creating another."},
    {1904, 16, 1,
     "The index '%s' on table '%s' has %s column names in index key list. The maximum limit for index or "
     "statistics "
     "key column list is %s."},
    {1907, 16, 1,
     "Cannot recreate index '%s'. The new index definition does not match the constraint being enforced by "
     "the "
     "existing index."},
    {1909, 16, 1,
     "Cannot use duplicate column names in index key list. Column name '%s' listed more than once."},
    {1910, 16, 1, "Could not create more than %s nonclustered indexes or column statistics on table '%s'."},
    {1911, 16, 1, "Column name '%s' does not exist in the target table or view."},
    {1913, 16, 1,
     "The operation failed because an index or statistics with name '%s' already exists on table '%s'."},
    {1914, 16, 1, "Index cannot be created on object '%s' because the object is not a user table or view."},
    {1916, 16, 4, "CREATE INDEX options %s and %s are mutually exclusive."},
    {1919, 16, 1,
     "Column '%s' in table '%s' is of a type that is invalid for use as a key column in an index."},
    {1921, 16, 1, "Invalid filegroup '%s' specified."},
    {1925, 16, 2,
     "Cannot convert a clustered index to a nonclustered index by using the DROP_EXISTING option. To change "
     "the index type from clustered to nonclustered, delete the clustered index, and then create a "
     "nonclustered "
     "index by using two separate statements."},
    {1939, 16, 1, "Cannot create index on view '%s' because the view is not schema bound."},
    {1944, 16, 1,
     "Index '%s' was not created. This index has a key length of at least %s bytes. The maximum permissible "
     "key "
     "length is %s bytes."},
    {1945, 10, 1,
     "Warning! The maximum key length is %s bytes. The index '%s' has maximum length of %s bytes. For some "
     "combination of large values, the insert/update operation will fail."},
    {2501, 16, 45, "Cannot find a table or object with the name \"%s\". Check the system catalog."},
    {2702, 16, 2, "Database '%s' does not exist."},
    {2705, 16, 3,
     "Column names in each table must be unique. Column name '%s' in table '%s' is specified more than "
     "once."},
    {2706, 16, 6, "Table '%s' does not exist."},
    {2714, 16, 6, "There is already an object named '%s' in the database."},
    {2715, 16, 6, "Column, parameter, or variable #%s: Cannot find data type %s."},
    {2716, 16, 1, "Column, parameter, or variable #%s: Cannot specify a column width on data type %s."},
    {2717, 15, 2, "The size (%s) given to the %s '%s' exceeds the maximum allowed (%s)."},
    {2727, 11, 1, "Cannot find index '%s'."},
    {2738, 16, 2,
     "A table can only have one timestamp column. Because table '%s' already has one, the column '%s' cannot "
     "be "
     "added."},
    {2744, 16, 2,
     "Multiple identity columns specified for table '%s'. Only one identity column per table is allowed."},
    {2749, 16, 2,
     "Identity column '%s' must be of data type int, bigint, smallint, tinyint, or decimal or numeric with a "
     "scale "
     "of 0, and constrained to be nonnullable."},
    {2750, 16, 1,
     "Column or parameter #%s: Specified column precision %s is greater than the maximum precision of %s."},
    {2752, 16, 1, "Identity column '%s' contains invalid SEED."},
    {2753, 16, 1, "Identity column '%s' contains invalid INCREMENT."},
    {2759, 16, 0, "CREATE SCHEMA failed due to previous errors."},
    {2760, 16, 1,
     "The specified schema name \"%s\" either does not exist or you do not have permission to use it."},
    {2761, 16, 1, "The ROWGUIDCOL property can only be specified on the uniqueidentifier data type."},
    {3013, 16, 1, "%s is terminating abnormally."},
    {3014, 0, 1, "%s successfully processed %s pages in %s seconds (%s MB/sec)."},
    {3021, 16, 0, "Cannot perform a backup or restore operation within a transaction."},
    {3023, 16, 2,
     "Backup and file manipulation operations (such as ALTER DATABASE ADD FILE) on a database must be "
     "serialized. Reissue the statement after the current backup or file manipulation operation is "
     "completed."},
    {3024, 16, 0,
     "You can only perform a full backup of the master database. Use BACKUP DATABASE to back up the entire "
     "master database."},
    {3035, 16, 1,
     "Cannot perform a differential backup for database \"%s\", because a current database backup does not "
     "exist. Perform a full database backup by reissuing BACKUP DATABASE, omitting the WITH DIFFERENTIAL "
     "option."},
    {3044, 16, 1, "Invalid zero-length device name. Reissue the BACKUP statement with a valid device name."},
    {3101, 16, 1, "Exclusive access could not be obtained because the database is in use."},
    {3102, 16, 1,
     "%s cannot process database '%s' because it is in use by this session. It is recommended that the "
     "master "
     "database be used when performing this operation."},
    {3108, 16, 1,
     "To restore the master database, the server must be running in single-user mode. For information on "
     "starting in single-user mode, see \"How to: Start an Instance of SQL Server (sqlservr.exe)\" in Books "
     "Online."},
    {3110, 14, 1, "User does not have permission to RESTORE database '%s'."},
    {3117, 16, 1,
     "The log or differential backup cannot be restored because no files are ready to rollforward."},
    {3118, 16, 1,
     "The database \"%s\" does not exist. RESTORE can only create a database when restoring either a full "
     "backup or a file backup of the primary file."},
    {3119, 16, 1,
     "Problems were identified while planning for the RESTORE statement. Previous messages provide details."},
    {3135, 16, 1,
     "The backup set in file '%s' was created by %s and cannot be used for this restore operation."},
    {3136, 16, 3,
     "This differential backup cannot be restored because the database has not been restored to the correct "
     "earlier state."},
    {3147, 16, 3, "Backup and restore operations are not allowed on database tempdb."},
    {3153, 16, 1, "The database is already fully recovered."},
    {3154, 16, 4, "The backup set holds a backup of a database other than the existing '%s' database."},
    {3156, 16, 4,
     "File '%s' cannot be restored to '%s'. Use WITH MOVE to identify a valid location for the file."},
    {3176, 16, 1,
     "File '%s' is claimed by '%s'(%s) and '%s'(%s). The WITH MOVE clause can be used to relocate one or "
     "more "
     "files."},
    {3183, 16, 1,
     "RESTORE detected an error on page (%s:%s) in database \"%s\" as read from the backup set."},
    {3201, 16, 2, "Cannot open backup device '%s'. Operating system error %s."},
    {3202, 16, 1, "Write on \"%s\" failed: %s"},
    {3203, 16, 1, "Read on \"%s\" failed: %s"},
    {3206, 16, 1,
     "Backup device '%s' does not exist. To view existing backup devices, use the sys.backup_devices catalog "
     "view. To create a new backup device use either sp_addumpdevice or SQL Server Management Studio."},
    {3211, 0, 1, "%s percent processed."},
    {3234, 16, 2,
     "Logical file '%s' is not part of database '%s'. Use RESTORE FILELISTONLY to list the logical file "
     "names."},
    {3241, 16, 0,
     "The media family on device '%s' is incorrectly formed. SQL Server cannot process this media family."},
    {3254, 16, 1, "The volume on device '%s' is empty."},
    {3262, 0, 1, "The backup set on file %s is valid."},
    {3287, 16, 1, "The file ID %s on device '%s' is not valid."},
    {3701, 11, 5, "Cannot %s the %s '%s', because it does not exist or you do not have permission."},
    {3702, 16, 4, "Cannot drop database \"%s\" because it is currently in use."},
    {3705, 16, 1, "Cannot use DROP %s with '%s' because '%s' is a %s. Use %s."},
    {3708, 16, 1, "Cannot %s the %s '%s' because it is a system %s."},
    {3723, 16, 4,
     "An explicit DROP INDEX is not allowed on index '%s'. It is being used for %s constraint enforcement."},
    {3725, 16, 0, "The constraint '%s' is being referenced by table '%s', foreign key constraint '%s'."},
    {3726, 16, 1, "Could not drop object '%s' because it is referenced by a FOREIGN KEY constraint."},
    {3727, 16, 0, "Could not drop constraint. See previous errors."},
    {3728, 16, 1, "'%s' is not a constraint."},
    {3733, 16, 2, "Constraint '%s' does not belong to table '%s'."},
    {3906, 16, 1, "Failed to update database \"%s\" because the database is read-only."},
    {4035, 0, 1, "Processed %s pages for database '%s', file '%s' on file %s."},
    {4208, 16, 1,
     "The statement %s is not allowed while the recovery model is SIMPLE. Use BACKUP DATABASE or change the "
     "recovery model using ALTER DATABASE."},
    {4212, 16, 1, "Cannot back up the log of the master database. Use BACKUP DATABASE instead."},
    {4214, 16, 1, "BACKUP LOG cannot be performed because there is no current database backup."},
    {4305, 16, 1,
     "The log in this backup set begins at LSN %s, which is too recent to apply to the database. An earlier "
     "log "
     "backup that includes LSN %s can be restored."},
    {4326, 16, 1,
     "The log in this backup set terminates at LSN %s, which is too early to apply to the database. A more "
     "recent log backup that includes LSN %s can be restored."},
    {4330, 16, 1,
     "This backup set cannot be applied because it is on a recovery path that is inconsistent with the "
     "database. The recovery path is the sequence of data and log backups that have brought the database to "
     "a "
     "particular recovery point. Find a compatible backup to restore, or restore the rest of the database to "
     "match a recovery point within this backup set, which will restore the database to a different point in "
     "time.  For more information about recovery paths, see SQL Server Books Online."},
    {4506, 16, 1,
     "Column names in each view or function must be unique. Column name '%s' in view or function '%s' is "
     "specified "
     "more than once."},
    {4511, 16, 1, "Create View or Function failed because no column name was specified for column %s."},
    {4604, 16, 1, "There is no such user or group '%s' or you do not have permission."},
    {4606, 16, 1, "Granted or revoked privilege %s is not compatible with object."},
    {4610, 16, 1, "You can only grant or revoke permissions on objects in the current database."},
    {4613, 16, 1, "Grantor does not have GRANT permission."},
    {4615, 16, 1, "Invalid column name '%s'."},
    {4617, 16, 1, "Cannot grant, deny or revoke permissions to or from special roles."},
    {4618, 16, 1, "You do not have permission to use %s in the AS clause."},
    {4619, 16, 1, "CREATE DATABASE permission can only be granted in the master database."},
    {4621, 16, 10,
     "Permissions at the server scope can only be granted when the current database is master."},
    {4624, 16, 1,
     "Cannot grant, deny, or revoke permissions to sa, dbo, entity owner, information_schema, sys, or "
     "yourself."},
    {4629, 16, 10,
     "Permissions on server scoped catalog views or system stored procedures or extended stored procedures "
     "can be "
     "granted only when the current database is master."},
    {4901, 16, 1,
     "ALTER TABLE only allows columns to be added that can contain nulls, or have a DEFAULT definition "
     "specified, or "
     "the column being added is an identity or timestamp column, or alternatively if none of the previous "
     "conditions "
     "are satisfied the table must be empty to allow addition of this column. Column '%s' cannot be added to "
     "non-empty table '%s' because it does not satisfy these conditions."},
    {4902, 16, 1, "Cannot find the object \"%s\" because it does not exist or you do not have permissions."},
    {4909, 16, 1, "Cannot alter '%s' because it is not a table."},
    {4916, 16, 0, "Could not enable or disable the constraint. See previous errors."},
    {4917, 16, 0, "Constraint '%s' does not exist."},
    {4920, 16, 0, "ALTER TABLE failed because trigger '%s' on table '%s' does not exist."},
    {4922, 16, 9, "ALTER TABLE %s %s failed because one or more objects access this column."},
    {4923, 16, 1,
     "ALTER TABLE DROP COLUMN failed because '%s' is the only data column in table '%s'. A table must have "
     "at least "
     "one data column."},
    {4924, 16, 1, "ALTER TABLE %s failed because column '%s' does not exist in table '%s'."},
    {4927, 16, 1, "Cannot alter column '%s' to be data type %s."},
    {4928, 16, 1, "Cannot alter column '%s' because it is '%s'."},
    {5008, 16, 1,
     "This ALTER DATABASE statement is not supported. Correct the syntax and execute the statement again."},
    {5009, 16, 9,
     "One or more files listed in the statement could not be found or could not be initialized."},
    {5011, 14, 5,
     "User does not have permission to alter database '%s', the database does not exist, or the database is "
     "not in "
     "a state that allows access checks."},
    {5012, 16, 1, "The name of the primary filegroup cannot be changed."},
    {5013, 16, 1,
     "The master and model databases cannot have files added to them. ALTER DATABASE was aborted."},
    {5014, 16, 1, "The %s '%s' does not exist in database '%s'."},
    {5016, 16, 1, "Cannot change the name of the system database %s."},
    {5020, 16, 1, "The primary data or log file cannot be removed from a database."},
    {5021, 10, 1, "The %s name '%s' has been set."},
    {5030, 16, 2, "The database could not be exclusively locked to perform the operation."},
    {5031, 16, 1, "Cannot remove the filegroup '%s' because it is the DEFAULT filegroup."},
    {5035, 16, 1,
     "Filegroup '%s' already exists in this database. Specify a different name or remove the conflicting "
     "filegroup if it is empty."},
    {5036, 16, 1, "MODIFY FILE failed. Specify logical name."},
    {5037, 16, 1, "MODIFY FILE failed. Do not specify physical name."},
    {5038, 16, 1, "MODIFY FILE failed for file \"%s\". At least one property per file must be specified."},
    {5039, 16, 1, "MODIFY FILE failed. Specified size is less than current size."},
    {5040, 16, 1, "MODIFY FILE failed. Size is greater than MAXSIZE."},
    {5041, 16, 1, "MODIFY FILE failed. File '%s' does not exist."},
    {5042, 16, 1, "The %s '%s' cannot be removed because it is not empty."},
    {5043, 16, 1, "The %s '%s' cannot be found in %s."},
    {5047, 16, 1, "Cannot change the %s property of the filegroup 'PRIMARY'."},
    {5048, 16, 1, "Cannot add, remove, or modify files in filegroup '%s'. The filegroup is read-only."},
    {5050, 16, 1,
     "Cannot change the properties of empty filegroup '%s'. The filegroup must contain at least one file."},
    {5052, 16, 1, "%s is not permitted while a database is in the %s state."},
    {5055, 16, 1, "Cannot add, remove, or modify file '%s'. The file is read-only."},
    {5058, 16, 1, "Option '%s' cannot be set in database '%s'."},
    {5061, 16, 1,
     "ALTER DATABASE failed because a lock could not be placed on database '%s'. Try again later."},
    {5064, 16, 1,
     "Changes to the state or options of database '%s' cannot be made at this time. The database is in "
     "single-user "
     "mode, and a user is currently connected to it."},
    {5069, 16, 1, "ALTER DATABASE statement failed."},
    {5070, 16, 2, "Database state cannot be changed while other users are using the database '%s'"},
    {5074, 16, 1, "The %s '%s' is dependent on column '%s'."},
    {5103, 16, 1, "MAXSIZE cannot be less than SIZE for file '%s'."},
    {5104, 16, 1, "File '%s' already used."},
    {5105, 16, 2,
     "A file activation error occurred. The physical file name '%s' may be incorrect. Diagnose and correct "
     "additional errors, and retry the operation."},
    {5123, 16, 1,
     "CREATE FILE encountered operating system error %s while attempting to open or create the physical file "
     "'%s'."},
    {5133, 16, 1, "Directory lookup for the file \"%s\" failed with the operating system error %s."},
    {5149, 16, 3,
     "MODIFY FILE encountered operating system error %s while attempting to expand the physical file '%s'."},
    {5169, 16, 1, "FILEGROWTH cannot be greater than MAXSIZE for file '%s'."},
    {5170, 16, 1,
     "Cannot create file '%s' because it already exists. Change the file path or the file name, and retry "
     "the "
     "operation."},
    {5174, 16, 1, "Each file size must be greater than or equal to 512 KB."},
    {7999, 16, 9, "Could not find any index named '%s' for table '%s'."},
    {8110, 16, 0, "Cannot add multiple PRIMARY KEY constraints to table '%s'."},
    {8111, 16, 1, "Cannot define PRIMARY KEY constraint on nullable column in table '%s'."},
    {8112, 16, 0, "Cannot add more than one clustered index for constraints on table '%s'."},
    {8139, 16, 0,
     "Number of referencing columns in foreign key differs from number of referenced columns, table '%s'."},
    {8147, 16, 1, "Could not create IDENTITY attribute on nullable column '%s', table '%s'."},
    {8148, 16, 0, "More than one column %s constraint specified for column '%s', table '%s'."},
    {8151, 16, 0,
     "Both a PRIMARY KEY and UNIQUE constraint have been defined for column '%s', table '%s'. Only one is "
     "allowed."},
    {8168, 16, 0,
     "Cannot create, drop, enable, or disable more than one constraint, column, index, or trigger named '%s' "
     "in this "
     "context. Duplicate names are not allowed."},
    {8183, 16, 1,
     "Only UNIQUE or PRIMARY KEY constraints can be created on computed columns, while CHECK, FOREIGN KEY, "
     "and NOT "
     "NULL constraints require that computed columns be persisted."},
    {8196, 16, 1, "Duplicate column specified as ROWGUIDCOL."},
    {8197, 16, 4, "The object '%s' does not exist or is invalid for this operation."},
    {15001, 16, 1, "Object '%s' does not exist or is not a valid object for this operation."},
    {15002, 16, 1, "The procedure '%s' cannot be executed within a transaction."},
    {15004, 16, 1, "Name cannot be NULL."},
    {15006, 16, 1, "'%s' is not a valid name because it contains invalid characters."},
    {15007, 16, 1, "The login '%s' does not exist."},
    {15008, 16, 1, "User '%s' does not exist in the current database."},
    {15009, 16, 1, "The object '%s' does not exist in database '%s'."},
    {15010, 16, 1, "The database '%s' does not exist. Use sp_helpdb to show available databases."},
    {15012, 16, 1, "The device '%s' does not exist. Use sp_helpdevice to show available devices."},
    {15014, 16, 1, "The role '%s' does not exist in the current database."},
    {15023, 16, 1, "User or role '%s' already exists in the current database."},
    {15025, 16, 1, "The login '%s' already exists."},
    {15026, 16, 1, "Logical device '%s' already exists."},
    {15028, 16, 1, "The server '%s' already exists."},
    {15032, 16, 1, "The database '%s' already exists."},
    {15033, 16, 1, "'%s' is not a valid official language name."},
    {15044, 16, 1,
     "The type, '%s', is an unknown backup device type. Use the type 'disk', 'tape', or 'pipe'."},
    {15045, 16, 1, "The logical name cannot be NULL."},
    {15063, 16, 1, "The login already has an account under a different user name."},
    {15081, 11, 1, "Membership of the public role cannot be changed."},
    {15105, 16, 1, "The device '%s' is no backup device and cannot be dropped."},
    {15109, 16, 1, "Cannot change the owner of the master, model, tempdb or distribution database."},
    {15110, 16, 1, "The proposed new database owner is already a user or aliased in the database."},
    {15118, 16, 1,
     "Password validation failed. The password does not meet Windows policy requirements because it is not "
     "complex "
     "enough."},
    {15123, 16, 1, "The configuration option '%s' does not exist, or it may be an advanced option."},
    {15129, 16, 1, "'%s' is not a valid value for configuration option '%s'."},
    {15136, 16, 1, "The database principal is set as the execution context of one or more procedures."},
    {15138, 16, 1, "The database principal owns a %s in the database, and cannot be dropped."},
    {15144, 16, 1, "The role has members. It must be empty before it can be dropped."},
    {15150, 16, 1, "Cannot %s the %s '%s'."},
    {15151, 16, 1, "Cannot %s the %s '%s', because it does not exist or you do not have permission."},
    {15174, 16, 1,
     "Login '%s' owns one or more database(s). Change the owner of the database(s) before dropping the "
     "login."},
    {15175, 16, 1,
     "Login '%s' is aliased or mapped to a user in one or more database(s). Drop the user or alias before "
     "dropping "
     "the login."},
    {15181, 16, 1, "Cannot drop the database owner."},
    {15182, 16, 1, "Cannot drop the guest user from master or tempdb."},
    {15183, 16, 1, "The user owns objects in the database and cannot be dropped."},
    {15197, 16, 1, "There is no text for object '%s'."},
    {15198, 16, 1, "The name supplied (%s) is not a user, role, or aliased login."},
    {15211, 16, 1, "Old (current) password incorrect for user. The password was not changed."},
    {15222, 16, 1, "Remote login option '%s' is not unique."},
    {15223, 11, 1, "Error: The input parameter '%s' is not allowed to be null."},
    {15224, 11, 1,
     "Error: The value for the @newname parameter contains invalid characters or violates a basic "
     "restriction (%s)."},
    {15225, 11, 1,
     "No item by the name of '%s' could be found in the current database '%s', given that @itemtype was "
     "input as '%s'."},
    {15241, 16, 1, "Usage: sp_dboption [dbname [,optname [,'true' | 'false']]]"},
    {15242, 16, 1, "Database option '%s' is not unique."},
    {15247, 16, 1, "User does not have permission to perform this action."},
    {15248, 11, 1, "Either the parameter @objname is ambiguous or the claimed @objtype (%s) is wrong."},
    {15249, 11, 1, "Error: Explicit @itemtype '%s' is unrecognized."},
    {15250, 16, 1,
     "The database name component of the object qualifier must be the name of the current database."},
    {15252, 11, 1, "The primary or foreign key table name must be given."},
    {15253, 11, 1, "Syntax error parsing SQL identifier '%s'."},
    {15298, 10, 1, "New login created."},
    {15325, 11, 1, "The current database does not contain a %s named '%s'."},
    {15330, 11, 1, "There are no matching rows on which to report."},
    {15335, 11, 1,
     "Error: The @newname value '%s' is already in use as a %s name and would cause a duplicate that is not "
     "permitted."},
    {15336, 16, 1, "Object '%s' cannot be renamed because the object participates in enforced dependencies."},
    {15338, 10, 1, "The %s was renamed to '%s'."},
    {15341, 10, 1, "Granted database access to '%s'."},
    {15387, 11, 1,
     "If the qualified object name specifies a database, that database must be the current database."},
    {15401, 11, 1, "Windows NT user or group '%s' not found. Check the name again."},
    {15402, 11, 1, "'%s' is not a fixed server role."},
    {15405, 11, 1, "Cannot use the reserved user or role name '%s'."},
    {15409, 11, 1, "'%s' is not a role."},
    {15410, 11, 1, "User or role '%s' does not exist in this database."},
    {15412, 11, 1, "'%s' is not a known fixed role."},
    {15413, 11, 1, "Cannot make a role a member of itself."},
    {15424, 10, 1, "New role added."},
    {15425, 10, 1, "Role dropped."},
    {15433, 16, 1, "Supplied parameter sid is in use."},
    {15434, 16, 1, "Could not drop login '%s' as the user is currently logged in."},
    {15457, 10, 1,
     "Configuration option '%s' changed from %s to %s. Run the RECONFIGURE statement to install."},
    {15466, 16, 1, "An error occurred during decryption."},
    {15469, 10, 1, "No constraints have been defined for object '%s'."},
    {15470, 10, 1, "No foreign keys reference table '%s'."},
    {15471, 10, 1, "The object comments have been encrypted."},
    {15472, 10, 1, "The object does not have any indexes."},
    {15477, 10, 1, "Caution: Changing any part of an object name could break scripts and stored procedures."},
    {15478, 10, 1, "Password changed."},
    {15479, 10, 1, "Login dropped."},
    {15486, 10, 1, "Default database changed."},
    {15487, 10, 1, "%s's default language is changed to %s."},
    {15488, 10, 1, "'%s' added to role '%s'."},
    {15489, 10, 1, "'%s' dropped from role '%s'."},
    {15491, 10, 1, "User has been dropped from current database."},
    {15505, 16, 1,
     "Cannot change owner of object '%s' or one of its child objects because the new owner '%s' already has "
     "an object with the same name."},
    {15521, 10, 1, "'Disk' device added."},
    {15522, 10, 1, "Device dropped."},
    {15600, 15, 1, "An invalid parameter or option was specified for procedure '%s'."},
    {15622, 10, 1, "No permission to access database '%s'."},
    {40510, 16, 1, "Statement '%s' is not supported in this version of SQL Server."},
};

} // namespace

const MessageText* findDdlMessageText(int number)
{
    const auto* found =
        std::lower_bound(std::begin(ddlTexts), std::end(ddlTexts), number,
                         [](const MessageText& text, int wanted) { return text.number < wanted; });
    return found != std::end(ddlTexts) && found->number == number ? found : nullptr;
}

static_assert(std::is_sorted(std::begin(ddlTexts), std::end(ddlTexts),
                             [](const MessageText& a, const MessageText& b) { return a.number < b.number; }),
              "messages stand in the order of their numbers");

} // namespace practice
