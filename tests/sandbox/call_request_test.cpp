// Calls and transaction requests as their bytes stand in MS-TDS, written in hexadecimal digits.
#include "tds/call_request.h"
#include "tds/value_reader.h"
#include "types/conversion.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace practice;
using namespace practice::tds;

namespace {

constexpr const char* collation = "0904D00034 ";

/// Blanks between the digits are for the reader; K stands for a collation.
Bytes bytesOf(const std::string& digits)
{
    Bytes bytes;
    std::string pair;
    for (const char c : digits) {
        if (c == 'K') {
            const Bytes inner = bytesOf(collation);
            bytes.insert(bytes.end(), inner.begin(), inner.end());
        } else if (c != ' ') {
            pair += c;
        }
        if (pair.size() == 2) {
            bytes.push_back(static_cast<std::uint8_t>(std::stoi(pair, nullptr, 16)));
            pair.clear();
        }
    }
    return bytes;
}

/// "int(4,0,0) 5", or how it is refused; what is left unread behind it.
std::string valueOf(const std::string& digits)
{
    const Bytes bytes = bytesOf(digits);
    ByteReader reader(bytes);
    Parameter parameter;
    std::ostringstream out;
    try {
        readTypedValue(reader, parameter);
    } catch (const ProtocolError&) {
        return "refused";
    } catch (const UnknownType& unknown) {
        return "unknown " + std::to_string(unknown.token);
    }
    const SqlType& type = parameter.type;
    if (type.id == TypeId::Null)
        return "null";
    out << typeName(type.id) << '(' << type.length << ',' << int{type.precision} << ',' << int{type.scale}
        << ") ";
    const SqlType& shown = type.id == TypeId::SqlVariant ? parameter.value.variantType : type;
    out << (parameter.value.isNull() ? "NULL" : toText(parameter.value, shown));
    if (!reader.atEnd())
        out << " and " << reader.left() << " bytes";
    return out.str();
}

struct Given
{
    const char* digits;
    const char* value;
};

std::string callsOf(const std::string& digits, Version version)
{
    const Bytes bytes = bytesOf(digits);
    ByteReader reader(bytes);
    std::string out;
    try {
        while (!reader.atEnd()) {
            const Call call = readCall(reader, version);
            out += call.procedure + "(";
            for (const Parameter& parameter : call.parameters)
                out += parameter.name + (parameter.output ? " out" : "") +
                       (parameter.isDefault ? " default" : "") + " " +
                       toText(parameter.value, parameter.type) + ";";
            out += ")";
        }
    } catch (const ProtocolError&) {
        out += "refused";
    }
    return out;
}

std::string transactionOf(const std::string& digits)
{
    const Bytes bytes = bytesOf(digits);
    ByteReader reader(bytes);
    try {
        const TransactionRequest request = readTransactionRequest(reader);
        return std::to_string(static_cast<int>(request.action)) + " " + request.name + " " +
               std::to_string(request.isolation) +
               (request.chain ? " then " + request.chainName + " " + std::to_string(request.chainIsolation)
                              : "");
    } catch (const ProtocolError&) {
        return "refused";
    }
}

} // namespace

TEST(Parameters, AreReadInEveryTypeOfTheWire)
{
    for (const Given& given : std::initializer_list<Given>{
             {"1F", "null"},
             {"30 FF", "tinyint(1,0,0) 255"},
             {"32 02", "bit(1,0,0) 1"},
             {"34 FEFF", "smallint(2,0,0) -2"},
             {"38 05000000", "int(4,0,0) 5"},
             {"7F FFFFFFFFFFFFFFFF", "bigint(8,0,0) -1"},
             {"26 01 01 07", "tinyint(1,0,0) 7"},
             {"26 02 02 FFFF", "smallint(2,0,0) -1"},
             {"26 04 04 00000080", "int(4,0,0) -2147483648"},
             {"26 08 08 0100000001000000", "bigint(8,0,0) 4294967297"},
             {"26 04 00", "int(4,0,0) NULL"},
             {"26 03 03 000000", "refused"},
             {"26 04 03 000000", "refused"},
             {"68 01 01 01", "bit(1,0,0) 1"},
             {"3B 0000803F", "real(4,0,0) 1"},
             {"3E 000000000000F83F", "float(8,0,0) 1.5"},
             {"6D 04 04 0000C03F", "real(4,0,0) 1.5"},
             {"6D 08 08 000000000000F8BF", "float(8,0,0) -1.5"},
             {"6D 05 05 0000000000", "refused"},
             {"3C 01000000 00000000", "money(8,0,0) 429496.73"},
             {"7A F0D8FFFF", "smallmoney(4,0,0) -1.00"},
             {"6E 04 04 10270000", "smallmoney(4,0,0) 1.00"},
             {"6E 08 08 FFFFFFFF F0D8FFFF", "money(8,0,0) -1.00"},
             {"6E 02 02 0000", "refused"},
             {"6A 05 05 02 05 01 39300000", "decimal(5,5,2) 123.45"},
             {"6C 05 05 02 05 00 39300000", "numeric(5,5,2) -123.45"},
             {"6A 11 26 00 11 01 FFFFFFFF3F228A097AC4865AA84C3B4B",
              "decimal(17,38,0) 99999999999999999999999999999999999999"},
             {"6A 11 26 00 11 01 00000000 40228A097AC4865AA84C3B4B", "refused"},
             {"6A 11 27 00 11 01 00000000000000000000000000000000", "refused"},
             {"6A 05 00 00 05 01 00000000", "refused"},
             {"6A 05 05 06 05 01 00000000", "refused"},
             {"6A 05 05 05 01 01", "refused"},
         }) {
        SCOPED_TRACE(given.digits);
        EXPECT_EQ(valueOf(given.digits), given.value);
    }
}

