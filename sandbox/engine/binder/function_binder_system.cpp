// The functions of types, objects, principals and the session.
#include "engine/binder/function_binder.h"
#include "engine/messages/errors.h"

namespace practice {

namespace {

/// A value that the session knows and that needs no argument.
Term known(const FunctionCall& call, const char* name, const SqlType& type)
{
    return call.translator().global(name, type);
}

/// function(text or number, ...) answered by the session; texts and integers as they are.
Term asked(const FunctionCall& call, const char* function, const SqlType& type)
{
    std::string arguments;
    for (std::size_t i = 0; i < call.count(); ++i) {
        const Term given = call.term(i);
        const Term usable = isInteger(given.type.id) || isCharacter(given.type.id) ? given
                            : isNumeric(given.type.id)                             ? call.integer(i)
                            : isBinary(given.type.id)                              ? given
                                                                                   : call.text(i);
        arguments += (i == 0 ? "" : ",") + usable.sql;
    }
    return resultTerm(std::string(function) + "(" + arguments + ")", type);
}

/// Texts are hashed as they are stored: in the code page or as UTF-16.
Term hashBytes(const FunctionCall& call)
{
    const Term data = call.term(1);
    const TypeId id = data.type.id;
    if (id != TypeId::Null && (isLegacyLob(id) || !(isCharacter(id) || isBinary(id))))
        raise(8116, {typeName(id), "2", "hashbytes"});
    const Term bytes = convertTerm(data, {TypeId::VarBinary, maxLength}, Conversion::Explicit);
    return resultTerm(callText("t_hashbytes", {call.text(0).sql, bytes.sql}), {TypeId::VarBinary, 8000});
}

Term variantProperty(const FunctionCall& call)
{
    const SqlType variant{TypeId::SqlVariant, 8016};
    const Term given = call.term(0);
    const Term held = convertTerm(given, variant, Conversion::Implicit);
    const std::string collation = given.collation.empty() ? defaultCollation : given.collation;
    return resultTerm(callText("t_variantproperty", {held.sql, call.text(1).sql, quotedText(collation)}),
                      variant);
}

Term isNull(const FunctionCall& call)
{
    const Term first = call.term(0);
    const Term second = call.term(1);
    const SqlType type = first.type.id == TypeId::Null ? second.type : first.type;
    Term substitute = convertTerm(second, type, Conversion::Implicit);
    if (first.type.id == TypeId::Null)
        return substitute;
    Term result = first;
    result.constant.reset();
    result.integerLiteral = false;
    result.collated = false;
    result.nullable = first.nullable && second.nullable;
    result.sql = "ifnull(" + first.sql + "," + substitute.sql + ")";
    return result;
}

Term coalesce(const FunctionCall& call)
{
    const std::vector<Term> values = call.terms();
    const SqlType type = commonType(values);
    if (type.id == TypeId::Null)
        raise(4127);
    Term result = resultTerm("coalesce(", type, false);
    for (const Term& value : values) {
        result.sql +=
            (&value == values.data() ? "" : ",") + convertTerm(value, type, Conversion::Implicit).sql;
        result.nullable = result.nullable || value.nullable;
        if (isCharacter(value.type.id) && isCharacter(type.id)) {
            const Term merged = mergedCollation(result, value, "coalesce");
            result.collation = merged.collation;
            result.coercibility = merged.coercibility;
        }
    }
    result.sql += ")";
    return result;
}

Term nullIf(const FunctionCall& call)
{
    const Term first = call.term(0);
    const Term second = call.term(1);
    if (first.type.id == TypeId::Null)
        raise(4151);
    Term result = first;
    result.constant.reset();
    result.integerLiteral = false;
    result.collated = false;
    result.nullable = true;
    result.sql = "CASE WHEN " + compareTerms(first, second, "=") + " THEN NULL ELSE " + first.sql + " END";
    return result;
}

Term choose(const FunctionCall& call)
{
    std::vector<Term> values = call.terms();
    const Term place = convertTerm(values.front(), intType(), Conversion::Implicit);
    values.erase(values.begin());
    const SqlType type = commonType(values);
    std::string text = "CASE " + place.sql;
    for (std::size_t i = 0; i < values.size(); ++i)
        text += " WHEN " + std::to_string(i + 1) + " THEN " +
                convertTerm(values[i], type, Conversion::Implicit).sql;
    return resultTerm(text + " END", type);
}

Term checksum(const FunctionCall& call)
{
    std::string arguments;
    if (call.node().star) {
        for (const Source& source : call.scope().sources) {
            for (const SourceColumn& column : source.columns) {
                call.translator().noteRead(source, column);
                arguments += (arguments.empty() ? "" : ",") + column.term.sql;
            }
        }
    }
    for (std::size_t i = 0; i < call.count(); ++i)
        arguments += (i == 0 ? "" : ",") + call.term(i).sql;
    return resultTerm("t_checksum(" + arguments + ")", intType(), false);
}

Term newId(const FunctionCall&)
{
    return resultTerm("t_newid()", {TypeId::UniqueIdentifier, 16}, false);
}

constexpr SqlType widestNumeric = widestDecimal(TypeId::Numeric);

Term scopeIdentity(const FunctionCall& call)
{
    return known(call, "scope_identity()", widestNumeric);
}

Term identity(const FunctionCall& call, const char* function)
{
    return convertTerm(asked(call, function, bigIntType()), widestNumeric, Conversion::Implicit);
}

Term identCurrent(const FunctionCall& call)
{
    return identity(call, "s_ident_current");
}
Term identSeed(const FunctionCall& call)
{
    return identity(call, "s_ident_seed");
}
Term identIncrement(const FunctionCall& call)
{
    return identity(call, "s_ident_incr");
}

Term grouping(const FunctionCall&)
{
    return integerTerm(0);
}

template <const char* const& name, TypeId id, int length>
Term sessionValue(const FunctionCall& call)
{
    return known(call, name, {id, length});
}

template <const char* const& function, TypeId id, int length>
Term sessionAnswer(const FunctionCall& call)
{
    return asked(call, function, {id, length});
}

/// Without an argument what the session is in, with one what it is asked about.
template <const char* const& value, const char* const& function, TypeId id, int length>
Term valueOrAnswer(const FunctionCall& call)
{
    return call.has(0) ? asked(call, function, {id, length}) : known(call, value, {id, length});
}

constexpr const char* appName = "app_name()";
constexpr const char* hostName = "host_name()";
constexpr const char* hostId = "host_id()";
constexpr const char* userNameValue = "user_name()";
constexpr const char* userIdValue = "user_id()";
constexpr const char* loginNameValue = "suser_sname()";
constexpr const char* loginIdValue = "suser_id()";
constexpr const char* loginSidValue = "suser_sid()";
constexpr const char* databaseNameValue = "db_name()";
constexpr const char* databaseIdValue = "db_id()";
constexpr const char* schemaNameValue = "schema_name()";
constexpr const char* schemaIdValue = "schema_id()";
constexpr const char* transactionState = "xact_state()";
constexpr const char* errorNumber = "error_number()";
constexpr const char* errorMessage = "error_message()";
constexpr const char* errorSeverity = "error_severity()";
constexpr const char* errorState = "error_state()";
constexpr const char* errorLine = "error_line()";
constexpr const char* errorProcedure = "error_procedure()";
constexpr const char* contextInfo = "context_info()";
constexpr const char* ansiNull = "getansinull()";
constexpr const char* originalLogin = "original_login()";

constexpr const char* userName = "s_user_name";
constexpr const char* userId = "s_user_id";
constexpr const char* loginName = "s_suser_name";
constexpr const char* loginId = "s_suser_id";
constexpr const char* loginSid = "s_suser_sid";
constexpr const char* databaseName = "s_db_name";
constexpr const char* databaseId = "s_db_id";
constexpr const char* schemaName = "s_schema_name";
constexpr const char* schemaId = "s_schema_id";
constexpr const char* objectId = "s_object_id";
constexpr const char* objectName = "s_object_name";
constexpr const char* objectProperty = "s_objectproperty";
constexpr const char* columnName = "s_col_name";
constexpr const char* columnLength = "s_col_length";
constexpr const char* columnProperty = "s_columnproperty";
constexpr const char* indexColumn = "s_index_col";
constexpr const char* indexProperty = "s_indexproperty";
constexpr const char* indexKeyProperty = "s_indexkey_property";
constexpr const char* typeProperty = "s_typeproperty";
constexpr const char* typeNameOf = "s_type_name";
constexpr const char* typeIdOf = "s_type_id";
constexpr const char* databaseProperty = "s_databaseproperty";
constexpr const char* databasePropertyEx = "s_databasepropertyex";
constexpr const char* fileName = "s_file_name";
constexpr const char* fileId = "s_file_id";
constexpr const char* fileGroupName = "s_filegroup_name";
constexpr const char* fileGroupId = "s_filegroup_id";
constexpr const char* serverProperty = "s_serverproperty";
constexpr const char* isMember = "s_is_member";
constexpr const char* isServerRole = "s_is_srvrolemember";
constexpr const char* hasAccess = "s_has_dbaccess";
constexpr const char* permissions = "s_permissions";
constexpr const char* statsDate = "s_stats_date";
constexpr const char* collationProperty = "s_collationproperty";
constexpr const char* objectDefinition = "s_object_definition";

constexpr TypeId name = TypeId::NVarChar;
constexpr int nameLength = 128;

constexpr FunctionEntry systemFunctions[] = {
    {"app_name", 0, 0, sessionValue<appName, name, nameLength>},
    {"checksum", 0, -1, checksum},
    {"binary_checksum", 0, -1, checksum},
    {"choose", 2, -1, choose},
    {"coalesce", 2, -1, coalesce},
    {"col_length", 2, 2, sessionAnswer<columnLength, TypeId::SmallInt, 2>},
    {"col_name", 2, 2, sessionAnswer<columnName, name, nameLength>},
    {"collationproperty", 2, 2, sessionAnswer<collationProperty, TypeId::Int, 4>},
    {"columnproperty", 3, 3, sessionAnswer<columnProperty, TypeId::Int, 4>},
    {"context_info", 0, 0, sessionValue<contextInfo, TypeId::VarBinary, 128>},
    {"current_user", 0, 0, sessionValue<userNameValue, name, nameLength>},
    {"databaseproperty", 2, 2, sessionAnswer<databaseProperty, TypeId::Int, 4>},
    {"databasepropertyex", 2, 2, sessionAnswer<databasePropertyEx, TypeId::SqlVariant, 8016>},
    {"db_id", 0, 1, valueOrAnswer<databaseIdValue, databaseId, TypeId::SmallInt, 2>},
    {"db_name", 0, 1, valueOrAnswer<databaseNameValue, databaseName, name, nameLength>},
    {"error_line", 0, 0, sessionValue<errorLine, TypeId::Int, 4>},
    {"error_message", 0, 0, sessionValue<errorMessage, name, 4000>},
    {"error_number", 0, 0, sessionValue<errorNumber, TypeId::Int, 4>},
    {"error_procedure", 0, 0, sessionValue<errorProcedure, name, nameLength>},
    {"error_severity", 0, 0, sessionValue<errorSeverity, TypeId::Int, 4>},
    {"error_state", 0, 0, sessionValue<errorState, TypeId::Int, 4>},
    {"file_id", 1, 1, sessionAnswer<fileId, TypeId::SmallInt, 2>},
    {"file_idex", 1, 1, sessionAnswer<fileId, TypeId::Int, 4>},
    {"file_name", 1, 1, sessionAnswer<fileName, name, nameLength>},
    {"filegroup_id", 1, 1, sessionAnswer<fileGroupId, TypeId::Int, 4>},
    {"filegroup_name", 1, 1, sessionAnswer<fileGroupName, name, nameLength>},
    {"getansinull", 0, 1, sessionValue<ansiNull, TypeId::SmallInt, 2>},
    {"grouping", 1, 1, grouping},
    {"has_dbaccess", 1, 1, sessionAnswer<hasAccess, TypeId::Int, 4>},
    {"hashbytes", 2, 2, hashBytes},
    {"host_id", 0, 0, sessionValue<hostId, TypeId::Char, 10>},
    {"host_name", 0, 0, sessionValue<hostName, name, nameLength>},
    {"ident_current", 1, 1, identCurrent},
    {"ident_incr", 1, 1, identIncrement},
    {"ident_seed", 1, 1, identSeed},
    {"index_col", 3, 3, sessionAnswer<indexColumn, name, nameLength>},
    {"indexkey_property", 4, 4, sessionAnswer<indexKeyProperty, TypeId::Int, 4>},
    {"indexproperty", 3, 3, sessionAnswer<indexProperty, TypeId::Int, 4>},
    {"is_member", 1, 1, sessionAnswer<isMember, TypeId::Int, 4>},
    {"is_srvrolemember", 1, 2, sessionAnswer<isServerRole, TypeId::Int, 4>},
    {"isnull", 2, 2, isNull},
    {"newid", 0, 0, newId},
    {"newsequentialid", 0, 0, newId},
    {"nullif", 2, 2, nullIf},
    {"object_definition", 1, 1, sessionAnswer<objectDefinition, name, maxLength>},
    {"object_id", 1, 2, sessionAnswer<objectId, TypeId::Int, 4>},
    {"object_name", 1, 2, sessionAnswer<objectName, name, nameLength>},
    {"objectproperty", 2, 2, sessionAnswer<objectProperty, TypeId::Int, 4>},
    {"objectpropertyex", 2, 2, sessionAnswer<objectProperty, TypeId::Int, 4>},
    {"original_login", 0, 0, sessionValue<originalLogin, name, nameLength>},
    {"permissions", 0, 2, sessionAnswer<permissions, TypeId::Int, 4>},
    {"schema_id", 0, 1, valueOrAnswer<schemaIdValue, schemaId, TypeId::Int, 4>},
    {"schema_name", 0, 1, valueOrAnswer<schemaNameValue, schemaName, name, nameLength>},
    {"scope_identity", 0, 0, scopeIdentity},
    {"serverproperty", 1, 1, sessionAnswer<serverProperty, TypeId::SqlVariant, 8016>},
    {"session_user", 0, 0, sessionValue<userNameValue, name, nameLength>},
    {"sql_variant_property", 2, 2, variantProperty},
    {"stats_date", 2, 2, sessionAnswer<statsDate, TypeId::DateTime, 8>},
    {"suser_id", 0, 1, valueOrAnswer<loginIdValue, loginId, TypeId::Int, 4>},
    {"suser_name", 0, 1, valueOrAnswer<loginNameValue, loginName, name, nameLength>},
    {"suser_sid", 0, 2, valueOrAnswer<loginSidValue, loginSid, TypeId::VarBinary, 85>},
    {"suser_sname", 0, 1, valueOrAnswer<loginNameValue, loginName, name, nameLength>},
    {"system_user", 0, 0, sessionValue<loginNameValue, name, nameLength>},
    {"type_id", 1, 1, sessionAnswer<typeIdOf, TypeId::Int, 4>},
    {"type_name", 1, 1, sessionAnswer<typeNameOf, name, nameLength>},
    {"typeproperty", 2, 2, sessionAnswer<typeProperty, TypeId::Int, 4>},
    {"user", 0, 0, sessionValue<userNameValue, name, nameLength>},
    {"user_id", 0, 1, valueOrAnswer<userIdValue, userId, TypeId::SmallInt, 2>},
    {"user_name", 0, 1, valueOrAnswer<userNameValue, userName, name, nameLength>},
    {"xact_state", 0, 0, sessionValue<transactionState, TypeId::SmallInt, 2>},
};

} // namespace

std::span<const FunctionEntry> systemFunctionEntries()
{
    return systemFunctions;
}

} // namespace practice
