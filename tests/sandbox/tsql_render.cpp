#include "tsql_render.h"

#include "tsql/parser.h"

#include <array>

namespace practice::test {
namespace {

using namespace ast;

std::string quoted(const std::string& text)
{
    return '\'' + text + '\'';
}

template <class List, class Render>
std::string joined(const List& list, Render&& each, const std::string& separator = ", ")
{
    std::string text;
    for (const auto& item : list)
        text += (text.empty() ? "" : separator) + each(item);
    return text;
}

std::string names(const std::vector<std::string>& list)
{
    return list.empty() ? ""
                        : "(" +
                              joined(
                                  list, [](const auto& name) { return name; }, ",") +
                              ")";
}

std::string expressions(const std::vector<ExpressionPtr>& list)
{
    return joined(list, [](const auto& item) { return render(item.get()); });
}

std::string orderText(const std::vector<OrderItem>& items)
{
    return joined(items, [](const auto& item) {
        return render(item.expression.get()) + (item.descending ? " desc" : "");
    });
}

std::string type(const DataType& node)
{
    std::string text = node.id == TypeId::Null ? "user:" + renderName(node.name) : typeName(node.id);
    if (node.max)
        text += "(max)";
    else if (!node.facets.empty())
        text += "(" +
                joined(
                    node.facets, [](int facet) { return std::to_string(facet); }, ",") +
                ")";
    return text;
}

std::string literal(const Literal& node)
{
    if (node.bareWord)
        return "`" + node.text + "`";
    switch (node.literalKind) {
    case LiteralKind::Null:
        return "null";
    case LiteralKind::String:
        return quoted(node.text);
    case LiteralKind::NationalString:
        return "N" + quoted(node.text);
    case LiteralKind::Money:
        return "$" + node.text;
    case LiteralKind::Binary:
        return "0x" + node.text;
    case LiteralKind::Float:
        return "float:" + node.text;
    case LiteralKind::Decimal:
        return "dec:" + node.text;
    default:
        return node.text;
    }
}

std::string column(const Column& node)
{
    const std::string name = node.role == ColumnRole::Named      ? renderName(node.name)
                             : node.role == ColumnRole::Identity ? "IDENTITYCOL"
                                                                 : "ROWGUIDCOL";
    return node.table.empty() ? name : renderName(node.table) + "." + name;
}

std::string bound(const FrameBound& node)
{
    constexpr std::array texts{"unbounded<", "<", "row", ">", ">unbounded"};
    return (node.count ? render(node.count.get()) : "") + texts[static_cast<std::size_t>(node.kind)];
}

std::string function(const Function& node)
{
    std::string text = renderName(node.name);
    if (node.parentheses) {
        text += "(" + std::string(node.distinct ? "distinct " : "") + (node.star ? "*" : "") +
                (node.type ? type(*node.type) + ", " : "") + expressions(node.arguments) + ")";
    }
    if (node.over) {
        text += " over(" + expressions(node.over->partitionBy) + "; " + orderText(node.over->orderBy);
        if (const auto& frame = node.over->frame)
            text += std::string(frame->rows ? "; rows " : "; range ") + bound(frame->start) +
                    (frame->end ? ".." + bound(*frame->end) : "");
        text += ")";
    }
    return text;
}

std::string caseText(const Case& node)
{
    std::string text = "case(" + (node.operand ? render(node.operand.get()) : std::string());
    for (const auto& branch : node.branches)
        text += " " + render(branch.when.get()) + "=>" + render(branch.then.get());
    return text + (node.otherwise ? " else " + render(node.otherwise.get()) : "") + ")";
}

constexpr std::array comparisons{"=", "<>", "<", "<=", ">", ">=", "*=", "=*"};
constexpr std::array binaries{"+", "-", "*", "/", "%", "&", "|", "^"};
constexpr std::array assignments{"=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^="};

template <class Op, std::size_t N>
std::string word(const std::array<const char*, N>& texts, Op op)
{
    return texts.at(static_cast<std::size_t>(op));
}

std::string condition(const Expression& node)
{
    const auto negation = [](bool negated) { return negated ? std::string(" not ") : std::string(" "); };
    if (const auto* quantified = tryAs<QuantifiedComparison>(&node))
        return "(" + render(quantified->left.get()) + " " + word(comparisons, quantified->op) +
               (quantified->all ? " all " : " any ") + render(*quantified->query) + ")";
    if (const auto* logical = tryAs<Logical>(&node))
        return "(" +
               joined(
                   logical->operands, [](const auto& each) { return render(each.get()); },
                   logical->conjunction ? " and " : " or ") +
               ")";
    if (const auto* negated = tryAs<Not>(&node))
        return "not" + render(negated->operand.get());
    if (const auto* between = tryAs<Between>(&node))
        return "(" + render(between->operand.get()) + negation(between->negated) + "between " +
               render(between->low.get()) + ".." + render(between->high.get()) + ")";
    if (const auto* like = tryAs<Like>(&node))
        return "(" + render(like->operand.get()) + negation(like->negated) + "like " +
               render(like->pattern.get()) + (like->escape ? " escape " + render(like->escape.get()) : "") +
               ")";
    if (const auto* in = tryAs<In>(&node))
        return "(" + render(in->operand.get()) + negation(in->negated) + "in " +
               (in->query ? render(*in->query) : "{" + expressions(in->values) + "}") + ")";
    if (const auto* isNull = tryAs<IsNull>(&node))
        return "(" + render(isNull->operand.get()) + " is" + negation(isNull->negated) + "null)";
    if (const auto* exists = tryAs<Exists>(&node))
        return "exists" + render(*exists->query);
    const auto& text = as<FullText>(node);
    return (text.freeText ? "freetext(" : "contains(") + expressions(text.arguments) + ")";
}

std::string table(const TableSource& node)
{
    std::string text;
    if (const auto* named = tryAs<NamedTable>(&node)) {
        text = renderName(named->name) +
               (named->hints.empty() ? ""
                                     : "[" +
                                           joined(
                                               named->hints, [](const auto& hint) { return hint; }, ",") +
                                           "]");
    } else if (const auto* variable = tryAs<VariableTable>(&node)) {
        text = variable->name;
    } else if (const auto* call = tryAs<FunctionTable>(&node)) {
        text = (call->systemFunction ? "::" : "") + function(*call->call);
    } else if (const auto* derived = tryAs<DerivedTable>(&node)) {
        text = render(*derived->query);
    } else if (const auto* values = tryAs<ValuesTable>(&node)) {
        text = "values" + joined(
                              values->rows, [](const auto& row) { return "(" + expressions(row) + ")"; }, "");
    } else {
        constexpr std::array kinds{" inner ", " left ",       " right ",     " full ",
                                   " cross ", " crossapply ", " outerapply "};
        const auto& join = as<JoinedTable>(node);
        return "(" + table(*join.left) + word(kinds, join.joinKind) + table(*join.right) +
               (join.on ? " on " + render(join.on.get()) : "") + ")";
    }
    return text + (node.alias.empty() ? "" : " " + renderName(node.alias)) + names(node.columnAliases);
}

std::string tables(const std::vector<TableSourcePtr>& list)
{
    return joined(list, [](const auto& source) { return table(*source); });
}

std::string item(const SelectItem& node)
{
    switch (node.kind) {
    case SelectItemKind::Star:
        return node.table.empty() ? "*" : renderName(node.table) + ".*";
    case SelectItemKind::Assignment:
        return node.variable + word(assignments, node.op) + render(node.expression.get());
    default:
        return render(node.expression.get()) + (node.alias.empty() ? "" : " as " + renderName(node.alias));
    }
}

std::string items(const std::vector<SelectItem>& list)
{
    return joined(list, item);
}

std::string topText(const std::optional<Top>& top)
{
    return !top ? ""
                : "top " + render(top->count.get()) + (top->percent ? "% " : " ") +
                      (top->withTies ? "ties " : "");
}

std::string block(const SelectBlock& node)
{
    std::string text =
        std::string("select ") + (node.distinct ? "distinct " : "") + topText(node.top) + items(node.items);
    if (node.into)
        text += " into " + renderName(*node.into);
    if (!node.from.empty())
        text += " from " + tables(node.from);
    if (node.where)
        text += " where " + render(node.where.get());
    if (node.groupBy) {
        constexpr std::array groupings{"", " rollup", " cube"};
        text += std::string(" group ") + (node.groupBy->all ? "all " : "") +
                expressions(node.groupBy->expressions) + word(groupings, node.groupBy->grouping);
    }
    return text + (node.having ? " having " + render(node.having.get()) : "");
}

std::string body(const QueryBody& node)
{
    constexpr std::array operators{" union ", " unionall ", " except ", " intersect "};
    if (node.block)
        return block(*node.block);
    return "{" +
           joined(
               node.operands, [](const auto& operand) { return body(*operand); }, word(operators, node.op)) +
           "}";
}

std::string common(const std::vector<CommonTable>& list)
{
    return list.empty() ? "" : "with " + joined(list, [](const auto& each) {
                                   return each.name + names(each.columns) + render(*each.query);
                               }) + " ";
}

std::string arguments(const std::vector<Argument>& list)
{
    return joined(list, [](const auto& each) {
        return (each.name.empty() ? "" : each.name + "=") + render(each.value.get()) +
               (each.output ? " out" : "");
    });
}

std::string output(const std::optional<OutputClause>& node)
{
    return !node ? ""
                 : " output " + items(node->items) +
                       (node->into ? " into " + table(*node->into) + names(node->intoColumns) : "");
}

std::string insert(const InsertStatement& node)
{
    std::string text = common(node.commonTables) + "insert " + topText(node.top) + table(*node.target) +
                       names(node.columns) + output(node.output) + " ";
    switch (node.sourceKind) {
    case InsertSource::Values:
        return text + joined(
                          node.rows, [](const auto& row) { return "(" + expressions(row) + ")"; }, "");
    case InsertSource::Query:
        return text + render(*node.query);
    case InsertSource::Execute:
        return text + render(*node.execute);
    default:
        return text + "defaults";
    }
}

std::string assignment(const Assignment& node)
{
    const std::string qualifier = node.table.empty() ? "" : renderName(node.table) + ".";
    const std::string name = qualifier + node.column;
    return (node.variable.empty() || node.column.empty() ? node.variable : node.variable + "=") + name +
           word(assignments, node.op) + render(node.value.get());
}

std::string change(const std::vector<TableSourcePtr>& from, const ExpressionPtr& where,
                   const std::string& currentOf)
{
    return (from.empty() ? "" : " from " + tables(from)) + (where ? " where " + render(where.get()) : "") +
           (currentOf.empty() ? "" : " current of " + currentOf);
}

std::string execute(const ExecuteStatement& node)
{
    return std::string(node.keyword ? "exec " : "call ") +
           (node.returnVariable.empty() ? "" : node.returnVariable + "=") +
           (node.variable.empty() ? renderName(node.procedure) : node.variable) +
           (node.number ? ";" + std::to_string(node.number) : "") + "(" + arguments(node.arguments) + ")" +
           (node.recompile ? " recompile" : "");
}

std::string setOption(const SetOptionStatement& node)
{
    return "set " + joined(node.options, [](const auto& name) { return name; }) +
           (node.table.empty() ? "" : " " + renderName(node.table)) +
           (node.on ? (*node.on ? " on" : " off") : "") + (node.value ? " " + render(node.value.get()) : "");
}

std::string fetch(const FetchStatement& node)
{
    constexpr std::array directions{"next", "prior", "first", "last", "absolute", "relative"};
    return "fetch " + word(directions, node.direction) +
           (node.position ? " " + render(node.position.get()) : "") + " " + node.name +
           (node.into.empty() ? "" : " into " + names(node.into));
}

std::string declaration(const Declaration& node)
{
    if (node.kind != DeclarationKind::Scalar)
        return node.name +
               (node.table ? " table of " + std::to_string(node.table->columns.size()) : " cursor");
    return node.name + " " + type(node.type) + (node.initial ? "=" + render(node.initial.get()) : "");
}

std::string raiserror(const RaiserrorStatement& node)
{
    return "raiserror " + render(node.message.get()) +
           (node.severity ? ", " + render(node.severity.get()) + ", " + render(node.state.get()) : "") +
           " {" + expressions(node.arguments) + "}" + (node.noWait ? " nowait" : "") +
           (node.log ? " log" : "");
}

std::string transaction(const TransactionStatement& node)
{
    constexpr std::array actions{"begin", "commit", "rollback", "save"};
    return word(actions, node.action) + " tran" + (node.name.empty() ? "" : " " + node.name);
}

} // namespace

std::string render(const Expression* node)
{
    constexpr std::array signs{"+", "-", "~"};
    if (!node)
        return "none";
    switch (node->kind) {
    case ExpressionKind::Literal:
        return literal(as<Literal>(*node));
    case ExpressionKind::Variable:
        return as<Variable>(*node).name;
    case ExpressionKind::Column:
        return column(as<Column>(*node));
    case ExpressionKind::Unary:
        return word(signs, as<Unary>(*node).op) + render(as<Unary>(*node).operand.get());
    case ExpressionKind::Binary: {
        const auto& binary = as<Binary>(*node);
        return "(" + render(binary.left.get()) + " " + word(binaries, binary.op) + " " +
               render(binary.right.get()) + ")";
    }
    case ExpressionKind::Collate:
        return render(as<Collate>(*node).operand.get()) + " collate " + as<Collate>(*node).collation;
    case ExpressionKind::Case:
        return caseText(as<Case>(*node));
    case ExpressionKind::Cast: {
        const auto& cast = as<Cast>(*node);
        return std::string(cast.attempt ? "try:" : "") + type(cast.type) + "<" + render(cast.operand.get()) +
               (cast.style ? ", " + render(cast.style.get()) : "") + ">";
    }
    case ExpressionKind::Function:
        return function(as<Function>(*node));
    case ExpressionKind::Subquery:
        return render(*as<Subquery>(*node).query);
    case ExpressionKind::Default:
        return "default";
    case ExpressionKind::Comparison: {
        const auto& comparison = as<Comparison>(*node);
        return "(" + render(comparison.left.get()) + " " + word(comparisons, comparison.op) + " " +
               render(comparison.right.get()) + ")";
    }
    default:
        return condition(*node);
    }
}

std::string render(const Query& query)
{
    std::string text = "[" + common(query.commonTables) + body(*query.body);
    if (!query.orderBy.empty())
        text += " order " + orderText(query.orderBy);
    if (query.offset)
        text += " offset " + render(query.offset.get());
    if (query.fetch)
        text += " fetch " + render(query.fetch.get());
    return text + (query.forKind == ForKind::None ? "" : " for") + "]";
}

std::string render(const StatementList& list)
{
    return joined(
        list, [](const auto& node) { return render(*node); }, "; ");
}

std::string render(const Statement& node)
{
    switch (node.kind) {
    case StatementKind::Select:
        return render(as<SelectStatement>(node).query);
    case StatementKind::Insert:
        return insert(as<InsertStatement>(node));
    case StatementKind::Update: {
        const auto& update = as<UpdateStatement>(node);
        return common(update.commonTables) + "update " + topText(update.top) + table(*update.target) +
               " set " + joined(update.assignments, assignment) + output(update.output) +
               change(update.from, update.where, update.currentOf);
    }
    case StatementKind::Delete: {
        const auto& remove = as<DeleteStatement>(node);
        return common(remove.commonTables) + "delete " + topText(remove.top) + table(*remove.target) +
               output(remove.output) + change(remove.from, remove.where, remove.currentOf);
    }
    case StatementKind::Use:
        return "use " + as<UseStatement>(node).database;
    case StatementKind::Declare:
        return "declare " + joined(as<DeclareStatement>(node).declarations, declaration);
    case StatementKind::SetVariable: {
        const auto& set = as<SetVariableStatement>(node);
        return "set " + set.variable + word(assignments, set.op) +
               (set.cursor ? "cursor " + render(*set.cursor->query) : render(set.value.get()));
    }
    case StatementKind::SetOption:
        return setOption(as<SetOptionStatement>(node));
    case StatementKind::If: {
        const auto& choice = as<IfStatement>(node);
        return "if " + render(choice.condition.get()) + " {" + render(*choice.then) + "}" +
               (choice.otherwise ? " else {" + render(*choice.otherwise) + "}" : "");
    }
    case StatementKind::While:
        return "while " + render(as<WhileStatement>(node).condition.get()) + " {" +
               render(*as<WhileStatement>(node).body) + "}";
    case StatementKind::Break:
        return "break";
    case StatementKind::Continue:
        return "continue";
    case StatementKind::Block:
        return "{" + render(as<BlockStatement>(node).statements) + "}";
    case StatementKind::TryCatch:
        return "try {" + render(as<TryCatchStatement>(node).tryPart) + "} catch {" +
               render(as<TryCatchStatement>(node).catchPart) + "}";
    case StatementKind::Transaction:
        return transaction(as<TransactionStatement>(node));
    case StatementKind::Return:
        return "return" +
               (as<ReturnStatement>(node).value ? " " + render(as<ReturnStatement>(node).value.get()) : "");
    case StatementKind::Goto:
        return "goto " + as<GotoStatement>(node).label;
    case StatementKind::Label:
        return as<LabelStatement>(node).label + ":";
    case StatementKind::WaitFor:
        return std::string("wait ") + (as<WaitForStatement>(node).delay ? "for " : "until ") +
               render(as<WaitForStatement>(node).time.get());
    case StatementKind::Print:
        return "print " + render(as<PrintStatement>(node).value.get());
    case StatementKind::Raiserror:
        return raiserror(as<RaiserrorStatement>(node));
    case StatementKind::Throw:
        return "throw " + render(as<ThrowStatement>(node).number.get());
    case StatementKind::Execute:
        return execute(as<ExecuteStatement>(node));
    case StatementKind::ExecuteString:
        return "exec text " + render(as<ExecuteStringStatement>(node).text.get());
    case StatementKind::DeclareCursor: {
        const auto& cursor = as<DeclareCursorStatement>(node);
        return "cursor " + cursor.name + names(cursor.options) + (cursor.readOnly ? " read " : " ") +
               render(*cursor.query);
    }
    case StatementKind::Cursor: {
        constexpr std::array actions{"open ", "close ", "deallocate "};
        return word(actions, as<CursorStatement>(node).action) + as<CursorStatement>(node).name;
    }
    case StatementKind::Fetch:
        return fetch(as<FetchStatement>(node));
    case StatementKind::Dbcc:
        return "dbcc " + as<DbccStatement>(node).command + "(" +
               expressions(as<DbccStatement>(node).arguments) + ")";
    default:
        return "#" + std::to_string(static_cast<int>(node.kind));
    }
}

} // namespace practice::test
