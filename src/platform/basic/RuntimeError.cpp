#include "platform/basic/RuntimeError.h"

#include <algorithm>
#include <array>

namespace basic {

namespace {

struct Sentence
{
    int number;
    const char* text;
};

constexpr std::array sentences{
    Sentence{error::InvalidCall, "Invalid procedure call or argument"},
    Sentence{error::Overflow, "Overflow"},
    Sentence{error::OutOfMemory, "Out of memory"},
    Sentence{error::Subscript, "Subscript out of range"},
    Sentence{error::DivisionByZero, "Division by zero"},
    Sentence{error::TypeMismatch, "Type mismatch"},
    Sentence{error::BadFileName, "Bad file name or number"},
    Sentence{error::FileNotFound, "File not found"},
    Sentence{error::FileAlreadyOpen, "File already open"},
    Sentence{error::DeviceIo, "Device I/O error"},
    Sentence{error::DiskFull, "Disk full"},
    Sentence{error::InputPastEnd, "Input past end of file"},
    Sentence{error::PermissionDenied, "Permission denied"},
    Sentence{error::DiskNotReady, "Disk not ready"},
    Sentence{error::PathFileAccess, "Path/File access error"},
    Sentence{error::PathNotFound, "Path not found"},
    Sentence{error::ObjectNotSet, "Object variable or With block variable not set"},
    Sentence{error::InvalidNull, "Invalid use of Null"},
    Sentence{error::KeyInUse, "This key is already associated with an element of this collection"},
    Sentence{error::NoCurrentRecord, "Either BOF or EOF is True, or the current record has been deleted. "
                                     "Requested operation requires a current record."},
    Sentence{error::ItemNotFound,
             "Item cannot be found in the collection corresponding to the requested name or ordinal."},
    Sentence{error::ObjectClosed, "Operation is not allowed when the object is closed."},
    Sentence{error::ObjectOpen, "Operation is not allowed when the object is open."},
    Sentence{error::BadConnection, "The connection cannot be used to perform this operation. "
                                   "It is either closed or invalid in this context."},
    Sentence{error::ElementNotFound, "Element not found"},
    Sentence{error::KeyNotUnique, "Key is not unique in collection"},
};

} // namespace

RuntimeError::RuntimeError(int number) : RuntimeError(number, standardDescription(number)) {}

RuntimeError::RuntimeError(int number, const QString& description)
    : m_number(number), m_description(description), m_what(description.toUtf8())
{}

QString standardDescription(int number)
{
    const auto* const found = std::ranges::find(sentences, number, &Sentence::number);
    return QString::fromLatin1(found == sentences.end() ? "Application-defined or object-defined error"
                                                        : found->text);
}

void raise(int number)
{
    throw RuntimeError(number);
}

void raise(int number, const QString& description)
{
    throw RuntimeError(number, description);
}

} // namespace basic
