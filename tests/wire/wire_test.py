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
                         "parameters": [{"name": "a", "type": "Int"}], "values": {"a": 41}})
        self.assertNotIn("error", seen)
        self.assertEqual([found for found in rows(seen) if found], [[[42]]])

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
