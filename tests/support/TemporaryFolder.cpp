#include "tests/support/TemporaryFolder.h"

#include <random>
#include <stdexcept>

namespace support {

TemporaryFolder::TemporaryFolder() {
    std::random_device random;
    for (int attempt = 0; attempt < 100; ++attempt) {
        path_ = std::filesystem::temp_directory_path() / ("ravelink-" + std::to_string(random()));
        if (std::filesystem::create_directory(path_)) {
            return;
        }
    }
    throw std::runtime_error("no temporary folder to be had");
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::Write(std::string const& name, std::string const& content) const {
    std::string path = PathOf(name);
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

}  // namespace support
