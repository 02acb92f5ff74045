#pragma once

#include <string>
#include <vector>

namespace sys::platform {

/// The words that the program was started with, its own name first, in UTF-8. main makes one of
/// its parameters and hands it on.
class Arguments {
public:
    Arguments(int argc, char const* const* argv);

    int Count() const { return static_cast<int>(words_.size()); }
    /// Count() texts, which live as long as this.
    char const* const* Words() const { return pointers_.data(); }

private:
    std::vector<std::string> const words_;
    std::vector<char const*> pointers_;
};

}  // namespace sys::platform
