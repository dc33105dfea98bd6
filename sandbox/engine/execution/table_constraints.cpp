#include "engine/execution/table_constraints.h"

#include "engine/binder/parsed_texts.h"
#include "engine/messages/errors.h"
#include "engine/session/temporary_objects.h"
#include "types/conversion.h"

#include <algorithm>

namespace practice {

namespace {

bool touches(const std::vector<int>& columns, const std::vector<int>* changed)
{
    return changed == nullptr || std::any_of(columns.begin(), columns.end(), [changed](int id) {
               return std::find(changed->begin(), changed->end(), id) != changed->end();
           });
}

std::string foreignKeyTest(const ForeignKey& key, const Object& parent, const std::string& handle)
{
    std::string filled;
    std::string match;
    for (std::size_t i = 0; i < key.columns.size(); ++i) {
        const std::string own = handle + "." + storageColumn(key.columns[i]);
        filled += own + " IS NOT NULL AND ";
        match += (i == 0 ? "" : " AND ") + ("p." + storageColumn(key.referencedColumns[i]) + " = " + own);
    }
    return filled + "NOT EXISTS (SELECT 1 FROM " + storageTable(parent.databaseId, parent.id) +
           " AS p WHERE " + match + ")";
}

std::string columnName(const Object& table, int columnId)
{
    const Column* column = table.column(columnId);
    return column == nullptr ? std::string() : column->name;
}

} // namespace

std::string databaseNameOf(SessionState& session, const Object& table)
{
    const DatabasePtr database = session.catalog().database(table.databaseId);
    return database ? database->name : std::string();
}

std::string ownerName(SessionState&, const Object& table)
{
    // A temporary table's suffix is the server's own affair.
    return table.owner + "." + temporaryWrittenName(table.name);
}

std::string fullName(SessionState& session, const Object& table)
{
    return databaseNameOf(session, table) + "." + ownerName(session, table);
}

TableTest tableTest(SessionState& session, const ObjectPtr& table, const std::vector<int>* changed)
{
    TableTest test;
    Translator translator(session.bindContext());
    Scope scope;
    translator.addStoredTable(table, {.exposed = table->name, .shown = table->name}, scope);
    test.handle = scope.sources.front().handle;
    const std::string database = databaseNameOf(session, *table);
    const auto add = [&test](const std::string& broken, TableTest::Constraint constraint) {
        test.sql += " WHEN " + broken + " THEN " + std::to_string(test.constraints.size());
        test.constraints.push_back(std::move(constraint));
    };
    for (const CheckConstraint& check : table->checks) {
        if (!check.enabled)
            continue;
        const auto tree = parsedCondition(check.text);
        add("NOT " + translator.condition(*tree, scope),
            {"CHECK", check.name, database, ownerName(session, *table),
             check.columnId != 0 ? columnName(*table, check.columnId) : std::string()});
    }
    for (const ForeignKey& key : table->foreignKeys) {
        if (!key.enabled || !touches(key.columns, changed))
            continue;
        const ObjectPtr parent = session.catalog().object(table->databaseId, key.referencedId);
        if (!parent)
            continue;
        const bool single = key.columns.size() == 1;
        add(foreignKeyTest(key, *parent, test.handle),
            {parent->id == table->id ? "FOREIGN KEY SAME TABLE" : "FOREIGN KEY", key.name, database,
             ownerName(session, *parent),
             single ? columnName(*parent, key.referencedColumns.front()) : std::string()});
    }
    if (!test.constraints.empty())
        test.sql = "CASE" + test.sql + " END";
    test.slots = translator.parameters();
    return test;
}

void raiseBroken(const std::string& statement, const TableTest::Constraint& constraint)
{
    const std::string column = constraint.column.empty() ? "" : ", column '" + constraint.column + "'";
    Message message = makeMessage(547);
    message.text = "The " + statement + " statement conflicted with the " + constraint.kind +
                   " constraint \"" + constraint.name + "\". The conflict occurred in database \"" +
                   constraint.database + "\", table \"" + constraint.table + "\"" + column + ".";
    throw SqlError{std::move(message)};
}

const Index* violatedIndex(const Object& table, const std::string& storeMessage)
{
    // "UNIQUE constraint failed: u5_7.c1, u5_7.c2" or "... failed: index 'i5_7_2n'"
    const std::string quoted = "'" + storageIndex(table.databaseId, table.id, 0);
    const std::string prefix = quoted.substr(0, quoted.size() - 1);
    if (const auto at = storeMessage.find(prefix); at != std::string::npos)
        return table.index(std::atoi(storeMessage.c_str() + at + prefix.size()));
    for (const Index& index : table.indexes) {
        std::string columns;
        for (const IndexKey& key : index.keys) {
            columns += (columns.empty() ? ": " : ", ") + storageTable(table.databaseId, table.id) + "." +
                       storageColumn(key.columnId);
        }
        if (index.unique && storeMessage.ends_with(columns))
            return &index;
    }
    return nullptr;
}

void raiseDuplicate(SessionState& session, const Object& table, const Index& index,
                    const std::vector<Value>& values)
{
    std::string shown;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const Column* column = table.column(index.keys[i].columnId);
        shown += (i == 0 ? "" : ", ") + (values[i].isNull() ? "<NULL>" : toText(values[i], column->type));
    }
    const std::string name = ownerName(session, table);
    if (index.primaryKey || index.uniqueConstraint)
        throw SqlError{[&] {
            Message message = makeMessage(2627);
            message.text = std::string("Violation of ") + (index.primaryKey ? "PRIMARY KEY" : "UNIQUE KEY") +
                           " constraint '" + index.name + "'. Cannot insert duplicate key in object '" +
                           name + "'. The duplicate key value is (" + shown + ").";
            return message;
        }()};
    raise(2601, {name, index.name, shown});
}

} // namespace practice
