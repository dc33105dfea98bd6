// SELECT blocks and what joins them: grouping, ordering, set operations.
#include "engine/binder/function_binder.h"
#include "engine/binder/translator.h"
#include "engine/messages/errors.h"

#include <algorithm>

namespace practice {

namespace {

constexpr std::size_t mostItems = 4096;

struct Item
{
    std::string name;
    Term term;
    std::optional<Identity> identity = std::nullopt;
    bool updatable = false;
    std::vector<std::string> loose;
};

std::string keyName(std::size_t place)
{
    return "k" + std::to_string(place + 1);
}

QueryColumn columnOf(const Item& item)
{
    return {item.name,          item.term.type, item.term.collation, item.term.coercibility,
            item.term.nullable, item.identity,  item.updatable};
}

const ast::Column* plainName(const ast::Expression& expression)
{
    const auto* column = ast::tryAs<ast::Column>(&expression);
    return column != nullptr && column->role == ast::ColumnRole::Named ? column : nullptr;
}

/// The place of an ORDER BY ordinal. @throws SqlError 108
std::optional<std::size_t> ordinalOf(const ast::Expression& expression, std::size_t count)
{
    const auto* literal = ast::tryAs<ast::Literal>(&expression);
    if (literal == nullptr || literal->literalKind != ast::LiteralKind::Integer)
        return std::nullopt;
    const unsigned long long place = literal->text.size() > 9 ? count + 1 : std::stoull(literal->text);
    if (place < 1 || place > count)
        raise(108, {literal->text});
    return static_cast<std::size_t>(place - 1);
}

/// One expression of ORDER BY: over the select list's keys, or over the tables.
struct OrderTerm
{
    std::string sql;
    bool overKeys = false;
    bool descending = false;
};

/// One SELECT block on its way into SQLite's dialect.
class BlockText
{
public:
    BlockText(Translator& translator, const ast::SelectBlock& block, const ast::Query* tail, Scope* outer)
        : translator_(translator), block_(block), tail_(tail), scope_(outer)
    {}

    TranslatedQuery translate();

private:
    void readItems();
    void readStar(const ast::SelectItem& item);
    void readGroups();
    void readOrder();
    OrderTerm orderTerm(const ast::Expression& expression, std::size_t position);
    [[nodiscard]] std::optional<std::size_t> namedItem(const ast::Column& column) const;
    void checkGrouping(const std::vector<std::string>& loose, int grouped, int ungrouped) const;
    [[nodiscard]] std::string selectList() const;
    [[nodiscard]] std::string core(const std::string& extraItems = {}) const;
    [[nodiscard]] std::string limited();
    [[nodiscard]] std::string topCount();
    [[nodiscard]] std::string ranked(const std::string& rank, const std::string& bound) const;

    [[nodiscard]] bool isGrouped() const { return block_.groupBy.has_value(); }

