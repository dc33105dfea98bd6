#include "platform/basic/RuntimeError.h"

#include "platform/basic/Language.h"

#include <algorithm>
#include <array>

namespace basic {

namespace {

struct Sentence
{
    int number;
    const char* spanish;
    const char* english;
};

constexpr std::array sentences{
    Sentence{error::InvalidCall, "Llamada a procedimiento o argumento no válidos",
             "Invalid procedure call or argument"},
    Sentence{error::Overflow, "Desbordamiento", "Overflow"},
    Sentence{error::OutOfMemory, "Memoria insuficiente", "Out of memory"},
    Sentence{error::Subscript, "El subíndice está fuera del intervalo", "Subscript out of range"},
    Sentence{error::DivisionByZero, "División por cero", "Division by zero"},
    Sentence{error::TypeMismatch, "No coinciden los tipos", "Type mismatch"},
    Sentence{error::BadFileName, "Nombre o número de archivo incorrecto", "Bad file name or number"},
    Sentence{error::FileNotFound, "No se encuentra el archivo", "File not found"},
    Sentence{error::FileAlreadyOpen, "El archivo ya está abierto", "File already open"},
    Sentence{error::DeviceIo, "Error de E/S de dispositivo", "Device I/O error"},
    Sentence{error::DiskFull, "Disco lleno", "Disk full"},
    Sentence{error::InputPastEnd, "Se ha leído más allá del final del archivo", "Input past end of file"},
    Sentence{error::PermissionDenied, "Permiso denegado", "Permission denied"},
    Sentence{error::DiskNotReady, "El disco no está listo", "Disk not ready"},
    Sentence{error::PathFileAccess, "Error de acceso a la ruta o al archivo", "Path/File access error"},
    Sentence{error::PathNotFound, "No se encuentra la ruta", "Path not found"},
    Sentence{error::ObjectNotSet, "Variable de objeto o de bloque With no establecida",
             "Object variable or With block variable not set"},
    Sentence{error::InvalidNull, "Uso no válido de Null", "Invalid use of Null"},
    Sentence{error::KeyInUse, "Esta clave ya está asociada a un elemento de esta colección",
             "This key is already associated with an element of this collection"},
    Sentence{error::NoCurrentRecord,
             "BOF o EOF es True, o se ha eliminado el registro actual. La operación solicitada requiere un "
             "registro actual.",
             "Either BOF or EOF is True, or the current record has been deleted. "
             "Requested operation requires a current record."},
    Sentence{error::ItemNotFound, "No se encuentra en la colección ningún elemento con ese nombre u ordinal.",
             "Item cannot be found in the collection corresponding to the requested name or ordinal."},
    Sentence{error::ObjectClosed, "La operación no está permitida si el objeto está cerrado.",
             "Operation is not allowed when the object is closed."},
    Sentence{error::ObjectOpen, "La operación no está permitida si el objeto está abierto.",
             "Operation is not allowed when the object is open."},
    Sentence{
        error::BadConnection,
        "No se puede usar la conexión para esta operación. Está cerrada o no es válida en este contexto.",
        "The connection cannot be used to perform this operation. "
        "It is either closed or invalid in this context."},
    Sentence{error::ElementNotFound, "No se encuentra el elemento", "Element not found"},
    Sentence{error::KeyNotUnique, "La clave no es única en la colección", "Key is not unique in collection"},
};

} // namespace

RuntimeError::RuntimeError(int number) : RuntimeError(number, standardDescription(number)) {}

RuntimeError::RuntimeError(int number, const QString& description)
    : m_number(number), m_description(description), m_what(description.toUtf8())
{}

QString standardDescription(int number)
{
    const auto* const found = std::ranges::find(sentences, number, &Sentence::number);
    if (found == sentences.end())
        return uiText("Error definido por la aplicación o el objeto",
                      "Application-defined or object-defined error");
    return uiText(found->spanish, found->english);
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
