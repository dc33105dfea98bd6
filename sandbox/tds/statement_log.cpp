#include "tds/statement_log.h"

#include "types/conversion.h"

#include <stdexcept>

namespace practice::tds {

StatementLog::StatementLog(const std::filesystem::path& file) : file_(file, std::ios::binary | std::ios::app)
{
    if (!file_)
        throw std::runtime_error("cannot write " + file.string());
}

void StatementLog::batch(int session, std::string_view text)
{
    const std::lock_guard lock(mutex_);
    write("batch", session, text, {});
    file_.flush();
}

void StatementLog::call(int session, std::string_view procedure, const std::vector<Parameter>& parameters)
{
    const std::lock_guard lock(mutex_);
    write("call", session, procedure, {});
    for (const auto& parameter : parameters) {
        const std::string about =
            ' ' + (parameter.name.empty() ? "-" : parameter.name) + ' ' + describe(parameter.type);
        if (parameter.value.isNull())
            file_ << "parameter " << session << " null" << about << "\n\n";
        else
            write("parameter", session, toText(parameter.value, parameter.type), about);
    }
    file_.flush();
}

void StatementLog::write(std::string_view kind, int session, std::string_view text, std::string_view suffix)
{
    file_ << kind << ' ' << session << ' ' << text.size() << suffix << '\n' << text << '\n';
}

} // namespace practice::tds
