#!/usr/bin/env python3
"""Holds the practice server to what three clients written by others make of its wire.

Usage: wire_test.py PATH-OF-quermo-practice-server [unittest options]
"""

import json
import os
import re
import subprocess
import sys
import tempfile
import unittest

HERE = os.path.dirname(os.path.abspath(__file__))
PASSWORD = "Wire-test.1"
DRIVER = os.environ.get("WIRE_ODBC_DRIVER", "/usr/lib/x86_64-linux-gnu/odbc/libtdsodbc.so")
ENVIRONMENT = {**os.environ, "LC_ALL": "C.UTF-8", "TDSVER": "7.4"}


class Server:
    """One process for all tests; ends with its standard input."""

    def __init__(self, program):
        self.log = tempfile.NamedTemporaryFile(prefix="wire-log-", delete=False).name
        self.process = subprocess.Popen(
            [program, "--port", "0", "--sample", "--parent-watch", "--log", self.log],
            stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
            env={**os.environ, "QUERMO_SA_PASSWORD": PASSWORD})
        line = self.process.stdout.readline()
        found = re.fullmatch(r"Listening on 127\.0\.0\.1:(\d+)\n", line)
        if not found:
            raise RuntimeError(f"the server said {line!r}")
        self.port = found.group(1)

    def stop(self):
        self.process.stdin.close()
        self.process.stdout.close()
        code = self.process.wait(30)
        os.unlink(self.log)
        return code

    def batches(self):
        """The statements of the log, in order."""
        with open(self.log, "rb") as file:
            data = file.read()
        found = []
        while data:
            header, data = data.split(b"\n", 1)
            kind, _, size = header.split(b" ")[:3]
            size = 0 if size == b"null" else int(size)
            if kind == b"batch":
                found.append(data[:size].decode())
            data = data[size + 1:]
        return found


def tsql(batch, password=PASSWORD, version="7.4"):
    """Rows as lists of text, and everything that came as a message."""
    result = subprocess.run(
        ["tsql", "-H", "127.0.0.1", "-p", server.port, "-U", "sa", "-P", password, "-o", "qh", "-t", "|"],
        input=(batch + "\ngo\nexit\n").encode(), capture_output=True, env={**ENVIRONMENT, "TDSVER": version},
        timeout=120)
    lines = [line for line in result.stdout.decode().splitlines() if line]
    return [line.split("|") for line in lines], result.stderr.decode() + result.stdout.decode()


def isql(statements, password=PASSWORD):
    """One statement a line; rows and messages in the order in which they came."""
    target = (f"DRIVER={DRIVER};SERVER=127.0.0.1;PORT={server.port};UID=sa;PWD={password};"
              "TDS_Version=7.4;ClientCharset=UTF-8")
    result = subprocess.run(["isql", target, "-k", "-v", "-b", "-d|", "-e"], capture_output=True, timeout=120,
                            input=("\n".join(statements) + "\n").encode(), env=ENVIRONMENT)
    # What the tool says about its own calls comes apart from what the server said.
    return [line for line in result.stdout.decode().splitlines() if line] or result.stderr.decode().splitlines()


def tedious(*steps, password=PASSWORD, version="7_4"):
    """What each step gave, as the driver tells it."""
    result = subprocess.run(
        ["node", os.path.join(HERE, "tedious_client.js"), server.port, password],
        input=json.dumps(steps).encode(), capture_output=True, timeout=120,
        env={**ENVIRONMENT, "WIRE_TDS_VERSION": version})
    if result.returncode != 0:
        raise RuntimeError(result.stderr.decode())
    return json.loads(result.stdout)


def batch(text, **more):
    return {"text": text, **more}


def rows(result):
    return [set_["rows"] for set_ in result["sets"]]


