// The temporary objects of a session: how their names lead to them, and when they go.
#pragma once

#include "engine/catalog/catalog.h"
#include "engine/session/call_stack.h"
#include "engine/session/read_view.h"
#include "engine/session/temporary_objects.h"

#include <cstdint>
#include <string>
#include <vector>

namespace practice {

class Temporaries
{
public:
    /// What a session has of its own and its temporary objects stand on.
    struct Ground
    {
        Store& store;
        Catalog& catalog;
        ReadView& view;
        const CallStack& calls;
        int spid;
    };

    Temporaries(const Ground& ground, TemporaryLeftovers& leftovers) : ground_(ground), leftovers_(leftovers)
    {}

    /// The name in tempdb's catalog of what "#name" means where the running statement stands.
    [[nodiscard]] std::string storedName(const std::string& name) const;
    /// The one that it is to have there once the running statement has created it.
    [[nodiscard]] std::string newStoredName(const std::string& name);
    /// "##name" goes with the session that made it.
    void ownGlobal(const std::string& name);
    /// A name for the table behind a table variable.
    [[nodiscard]] std::string tableVariableName(const std::string& variable);

    /// Drops the table variables of a frame that has ended, and its temporary tables unless they stay with
    /// the session. Temporary procedures always do.
    void endScope(Frame& ended, bool tablesStay) noexcept;
    void dropAll() noexcept;

    /// Counts the times that names of tempdb were lost and objects stayed: plans of before do not hold.
    [[nodiscard]] std::uint64_t visibility() const { return visibility_; }

private:
    [[nodiscard]] std::string known(const std::vector<TemporaryObject>& list, const std::string& fold) const;
    void drop(const std::vector<int>& ids) noexcept;

    Ground ground_;
    TemporaryLeftovers& leftovers_;
    std::vector<TemporaryObject> lasting_; ///< those that stay from batch to batch
    std::vector<int> globals_;
    int names_ = 0;          ///< given out so far
    int tableVariables_ = 0; ///< made so far: they need names
    std::uint64_t visibility_ = 0;
};

} // namespace practice
