#pragma once

#include "core/object/RootClass.h"
#include "core/text/String.h"

namespace core {

/// The status file, which tells outside tools in which phase an application is: its whole content
/// is the decimal text of one Status. Ordinary users cannot write it, which is no error to anybody.
class AppStatus : public RootClass {
public:
    enum Status {
        none = 0,  ///< removes the file
        constructed = 1,
        initialising = 2,
        running = 3,
        terminating = 4,
        ended = 6,  ///< 5 is valid, but the frame never writes it
    };

    explicit AppStatus(String const& applicationName);

    char const* ClassName() const override;

    /// "/run/NAME.status"
    String getFilePath() const;
    /// Writes the status as the file's content; true on success. Does not follow a symbolic link at
    /// the file's path. Windows has no protected "/run": nothing is written there, and the result
    /// is false.
    bool writeToFile(int status) const;
    /// Writes the status, or removes the file for none; true on success.
    bool _setStatus(Status status) const;
    /// Returns the number in the file; -1 if the file is missing or does not contain a number.
    int readFromFile() const;
    /// The same when it is below 7, else 0. -1 passes through: it tells the missing file apart.
    int GetStatus() const;

    /// Lets tests have the files in a folder of their own instead of "/run".
    static void setFolder(String const& path);

private:
    String name_;
};

}  // namespace core
