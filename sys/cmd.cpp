#include "sys/cmd.h"

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
        char const* verb;
    } verbs[] = {{start, " start"}, {stop, " stop"}, {restart, " restart"}};
    for (auto const& entry : verbs) {
        if (entry.op == op) {
            return "service " + name + entry.verb;
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
