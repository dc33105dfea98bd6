// Requests that are not plain text: procedure calls and transaction control.
#pragma once

#include "engine/api/session.h"
#include "tds/byte_reader.h"
#include "tds/protocol.h"

#include <string>
#include <vector>

namespace practice::tds {

/// Passes over the headers that requests from version 7.2 on begin with.
void skipAllHeaders(ByteReader& reader, Version version);

struct Call
{
    std::string procedure;
    std::vector<Parameter> parameters;
};

/// The next call of a request, which may hold several.
/// @throws ProtocolError, UnknownType
[[nodiscard]] Call readCall(ByteReader& reader, Version version);

struct TransactionRequest
{
    enum class Action : std::uint8_t
    {
        Begin,
        Commit,
        Rollback,
        Save
    };
    Action action = Action::Begin;
    std::string name;
    int isolation = 0; ///< 0: as it is
    /// A transaction begins right after the end of this one.
    bool chain = false;
    std::string chainName;
    int chainIsolation = 0;
};

/// @throws ProtocolError for what does not exist or needs a coordinator
[[nodiscard]] TransactionRequest readTransactionRequest(ByteReader& reader);

} // namespace practice::tds
