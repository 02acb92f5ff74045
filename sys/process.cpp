#include "sys/process.h"

#include <string>

#include "sys/platform/PathStyle.h"
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

core::String getProgramPath() {
    std::string path;
    return platform::programPath(path) == 0 ? path.c_str() : "";
}

bool getPathDirectories(core::StringArray& list) {
    int const before = list.Count();
    return getEnvironmentVariable("PATH").Split(list, getPathListSeparator()) > before;
}

core::String getPathListSeparator() {
    return core::String::OfChar(pathStyle().listSeparator, 1);
}

}  // namespace sys::env

namespace sys::cmd {

namespace {

int const notRun = -1;

}  // namespace

int command(core::String const& /*line*/, bool /*wait*/, core::String const& /*output*/) {
    return notRun;
}

int commands(core::StringArray const& lines, bool wait, core::String const& output) {
    int result = 0;
    for (int i = 0; i < lines.Count() && result == 0; ++i) {
        result = command(lines[i], wait, output);
    }
    return result;
}

int background(core::String const& line, core::String const& output) {
    return command(line, false, output);
}

int background(core::StringArray const& lines, core::String const& output) {
    return commands(lines, false, output);
}

core::String serviceLine(core::String const& name, ServiceOp op) {
    static constexpr struct {
        ServiceOp op;
        char const* suffix;
    } suffixes[] = {{start, " start"}, {stop, " stop"}, {restart, " restart"}};
    for (auto const& entry : suffixes) {
        if (entry.op == op) {
            return "service " + name + entry.suffix;
        }
    }
    return "";
}

int service(core::String const& name, ServiceOp op, core::String const& output) {
    core::String const line = serviceLine(name, op);
    return line.IsEmpty() ? notRun : command(line, true, output);
}

int services(core::StringArray const& names, ServiceOp op, core::String const& output) {
    int result = 0;
    for (int i = 0; i < names.Count() && result == 0; ++i) {
        result = service(names[i], op, output);
    }
    return result;
}

}  // namespace sys::cmd

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