# name, type, literal, as isql prints it, as the npm driver gives it
TYPES = [
    ("bit", "bit", "1", "1", True),
    ("tinyint", "tinyint", "255", "255", 255),
    ("smallint", "smallint", "-32768", "-32768", -32768),
    ("int", "int", "-2147483648", "-2147483648", -2147483648),
    ("bigint", "bigint", "-9223372036854775808", "-9223372036854775808", "-9223372036854775808"),
    ("real", "real", "1.5", "1.5", 1.5),
    ("float", "float", "-0.25", "-0.25", -0.25),
    ("smallmoney", "smallmoney", "-214748.3648", "-214748.3648", -214748.3648),
    ("money", "money", "-90071992547.0991", "-90071992547.0991", -90071992547.0991),
    ("decimal", "decimal(38,10)", "-1234567890123456789012345678.0123456789",
     "-1234567890123456789012345678.0123456789", -1.2345678901234567e+27),
    ("numeric", "numeric(9,2)", "1234567.89", "1234567.89", 1234567.89),
    ("smalldatetime", "smalldatetime", "'20790606 23:59'", "2079-06-06 23:59:00", "2079-06-06T23:59:00.000Z"),
    ("datetime", "datetime", "'1753-01-01T23:59:59.997'", "1753-01-01 23:59:59.997", "1753-01-01T23:59:59.997Z"),
    ("date", "date", "'2024-02-29'", "2024-02-29", "2024-02-29T00:00:00.000Z"),
    ("time", "time", "'23:59:59.9999999'", "23:59:59.9999999", "1970-01-01T23:59:59.999Z"),
    ("datetime2", "datetime2(3)", "'9999-12-31 23:59:59.999'", "9999-12-31 23:59:59.999",
     "9999-12-31T23:59:59.999Z"),
    ("datetimeoffset", "datetimeoffset", "'2024-02-29 01:02:03.1234567 -05:30'",
     "2024-02-29 01:02:03.1234567 -05:30", "2024-02-29T06:32:03.123Z"),
    ("char", "char(4)", "'ñ€'", "ñ€  ", "ñ€  "),
    ("varchar", "varchar(20)", "N'año € 日😀'", "año € ???", "año € ???"),
    ("varchar_max", "varchar(max)", "'límite'", "límite", "límite"),
    ("text", "text", "'texto ñ'", "texto ñ", "texto ñ"),
    ("nchar", "nchar(4)", "N'日本'", "日本  ", "日本  "),
    ("nvarchar", "nvarchar(20)", "N'ñ€日😀'", "ñ€日😀", "ñ€日😀"),
    ("nvarchar_max", "nvarchar(max)", "N'😀 sin límite'", "😀 sin límite", "😀 sin límite"),
    ("ntext", "ntext", "N'ntexto 日'", "ntexto 日", "ntexto 日"),
    ("binary", "binary(3)", "0x00ff", "00ff00", "00ff00"),
    ("varbinary", "varbinary(10)", "0x00ff10", "00ff10", "00ff10"),
    ("image", "image", "0x0102", "0102", "0102"),
    ("uniqueidentifier", "uniqueidentifier", "'00112233-4455-6677-8899-AABBCCDDEEFF'",
     "00112233-4455-6677-8899-AABBCCDDEEFF", "00112233-4455-6677-8899-AABBCCDDEEFF"),
    ("variant", "sql_variant", "N'ñ😀'", "ñ😀", "ñ😀"),
    ("empty", "varchar(10)", "''", "", ""),
    ("nothing", "nvarchar(10)", "NULL", "", None),
]


