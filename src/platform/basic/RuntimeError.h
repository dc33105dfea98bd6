// The one exception of the console: a number and a sentence.
#pragma once

#include <QString>
#include <exception>

namespace basic {

/// Numbers of the run-time errors that the platform raises itself. Everything else that a RuntimeError
/// carries is the server's or the driver's own number.
namespace error {
inline constexpr int InvalidCall = 5;
inline constexpr int Overflow = 6;
inline constexpr int OutOfMemory = 7;
inline constexpr int Subscript = 9;
inline constexpr int DivisionByZero = 11;
inline constexpr int TypeMismatch = 13;
inline constexpr int BadFileName = 52;
inline constexpr int FileNotFound = 53;
inline constexpr int FileAlreadyOpen = 55;
inline constexpr int DeviceIo = 57;
inline constexpr int DiskFull = 61;
inline constexpr int InputPastEnd = 62;
inline constexpr int PermissionDenied = 70;
inline constexpr int DiskNotReady = 71;
inline constexpr int PathFileAccess = 75;
inline constexpr int PathNotFound = 76;
inline constexpr int ObjectNotSet = 91;
inline constexpr int InvalidNull = 94;
inline constexpr int KeyInUse = 457;
inline constexpr int NoCurrentRecord = 3021;
inline constexpr int ItemNotFound = 3265;
inline constexpr int ObjectClosed = 3704;
inline constexpr int ObjectOpen = 3705;
inline constexpr int BadConnection = 3709;
inline constexpr int ElementNotFound = 35601;
inline constexpr int KeyNotUnique = 35602;
} // namespace error

/// A run-time error as the forms see it: a number and a sentence. `what()` is the sentence in UTF-8.
class RuntimeError : public std::exception
{
public:
    /// An error of the table above with its standard sentence; other numbers get a general sentence.
    explicit RuntimeError(int number);
    RuntimeError(int number, const QString& description);

    [[nodiscard]] int number() const noexcept { return m_number; }
    [[nodiscard]] QString description() const { return m_description; }
    [[nodiscard]] const char* what() const noexcept override { return m_what.constData(); }

private:
    int m_number;
    QString m_description;
    QByteArray m_what;
};

/// The standard sentence of `number` in the program's language, or "Application-defined or object-defined
/// error" for any other.
QString standardDescription(int number);

[[noreturn]] void raise(int number);
[[noreturn]] void raise(int number, const QString& description);

} // namespace basic
