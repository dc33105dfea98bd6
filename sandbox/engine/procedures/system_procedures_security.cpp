// What adds, changes and drops logins, users, roles and members.
#include "engine/context/security_principals.h"
#include "engine/definition/ddl_names.h"
#include "engine/messages/errors.h"
#include "engine/procedures/system_procedures.h"

namespace practice {
namespace {

void requireOutsideTransaction(const ProcedureCall& call)
{
    if (call.session().transactionCount() > 0)
        raise(15002, {call.name()});
}

/// Arguments that may not be NULL.
std::string required(const ProcedureCall& call, std::size_t place)
{
    if (!call.text(place))
        raise(15600, {call.name()});
    return *call.text(place);
}

int addLoginProcedure(const ProcedureCall& call)
{
    requireOutsideTransaction(call);
    call.session().beginWrite();
    LoginDefinition login;
    login.name = required(call, 0);
    login.password = call.textOr(1, "");
    login.database = call.textOr(2, "master");
    login.language = call.textOr(3, "us_english");
    login.sid = call.textOr(4, "");
    addLogin(call.session(), login);
    call.session().inform(15298);
    return 0;
}

int dropLoginProcedure(const ProcedureCall& call)
{
    requireOutsideTransaction(call);
    call.session().beginWrite();
    dropLogin(call.session(), required(call, 0));
    call.session().inform(15479);
    return 0;
}

int passwordProcedure(const ProcedureCall& call)
{
    call.session().beginWrite();
    const std::string login = call.text(2).value_or(call.session().login().name);
    setPassword(call.session(), call.text(0), call.textOr(1, ""), login);
    call.session().inform(15478);
    return 0;
}

int defaultDatabaseProcedure(const ProcedureCall& call)
{
    call.session().beginWrite();
    setDefaultDatabase(call.session(), required(call, 0), required(call, 1));
    call.session().inform(15486);
    return 0;
}

int defaultLanguageProcedure(const ProcedureCall& call)
{
    call.session().beginWrite();
    const std::string login = required(call, 0);
    const std::string language = call.textOr(1, "us_english");
    setDefaultLanguage(call.session(), login, language);
    call.session().inform(15487, {login, language});
    return 0;
}

int denyLoginProcedure(const ProcedureCall& call)
{
    call.session().beginWrite();
    setLoginDenied(call.session(), required(call, 0), true);
    return 0;
}

int grantAccessProcedure(const ProcedureCall& call)
{
    call.session().beginWrite();
    const std::string login = required(call, 0);
    const std::string name = call.text(1).value_or(login);
    addUser(call.session(), login, name);
    call.session().inform(15341, {login});
    return 0;
}

int revokeAccessProcedure(const ProcedureCall& call)
{
    call.session().beginWrite();
    dropUser(call.session(), required(call, 0));
    call.session().inform(15491);
    return 0;
}

/// The older sp_adduser: access and, if named, membership of a role.
int addUserProcedure(const ProcedureCall& call)
{
    call.session().beginWrite();
    const std::string login = required(call, 0);
    const std::string name = call.text(1).value_or(login);
    const std::string role = call.textOr(2, "public");
    if (!sameName(role, "public") && !call.session().catalog().principal(call.database(), role))
        raise(15014, {role});
    addUser(call.session(), login, name);
    if (!sameName(role, "public"))
        addRoleMember(call.session(), role, name);
    call.session().inform(15341, {login});
    return 0;
}

int addRoleProcedure(const ProcedureCall& call)
{
    call.session().beginWrite();
    addRole(call.session(), required(call, 0), call.textOr(1, ""));
    call.session().inform(15424);
    return 0;
}

int dropRoleProcedure(const ProcedureCall& call)
{
    call.session().beginWrite();
    dropRole(call.session(), required(call, 0));
    call.session().inform(15425);
    return 0;
}

int addRoleMemberProcedure(const ProcedureCall& call)
{
    call.session().beginWrite();
    addRoleMember(call.session(), required(call, 0), required(call, 1));
    call.session().inform(15488, {*call.text(1), *call.text(0)});
    return 0;
}

int dropRoleMemberProcedure(const ProcedureCall& call)
{
    call.session().beginWrite();
    dropRoleMember(call.session(), required(call, 0), required(call, 1));
    call.session().inform(15489, {*call.text(1), *call.text(0)});
    return 0;
}

int changeServerRole(const ProcedureCall& call, bool member)
{
    requireOutsideTransaction(call);
    call.session().beginWrite();
    const std::string login = required(call, 0);
    const std::string role = required(call, 1);
    setServerRole(call.session(), role, login, member);
    call.session().inform(member ? 15488 : 15489, {login, role});
    return 0;
}

int addServerRoleMember(const ProcedureCall& call)
{
    return changeServerRole(call, true);
}

int dropServerRoleMember(const ProcedureCall& call)
{
    return changeServerRole(call, false);
}

int windowsLogin(const ProcedureCall& call)
{
    raise(15401, {required(call, 0)});
}

constexpr SystemProcedure securityTable[] = {
    {"sp_addlogin", "@loginame @passwd= @defdb= @deflanguage= @sid= @encryptopt=", addLoginProcedure},
    {"sp_droplogin", "@loginame", dropLoginProcedure},
    {"sp_password", "@old= @new @loginame=", passwordProcedure},
    {"sp_defaultdb", "@loginame @defdb", defaultDatabaseProcedure},
    {"sp_defaultlanguage", "@loginame @language=", defaultLanguageProcedure},
    {"sp_grantlogin", "@loginame", windowsLogin},
    {"sp_revokelogin", "@loginame", windowsLogin},
    {"sp_denylogin", "@loginame", denyLoginProcedure},
    {"sp_grantdbaccess", "@loginame @name_in_db=", grantAccessProcedure},
    {"sp_revokedbaccess", "@name_in_db", revokeAccessProcedure},
    {"sp_adduser", "@loginame @name_in_db= @grpname=", addUserProcedure},
    {"sp_dropuser", "@name_in_db", revokeAccessProcedure},
    {"sp_addrole", "@rolename @ownername=", addRoleProcedure},
    {"sp_droprole", "@rolename", dropRoleProcedure},
    {"sp_addrolemember", "@rolename @membername", addRoleMemberProcedure},
    {"sp_droprolemember", "@rolename @membername", dropRoleMemberProcedure},
    {"sp_addsrvrolemember", "@loginame @rolename", addServerRoleMember},
    {"sp_dropsrvrolemember", "@loginame @rolename=", dropServerRoleMember},
};

} // namespace

std::span<const SystemProcedure> securityProcedures()
{
    return securityTable;
}

} // namespace practice
