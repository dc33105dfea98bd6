#include "engine/catalog/system_tables/system_tables.h"

#include "engine/store/storage.h"

#include <algorithm>
#include <map>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace practice {
namespace {

SqlType parseType(const std::string& text)
{
    const auto parenthesis = text.find('(');
    const std::string name = text.substr(0, parenthesis);
    if (name == "sysname")
        return {TypeId::NVarChar, 128, 0, 0};
    SqlType type = defaultType(typeByName(name), true);
    if (type.id == TypeId::Null)
        throw std::logic_error("no type called " + name);
    if (parenthesis == std::string::npos)
        return type;
    std::istringstream facets(text.substr(parenthesis + 1));
    if (facets.peek() == 'm')
        return {type.id, maxLength, 0, 0};
    int first = 0;
    facets >> first;
    if (!isDecimal(type.id)) {
        type.length = first;
        return type;
    }
    char comma = 0;
    int scale = 0;
    facets >> comma >> scale;
    return {type.id, decimalStorage(first), std::uint8_t(first), std::uint8_t(scale)};
}

/// A char of fixed length lies padded in the store.
std::string padded(const std::string& expression, const SqlType& type)
{
    if ((type.id != TypeId::NChar && type.id != TypeId::Char) || type.length <= 2)
        return expression;
    const std::string width = std::to_string(type.length);
    return "substr(" + expression + " || printf('%" + width + "s', ''), 1, " + width + ")";
}

/// A plain column keeps the collation that it was declared with; any other text gets the default one.
std::string collated(const std::string& expression, const SqlType& type)
{
    if (!isCharacter(type.id))
        return expression;
    return '(' + expression + ") COLLATE \"" + defaultCollation + '"';
}

std::vector<SystemTable> compileAll()
{
    std::vector<SystemTable> all;
    for (const auto definitions :
         {objectSystemTables(), indexSystemTables(), fileSystemTables(), securitySystemTables(),
          serverSystemTables(), informationSchemaViews(), catalogViews(), constraintCatalogViews()}) {
        for (const SystemTableDefinition& definition : definitions)
            all.push_back(compileSystemTable(definition));
    }
    return all;
}

using Key = std::pair<std::string, std::string>;

std::map<Key, const SystemTable*> indexByName()
{
    std::map<Key, const SystemTable*> index;
    for (const SystemTable& table : systemTables())
        index.emplace(Key(foldName(table.schema), foldName(table.name)), &table);
    return index;
}

} // namespace

SystemTable compileSystemTable(const SystemTableDefinition& definition)
{
    SystemTable table;
    table.schema = definition.schema;
    table.name = definition.name;
    table.masterOnly = definition.masterOnly;
    std::string list;
    std::istringstream lines(definition.columns);
    for (std::string line; std::getline(lines, line);) {
        std::istringstream words(line);
        std::string name;
        std::string type;
        std::string expression;
        if (!(words >> name >> type))
            continue;
        std::getline(words >> std::ws, expression);
        std::replace(name.begin(), name.end(), '&', ' ');
        const bool nullable = type.back() == '?';
        if (nullable)
            type.pop_back();
        table.columns.push_back({name, parseType(type), nullable});
        const SqlType& parsed = table.columns.back().type;
        list += (list.empty() ? "SELECT " : ", ") + collated(padded(expression, parsed), parsed) + " AS " +
                quotedName(name);
    }
    table.body = list + ' ' + definition.source;
    return table;
}

const std::vector<SystemTable>& systemTables()
{
    static const std::vector<SystemTable> tables = compileAll();
    return tables;
}

const SystemTable* findSystemTable(const std::string& schema, const std::string& name)
{
    static const std::map<Key, const SystemTable*> index = indexByName();
    const auto found = index.find(Key(schema.empty() ? "dbo" : foldName(schema), foldName(name)));
    return found == index.end() ? nullptr : found->second;
}

std::string SystemTable::select(int databaseId) const
{
    constexpr std::string_view placeholder = ":db";
    const std::string number = std::to_string(databaseId);
    std::string text = body;
    for (std::size_t at = text.find(placeholder); at != std::string::npos; at = text.find(placeholder, at))
        text.replace(at, placeholder.size(), number);
    return text;
}

} // namespace practice
