#include "engine/backup/block_file.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace practice {
namespace {

using Work = BackupFileFailure::Work;

constexpr std::string_view signature("Quermo backup\r\n\x1a", 16);
constexpr std::uint32_t formatVersion = 1;
constexpr std::uint32_t blockMark = 0x4B4C4251; // "QBLK"
constexpr std::size_t sectorSize = 512;
constexpr std::uint64_t firstBlock = 3 * sectorSize;
constexpr std::size_t digestSize = std::tuple_size_v<Digest>;
constexpr std::size_t headSize = 24;

/// A sector of its own, so that a disk writes all of it or nothing.
std::string sector(ByteText&& contents)
{
    contents.bytes.resize(sectorSize - digestSize, '\0');
    contents.id(digestOf(contents.bytes));
    return std::move(contents.bytes);
}

bool isWholeSector(std::string_view bytes)
{
    const Digest digest = digestOf(bytes.substr(0, sectorSize - digestSize));
    return std::equal(digest.begin(), digest.end(), bytes.substr(sectorSize - digestSize).begin(),
                      [](std::uint8_t left, char right) { return left == static_cast<std::uint8_t>(right); });
}

std::string mediaSector(const MediaPage& media)
{
    ByteText text;
    text.bytes = signature;
    text.fixed(formatVersion, 4);
    text.id(media.id);
    text.fixed(static_cast<std::uint64_t>(media.created), 8);
    return sector(std::move(text));
}

std::string slotSector(const CommitSlot& slot)
{
    ByteText text;
    text.fixed(slot.sequence, 8);
    text.fixed(slot.end, 8);
    text.fixed(slot.sets, 4);
    return sector(std::move(text));
}

CommitSlot readSlot(std::string_view bytes)
{
    ByteTextReader reader(bytes);
    CommitSlot slot;
    slot.sequence = reader.fixed(8);
    slot.end = reader.fixed(8);
    slot.sets = static_cast<std::uint32_t>(reader.fixed(4));
    return slot;
}

/// One whose signature is nearly right is a backup that was damaged, and not something else.
bool resembles(std::string_view start)
{
    std::size_t same = 0;
    for (std::size_t i = 0; i < signature.size(); ++i)
        same += start[i] == signature[i] ? 1U : 0U;
    return same * 2 > signature.size();
}

struct FileStart
{
    MediaPage media;
    CommitSlot slot;
};

FileStart readStart(const FileHandle& file)
{
    const std::uint64_t size = file.size();
    std::string bytes;
    if (size == 0 || size < signature.size() || !file.read(bytes, std::min(size, firstBlock), 0) ||
        !resembles(bytes))
        throw NotABackup{size == 0};
    if (bytes.size() < firstBlock)
        throw DamagedBackup{};
    const std::string_view view = bytes;
    for (std::size_t at = 0; at < firstBlock; at += sectorSize) {
        if (!isWholeSector(view.substr(at, sectorSize)))
            throw DamagedBackup{at};
    }
    ByteTextReader reader(view.substr(signature.size()));
    if (reader.fixed(4) != formatVersion)
        throw NotABackup{};
    FileStart start;
    start.media.id = reader.id();
    start.media.created = static_cast<std::int64_t>(reader.fixed(8));
    const CommitSlot first = readSlot(view.substr(sectorSize, sectorSize));
    const CommitSlot second = readSlot(view.substr(2 * sectorSize, sectorSize));
    start.slot = first.sequence > second.sequence ? first : second;
    if (start.slot.end > size || start.slot.end < firstBlock)
        throw DamagedBackup{size};
    return start;
}

int openFile(const std::filesystem::path& path, int flags)
{
    constexpr mode_t ownerAndGroup = 0660;
    const int handle = ::open(path.c_str(), flags | O_CLOEXEC, ownerAndGroup);
    if (handle < 0)
        throw BackupFileFailure{Work::Open, errno};
    struct stat about
    {};
    if (::fstat(handle, &about) != 0 || !S_ISREG(about.st_mode)) {
        ::close(handle);
        throw BackupFileFailure{Work::Open, EACCES};
    }
    return handle;
}

/// Whoever writes the file has it alone.
void lockFile(const FileHandle& file)
{
    if (::flock(file.get(), LOCK_EX | LOCK_NB) != 0)
        throw BackupFileFailure{Work::Open, EBUSY};
}

/// A file that stands under its name is not new to the disk until its folder is written.
void flushFolder(const std::filesystem::path& file)
{
    const int handle = ::open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (handle < 0)
        return;
    ::fsync(handle);
    ::close(handle);
}

bool isFresh(const std::filesystem::path& path, bool replace)
{
    std::error_code none;
    return replace || !std::filesystem::exists(path, none) || std::filesystem::file_size(path, none) == 0;
}

std::string blockHead(BlockKind kind, std::size_t length, std::uint32_t set, std::uint32_t number)
{
    ByteText head;
    head.fixed(blockMark, 4);
    head.fixed(static_cast<std::uint64_t>(kind), 4);
    head.fixed(length, 4);
    head.fixed(set, 4);
    head.fixed(number, 4);
    head.fixed(0, 4);
    return std::move(head.bytes);
}

} // namespace

FileHandle::~FileHandle()
{
    ::close(handle_);
}

