#include "engine/catalog/database_options.h"

#include <algorithm>
#include <array>

namespace practice {
namespace {

constexpr std::array names{
    DatabaseOptionName{AutoClose, "AUTO_CLOSE", "IsAutoClose", "autoclose"},
    DatabaseOptionName{AutoShrink, "AUTO_SHRINK", "IsAutoShrink", "autoshrink"},
    DatabaseOptionName{AutoCreateStatistics, "AUTO_CREATE_STATISTICS", "IsAutoCreateStatistics",
                       "auto create statistics"},
    DatabaseOptionName{AutoUpdateStatistics, "AUTO_UPDATE_STATISTICS", "IsAutoUpdateStatistics",
                       "auto update statistics"},
    DatabaseOptionName{AnsiNullDefault, "ANSI_NULL_DEFAULT", "IsAnsiNullDefault", "ANSI null default"},
    DatabaseOptionName{AnsiNulls, "ANSI_NULLS", "IsAnsiNullsEnabled", "ANSI nulls"},
    DatabaseOptionName{AnsiPadding, "ANSI_PADDING", "IsAnsiPaddingEnabled", "ANSI padding"},
    DatabaseOptionName{AnsiWarnings, "ANSI_WARNINGS", "IsAnsiWarningsEnabled", "ANSI warnings"},
    DatabaseOptionName{ArithAbort, "ARITHABORT", "IsArithmeticAbortEnabled", "arithabort"},
    DatabaseOptionName{ConcatNullYieldsNull, "CONCAT_NULL_YIELDS_NULL", "IsNullConcat",
                       "concat null yields null"},
    DatabaseOptionName{NumericRoundAbort, "NUMERIC_ROUNDABORT", "IsNumericRoundAbortEnabled",
                       "numeric roundabort"},
    DatabaseOptionName{QuotedIdentifier, "QUOTED_IDENTIFIER", "IsQuotedIdentifiersEnabled",
                       "quoted identifier"},
    DatabaseOptionName{RecursiveTriggers, "RECURSIVE_TRIGGERS", "IsRecursiveTriggersEnabled",
                       "recursive triggers"},
    DatabaseOptionName{CursorCloseOnCommit, "CURSOR_CLOSE_ON_COMMIT", "IsCloseCursorsOnCommitEnabled",
                       "cursor close on commit"},
    DatabaseOptionName{LocalCursorDefault, "", "IsLocalCursorsDefault", "default to local cursor"},
    DatabaseOptionName{TornPageDetection, "TORN_PAGE_DETECTION", "IsTornPageDetectionEnabled",
                       "torn page detection"},
    DatabaseOptionName{DatabaseChaining, "DB_CHAINING", "IsDbChainingOn", "db chaining"},
    DatabaseOptionName{ReadOnly, "", "", "read only"},
    DatabaseOptionName{Offline, "", "", "offline"},
};

DatabaseProperty textProperty(std::string text)
{
    return {true, std::move(text), 0};
}

DatabaseProperty numberProperty(int number)
{
    return {false, "", number};
}

const char* recoveryName(RecoveryModel model)
{
    switch (model) {
    case RecoveryModel::Simple:
        return "SIMPLE";
    case RecoveryModel::BulkLogged:
        return "BULK_LOGGED";
    case RecoveryModel::Full:
        break;
    }
    return "FULL";
}

const char* accessName(UserAccess access)
{
    switch (access) {
    case UserAccess::Single:
        return "SINGLE_USER";
    case UserAccess::Restricted:
        return "RESTRICTED_USER";
    case UserAccess::Multi:
        break;
    }
    return "MULTI_USER";
}

} // namespace

std::span<const DatabaseOptionName> databaseOptionNames()
{
    return names;
}

std::optional<DatabaseProperty> databaseProperty(const Database& database, const std::string& property)
{
    constexpr int sortOrder = 52; ///< dictionary order, ignoring case, code page 1252
    constexpr int internalVersion = 539;
    constexpr int localeId = 1033;
    const auto is = [&](const char* name) { return sameName(property, name); };
    if (is("Status"))
        return textProperty((database.options & Restoring) != 0 ? "RESTORING"
                            : (database.options & Offline) != 0 ? "OFFLINE"
                                                                : "ONLINE");
    if (is("Recovery"))
        return textProperty(recoveryName(database.recovery));
    if (is("Collation"))
        return textProperty(database.collation);
    if (is("UserAccess"))
        return textProperty(accessName(database.access));
    if (is("Updateability"))
        return textProperty((database.options & ReadOnly) != 0 ? "READ_ONLY" : "READ_WRITE");
    if (is("SQLSortOrder"))
        return numberProperty(sortOrder);
    if (is("Version"))
        return numberProperty(internalVersion);
    if (is("LCID"))
        return numberProperty(localeId);
    if (is("ComparisonStyle"))
        return numberProperty(196609); // case, kana and width do not count
    for (const char* never : {"IsFulltextEnabled", "IsInStandBy", "IsMergePublished", "IsPublished",
                              "IsSubscribed", "IsSyncWithBackup", "IsAutoCreateStatisticsIncremental"}) {
        if (is(never))
            return numberProperty(0);
    }
    const auto found = std::find_if(names.begin(), names.end(), [&](const auto& name) {
        return *name.property != 0 && is(name.property);
    });
    if (found == names.end())
        return std::nullopt;
    return numberProperty(int((database.options & found->option) != 0));
}

} // namespace practice
