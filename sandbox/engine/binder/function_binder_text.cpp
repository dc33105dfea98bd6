// The functions of text.
#include "engine/binder/function_binder.h"
#include "engine/messages/errors.h"
#include "engine/store/collation.h"

#include <algorithm>

namespace practice {

namespace {

int longest(const SqlType& type)
{
    return isUnicode(type.id) ? 4000 : 8000;
}

const char* caseArgument(const Term& term)
{
    return isCaseSensitive(term.collation) ? "1" : "0";
}

bool isBytes(const Term& term)
{
    return isBinary(term.type.id);
}

/// function(text) with a text of the same kind as its result.
template <const char* const& function>
Term sameText(const FunctionCall& call)
{
    const Term text = call.text(0);
    return textResult(callText(function, {text.sql}), text, text.type.length, text.nullable);
}

constexpr const char* upperFunction = "t_upper";
constexpr const char* lowerFunction = "t_lower";
constexpr const char* ltrimFunction = "t_ltrim";
constexpr const char* rtrimFunction = "t_rtrim";
constexpr const char* reverseFunction = "t_reverse";

Term len(const FunctionCall& call)
{
    const Term given = call.term(0);
    if (isBytes(given))
        return resultTerm(callText("t_blen", {given.sql}), intType(), given.nullable);
    if (isLegacyLob(given.type.id))
        raise(8116, {typeName(given.type.id), "1", "len"});
    const Term text = call.text(0);
    const bool big = text.type.length == maxLength;
    return resultTerm(callText("t_len", {text.sql}), big ? bigIntType() : intType(), text.nullable);
}

Term dataLength(const FunctionCall& call)
{
    const Term given = call.term(0);
    const bool big = given.type.length == maxLength;
    return resultTerm(callText("t_datalength", {given.sql, typeArgument(given.type)}),
                      big ? bigIntType() : intType(), given.nullable);
}

Term substring(const FunctionCall& call)
{
    const Term given = call.term(0);
    const Term start = call.integer(1);
    const Term count = call.integer(2);
    const auto known = constantInteger(count);
    const int room =
        known && *known >= 0 && *known < longest(given.type) ? static_cast<int>(*known) : given.type.length;
    if (isBytes(given)) {
        return resultTerm(callText("t_bsubstring", {given.sql, start.sql, count.sql}),
                          {TypeId::VarBinary, std::max(1, room)});
    }
    if (!isCharacter(given.type.id) && given.type.id != TypeId::Null)
        raise(8116, {typeName(given.type.id), "1", "substring"});
    const Term text = call.text(0);
    const bool shorter = text.type.length == maxLength || room < text.type.length;
    return textResult(callText("t_substring", {text.sql, start.sql, count.sql}), text,
                      shorter ? room : text.type.length);
}

Term edge(const FunctionCall& call, const char* function)
{
    const Term text = call.text(0);
    const Term count = call.integer(1);
    const auto known = constantInteger(count);
    int room = text.type.length;
    if (known && *known >= 0 && (room == maxLength || *known < room))
        room = static_cast<int>(std::min<std::int64_t>(*known, longest(text.type)));
    return textResult(callText(function, {text.sql, count.sql}), text, room);
}

Term left(const FunctionCall& call)
{
    return edge(call, "t_left");
}
Term right(const FunctionCall& call)
{
    return edge(call, "t_right");
}

Term trim(const FunctionCall& call)
{
    const Term text = call.text(call.count() - 1);
    const std::string characters = call.has(1) ? call.text(0).sql : "' '";
    return textResult(callText("t_trim", {text.sql, characters}), text, text.type.length, text.nullable);
}

Term replace(const FunctionCall& call)
{
    const Term text = call.text(0);
    const Term part = call.text(1);
    const Term substitute = call.text(2);
    const Term merged = mergedCollation(mergedCollation(text, part, "replace"), substitute, "replace");
    const bool unicode = isUnicode(text.type.id) || isUnicode(part.type.id) || isUnicode(substitute.type.id);
    Term like = text;
    like.type.id = unicode ? TypeId::NVarChar : TypeId::VarChar;
    return textResult(callText("t_replace", {text.sql, part.sql, substitute.sql, caseArgument(merged)}), like,
                      text.type.length == maxLength ? maxLength : longest(like.type));
}

Term stuff(const FunctionCall& call)
{
    const Term text = call.text(0);
    const Term insertion = call.text(3);
    Term like = text;
    if (isUnicode(insertion.type.id))
        like.type.id = TypeId::NVarChar;
    const int length = text.type.length == maxLength || insertion.type.length == maxLength
                           ? maxLength
                           : text.type.length + insertion.type.length;
    return textResult(
        callText("t_stuff", {text.sql, call.integer(1).sql, call.integer(2).sql, insertion.sql}), like,
        length);
}

Term charIndex(const FunctionCall& call)
{
    const Term part = call.text(0);
    const Term text = call.text(1);
    const Term merged = mergedCollation(part, text, "charindex");
    const std::string start = call.has(2) ? call.integer(2).sql : "1";
    return resultTerm(callText("t_charindex", {part.sql, text.sql, start, caseArgument(merged)}),
                      text.type.length == maxLength ? bigIntType() : intType());
}

Term patIndex(const FunctionCall& call)
{
    const Term pattern = call.text(0);
    const Term text = call.text(1);
    const Term merged = mergedCollation(pattern, text, "patindex");
    return resultTerm(callText("t_patindex", {pattern.sql, text.sql, caseArgument(merged)}),
                      text.type.length == maxLength ? bigIntType() : intType());
}

Term replicate(const FunctionCall& call)
{
    const Term text = call.text(0);
    const Term times = call.integer(1);
    const bool unlimited = text.type.length == maxLength;
    const auto known = constantInteger(times);
    int length = longest(text.type);
    if (unlimited)
        length = maxLength;
    else if (known && *known >= 0 && *known * text.type.length < length)
        length = static_cast<int>(*known) * text.type.length;
    return textResult(callText("t_replicate", {text.sql, times.sql, unlimited ? "1" : "0"}), text, length);
}

Term space(const FunctionCall& call)
{
    const Term count = call.integer(0);
    const auto known = constantInteger(count);
    const int length = known && *known > 0 && *known < 8000 ? static_cast<int>(*known) : 8000;
    return resultTerm(callText("t_space", {count.sql}), varCharType(length));
}

Term str(const FunctionCall& call)
{
    const Term length = call.has(1) ? call.integer(1) : integerTerm(10);
    const std::string decimals = call.has(2) ? call.integer(2).sql : "0";
    const auto known = constantInteger(length);
    return resultTerm(callText("t_str", {call.real(0).sql, length.sql, decimals}),
                      varCharType(known && *known > 0 && *known <= 8000 ? static_cast<int>(*known) : 8000));
}

Term character(const FunctionCall& call)
{
    return resultTerm(callText("t_char", {call.integer(0).sql}), {TypeId::Char, 1});
}

Term nationalCharacter(const FunctionCall& call)
{
    return resultTerm(callText("t_nchar", {call.integer(0).sql}), {TypeId::NChar, 1});
}

Term ascii(const FunctionCall& call)
{
    return resultTerm(callText("t_ascii", {call.text(0).sql}), intType());
}
Term unicode(const FunctionCall& call)
{
    return resultTerm(callText("t_unicode", {call.text(0).sql}), intType());
}

Term quoteName(const FunctionCall& call)
{
    const std::string quote = call.has(1) ? call.text(1).sql : "'['";
    return resultTerm(callText("t_quotename", {call.text(0).sql, quote}), nVarCharType(258));
}

struct Joined
{
    std::string arguments;
    Term like;
    int length = 0;
};

Joined joinedTexts(const FunctionCall& call, std::size_t from)
{
    Joined joined;
    joined.like = textTerm("");
    for (std::size_t i = from; i < call.count(); ++i) {
        const Term text = call.text(i);
        joined.arguments += "," + text.sql;
        if (isUnicode(text.type.id))
            joined.like.type.id = TypeId::NVarChar;
        joined.length = joined.length == maxLength || text.type.length == maxLength
                            ? maxLength
                            : joined.length + text.type.length;
    }
    return joined;
}

Term concat(const FunctionCall& call)
{
    const Joined joined = joinedTexts(call, 0);
    return textResult("t_concatws(''" + joined.arguments + ")", joined.like, joined.length, false);
}

Term concatWithSeparator(const FunctionCall& call)
{
    const Joined joined = joinedTexts(call, 1);
    const Term separator = call.text(0);
    Term like = joined.like;
    if (isUnicode(separator.type.id))
        like.type.id = TypeId::NVarChar;
    return textResult("t_concatws(" + separator.sql + joined.arguments + ")", like,
                      joined.length == maxLength ? maxLength : longest(like.type), false);
}

Term soundex(const FunctionCall& call)
{
    return resultTerm(callText("t_soundex", {call.text(0).sql}), varCharType(4));
}

Term difference(const FunctionCall& call)
{
    return resultTerm(callText("t_difference", {call.text(0).sql, call.text(1).sql}), intType());
}

Term parseName(const FunctionCall& call)
{
    return resultTerm(callText("t_parsename", {call.text(0).sql, call.integer(1).sql}), sysNameType());
}

constexpr FunctionEntry textFunctions[] = {
    {"ascii", 1, 1, ascii},
    {"char", 1, 1, character},
    {"charindex", 2, 3, charIndex},
    {"concat", 2, -1, concat},
    {"concat_ws", 3, -1, concatWithSeparator},
    {"datalength", 1, 1, dataLength},
    {"difference", 2, 2, difference},
    {"left", 2, 2, left},
    {"len", 1, 1, len},
    {"lower", 1, 1, sameText<lowerFunction>},
    {"ltrim", 1, 1, sameText<ltrimFunction>},
    {"nchar", 1, 1, nationalCharacter},
    {"parsename", 2, 2, parseName},
    {"patindex", 2, 2, patIndex},
    {"quotename", 1, 2, quoteName},
    {"replace", 3, 3, replace},
    {"replicate", 2, 2, replicate},
    {"reverse", 1, 1, sameText<reverseFunction>},
    {"right", 2, 2, right},
    {"rtrim", 1, 1, sameText<rtrimFunction>},
    {"soundex", 1, 1, soundex},
    {"space", 1, 1, space},
    {"str", 1, 3, str},
    {"stuff", 4, 4, stuff},
    {"substring", 3, 3, substring},
    {"trim", 1, 2, trim},
    {"unicode", 1, 1, unicode},
    {"upper", 1, 1, sameText<upperFunction>},
};

} // namespace

std::span<const FunctionEntry> textFunctionEntries()
{
    return textFunctions;
}

} // namespace practice