void FileHandle::write(std::string_view bytes, std::uint64_t offset) const
{
    while (!bytes.empty()) {
        const ssize_t written = ::pwrite(handle_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            throw BackupFileFailure{Work::Write, written < 0 ? errno : ENOSPC};
        bytes.remove_prefix(static_cast<std::size_t>(written));
        offset += static_cast<std::uint64_t>(written);
    }
}

bool FileHandle::read(std::string& bytes, std::size_t size, std::uint64_t offset) const
{
    bytes.resize(size);
    for (std::size_t done = 0; done < size;) {
        const ssize_t got =
            ::pread(handle_, bytes.data() + done, size - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            throw BackupFileFailure{Work::Read, errno};
        if (got == 0)
            return false;
        done += static_cast<std::size_t>(got);
    }
    return true;
}

void FileHandle::flush() const
{
    if (::fsync(handle_) != 0)
        throw BackupFileFailure{Work::Write, errno};
}

std::uint64_t FileHandle::size() const
{
    struct stat about
    {};
    if (::fstat(handle_, &about) != 0)
        throw BackupFileFailure{Work::Read, errno};
    return static_cast<std::uint64_t>(about.st_size);
}

void FileHandle::truncate(std::uint64_t size) const
{
    if (::ftruncate(handle_, static_cast<off_t>(size)) != 0)
        throw BackupFileFailure{Work::Write, errno};
}

BackupAppender::BackupAppender(std::filesystem::path path, bool replace, std::int64_t now)
    : path_(std::move(path)), working_(path_), fresh_(isFresh(path_, replace)),
      file_(openFile(fresh_ ? working_ += ".new" : working_, fresh_ ? O_RDWR | O_CREAT : O_RDWR))
{
    lockFile(file_);
    if (fresh_)
        makeNew(now);
    else
        openStanding();
    end_ = slot_.end;
}

BackupAppender::~BackupAppender()
{
    if (committed_)
        return;
    std::error_code ignored;
    if (fresh_)
        std::filesystem::remove(working_, ignored);
    else if (::ftruncate(file_.get(), static_cast<off_t>(slot_.end)) != 0)
        return; // what lies behind the end is overwritten by the next set
}

void BackupAppender::openStanding()
{
    slot_ = readStart(file_).slot;
    file_.truncate(slot_.end);
}

void BackupAppender::makeNew(std::int64_t now)
{
    file_.truncate(0);
    MediaPage media{randomId(), now};
    slot_ = {1, firstBlock, 0};
    file_.write(mediaSector(media) + slotSector({0, firstBlock, 0}) + slotSector(slot_), 0);
}

void BackupAppender::add(BlockKind kind, std::string_view payload)
{
    const std::string head = blockHead(kind, payload.size(), set(), number_++);
    Hasher hasher;
    hasher.add(head);
    hasher.add(payload);
    ByteText whole;
    whole.bytes.reserve(headSize + digestSize + payload.size());
    whole.bytes = head;
    whole.id(hasher.finish());
    whole.bytes += payload;
    file_.write(whole.bytes, end_);
    end_ += whole.bytes.size();
}

void BackupAppender::commit()
{
    file_.flush();
    const CommitSlot now{slot_.sequence + 1, end_, slot_.sets + 1};
    file_.write(slotSector(now), (1 + now.sequence % 2) * sectorSize);
    committed_ = !fresh_;
    file_.flush();
    if (!fresh_)
        return;
    std::filesystem::rename(working_, path_);
    committed_ = true;
    flushFolder(path_);
}

BackupReader::BackupReader(const std::filesystem::path& path) : file_(openFile(path, O_RDONLY))
{
    const FileStart start = readStart(file_);
    media_ = start.media;
    slot_ = start.slot;
    position_ = firstBlock;
}

bool BackupReader::next(Block& block)
{
    return read(block, true);
}

bool BackupReader::nextHeader(Block& block)
{
    return read(block, false);
}

void BackupReader::seek(std::uint64_t offset, std::uint32_t set, std::uint32_t number)
{
    position_ = offset;
    set_ = set;
    number_ = number;
}

bool BackupReader::read(Block& block, bool data)
{
    if (position_ == slot_.end) {
        if (set_ != slot_.sets + 1 || number_ != 0)
            throw DamagedBackup{position_};
        return false;
    }
    const DamagedBackup damaged{position_};
    constexpr std::size_t ahead = headSize + digestSize;
    if (slot_.end - position_ < ahead || !file_.read(buffer_, ahead, position_))
        throw damaged;
    ByteTextReader reader(buffer_);
    const std::uint64_t mark = reader.fixed(4);
    const std::uint64_t kind = reader.fixed(4);
    const std::uint64_t length = reader.fixed(4);
    block.set = static_cast<std::uint32_t>(reader.fixed(4));
    block.number = static_cast<std::uint32_t>(reader.fixed(4));
    block.offset = position_;
    const bool expected = mark == blockMark && kind >= 1 && kind <= 3 && block.set == set_ &&
                          block.number == number_ && (kind == 1) == (number_ == 0);
    if (!expected || length > largestBlock || length > slot_.end - position_ - ahead)
        throw damaged;
    block.kind = static_cast<BlockKind>(kind);
    if (data || block.kind != BlockKind::Data) {
        if (!file_.read(block.payload, length, position_ + ahead))
            throw damaged;
        Hasher hasher;
        hasher.add(std::string_view(buffer_).substr(0, headSize));
        hasher.add(block.payload);
        const Digest digest = hasher.finish();
        ByteTextReader stored(std::string_view(buffer_).substr(headSize));
        if (stored.id() != digest)
            throw damaged;
    }
    position_ += ahead + length;
    const bool last = block.kind == BlockKind::Trailer;
    set_ += last ? 1U : 0U;
    number_ = last ? 0 : number_ + 1;
    return true;
}

} // namespace practice
