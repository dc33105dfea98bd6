#include "engine/binder/globals.h"

#include <algorithm>
#include <iterator>

namespace practice {

namespace {

struct GlobalVariable
{
    std::string_view name;
    SqlType type;
};

constexpr SqlType wholeNumber{TypeId::Int, 4};
constexpr SqlType smallNumber{TypeId::SmallInt, 2};
constexpr SqlType tinyNumber{TypeId::TinyInt, 1};
constexpr SqlType nameType{TypeId::NVarChar, 128};

// Ascending by name.
constexpr GlobalVariable globals[] = {
    {"@@connections", wholeNumber},
    {"@@cpu_busy", wholeNumber},
    {"@@cursor_rows", wholeNumber},
    {"@@datefirst", tinyNumber},
    {"@@dbts", {TypeId::VarBinary, 8}},
    {"@@error", wholeNumber},
    {"@@fetch_status", wholeNumber},
    {"@@identity", widestDecimal(TypeId::Numeric)},
    {"@@idle", wholeNumber},
    {"@@io_busy", wholeNumber},
    {"@@langid", smallNumber},
    {"@@language", nameType},
    {"@@lock_timeout", wholeNumber},
    {"@@max_connections", wholeNumber},
    {"@@max_precision", tinyNumber},
    {"@@microsoftversion", wholeNumber},
    {"@@nestlevel", wholeNumber},
    {"@@options", wholeNumber},
    {"@@pack_received", wholeNumber},
    {"@@pack_sent", wholeNumber},
    {"@@packet_errors", wholeNumber},
    {"@@procid", wholeNumber},
    {"@@remserver", nameType},
    {"@@rowcount", wholeNumber},
    {"@@servername", nameType},
    {"@@servicename", nameType},
    {"@@spid", smallNumber},
    {"@@textsize", wholeNumber},
    {"@@timeticks", wholeNumber},
    {"@@total_errors", wholeNumber},
    {"@@total_read", wholeNumber},
    {"@@total_write", wholeNumber},
    {"@@trancount", wholeNumber},
    {"@@version", {TypeId::NVarChar, 300}},
};

} // namespace

const SqlType* globalVariableType(std::string_view wanted)
{
    const auto* found = std::lower_bound(
        std::begin(globals), std::end(globals), wanted,
        [](const GlobalVariable& global, std::string_view key) { return global.name < key; });
    return found != std::end(globals) && found->name == wanted ? &found->type : nullptr;
}

} // namespace practice
