// The numbers of the tabular data stream, versions 7.1 to 7.4, after the published protocol
// document MS-TDS.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <stdexcept>

namespace practice::tds {

inline constexpr std::size_t headerSize = 8;
inline constexpr std::size_t minPacketSize = 512;
inline constexpr std::size_t defaultPacketSize = 4096;
inline constexpr std::size_t maxPacketSize = 32'767;
/// A packet of a client may use any length that its 16 bits can say.
inline constexpr std::size_t longestPacket = 65'535;

enum class PacketType : std::uint8_t
{
    Batch = 1,
    Rpc = 3,
    Reply = 4,
    Attention = 6,
    BulkLoad = 7,
    TransactionManager = 14,
    Login = 16,
    PreLogin = 18,
};

enum PacketStatus : std::uint8_t
{
    EndOfMessage = 0x01,
    IgnoreMessage = 0x02,
    ResetConnection = 0x08,
    ResetKeepingTransaction = 0x10,
};

/// What the client asked for; later ones have all that earlier ones have.
enum class Version : std::uint8_t
{
    V71,
    V72,
    V73,
    V74
};

enum class Token : std::uint8_t
{
    ReturnStatus = 0x79,
    ColumnMetadata = 0x81,
    Error = 0xAA,
    Info = 0xAB,
    ReturnValue = 0xAC,
    LoginAcknowledge = 0xAD,
    Row = 0xD1,
    EnvironmentChange = 0xE3,
    Done = 0xFD,
    DoneProcedure = 0xFE,
    DoneInProcedure = 0xFF,
};

enum DoneStatus : std::uint16_t
{
    DoneMore = 0x0001,
    DoneError = 0x0002,
    DoneCount = 0x0010,
    DoneAttention = 0x0020,
};

namespace type {
inline constexpr std::uint8_t null = 0x1F;
inline constexpr std::uint8_t image = 0x22;
inline constexpr std::uint8_t text = 0x23;
inline constexpr std::uint8_t guid = 0x24;
inline constexpr std::uint8_t oldVarBinary = 0x25;
inline constexpr std::uint8_t intN = 0x26;
inline constexpr std::uint8_t oldVarChar = 0x27;
inline constexpr std::uint8_t date = 0x28;
inline constexpr std::uint8_t time = 0x29;
inline constexpr std::uint8_t dateTime2 = 0x2A;
inline constexpr std::uint8_t dateTimeOffset = 0x2B;
inline constexpr std::uint8_t oldBinary = 0x2D;
inline constexpr std::uint8_t oldChar = 0x2F;
inline constexpr std::uint8_t int1 = 0x30;
inline constexpr std::uint8_t bit = 0x32;
inline constexpr std::uint8_t int2 = 0x34;
inline constexpr std::uint8_t int4 = 0x38;
inline constexpr std::uint8_t smallDateTime = 0x3A;
inline constexpr std::uint8_t real = 0x3B;
inline constexpr std::uint8_t money = 0x3C;
inline constexpr std::uint8_t dateTime = 0x3D;
inline constexpr std::uint8_t float8 = 0x3E;
inline constexpr std::uint8_t variant = 0x62;
inline constexpr std::uint8_t nText = 0x63;
inline constexpr std::uint8_t bitN = 0x68;
inline constexpr std::uint8_t decimalN = 0x6A;
inline constexpr std::uint8_t numericN = 0x6C;
inline constexpr std::uint8_t floatN = 0x6D;
inline constexpr std::uint8_t moneyN = 0x6E;
inline constexpr std::uint8_t dateTimeN = 0x6F;
inline constexpr std::uint8_t smallMoney = 0x7A;
inline constexpr std::uint8_t int8 = 0x7F;
inline constexpr std::uint8_t varBinary = 0xA5;
inline constexpr std::uint8_t varChar = 0xA7;
inline constexpr std::uint8_t binary = 0xAD;
inline constexpr std::uint8_t fixedChar = 0xAF;
inline constexpr std::uint8_t nVarChar = 0xE7;
inline constexpr std::uint8_t nChar = 0xEF;
inline constexpr std::uint8_t xml = 0xF1;
} // namespace type

/// SQL_Latin1_General_CP1_CI_AS: locale 0x0409, case and width ignored, sort order 52.
inline constexpr std::array<std::uint8_t, 5> defaultCollation{0x09, 0x04, 0xD0, 0x00, 0x34};

/// PLP lengths with a meaning of their own.
inline constexpr std::uint64_t plpNull = 0xFFFF'FFFF'FFFF'FFFF;
inline constexpr std::uint64_t plpUnknownLength = 0xFFFF'FFFF'FFFF'FFFE;

/// The bytes of a client make no sense; the connection ends.
struct ProtocolError : std::runtime_error
{
    using std::runtime_error::runtime_error;
};

} // namespace practice::tds
