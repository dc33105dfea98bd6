// Functions that tell of databases and files.
#include "engine/catalog/database_options.h"
#include "engine/messages/errors.h"
#include "engine/session/session_functions.h"
#include "types/product_version.h"
#include "types/text_encoding.h"

#include <array>

namespace practice {

namespace {

DatabasePtr databaseNamed(SessionState& session, std::string_view name)
{
    return session.catalog().database(std::string(name));
}

void databaseName(SessionState& session, const Call& call)
{
    const DatabasePtr found = session.catalog().database(static_cast<int>(call.integer(0)));
    return found ? call.result(std::string_view(found->name)) : null(call);
}

void databaseId(SessionState& session, const Call& call)
{
    const DatabasePtr found = databaseNamed(session, call.text(0));
    return found ? call.result(found->id) : null(call);
}

void variantText(const Call& call, const std::string& text)
{
    const SqlType inner{TypeId::NVarChar, 128};
    call.result(Value{text, inner}, {TypeId::SqlVariant, 8016});
}

void variantNumber(const Call& call, std::int64_t number)
{
    const SqlType inner{TypeId::Int, 4};
    call.result(Value{number, inner}, {TypeId::SqlVariant, 8016});
}

void databasePropertyEx(SessionState& session, const Call& call)
{
    const DatabasePtr found = databaseNamed(session, call.text(0));
    const auto property = found ? databaseProperty(*found, std::string(call.text(1))) : std::nullopt;
    if (!property)
        return null(call);
    return property->isText ? variantText(call, property->text) : variantNumber(call, property->number);
}

void databasePropertyNumber(SessionState& session, const Call& call)
{
    const DatabasePtr found = databaseNamed(session, call.text(0));
    const auto property = found ? databaseProperty(*found, std::string(call.text(1))) : std::nullopt;
    return property && !property->isText ? call.result(property->number) : null(call);
}

void ask(SessionState& session, const Call& call, const char* sql, bool textArgument)
{
    Statement query(session.connection(), sql);
    query.bind(1, session.database()->id);
    if (textArgument)
        query.bind(2, foldName(std::string(call.text(0))));
    else
        query.bind(2, call.integer(0));
    if (!query.step() || query.isNull(0))
        return null(call);
    sqlite3_result_value(call.context(), sqlite3_column_value(query.handle(), 0));
}

void fileName(SessionState& session, const Call& call)
{
    ask(session, call, "SELECT name FROM cat_file WHERE dbid = ?1 AND fileid = ?2", false);
}

void fileId(SessionState& session, const Call& call)
{
    ask(session, call, "SELECT fileid FROM cat_file WHERE dbid = ?1 AND fold = ?2", true);
}

void fileGroupName(SessionState& session, const Call& call)
{
    ask(session, call, "SELECT name FROM cat_filegroup WHERE dbid = ?1 AND groupid = ?2", false);
}

void fileGroupId(SessionState& session, const Call& call)
{
    ask(session, call, "SELECT groupid FROM cat_filegroup WHERE dbid = ?1 AND fold = ?2", true);
}

void serverProperty(SessionState& session, const Call& call)
{
    struct Property
    {
        std::string_view name;
        const char* text; ///< none for a number
        std::int64_t number;
    };
    static constexpr std::array properties = {
        Property{"collation", defaultCollation, 0},  Property{"edition", "Developer Edition (64-bit)", 0},
        Property{"engineedition", nullptr, 3},       Property{"isclustered", nullptr, 0},
        Property{"isfulltextinstalled", nullptr, 0}, Property{"isintegratedsecurityonly", nullptr, 0},
        Property{"issingleuser", nullptr, 0},        Property{"licensetype", "DISABLED", 0},
        Property{"productlevel", productLevel, 0},   Property{"productversion", productVersionText, 0},
    };
    const std::string wanted = lowerCase(call.text(0));
    if (wanted == "servername" || wanted == "machinename")
        return variantText(call, session.serverName());
    if (wanted == "processid")
        return variantNumber(call, 1);
    for (const Property& property : properties) {
        if (property.name == wanted)
            return property.text != nullptr ? variantText(call, property.text)
                                            : variantNumber(call, property.number);
    }
    null(call);
}

void collationProperty(SessionState&, const Call& call)
{
    const std::string wanted = lowerCase(call.text(1));
    if (wanted == "codepage")
        return call.result(1252);
    if (wanted == "lcid")
        return call.result(1033);
    return wanted == "comparisonstyle" ? call.result(196609) : null(call);
}

} // namespace

void registerDatabaseFunctions(SessionState& session)
{
    defineSessionFunction(session, "s_db_name", 1, databaseName);
    defineSessionFunction(session, "s_db_id", 1, databaseId);
    defineSessionFunction(session, "s_databasepropertyex", 2, databasePropertyEx);
    defineSessionFunction(session, "s_databaseproperty", 2, databasePropertyNumber);
    defineSessionFunction(session, "s_file_name", 1, fileName);
    defineSessionFunction(session, "s_file_id", 1, fileId);
    defineSessionFunction(session, "s_filegroup_name", 1, fileGroupName);
    defineSessionFunction(session, "s_filegroup_id", 1, fileGroupId);
    defineSessionFunction(session, "s_serverproperty", 1, serverProperty);
    defineSessionFunction(session, "s_collationproperty", 2, collationProperty);
}

} // namespace practice
