#pragma once

#include "core/object/RootClass.h"
#include "core/text/String.h"

namespace core {

/// The status file: shows other programs the phase of an application as the decimal text of a
/// Status. Ordinary users cannot write to "/run"; callers ignore that failure.
class AppStatus : public RootClass {
public:
    enum Status {
        none = 0,  ///< removes the file
        constructed = 1,
        initialising = 2,
        running = 3,
        terminating = 4,
        ended = 6,  ///< 5 is valid, but Application never writes it
    };

    explicit AppStatus(String const& applicationName);

    char const* ClassName() const override;

    /// Returns "/run/NAME.status".
    String getFilePath() const;
    /// Replaces the file's content with status; true on success. Does not follow a symbolic link
    /// at the file's path. On Windows, which has no protected "/run", writes nothing and returns
    /// false.
    bool writeToFile(int status) const;
    /// Writes the status, or removes the file for none; true on success.
    bool _setStatus(Status status) const;
    /// Returns the number in the file; -1 if the file is missing or does not contain a number.
    int readFromFile() const;
    /// Returns readFromFile() if below 7, else 0. A negative value, such as -1 for a missing file,
    /// is returned unchanged.
    int GetStatus() const;

    /// Replaces "/run" by another directory; for tests.
    static void SetDirectory(String const& path);

private:
    String name_;
};

}  // namespace core
