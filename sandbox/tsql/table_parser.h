// Columns, constraints, and the option lists that many statements share.
#pragma once

#include "tsql/ast_table.h"
#include "tsql/query_parser.h"

namespace practice {

class TableParser : public QueryParser
{
public:
    using QueryParser::QueryParser;

protected:
    enum class ElementPlace : std::uint8_t
    {
        CreateTable,
        AlterTable
    };

    /// Columns and constraints by comma, to the last.
    [[nodiscard]] ast::TableElements tableElements(ElementPlace place);
    /// The same in parentheses.
    [[nodiscard]] ast::TableElements tableBody();
    /// Type, collation and the rest behind a column's name.
    void columnType(ast::ColumnDefinition& column);
    [[nodiscard]] std::vector<ast::IndexColumn> indexColumns();
    /// WITH ..., or nothing.
    /// @param several the old form may go on behind a comma
    [[nodiscard]] ast::IndexOptions indexOptions(bool several);
    /// ON filegroup, or "".
    [[nodiscard]] std::string onFileGroup();
    /// name [= value] [, ...]
    [[nodiscard]] std::vector<ast::NamedOption> namedOptions();
    [[nodiscard]] ast::NamedOption namedOption();

private:
    void element(ast::TableElements& elements, ElementPlace place);
    void column(ast::TableElements& elements);
    /// @return false when nothing of a column starts here
    bool columnPart(ast::ColumnDefinition& column, ast::TableElements& elements);
    [[nodiscard]] ast::IdentityClause identity();
    [[nodiscard]] std::string signedNumber();
    [[nodiscard]] bool atConstraint() const;
    [[nodiscard]] bool lacksType() const;
    [[nodiscard]] ast::TableConstraint constraint(ElementPlace place, bool ofColumn);
    void keyConstraint(ast::TableConstraint& constraint, bool ofColumn);
    void foreignKey(ast::TableConstraint& constraint, bool ofColumn);
    void checkConstraint(ast::TableConstraint& constraint);
    void defaultConstraint(ast::TableConstraint& constraint, bool ofColumn);
    void referentialAction(ast::TableConstraint& constraint);
    bool notForReplication();
    void indexOption(ast::IndexOptions& options);
    [[nodiscard]] static bool isIndexOption(const Token& token);
};

} // namespace practice
