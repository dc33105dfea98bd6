#include "engine/session/session_scope.h"

namespace practice {

FrameScope::FrameScope(SessionState& session, std::unique_ptr<Frame> frame, ScopeKind kind)
    : session_(session), kind_(kind), options_(session.options()), lockTimeout_(session.store().lockTimeout())
{
    if (kind == ScopeKind::Inner)
        database_ = session.database();
    frame->ownScope = kind != ScopeKind::Nested;
    session.calls().push(std::move(frame));
    if (kind == ScopeKind::Module || kind == ScopeKind::Inner)
        session.calls().enterModule();
}

FrameScope::~FrameScope()
{
    const std::unique_ptr<Frame> ended = session_.calls().pop();
    if (kind_ == ScopeKind::Nested)
        return;
    if (kind_ != ScopeKind::Request)
        restore();
    session_.temporaries().endScope(*ended, kind_ == ScopeKind::Request);
}

void FrameScope::restore()
{
    session_.calls().leaveModule();
    if (kind_ == ScopeKind::Module)
        options_.identityInsert = session_.options().identityInsert;
    session_.options() = std::move(options_);
    session_.store().setLockTimeout(lockTimeout_);
    if (database_)
        session_.returnTo(database_);
}

} // namespace practice
