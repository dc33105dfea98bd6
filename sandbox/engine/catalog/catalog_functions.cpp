#include "engine/catalog/catalog_functions.h"

#include "engine/catalog/catalog_types.h"
#include "engine/messages/message_texts.h"
#include "engine/store/store.h"
#include "types/text_encoding.h"

#include <algorithm>
#include <sstream>

namespace practice {
namespace {

void countRows(sqlite3_context* context, int, sqlite3_value** arguments)
{
    sqlite3* connection = sqlite3_context_db_handle(context);
    const std::string table = storageTable(sqlite3_value_int(arguments[0]), sqlite3_value_int(arguments[1]));
    sqlite3_stmt* count = nullptr;
    if (sqlite3_prepare_v2(connection, ("SELECT count(*) FROM " + table).c_str(), -1, &count, nullptr) ==
            SQLITE_OK &&
        sqlite3_step(count) == SQLITE_ROW)
        sqlite3_result_int64(context, sqlite3_column_int64(count, 0));
    else
        sqlite3_result_int64(context, 0); // no user table of that number
    sqlite3_finalize(count);
}

void encodeUtf16(sqlite3_context* context, int, sqlite3_value** arguments)
{
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL)
        return;
    const std::string_view text(reinterpret_cast<const char*>(sqlite3_value_text(arguments[0])),
                                std::size_t(sqlite3_value_bytes(arguments[0])));
    std::string bytes;
    for (const char16_t unit : toUtf16(text)) {
        bytes += char(unit & 0xFF);
        bytes += char(unit >> 8);
    }
    sqlite3_result_blob64(context, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
}

/// practice_bits('0,2,9'): a varbinary with those bits set, the lowest one first.
void setBits(sqlite3_context* context, int, sqlite3_value** arguments)
{
    if (sqlite3_value_type(arguments[0]) == SQLITE_NULL)
        return;
    constexpr std::size_t bitsOfByte = 8;
    std::string bytes;
    std::istringstream numbers(reinterpret_cast<const char*>(sqlite3_value_text(arguments[0])));
    for (std::string number; std::getline(numbers, number, ',');) {
        const auto bit = static_cast<std::size_t>(std::stoul(number));
        bytes.resize(std::max(bytes.size(), bit / bitsOfByte + 1), '\0');
        char& byte = bytes[bit / bitsOfByte];
        byte = static_cast<char>(static_cast<unsigned char>(byte) | (1U << (bit % bitsOfByte)));
    }
    sqlite3_result_blob64(context, bytes.data(), bytes.size(), SQLITE_TRANSIENT);
}

std::string messagesAsJson()
{
    constexpr int highest = 22000;
    constexpr int information = 10; // what is sent with severity 0
    std::string json;
    for (int number = 1; number <= highest; ++number) {
        const MessageText* known = findMessageText(number);
        if (known == nullptr)
            continue;
        json += (json.empty() ? "[[" : ",[") + std::to_string(number) + ',' +
                std::to_string(known->severity == 0 ? information : known->severity) + ',' +
                jsonText(known->text) + ']';
    }
    return json + ']';
}

void listMessages(sqlite3_context* context, int, sqlite3_value**)
{
    static const std::string json = messagesAsJson();
    sqlite3_result_text(context, json.data(), int(json.size()), SQLITE_STATIC);
}

void listNoSessions(sqlite3_context* context, int, sqlite3_value**)
{
    sqlite3_result_text(context, "[]", 2, SQLITE_STATIC);
}

void define(sqlite3* connection, const char* name, int arguments, int flags,
            void (*function)(sqlite3_context*, int, sqlite3_value**))
{
    sqlite3_create_function_v2(connection, name, arguments, SQLITE_UTF8 | flags, nullptr, function, nullptr,
                               nullptr, nullptr);
}

} // namespace

std::string jsonText(std::string_view text)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string quoted = "\"";
    for (const char letter : text) {
        const auto code = static_cast<unsigned char>(letter);
        if (code < 0x20) {
            quoted += "\\u00";
            quoted += digits[code >> 4];
            quoted += digits[code & 0xF];
            continue;
        }
        if (letter == '"' || letter == '\\')
            quoted += '\\';
        quoted += letter;
    }
    return quoted + '"';
}

void registerCatalogFunctions(sqlite3* connection)
{
    define(connection, "practice_rows", 2, SQLITE_DIRECTONLY, countRows);
    define(connection, "practice_utf16", 1, SQLITE_DETERMINISTIC, encodeUtf16);
    define(connection, "practice_bits", 1, SQLITE_DETERMINISTIC, setBits);
    define(connection, "practice_messages", 0, SQLITE_DETERMINISTIC, listMessages);
    define(connection, "practice_sessions", 0, 0, listNoSessions);
}

} // namespace practice
