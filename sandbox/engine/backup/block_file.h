// The file of backups: one page about the media, two slots that tell how far it reaches, then blocks.
// docs/backup-format.md has it byte by byte.
#pragma once

#include "engine/backup/byte_text.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace practice {

enum class BlockKind : std::uint8_t
{
    Header = 1, ///< begins a set
    Data = 2,
    Trailer = 3, ///< ends it
};

/// The most bytes that one block carries.
inline constexpr std::size_t largestBlock = 1U << 20U;

/// The operating system refused something; `code` is its errno.
struct BackupFileFailure
{
    enum class Work : std::uint8_t
    {
        Open,
        Read,
        Write
    };
    Work work = Work::Open;
    int code = 0;
};

/// The file was made by something else.
struct NotABackup
{
    bool empty = false;
};

struct MediaPage
{
    Digest id{};
    std::int64_t created = 0; ///< datetime in storage form
};

/// Where the whole sets end. What lies behind was left by a backup that never came to its end.
struct CommitSlot
{
    std::uint64_t sequence = 0;
    std::uint64_t end = 0;
    std::uint32_t sets = 0;
};

/// An open file of the operating system.
class FileHandle
{
public:
    explicit FileHandle(int handle) : handle_(handle) {}
    ~FileHandle();
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    [[nodiscard]] int get() const { return handle_; }

    /// @throws BackupFileFailure
    void write(std::string_view bytes, std::uint64_t offset) const;
    /// @return false when the file ends before the last byte
    [[nodiscard]] bool read(std::string& bytes, std::size_t size, std::uint64_t offset) const;
    void flush() const;
    [[nodiscard]] std::uint64_t size() const;
    void truncate(std::uint64_t size) const;

private:
    int handle_;
};

struct Block
{
    BlockKind kind = BlockKind::Data;
    std::uint32_t set = 0;    ///< from 1
    std::uint32_t number = 0; ///< within its set, from 0
    std::uint64_t offset = 0;
    std::string payload;
};

/// Adds one set to a file. Until `commit` the file is what it was; afterwards the set is in it,
/// whatever happens to the process or the machine.
class BackupAppender
{
public:
    /// @param replace drops the sets that are there, at the moment of the commit
    /// @throws BackupFileFailure, NotABackup, DamagedBackup
    BackupAppender(std::filesystem::path path, bool replace, std::int64_t now);
    ~BackupAppender();
    BackupAppender(const BackupAppender&) = delete;
    BackupAppender& operator=(const BackupAppender&) = delete;

    void add(BlockKind kind, std::string_view payload);
    void commit();

    [[nodiscard]] std::uint32_t set() const { return slot_.sets + 1; }
    [[nodiscard]] std::uint64_t bytes() const { return end_ - slot_.end; }

private:
    void openStanding();
    void makeNew(std::int64_t now);

    std::filesystem::path path_;
    std::filesystem::path working_; ///< another name until the commit when the file is a new one
    bool fresh_ = false;
    bool committed_ = false;
    FileHandle file_;
    CommitSlot slot_;
    std::uint64_t end_ = 0;
    std::uint32_t number_ = 0;
};

/// Reads a file block by block and believes none that is not what was written.
class BackupReader
{
public:
    /// @throws BackupFileFailure, NotABackup, DamagedBackup
    explicit BackupReader(const std::filesystem::path& path);

    [[nodiscard]] const MediaPage& media() const { return media_; }
    [[nodiscard]] std::uint32_t sets() const { return slot_.sets; }
    [[nodiscard]] std::uint64_t end() const { return slot_.end; }

    /// @return false behind the last block
    /// @throws DamagedBackup
    bool next(Block& block);
    /// The same, but passes over the contents of data blocks, which are not looked at.
    bool nextHeader(Block& block);
    void seek(std::uint64_t offset, std::uint32_t set, std::uint32_t number);
    [[nodiscard]] std::uint64_t position() const { return position_; }

private:
    bool read(Block& block, bool data);

    FileHandle file_;
    MediaPage media_;
    CommitSlot slot_;
    std::uint64_t position_ = 0;
    std::uint32_t set_ = 1;
    std::uint32_t number_ = 0;
    std::string buffer_;
};

} // namespace practice
