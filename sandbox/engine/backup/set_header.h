// What a backup set tells about itself, ahead of its contents and behind them.
#pragma once

#include "engine/backup/byte_text.h"

#include <cstdint>
#include <string>
#include <vector>

namespace practice {

enum class SetKind : std::uint8_t
{
    Full = 1,
    Log = 2,
    Differential = 5
};

struct BackedUpFile
{
    int id = 0;
    int groupId = 0; ///< 0 for a log
    std::string group;
    std::int64_t pages = 0;
    std::int64_t maxPages = 0;
    std::string name;
    std::string path;
    bool readOnly = false;
};

/// The LSNs are moments of the database: each backup takes the next number.
struct SetHeader
{
    SetKind kind = SetKind::Full;
    bool copyOnly = false;
    Digest id{};
    Digest fork{};   ///< of all sets that can be restored onto one another
    Digest baseId{}; ///< of the full set that a differential one leans on
    std::uint64_t firstLsn = 0;
    std::uint64_t lastLsn = 0;
    std::uint64_t fullLsn = 0; ///< of the last full set before this one, 0 when there was none
    std::string name;
    std::string description;
    std::string user;
    std::string server;
    std::string database;
    std::int64_t created = 0; ///< datetimes in storage form
    std::int64_t started = 0;
    std::int64_t stamp = 0; ///< the last value of a timestamp column
    int level = 80;
    int recovery = 0;
    int access = 0;
    bool readOnly = false;
    std::string collation;
    std::vector<BackedUpFile> files;
};

struct SetTrailer
{
    std::int64_t finished = 0;
    std::uint64_t bytes = 0; ///< of the set up to its trailer
    std::uint64_t rows = 0;
};

[[nodiscard]] std::string encodeHeader(const SetHeader& header);
/// @throws DamagedBackup
[[nodiscard]] SetHeader decodeHeader(std::string_view bytes);
[[nodiscard]] std::string encodeTrailer(const SetTrailer& trailer);
[[nodiscard]] SetTrailer decodeTrailer(std::string_view bytes);

} // namespace practice
