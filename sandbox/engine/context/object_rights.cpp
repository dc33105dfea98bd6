#include "engine/context/object_rights.h"

#include "engine/context/temporary_names.h"
#include "engine/messages/errors.h"

#include <algorithm>
#include <map>

namespace practice {

namespace {

enum class Said : std::uint8_t
{
    Nothing,
    Granted,
    Denied
};

/// What is recorded for a user and all that it belongs to about one right to one object.
struct Entries
{
    std::map<int, Said> whole;              ///< by the principal that it is recorded for
    std::map<int, Said> columns;            ///< by the column
    std::set<std::pair<int, int>> excepted; ///< column and principal for whom `whole` does not hold there
};

Said worse(Said left, Said right)
{
    return std::max(left, right);
}

const char* nameOf(Right right)
{
    switch (right) {
    case Right::Alter:
        return "ALTER";
    case Right::Control:
        return "CONTROL";
    case Right::ViewDefinition:
        return "VIEW DEFINITION";
    case Right::References:
        return "REFERENCES";
    case Right::Select:
        return "SELECT";
    case Right::Insert:
        return "INSERT";
    case Right::Delete:
        return "DELETE";
    case Right::Update:
        return "UPDATE";
    case Right::Execute:
        return "EXECUTE";
    }
    return "";
}

Entries entriesOf(SessionContext& session, const Standing& standing, const RightNeed& need)
{
    Entries entries;
    Statement rows(session.connection(),
                   "SELECT 0, uid, protecttype FROM cat_permission WHERE dbid = ?1 AND id = ?2 AND "
                   "action IN (?3, ?4) AND uid IN (" +
                       standing.principals() +
                       ") UNION ALL SELECT colid, uid, protecttype FROM cat_column_permission "
                       "WHERE dbid = ?1 AND id = ?2 AND action = ?3 AND uid IN (" +
                       standing.principals() + ")");
    rows.bind(1, need.object->databaseId).bind(2, need.object->id).bind(3, static_cast<int>(need.right));
    rows.bind(4, static_cast<int>(Right::Control));
    while (rows.step()) {
        const int column = rows.number(0);
        const int principal = rows.number(1);
        const Said said = rows.number(2) == protection::denied ? Said::Denied : Said::Granted;
        if (rows.number(2) == protection::excepted) {
            entries.excepted.emplace(column, principal);
            continue;
        }
        Said& place = column == 0 ? entries.whole[principal] : entries.columns[column];
        place = worse(place, said);
    }
    return entries;
}

bool isChange(Right right)
{
    return right == Right::Insert || right == Right::Delete || right == Right::Update;
}

bool isGrantedByRole(const Standing& standing, Right right)
{
    if (standing.inFixedRole("db_owner"))
        return true;
    if (right == Right::References || right == Right::Alter || right == Right::Control)
        return standing.inFixedRole("db_ddladmin");
    if (right == Right::Select)
        return standing.inFixedRole("db_datareader");
    return isChange(right) && standing.inFixedRole("db_datawriter");
}

bool isDeniedByRole(const Standing& standing, Right right)
{
    return (right == Right::Select && standing.inFixedRole("db_denydatareader")) ||
           (isChange(right) && standing.inFixedRole("db_denydatawriter"));
}

Message refusal(SessionContext& session, const RightNeed& need, const Column* column)
{
    const Object& object = *need.object;
    const DatabasePtr database = session.catalog().database(object.databaseId);
    const std::string name = database ? database->name : "";
    if (column == nullptr)
        return makeMessage(229, {nameOf(need.right), object.name, name, object.owner});
    return makeMessage(230, {nameOf(need.right), column->name, object.name, name, object.owner});
}

/// The right to one need, decided.
class Decision
{
public:
    Decision(SessionContext& session, const Standing& standing, const RightNeed& need)
        : session_(session), need_(need), entries_(entriesOf(session, standing, need)),
          deniedByRole_(isDeniedByRole(standing, need.right)),
          grantedByRole_(isGrantedByRole(standing, need.right))
    {}

