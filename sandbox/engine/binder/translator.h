// Binds queries and expressions of Transact-SQL against the catalog and turns them into SQLite's
// dialect. A translator serves one statement; what it made stays valid as long as the catalog's
// version and the types of the variables do.
#pragma once

#include "engine/api/result_sink.h"
#include "engine/binder/term.h"
#include "engine/catalog/catalog.h"
#include "engine/context/object_rights.h"
#include "engine/context/session_context.h"
#include "tsql/ast.h"

#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace practice {

/// A value that a translated statement takes when it runs, as ?1, ?2 ...
struct ParameterSlot
{
    enum class Kind : std::uint8_t
    {
        Variable, ///< a local variable, by its name
        Global,   ///< @@ROWCOUNT, or what a session knows: "getdate()", "db_name()"
    };
    Kind kind = Kind::Variable;
    std::string name; ///< lower case
    SqlType type;
};

/// What names mean where a statement stands.
struct BindContext
{
    SessionContext& session;
    DatabasePtr database;
    int userId = 1;
    /// The declared type of a local variable, lower case; none when there is none.
    std::function<std::optional<SqlType>(const std::string&)> variableType;
    /// The name in tempdb under which a table variable's rows lie; "" when there is none.
    std::function<std::string(const std::string&)> tableVariable;
    /// Inside a module: what it lends to its caller.
    std::optional<ModuleOwner> module{};
};

struct SourceColumn
{
    std::string name;
    Term term;
    std::optional<Identity> identity = std::nullopt;
    const Column* stored = nullptr;
};

/// Of a source that nobody has to be allowed to read.
inline constexpr int noNeed = -1;

/// One table of a FROM clause.
struct Source
{
    std::string exposed; ///< alias or own name
    std::string shown;   ///< as messages name it
    int databaseId = 0;  ///< of a table without alias, for qualified references
    std::string schema{};
    bool aliased = false;
    std::string handle{}; ///< SQLite's alias: "t1"
    ObjectPtr object{};   ///< of a stored table or view
    std::string depth{};  ///< of a recursive reference: the column that counts the levels
    int need = noNeed;    ///< where the right to read it stands among those that the statement needs
    std::vector<SourceColumn> columns{};
};

/// Where an expression stands decides what it may hold.
enum class Clause : std::uint8_t
{
    Select,
    Where,
    On,
    GroupBy,
    Having,
    OrderBy,
    Set, ///< of an UPDATE
    Scalar
};

struct Scope
{
    explicit Scope(Scope* outerScope = nullptr) : outer(outerScope) {}

    Scope* outer;
    std::vector<Source> sources;
    Clause clause = Clause::Scalar;
    std::vector<std::string> groups; ///< the GROUP BY expressions as translated
    std::vector<std::string> loose;  ///< columns named outside any aggregate and group
    int aggregateDepth = 0;
    bool hasAggregate = false;
};

struct QueryColumn
{
    std::string name;
    SqlType type;
    std::string collation;
    Coercibility coercibility = Coercibility::Coercible;
    bool nullable = true;
    std::optional<Identity> identity = std::nullopt;
    bool updatable = false;
};

/// A query whose columns are called k1, k2 ...
struct TranslatedQuery
{
    std::string sql;
    std::vector<QueryColumn> columns;
    bool atMostOneRow = false;
};

class Translator
{
public:
    explicit Translator(BindContext context);

    /// A SELECT as it stands for itself; `into` and assignments are the caller's affair.
    [[nodiscard]] TranslatedQuery statement(const ast::Query& query);
    /// A query within another: derived table, subquery, view.
    [[nodiscard]] TranslatedQuery subquery(const ast::Query& query, Scope* outer, bool ordered = false);

    [[nodiscard]] Term expression(const ast::Expression& expression, Scope& scope);
    [[nodiscard]] std::string condition(const ast::Expression& condition, Scope& scope);

    /// Text of FROM with its sources added to the scope.
    [[nodiscard]] std::string tableSource(const ast::TableSource& source, Scope& scope);
    [[nodiscard]] std::string fromClause(const std::vector<ast::TableSourcePtr>& from, Scope& scope);

    /// The object that a name means in this statement, views included. @throws SqlError 208
    [[nodiscard]] ObjectPtr object(const ast::ObjectName& name);
    /// Adds a stored table to a scope and gives its text for FROM.
    std::string addStoredTable(const ObjectPtr& table, Source source, Scope& scope);

    /// Notes that the statement needs a right to an object, on the columns if it applies to columns,
    /// unless the module in which the statement stands lends it.
    void need(const ObjectPtr& object, Right right, std::set<int> columns = {});
    /// From here on reading a column of the source takes the right to it. A source that is merely
    /// there takes none.
    void watch(Source& source, const ObjectPtr& object);
    /// A source that is the target of a change, too, need not be readable while no column is read.
    void needOnlyWhatIsRead(const Source& source);
    /// A column of the source is read.
    void noteRead(const Source& source, const SourceColumn& column);
    /// To be asked once all of the statement is bound. @throws SqlError 229, 230
    void requireRights();

    /// Makes WITH tables known to what is translated next.
    void enterCommonTables(const std::vector<ast::CommonTable>& tables);

