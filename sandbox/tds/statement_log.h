// A record of what clients sent, for tests that compare it and people who want to see it.
#pragma once

#include "engine/api/session.h"

#include <filesystem>
#include <fstream>
#include <mutex>
#include <string_view>
#include <vector>

namespace practice::tds {

/// Writes one record each: a line "batch SESSION BYTES", that many bytes of UTF-8 exactly as the
/// statement came, and a line feed. A call is "call SESSION BYTES" with the procedure's name,
/// followed by a record "parameter SESSION BYTES NAME TYPE" for each of its values ("null" in place
/// of BYTES for NULL; NAME is "-" for a nameless one). Shared by all sessions.
class StatementLog
{
public:
    /// @throws std::runtime_error when the file can't be written
    explicit StatementLog(const std::filesystem::path& file);

    void batch(int session, std::string_view text);
    void call(int session, std::string_view procedure, const std::vector<Parameter>& parameters);

private:
    void write(std::string_view kind, int session, std::string_view text, std::string_view suffix);

    std::mutex mutex_;
    std::ofstream file_;
};

} // namespace practice::tds
