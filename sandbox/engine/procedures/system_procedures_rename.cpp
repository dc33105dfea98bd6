// sp_rename.
#include "engine/catalog/catalog_writer.h"
#include "engine/context/permissions.h"
#include "engine/context/security_principals.h"
#include "engine/definition/ddl_alter.h"
#include "engine/definition/ddl_database.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"
#include "engine/procedures/system_procedures.h"
#include "tsql/parser.h"

#include <algorithm>

namespace practice {
namespace {

/// What is to be renamed, as sp_rename's first argument names it.
struct Renaming
{
    const ProcedureCall& call;
    std::string written;
    ast::ObjectName parsed;
    std::string newName;
    std::string type; ///< upper case; "" when it was not given

    [[nodiscard]] SessionContext& session() const { return call.session(); }
};

/// "t.c" is a column or index of a table: its qualifier as a name of its own.
ast::ObjectName ownerOfPart(const ast::ObjectName& name)
{
    ast::ObjectName owner;
    owner.object = name.schema;
    owner.schema = name.database;
    owner.database = name.server;
    return owner;
}

ObjectPtr tableOfPart(const Renaming& renaming)
{
    if (renaming.parsed.schema.empty())
        return nullptr;
    return findNamed(renaming.session(), ownerOfPart(renaming.parsed));
}

[[noreturn]] void refuseMissing(const Renaming& renaming)
{
    if (!renaming.type.empty())
        raise(15248, {renaming.type});
    raise(15225, {renaming.written, renaming.session().database()->name, "(null)"});
}

void requireMayChange(const Renaming& renaming, const Object& object)
{
    if (object.shipped)
        raise(15001, {renaming.written});
    const ObjectPtr owned = object.parentId == 0
                                ? nullptr
                                : renaming.session().catalog().object(object.databaseId, object.parentId);
    if (!mayChange(renaming.session(), owned ? *owned : object))
        raise(15247);
}

void reportRenamed(const Renaming& renaming, const char* what)
{
    renaming.session().inform(15477);
    renaming.session().inform(15338, {what, renaming.newName});
}

/// Checks and computed columns keep the column's name in their text.
void requireNotInText(const Renaming& renaming, const Object& table, const Column& column)
{
    for (const Dependent& dependent : dependentsOf(renaming.session(), table, column)) {
        if (dependent.kind == DependentKind::Check || dependent.kind == DependentKind::Computed)
            raise(15336, {renaming.written});
    }
}

bool renameColumn(const Renaming& renaming)
{
    const ObjectPtr table = tableOfPart(renaming);
    const Column* column =
        table && table->kind == ObjectKind::UserTable ? table->column(renaming.parsed.object) : nullptr;
    if (column == nullptr)
        return false;
    requireMayChange(renaming, *table);
    const Column* taken = table->column(renaming.newName);
    if (taken != nullptr && taken->id != column->id)
        raise(15335, {renaming.newName, "COLUMN"});
    requireNotInText(renaming, *table, *column);
    Column changed = *column;
    changed.name = renaming.newName;
    replaceColumn(renaming.session().connection(), table->databaseId, table->id, changed);
    touchObject(renaming.session().connection(), table->databaseId, table->id);
    reportRenamed(renaming, "COLUMN");
    return true;
}

void writeIndexName(const Renaming& renaming, const Object& table, const Index& index)
{
    Index changed = index;
    changed.name = renaming.newName;
    deleteIndex(renaming.session().connection(), table.databaseId, table.id, index.id);
    insertIndex(renaming.session().connection(), table.databaseId, table.id, changed);
}

bool renameIndex(const Renaming& renaming)
{
    const ObjectPtr table = tableOfPart(renaming);
    const Index* index = table ? table->index(renaming.parsed.object) : nullptr;
    if (index == nullptr)
        return false;
    requireMayChange(renaming, *table);
    const Index* taken = table->index(renaming.newName);
    if (taken != nullptr && taken->id != index->id)
        raise(15335, {renaming.newName, "INDEX"});
    writeIndexName(renaming, *table, *index);
    if (index->constraintId != 0)
        renameObject(renaming.session().connection(), table->databaseId, index->constraintId,
                     renaming.newName);
    reportRenamed(renaming, "INDEX");
    return true;
}

bool renameWholeObject(const Renaming& renaming)
{
    const ObjectPtr object = findNamed(renaming.session(), renaming.parsed);
    if (!object || object->databaseId != renaming.call.database())
        return false;
    requireMayChange(renaming, *object);
    const ObjectPtr taken =
        renaming.session().catalog().object(object->databaseId, object->owner, renaming.newName);
    if (taken && taken->id != object->id)
        raise(15335, {renaming.newName, "object"});
    renameObject(renaming.session().connection(), object->databaseId, object->id, renaming.newName);
    if (object->kind == ObjectKind::PrimaryKey || object->kind == ObjectKind::UniqueConstraint) {
        const ObjectPtr table = renaming.session().catalog().object(object->databaseId, object->parentId);
        for (const Index& index : table->indexes) {
            if (index.constraintId == object->id)
                writeIndexName(renaming, *table, index);
        }
    }
    reportRenamed(renaming, "object");
    return true;
}

bool renameWholeDatabase(const Renaming& renaming)
{
    const DatabasePtr database = renaming.session().catalog().database(renaming.parsed.object);
    if (!database)
        return false;
    requireServerRole(renaming.session(), DbCreator);
    renameDatabase(renaming.session(), *database, renaming.newName);
    reportRenamed(renaming, "DATABASE");
    return true;
}

bool renameByType(const Renaming& renaming)
{
    if (renaming.type == "COLUMN")
        return renameColumn(renaming);
    if (renaming.type == "INDEX")
        return renameIndex(renaming);
    if (renaming.type == "OBJECT")
        return renameWholeObject(renaming);
    if (renaming.type == "DATABASE")
        return renameWholeDatabase(renaming);
    if (!renaming.type.empty())
        raise(15249, {renaming.type});
    return renameWholeObject(renaming) || renameColumn(renaming) || renameIndex(renaming);
}

std::string upperCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
        return letter >= 'a' && letter <= 'z' ? char(letter - 'a' + 'A') : letter;
    });
    return text;
}