    Translator& translator_;
    const ast::SelectBlock& block_;
    const ast::Query* tail_;
    Scope scope_;
    std::vector<Item> items_;
    std::string from_;
    std::string where_;
    std::string having_;
    std::vector<OrderTerm> order_;
};

TranslatedQuery BlockText::translate()
{
    from_ = translator_.fromClause(block_.from, scope_);
    if (block_.where) {
        scope_.clause = Clause::Where;
        where_ = translator_.condition(*block_.where, scope_);
    }
    if (isGrouped())
        readGroups();
    readItems();
    if (items_.size() > mostItems)
        raise(1056, {std::to_string(mostItems)});
    if (block_.having) {
        scope_.clause = Clause::Having;
        scope_.loose.clear();
        having_ = translator_.condition(*block_.having, scope_);
        checkGrouping(scope_.loose, 8121, 8119);
    }
    if (tail_ != nullptr)
        readOrder();
    if (scope_.hasAggregate || isGrouped() || block_.having) {
        for (const Item& item : items_)
            checkGrouping(item.loose, 8120, 8118);
    }
    TranslatedQuery result;
    result.sql = limited();
    for (const Item& item : items_)
        result.columns.push_back(columnOf(item));
    result.atMostOneRow = (scope_.hasAggregate && !isGrouped()) || (block_.from.empty() && !block_.where);
    return result;
}

void BlockText::checkGrouping(const std::vector<std::string>& loose, int grouped, int ungrouped) const
{
    if (!loose.empty())
        raise(isGrouped() ? grouped : ungrouped, {loose.front()});
}

void BlockText::readGroups()
{
    const ast::GroupBy& groups = *block_.groupBy;
    if (groups.grouping != ast::GroupingKind::Plain)
        raise(40510, {groups.grouping == ast::GroupingKind::Cube ? "GROUP BY CUBE" : "GROUP BY ROLLUP"});
    if (groups.all)
        raise(40510, {"GROUP BY ALL"});
    scope_.clause = Clause::GroupBy;
    for (const auto& node : groups.expressions) {
        const Term term = translator_.expression(*node, scope_);
        if (term.constant)
            raise(164);
        if (isLegacyLob(term.type.id))
            raise(306);
        scope_.groups.push_back(comparable(term));
    }
}

void BlockText::readStar(const ast::SelectItem& item)
{
    bool found = false;
    for (const Source& source : scope_.sources) {
        if (!item.table.empty() && !sameName(source.exposed, item.table.object))
            continue;
        found = true;
        for (const SourceColumn& column : source.columns) {
            translator_.noteRead(source, column);
            Item expanded{column.name, column.term, column.identity, column.stored != nullptr, {}};
            if (std::find(scope_.groups.begin(), scope_.groups.end(), comparable(column.term)) ==
                scope_.groups.end())
                expanded.loose.push_back(source.shown + "." + column.name);
            items_.push_back(std::move(expanded));
        }
    }
    if (!found && item.table.empty())
        raise(263);
    if (!found)
        raise(107, {writtenName(item.table)});
}

void BlockText::readItems()
{
    scope_.clause = Clause::Select;
    for (const ast::SelectItem& node : block_.items) {
        if (node.kind == ast::SelectItemKind::Star) {
            readStar(node);
            continue;
        }
        scope_.loose.clear();
        Item item;
        item.term = translator_.expression(*node.expression, scope_);
        item.loose = scope_.loose;
        item.name = node.alias;
        if (const auto* column = plainName(*node.expression); column != nullptr) {
            if (item.name.empty())
                item.name = column->name;
            for (const Source& source : scope_.sources) {
                for (const SourceColumn& candidate : source.columns) {
                    if (candidate.term.sql == item.term.sql) {
                        item.identity = candidate.identity;
                        item.updatable = candidate.stored != nullptr;
                    }
                }
            }
        }
        if (node.kind == ast::SelectItemKind::Assignment && node.op != ast::AssignmentOperator::Set) {
            item.term = arithmetic(ast::operatorOf(node.op), translator_.variable(node.variable), item.term,
                                   translator_.emptyNulls());
        }
        if (block_.distinct && isLegacyLob(item.term.type.id))
            raise(421, {typeName(item.term.type.id)});
        items_.push_back(std::move(item));
    }
    scope_.loose.clear();
}

/// A bare name in ORDER BY means an item of the select list first.
std::optional<std::size_t> BlockText::namedItem(const ast::Column& column) const
{
    std::optional<std::size_t> found;
    for (std::size_t i = 0; i < items_.size() && column.table.empty(); ++i) {
        if (!sameName(items_[i].name, column.name))
            continue;
        if (found && items_[*found].term.sql != items_[i].term.sql)
            raise(209, {column.name});
        found = found.value_or(i);
    }
    return found;
}

OrderTerm BlockText::orderTerm(const ast::Expression& expression, std::size_t position)
{
    const auto overKeys = [](Term term, std::string key) {
        if (isLegacyLob(term.type.id))
            raise(306);
        term.sql = std::move(key);
        term.collated = false;
        return OrderTerm{comparable(term), true};
    };
    if (const auto place = ordinalOf(expression, items_.size()))
        return overKeys(items_[*place].term, keyName(*place));
    if (const auto* name = plainName(expression)) {
        if (const auto place = namedItem(*name))
            return overKeys(items_[*place].term, keyName(*place));
    }
    scope_.clause = Clause::OrderBy;
    scope_.loose.clear();
    const Term term = translator_.expression(expression, scope_);
    if (term.constant)
        raise(408, {std::to_string(position)});
    if (scope_.hasAggregate || isGrouped())
        checkGrouping(scope_.loose, 8127, 8126);
    const auto same = std::find_if(items_.begin(), items_.end(),
                                   [&term](const Item& item) { return item.term.sql == term.sql; });
    if (same != items_.end())
        return overKeys(term, keyName(static_cast<std::size_t>(same - items_.begin())));
    if (block_.distinct)
        raise(145);
    if (isLegacyLob(term.type.id))
        raise(306);
    return {comparable(term)};
}

void BlockText::readOrder()
{
    std::size_t position = 0;
    for (const ast::OrderItem& item : tail_->orderBy) {
        order_.push_back(orderTerm(*item.expression, ++position));
        order_.back().descending = item.descending;
    }
}

std::string BlockText::selectList() const
{
    std::string list;
    for (std::size_t i = 0; i < items_.size(); ++i) {
        const Term& term = items_[i].term;
        const bool compared = block_.distinct && isCharacter(term.type.id);
        list += (i == 0 ? "" : ", ") + (compared ? comparable(term) : term.sql) + " AS " + keyName(i);
    }
    return list;
}

std::string BlockText::core(const std::string& extraItems) const
{
    std::string text = block_.distinct ? "SELECT DISTINCT " : "SELECT ";
    text += selectList() + extraItems;
    for (const Source& source : scope_.sources) {
        // A recursion that runs away is stopped by its depth, which travels as one more column.
        if (!source.depth.empty())
            text += ", t_depth(" + source.depth + "+1)";
    }
    if (!from_.empty())
        text += " FROM " + from_;
    if (!where_.empty())
        text += " WHERE " + where_;
    if (!scope_.groups.empty()) {
        for (std::size_t i = 0; i < scope_.groups.size(); ++i)
            text += (i == 0 ? " GROUP BY " : ", ") + scope_.groups[i];
    }
    if (!having_.empty()) {
        // SQLite wants a group where SQL Server takes all rows as one.
        text +=
            (scope_.groups.empty() && !scope_.hasAggregate ? " GROUP BY NULL HAVING " : " HAVING ") + having_;
    }
    return text;
}

std::string BlockText::topCount()
{
    Scope scalar;
    const Term count = translator_.expression(*block_.top->count, scalar);
    if (const auto known = constantInteger(count)) {
        if (block_.top->percent && (*known < 0 || *known > 100))
            raise(1031);
        if (*known < 0)
            raise(127);
    }
    if (block_.top->percent)
        return convertTerm(count, floatType(), Conversion::Implicit).sql;
    if (!isInteger(count.type.id) && count.type.id != TypeId::Null)
        raise(1060);
    return callText("t_rowlimit", {count.sql});
}

/// TOP forms that LIMIT can't say: rows are numbered first and cut off outside.
std::string BlockText::ranked(const std::string& rank, const std::string& bound) const
{
    std::string extraItems;
    std::string ordering;
    for (const OrderTerm& term : order_) {
        const std::string name = term.overKeys ? term.sql : "o" + std::to_string(&term - order_.data());
        if (!term.overKeys)
            extraItems += ", " + term.sql + " AS " + name;
        ordering += (ordering.empty() ? "ORDER BY " : ", ") + name + (term.descending ? " DESC" : "");
    }
    std::string keys;
    for (std::size_t i = 0; i < items_.size(); ++i)
        keys += (i == 0 ? "" : ", ") + keyName(i);
    return "SELECT " + keys + " FROM (SELECT *, " + rank + "() OVER (" + ordering +
           ") AS place, count(*) OVER () AS total FROM (" + core(extraItems) + ")) WHERE place <= " + bound +
           " ORDER BY place";
}

std::string BlockText::limited()
{
    const bool ordered = !order_.empty();
    if (block_.top && block_.top->withTies && !ordered)
        raise(1062);
    if (block_.top && block_.top->percent)
        return ranked(block_.top->withTies ? "rank" : "row_number",
                      "t_percentage(total, " + topCount() + ")");
    if (block_.top && block_.top->withTies)
        return ranked("rank", topCount());
    std::string text = core();
    for (const OrderTerm& term : order_)
        text += (&term == order_.data() ? " ORDER BY " : ", ") + term.sql + (term.descending ? " DESC" : "");
    if (block_.top)
        return text + " LIMIT " + topCount();
    if (tail_ != nullptr && tail_->offset) {
        Scope scalar;
        const auto count = [this, &scalar](const ast::ExpressionPtr& node) {
            return callText(
                "t_rowlimit",
                {convertTerm(translator_.expression(*node, scalar), bigIntType(), Conversion::Implicit).sql});
        };
        text += " LIMIT " + (tail_->fetch ? count(tail_->fetch) : "-1") + " OFFSET " + count(tail_->offset);
    }
    return text;
}

bool isLimited(const ast::Query& query)
{
    return query.offset != nullptr || (query.body->block && query.body->block->top);
}

} // namespace

TranslatedQuery Translator::statement(const ast::Query& query)
{
    return this->query(query, nullptr);
}

TranslatedQuery Translator::subquery(const ast::Query& query, Scope* outer, bool ordered)
{
    if (!query.orderBy.empty() && !isLimited(query) && query.forKind == ast::ForKind::None && !ordered)
        raise(1033);
    return this->query(query, outer);
}

void Translator::enterCommonTables(const std::vector<ast::CommonTable>& tables)
{
    for (const ast::CommonTable& table : tables)
        commonTables_.push_back({&table, commonTables_.size(), context_.database});
}

TranslatedQuery Translator::query(const ast::Query& query, Scope* outer)
{
    if (query.forKind != ast::ForKind::None && query.forKind != ast::ForKind::Browse)
        raise(40510, {query.forKind == ast::ForKind::Json ? "FOR JSON" : "FOR XML"});
    const std::size_t visible = commonTables_.size();
    enterCommonTables(query.commonTables);
    TranslatedQuery result = body(*query.body, &query, outer);
    commonTables_.resize(visible);
    return result;
}

TranslatedQuery Translator::body(const ast::QueryBody& body, const ast::Query* tail, Scope* outer)
{
    if (body.block)
        return BlockText(*this, *body.block, tail, outer).translate();
    TranslatedQuery result = setOperation(body, outer);
    if (tail != nullptr && (!tail->orderBy.empty() || tail->offset))
        result.sql = "SELECT * FROM (" + result.sql + ")" + setOrder(*tail, result);
    return result;
}

TranslatedQuery Translator::setOperation(const ast::QueryBody& body, Scope* outer)
{
    std::vector<TranslatedQuery> operands;
    for (const auto& operand : body.operands) {
        operands.push_back(this->body(*operand, nullptr, outer));
        if (operands.back().columns.size() != operands.front().columns.size())
            raise(205);
    }
    TranslatedQuery result;
    result.columns = operands.front().columns;
    for (std::size_t i = 0; i < result.columns.size(); ++i) {
        std::vector<Term> terms;
        for (const TranslatedQuery& operand : operands) {
            const QueryColumn& column = operand.columns[i];
            Term term = resultTerm("", column.type, column.nullable);
            term.collation = column.collation;
            term.coercibility = column.coercibility;
            result.columns[i].nullable = result.columns[i].nullable || column.nullable;
            terms.push_back(std::move(term));
        }
        result.columns[i].type = commonType(terms);
        result.columns[i].identity.reset();
        result.columns[i].updatable = false;
        if (isCharacter(result.columns[i].type.id) && result.columns[i].collation.empty())
            result.columns[i].collation = defaultCollation;
    }
    constexpr const char* words[] = {" UNION ", " UNION ALL ", " EXCEPT ", " INTERSECT "};
    for (std::size_t o = 0; o < operands.size(); ++o) {
        const std::string handle = freshHandle();
        std::string list;
        for (std::size_t i = 0; i < result.columns.size(); ++i) {
            const QueryColumn& from = operands[o].columns[i];
            const QueryColumn& to = result.columns[i];
            Term term = resultTerm(handle + "." + keyName(i), from.type, from.nullable);
            term.collation = from.collation;
            Term converted = convertTerm(term, to.type, Conversion::Implicit);
            converted.collation = to.collation;
            const bool compared = body.op != ast::SetOperator::UnionAll && isCharacter(to.type.id);
            list += (i == 0 ? "" : ", ") + (compared ? comparable(converted) : converted.sql) + " AS " +
                    keyName(i);
        }
        result.sql += (o == 0 ? "" : words[static_cast<std::size_t>(body.op)]);
        result.sql.append("SELECT ").append(list).append(" FROM (").append(operands[o].sql);
        result.sql.append(") AS ").append(handle);
    }
    return result;
}

std::string Translator::setOrder(const ast::Query& query, const TranslatedQuery& result)
{
    std::string order;
    for (const ast::OrderItem& item : query.orderBy) {
        std::optional<std::size_t> place = ordinalOf(*item.expression, result.columns.size());
        if (const auto* name = plainName(*item.expression); name != nullptr) {
            for (std::size_t i = 0; i < result.columns.size() && !place; ++i) {
                if (sameName(result.columns[i].name, name->name))
                    place = i;
            }
            if (!place)
                raise(207, {name->name});
        }
        if (!place)
            raise(104);
        const QueryColumn& column = result.columns[*place];
        Term term = resultTerm(keyName(*place), column.type);
        term.collation = column.collation;
        order += (order.empty() ? " ORDER BY " : ", ") + comparable(term) + (item.descending ? " DESC" : "");
    }
    Scope scalar;
    if (query.offset) {
        const auto count = [this, &scalar](const ast::ExpressionPtr& node) {
            return callText("t_rowlimit", {expression(*node, scalar).sql});
        };
        order += " LIMIT " + (query.fetch ? count(query.fetch) : "-1") + " OFFSET " + count(query.offset);
    }
    return order;
}

} // namespace practice
