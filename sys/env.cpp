#include "sys/env.h"

#include <string>

#include "sys/platform/Process.h"

namespace sys::env {

namespace {

std::size_t const longestValue = 32766;

}  // namespace

core::String getEnvironmentVariable(core::String const& name) {
    std::string value;
    bool const found = platform::environmentValue(name.getCString(), value);
    return found && value.size() <= longestValue ? value.c_str() : "";
}

bool getEnvironment(core::StringArray& list) {
    int const before = list.Count();
    for (std::string const& entry : platform::environmentEntries()) {
        if (!entry.empty()) {
            list.Add(entry.c_str());
        }
    }
    return list.Count() > before;
}

bool getPathDirectories(core::StringArray& list) {
    int const before = list.Count();
    return getEnvironmentVariable("PATH").Split(list, getPathListSeparator()) > before;
}

core::String getPathListSeparator() {
    return core::String::OfChar(pathStyle().listSeparator, 1);
}

}  // namespace sys::env