TEST(Parameters, HaveTheDaysAndClocksOfTheirTypes)
{
    for (const Given& given : std::initializer_list<Given>{
             {"3D 01000000 2C010000", "datetime(8,0,0) Jan  2 1900 12:00AM"},
             {"3D 462EFFFF 00000000", "datetime(8,0,0) Jan  1 1753 12:00AM"},
             {"3D 452EFFFF 00000000", "refused"},
             {"3D 7F242D00 FF818B01", "datetime(8,0,0) Dec 31 9999 11:59PM"},
             {"3D 80242D00 00000000", "refused"},
             {"3D 00000000 00828B01", "refused"},
             {"3A 0100 3C00", "smalldatetime(4,0,0) Jan  2 1900  1:00AM"},
             {"3A FFFF 9F05", "smalldatetime(4,0,0) Jun  6 2079 11:59PM"},
             {"3A 0100 A005", "refused"},
             {"6F 04 04 0100 3C00", "smalldatetime(4,0,0) Jan  2 1900  1:00AM"},
             {"6F 08 08 01000000 00000000", "datetime(8,0,0) Jan  2 1900 12:00AM"},
             {"6F 08 00", "datetime(8,0,0) NULL"},
             {"6F 08 04 01000000", "refused"},
             {"28 03 000000", "date(3,0,0) 0001-01-01"},
             {"28 03 DAB937", "date(3,0,0) 9999-12-31"},
             {"28 03 DBB937", "refused"},
             {"28 02 0000", "refused"},
             {"29 00 03 7F5101", "time(3,0,0) 23:59:59"},
             {"29 00 03 805101", "refused"},
             {"29 03 04 FF5B2605", "time(4,0,3) 23:59:59.999"},
             {"29 07 05 0100000000", "time(5,0,7) 00:00:00.0000001"},
             {"29 08 05 0100000000", "refused"},
             {"2A 00 06 010000 010000", "datetime2(6,0,0) 0001-01-02 00:00:01"},
             {"2A 07 08 0000000000 DAB937", "datetime2(8,0,7) 9999-12-31 00:00:00.0000000"},
             {"2B 00 08 000000 010000 4803", "datetimeoffset(8,0,0) 0001-01-02 14:00:00 +14:00"},
             {"2B 00 08 000000 020000 B8FC", "datetimeoffset(8,0,0) 0001-01-02 10:00:00 -14:00"},
             {"2B 00 08 000000 020000 4903", "refused"},
             {"2B 00 08 000000 020000 B7FC", "refused"},
         }) {
        SCOPED_TRACE(given.digits);
        EXPECT_EQ(valueOf(given.digits), given.value);
    }
}

