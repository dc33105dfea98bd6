// Where a server keeps its store.
#pragma once

#include <filesystem>
#include <string>

namespace practice::tds {

/// A directory of the caller's choice, or a temporary one that goes with this object.
class DataDirectory
{
public:
    /// @param chosen "" for a temporary one
    /// @throws std::system_error when it can't be made
    explicit DataDirectory(const std::string& chosen);
    ~DataDirectory();
    DataDirectory(const DataDirectory&) = delete;
    DataDirectory& operator=(const DataDirectory&) = delete;

    [[nodiscard]] const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
    bool temporary_;
};

} // namespace practice::tds
