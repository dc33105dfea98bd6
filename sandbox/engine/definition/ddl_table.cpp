// CREATE TABLE.
#include "engine/catalog/catalog_writer.h"
#include "engine/catalog/row_tables.h"
#include "engine/definition/ddl.h"
#include "engine/definition/ddl_columns.h"
#include "engine/definition/ddl_constraints.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"
#include "engine/store/storage.h"

#include <set>

namespace practice {
namespace {

/// Stored columns and, with a provisional type, computed ones.
std::vector<Column> defineColumns(const ColumnSetting& setting, const ast::TableElements& elements)
{
    const std::set<std::string> keys = primaryKeyColumns(elements);
    std::vector<Column> columns;
    for (const ast::ColumnDefinition& definition : elements.columns) {
        const int id = int(columns.size()) + 1;
        if (!definition.computed) {
            columns.push_back(
                defineColumn(setting, definition, id, keys.contains(foldName(definition.name))));
            continue;
        }
        Column computed;
        computed.id = id;
        computed.name = definition.name;
        computed.computed = "";
        columns.push_back(std::move(computed));
    }
    requireCompatible(setting.table, columns);
    return columns;
}

void insertColumns(const ColumnSetting& setting, int tableId, const ast::TableElements& elements)
{
    const std::vector<Column> columns = defineColumns(setting, elements);
    sqlite3* connection = setting.session.connection();
    for (const Column& column : columns) {
        if (!column.computed)
            insertColumn(connection, setting.database.id, tableId, column);
    }
    const ObjectPtr stored = reread(setting.session, setting.database.id, tableId);
    std::vector<Column> computed;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        if (columns[i].computed)
            computed.push_back(defineComputedColumn(setting, *stored, elements.columns[i], columns[i].id));
    }
    for (const Column& column : computed)
        insertColumn(connection, setting.database.id, tableId, column);
}

template <typename Wanted>
void addMatching(const TableChange& change, const ast::TableElements& elements, Wanted wanted)
{
    for (const ast::ColumnDefinition& column : elements.columns) {
        for (const ast::TableConstraint& constraint : column.constraints) {
            if (wanted(constraint))
                addConstraint(change, constraint, column.name);
        }
    }
    for (const ast::TableConstraint& constraint : elements.constraints) {
        if (wanted(constraint))
            addConstraint(change, constraint, "");
    }
}

} // namespace

std::set<std::string> primaryKeyColumns(const ast::TableElements& elements)
{
    std::set<std::string> names;
    for (const ast::TableConstraint& constraint : elements.constraints) {
        if (constraint.kind != ast::ConstraintKind::PrimaryKey)
            continue;
        for (const ast::IndexColumn& column : constraint.columns)
            names.insert(foldName(column.name));
    }
    for (const ast::ColumnDefinition& column : elements.columns) {
        for (const ast::TableConstraint& constraint : column.constraints) {
            if (constraint.kind == ast::ConstraintKind::PrimaryKey)
                names.insert(foldName(column.name));
        }
    }
    return names;
}

void addDefaults(const TableChange& change, const ast::TableElements& elements)
{
    addMatching(change, elements, [](const ast::TableConstraint& constraint) {
        return constraint.kind == ast::ConstraintKind::Default;
    });
}

void addConstraints(const TableChange& change, const ast::TableElements& elements)
{
    using Kind = ast::ConstraintKind;
    using Constraint = ast::TableConstraint;
    const auto isClusteredUnique = [](const Constraint& constraint) {
        return constraint.kind == Kind::Unique && constraint.clustered.value_or(false);
    };
    // A PRIMARY KEY that does not say CLUSTERED leaves that place to a UNIQUE that does.
    addMatching(change, elements, isClusteredUnique);
    addMatching(change, elements,
                [](const Constraint& constraint) { return constraint.kind == Kind::PrimaryKey; });
    addMatching(change, elements, [&](const Constraint& constraint) {
        return constraint.kind == Kind::Unique && !isClusteredUnique(constraint);
    });
    addMatching(change, elements, [](const Constraint& constraint) {
        return constraint.kind == Kind::ForeignKey || constraint.kind == Kind::Check;
    });
}

void createTable(SessionContext& session, const ast::CreateTableStatement& statement)
{
    const ObjectPlace place = placeForNew(session, statement.name, "CREATE TABLE");
    if (isNameTaken(session, place.database->id, place.ownerId, place.name))
        raise(2714, {place.written});
    NewObject object;
    object.name = place.name;
    object.ownerId = place.ownerId;
    object.filegroupId = filegroupOf(session, place.database->id, statement.fileGroup);
    object.ansiNulls = session.options().ansiNulls;
    object.quotedIdentifier = session.options().quotedIdentifier;
    if (!statement.textFileGroup.empty())
        (void)filegroupOf(session, place.database->id, statement.textFileGroup);
    const int id = insertObject(session.connection(), place.database->id, object);
    insertColumns({session, *place.database, place.written}, id, statement.elements);
    const TableChange change{session, place.database->id, id, true, true};
    execute(session.connection(), tableStatement(*change.table()));
    addDefaults(change, statement.elements);
    addConstraints(change, statement.elements);
}

} // namespace practice
