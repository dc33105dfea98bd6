// FOREIGN KEY constraints.
#include "engine/catalog/catalog_writer.h"
#include "engine/context/object_rights.h"
#include "engine/definition/ddl_constraints.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"

#include <algorithm>
#include <map>
#include <set>

namespace practice {
namespace {

using Names = std::vector<std::string>;

/// What messages call the key while it has no name of its own.
std::string keyName(const TableChange& change, const ast::TableConstraint& constraint, const Names& columns)
{
    if (!constraint.name.empty())
        return constraint.name;
    return "FK__" + change.table()->name.substr(0, 9) + "__" + columns.front().substr(0, 5);
}

[[noreturn]] void refuse(const TableChange& change, const Message& message)
{
    raiseAfter(change.session, message, 1750);
}

ObjectPtr referencedTable(const TableChange& change, const ast::TableConstraint& constraint,
                          const std::string& name)
{
    const ast::ObjectName& written = constraint.referencedTable;
    if (!written.database.empty() &&
        !sameName(written.database, change.session.catalog().database(change.databaseId)->name))
        refuse(change, makeMessage(1763, {name}));
    ObjectPtr found = change.session.catalog().object(change.databaseId, written.schema, written.object,
                                                      change.table()->ownerId);
    if (!found || found->kind != ObjectKind::UserTable)
        refuse(change, makeMessage(1767, {name, plainName(written)}));
    return found;
}

std::vector<int> ownColumns(const TableChange& change, const Object& table, const std::string& name,
                            const Names& columns)
{
    std::vector<int> ids;
    for (const std::string& column : columns) {
        const Column* found = table.column(column);
        if (found == nullptr)
            refuse(change, makeMessage(1769, {name, column, table.name}));
        ids.push_back(found->id);
    }
    return ids;
}

std::vector<int> otherColumns(const TableChange& change, const Object& referenced, const std::string& name,
                              const ast::TableConstraint& constraint, std::size_t count)
{
    std::vector<int> ids;
    if (constraint.referencedColumns.empty()) {
        const Index* primary = referenced.primaryKey();
        if (primary == nullptr)
            refuse(change, makeMessage(1773, {name, referenced.name}));
        if (primary->keys.size() != count)
            refuse(change, makeMessage(1774, {name, referenced.name}));
        for (const IndexKey& key : primary->keys)
            ids.push_back(key.columnId);
        return ids;
    }
    if (constraint.referencedColumns.size() != count)
        refuse(change, makeMessage(8139, {change.table()->name}));
    for (const std::string& column : constraint.referencedColumns) {
        const Column* found = referenced.column(column);
        if (found == nullptr)
            refuse(change, makeMessage(1770, {name, column, referenced.name}));
        ids.push_back(found->id);
    }
    return ids;
}

/// Whoever refers to a table keeps its rows from going.
void requireReferable(const TableChange& change, const ObjectPtr& referenced, const std::vector<int>& columns)
{
    try {
        requireRights(change.session, {{referenced, Right::References, {columns.begin(), columns.end()}}});
    } catch (const SqlError& error) {
        refuse(change, error.message);
    }
}

/// The primary key or another unique index over exactly these columns.
const Index* candidateKey(const Object& referenced, const std::vector<int>& columns)
{
    const std::set<int> wanted(columns.begin(), columns.end());
    const Index* found = nullptr;
    for (const Index& index : referenced.indexes) {
        std::set<int> keys;
        for (const IndexKey& key : index.keys)
            keys.insert(key.columnId);
        if (index.unique && keys == wanted && (found == nullptr || index.primaryKey))
            found = &index;
    }
    return found;
}

/// 0 when the two may refer to each other, else the message that tells why not.
int typeFault(const Column& own, const Column& other)
{
    if (own.type.id != other.type.id)
        return 1778;
    if (own.type.length != other.type.length || own.type.precision != other.type.precision ||
        own.type.scale != other.type.scale)
        return 1753;
    return foldName(own.collation) == foldName(other.collation) ? 0 : 1757;
}

void requireSameTypes(const TableChange& change, const Object& table, const Object& referenced,
                      const ForeignKey& key, const std::string& name)
{
    for (std::size_t i = 0; i < key.columns.size(); ++i) {
        const Column& own = *table.column(key.columns[i]);
        const Column& other = *referenced.column(key.referencedColumns[i]);
        if (const int fault = typeFault(own, other))
            refuse(change, makeMessage(fault, {referenced.name, other.name, table.name, own.name, name}));
    }
}

/// How many ways a cascade has from each table to another.
class Cascades
{
public:
    Cascades(sqlite3* connection, int databaseId)
    {
        Statement rows(connection, "SELECT rkeyid, fkeyid FROM cat_reference "
                                   "WHERE dbid = ? AND (ondelete > 0 OR onupdate > 0)");
        rows.bind(1, databaseId);
        while (rows.step())
            add(rows.number(0), rows.number(1));
    }

    void add(int from, int to)
    {
        edges_.emplace(from, to);
        tables_.insert(from);
    }

    /// True when a change of one row could reach a table by two ways, or come back to its own.
    [[nodiscard]] bool ambiguous() const
    {
        return std::any_of(tables_.begin(), tables_.end(), [this](int start) {
            std::set<int> reached{start};
            return reachesTwice(start, reached);
        });
    }

private:
    bool reachesTwice(int table, std::set<int>& reached) const
    {
        const auto [first, last] = edges_.equal_range(table);
        return std::any_of(first, last, [&](const auto& edge) {
            return !reached.insert(edge.second).second || reachesTwice(edge.second, reached);
        });
    }

    std::multimap<int, int> edges_;
    std::set<int> tables_;
};

void requireSingleCascade(const TableChange& change, const ForeignKey& key, const std::string& name)
{
    if (key.onDelete == ReferentialAction::NoAction && key.onUpdate == ReferentialAction::NoAction)
        return;
    Cascades cascades(change.session.connection(), change.databaseId);
    cascades.add(key.referencedId, key.tableId);
    if (cascades.ambiguous())
        refuse(change, makeMessage(1785, {name, change.table()->name}));
}

} // namespace

void addForeignKey(const TableChange& change, const ast::TableConstraint& constraint,
                   std::vector<std::string> columns)
{
    const ObjectPtr table = change.table();
    const std::string name = keyName(change, constraint, columns);
    const ObjectPtr referenced = referencedTable(change, constraint, name);
    ForeignKey key;
    key.tableId = table->id;
    key.referencedId = referenced->id;
    key.columns = ownColumns(change, *table, name, columns);
    key.referencedColumns = otherColumns(change, *referenced, name, constraint, columns.size());
    requireReferable(change, referenced, key.referencedColumns);
    const Index* candidate = candidateKey(*referenced, key.referencedColumns);
    if (candidate == nullptr)
        refuse(change, makeMessage(1776, {referenced->name, name}));
    key.referencedIndexId = candidate->id;
    requireSameTypes(change, *table, *referenced, key, name);
    key.onDelete = ReferentialAction(constraint.onDelete);
    key.onUpdate = ReferentialAction(constraint.onUpdate);
    key.notForReplication = constraint.notForReplication;
    key.trusted = change.check;
    requireSingleCascade(change, key, name);
    key.id = insertConstraintObject(change, ObjectKind::ForeignKey, constraint.name, columns.front());
    key.name = change.session.catalog().object(change.databaseId, key.id)->name;
    if (change.check)
        requireRowsSatisfyKey(change, key);
    insertForeignKey(change.session.connection(), change.databaseId, key);
}

} // namespace practice
