// Reads a batch of Transact-SQL into its syntax tree.
#pragma once

#include "tsql/ast.h"
#include "tsql/syntax_error.h"

#include <string>
#include <string_view>

namespace practice {

struct ParserOptions
{
    /// "x" is a name; otherwise a string. SET QUOTED_IDENTIFIER in the batch changes it from there on.
    bool quotedIdentifier = true;
};

/// Parses the whole of a batch; an empty one has no statements.
/// @throws SyntaxError
[[nodiscard]] ast::Batch parseBatch(std::string_view text, const ParserOptions& options = {});

/// Parses one expression or one condition that stands alone: a stored default, computed column or
/// CHECK constraint.
/// @throws SyntaxError
[[nodiscard]] ast::ExpressionPtr parseExpression(std::string_view text, const ParserOptions& options = {});
[[nodiscard]] ast::ExpressionPtr parseCondition(std::string_view text, const ParserOptions& options = {});

/// Parses a type that stands alone, as procedures get it ("varchar(20)").
/// @throws SyntaxError
[[nodiscard]] ast::DataType parseDataType(std::string_view text);

/// Parses a name of up to four parts that stands alone ("dbo.[my table]"), as object_id gets it. Bare
/// parts may hold what they could not hold in a statement: blanks, and words that are reserved.
/// @return an empty name when the text is none
[[nodiscard]] ast::ObjectName parseObjectName(std::string_view text);

/// A part of a name as a script writes it: as it stands when it can stand bare, else in brackets.
[[nodiscard]] std::string renderName(std::string_view name);
/// All parts that are present, joined by points: "db..t" keeps its empty part.
[[nodiscard]] std::string renderName(const ast::ObjectName& name);

/// True for the words that no name may be unless quoted. Any case.
[[nodiscard]] bool isReservedWord(std::string_view word);

} // namespace practice
