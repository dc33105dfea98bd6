// A small trading company's databases to practise on.
#pragma once

namespace practice {

class Server;

/// Creates the databases Comercial (with a table of 100 000 rows) and Archivo, their logins,
/// users and roles, in Transact-SQL through a session of sa. Does nothing when Comercial exists.
/// @throws std::runtime_error with the server's message when a statement fails
void buildSample(Server& server);

} // namespace practice
