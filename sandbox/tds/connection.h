// One client, from its first packet to its last. Runs in a thread of its own.
#pragma once

#include "engine/api/session.h"
#include "tds/attention_watch.h"
#include "tds/call_request.h"
#include "tds/login_message.h"
#include "tds/packet_reader.h"
#include "tds/packet_writer.h"
#include "tds/statement_log.h"
#include "tds/token_sink.h"

#include <chrono>
#include <memory>
#include <mutex>

namespace practice::tds {

/// What all connections share; outlives them.
struct Shared
{
    Server& engine;
    AttentionWatch& watch;
    StatementLog* log = nullptr;
    /// Within which a client has to have logged in.
    std::chrono::milliseconds loginLimit{15'000};
};

class Connection final : private Watched
{
public:
    Connection(Descriptor descriptor, const Shared& shared);
    ~Connection() override;

    /// Serves the client until it leaves, misbehaves or is stopped. Throws nothing.
    void run();
    /// From another thread: ends the connection soon.
    void stop();

private:
    bool interrupted() override;

    bool login();
    bool answerLogin(const LoginMessage& login);
    void refuse(const Message& why);
    void serve();
    /// False when the connection has to end.
    bool answer(const RequestMessage& message);
    void execute(const RequestMessage& message);
    void executeBatch(ByteReader& reader);
    void executeCalls(ByteReader& reader);
    void executeTransaction(ByteReader& reader);
    void setIsolation(int level);
    void begin();
    void end();
    void close();

    Socket socket_;
    const Shared& shared_;
    PacketReader reader_;
    PacketWriter writer_;
    Version version_ = Version::V74;
    std::unique_ptr<TokenSink> sink_;

    std::mutex mutex_; ///< over what follows and the socket's end, for the watch and `stop`
    std::unique_ptr<Session> session_;
    bool running_ = false;
    bool stopped_ = false;
};

} // namespace practice::tds
