#pragma once

#include <string>

#include "core/stream/HandleStream.h"

namespace sys {

/// A file for intermediate data, for its owner only, which is gone as soon as it is closed. Where
/// the operating system allows it, the file has no name even while it is open: a process that is
/// killed leaves nothing.
class TemporaryFile : public core::HandleStream {
public:
    ~TemporaryFile() override;

    char const* ClassName() const override;

    /// Creates the file in sys::file::getTempPath() and opens it for reading and writing, once per
    /// object: 0 or a negative errno value.
    int Create();

private:
    std::string path_;  ///< empty unless the file still has a name
};

}  // namespace sys
