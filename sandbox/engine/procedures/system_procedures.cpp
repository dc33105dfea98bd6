#include "engine/procedures/system_procedures.h"

#include "engine/catalog/system_tables/system_tables.h"
#include "engine/messages/errors.h"
#include "engine/store/storage.h"
#include "types/conversion.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <sstream>

namespace practice {
namespace {

struct Declared
{
    std::string name;
    bool optional = false;
};

std::vector<Declared> parseDeclared(std::string_view text)
{
    std::vector<Declared> all;
    std::istringstream words{std::string(text)};
    for (std::string word; words >> word;) {
        const bool optional = word.ends_with('=');
        if (optional)
            word.pop_back();
        all.push_back({word, optional});
    }
    return all;
}

std::size_t placeOf(const char* procedure, const std::vector<Declared>& declared, const Parameter& argument,
                    std::size_t position)
{
    if (argument.name.empty()) {
        if (position >= declared.size())
            raise(8144, {procedure});
        return position;
    }
    const auto found = std::find_if(declared.begin(), declared.end(), [&](const Declared& parameter) {
        return sameName(parameter.name, argument.name);
    });
    if (found == declared.end())
        raise(8145, {argument.name, procedure});
    return std::size_t(found - declared.begin());
}

std::array<std::span<const SystemProcedure>, 8> allGroups()
{
    return {helpProcedures(),       securityHelpProcedures(), databaseProcedures(), driverProcedures(),
            driverTypeProcedures(), securityProcedures(),     renameProcedures(),   serverProcedures()};
}

const SystemProcedure* findProcedure(const std::string& name)
{
    for (const auto group : allGroups()) {
        for (const SystemProcedure& procedure : group) {
            if (sameName(procedure.name, name))
                return &procedure;
        }
    }
    return nullptr;
}

} // namespace

ProcedureCall::ProcedureCall(SessionContext& session, const char* name, std::string_view declared,
                             const std::vector<Parameter>& arguments)
    : session_(session), name_(name)
{
    const std::vector<Declared> parameters = parseDeclared(declared);
    values_.resize(parameters.size());
    std::vector<bool> given(parameters.size());
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const std::size_t place = placeOf(name, parameters, arguments[i], i);
        if (given[place])
            raise(8143, {parameters[place].name});
        given[place] = !arguments[i].isDefault;
        if (!arguments[i].value.isNull())
            values_[place] = toText(arguments[i].value, arguments[i].type);
    }
    for (std::size_t place = 0; place < parameters.size(); ++place) {
        if (!given[place] && !parameters[place].optional)
            raise(201, {name, parameters[place].name});
    }
}

int ProcedureCall::numberOr(std::size_t place, int otherwise) const
{
    return values_[place] ? int(std::strtol(values_[place]->c_str(), nullptr, 10)) : otherwise;
}

std::uint64_t ProcedureCall::sendRows(const char* columns, const std::string& source) const
{
    const SystemTable table = compileSystemTable({"", "", false, columns, source.c_str()});
    std::vector<ColumnInfo> described;
    for (const auto& column : table.columns)
        described.push_back({column.name, column.type, column.nullable, false, false});
    ResultSink& sink = session_.sink();
    sink.columns(described);
    Statement rows(session_.connection(), table.select(database()));
    std::vector<Value> values(described.size());
    std::uint64_t count = 0;
    for (; rows.step(); ++count) {
        for (std::size_t i = 0; i < values.size(); ++i)
            decodeColumn(rows.handle(), int(i), described[i].type, values[i]);
        sink.row(values);
    }
    Completion completion;
    completion.kind = Completion::Kind::InProcedure;
    completion.command = commands::select;
    if (!session_.options().noCount)
        completion.rows = count;
    sink.done(completion);
    return count;
}

std::vector<std::string> systemProcedureNames()
{
    std::vector<std::string> names;
    for (const auto group : allGroups()) {
        for (const SystemProcedure& procedure : group)
            names.emplace_back(procedure.name);
    }
    return names;
}

std::string likePattern(const std::string& expression, const std::optional<std::string>& pattern)
{
    return pattern ? "t_like(" + expression + ", " + quotedText(*pattern) + ", '', 0, 1)" : "1";
}

std::optional<int> callSystemProcedure(SessionContext& session, const std::string& name,
                                       std::vector<Parameter>& arguments)
{
    const SystemProcedure* procedure = findProcedure(name);
    if (procedure == nullptr)
        return std::nullopt;
    session.catalog().version();
    return procedure->run(ProcedureCall(session, procedure->name, procedure->parameters, arguments));
}

} // namespace practice
