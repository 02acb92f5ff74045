#include "core/object/IStream.h"
#include "core/text/StringArray.h"
#include "fuzz/Input.h"
#include "fuzz/require.h"

namespace {

using core::String;
using core::StringArray;

/// Reads or writes its bytes in chunks of a few each, and returns end after the last one.
class Chunks : public core::IStream {
public:
    Chunks(std::string bytes, int chunkSize, int end = 0)
        : bytes_(std::move(bytes)), chunkSize_(chunkSize), end_(end) {}

    int Read(void* buffer, int count) override {
        std::string const chunk = Next(count);
        std::copy(chunk.begin(), chunk.end(), static_cast<char*>(buffer));
        return chunk.empty() ? end_ : static_cast<int>(chunk.size());
    }
    /// Accepts its bytes only.
    int Write(void const* data, int count) override {
        std::string const chunk = Next(count);
        require(std::equal(chunk.begin(), chunk.end(), static_cast<char const*>(data)));
        return chunk.empty() ? end_ : static_cast<int>(chunk.size());
    }
    bool IsAtEnd() const { return done_ == bytes_.size(); }

private:
    std::string Next(int count) {
        auto const length = static_cast<std::size_t>(std::min(count, chunkSize_));
        std::string const chunk = bytes_.substr(done_, length);
        done_ += chunk.size();
        return chunk;
    }

    std::string const bytes_;
    int const chunkSize_;
    int const end_;
    std::size_t done_ = 0;
};

bool same(StringArray const& one, StringArray const& other) {
    return one.Count() == other.Count() && one.AsString() == other.AsString();
}

/// An array is saved completely, or SaveTo returns false if the stream is full before its end.
void requireSaves(StringArray const& array, int chunkSize) {
    std::string const text(array.AsString().View());
    Chunks stream(text, chunkSize);
    require(array.SaveTo(&stream) && stream.IsAtEnd());
    Chunks full(text.substr(0, text.size() / 2), chunkSize, static_cast<int>(text.size() % 2) - 1);
    require(text.empty() || !array.SaveTo(&full));
}

/// The lines of a text do not depend on the size of its chunks.
void requireSameLines(std::string const& bytes, int chunkSize) {
    StringArray fromStream;
    Chunks chunks(bytes, chunkSize);
    require(fromStream.LoadFrom(&chunks));
    StringArray fromText;
    fromText.LoadFrom(String(bytes.c_str()));
    require(same(fromText, fromStream));
    Chunks broken(bytes, chunkSize, -1);
    require(!fromStream.LoadFrom(&broken) && !fromStream.LoadAsConfFileFrom(&broken));
    require(same(fromText, fromStream));
    requireSaves(fromText, chunkSize);
    require(fromText.AsString().ReplaceNewLine("") == String(bytes.c_str()).ReplaceNewLine(""));
}

/// Requires that entries are trimmed, without comments, and stay the same when loaded again.
void requireValid(StringArray const& conf) {
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

}  // namespace

/// Input: the chunk size, then the configuration.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Input input(data, size);
    int const chunkSize = 1 + input.Byte();
    std::string const bytes = input.Rest();

    StringArray fromStream;
    Chunks chunks(bytes, chunkSize);
    require(fromStream.LoadAsConfFileFrom(&chunks));
    requireValid(fromStream);
    if (bytes.find('\0') == std::string::npos) {
        StringArray fromText;
        fromText.LoadAsConfFileFrom(String(bytes.c_str()));
        require(same(fromText, fromStream));
        requireSameLines(bytes, chunkSize);
    }
    return 0;
}
