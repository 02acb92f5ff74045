#pragma once

#include <string>
#include <string_view>

namespace core {

class StringArray;

/// Appends the lines of a text that comes in pieces to a list. A line ends at LF, CR or CR LF; a
/// last one without an end counts when it is not empty. A line is cut at a NUL and at
/// String::MaxLength.
class LineSplitter {
public:
    explicit LineSplitter(StringArray& lines) : lines_(lines) {}

    void Feed(std::string_view piece);
    /// To be called behind the last piece.
    void Finish();

private:
    void endLine();

    StringArray& lines_;
    std::string line_;
    bool afterCarriageReturn_ = false;
};

}  // namespace core
