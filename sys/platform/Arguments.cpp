#include "sys/platform/Arguments.h"

#include "sys/platform/Process.h"

namespace sys::platform {

Arguments::Arguments(int argc, char const* const* argv) : words_(programArguments(argc, argv)) {
    for (std::string const& word : words_) {
        pointers_.push_back(word.c_str());
    }
}

}  // namespace sys::platform
