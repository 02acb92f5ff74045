#pragma once

#include <filesystem>
#include <fstream>
#include <string>

namespace support {

/// A fresh folder that is removed with all it holds.
class TemporaryFolder {
public:
    TemporaryFolder();
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;
    ~TemporaryFolder();

    std::string Path() const { return path_.string(); }
    std::string PathOf(std::string const& name) const { return (path_ / name).string(); }
    /// Makes a file and returns its path.
    std::string Write(std::string const& name, std::string const& content) const;

private:
    std::filesystem::path path_;
};

}  // namespace support