TEST(Parameters, AreTextsAndBytesOfEveryLength)
{
    for (const Given& given : std::initializer_list<Given>{
             {"24 10 10 33221100 5544 7766 8899AABBCCDDEEFF",
              "uniqueidentifier(16,0,0) 00112233-4455-6677-8899-AABBCCDDEEFF"},
             {"24 10 00", "uniqueidentifier(16,0,0) NULL"},
             {"24 10 0F 000000000000000000000000000000", "refused"},
             {"2F 05 03 616263", "char(5,0,0) abc"},
             {"27 05 03 616263", "varchar(5,0,0) abc"},
             {"27 00 00", "varchar(1,0,0) NULL"},
             {"2D 02 02 4142", "binary(2,0,0) AB"},
             {"25 03 02 4142", "varbinary(3,0,0) AB"},
             {"AF 0500 K 0300 6162F1", "char(5,0,0) abñ"},
             {"A7 0500 K 0000", "varchar(5,0,0) "},
             {"A7 0500 K FFFF", "varchar(5,0,0) NULL"},
             {"A7 0000 K 0000", "varchar(1,0,0) "},
             {"A7 0500 K 0900 616263", "refused"},
             {"E7 0A00 K 0400 6100F100", "nvarchar(5,0,0) añ"},
             {"EF 0A00 K 0200 6100 00", "nchar(5,0,0) a and 1 bytes"},
             {"AD 0400 0200 4142", "binary(4,0,0) AB"},
             {"A5 0400 0200 4142", "varbinary(4,0,0) AB"},
             {"A7 FFFF K 0600000000000000 03000000 616263 03000000 646566 00000000",
              "varchar(-1,0,0) abcdef"},
             {"E7 FFFF K FEFFFFFFFFFFFFFF 02000000 6100 00000000", "nvarchar(-1,0,0) a"},
             {"A5 FFFF FFFFFFFFFFFFFFFF", "varbinary(-1,0,0) NULL"},
             {"A5 FFFF 0200000000000000 02000000 4142", "refused"},
             {"23 10000000 K 02000000 6162", "text(16,0,0) ab"},
             {"63 10000000 K 02000000 6100", "ntext(16,0,0) a"},
             {"22 10000000 02000000 4142", "image(16,0,0) AB"},
             {"22 10000000 FFFFFFFF", "image(16,0,0) NULL"},
             {"22 10000000 00000000", "image(16,0,0) "},
             {"F1 00 0200000000000000 02000000 6100 00000000", "xml(-1,0,0) a"},
             {"F1 01 01 6100 01 6100 0100 6100 FFFFFFFFFFFFFFFF", "xml(-1,0,0) NULL"},
             {"F0", "unknown 240"},
         }) {
        SCOPED_TRACE(given.digits);
        EXPECT_EQ(valueOf(given.digits), given.value);
    }
}

TEST(Parameters, OfTypeVariantSayWhatTheyHold)
{
    for (const Given& given : std::initializer_list<Given>{
             {"62 491F0000 06000000 38 00 05000000", "sql_variant(8016,0,0) 5"},
             {"62 491F0000 0B000000 A7 07 K 0500 6162", "sql_variant(8016,0,0) ab"},
             {"62 491F0000 0B000000 E7 07 K 0A00 6100", "sql_variant(8016,0,0) a"},
             {"62 491F0000 06000000 A5 02 0400 4142", "sql_variant(8016,0,0) AB"},
             {"62 491F0000 09000000 6C 02 05 02 01 39300000", "sql_variant(8016,0,0) 123.45"},
             {"62 491F0000 05000000 28 00 000000", "sql_variant(8016,0,0) 0001-01-01"},
             {"62 491F0000 06000000 29 01 00 7F5101", "sql_variant(8016,0,0) 23:59:59"},
             {"62 491F0000 00000000", "sql_variant(8016,0,0) NULL"},
             {"62 491F0000 05000000 38 00 050000", "refused"},
             {"62 491F0000 03000000 23 00 61", "unknown 35"},
         }) {
        SCOPED_TRACE(given.digits);
        EXPECT_EQ(valueOf(given.digits), given.value);
    }
}

TEST(Calls, FollowEachOtherBehindTheMarkOfTheirVersion)
{
    const std::string first = "0100 7000 0000 00 00 38 05000000";
    const std::string second = "FFFF 0A00 0000 02 40006100 01 26 04 04 06000000 00 02 26 04 04 07000000";
    const std::string both = "p( 5;)sp_executesql(@a out 6; default 7;)";
    EXPECT_EQ(callsOf(first + "80" + second, Version::V71), both);
    EXPECT_EQ(callsOf(first + "FF" + second, Version::V72), both);
    EXPECT_EQ(callsOf(first + "FE" + second, Version::V74), both);
    EXPECT_EQ(callsOf(first + "FF" + second, Version::V71), "refused");
    EXPECT_EQ(callsOf(first + "80" + second, Version::V72), "refused");
    EXPECT_EQ(callsOf("FFFF 0100 0000", Version::V72), "sp_cursor()");
    EXPECT_EQ(callsOf("FFFF 0F00 0000", Version::V72), "sp_unprepare()");
    EXPECT_EQ(callsOf("FFFF 0000 0000", Version::V72), "refused");
    EXPECT_EQ(callsOf("FFFF 1000 0000", Version::V72), "refused");
}

TEST(Transactions, AreAskedForByNumber)
{
    EXPECT_EQ(transactionOf("0500 02 04 61006200"), "0 ab 2");
    EXPECT_EQ(transactionOf("0700 02 6100 00"), "1 a 0");
    EXPECT_EQ(transactionOf("0800 00 01 03 02 6200"), "2  0 then b 3");
    EXPECT_EQ(transactionOf("0900 02 7300"), "3 s 0");
    EXPECT_EQ(transactionOf("0600"), "refused");
    EXPECT_EQ(transactionOf("0700 04 6100"), "refused");
}
