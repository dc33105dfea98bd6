// Files that are read whole, and files whose text is replaced without being at risk.
#pragma once

#include <QByteArray>
#include <QString>

namespace basic {

/// A descriptor that closes itself.
class Descriptor
{
public:
    explicit Descriptor(int number = -1) noexcept : m_number(number) {}
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&& other) noexcept;
    ~Descriptor();

    [[nodiscard]] bool isOpen() const noexcept { return m_number >= 0; }
    [[nodiscard]] int number() const noexcept { return m_number; }
    /// Closes at once; the system's error number, or 0.
    int close() noexcept;

private:
    int m_number;
};

class InputFile
{
public:
    /// @throws RuntimeError 53, 70, 75, 76 or 57
    explicit InputFile(const QString& name);
    explicit InputFile(Descriptor file) noexcept : m_file(std::move(file)) {}

    /// Adds the rest of the file to `bytes`; what came before an error stays there.
    /// @throws RuntimeError 57
    void readAll(QByteArray& bytes) const;

private:
    Descriptor m_file;
};

/// A file to be given a new text. It stays the file that it is: owner, mode, access list, attributes, hard
/// and symbolic links. Devices and pipes are written to.
///
/// The new text is first written and flushed into a copy beside the file (beyond that in the user's data
/// folder or the temporary one, where the file's folder takes no new files), and only then over the old
/// one. Whatever happens, the old text is whole in the file or the new one in the file or the copy. The copy
/// goes when the file is safe; its name is the file's with ".quermo-" and six letters.
class OutputFile
{
public:
    /// Opens, or makes an empty file; the text that stands there stays until replace().
    /// @throws RuntimeError 70, 75, 76, 61 or 57
    explicit OutputFile(const QString& name);
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    /// Takes a file away that it made and that got no text.
    ~OutputFile();

    /// The file holds these bytes, flushed to the disk; after an error, its old ones.
    /// @throws RuntimeError 61 when there is no room, 70 or 57. Where the old text can't be put back, the
    ///         description names the copy that holds the new one.
    void replace(const QByteArray& bytes);

private:
    void replaceText(const QByteArray& bytes) const;

    QByteArray m_name; ///< as the system takes it
    Descriptor m_file;
    bool m_isRegular = false;
    bool m_isNew = false;
};

/// Writes over a regular file from its beginning and flushes. What the file grows by is written first and
/// what it loses goes last, so that want of room shows while the old text stands. An error puts it back.
/// @param readable the same file open for reading; where it isn't, the old text can't be put back
/// @param[out] oldIsWhole whether the old text stands after an error
/// @throws RuntimeError 61 or 57
void overwrite(const Descriptor& file, const Descriptor& readable, const QByteArray& bytes, bool& oldIsWhole);

} // namespace basic
