#include "engine/definition/ddl_drop.h"
#include "engine/catalog/catalog_writer.h"
#include "engine/context/permissions.h"
#include "engine/definition/ddl.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"

#include <algorithm>
#include <vector>

namespace practice {
namespace {

struct DropWords
{
    ast::DropKind kind;
    const char* noun;
    const char* statement;
    std::vector<ObjectKind> objects;
};

const DropWords& wordsOf(ast::DropKind kind)
{
    using K = ObjectKind;
    static const std::vector<DropWords> all{
        {ast::DropKind::Table, "table", "TABLE", {K::UserTable}},
        {ast::DropKind::View, "view", "VIEW", {K::View}},
        {ast::DropKind::Procedure, "procedure", "PROCEDURE", {K::Procedure}},
        {ast::DropKind::Function,
         "function",
         "FUNCTION",
         {K::ScalarFunction, K::InlineFunction, K::TableFunction}},
        {ast::DropKind::Trigger, "trigger", "TRIGGER", {K::Trigger}},
        {ast::DropKind::Default, "default", "DEFAULT", {K::Default}},
        {ast::DropKind::Rule, "rule", "RULE", {K::Rule}},
        {ast::DropKind::Type, "type", "TYPE", {}},
        {ast::DropKind::Synonym, "synonym", "SYNONYM", {}},
        {ast::DropKind::Statistics, "statistics", "STATISTICS", {}},
        {ast::DropKind::Schema, "schema", "SCHEMA", {}},
    };
    return *std::find_if(all.begin(), all.end(), [&](const DropWords& words) { return words.kind == kind; });
}

std::string statementFor(ObjectKind kind)
{
    std::string word = kindWord(kind);
    std::transform(word.begin(), word.end(), word.begin(),
                   [](char letter) { return char(letter - 'a' + 'A'); });
    return "DROP " + word;
}

void requireKind(const Object& object, const DropWords& words, const std::string& name)
{
    if (object.shipped)
        raise(3708, {"drop", kindWord(object.kind), name, kindWord(object.kind)});
    const bool fits =
        std::find(words.objects.begin(), words.objects.end(), object.kind) != words.objects.end();
    if (fits)
        return;
    raise(3705, {words.statement, name, name, kindWord(object.kind), statementFor(object.kind)});
}

void dropOne(SessionContext& session, const DropWords& words, const ast::ObjectName& name, bool ifExists)
{
    const ObjectPtr object = findNamed(session, name);
    const bool constraint = object && object->parentId != 0 && object->kind != ObjectKind::Trigger;
    if ((!object || constraint) && ifExists)
        return;
    if (!object || constraint)
        raise(3701, {"drop", words.noun, plainName(name)});
    if (!mayDrop(session, *object))
        raiseNoRight("drop", words.noun, plainName(name));
    requireWritable(*session.catalog().database(object->databaseId));
    requireKind(*object, words, plainName(name));
    if (object->kind == ObjectKind::UserTable)
        dropTable(session, *object);
    else
        deleteObject(session.connection(), object->databaseId, object->id);
}

bool referencedByOthers(const Object& table)
{
    return std::any_of(table.referencedBy.begin(), table.referencedBy.end(),
                       [&](const ForeignKey& key) { return key.tableId != table.id; });
}

} // namespace

void dropTable(SessionContext& session, const Object& table)
{
    if (referencedByOthers(table))
        raise(3726, {table.name});
    sqlite3* connection = session.connection();
    std::vector<int> children;
    Statement rows(connection, "SELECT id FROM cat_object WHERE dbid = ? AND parent = ?");
    rows.bind(1, table.databaseId).bind(2, table.id);
    while (rows.step())
        children.push_back(rows.number(0));
    rows.reset();
    for (const int id : children) {
        deleteConstraintRows(connection, table.databaseId, id);
        deleteObject(connection, table.databaseId, id);
    }
    for (const Index& index : table.indexes)
        deleteIndex(connection, table.databaseId, table.id, index.id);
    deleteObject(connection, table.databaseId, table.id);
    execute(connection, "DROP TABLE " + storageTable(table.databaseId, table.id));
}

void drop(SessionContext& session, const ast::DropStatement& statement)
{
    switch (statement.dropKind) {
    case ast::DropKind::Login:
    case ast::DropKind::User:
    case ast::DropKind::Role:
        return dropPrincipal(session, statement);
    case ast::DropKind::Database:
        return forEachOf(session, statement.names, [&](const ast::ObjectName& name) {
            dropDatabase(session, name.object, statement.ifExists);
        });
    default:
        return forEachOf(session, statement.names, [&](const ast::ObjectName& name) {
            dropOne(session, wordsOf(statement.dropKind), name, statement.ifExists);
        });
    }
}

} // namespace practice
