#include "tds/data_directory.h"

#include <cerrno>
#include <cstdlib>
#include <system_error>

namespace practice::tds {

DataDirectory::DataDirectory(const std::string& chosen) : path_(chosen), temporary_(chosen.empty())
{
    if (!temporary_) {
        std::filesystem::create_directories(path_);
        return;
    }
    const std::string unique(6, 'X'); // what mkdtemp replaces
    std::string name = std::filesystem::temp_directory_path() / ("quermo-practice-" + unique);
    if (mkdtemp(name.data()) == nullptr)
        throw std::system_error(errno, std::generic_category(), name);
    path_ = name;
}

DataDirectory::~DataDirectory()
{
    std::error_code ignored;
    if (temporary_)
        std::filesystem::remove_all(path_, ignored);
}

} // namespace practice::tds
