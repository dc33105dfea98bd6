#include "platform/basic/Files.h"

#include "platform/basic/RuntimeError.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace basic {

namespace {

/// While it lives, a write beyond a limit or into a pipe that nobody reads is an error and not the process's
/// end.
class QuietWrites
{
public:
    QuietWrites()
    {
        sigemptyset(&m_signals);
        sigaddset(&m_signals, SIGXFSZ);
        sigaddset(&m_signals, SIGPIPE);
        pthread_sigmask(SIG_BLOCK, &m_signals, &m_before);
    }
    QuietWrites(const QuietWrites&) = delete;
    QuietWrites& operator=(const QuietWrites&) = delete;
    ~QuietWrites()
    {
        const timespec atOnce{};
        while (sigtimedwait(&m_signals, nullptr, &atOnce) > 0) {
        }
        pthread_sigmask(SIG_SETMASK, &m_before, nullptr);
    }

private:
    sigset_t m_signals{};
    sigset_t m_before{};
};

int numberFor(int systemError)
{
    switch (systemError) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
        return error::DiskFull;
    case EACCES:
    case EPERM:
    case EROFS:
    case ETXTBSY:
        return error::PermissionDenied;
    case ENOTDIR:
        return error::PathNotFound;
    case EISDIR:
    case ELOOP:
    case ENAMETOOLONG:
    case EINVAL:
    case EMFILE:
    case ENFILE:
        return error::PathFileAccess;
    default:
        return error::DeviceIo;
    }
}

[[noreturn]] void raiseSystem(int systemError)
{
    raise(numberFor(systemError));
}

[[noreturn]] void raiseOpening(const QString& name, int systemError)
{
    if (systemError != ENOENT)
        raiseSystem(systemError);
    raise(QFileInfo(name).absoluteDir().exists() ? error::FileNotFound : error::PathNotFound);
}

/// Never waits for the other end of a pipe, but reads and writes do.
Descriptor openFile(const QByteArray& name, int flags)
{
    constexpr mode_t everyone = 0666; // less the user's mask
    Descriptor file(::open(name.constData(), flags | O_CLOEXEC | O_NOCTTY | O_NONBLOCK, everyone));
    if (file.isOpen())
        fcntl(file.number(), F_SETFL, fcntl(file.number(), F_GETFL) & ~O_NONBLOCK);
    return file;
}

struct stat statusOf(const Descriptor& file)
{
    struct stat status
    {};
    if (fstat(file.number(), &status) != 0)
        raiseSystem(errno);
    return status;
}

/// How many bytes were written; all, unless `systemError` is set. A negative place is the file's own.
qsizetype writeBytes(const Descriptor& file, QByteArrayView bytes, off_t place, int& systemError)
{
    const QuietWrites quiet;
    qsizetype done = 0;
    while (done < bytes.size()) {
        const auto left = static_cast<size_t>(bytes.size() - done);
        const ssize_t count = place < 0 ? ::write(file.number(), bytes.data() + done, left)
                                        : ::pwrite(file.number(), bytes.data() + done, left, place + done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0) {
            systemError = count < 0 ? errno : EIO;
            break;
        }
        done += count;
    }
    return done;
}

int flush(const Descriptor& file)
{
    return fsync(file.number()) == 0 ? 0 : errno;
}

void flushFolder(const QByteArray& folder)
{
    const Descriptor open = openFile(folder, O_RDONLY | O_DIRECTORY);
    if (open.isOpen())
        fsync(open.number());
}

QByteArray folderOf(const QByteArray& name)
{
    return QFile::encodeName(QFileInfo(QFile::decodeName(name)).absolutePath());
}

/// Where a safety copy may stand, the best place first.
QStringList foldersForCopies(const QByteArray& name)
{
    const QString data = QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation);
    return {QFile::decodeName(folderOf(name)), data + QStringLiteral("/quermo"), QDir::tempPath()};
}

/// A whole, flushed copy of a text; it goes with this object unless it is kept.
class SafetyCopy
{
public:
    /// @throws RuntimeError 61, 70 or 57
    SafetyCopy(const QByteArray& name, const QByteArray& bytes)
    {
        const Descriptor file = make(name);
        int failure = 0;
        writeBytes(file, bytes, 0, failure);
        if (failure == 0)
            failure = flush(file);
        if (failure != 0) {
            unlink(m_name.constData());
            raiseSystem(failure);
        }
        flushFolder(folderOf(m_name));
    }
    SafetyCopy(const SafetyCopy&) = delete;
    SafetyCopy& operator=(const SafetyCopy&) = delete;
    ~SafetyCopy()
    {
        if (!m_kept)
            unlink(m_name.constData());
    }

    void keep() { m_kept = true; }
    [[nodiscard]] QString name() const { return QFile::decodeName(m_name); }

private:
    Descriptor make(const QByteArray& name)
    {
        constexpr qsizetype longest = 200; // bytes; with the ending still below any file system's limit
        const QByteArray base =
            QFile::encodeName(QFileInfo(QFile::decodeName(name)).fileName()).left(longest);
        int failure = 0;
        for (const QString& folder : foldersForCopies(name)) {
            QDir().mkpath(folder);
            m_name = QFile::encodeName(folder) + '/' + base + ".quermo-" +
                     QByteArray(6, 'X'); // what mkostemp replaces
            Descriptor file(mkostemp(m_name.data(), O_CLOEXEC));
            if (file.isOpen())
                return file;
            failure = errno;
            if (failure != EACCES && failure != EPERM && failure != EROFS)
                break;
        }
        raiseSystem(failure);
    }

    QByteArray m_name;
    bool m_kept = false;
};

