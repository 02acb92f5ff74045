#include "core/text/LineSplitter.h"

#include "core/text/StringArray.h"

namespace core {

void LineSplitter::Feed(std::string_view piece) {
    while (!piece.empty()) {
        // The line feed of a pair, which may have come in two pieces.
        if (std::exchange(afterCarriageReturn_, false) && piece.front() == '\n') {
            piece.remove_prefix(1);
            continue;
        }
        std::string_view const line = piece.substr(0, piece.find_first_of("\r\n"));
        line_ += line.substr(0, static_cast<std::size_t>(String::MaxLength) - line_.size());
        piece.remove_prefix(line.size());
        if (!piece.empty()) {
            afterCarriageReturn_ = piece.front() == '\r';
            piece.remove_prefix(1);
            endLine();
        }
    }
}

void LineSplitter::Finish() {
    if (!line_.empty()) {
        endLine();
    }
}

void LineSplitter::endLine() {
    lines_.Add(String(std::string_view(line_)));
    line_.clear();
}

}  // namespace core
