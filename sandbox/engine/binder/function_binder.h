// The built-in functions as a statement binds them: arguments counted and converted, the result
// typed, the call put into SQLite's dialect.
#pragma once

#include "engine/binder/translator.h"

#include <span>
#include <string_view>

namespace practice {

/// One call that is being bound.
class FunctionCall
{
public:
    FunctionCall(Translator& translator, const ast::Function& node, Scope& scope)
        : translator_(translator), node_(node), scope_(scope)
    {}

    [[nodiscard]] Translator& translator() const { return translator_; }
    [[nodiscard]] const ast::Function& node() const { return node_; }
    [[nodiscard]] Scope& scope() const { return scope_; }
    [[nodiscard]] std::size_t count() const { return node_.arguments.size(); }
    [[nodiscard]] bool has(std::size_t i) const { return i < count(); }

    [[nodiscard]] Term term(std::size_t i) const
    {
        return translator_.expression(*node_.arguments[i], scope_);
    }
    [[nodiscard]] std::vector<Term> terms() const { return translator_.terms(node_.arguments, scope_); }
    [[nodiscard]] Term converted(std::size_t i, const SqlType& type) const
    {
        return convertTerm(term(i), type, Conversion::Implicit);
    }
    /// As text; what is no text yet becomes varchar.
    [[nodiscard]] Term text(std::size_t i) const;
    [[nodiscard]] Term integer(std::size_t i) const { return converted(i, intType()); }
    [[nodiscard]] Term real(std::size_t i) const { return converted(i, floatType()); }

private:
    Translator& translator_;
    const ast::Function& node_;
    Scope& scope_;
};

using FunctionBinder = Term (*)(const FunctionCall&);

struct FunctionEntry
{
    std::string_view name; ///< lower case
    int least;             ///< arguments
    int most;              ///< -1 for any number
    FunctionBinder bind;
};

[[nodiscard]] std::span<const FunctionEntry> textFunctionEntries();
[[nodiscard]] std::span<const FunctionEntry> numberFunctionEntries();
[[nodiscard]] std::span<const FunctionEntry> dateFunctionEntries();
[[nodiscard]] std::span<const FunctionEntry> systemFunctionEntries();

[[nodiscard]] bool isAggregateName(std::string_view lowerCaseName);
[[nodiscard]] bool isRankingName(std::string_view lowerCaseName);
[[nodiscard]] Term bindAggregate(const FunctionCall& call, std::string_view name);
[[nodiscard]] Term bindRanking(const FunctionCall& call, std::string_view name);
/// The text of OVER (...), "" without one.
[[nodiscard]] std::string windowText(const FunctionCall& call);

/// A varchar or nvarchar as `like` is, `length` long, with its collation.
[[nodiscard]] Term textResult(std::string sql, const Term& like, int length, bool nullable = true);
[[nodiscard]] SqlType variableText(const SqlType& type, int length);
[[nodiscard]] std::optional<std::int64_t> constantInteger(const Term& term);
[[nodiscard]] std::optional<std::string> constantText(const Term& term);

} // namespace practice
