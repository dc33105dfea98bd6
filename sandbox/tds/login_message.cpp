#include "tds/login_message.h"

#include "tds/byte_reader.h"
#include "types/product_version.h"

#include <algorithm>
#include <vector>

namespace practice::tds {

namespace {

enum PreLoginOption : std::uint8_t
{
    VersionOption = 0,
    EncryptionOption = 1,
    InstanceOption = 2,
    ThreadOption = 3,
    MarsOption = 4,
    Terminator = 0xFF,
};

constexpr std::uint8_t encryptionNotSupported = 2;
constexpr std::size_t shortestLogin = 86; ///< 7.1: without the fields for a new password

/// The text that a pair of offset and length in the fixed part points to.
class Fields
{
public:
    Fields(std::span<const std::uint8_t> payload, std::size_t position)
        : payload_(payload), reader_(payload.subspan(position))
    {}

    std::span<const std::uint8_t> next(std::size_t unit = 2)
    {
        const auto offset = reader_.number<std::uint16_t>();
        const std::size_t length = reader_.number<std::uint16_t>() * unit;
        if (length == 0)
            return {};
        if (offset > payload_.size() || length > payload_.size() - offset)
            throw ProtocolError("login field outside the message");
        return payload_.subspan(offset, length);
    }

    std::string nextText()
    {
        const auto bytes = next();
        return utf8FromUtf16Bytes(bytes.data(), bytes.size());
    }

private:
    std::span<const std::uint8_t> payload_;
    ByteReader reader_;
};

/// Passwords travel with their half bytes swapped and every bit pattern flipped by 0xA5.
std::string clearPassword(std::span<const std::uint8_t> bytes)
{
    std::vector<std::uint8_t> clear(bytes.begin(), bytes.end());
    for (auto& byte : clear) {
        byte ^= 0xA5U;
        byte = static_cast<std::uint8_t>(byte << 4U | byte >> 4U);
    }
    return utf8FromUtf16Bytes(clear.data(), clear.size());
}

Version versionOf(std::uint32_t asked)
{
    switch (asked >> 24U) {
    case 0x71:
        return Version::V71;
    case 0x72:
        return Version::V72;
    case 0x73:
        return Version::V73;
    default:
        if (asked >> 24U < 0x74)
            throw ProtocolError("protocol version before 7.1");
        return Version::V74; // a later client is told what there is
    }
}

std::uint32_t acknowledged(Version version, std::uint32_t asked)
{
    switch (version) {
    case Version::V71:
        return 0x71000001;
    case Version::V72:
        return 0x72090002;
    case Version::V73:
        return asked >= 0x730B0003 ? 0x730B0003 : 0x730A0003;
    default:
        return 0x74000004;
    }
}

int firstTextSize(bool odbc, Version version)
{
    constexpr int unlimited = -1;
    if (!odbc)
        return 4096;
    return version >= Version::V73 ? unlimited : 0x7FFF'FFFF;
}

} // namespace

void answerPreLogin(std::span<const std::uint8_t> payload, PacketWriter& writer)
{
    ByteReader reader(payload);
    while (reader.number<std::uint8_t>() != Terminator) {
        const auto offset = reader.take(2);
        const auto length = reader.take(2);
        const std::size_t end = static_cast<std::size_t>(offset[0] << 8U | offset[1]) +
                                static_cast<std::size_t>(length[0] << 8U | length[1]);
        if (end > payload.size())
            throw ProtocolError("option outside the message");
    }
    struct Option
    {
        PreLoginOption id;
        std::vector<std::uint8_t> data;
    };
    const std::vector<Option> options{
        {VersionOption,
         {productVersion.major, productVersion.minor, static_cast<std::uint8_t>(productVersion.build >> 8U),
          static_cast<std::uint8_t>(productVersion.build), 0, 0}},
        {EncryptionOption, {encryptionNotSupported}},
        {InstanceOption, {0}},
        {ThreadOption, {}},
        {MarsOption, {0}},
    };
    std::size_t offset = options.size() * 5 + 1;
    for (const auto& option : options) {
        writer.put(option.id);
        for (const std::size_t number : {offset, option.data.size()}) {
            writer.put(static_cast<std::uint8_t>(number >> 8U));
            writer.put(static_cast<std::uint8_t>(number));
        }
        offset += option.data.size();
    }
    writer.put(Terminator);
    for (const auto& option : options)
        writer.putBytes(option.data.data(), option.data.size());
    writer.endMessage();
}

LoginMessage parseLogin(std::span<const std::uint8_t> payload)
{
    if (payload.size() < shortestLogin)
        throw ProtocolError("login message cut short");
    ByteReader fixed(payload);
    if (fixed.number<std::uint32_t>() > payload.size())
        throw ProtocolError("login message cut short");
    LoginMessage login;
    const auto asked = fixed.number<std::uint32_t>();
    login.version = versionOf(asked);
    login.wireVersion = acknowledged(login.version, asked);
    const std::size_t packetSize = fixed.number<std::uint32_t>();
    if (packetSize != 0)
        login.packetSize = std::clamp(packetSize, minPacketSize, maxPacketSize);
    fixed.skip(13); // program version, process, connection, first option flags
    const auto flags = fixed.number<std::uint8_t>();
    login.integratedSecurity = (flags & 0x80U) != 0;
    login.request.languageRequired = (flags & 0x01U) != 0;
    login.request.odbc = (flags & 0x02U) != 0;
    login.request.textSize = firstTextSize(login.request.odbc, login.version);

    Fields fields(payload, 36);
    login.request.host = fields.nextText();
    login.request.user = fields.nextText();
    login.request.password = clearPassword(fields.next());
    login.request.application = fields.nextText();
    fields.next();  // the server's name
    fields.next(1); // feature extensions: none is taken up, so none is acknowledged
    fields.next();  // the client library's name
    login.request.language = fields.nextText();
    login.request.database = fields.nextText();
    return login;
}

} // namespace practice::tds
