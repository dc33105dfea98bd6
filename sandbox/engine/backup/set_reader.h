// Which sets a backup file holds.
#pragma once

#include "engine/backup/snapshot.h"

namespace practice {

struct FoundSet
{
    SetHeader header;
    SetTrailer trailer;
    std::uint64_t contents = 0; ///< offset of the first block behind the header
    std::uint64_t end = 0;
};

/// @param whole looks at every byte of the file, otherwise at what the sets tell about themselves
/// @throws DamagedBackup, BackupFileFailure
[[nodiscard]] std::vector<FoundSet> readSets(BackupReader& file, bool whole, const Progress& progress);

} // namespace practice
