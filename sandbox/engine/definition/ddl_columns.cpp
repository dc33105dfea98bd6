#include "engine/definition/ddl_columns.h"

#include "engine/binder/ddl_types.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"
#include "engine/store/collation.h"

#include <algorithm>
#include <charconv>
#include <set>

namespace practice {
namespace {

constexpr std::size_t maximumColumns = 1024;
constexpr int maximumRow = 8060;

bool canBeIdentity(const SqlType& type)
{
    if (isDecimal(type.id))
        return type.scale == 0;
    return isInteger(type.id) && type.id != TypeId::Bit;
}

std::int64_t identityNumber(const std::string& text, const std::string& column, int fault)
{
    const std::string digits = text.starts_with('+') ? text.substr(1) : text;
    std::int64_t number = 0;
    const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (parsed.ec != std::errc() || parsed.ptr != digits.data() + digits.size())
        raise(fault, {column});
    return number;
}

Identity defineIdentity(const ast::IdentityClause& clause, const Column& column)
{
    if (!canBeIdentity(column.type))
        raise(2749, {column.name});
    Identity identity;
    identity.seed = identityNumber(clause.seed, column.name, 2752);
    identity.increment = identityNumber(clause.increment, column.name, 2753);
    if (identity.increment == 0)
        raise(2753, {column.name});
    identity.notForReplication = clause.notForReplication;
    return identity;
}

std::string defineCollation(const ColumnSetting& setting, const ast::ColumnDefinition& definition,
                            const SqlType& type)
{
    const bool text = isCharacter(type.id);
    if (definition.collation.empty())
        return text ? setting.database.collation : "";
    if (!text)
        raise(447, {typeName(type.id)});
    if (sameName(definition.collation, "database_default"))
        return setting.database.collation;
    if (!isCollation(definition.collation))
        raise(448, {definition.collation});
    return definition.collation;
}

bool defineNullability(const ColumnSetting& setting, const ast::ColumnDefinition& definition,
                       bool inPrimaryKey)
{
    if (definition.nullable)
        return *definition.nullable;
    if (inPrimaryKey || definition.identity || definition.type.id == TypeId::Timestamp)
        return false;
    return aliasTypeName(definition.type).empty() && nullableByDefault(setting.session, setting.database);
}

/// Bytes that a row takes at the least, and how many of them are the server's own.
struct RowSize
{
    int total;
    int overhead;
};

RowSize leastRow(const std::vector<Column>& columns)
{
    constexpr int header = 4 + 2; // status bytes and lengths, number of columns
    int fixed = 0;
    int variable = 0;
    for (const Column& column : columns) {
        if (column.computed)
            continue;
        const TypeId id = column.type.id;
        if (id == TypeId::VarChar || id == TypeId::NVarChar || id == TypeId::VarBinary ||
            id == TypeId::SqlVariant || column.type.length < 0)
            ++variable;
        else
            fixed += isUnicode(id) && !isLegacyLob(id) ? 2 * column.type.length : column.type.length;
    }
    const int overhead = header + (int(columns.size()) + 7) / 8 + (variable > 0 ? 2 + 2 * variable : 0);
    return {fixed + overhead, overhead};
}

} // namespace

Column defineColumn(const ColumnSetting& setting, const ast::ColumnDefinition& definition, int id,
                    bool inPrimaryKey)
{
    Column column;
    column.id = id;
    column.name = definition.name;
    column.type = resolveDeclaredType(definition.type, id, "column", definition.name);
    column.userType = aliasTypeName(definition.type);
    column.nullable = defineNullability(setting, definition, inPrimaryKey);
    column.collation = defineCollation(setting, definition, column.type);
    column.ansiPadded = setting.session.options().ansiPadding;
    column.rowGuid = definition.rowGuid;
    if (column.rowGuid && column.type.id != TypeId::UniqueIdentifier)
        raise(2761);
    if (definition.identity) {
        column.identity = defineIdentity(*definition.identity, column);
        if (column.nullable)
            raise(8147, {column.name, setting.table});
    }
    return column;
}

Column defineComputedColumn(const ColumnSetting& setting, const Object& table,
                            const ast::ColumnDefinition& definition, int id)
{
    Column column;
    column.id = id;
    column.name = definition.name;
    column.computed = inParentheses(sourceText(setting.session, definition.computed->source));
    column.type = setting.session.typeOfExpression(&table, *column.computed);
    if (isCharacter(column.type.id))
        column.collation = setting.database.collation;
    return column;
}

void requireCompatible(const std::string& table, const std::vector<Column>& columns)
{
    std::set<std::string> names;
    int identities = 0;
    int timestamps = 0;
    int rowGuids = 0;
    for (const Column& column : columns) {
        if (!names.insert(foldName(column.name)).second)
            raise(2705, {column.name, table});
        if (column.identity && ++identities > 1)
            raise(2744, {table});
        if (column.type.id == TypeId::Timestamp && ++timestamps > 1)
            raise(2738, {table, column.name});
        if (column.rowGuid && ++rowGuids > 1)
            raise(8196);
    }
    if (columns.size() > maximumColumns)
        raise(1702, {columns[maximumColumns].name, table, std::to_string(maximumColumns)});
    const RowSize size = leastRow(columns);
    if (size.total > maximumRow)
        raise(1701,
              {table, std::to_string(size.total), std::to_string(size.overhead), std::to_string(maximumRow)});
}

Object tableWithout(SessionContext& session, const Object& table, int columnId)
{
    Object rest = table;
    std::erase_if(rest.columns,
                  [&](const Column& column) { return column.id == columnId || column.computed; });
    const Object stored = rest;
    for (const Column& column : table.columns) {
        if (!column.computed || column.id == columnId)
            continue;
        try {
            (void)session.typeOfExpression(&stored, *column.computed);
            rest.columns.push_back(column);
        } catch (const SqlError&) {
            continue; // it goes with the column
        }
    }
    return rest;
}

bool nullableByDefault(SessionContext& session, const Database& database)
{
    return session.options().ansiNullDefault || (database.options & AnsiNullDefault) != 0;
}

} // namespace practice
