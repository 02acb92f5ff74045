#pragma once

#include "core/text/StringArray.h"
#include "update/session/LineReporter.h"

namespace update {

/// Prints the events of a session on standard output.
class ConsoleReporter : public LineReporter {
public:
    /// errors, which must outlive the reporter, receives an entry for each timeout of a
    /// notification: after a long wait they are all printed if the session fails.
    explicit ConsoleReporter(core::StringArray& errors) : errors_(errors) {}

    void OnNotificationTimeout(core::Interval const& left) override;

protected:
    void Print(core::String const& line) override;
    void PrintProgress(core::String const& line) override;

private:
    core::StringArray& errors_;
};

}  // namespace update