    /// Variables in this set are read as they stand at each row, not once for the statement.
    std::set<std::string> liveVariables;
    /// For text that is used apart from this translator: columns of stored tables go without
    /// qualifier, and what the session supplies is asked for by function instead of by parameter.
    bool standsAlone = false;
    /// What is stored joins texts as the server does by itself, what runs as the session wants it.
    [[nodiscard]] bool emptyNulls() const
    {
        return !standsAlone && !context_.session.options().concatNullYieldsNull;
    }

    [[nodiscard]] const std::vector<ParameterSlot>& parameters() const { return parameters_; }
    [[nodiscard]] SessionContext& session() { return context_.session; }
    [[nodiscard]] const DatabasePtr& database() const { return context_.database; }
    [[nodiscard]] const BindContext& context() const { return context_; }
    /// A value that the session supplies when the statement runs.
    [[nodiscard]] Term global(const std::string& name, const SqlType& type, bool nullable = true);
    [[nodiscard]] Term variable(const std::string& name);
    [[nodiscard]] std::string freshHandle() { return "t" + std::to_string(++handles_); }

    /// Arguments of a function as terms.
    [[nodiscard]] std::vector<Term> terms(const std::vector<ast::ExpressionPtr>& expressions, Scope& scope);
    [[nodiscard]] Term functionCall(const ast::Function& function, Scope& scope);

private:
    struct RecursiveTable
    {
        std::string name;
        std::string handle;
        std::vector<QueryColumn> columns{};
    };
    struct VisibleTable
    {
        const ast::CommonTable* table;
        std::size_t visible; ///< how many of the tables before it its own query sees
        DatabasePtr database;
    };

    // expression_translator.cpp
    Term literal(const ast::Literal& literal);
    Term column(const ast::Column& column, Scope& scope);
    Term unary(const ast::Unary& unary, Scope& scope);
    Term binary(const ast::Binary& binary, Scope& scope);
    Term caseExpression(const ast::Case& node, Scope& scope);
    Term cast(const ast::Cast& cast, Scope& scope);
    Term collate(const ast::Collate& collate, Scope& scope);
    Term scalarSubquery(const ast::Subquery& subquery, Scope& scope);
    Term expressionNode(const ast::Expression& expression, Scope& scope);
    const SourceColumn* findColumn(const ast::Column& column, Scope& scope, Scope*& owner);
    void noteColumn(const Source& source, const SourceColumn& column, Scope& scope);

    // condition_translator.cpp
    std::string comparison(const ast::Comparison& node, Scope& scope);
    std::string quantified(const ast::QuantifiedComparison& node, Scope& scope);
    std::string logical(const ast::Logical& node, Scope& scope);
    std::string between(const ast::Between& node, Scope& scope);
    std::string like(const ast::Like& node, Scope& scope);
    std::string membership(const ast::In& node, Scope& scope);
    std::string exists(const ast::Exists& node, Scope& scope);
    TranslatedQuery singleColumn(const ast::Query& query, Scope& scope);

    // query_translator.cpp
    TranslatedQuery query(const ast::Query& query, Scope* outer);
    TranslatedQuery body(const ast::QueryBody& body, const ast::Query* tail, Scope* outer);
    TranslatedQuery setOperation(const ast::QueryBody& body, Scope* outer);
    std::string setOrder(const ast::Query& query, const TranslatedQuery& result);

    // source_translator.cpp
    std::string namedTable(const ast::NamedTable& node, Scope& scope);
    std::string joinedTable(const ast::JoinedTable& node, Scope& scope);
    std::string derivedTable(const ast::TableSource& node, const TranslatedQuery& query, Scope& scope);
    std::string valuesTable(const ast::ValuesTable& node, Scope& scope);
    std::string systemTable(const SystemTable& table, int databaseId, Source source, Scope& scope);
    std::string viewTable(const ObjectPtr& view, Source source, Scope& scope);
    std::string commonTable(const VisibleTable& table, const ast::NamedTable& node, Scope& scope);
    std::string recursiveReference(RecursiveTable& table, const ast::NamedTable& node, Scope& scope);
    std::string addSource(Source source, const std::vector<QueryColumn>& columns, const std::string& sql,
                          Scope& scope);
    int needToRead(const ObjectPtr& object, bool anyColumn);

    struct Need
    {
        RightNeed right;
        bool anyColumn = true; ///< reading none is reading, too: COUNT(*)
    };

    BindContext context_;
    std::vector<Need> needs_;
    std::vector<ParameterSlot> parameters_;
    std::vector<VisibleTable> commonTables_;
    std::vector<RecursiveTable> recursive_;
    int handles_ = 0;
    int viewDepth_ = 0;
    int commonTableDepth_ = 0;
    int commonTableUses_ = 0;
};

/// The type that is written, with its facets. @throws SqlError 131, 243 ...
[[nodiscard]] SqlType resolveType(const ast::DataType& type, bool declaration);

[[nodiscard]] std::string writtenName(const ast::ObjectName& name);

/// An exact numeric, float, money or date operation. @throws SqlError 402, 8117 ...
/// @param emptyNulls a NULL text counts as an empty one where texts are joined
[[nodiscard]] Term arithmetic(ast::BinaryOperator op, const Term& left, const Term& right,
                              bool emptyNulls = false);

} // namespace practice