/// The beginning of a file's text; shorter where it can't be read.
QByteArray beginningOf(const Descriptor& readable, off_t size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    off_t done = 0;
    while (readable.isOpen() && done < size) {
        const ssize_t count =
            ::pread(readable.number(), bytes.data() + done, static_cast<size_t>(size - done), done);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            break;
        done += count;
    }
    bytes.truncate(done);
    return bytes;
}

/// Sets room for the whole aside and writes what goes beyond the old size; 0, or the system's error.
int grow(const Descriptor& file, QByteArrayView bytes, off_t oldSize)
{
    if (!bytes.isEmpty() && fallocate(file.number(), FALLOC_FL_KEEP_SIZE, 0, bytes.size()) != 0 &&
        numberFor(errno) == error::DiskFull)
        return errno;
    int failure = 0;
    if (bytes.size() > oldSize) {
        writeBytes(file, bytes.sliced(oldSize), oldSize, failure);
        if (failure == 0)
            failure = flush(file);
    }
    return failure;
}

int cut(const Descriptor& file, off_t size)
{
    return ftruncate(file.number(), size) == 0 ? 0 : errno;
}

/// Undoes what was written over a file's beginning and behind its end; false when it can't.
bool putBack(const Descriptor& file, QByteArrayView old, qsizetype written, off_t oldSize)
{
    if (old.size() < written)
        return false;
    int failure = 0;
    writeBytes(file, old.first(written), 0, failure);
    const int cutting = cut(file, oldSize);
    return failure == 0 && cutting == 0 && flush(file) == 0;
}

} // namespace

Descriptor::Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}

Descriptor& Descriptor::operator=(Descriptor&& other) noexcept
{
    std::swap(m_number, other.m_number);
    return *this;
}

Descriptor::~Descriptor()
{
    close();
}

int Descriptor::close() noexcept
{
    const int number = std::exchange(m_number, -1);
    return number < 0 || ::close(number) == 0 || errno == EINTR ? 0 : errno;
}

InputFile::InputFile(const QString& name) : m_file(openFile(QFile::encodeName(name), O_RDONLY))
{
    if (!m_file.isOpen())
        raiseOpening(name, errno);
    if (S_ISDIR(statusOf(m_file).st_mode))
        raise(error::PathFileAccess);
}

void InputFile::readAll(QByteArray& bytes) const
{
    constexpr qsizetype block = 1 << 16;
    for (;;) {
        const qsizetype before = bytes.size();
        bytes.resize(before + block);
        const ssize_t count = ::read(m_file.number(), bytes.data() + before, block);
        const int failure = errno;
        bytes.truncate(before + std::max<ssize_t>(count, 0));
        if (count == 0)
            return;
        if (count < 0 && failure != EINTR)
            raiseSystem(failure);
    }
}

OutputFile::OutputFile(const QString& name)
    : m_name(QFile::encodeName(name)), m_file(openFile(m_name, O_WRONLY))
{
    if (!m_file.isOpen() && errno == ENOENT) {
        m_file = openFile(m_name, O_WRONLY | O_CREAT | O_EXCL);
        m_isNew = m_file.isOpen();
        if (!m_isNew && errno == EEXIST) // a link to a file that isn't there yet
            m_file = openFile(m_name, O_WRONLY | O_CREAT);
    }
    if (!m_file.isOpen())
        raiseOpening(name, errno);
    m_isRegular = S_ISREG(statusOf(m_file).st_mode);
}

OutputFile::~OutputFile()
{
    if (m_isNew)
        unlink(m_name.constData());
}

void OutputFile::replace(const QByteArray& bytes)
{
    int failure = 0;
    if (m_isRegular)
        replaceText(bytes);
    else
        writeBytes(m_file, bytes, -1, failure);
    if (failure == 0)
        failure = m_file.close();
    if (failure != 0)
        raiseSystem(failure);
    if (std::exchange(m_isNew, false))
        flushFolder(folderOf(m_name));
}

void OutputFile::replaceText(const QByteArray& bytes) const
{
    const auto status = statusOf(m_file);
    bool oldIsWhole = true;
    if (status.st_size == 0) { // nothing to lose
        overwrite(m_file, Descriptor(), bytes, oldIsWhole);
        return;
    }
    Descriptor readable = openFile(m_name, O_RDONLY);
    if (readable.isOpen()) {
        const auto same = statusOf(readable);
        if (same.st_dev != status.st_dev || same.st_ino != status.st_ino)
            readable = Descriptor();
    }
    SafetyCopy copy(m_name, bytes);
    try {
        overwrite(m_file, readable, bytes, oldIsWhole);
    } catch (const RuntimeError& error) {
        if (oldIsWhole)
            throw;
        copy.keep();
        raise(error.number(), error.description() + QStringLiteral(". The text is kept in ") + copy.name());
    }
}

void overwrite(const Descriptor& file, const Descriptor& readable, const QByteArray& bytes, bool& oldIsWhole)
{
    const off_t oldSize = statusOf(file).st_size;
    const off_t common = std::min<off_t>(oldSize, bytes.size());
    const QByteArray old = beginningOf(readable, common);
    int failure = grow(file, bytes, oldSize);
    qsizetype written = 0;
    if (failure == 0)
        written = writeBytes(file, QByteArrayView(bytes).first(common), 0, failure);
    if (failure == 0)
        failure = flush(file);
    if (failure != 0) {
        oldIsWhole = putBack(file, QByteArrayView(old), written, oldSize);
        raiseSystem(failure);
    }
    failure = cut(file, bytes.size());
    if (failure == 0)
        failure = flush(file);
    if (failure != 0) {
        oldIsWhole = false;
        raiseSystem(failure);
    }
}

} // namespace basic
