#include <algorithm>
#include <utility>
#include <vector>

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
    char piece[4096];
    for (;;) {
        int const got = stream->Read(piece, static_cast<int>(sizeof piece));
        if (got < 0) {
            return false;
        }
        if (got == 0) {
            splitter.Finish();
            return true;
        }
        splitter.Feed({piece, static_cast<std::size_t>(got)});
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

/// The entry "name.count" of a counted list.
String countName(String const& name) {
    return String::format("%1.count").argi(1, name);
}

/// The entry "name[i]". The number goes in first: the name may hold a placeholder itself.
String itemName(String const& name, int index) {
    return String::format("%1[%2]").argi(2, index).argi(1, name);
}

/// The index of the first pair of each name from name[0] to name[count - 1], or -1. Reads the list
/// once, because a search for each item would make long lists slow.
std::vector<int> itemIndexes(StringArray const& list, String const& name, int count) {
    std::vector<int> indexes(static_cast<std::size_t>(count), -1);
    for (int i = list.Count() - 1; i >= 0; --i) {
        String const pair = list.GetNameByIndex(i);
        int const item = pair.RightBy('[').ToDecimal32(-1);
        if (item >= 0 && item < count && pair.CompareIC(itemName(name, item)) == 0) {
            indexes[static_cast<std::size_t>(item)] = i;
        }
    }
    return indexes;
}

}  // namespace

void StringArray::LoadFrom(String const& text) {
    // A list of its own first: the text may be an entry of this one.
    StringArray lines(step_);
    LineSplitter splitter(lines);
    splitter.Feed(text.View());
    splitter.Finish();
    takeEntries(lines);
}

bool StringArray::LoadFrom(IStream* stream) {
    StringArray lines(step_);
    if (!readLines(stream, lines)) {
        return false;
    }
    takeEntries(lines);
    return true;
}

void StringArray::LoadAsConfFileFrom(String const& text) {
    StringArray lines(step_);
    lines.LoadFrom(text);
    takeConfLines(lines);
}

bool StringArray::LoadAsConfFileFrom(IStream* stream) {
    StringArray lines(step_);
    if (!lines.LoadFrom(stream)) {
        return false;
    }
    takeConfLines(lines);
    return true;
}

void StringArray::takeEntries(StringArray& other) {
    std::swap(entries_, other.entries_);
    std::swap(capacity_, other.capacity_);
}

void StringArray::takeConfLines(StringArray const& lines) {
    Clear();
    for (int i = 0; i < lines.Count(); ++i) {
        String const line = lines[i].Trim();
        if (line.IsEmpty() || line.IsDelimiter("#;", 0)) {
            continue;
        }
        if (line.Find(separator_) > 0) {
            Add(line.LeftOf(separator_).TrimRight(), line.RightOf(separator_).TrimLeft());
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

int StringArray::GetCountedList(String const& name, StringArray& list) const {
    // Each item needs an entry, so a count above the number of entries is false.
    int const count = std::clamp(GetValueByName(countName(name)).ToDecimal32(), 0, Count());
    for (int const index : itemIndexes(*this, name, count)) {
        list.Add(GetValueByIndex(index));
    }
    return count;
}

void StringArray::SetCountedList(String const& name, StringArray const& list) {
    // The list may be this array, which grows: only the items that it has now count.
    int const count = list.Count();
    std::vector<int> const indexes = itemIndexes(*this, name, count);
    SetValueByName(countName(name), String::format("%1").argi(1, count));
    for (int i = 0; i < count; ++i) {
        int const index = indexes[static_cast<std::size_t>(i)];
        if (index >= 0) {
            SetValueByIndex(index, list[i]);
        } else {
            Add(itemName(name, i), list[i]);
        }
    }
}

StringPCharList StringArray::AsPCharList(StringPCharList::ListType type) const {
    StringArray texts(step_);
    for (int i = 0; i < Count(); ++i) {
        texts.Add(type == StringPCharList::Names    ? GetNameByIndex(i)
                  : type == StringPCharList::Values ? GetValueByIndex(i)
                                                    : Get(i));
    }
    return StringPCharList(texts);
}

StringPCharList::StringPCharList(StringArray const& texts) {
    for (int i = 0; i < texts.Count(); ++i) {
        texts_.push_back(texts[i]);
        pointers_.push_back(texts_.back().getCString());
    }
    pointers_.push_back(nullptr);
}

}  // namespace core
