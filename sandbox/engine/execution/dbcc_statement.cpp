// DBCC.
#include "engine/context/permissions.h"
#include "engine/context/standing.h"
#include "engine/execution/statements.h"
#include "engine/messages/errors.h"
#include "tsql/parser.h"
#include "types/conversion.h"
#include "types/text_encoding.h"

#include <algorithm>
#include <array>

namespace practice {

namespace {

/// Whom a command asks for.
enum class Reach : std::uint8_t
{
    Everybody,
    Table,    ///< who may alter the table
    Database, ///< db_owner
    State,    ///< serveradmin
    Server    ///< sysadmin
};

struct DbccCommand
{
    std::string_view name;
    Reach reach;
    std::size_t place = 0; ///< of the table or the database among the arguments
};

constexpr std::array dbccCommands = {
    DbccCommand{"CHECKALLOC", Reach::Database},
    DbccCommand{"CHECKCATALOG", Reach::Database},
    DbccCommand{"CHECKCONSTRAINTS", Reach::Table},
    DbccCommand{"CHECKDB", Reach::Database},
    DbccCommand{"CHECKFILEGROUP", Reach::Database, 1},
    DbccCommand{"CHECKIDENT", Reach::Table},
    DbccCommand{"CHECKTABLE", Reach::Table},
    DbccCommand{"CLEANTABLE", Reach::Table, 1},
    DbccCommand{"CONCURRENCYVIOLATION", Reach::Everybody},
    DbccCommand{"DBREINDEX", Reach::Table},
    DbccCommand{"DROPCLEANBUFFERS", Reach::State},
    DbccCommand{"FREEPROCCACHE", Reach::State},
    DbccCommand{"FREESESSIONCACHE", Reach::State},
    DbccCommand{"FREESYSTEMCACHE", Reach::State},
    DbccCommand{"INDEXDEFRAG", Reach::Table, 1},
    DbccCommand{"INPUTBUFFER", Reach::Everybody},
    DbccCommand{"OPENTRAN", Reach::Database},
    DbccCommand{"SHOWCONTIG", Reach::Table},
    DbccCommand{"SHOW_STATISTICS", Reach::Table},
    DbccCommand{"SHRINKDATABASE", Reach::Database},
    DbccCommand{"SHRINKFILE", Reach::Database, 1},
    DbccCommand{"SQLPERF", Reach::State},
    DbccCommand{"TRACESTATUS", Reach::Everybody},
    DbccCommand{"UPDATEUSAGE", Reach::Database},
    DbccCommand{"USEROPTIONS", Reach::Everybody},
};

class Dbcc
{
public:
    Dbcc(SessionState& session, const ast::DbccStatement& statement)
        : session_(session), statement_(statement)
    {}

    void run()
    {
        requireRight();
        if (statement_.command == "CHECKIDENT")
            checkIdentity();
        else if (statement_.command == "CHECKDB" || statement_.command == "CHECKTABLE")
            checkStore();
        Message message;
        message.number = 2528;
        message.severity = 0;
        message.text = "DBCC execution completed. If DBCC printed error messages, contact your system "
                       "administrator.";
        session_.sendMessage(message);
    }

private:
    [[nodiscard]] std::string argument(std::size_t i) const
    {
        if (i >= statement_.arguments.size())
            return {};
        if (const auto* literal = ast::tryAs<ast::Literal>(statement_.arguments[i].get()))
            return literal->text;
        const Variable value = session_.evaluate(*statement_.arguments[i]);
        return value.value.isNull() ? std::string() : toText(value.value, value.type);
    }

    void requireRight() const
    {
        const auto* const known = std::ranges::find(dbccCommands, statement_.command, &DbccCommand::name);
        const DbccCommand command =
            known == dbccCommands.end() ? DbccCommand{statement_.command, Reach::Server} : *known;
        switch (command.reach) {
        case Reach::Everybody:
            return;
        case Reach::Table:
            return requireTable(command.place);
        case Reach::Database:
            return requireDatabase(argument(command.place));
        case Reach::State:
            if (statement_.command == "SQLPERF" && !hasServerRole(session_, ServerAdmin))
                raise(297);
            [[fallthrough]];
        case Reach::Server:
            if (!hasServerRole(session_, command.reach == Reach::State ? unsigned{ServerAdmin} : 0U))
                raise(2571, {session_.user().name, statement_.command});
        }
    }

    /// A table that is not there is left to the command.
    void requireTable(std::size_t place) const
    {
        const ObjectPtr table = tableAt(place);
        if (table && !mayChange(session_, *table))
            raise(2557, {session_.user().name, statement_.command, table->name});
    }

    void requireDatabase(const std::string& name) const
    {
        const DatabasePtr named = name.empty() ? nullptr : session_.catalog().database(name);
        const DatabasePtr database = named ? named : session_.database();
        requireAccess(session_, *database);
        if (!isDatabaseOwner(session_, database->id))
            raise(7983, {userIn(session_, database->id)->name, statement_.command, database->name});
    }

    [[nodiscard]] ObjectPtr tableAt(std::size_t place) const
    {
        const ast::ObjectName name = parseObjectName(argument(place));
        if (name.empty())
            return nullptr;
        try {
            return Translator(session_.bindContext()).object(name);
        } catch (const SqlError& error) {
            if (error.message.number != 208)
                throw;
            return nullptr;
        }
    }

    void checkIdentity() const
    {
        const ast::ObjectName name = parseObjectName(argument(0));
        const ObjectPtr table = tableAt(0);
        if (!table)
            raise(2501, {name.object});
        if (table->identityColumn() == nullptr)
            raise(7997, {name.object});
        if (lowerCase(argument(1)) != "reseed" || statement_.arguments.size() <= 2)
            return;
        const int seed = session_.number(*statement_.arguments[2]);
        session_.atomically([this, &table, seed] {
            session_.catalog().setLastIdentity(table->databaseId, table->id, seed);
            return 0;
        });
    }

    void checkStore() const
    {
        Statement check(session_.connection(), "PRAGMA quick_check(1)");
        if (check.step() && check.text(0) != "ok")
            raise(8921);
    }

    SessionState& session_;
    const ast::DbccStatement& statement_;
};

} // namespace

void executeDbcc(SessionState& session, const ast::DbccStatement& statement)
{
    Dbcc(session, statement).run();
}

} // namespace practice
