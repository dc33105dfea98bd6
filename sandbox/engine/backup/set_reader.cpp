#include "engine/backup/set_reader.h"

namespace practice {

std::vector<FoundSet> readSets(BackupReader& file, bool whole, const Progress& progress)
{
    std::vector<FoundSet> sets;
    Block block;
    try {
        while (whole ? file.next(block) : file.nextHeader(block)) {
            progress(file.position(), file.end());
            if (block.kind == BlockKind::Header) {
                sets.push_back({decodeHeader(block.payload), {}, file.position(), 0});
            } else if (block.kind == BlockKind::Trailer) {
                sets.back().trailer = decodeTrailer(block.payload);
                sets.back().end = file.position();
            }
        }
    } catch (const DamagedBackup& damage) {
        throw DamagedBackup{damage.offset == 0 ? file.position() : damage.offset};
    }
    return sets;
}

} // namespace practice