    [[nodiscard]] std::vector<Message> refusals() const
    {
        if (deniedByRole_)
            return {refusal(session_, need_, nullptr)};
        if (need_.columns.empty())
            return mayTouchAny() ? std::vector<Message>() : wholeRefusal();
        std::vector<Message> messages;
        for (const int id : need_.columns) {
            if (mayTouch(id))
                continue;
            const Column* column = need_.object->column(id);
            // Who may touch no column is told about the object, unless this very one is denied.
            if (column == nullptr || !isTornIntoColumns(id))
                return wholeRefusal();
            messages.push_back(refusal(session_, need_, column));
        }
        return messages;
    }

private:
    /// What is said of a column goes before what is said of the object, a grant too.
    [[nodiscard]] bool mayTouch(int column) const
    {
        const auto own = entries_.columns.find(column);
        if (own != entries_.columns.end())
            return own->second == Said::Granted;
        return holds(column);
    }

    /// @param column 0 for none in particular
    [[nodiscard]] bool holds(int column) const
    {
        Said whole = Said::Nothing;
        for (const auto& [principal, said] : entries_.whole) {
            if (!entries_.excepted.contains({column, principal}))
                whole = worse(whole, said);
        }
        return whole == Said::Granted || (whole == Said::Nothing && grantedByRole_);
    }

    [[nodiscard]] bool mayTouchAny() const
    {
        const auto& columns = need_.object->columns;
        if (columns.empty() || (entries_.columns.empty() && entries_.excepted.empty()))
            return holds(0);
        return std::ranges::any_of(columns, [this](const Column& column) { return mayTouch(column.id); });
    }

    [[nodiscard]] bool isTornIntoColumns(int column) const
    {
        return entries_.columns.contains(column) || mayTouchAny();
    }

    [[nodiscard]] std::vector<Message> wholeRefusal() const { return {refusal(session_, need_, nullptr)}; }

    SessionContext& session_;
    const RightNeed& need_;
    Entries entries_;
    bool deniedByRole_;
    bool grantedByRole_;
};

std::vector<Message> refusalsOf(SessionContext& session, const RightNeed& need)
{
    const Object& object = *need.object;
    if (object.databaseId == tempdbId && isTemporary(object.name))
        return {};
    const DatabasePtr database = session.catalog().database(object.databaseId);
    if (!database)
        return {};
    const Standing standing(session, *database);
    if (standing.isDbo() || standing.owns(object))
        return {};
    return Decision(session, standing, need).refusals();
}

void raiseAll(std::vector<Message> messages)
{
    if (messages.empty())
        return;
    SqlError error{messages.front()};
    error.more.assign(messages.begin() + 1, messages.end());
    throw SqlError(std::move(error));
}

} // namespace

bool appliesToColumns(Right right)
{
    return right == Right::Select || right == Right::Update || right == Right::References;
}

bool hasRight(SessionContext& session, const RightNeed& need)
{
    return refusalsOf(session, need).empty();
}

void requireRights(SessionContext& session, const std::vector<RightNeed>& needs)
{
    std::vector<Message> messages;
    for (const RightNeed& need : needs) {
        for (Message& message : refusalsOf(session, need)) {
            const bool told = std::ranges::any_of(
                messages, [&message](const Message& other) { return other.text == message.text; });
            if (!told)
                messages.push_back(std::move(message));
        }
    }
    raiseAll(std::move(messages));
}

void requireSystemTable(SessionContext& session, const Database& database, const SystemTable& table,
                        const ObjectPtr& object)
{
    const Standing standing(session, database);
    if (standing.isDbo())
        return;
    bool refused = isDeniedByRole(standing, Right::Select);
    if (!refused && object) {
        Statement row(session.connection(),
                      "SELECT 1 FROM cat_permission WHERE dbid = ?1 AND id = ?2 AND action = ?3 AND "
                      "protecttype = ?4 AND uid IN (" +
                          standing.principals() + ")");
        row.bind(1, database.id).bind(2, object->id).bind(3, static_cast<int>(Right::Select));
        refused = row.bind(4, protection::denied).step();
    }
    // The server keeps them in a database of its own.
    if (refused)
        raise(229,
              {"SELECT", table.name, "mssqlsystemresource", table.schema == "dbo" ? "sys" : table.schema});
}

} // namespace practice
