#include "tds/token_sink.h"

#include "types/product_version.h"
#include "types/text_encoding.h"

#include <algorithm>

namespace practice::tds {

namespace {

constexpr std::uint16_t nullableFlag = 0x0001;
constexpr std::uint16_t updatableUnknownFlag = 0x0008;
constexpr std::uint16_t identityFlag = 0x0010;
constexpr std::uint32_t timestampUserType = 80;
constexpr std::size_t longestMessage = 16'000; ///< UTF-16 units, so that a token's length fits 16 bits

std::string_view cut(std::string_view utf8, std::size_t bytes)
{
    return utf8.substr(0, bytes);
}

/// Kinds whose values are bytes rather than text.
bool isRaw(EnvironmentChange kind)
{
    return kind >= EnvironmentChange::Collation;
}

std::size_t changeSize(EnvironmentChange kind, const std::string& text)
{
    return 1 + (isRaw(kind) ? text.size() : 2 * std::min<std::size_t>(utf16Length(text), 255));
}

} // namespace

TokenSink::TokenSink(PacketWriter& writer, Version version, std::string serverName)
    : writer_(writer), version_(version), serverName_(std::move(serverName))
{}

void TokenSink::token(Token token)
{
    flushCompletion(true);
    complete_ = false;
    writer_.put(token);
}

void TokenSink::writeUserType(const SqlType& type)
{
    const std::uint32_t user = type.id == TypeId::Timestamp ? timestampUserType : 0;
    if (version_ == Version::V71)
        writer_.put(static_cast<std::uint16_t>(user));
    else
        writer_.put(user);
}

void TokenSink::columns(std::span<const ColumnInfo> columns)
{
    token(Token::ColumnMetadata);
    inResult_ = true;
    wireTypes_.clear();
    const int textSize = textSize_ ? textSize_() : -1;
    writer_.put(static_cast<std::uint16_t>(columns.size()));
    for (const auto& column : columns) {
        WireType& wire = wireTypes_.emplace_back(wireTypeOf(column.type, version_));
        if (textSize >= 0)
            wire.longest = static_cast<std::uint32_t>(textSize);
        writeUserType(column.type);
        unsigned flags = column.nullable ? nullableFlag : 0U;
        flags |= column.updatable ? updatableUnknownFlag : 0U;
        flags |= column.identity ? identityFlag : 0U;
        writer_.put(static_cast<std::uint16_t>(flags));
        writeTypeInfo(writer_, wire);
        if (wire.layout == Layout::LongText) {
            // The table that a text pointer leads to: unknown.
            if (version_ != Version::V71)
                writer_.put(std::uint8_t{1});
            writer_.put(std::uint16_t{0});
        }
        writeShortText(writer_, column.name);
    }
}

void TokenSink::row(std::span<const Value> values)
{
    writer_.put(Token::Row);
    const std::size_t count = std::min(values.size(), wireTypes_.size());
    for (std::size_t i = 0; i < count; ++i)
        writeValue(writer_, wireTypes_[i], values[i], version_);
}

void TokenSink::message(const Message& message)
{
    const bool error = message.severity > 10;
    failed_ = failed_ || error;
    token(error ? Token::Error : Token::Info);
    const std::string_view text = cut(message.text, longestMessage);
    const std::string_view server = cut(serverName_, 255);
    const std::string_view procedure = cut(message.procedure, 255);
    const std::size_t units = utf16Length(text) + utf16Length(server) + utf16Length(procedure);
    const std::size_t lineSize = version_ == Version::V71 ? 2 : 4;
    writer_.put(static_cast<std::uint16_t>(4 + 1 + 1 + 2 + 1 + 1 + lineSize + 2 * units));
    writer_.put(std::int32_t{message.number});
    writer_.put(static_cast<std::uint8_t>(message.state));
    writer_.put(static_cast<std::uint8_t>(message.severity));
    writeLongText(writer_, text);
    writeShortText(writer_, server);
    writeShortText(writer_, procedure);
    if (version_ == Version::V71)
        writer_.put(static_cast<std::uint16_t>(message.line));
    else
        writer_.put(std::int32_t{message.line});
}

void TokenSink::done(const Completion& completion)
{
    if (completion.omissible && !inResult_ && !failed_)
        return;
    inResult_ = false;
    flushCompletion(true);
    pending_ = completion;
    pending_->error = completion.error || failed_;
    if (completion.kind == Completion::Kind::Statement)
        pending_->kind = kind_;
    failed_ = false;
    complete_ = true;
}

void TokenSink::flushCompletion(bool more)
{
    if (!pending_)
        return;
    writeCompletion(*pending_, more);
    pending_.reset();
}

void TokenSink::writeCompletion(const Completion& completion, bool more)
{
    Token token = Token::Done;
    if (completion.kind == Completion::Kind::InProcedure)
        token = Token::DoneInProcedure;
    else if (completion.kind == Completion::Kind::Procedure)
        token = Token::DoneProcedure;
    unsigned status = 0;
    const auto mark = [&status](bool set, DoneStatus bit) { status |= set ? unsigned{bit} : 0U; };
    mark(more, DoneMore);
    mark(completion.error, DoneError);
    mark(completion.rows.has_value() && !completion.error, DoneCount);
    writer_.put(token);
    writer_.put(static_cast<std::uint16_t>(status));
    writer_.put(completion.command);
    writeRowCount(completion.rows.value_or(0));
}

void TokenSink::writeRowCount(std::uint64_t rows)
{
    if (version_ == Version::V71)
        writer_.put(static_cast<std::uint32_t>(std::min<std::uint64_t>(rows, 0xFFFF'FFFF)));
    else
        writer_.put(rows);
}

void TokenSink::requestEnd()
{
    // A statement of a procedure is never the last to end.
    const bool inside = pending_ && pending_->kind == Completion::Kind::InProcedure;
    if (!complete_ || inside) {
        Completion completion;
        completion.error = inside && pending_->error;
        done(completion);
    }
    flushCompletion(false);
    complete_ = false;
    inResult_ = false;
    wireTypes_.clear();
    parameterNames_.clear();
    kind_ = Completion::Kind::Statement;
}

void TokenSink::attentionDone()
{
    writer_.put(Token::Done);
    writer_.put(static_cast<std::uint16_t>(DoneAttention));
    writer_.put(std::uint16_t{0});
    writeRowCount(0);
}

void TokenSink::environment(EnvironmentChange kind, const std::string& now, const std::string& before)
{
    if (kind == EnvironmentChange::Collation) {
        collation();
        return;
    }
    if (kind == EnvironmentChange::Language)
        collation();
    token(Token::EnvironmentChange);
    writer_.put(static_cast<std::uint16_t>(1 + changeSize(kind, now) + changeSize(kind, before)));
    writer_.put(kind);
    for (const std::string* text : {&now, &before}) {
        if (isRaw(kind)) {
            writer_.put(static_cast<std::uint8_t>(text->size()));
            writer_.putBytes(text->data(), text->size());
        } else {
            writeShortText(writer_, *text);
        }
    }
}

void TokenSink::collation()
{
    if (collationSent_)
        return;
    collationSent_ = true;
    token(Token::EnvironmentChange);
    writer_.put(static_cast<std::uint16_t>(3 + defaultCollation.size()));
    writer_.put(EnvironmentChange::Collation);
    writer_.put(static_cast<std::uint8_t>(defaultCollation.size()));
    writer_.putBytes(defaultCollation.data(), defaultCollation.size());
    writer_.put(std::uint8_t{0});
}

void TokenSink::loginAcknowledge(std::uint32_t wireVersion, std::size_t packetSize)
{
    constexpr std::string_view product = "Microsoft SQL Server";
    constexpr std::uint8_t transactSql = 1;
    collation();
    token(Token::LoginAcknowledge);
    writer_.put(static_cast<std::uint16_t>(1 + 4 + 1 + 2 * product.size() + 4));
    writer_.put(transactSql);
    for (unsigned shift = 32; shift > 0; shift -= 8)
        writer_.put(static_cast<std::uint8_t>(wireVersion >> (shift - 8)));
    writeShortText(writer_, product);
    writer_.put(productVersion.major);
    writer_.put(productVersion.minor);
    writer_.put(static_cast<std::uint8_t>(productVersion.build >> 8U));
    writer_.put(static_cast<std::uint8_t>(productVersion.build));
    environment(EnvironmentChange::PacketSize, std::to_string(packetSize), std::to_string(defaultPacketSize));
}

void TokenSink::returnStatus(int status)
{
    token(Token::ReturnStatus);
    writer_.put(std::int32_t{status});
}

void TokenSink::outputParameter(const std::string& name, const SqlType& type, const Value& value)
{
    constexpr std::uint8_t outputOfProcedure = 1;
    token(Token::ReturnValue);
    const auto found = std::find(parameterNames_.begin(), parameterNames_.end(), name);
    const auto ordinal = found == parameterNames_.end() ? 0 : found - parameterNames_.begin();
    writer_.put(static_cast<std::uint16_t>(ordinal));
    writeShortText(writer_, name);
    writer_.put(outputOfProcedure);
    writeUserType(type);
    writer_.put(nullableFlag);
    const WireType wire = wireTypeOf(type, version_);
    writeTypeInfo(writer_, wire);
    writeValue(writer_, wire, value, version_);
}

} // namespace practice::tds
