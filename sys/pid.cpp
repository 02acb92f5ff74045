#include "sys/pid.h"

namespace sys::pid {

core::String getFileName(core::String const& /*name*/) {
    return "";
}

bool exists(core::String const& /*name*/, bool /*running*/) {
    return false;
}

bool store(core::String const& /*name*/, int /*pid*/) {
    return false;
}

bool clear(core::String const& /*name*/) {
    return false;
}

int get(core::String const& /*name*/, bool /*running*/) {
    return 0;
}

bool isRunning(int /*pid*/) {
    return false;
}

bool isRunning(core::String const& /*name*/) {
    return false;
}

core::String cmdline(int /*pid*/) {
    return "";
}

core::String cmdline(core::String const& /*name*/) {
    return "";
}

}  // namespace sys::pid
