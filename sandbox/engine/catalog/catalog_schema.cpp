#include "engine/catalog/catalog_schema.h"

namespace practice {

// xtype is padded to two characters, names compare as the server's default collation does, and
// `fold` holds foldName(name), so that a lookup ignoring case is an index seek. Rows of dbid 0
// belong to every database (the system tables' own entries).
const char* catalogSchema() // NOLINT(readability-function-size): one text
{
    return R"sql(
CREATE TABLE cat_version(one INTEGER PRIMARY KEY CHECK(one = 1), version INTEGER NOT NULL);
INSERT INTO cat_version VALUES(1, 1);

CREATE TABLE cat_database(
    dbid INTEGER PRIMARY KEY, name TEXT NOT NULL COLLATE "SQL_Latin1_General_CP1_CI_AS", fold TEXT NOT NULL UNIQUE, sid BLOB NOT NULL,
    created NOT NULL, level INTEGER NOT NULL, collation TEXT NOT NULL, options INTEGER NOT NULL,
    recovery INTEGER NOT NULL, access INTEGER NOT NULL, lastid INTEGER NOT NULL DEFAULT 1993058136);

CREATE TABLE cat_object(
    dbid INTEGER NOT NULL, id INTEGER NOT NULL, name TEXT NOT NULL COLLATE "SQL_Latin1_General_CP1_CI_AS", fold TEXT NOT NULL,
    uid INTEGER NOT NULL, xtype TEXT NOT NULL COLLATE "SQL_Latin1_General_CP1_CI_AS", parent INTEGER NOT NULL DEFAULT 0, created NOT NULL,
    groupid INTEGER NOT NULL DEFAULT 1, quoted INTEGER NOT NULL DEFAULT 1,
    ansinulls INTEGER NOT NULL DEFAULT 1, schemaver INTEGER NOT NULL DEFAULT 0,
    shipped INTEGER NOT NULL DEFAULT 0, disabled INTEGER NOT NULL DEFAULT 0,
    PRIMARY KEY(dbid, id)) WITHOUT ROWID;
CREATE UNIQUE INDEX cat_object_name ON cat_object(dbid, fold, uid);
CREATE INDEX cat_object_parent ON cat_object(dbid, parent);

CREATE TABLE cat_column(
    dbid INTEGER NOT NULL, id INTEGER NOT NULL, colid INTEGER NOT NULL, name TEXT NOT NULL COLLATE "SQL_Latin1_General_CP1_CI_AS",
    fold TEXT NOT NULL, xtype INTEGER NOT NULL, length INTEGER NOT NULL, prec INTEGER NOT NULL,
    scale INTEGER NOT NULL, nullable INTEGER NOT NULL, rowguid INTEGER NOT NULL DEFAULT 0,
    padded INTEGER NOT NULL DEFAULT 1, collation TEXT, usertype TEXT, seed INTEGER,
    increment INTEGER, notrepl INTEGER NOT NULL DEFAULT 0, defaultid INTEGER NOT NULL DEFAULT 0,
    computed TEXT, output INTEGER NOT NULL DEFAULT 0,
    PRIMARY KEY(dbid, id, colid), UNIQUE(dbid, id, fold)) WITHOUT ROWID;

CREATE TABLE cat_identity(
    dbid INTEGER NOT NULL, id INTEGER NOT NULL, last INTEGER NOT NULL,
    PRIMARY KEY(dbid, id)) WITHOUT ROWID;

CREATE TABLE cat_comment(
    dbid INTEGER NOT NULL, id INTEGER NOT NULL, text TEXT NOT NULL, encrypted INTEGER NOT NULL DEFAULT 0,
    PRIMARY KEY(dbid, id)) WITHOUT ROWID;

CREATE TABLE cat_index(
    dbid INTEGER NOT NULL, id INTEGER NOT NULL, indid INTEGER NOT NULL, name TEXT NOT NULL COLLATE "SQL_Latin1_General_CP1_CI_AS",
    fold TEXT NOT NULL, uniq INTEGER NOT NULL, kind TEXT NOT NULL, ignoredup INTEGER NOT NULL,
    padded INTEGER NOT NULL, norecompute INTEGER NOT NULL, enabled INTEGER NOT NULL DEFAULT 1,
    fillfactor INTEGER NOT NULL, groupid INTEGER NOT NULL, constid INTEGER NOT NULL,
    PRIMARY KEY(dbid, id, indid), UNIQUE(dbid, id, fold)) WITHOUT ROWID;

CREATE TABLE cat_index_key(
    dbid INTEGER NOT NULL, id INTEGER NOT NULL, indid INTEGER NOT NULL, keyno INTEGER NOT NULL,
    colid INTEGER NOT NULL, descending INTEGER NOT NULL, included INTEGER NOT NULL DEFAULT 0,
    PRIMARY KEY(dbid, id, indid, keyno)) WITHOUT ROWID;

CREATE TABLE cat_check(
    dbid INTEGER NOT NULL, constid INTEGER NOT NULL, id INTEGER NOT NULL, colid INTEGER NOT NULL,
    enabled INTEGER NOT NULL, trusted INTEGER NOT NULL, notrepl INTEGER NOT NULL,
    PRIMARY KEY(dbid, constid)) WITHOUT ROWID;
CREATE INDEX cat_check_table ON cat_check(dbid, id);

CREATE TABLE cat_reference(
    dbid INTEGER NOT NULL, constid INTEGER NOT NULL, fkeyid INTEGER NOT NULL, rkeyid INTEGER NOT NULL,
    rkeyindid INTEGER NOT NULL, ondelete INTEGER NOT NULL, onupdate INTEGER NOT NULL,
    enabled INTEGER NOT NULL, trusted INTEGER NOT NULL, notrepl INTEGER NOT NULL,
    PRIMARY KEY(dbid, constid)) WITHOUT ROWID;
CREATE INDEX cat_reference_from ON cat_reference(dbid, fkeyid);
CREATE INDEX cat_reference_to ON cat_reference(dbid, rkeyid);

CREATE TABLE cat_reference_column(
    dbid INTEGER NOT NULL, constid INTEGER NOT NULL, keyno INTEGER NOT NULL, fcolid INTEGER NOT NULL,
    rcolid INTEGER NOT NULL,
    PRIMARY KEY(dbid, constid, keyno)) WITHOUT ROWID;

CREATE TABLE cat_filegroup(
    dbid INTEGER NOT NULL, groupid INTEGER NOT NULL, name TEXT NOT NULL COLLATE "SQL_Latin1_General_CP1_CI_AS", fold TEXT NOT NULL,
    status INTEGER NOT NULL,
    PRIMARY KEY(dbid, groupid), UNIQUE(dbid, fold)) WITHOUT ROWID;

CREATE TABLE cat_file(
    dbid INTEGER NOT NULL, fileid INTEGER NOT NULL, groupid INTEGER NOT NULL, size INTEGER NOT NULL,
    maxsize INTEGER NOT NULL, growth INTEGER NOT NULL, status INTEGER NOT NULL, name TEXT NOT NULL COLLATE "SQL_Latin1_General_CP1_CI_AS",
    fold TEXT NOT NULL, filename TEXT NOT NULL COLLATE "SQL_Latin1_General_CP1_CI_AS",
    PRIMARY KEY(dbid, fileid), UNIQUE(dbid, fold)) WITHOUT ROWID;

CREATE TABLE cat_user(
    dbid INTEGER NOT NULL, uid INTEGER NOT NULL, name TEXT NOT NULL COLLATE "SQL_Latin1_General_CP1_CI_AS", fold TEXT NOT NULL, sid BLOB,
    role INTEGER NOT NULL, approle INTEGER NOT NULL DEFAULT 0, access INTEGER NOT NULL, altuid INTEGER,
    aliased INTEGER NOT NULL DEFAULT 0, created NOT NULL, updated NOT NULL, hash BLOB, salt BLOB,
    PRIMARY KEY(dbid, uid), UNIQUE(dbid, fold)) WITHOUT ROWID;

CREATE TABLE cat_member(
    dbid INTEGER NOT NULL, groupuid INTEGER NOT NULL, memberuid INTEGER NOT NULL,
    PRIMARY KEY(dbid, groupuid, memberuid)) WITHOUT ROWID;

CREATE TABLE cat_permission(
    dbid INTEGER NOT NULL, id INTEGER NOT NULL, uid INTEGER NOT NULL, action INTEGER NOT NULL,
    protecttype INTEGER NOT NULL, columns INTEGER NOT NULL DEFAULT 1, grantor INTEGER NOT NULL,
    PRIMARY KEY(dbid, id, uid, action, protecttype)) WITHOUT ROWID;

CREATE TABLE cat_login(
    sid BLOB PRIMARY KEY, name TEXT NOT NULL COLLATE "SQL_Latin1_General_CP1_CI_AS", fold TEXT NOT NULL UNIQUE, hash BLOB, salt BLOB,
    dbname TEXT NOT NULL COLLATE "SQL_Latin1_General_CP1_CI_AS", language TEXT NOT NULL, created NOT NULL, updated NOT NULL,
    roles INTEGER NOT NULL DEFAULT 0, denied INTEGER NOT NULL DEFAULT 0,
    windows INTEGER NOT NULL DEFAULT 0) WITHOUT ROWID;

CREATE TABLE cat_device(
    name TEXT NOT NULL COLLATE "SQL_Latin1_General_CP1_CI_AS", fold TEXT PRIMARY KEY, status INTEGER NOT NULL, cntrltype INTEGER NOT NULL,
    phyname TEXT NOT NULL COLLATE "SQL_Latin1_General_CP1_CI_AS") WITHOUT ROWID;

CREATE TABLE cat_configuration(config INTEGER PRIMARY KEY, value INTEGER NOT NULL);

CREATE TABLE sys_type(
    xtype INTEGER NOT NULL, xusertype INTEGER PRIMARY KEY, name TEXT NOT NULL COLLATE "SQL_Latin1_General_CP1_CI_AS", type INTEGER NOT NULL,
    nulltype INTEGER NOT NULL, usertype INTEGER NOT NULL, length INTEGER NOT NULL, prec INTEGER NOT NULL,
    scale INTEGER, variable INTEGER NOT NULL, collated INTEGER NOT NULL);
CREATE TABLE sys_value(name TEXT COLLATE "SQL_Latin1_General_CP1_CI_AS", number INTEGER NOT NULL, type TEXT NOT NULL COLLATE "SQL_Latin1_General_CP1_CI_AS", low INTEGER, high INTEGER,
    status INTEGER);
CREATE TABLE cat_server(one INTEGER PRIMARY KEY CHECK(one = 1), name TEXT NOT NULL);
CREATE TABLE sys_number(n INTEGER PRIMARY KEY);

CREATE VIEW cat_column_type AS
    SELECT k.*, t.name AS typename, t.xusertype, t.variable, t.usertype AS usertypeno,
        CASE WHEN k.nullable THEN t.nulltype ELSE t.type END AS oldtype,
        CASE WHEN k.xtype IN (231, 239) AND k.length > 0 THEN 2 * k.length ELSE k.length END AS bytes,
        CASE WHEN k.xtype IN (106, 108) THEN k.prec
             WHEN k.xtype IN (165, 167, 173, 175, 231, 239) THEN k.length
             WHEN k.xtype IN (41, 42, 43) THEN t.prec - 7 + k.scale - (k.scale = 0) ELSE t.prec END AS fullprec,
        CASE WHEN k.xtype IN (106, 108, 41, 42, 43) THEN k.scale ELSE t.scale END AS fullscale
    FROM cat_column k JOIN sys_type t
        ON t.xusertype = CASE k.usertype WHEN 'sysname' THEN 256 ELSE k.xtype END;
)sql";
}

const char* columnPermissionSchema()
{
    return R"sql(
CREATE TABLE IF NOT EXISTS cat_column_permission(
    dbid INTEGER NOT NULL, id INTEGER NOT NULL, colid INTEGER NOT NULL, uid INTEGER NOT NULL,
    action INTEGER NOT NULL, protecttype INTEGER NOT NULL, grantor INTEGER NOT NULL,
    PRIMARY KEY(dbid, id, colid, uid, action)) WITHOUT ROWID;
)sql";
}

} // namespace practice
