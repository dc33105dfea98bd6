// What statements, DDL and system procedures may ask of the session that runs them.
#pragma once

#include "engine/api/result_sink.h"
#include "engine/api/session.h"
#include "engine/catalog/catalog.h"
#include "engine/store/store.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace practice {

namespace ast {
struct Statement;
struct SelectStatement;
} // namespace ast

/// A view or procedure as its statements see it: what its owner may do with its own objects, the
/// module lends to whoever may use the module.
struct ModuleOwner
{
    int databaseId = 0;
    int ownerId = 0;

    bool operator==(const ModuleOwner&) const = default;
};

/// What SET switches. The initial values are those of a fresh connection over ODBC.
struct SessionOptions
{
    bool noCount = false;
    bool xactAbort = false;
    bool ansiNulls = true;
    bool ansiPadding = true;
    bool ansiWarnings = true;
    bool ansiNullDefault = true;
    bool quotedIdentifier = true;
    bool concatNullYieldsNull = true;
    bool arithAbort = false;
    bool implicitTransactions = false;
    bool noExec = false;
    bool parseOnly = false;
    bool formatOnly = false;
    int rowCount = 0; ///< SET ROWCOUNT; 0 for all
    int textSize = 2147483647;
    int dateFirst = 7;
    DateSettings dates;
    int isolationLevel = 2; ///< 1 read uncommitted, 2 read committed, 3 repeatable read, 4 serializable
    /// "db.schema.table" for which SET IDENTITY_INSERT is ON, folded; "" for none.
    std::string identityInsert;
};

class SessionContext
{
public:
    virtual ~SessionContext() = default;

    [[nodiscard]] virtual Store& store() = 0;
    [[nodiscard]] virtual Catalog& catalog() = 0;
    [[nodiscard]] sqlite3* connection() { return store().connection(); }

    [[nodiscard]] virtual int spid() const = 0;
    [[nodiscard]] virtual const std::string& serverName() const = 0;
    [[nodiscard]] virtual const std::filesystem::path& dataDirectory() const = 0;
    [[nodiscard]] virtual const LoginRequest& client() const = 0; ///< host, application, user
    [[nodiscard]] virtual const Login& login() const = 0;

    /// The current database, and the user that the login is in it.
    [[nodiscard]] virtual DatabasePtr database() = 0;
    [[nodiscard]] virtual const Principal& user() = 0;
    /// USE: switches, with the environment change and message 5701.
    /// @throws SqlError 911, 916 ...
    virtual void useDatabase(const std::string& name) = 0;

    [[nodiscard]] virtual SessionOptions& options() = 0;
    [[nodiscard]] virtual int transactionCount() const = 0; ///< @@TRANCOUNT

    /// The text that the source ranges of the running statement's tree count in: the batch's, or
    /// that of the procedure it stands in.
    [[nodiscard]] virtual std::string_view batchText() const = 0;

    /// Where results and messages of the running statement go.
    [[nodiscard]] virtual ResultSink& sink() = 0;
    /// An information message from the running statement.
    void inform(int number, std::initializer_list<std::string> arguments = {})
    {
        sendMessage(makeMessage(number, arguments));
    }
    virtual void sendMessage(Message message) = 0; ///< adds line and procedure

    /// The name in tempdb's catalog of what "#name" means where the running statement stands: the
    /// innermost scope's. Of no object when there is none. "##name" is for all.
    [[nodiscard]] virtual std::string temporaryName(const std::string& name) const = 0;
    /// The one that "#name" is to have there once the running statement has created it; one that is
    /// taken when the scope has such a name.
    [[nodiscard]] virtual std::string newTemporaryName(const std::string& name) = 0;

    /// Takes the write lock and makes sure that a transaction runs. DDL and DML are called with it
    /// held already; procedures that write call it themselves before they read.
    virtual void beginWrite() = 0;
    /// Runs a part of a statement that stands by itself, as each name of DROP TABLE a, b does: a
    /// refusal is reported, undoes this part alone, and the statement goes on. TRY gets it raised.
    virtual void attempt(const std::function<void()>& part) = 0;

    /// Runs a batch of Transact-SQL as part of the running statement; results and messages go to
    /// `sink()`, an error is raised.
    virtual void runText(const std::string& text) = 0;
    /// The same with the results collected instead: rows of values of the last result set.
    [[nodiscard]] virtual std::vector<std::vector<Value>> queryText(const std::string& text) = 0;

    /// Translates an expression of Transact-SQL into one of SQLite's dialect over the columns of
    /// `table` (c1, c2 ... without qualifier; nullptr when it may not name any), converted to
    /// `target` as an assignment converts. For defaults, computed columns and CHECK conditions.
    [[nodiscard]] virtual std::string translateScalar(const Object* table, const std::string& text,
                                                      const SqlType& target) = 0;
    /// The same for a condition: 1, 0 or NULL.
    [[nodiscard]] virtual std::string translateCondition(const Object& table, const std::string& text) = 0;
    /// The type that an expression over a table's columns has.
    [[nodiscard]] virtual SqlType typeOfExpression(const Object* table, const std::string& text) = 0;
    /// An expression of SQLite's dialect in storage form, converted from one type to another with
    /// the checks of an assignment (8152, 8115, 245 ...).
    [[nodiscard]] virtual std::string convertExpression(const std::string& sqlite, const SqlType& from,
                                                        const SqlType& to) = 0;
    /// The columns that the query of a view gives; binds its names on the way, as in a module of
    /// that owner (208, 207, 229 ...).
    [[nodiscard]] virtual std::vector<ColumnInfo> describeQuery(const ast::SelectStatement& query,
                                                                const ModuleOwner& owner) = 0;
};

/// Runs one DDL, security or backup statement. A transaction with the write lock is open, and a
/// savepoint undoes it when it throws.
/// @return the rows that its DONE counts, if it counts any
std::optional<std::uint64_t> executeDdl(SessionContext& session, const ast::Statement& statement);

/// Runs a system procedure. Output parameters are written back into `arguments`.
/// @return its status, or none when there is no system procedure of that name
std::optional<int> callSystemProcedure(SessionContext& session, const std::string& name,
                                       std::vector<Parameter>& arguments);

} // namespace practice
