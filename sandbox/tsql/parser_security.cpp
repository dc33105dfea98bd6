// Permissions, logins, users, roles, schemas.
#include "tsql/statement_parser.h"

#include <algorithm>
#include <array>
#include <type_traits>

namespace practice {

using ast::StatementPtr;

namespace {

/// First words of permissions that are not reserved words.
constexpr auto permissionWords = std::to_array<std::string_view>({
    "ADMINISTER",
    "AUTHENTICATE",
    "CONNECT",
    "CONTROL",
    "IMPERSONATE",
    "RECEIVE",
    "SEND",
    "SHOWPLAN",
    "SUBSCRIBE",
    "TAKE",
    "UNMASK",
    "UNSAFE",
});

bool startsPermission(const Token& token)
{
    switch (token.keyword) {
    case Keyword::All:
    case Keyword::Alter:
    case Keyword::Backup:
    case Keyword::Checkpoint:
    case Keyword::Create:
    case Keyword::Delete:
    case Keyword::Dump:
    case Keyword::Exec:
    case Keyword::Execute:
    case Keyword::External:
    case Keyword::Insert:
    case Keyword::Kill:
    case Keyword::References:
    case Keyword::Select:
    case Keyword::Shutdown:
    case Keyword::Update:
    case Keyword::View:
        return true;
    case Keyword::None:
        return token.kind == TokenKind::Word &&
               std::ranges::binary_search(permissionWords, upperCase(token.text));
    default:
        return false;
    }
}

} // namespace

// GRANT, DENY, REVOKE ---------------------------------------------------------------------------

ast::PermissionItem StatementParser::permissionItem()
{
    if (!startsPermission(current()))
        fail();
    ast::PermissionItem item;
    item.name = anyWord();
    if (item.name == "ALL") {
        acceptWord("PRIVILEGES");
    } else {
        while (at(TokenKind::Word) && !at(Keyword::On) && !at(Keyword::To) && !at(Keyword::From))
            item.name += ' ' + anyWord();
        if (item.name == "EXEC")
            item.name = "EXECUTE";
    }
    if (at(Symbol::Open))
        item.columns = identifierList();
    return item;
}

/// [class ::] name
void StatementParser::securable(std::string& securableClass, ast::ObjectName& name)
{
    if (at(TokenKind::Word) &&
        (peek().symbol == Symbol::DoubleColon || peek(2).symbol == Symbol::DoubleColon)) {
        securableClass = anyWord();
        while (!at(Symbol::DoubleColon))
            securableClass += ' ' + anyWord();
        advance();
    }
    name = objectName();
}

std::string StatementParser::principal()
{
    return at(Keyword::Public) ? advance().content() : identifier();
}

StatementPtr StatementParser::permission(ast::PermissionAction action)
{
    advance();
    auto node = std::make_unique<ast::PermissionStatement>();
    node->action = action;
    if (action == ast::PermissionAction::Revoke && at(Keyword::Grant)) {
        advance();
        expect(Keyword::Option);
        expect(Keyword::For);
        node->grantOptionFor = true;
    }
    do
        node->permissions.push_back(permissionItem());
    while (accept(Symbol::Comma));
    if (accept(Keyword::On)) {
        securable(node->securableClass, node->securable);
        if (at(Symbol::Open))
            node->securableColumns = identifierList();
    }
    // REVOKE takes either word.
    if (action != ast::PermissionAction::Revoke || !accept(Keyword::From))
        expect(Keyword::To);
    do
        node->principals.push_back(principal());
    while (accept(Symbol::Comma));
    if (action == ast::PermissionAction::Grant) {
        if (accept(Keyword::With)) {
            expect(Keyword::Grant);
            expect(Keyword::Option);
            node->withGrantOption = true;
        }
    } else {
        node->cascade = accept(Keyword::Cascade);
    }
    if (accept(Keyword::As))
        node->grantor = identifier();
    return node;
}

// Logins ----------------------------------------------------------------------------------------

template <class Login>
void StatementParser::loginOption(Login& node)
{
    if (!acceptWord("PASSWORD")) {
        node.options.push_back(namedOption());
        return;
    }
    expect(Symbol::Equal);
    node.hasPassword = true;
    if (at(TokenKind::Binary)) {
        node.password = advance().content();
        expectWord("HASHED");
        node.hashed = true;
    } else {
        node.password = string();
    }
    while (true) {
        if (acceptWord("MUST_CHANGE")) {
            node.mustChange = true;
        } else if constexpr (std::is_same_v<Login, ast::AlterLoginStatement>) {
            if (acceptWord("UNLOCK")) {
                node.unlock = true;
            } else if (acceptWord("OLD_PASSWORD")) {
                expect(Symbol::Equal);
                node.oldPassword = string();
            } else {
                return;
            }
        } else {
            return;
        }
    }
}

/// Behind CREATE LOGIN.
StatementPtr StatementParser::createLogin()
{
    auto node = std::make_unique<ast::CreateLoginStatement>();
    node->name = identifier();
    if (accept(Keyword::From)) {
        expectWord("WINDOWS");
        node->windows = true;
        if (accept(Keyword::With))
            node->options = namedOptions();
        return node;
    }
    expect(Keyword::With);
    if (!atWord("PASSWORD"))
        fail();
    do
        loginOption(*node);
    while (accept(Symbol::Comma));
    return node;
}

StatementPtr StatementParser::alterLogin()
{
    auto node = std::make_unique<ast::AlterLoginStatement>();
    node->name = identifier();
    if (acceptWord("ENABLE")) {
        node->enable = true;
    } else if (acceptWord("DISABLE")) {
        node->enable = false;
    } else {
        expect(Keyword::With);
        do
            loginOption(*node);
        while (accept(Symbol::Comma));
    }
    return node;
}

// Users, roles, schemas -------------------------------------------------------------------------

StatementPtr StatementParser::createUser()
{
    expect(Keyword::User);
    auto node = std::make_unique<ast::CreateUserStatement>();
    node->name = identifier();
    if (acceptWord("WITHOUT")) {
        expectWord("LOGIN");
        node->withoutLogin = true;
    } else if (at(Keyword::For) || at(Keyword::From)) {
        advance();
        expectWord("LOGIN");
        node->login = identifier();
    }
    if (accept(Keyword::With))
        node->options = namedOptions();
    return node;
}

StatementPtr StatementParser::alterUser()
{
    expect(Keyword::User);
    auto node = std::make_unique<ast::AlterUserStatement>();
    node->name = identifier();
    expect(Keyword::With);
    node->options = namedOptions();
    return node;
}

StatementPtr StatementParser::createRole(bool server)
{
    auto node = std::make_unique<ast::CreateRoleStatement>();
    node->server = server;
    node->name = identifier();
    if (accept(Keyword::Authorization))
        node->owner = identifier();
    return node;
}

StatementPtr StatementParser::alterRole(bool server)
{
    using enum ast::AlterRoleAction;
    auto node = std::make_unique<ast::AlterRoleStatement>();
    node->server = server;
    node->name = identifier();
    if (accept(Keyword::With)) {
        expectWord("NAME");
        expect(Symbol::Equal);
        node->action = Rename;
    } else {
        node->action = at(Keyword::Drop) ? DropMember : AddMember;
        if (!accept(Keyword::Drop))
            expect(Keyword::Add);
        expectWord("MEMBER");
    }
    node->operand = identifier();
    return node;
}

StatementPtr StatementParser::createSchema()
{
    expect(Keyword::Schema);
    auto node = std::make_unique<ast::CreateSchemaStatement>();
    if (atIdentifier())
        node->name = identifier();
    if (accept(Keyword::Authorization))
        node->owner = identifier();
    if (node->name.empty())
        node->name = node->owner;
    if (node->name.empty())
        fail();
    return node;
}

StatementPtr StatementParser::alterSchema()
{
    expect(Keyword::Schema);
    auto node = std::make_unique<ast::AlterSchemaStatement>();
    node->name = identifier();
    expectWord("TRANSFER");
    std::string securableClass;
    securable(securableClass, node->transferred);
    return node;
}

StatementPtr StatementParser::alterAuthorization()
{
    expect(Keyword::Authorization);
    expect(Keyword::On);
    auto node = std::make_unique<ast::AlterAuthorizationStatement>();
    securable(node->securableClass, node->securable);
    expect(Keyword::To);
    if (accept(Keyword::Schema)) {
        expectWord("OWNER");
        node->owner = "SCHEMA OWNER";
    } else {
        node->owner = identifier();
    }
    return node;
}

} // namespace practice
