// A backup file as it may come from anywhere: it is read to its end, or refused for one of the reasons
// there are. The first byte tells how: as a whole file, or as the contents of a set whose blocks are right,
// which are then replayed into a store.
#include "fuzz_check.h"

#include "engine/backup/change_base.h"
#include "engine/backup/replay.h"
#include "engine/catalog/catalog.h"
#include "engine/messages/errors.h"

#include <filesystem>
#include <fstream>
#include <memory>

#include <unistd.h>

namespace {

using namespace practice;

/// A store that every input finds as the first one did.
class Place
{
public:
    Place() : folder(std::filesystem::temp_directory_path() / ("fuzz-backup-" + std::to_string(getpid())))
    {
        std::filesystem::create_directories(folder);
        store = std::make_unique<Store>(folder / "store.db");
        bootstrapCatalog(store->connection(), {folder.string(), "Secret1", "FUZZ", {}});
        defineBackupTables(store->connection());
    }
    ~Place()
    {
        store.reset();
        std::filesystem::remove_all(folder);
    }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;

    std::filesystem::path folder;
    std::unique_ptr<Store> store;
};

Place& place()
{
    static Place one;
    return one;
}

void readFile(const std::filesystem::path& path)
{
    const Progress ignored = [](std::uint64_t, std::uint64_t) {};
    for (const bool whole : {false, true}) {
        BackupReader file(path);
        const std::vector<FoundSet> sets = readSets(file, whole, ignored);
        fuzz::check(sets.size() == file.sets());
    }
}

void replayContents(const std::filesystem::path& path, std::string_view contents, SetKind kind)
{
    BackupAppender written(path, true, 0);
    SetHeader header;
    header.kind = kind;
    written.add(BlockKind::Header, encodeHeader(header));
    RecordWriter records(written);
    records.add(contents);
    records.finish();
    written.add(BlockKind::Trailer, encodeTrailer({}));
    written.commit();
    readFile(path);
    BackupReader file(path);
    Block block;
    file.next(block);
    RecordReader reader(file);
    constexpr int database = 7;
    Store& store = *place().store;
    store.beginWrite();
    try {
        Replay replay(store, {database, "x", "sid", {{1, "C:\\x.mdf"}}, false});
        (void)replay.run(reader, kind, [] {});
    } catch (...) {
        store.rollback();
        throw;
    }
    store.rollback();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    const std::filesystem::path path = place().folder / "input.bak";
    try {
        if (data[0] % 4 == 0) {
            std::ofstream(path, std::ios::binary) << bytes;
            readFile(path);
        } else {
            replayContents(path, bytes, data[0] % 4 == 1 ? SetKind::Full : SetKind::Differential);
        }
    } catch (const DamagedBackup&) {
        return 0;
    } catch (const NotABackup&) {
        return 0;
    } catch (const StoreError& failure) {
        // Rows that the catalog's or a table's own constraints refuse.
        fuzz::check((failure.code & 0xff) == SQLITE_CONSTRAINT || (failure.code & 0xff) == SQLITE_MISMATCH ||
                    (failure.code & 0xff) == SQLITE_ERROR);
    } catch (const SqlError&) {
        return 0;
    }
    return 0;
}
