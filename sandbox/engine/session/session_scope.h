// What holds for a while in a session, and goes however that while ends: a cancel and a fault leave the
// session as a RETURN does.
#pragma once

#include "engine/session/session_state.h"

#include <memory>
#include <utility>

namespace practice {

/// Gives a variable another value as long as it lives.
template <typename T>
class Temporarily
{
public:
    Temporarily(T& variable, T value)
        : variable_(variable), before_(std::exchange(variable, std::move(value)))
    {}
    ~Temporarily() { variable_ = std::move(before_); }
    Temporarily(const Temporarily&) = delete;
    Temporarily& operator=(const Temporarily&) = delete;

private:
    T& variable_;
    T before_;
};

/// Sends results and messages elsewhere.
class SinkScope
{
public:
    SinkScope(SessionState& session, ResultSink& sink)
        : session_(session), before_(session.exchangeSink(&sink))
    {}
    ~SinkScope() { session_.exchangeSink(before_); }
    SinkScope(const SinkScope&) = delete;
    SinkScope& operator=(const SinkScope&) = delete;

private:
    SessionState& session_;
    ResultSink* before_;
};

/// Lets go of the statement's view of the store however it ends.
class StatementEnd
{
public:
    explicit StatementEnd(SessionState& session) : session_(session) {}
    ~StatementEnd() { session_.endStatement(); }
    StatementEnd(const StatementEnd&) = delete;
    StatementEnd& operator=(const StatementEnd&) = delete;

private:
    SessionState& session_;
};

enum class ScopeKind : std::uint8_t
{
    Request, ///< of a client: its temporary tables stay with the session
    Module,  ///< a procedure: its temporary tables and what it SET go with it
    Inner,   ///< EXEC ('text') and sp_executesql: so does its USE
    Nested,  ///< within a statement of the server's own: part of the scope that it stands in
};

/// One running frame.
class FrameScope
{
public:
    FrameScope(SessionState& session, std::unique_ptr<Frame> frame, ScopeKind kind);
    ~FrameScope();
    FrameScope(const FrameScope&) = delete;
    FrameScope& operator=(const FrameScope&) = delete;

private:
    void restore();

    SessionState& session_;
    ScopeKind kind_;
    SessionOptions options_;
    int lockTimeout_;
    DatabasePtr database_;
};

} // namespace practice