# type, literal, as isql prints it, as the npm driver gives it
LIMITS = [
    ("tinyint", "0", "0", 0), ("smallint", "32767", "32767", 32767), ("int", "2147483647", "2147483647", 2147483647),
    ("bigint", "9223372036854775807", "9223372036854775807", "9223372036854775807"),
    ("decimal(38,0)", "-" + "9" * 38, "-" + "9" * 38, -1e38),
    ("decimal(38,38)", "0." + "9" * 38, "0." + "9" * 38, 1),
    ("decimal(1,0)", "-9", "-9", -9),
    ("smallmoney", "214748.3647", "214748.3647", 214748.3647),
    ("money", "922337203685477.5807", "922337203685477.5807", 922337203685477.6),
    ("money", "-922337203685477.5808", "-922337203685477.5808", -922337203685477.6),
    ("float", "1.7976931348623157E308", "1.7976931348623157e+308", 1.7976931348623157e308),
    ("float", "-2.2250738585072014E-308", "-2.2250738585072014e-308", -2.2250738585072014e-308),
    ("real", "3.4028234E38", "3.40282347e+38", 3.4028234663852886e38),
    ("datetime", "'17530101'", "1753-01-01 00:00:00.000", "1753-01-01T00:00:00.000Z"),
    ("datetime", "'99991231 23:59:59.997'", "9999-12-31 23:59:59.997", "9999-12-31T23:59:59.997Z"),
    ("smalldatetime", "'19000101'", "1900-01-01 00:00:00", "1900-01-01T00:00:00.000Z"),
    ("date", "'00010101'", "1-01-01", "0001-01-01T00:00:00.000Z"),
    ("date", "'99991231'", "9999-12-31", "9999-12-31T00:00:00.000Z"),
    ("time(0)", "'00:00'", "00:00:00", "1970-01-01T00:00:00.000Z"),
    ("datetime2", "'0001-01-01'", "1-01-01 00:00:00.0000000", "0001-01-01T00:00:00.000Z"),
    ("datetime2", "'9999-12-31 23:59:59.9999999'", "9999-12-31 23:59:59.9999999", "9999-12-31T23:59:59.999Z"),
    ("varchar(8000)", "REPLICATE('ñ', 8000)", "ñ" * 8000, "ñ" * 8000),
    ("nvarchar(4000)", "REPLICATE(N'日', 4000)", "日" * 4000, "日" * 4000),
    ("varbinary(8000)", "CAST(REPLICATE('a', 8000) AS varbinary(8000))", "61" * 8000, "61" * 8000),
    ("varbinary(1)", "0x", "", ""), ("nvarchar(1)", "N''", "", ""), ("char(1)", "''", " ", " "),
    ("uniqueidentifier", "'00000000-0000-0000-0000-000000000000'", "00000000-0000-0000-0000-000000000000",
     "00000000-0000-0000-0000-000000000000"),
    ("bit", "0", "0", False),
]


