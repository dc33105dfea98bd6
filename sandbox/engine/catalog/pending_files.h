// Keeps database files in step with the catalog, whatever becomes of the transaction that writes it.
#pragma once

#include <filesystem>
#include <string>

namespace practice {

class Store;

/// To be called before a statement makes, resizes or drops a file: when the transaction has ended,
/// the file is made to be as the catalog then says. A note on disk has the next start do so when the
/// process dies in between.
/// @throws SqlError 5123 when the note can't be written
void followTransaction(Store& store, const std::filesystem::path& dataDirectory,
                       const std::string& windowsPath);

/// At the start: settles what the notes of an interrupted run name.
/// @throws SqlError 5149 when a file can not have its size
void settlePendingFiles(Store& store, const std::filesystem::path& dataDirectory);

} // namespace practice
