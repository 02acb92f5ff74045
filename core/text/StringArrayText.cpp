#include <algorithm>
#include <utility>

#include "core/object/IStream.h"
#include "core/text/StringArray.h"
#include "core/text/StringPCharList.h"
#include "core/text/TextBuilder.h"

namespace core {

namespace {

/// Appends the lines of a text, received in chunks, to a list. A line ends at LF, CR or CR LF; the
/// rest after the last line end counts unless it is empty. A line is truncated at a NUL and at
/// String::MaxLength.
class LineSplitter {
public:
    explicit LineSplitter(StringArray& lines) : lines_(lines) {}

    void Feed(std::string_view chunk);
    /// Call after the last chunk.
    void Finish();

private:
    void EndLine();

    StringArray& lines_;
    TextBuilder line_;
    bool afterCarriageReturn_ = false;
};

void LineSplitter::Feed(std::string_view chunk) {
    while (!chunk.empty()) {
        // The line feed of a pair may be in the next chunk.
        if (std::exchange(afterCarriageReturn_, false) && chunk.front() == '\n') {
            chunk.remove_prefix(1);
            continue;
        }
        std::string_view const line = chunk.substr(0, chunk.find_first_of("\r\n"));
        line_.Append(line);
        chunk.remove_prefix(line.size());
        if (!chunk.empty()) {
            afterCarriageReturn_ = chunk.front() == '\r';
            chunk.remove_prefix(1);
            EndLine();
        }
    }
}

void LineSplitter::Finish() {
    if (!line_.View().empty()) {
        EndLine();
    }
}

void LineSplitter::EndLine() {
    lines_.Add(line_.AsString());
    line_.Clear();
}

bool readLines(IStream* stream, StringArray& lines) {
    if (stream == nullptr) {
        return false;
    }
    LineSplitter splitter(lines);
    char chunk[4096];
    for (;;) {
        int const received = stream->Read(chunk, static_cast<int>(sizeof chunk));
        if (received < 0) {
            return false;
        }
        if (received == 0) {
            splitter.Finish();
            return true;
        }
        splitter.Feed({chunk, static_cast<std::size_t>(received)});
    }
}

bool writeAll(IStream& stream, std::string_view data) {
    while (!data.empty()) {
        int const written = stream.Write(data.data(), static_cast<int>(data.size()));
        if (written < 1) {
            return false;
        }
        data.remove_prefix(std::min(static_cast<std::size_t>(written), data.size()));
    }
    return true;
}

}  // namespace

void StringArray::LoadFrom(String const& text) {
    // Collect the lines in another array: the text may be an entry of this one.
    StringArray lines(step_);
    LineSplitter splitter(lines);
    splitter.Feed(text.View());
    splitter.Finish();
    SwapEntries(lines);
}

bool StringArray::LoadFrom(IStream* stream) {
    StringArray lines(step_);
    if (!readLines(stream, lines)) {
        return false;
    }
    SwapEntries(lines);
    return true;
}

void StringArray::LoadAsConfFileFrom(String const& text) {
    StringArray lines(step_);
    lines.LoadFrom(text);
    SetConfLines(lines);
}

bool StringArray::LoadAsConfFileFrom(IStream* stream) {
    StringArray lines(step_);
    if (!lines.LoadFrom(stream)) {
        return false;
    }
    SetConfLines(lines);
    return true;
}

void StringArray::SwapEntries(StringArray& other) {
    std::swap(blocks_, other.blocks_);
    std::swap(slots_, other.slots_);
    std::swap(count_, other.count_);
}

void StringArray::SetConfLines(StringArray const& lines) {
    Clear();
    for (int i = 0; i < lines.Count(); ++i) {
        String const line = lines[i].Trim();
        if (line.IsEmpty() || line.IsDelimiter("#;", 0)) {
            continue;
        }
        if (line.Find(Separator) > 0) {
            Add(line.LeftOf(Separator).TrimRight(), line.RightOf(Separator).TrimLeft());
        } else {
            Add(line);
        }
    }
}

bool StringArray::SaveTo(IStream* stream) const {
    if (stream == nullptr) {
        return false;
    }
    for (int i = 0; i < Count(); ++i) {
        if (!writeAll(*stream, Get(i).View()) || !writeAll(*stream, "\r\n")) {
            return false;
        }
    }
    return true;
}

StringPCharList StringArray::AsPCharList(StringPCharList::ListType type) const {
    StringArray strings(step_);
    for (int i = 0; i < Count(); ++i) {
        strings.Add(type == StringPCharList::Names    ? GetNameByIndex(i)
                    : type == StringPCharList::Values ? GetValueByIndex(i)
                                                      : Get(i));
    }
    return StringPCharList(strings);
}

StringPCharList::StringPCharList(StringArray const& strings) {
    for (int i = 0; i < strings.Count(); ++i) {
        strings_.push_back(strings[i]);
        pointers_.push_back(strings_.back().getCString());
    }
    pointers_.push_back(nullptr);
}

}  // namespace core
