#include "core/object/IStream.h"
#include "core/text/StringArray.h"
#include "fuzz/Input.h"
#include "fuzz/require.h"

namespace {

using core::String;
using core::StringArray;

/// Gives its bytes in pieces of a few each.
class Pieces : public core::IStream {
public:
    Pieces(std::string bytes, int pieceSize) : bytes_(std::move(bytes)), pieceSize_(pieceSize) {}

    int Read(void* buffer, int count) override {
        auto const length = static_cast<std::size_t>(std::min(count, pieceSize_));
        std::string const piece = bytes_.substr(done_, length);
        std::copy(piece.begin(), piece.end(), static_cast<char*>(buffer));
        done_ += piece.size();
        return static_cast<int>(piece.size());
    }
    int Write(void const*, int) override { return -1; }

private:
    std::string const bytes_;
    int const pieceSize_;
    std::size_t done_ = 0;
};

bool same(StringArray const& one, StringArray const& other) {
    return one.Count() == other.Count() && one.AsString() == other.AsString();
}

/// The lines of a text are the same however it comes.
void requireSameLines(std::string const& bytes, int pieceSize) {
    StringArray fromStream;
    Pieces pieces(bytes, pieceSize);
    require(fromStream.LoadFrom(&pieces));
    StringArray fromText;
    fromText.LoadFrom(String(bytes.c_str()));
    require(same(fromText, fromStream));
    require(fromText.AsString().ReplaceNewLine("") == String(bytes.c_str()).ReplaceNewLine(""));
}

/// What is true of each entry of a configuration, and of all of them.
void requireSense(StringArray const& conf) {
    for (int i = 0; i < conf.Count(); ++i) {
        String const entry = conf[i];
        require(!entry.IsEmpty() && entry == entry.Trim());
        require(!entry.IsDelimiter("#;", 0) && entry.FindDelimiter("\r\n") < 0);
        String const name = conf.GetNameByIndex(i);
        String const value = conf.GetValueByIndex(i);
        require(name == name.Trim() && value == value.Trim());
        require(name.IsEmpty() || entry == name + "=" + value);
    }
    StringArray again;
    again.LoadAsConfFileFrom(conf.AsString());
    require(same(again, conf));
}

void requireCountedList(StringArray const& conf, String const& name) {
    StringArray list;
    int const count = conf.GetCountedList(name, list);
    require(count == list.Count() && count <= conf.Count());
    if (name.Find('=') >= 0) {
        return;
    }
    StringArray changed(conf);
    changed.SetCountedList(name, conf);
    StringArray read;
    require(changed.GetCountedList(name, read) == conf.Count() && same(read, conf));
}

}  // namespace

/// The size of the pieces, a line with the name of a list, then the configuration.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    int const pieceSize = 1 + input.Byte();
    String const name(input.Line().c_str());
    std::string const bytes = input.Rest();

    StringArray fromStream;
    Pieces pieces(bytes, pieceSize);
    require(fromStream.LoadAsConfFileFrom(&pieces));
    requireSense(fromStream);
    if (bytes.find('\0') == std::string::npos) {
        requireSameLines(bytes, pieceSize);
    }
    requireCountedList(fromStream, name);
    return 0;
}
