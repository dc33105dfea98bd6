// The functions of dates and times.
#include "engine/binder/function_binder.h"
#include "engine/functions/date_functions.h"
#include "engine/messages/errors.h"
#include "types/text_encoding.h"

namespace practice {

namespace {

SqlType dateTime2(std::uint8_t scale)
{
    return {TypeId::DateTime2, 8, 0, scale};
}
SqlType dateType()
{
    return {TypeId::Date, 3};
}

/// The first argument, which is a word and no column.
DatePart partOf(const FunctionCall& call)
{
    const auto* word = ast::tryAs<ast::Column>(call.node().arguments.front().get());
    const std::string function = lowerCase(call.node().name.object);
    if (word == nullptr)
        raise(1023, {"1", function});
    const auto part = datePartByName(word->name);
    if (!part)
        raise(155, {word->name, function});
    return *part;
}

/// An argument of a type with a date; text and numbers become datetime.
Term point(const FunctionCall& call, std::size_t i)
{
    Term given = call.term(i);
    if (isDateTime(given.type.id))
        return given;
    return convertTerm(given, dateTimeType(), Conversion::Implicit);
}

std::string partText(DatePart part)
{
    return std::to_string(static_cast<int>(part));
}

Term firstDay(const FunctionCall& call)
{
    return call.translator().global("@@datefirst", {TypeId::TinyInt, 1}, false);
}

void requirePart(DatePart part, const SqlType& type, const char* function)
{
    const bool ofDay = part < DatePart::Hour;
    const bool unfit = (type.id == TypeId::Date && !ofDay) || (type.id == TypeId::Time && ofDay);
    if (unfit)
        raise(9810, {datePartName(part), function, typeName(type.id)});
}

Term dateAdd(const FunctionCall& call)
{
    const DatePart part = partOf(call);
    const Term count = convertTerm(call.term(1), intType(), Conversion::Explicit);
    const Term value = point(call, 2);
    requirePart(part, value.type, "dateadd");
    if (part == DatePart::IsoWeek || part == DatePart::TimeZone)
        raise(9810, {datePartName(part), "dateadd", typeName(value.type.id)});
    return resultTerm(callText("t_dateadd", {partText(part), count.sql, value.sql, typeArgument(value.type)}),
                      value.type);
}

Term difference(const FunctionCall& call, bool big)
{
    const DatePart part = partOf(call);
    const Term from = point(call, 1);
    const Term to = point(call, 2);
    return resultTerm(callText("t_datediff", {partText(part), from.sql, to.sql, typeArgument(from.type),
                                              typeArgument(to.type), big ? "1" : "0"}),
                      big ? bigIntType() : intType());
}

Term dateDiff(const FunctionCall& call)
{
    return difference(call, false);
}
Term dateDiffBig(const FunctionCall& call)
{
    return difference(call, true);
}

Term partNumber(const FunctionCall& call, DatePart part, std::size_t argument)
{
    const Term value = point(call, argument);
    requirePart(part, value.type, "datepart");
    return resultTerm(
        callText("t_datepart", {partText(part), value.sql, typeArgument(value.type), firstDay(call).sql}),
        intType(), value.nullable);
}

Term datePart(const FunctionCall& call)
{
    return partNumber(call, partOf(call), 1);
}
Term year(const FunctionCall& call)
{
    return partNumber(call, DatePart::Year, 0);
}
Term month(const FunctionCall& call)
{
    return partNumber(call, DatePart::Month, 0);
}
Term day(const FunctionCall& call)
{
    return partNumber(call, DatePart::Day, 0);
}

Term dateName(const FunctionCall& call)
{
    const DatePart part = partOf(call);
    const Term value = point(call, 1);
    requirePart(part, value.type, "datename");
    return resultTerm(
        callText("t_datename", {partText(part), value.sql, typeArgument(value.type), firstDay(call).sql}),
        nVarCharType(30), value.nullable);
}

Term endOfMonth(const FunctionCall& call)
{
    const Term date = convertTerm(point(call, 0), dateType(), Conversion::Implicit);
    const std::string months = call.has(1) ? call.integer(1).sql : "0";
    return resultTerm(callText("t_eomonth", {date.sql, months}), dateType());
}

Term isDate(const FunctionCall& call)
{
    const Term given = call.term(0);
    if (given.type.id == TypeId::DateTime || given.type.id == TypeId::SmallDateTime)
        return resultTerm("(" + given.sql + " IS NOT NULL)", intType(), false);
    return resultTerm(callText("t_isdate", {call.text(0).sql}), intType(), false);
}

Term dateFromParts(const FunctionCall& call)
{
    return resultTerm(
        callText("t_datefromparts", {call.integer(0).sql, call.integer(1).sql, call.integer(2).sql}),
        dateType());
}

Term dateTimeFromParts(const FunctionCall& call)
{
    std::string arguments;
    for (std::size_t i = 0; i < call.count(); ++i)
        arguments += (i == 0 ? "" : ",") + call.integer(i).sql;
    return resultTerm("t_datetimefromparts(" + arguments + ")", dateTimeType());
}

Term getDate(const FunctionCall& call)
{
    return call.translator().global("getdate()", dateTimeType(), false);
}
Term getUtcDate(const FunctionCall& call)
{
    return call.translator().global("getutcdate()", dateTimeType(), false);
}
Term sysDateTime(const FunctionCall& call)
{
    return call.translator().global("sysdatetime()", dateTime2(7), false);
}
Term sysUtcDateTime(const FunctionCall& call)
{
    return call.translator().global("sysutcdatetime()", dateTime2(7), false);
}
Term sysDateTimeOffset(const FunctionCall& call)
{
    return call.translator().global("sysdatetimeoffset()", {TypeId::DateTimeOffset, 10, 0, 7}, false);
}

constexpr FunctionEntry dateFunctions[] = {
    {"current_timestamp", 0, 0, getDate},
    {"dateadd", 3, 3, dateAdd},
    {"datediff", 3, 3, dateDiff},
    {"datediff_big", 3, 3, dateDiffBig},
    {"datefromparts", 3, 3, dateFromParts},
    {"datename", 2, 2, dateName},
    {"datepart", 2, 2, datePart},
    {"datetimefromparts", 7, 7, dateTimeFromParts},
    {"day", 1, 1, day},
    {"eomonth", 1, 2, endOfMonth},
    {"getdate", 0, 0, getDate},
    {"getutcdate", 0, 0, getUtcDate},
    {"isdate", 1, 1, isDate},
    {"month", 1, 1, month},
    {"sysdatetime", 0, 0, sysDateTime},
    {"sysdatetimeoffset", 0, 0, sysDateTimeOffset},
    {"sysutcdatetime", 0, 0, sysUtcDateTime},
    {"year", 1, 1, year},
};

} // namespace

std::span<const FunctionEntry> dateFunctionEntries()
{
    return dateFunctions;
}

} // namespace practice
