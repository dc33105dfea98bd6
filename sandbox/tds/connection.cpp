#include "tds/connection.h"

#include "tds/value_reader.h"

#include <array>
#include <cstdio>

namespace practice::tds {

namespace {

/// A statement of that size is beyond any use, and memory has an end.
constexpr std::size_t longestRequest = std::size_t{64} * 1024 * 1024;

Message fault(int number, int severity, std::string text)
{
    Message message;
    message.number = number;
    message.severity = severity;
    message.text = std::move(text);
    return message;
}

Message brokenStream()
{
    return fault(
        4014, 20,
        "A fatal error occurred while reading the input stream from the network. The session will be "
        "terminated (input error: 0, output error: 0).");
}

Message unknownParameterType(std::uint8_t token)
{
    std::array<char, 200> text{};
    std::snprintf(text.data(), text.size(),
                  "The incoming tabular data stream (TDS) remote procedure call (RPC) protocol stream is "
                  "incorrect. Data type 0x%02X is unknown.",
                  static_cast<unsigned>(token));
    return fault(8009, 16, text.data());
}

/// For statements that the wire itself sends on a client's behalf: only their errors go on.
class ErrorsOnly final : public ResultSink
{
public:
    explicit ErrorsOnly(ResultSink& next) : next_(next) {}
    void columns(std::span<const ColumnInfo>) override {}
    void row(std::span<const Value>) override {}
    void message(const Message& message) override { next_.message(message); }
    void done(const Completion&) override {}
    void environment(EnvironmentChange kind, const std::string& now, const std::string& before) override
    {
        next_.environment(kind, now, before);
    }
    void returnStatus(int) override {}
    void outputParameter(const std::string&, const SqlType&, const Value&) override {}

private:
    ResultSink& next_;
};

std::string quotedName(const std::string& name)
{
    std::string quoted = "[";
    for (const char c : name)
        quoted.append(c == ']' ? 2 : 1, c);
    return quoted + ']';
}

} // namespace

Connection::Connection(Descriptor descriptor, const Shared& shared)
    : socket_(std::move(descriptor)), shared_(shared), reader_(socket_), writer_(socket_)
{
    shared_.watch.add(socket_.descriptor(), *this);
}

Connection::~Connection()
{
    close();
}

void Connection::close()
{
    if (socket_.descriptor() < 0)
        return;
    shared_.watch.remove(socket_.descriptor());
    const std::lock_guard lock(mutex_);
    socket_.close();
}

void Connection::stop()
{
    const std::lock_guard lock(mutex_);
    stopped_ = true;
    if (session_ && running_)
        session_->cancel();
    socket_.shutdown();
}

bool Connection::interrupted()
{
    const std::lock_guard lock(mutex_);
    if (!running_ || !session_)
        return false;
    std::uint8_t first = 0;
    const auto seen = socket_.peek(first);
    const bool attention =
        seen == Socket::Peek::Byte && first == static_cast<std::uint8_t>(PacketType::Attention);
    if (!attention && seen != Socket::Peek::Closed)
        return false;
    session_->cancel();
    return true;
}

void Connection::run()
{
    try {
        if (login())
            serve();
    } catch (const ProtocolError&) {
        if (sink_) {
            sink_->setKind(Completion::Kind::Statement);
            refuse(brokenStream());
        }
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "connection dropped: %s\n", failure.what());
    } catch (...) {
        std::fprintf(stderr, "connection dropped: the engine let a fault through\n");
    }
    std::unique_ptr<Session> session;
    {
        const std::lock_guard lock(mutex_);
        session = std::move(session_);
    }
    session.reset();
    close();
}

bool Connection::login()
{
    const auto deadline = std::chrono::steady_clock::now() + shared_.loginLimit;
    for (int messages = 0; messages < 3; ++messages) {
        const auto message = reader_.read(deadline);
        if (!message)
            return false;
        if (message->type == PacketType::PreLogin) {
            answerPreLogin(message->payload, writer_);
            continue;
        }
        if (message->type != PacketType::Login)
            return false;
        return answerLogin(parseLogin(message->payload));
    }
    return false;
}

