#include "tds/call_request.h"

#include "tds/value_reader.h"

#include <array>

namespace practice::tds {

namespace {

constexpr std::array<const char*, 16> wellKnown{
    nullptr,
    "sp_cursor",
    "sp_cursoropen",
    "sp_cursorprepare",
    "sp_cursorexecute",
    "sp_cursorprepexec",
    "sp_cursorunprepare",
    "sp_cursorfetch",
    "sp_cursoroption",
    "sp_cursorclose",
    "sp_executesql",
    "sp_prepare",
    "sp_execute",
    "sp_prepexec",
    "sp_prepexecrpc",
    "sp_unprepare",
};

constexpr std::uint8_t outputFlag = 0x01;
constexpr std::uint8_t defaultFlag = 0x02;
constexpr std::size_t mostParameters = 2100;

/// Between two calls. Version 7.1 knows another mark, which is a name's length since.
bool isSeparator(std::uint8_t byte, Version version)
{
    return version == Version::V71 ? byte == 0x80 : byte == 0xFE || byte == 0xFF;
}

std::string readProcedureName(ByteReader& reader)
{
    const auto length = reader.number<std::uint16_t>();
    if (length != 0xFFFF)
        return reader.utf16(length);
    const auto id = reader.number<std::uint16_t>();
    if (id == 0 || id >= wellKnown.size())
        throw ProtocolError("unknown procedure number");
    return wellKnown.at(id);
}

Parameter readParameter(ByteReader& reader)
{
    Parameter parameter;
    parameter.name = reader.utf16(reader.number<std::uint8_t>());
    const auto flags = reader.number<std::uint8_t>();
    parameter.output = (flags & outputFlag) != 0;
    parameter.isDefault = (flags & defaultFlag) != 0;
    readTypedValue(reader, parameter);
    return parameter;
}

/// A name after its length in bytes.
std::string readName(ByteReader& reader)
{
    return reader.utf16(reader.number<std::uint8_t>() / 2U);
}

void readChain(ByteReader& reader, TransactionRequest& request)
{
    request.chain = (reader.number<std::uint8_t>() & 1U) != 0;
    if (!request.chain)
        return;
    request.chainIsolation = reader.number<std::uint8_t>();
    request.chainName = readName(reader);
}

} // namespace

void skipAllHeaders(ByteReader& reader, Version version)
{
    if (version == Version::V71)
        return;
    const auto total = reader.number<std::uint32_t>();
    if (total < sizeof(std::uint32_t))
        throw ProtocolError("request headers shorter than their length");
    reader.skip(total - sizeof(std::uint32_t));
}

Call readCall(ByteReader& reader, Version version)
{
    Call call;
    call.procedure = readProcedureName(reader);
    reader.skip(2); // options: recompile, no metadata
    while (!reader.atEnd()) {
        if (isSeparator(reader.peek(), version)) {
            reader.skip(1);
            break;
        }
        if (call.parameters.size() == mostParameters)
            throw ProtocolError("too many parameters");
        call.parameters.push_back(readParameter(reader));
    }
    return call;
}

TransactionRequest readTransactionRequest(ByteReader& reader)
{
    TransactionRequest request;
    switch (reader.number<std::uint16_t>()) {
    case 5:
        request.isolation = reader.number<std::uint8_t>();
        request.name = readName(reader);
        break;
    case 7:
        request.action = TransactionRequest::Action::Commit;
        request.name = readName(reader);
        readChain(reader, request);
        break;
    case 8:
        request.action = TransactionRequest::Action::Rollback;
        request.name = readName(reader);
        readChain(reader, request);
        break;
    case 9:
        request.action = TransactionRequest::Action::Save;
        request.name = readName(reader);
        break;
    default:
        throw ProtocolError("unknown transaction request");
    }
    return request;
}

} // namespace practice::tds