int rename(const ProcedureCall& call)
{
    for (const std::size_t place : {std::size_t(0), std::size_t(1)}) {
        if (call.textOr(place, "").empty())
            raise(15223, {place == 0 ? "objname" : "newname"});
    }
    call.session().beginWrite();
    Renaming renaming{call, call.textOr(0, ""), parseObjectName(call.textOr(0, "")), call.textOr(1, ""),
                      upperCase(call.textOr(2, ""))};
    if (renaming.parsed.empty())
        raise(15253, {renaming.written});
    if (!renameByType(renaming))
        refuseMissing(renaming);
    return 0;
}

/// Gives an object to another owner.
int changeObjectOwner(const ProcedureCall& call)
{
    call.session().beginWrite();
    requireDatabaseRole(call.session(), "db_ddladmin");
    requireDatabaseRole(call.session(), "db_securityadmin");
    const std::string name = call.textOr(0, "");
    const ObjectPtr object = findNamed(call.session(), parseObjectName(name));
    if (!object || object->parentId != 0 || object->shipped)
        raise(15001, {name});
    const auto owner = call.session().catalog().principal(call.database(), call.textOr(1, ""));
    if (!owner)
        raise(15410, {call.textOr(1, "")});
    if (isNameTaken(call.session(), call.database(), owner->id, object->name))
        raise(15505, {object->name, owner->name});
    Statement rows(call.session().connection(),
                   "UPDATE cat_object SET uid = ?1 WHERE dbid = ?2 AND (id = ?3 OR parent = ?3)");
    rows.bind(1, owner->id).bind(2, call.database()).bind(3, object->id).run();
    // What was granted was the former owner's to grant.
    deletePermissions(call.session().connection(), call.database(), object->id);
    touchObject(call.session().connection(), call.database(), object->id);
    call.session().inform(15477);
    return 0;
}

constexpr SystemProcedure renameTable[] = {
    {"sp_rename", "@objname @newname @objtype=", rename},
    {"sp_changeobjectowner", "@objname @newowner", changeObjectOwner},
};

} // namespace

std::span<const SystemProcedure> renameProcedures()
{
    return renameTable;
}

} // namespace practice