bool Connection::answerLogin(const LoginMessage& login)
{
    version_ = login.version;
    sink_ = std::make_unique<TokenSink>(writer_, version_, shared_.engine.name());
    if (login.integratedSecurity) {
        refuse(fault(18452, 14,
                     "Login failed. The login is from an untrusted domain and cannot be used with Windows "
                     "authentication."));
        return false;
    }
    try {
        auto session = shared_.engine.login(login.request, *sink_);
        const std::lock_guard lock(mutex_);
        session_ = std::move(session);
    } catch (const LoginRefused& refused) {
        refuse(refused.message);
        return false;
    }
    writer_.setSpid(session_->id());
    writer_.onLost([this] { session_->cancel(); });
    sink_->limitTextBy([this] { return session_->textSize(); });
    sink_->loginAcknowledge(login.wireVersion, login.packetSize);
    sink_->requestEnd();
    writer_.endMessage();
    writer_.setPacketSize(login.packetSize);
    reader_.setLimit(longestRequest);
    return !writer_.lost();
}

void Connection::refuse(const Message& why)
{
    sink_->message(why);
    sink_->requestEnd();
    writer_.endMessage();
}

void Connection::serve()
{
    while (const auto message = reader_.read(std::nullopt)) {
        if (!answer(*message))
            return;
    }
}

bool Connection::answer(const RequestMessage& message)
{
    if (message.type == PacketType::Attention)
        sink_->attentionDone();
    else if (message.ignored)
        sink_->requestEnd();
    else
        execute(message);
    writer_.endMessage();
    const std::lock_guard lock(mutex_);
    return !writer_.lost() && !stopped_;
}

void Connection::begin()
{
    {
        const std::lock_guard lock(mutex_);
        running_ = true;
    }
    shared_.watch.arm(socket_.descriptor());
}

void Connection::end()
{
    const std::lock_guard lock(mutex_);
    running_ = false;
}

void Connection::execute(const RequestMessage& message)
{
    ByteReader reader(message.payload);
    skipAllHeaders(reader, version_);
    begin();
    if ((message.status & (ResetConnection | ResetKeepingTransaction)) != 0)
        session_->reset(*sink_);
    switch (message.type) {
    case PacketType::Batch:
        executeBatch(reader);
        break;
    case PacketType::Rpc:
        executeCalls(reader);
        break;
    case PacketType::TransactionManager:
        executeTransaction(reader);
        break;
    default:
        throw ProtocolError("message out of turn");
    }
    end();
    sink_->requestEnd();
}

void Connection::executeBatch(ByteReader& reader)
{
    const std::string text = reader.utf16(reader.left() / 2);
    if (shared_.log != nullptr)
        shared_.log->batch(session_->id(), text);
    session_->executeBatch(text, *sink_);
}

void Connection::executeCalls(ByteReader& reader)
{
    do {
        sink_->setKind(Completion::Kind::Procedure);
        Call call;
        try {
            call = readCall(reader, version_);
        } catch (const UnknownType& unknown) {
            // Where the next parameter begins is unknown as well: the rest of the request is lost.
            sink_->message(unknownParameterType(unknown.token));
            return;
        }
        if (shared_.log != nullptr)
            shared_.log->call(session_->id(), call.procedure, call.parameters);
        std::vector<std::string> names;
        for (const auto& parameter : call.parameters)
            names.push_back(parameter.name);
        sink_->setParameterNames(std::move(names));
        session_->executeProcedure(call.procedure, std::move(call.parameters), *sink_);
    } while (!reader.atEnd());
}

void Connection::setIsolation(int level)
{
    constexpr std::array<const char*, 6> names{nullptr,           "READ UNCOMMITTED", "READ COMMITTED",
                                               "REPEATABLE READ", "SERIALIZABLE",     "SNAPSHOT"};
    if (level == 0)
        return;
    if (level < 0 || static_cast<std::size_t>(level) >= names.size())
        throw ProtocolError("unknown isolation level");
    ErrorsOnly quiet(*sink_);
    session_->executeBatch(
        std::string("SET TRANSACTION ISOLATION LEVEL ") + names.at(static_cast<std::size_t>(level)), quiet);
}

void Connection::executeTransaction(ByteReader& reader)
{
    const TransactionRequest request = readTransactionRequest(reader);
    switch (request.action) {
    case TransactionRequest::Action::Begin:
        setIsolation(request.isolation);
        session_->beginTransaction(request.name, *sink_);
        break;
    case TransactionRequest::Action::Commit:
        session_->commitTransaction(*sink_);
        break;
    case TransactionRequest::Action::Rollback:
        session_->rollbackTransaction(request.name, *sink_);
        break;
    case TransactionRequest::Action::Save: {
        ErrorsOnly quiet(*sink_);
        session_->executeBatch("SAVE TRANSACTION " + quotedName(request.name), quiet);
        break;
    }
    }
    if (request.chain) {
        setIsolation(request.chainIsolation);
        session_->beginTransaction(request.chainName, *sink_);
    }
}

} // namespace practice::tds
