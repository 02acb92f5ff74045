#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#include "core/text/String.h"

namespace support {

/// A new directory, removed with its content by the destructor.
class TemporaryDirectory {
public:
    TemporaryDirectory() {
        std::random_device random;
        do {
            path_ =
                std::filesystem::temp_directory_path() / ("ravelink-" + std::to_string(random()));
        } while (!std::filesystem::create_directory(path_));
    }
    TemporaryDirectory(TemporaryDirectory const&) = delete;
    TemporaryDirectory& operator=(TemporaryDirectory const&) = delete;
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    std::string Path() const { return path_.string(); }
    std::string PathOf(std::string const& name) const { return (path_ / name).string(); }
    /// Creates a file and returns its path.
    std::string Write(std::string const& name, std::string const& content) const {
        std::string path = PathOf(name);
        std::ofstream(path, std::ios::binary) << content;
        return path;
    }

private:
    std::filesystem::path path_;
};

/// A test with a new directory, which contains its paths.
class DirectoryTest : public testing::Test {
protected:
    core::String Path(std::string const& name) const { return directory_.PathOf(name).c_str(); }

    TemporaryDirectory directory_;
};

}  // namespace support
