// Turns what the engine tells into tokens.
#pragma once

#include "engine/api/result_sink.h"
#include "tds/packet_writer.h"
#include "tds/protocol.h"
#include "tds/value_writer.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace practice::tds {

class TokenSink final : public ResultSink
{
public:
    TokenSink(PacketWriter& writer, Version version, std::string serverName);

    void columns(std::span<const ColumnInfo> columns) override;
    void row(std::span<const Value> values) override;
    void message(const Message& message) override;
    void done(const Completion& completion) override;
    void environment(EnvironmentChange kind, const std::string& now, const std::string& before) override;
    void returnStatus(int status) override;
    void outputParameter(const std::string& name, const SqlType& type, const Value& value) override;

    /// The names of the running call's parameters, by which output values find their place.
    void setParameterNames(std::vector<std::string> names) { parameterNames_ = std::move(names); }
    /// Where to learn how much of large values goes out; all of them until it is told.
    void limitTextBy(std::function<int()> textSize) { textSize_ = std::move(textSize); }
    /// What a request is made of: a call's own completions, and one missing at its end, are Procedure.
    void setKind(Completion::Kind kind) { kind_ = kind; }

    /// Writes what ends a request: the last completion, this time without a successor.
    void requestEnd();
    void attentionDone();

    /// Ends the login's reply.
    void loginAcknowledge(std::uint32_t wireVersion, std::size_t packetSize);
    void collation();

private:
    void token(Token token);
    void flushCompletion(bool more);
    void writeCompletion(const Completion& completion, bool more);
    void writeRowCount(std::uint64_t rows);
    void writeUserType(const SqlType& type);

    PacketWriter& writer_;
    Version version_;
    std::string serverName_;
    std::function<int()> textSize_;
    std::vector<WireType> wireTypes_;
    std::vector<std::string> parameterNames_;
    std::optional<Completion> pending_; ///< held back until it is known whether more follows
    Completion::Kind kind_ = Completion::Kind::Statement;
    bool complete_ = false; ///< nothing was written since the last completion
    bool failed_ = false;   ///< an error came since then
    bool inResult_ = false; ///< columns were told, whose rows have not ended
    bool collationSent_ = false;
};

} // namespace practice::tds