class Wire(unittest.TestCase):
    maxDiff = None

    def test_all_types_arrive_alike(self):
        columns = ", ".join(f"c_{name} {type_} NULL" for name, type_, *_ in TYPES)
        values = ", ".join(literal for _, _, literal, *_ in TYPES)
        for result in tedious(batch(f"CREATE TABLE tempdb..tipos ({columns})"),
                              batch(f"INSERT INTO tempdb..tipos VALUES ({values})")):
            self.assertNotIn("error", result)
        everything = "SELECT * FROM tempdb..tipos"
        seen, = tedious(batch(everything))
        self.assertEqual(dict(zip(seen["sets"][0]["columns"], rows(seen)[0][0])),
                         {"c_" + name: value for name, *_, value in TYPES})
        self.assertEqual(isql([everything]), ["|".join(text for *_, text, _ in TYPES)])
        texts = "SELECT c_varchar, c_nvarchar, c_ntext, c_decimal, c_empty, c_nothing FROM tempdb..tipos"
        expected = [["año € ???", "ñ€日😀", "ntexto 日", "-1234567890123456789012345678.0123456789", "", "NULL"]]
        self.assertEqual(tsql(texts)[0], expected)
        for version in ("7.1", "7.2", "7.3"):
            self.assertEqual(tsql(texts, version=version)[0], expected, version)
        for version in ("7_1", "7_2", "7_3_B"):
            older, = tedious(batch(everything), version=version)
            got = dict(zip(older["sets"][0]["columns"], rows(older)[0][0]))
            for name, *_, value in TYPES:
                if name not in ("date", "time", "datetime2", "datetimeoffset"):
                    self.assertEqual(got["c_" + name], value, f"{name} of {version}")
            self.assertEqual(got["c_date"][:10], "2024-02-29")

    def test_values_at_their_limits_arrive(self):
        texts = [f"SELECT CAST({literal} AS {type_}) AS v" for type_, literal, *_ in LIMITS]
        for (type_, literal, _, value), seen in zip(LIMITS, tedious(*map(batch, texts))):
            self.assertEqual((seen.get("error"), rows(seen)), (None, [[[value]]]), f"{type_} {literal[:40]}")
        # The tool prints no empty line and no long one.
        shown = [(text, printed) for text, (_, _, printed, _) in zip(texts, LIMITS) if 0 < len(printed) < 300]
        self.assertEqual(isql([text for text, _ in shown]), [printed for _, printed in shown])
        types = [type_ for _, type_, *_ in TYPES]
        seen, = tedious(batch("SELECT " + ", ".join(f"CAST(NULL AS {type_})" for type_ in types)))
        self.assertEqual(rows(seen), [[[None] * len(types)]])

    def test_results_come_in_order_around_an_error(self):
        mixed = ("SELECT N'uno ñ' AS a UNION ALL SELECT N'dos €' RAISERROR (N'fallo ñ', 16, 2) PRINT N'aviso 日' "
                 "SELECT 2 AS b")
        seen, = tedious(batch(mixed))
        self.assertEqual(rows(seen), [[["uno ñ"], ["dos €"]], [[2]]])
        self.assertEqual([one["number"] for one in seen["error"]], [50000])
        self.assertEqual([one["message"] for one in seen["messages"]], ["fallo ñ", "aviso 日"])
        self.assertEqual([line.split("]")[-1] for line in isql([mixed])],
                         ["uno ñ", "dos €", "fallo ñ", "aviso 日", "2"])
        found, messages = tsql(mixed)
        self.assertIn("Msg 50000 (severity 16, state 2)", messages)
        self.assertIn("aviso 日", messages)
        self.assertEqual([line for line in found if line[0] in ("uno ñ", "dos €", "2")],
                         [["uno ñ"], ["dos €"], ["2"]])

    def test_a_long_result_arrives_whole(self):
        table = "Comercial..LineasPedido"
        (count, total), = tsql(f"SELECT COUNT(*), SUM(CAST(IdPedido AS bigint)) FROM {table}")[0]
        seen = [int(line.split("|")[0]) for line in isql([f"SELECT * FROM {table}"])]
        self.assertEqual((len(seen), sum(seen)), (int(count), int(total)))
        self.assertGreaterEqual(len(seen), 100000)

    def test_a_result_may_break_off(self):
        seen, = tedious(batch("SELECT 1/0 AS nada SELECT 2 AS b"))
        self.assertEqual(rows(seen), [[], [[2]]])
        self.assertEqual([one["number"] for one in seen["error"]], [8134])

    def test_refused_batches_name_number_and_line(self):
        seen, = tedious(batch("SELECT 1\nSELECT * FROM nohaytal"))
        self.assertEqual([(one["number"], one.get("line")) for one in seen["messages"]], [(208, 2)])
        self.assertIn("Msg 208", tsql("SELECT * FROM nohaytal")[1])
        self.assertTrue(any("Invalid object name 'nohaytal'." in line for line in isql(["SELECT * FROM nohaytal"])))

    def test_a_wrong_password_is_refused(self):
        refusal = "Login failed for user 'sa'."
        self.assertIn(refusal, tedious(batch("SELECT 1"), password="mala")[0]["error"][0]["message"])
        self.assertIn(refusal, tsql("SELECT 1", password="mala")[1])
        self.assertTrue(any(refusal in line for line in isql(["SELECT 1"], password="mala")))

    def test_a_login_with_an_unusual_password(self):
        made, = tedious(batch("EXEC sp_addlogin N'extraña', N'clave ñ€😀', 'master'"))
        self.assertNotIn("error", made)
        result = subprocess.run(
            ["tsql", "-H", "127.0.0.1", "-p", server.port, "-U", "extraña", "-P", "clave ñ€😀", "-o", "qh"],
            input="SELECT SUSER_SNAME()\ngo\nexit\n".encode(), capture_output=True, env=ENVIRONMENT, timeout=120)
        self.assertIn("extraña", result.stdout.decode(), result.stderr.decode())

    def test_parameters_go_in_and_out(self):
        values = [
            ("Int", -7, "int", -7), ("BigInt", "9007199254740993", "bigint", "9007199254740993"),
            ("Bit", True, "bit", True), ("Float", 1.25, "float", 1.25), ("NVarChar", "ñ😀", "nvarchar(10)", "ñ😀"),
            ("NVarChar", "", "nvarchar(10)", ""), ("NVarChar", None, "nvarchar(10)", None),
            ("VarChar", "año", "varchar(10)", "año"), ("Money", -3.5, "money", -3.5),
            ("UniqueIdentifier", "00112233-4455-6677-8899-AABBCCDDEEFF", "uniqueidentifier",
             "00112233-4455-6677-8899-AABBCCDDEEFF"),
        ]
        parameters = [{"name": f"p{i}", "type": kind, "value": value} for i, (kind, value, *_) in enumerate(values)]
        parameters.append({"name": "bytes", "type": "VarBinary", "bytes": "00ff"})
        parameters.append({"name": "when", "type": "DateTime", "date": "2024-01-02T03:04:05.677Z"})
        parameters.append({"name": "price", "type": "Decimal", "value": -12.345, "options": {"precision": 20, "scale": 3}})
        names = ", ".join("@" + one["name"] for one in parameters)
        seen, = tedious({"kind": "parameters", "text": f"SELECT {names}", "parameters": parameters})
        self.assertEqual(rows(seen), [[[value for *_, value in values] + ["00ff", "2024-01-02T03:04:05.677Z", -12.345]]])

    def test_procedures_return_values(self):
        procedure = ("CREATE PROCEDURE doble @n int, @total int OUTPUT, @texto nvarchar(20) OUTPUT AS "
                     "SELECT @n AS n SET @total = @n * 2 SET @texto = @texto + N'ñ' RETURN 5")
        results = tedious(
            batch("USE tempdb"), batch(procedure),
            {"kind": "call", "text": "doble", "parameters": [
                {"name": "n", "type": "Int", "value": 21},
                {"name": "total", "type": "Int", "value": None, "output": True},
                {"name": "texto", "type": "NVarChar", "value": "a", "output": True, "options": {"length": 20}}]},
            batch("DROP PROCEDURE doble"))
        self.assertEqual([one.get("error") for one in results], [None] * 4)
        called = results[2]
        self.assertEqual((rows(called), called["outputs"], called["status"]),
                         ([[[21]]], {"total": 42, "texto": "añ"}, 5))

    def test_prepared_statements_run_again(self):
        seen, = tedious({"kind": "prepared", "text": "SELECT @a + 1 AS mas",
                         "parameters": [{"name": "a", "type": "Int"}], "values": [{"a": 41}, {"a": None}, {"a": -1}]})
        self.assertNotIn("error", seen)
        self.assertEqual([found for found in rows(seen) if found], [[[42]], [[None]], [[0]]])

    def test_a_statement_is_prepared_and_run_in_one_call(self):
        handle = {"name": "handle", "type": "Int", "value": None, "output": True}
        given = {"name": "handle", "type": "Int", "given": "handle"}
        first, again, ended, after = tedious(
            {"kind": "call", "text": "sp_prepexec", "parameters": [
                handle, {"name": "params", "type": "NVarChar", "value": "@a int, @b nvarchar(20)"},
                {"name": "stmt", "type": "NVarChar", "value": "SELECT @a * 2 AS doble, @b AS texto"},
                {"name": "a", "type": "Int", "value": 21}, {"name": "b", "type": "NVarChar", "value": "ñ"}]},
            {"kind": "call", "text": "sp_execute", "parameters": [
                given, {"name": "a", "type": "Int", "value": -1}, {"name": "b", "type": "NVarChar", "value": None}]},
            {"kind": "call", "text": "sp_unprepare", "parameters": [given]},
            {"kind": "call", "text": "sp_execute", "parameters": [given, {"name": "a", "type": "Int", "value": 1}]})
        self.assertEqual([one.get("error") for one in (first, again, ended)], [None] * 3)
        self.assertEqual((rows(first), rows(again)), ([[[42, "ñ"]]], [[[-2, None]]]))
        self.assertEqual(after["error"][0]["number"], 8179)

    def test_text_with_parameters_gives_out_through_them(self):
        seen, = tedious({"kind": "parameters", "text": "SET @total = @n * 3 SET @n = 0", "parameters": [
            {"name": "n", "type": "Int", "value": 14}, {"name": "total", "type": "BigInt", "value": None, "output": True}]})
        self.assertEqual((seen.get("error"), seen["outputs"]), (None, {"total": "42"}))

    def test_values_at_their_limits_come_back_as_parameters(self):
        far = {"precision": 38, "scale": 0}
        values = [
            ("TinyInt", 0), ("TinyInt", 255), ("SmallInt", -32768), ("SmallInt", 32767), ("Int", -2147483648),
            ("Int", 2147483647), ("BigInt", "-9223372036854775808"), ("BigInt", "9223372036854775807"),
            ("Bit", False), ("Float", 1.7976931348623157e308), ("Float", -2.2250738585072014e-308), ("Float", -0.5),
            ("Real", 1.5), ("SmallMoney", -214748.3648), ("SmallMoney", 214748.3647), ("Money", -90071992547.0991),
            ("UniqueIdentifier", "FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF"), ("VarChar", ""), ("NVarChar", ""),
            ("Char", "x"), ("NChar", "日"),
        ]
        dates = [("DateTime", "1753-01-01T00:00:00.000Z"), ("DateTime", "9999-12-31T23:59:59.997Z"),
                 ("SmallDateTime", "1900-01-01T00:00:00.000Z"), ("SmallDateTime", "2079-06-06T23:59:00.000Z"),
                 ("Date", "0001-01-01T00:00:00.000Z"), ("Date", "9999-12-31T00:00:00.000Z"),
                 ("DateTime2", "0001-01-01T00:00:00.000Z"), ("DateTime2", "9999-12-31T23:59:59.999Z"),
                 ("DateTimeOffset", "9999-12-31T09:00:00.000Z")]
        nothing = sorted({kind for kind, _ in values + dates} | {"VarBinary", "Binary", "Numeric", "Decimal", "Time"})
        parameters = [{"name": f"p{i}", "type": kind, "value": value} for i, (kind, value) in enumerate(values)]
        parameters += [{"name": f"d{i}", "type": kind, "date": value} for i, (kind, value) in enumerate(dates)]
        parameters += [{"name": f"n{i}", "type": kind, "value": None} for i, kind in enumerate(nothing)]
        parameters += [{"name": "far", "type": "Decimal", "value": -123456789012345, "options": far},
                       {"name": "none", "type": "VarBinary", "bytes": ""}]
        names = ", ".join("@" + one["name"] for one in parameters)
        seen, = tedious({"kind": "parameters", "text": f"SELECT {names}", "parameters": parameters})
        self.assertNotIn("error", seen)
        expected = [value for _, value in values + dates] + [None] * len(nothing) + [-123456789012345, ""]
        self.assertEqual(dict(zip(names.split(", "), rows(seen)[0][0])), dict(zip(names.split(", "), expected)))

    def test_large_values_pass_both_ways(self):
        seen, = tedious({"kind": "parameters",
                         "text": "SELECT LEN(@t), DATALENGTH(@t), RIGHT(@t, 2), DATALENGTH(@b), "
                                 "CONVERT(varchar(8000), SUBSTRING(@b, 2999999, 2), 2), LEN(@v) SELECT @t + 'z' SELECT @b",
                         "parameters": [{"name": "t", "type": "NVarChar", "value": "ñ日", "times": 1500000},
                                        {"name": "b", "type": "VarBinary", "bytes": "00ff10", "times": 1000000},
                                        {"name": "v", "type": "VarChar", "value": "x", "times": 8000}]})
        self.assertNotIn("error", seen)
        self.assertEqual(rows(seen)[0], [["3000000", "6000000", "ñ日", "3000000", "FF10", 8000]])
        self.assertEqual(rows(seen)[1:], [[["ñ日" * 1500000 + "z"]], [["00ff10" * 1000000]]])

    def test_the_options_that_drivers_set_hold(self):
        options = "SELECT @@OPTIONS & 32, @@OPTIONS & 256, @@OPTIONS & 4096"  # ANSI_NULLS, QUOTED_IDENTIFIER, ...
        self.assertEqual(rows(tedious(batch(options))[0]), [[[32, 256, 4096]]])
        self.assertEqual(isql([options]), ["32|256|4096"])
        changed = ("SET NOCOUNT ON SET DATEFORMAT dmy SET QUOTED_IDENTIFIER OFF SET TEXTSIZE 2147483647 SET ANSI_PADDING ON "
                   "SET ANSI_WARNINGS ON SET ARITHABORT ON SET CONCAT_NULL_YIELDS_NULL ON SET CURSOR_CLOSE_ON_COMMIT OFF "
                   "SET IMPLICIT_TRANSACTIONS OFF SET LANGUAGE us_english SET DATEFIRST 7 SET ROWCOUNT 0 "
                   "SET TRANSACTION ISOLATION LEVEL READ COMMITTED SET ANSI_NULL_DFLT_ON ON SET LOCK_TIMEOUT 1000")
        seen, = tedious(batch(changed + " SELECT 1"))
        self.assertEqual((seen.get("error"), rows(seen)), (None, [[[1]]]))

    def test_a_transaction_of_one_client_is_anothers_after_its_commit(self):
        wait = "SET LOCK_TIMEOUT 100 "
        results = tedious(
            batch("CREATE TABLE tempdb..ajena (n int)"), batch("BEGIN TRANSACTION"),
            batch("INSERT INTO tempdb..ajena VALUES (1)"), batch("SELECT @@TRANCOUNT"))
        self.assertEqual(rows(results[-1]), [[[1]]])
        # The client left without a commit.
        self.assertEqual(tsql(wait + "SELECT COUNT(*) FROM tempdb..ajena")[0], [["0"]])
        isql(["BEGIN TRANSACTION", "INSERT INTO tempdb..ajena VALUES (2)", "COMMIT TRANSACTION"])
        self.assertEqual(tsql(wait + "SELECT n FROM tempdb..ajena")[0], [["2"]])

    def test_a_cancel_ends_the_request_and_nothing_else(self):
        endless = ("SELECT a.id FROM syscolumns a CROSS JOIN syscolumns b CROSS JOIN syscolumns c "
                   "CROSS JOIN syscolumns d")
        waiting, streaming, after = tedious(
            batch("WAITFOR DELAY '00:01:00'", cancelMilliseconds=200), batch(endless, cancelAfter=5),
            batch("SELECT 'vive' AS x"))
        self.assertEqual([waiting["error"][0]["code"], streaming["error"][0]["code"]], ["ECANCEL", "ECANCEL"])
        self.assertEqual(rows(after), [[["vive"]]])

    def test_transactions_over_the_protocol(self):
        results = tedious(
            batch("CREATE TABLE tempdb..movimientos (n int)"),
            {"transaction": "begin"}, batch("INSERT INTO tempdb..movimientos VALUES (1)"), {"transaction": "rollback"},
            {"transaction": "begin"}, batch("INSERT INTO tempdb..movimientos VALUES (2)"),
            {"transaction": "save"}, batch("INSERT INTO tempdb..movimientos VALUES (3)"),
            {"transaction": "rollbackToSave"}, {"transaction": "commit"},
            batch("SELECT n, @@TRANCOUNT FROM tempdb..movimientos"))
        self.assertEqual([one.get("error") for one in results], [None] * len(results))
        self.assertEqual(rows(results[-1]), [[[2, 0]]])
        text = ["BEGIN TRANSACTION", "DELETE FROM tempdb..movimientos", "ROLLBACK TRANSACTION",
                "SELECT n FROM tempdb..movimientos"]
        self.assertEqual(isql(text)[-1], "2")

    def test_a_reset_connection_is_as_new(self):
        results = tedious(batch("USE tempdb"), batch("CREATE TABLE #t (n int)"), {"reset": True},
                          batch("SELECT DB_NAME()"), batch("SELECT * FROM #t"))
        self.assertEqual(rows(results[3]), [[["master"]]])
        self.assertEqual(results[4]["error"][0]["number"], 208)

    def test_the_log_holds_statements_as_they_came(self):
        statement = "SELECT  N'ñ'\r\n\t-- fin  "
        tedious(batch(statement))
        self.assertEqual(server.batches()[-1], statement)


def main():
    global server
    program = sys.argv.pop(1)
    setup = subprocess.run([os.path.join(HERE, "setup.sh")], check=False)
    if setup.returncode != 0:
        sys.exit("the npm driver could not be installed")
    server = Server(program)
    try:
        result = unittest.main(exit=False).result
    finally:
        code = server.stop()
    if code != 0:
        sys.exit(f"the server ended with {code}")
    sys.exit(0 if result.wasSuccessful() else 1)


server = None

if __name__ == "__main__":
    main()
