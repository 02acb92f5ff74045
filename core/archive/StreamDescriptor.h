#pragma once

#include <array>

#include "core/text/String.h"

namespace core {

class StreamSequencer;

/// What an archive says of one of its files. Texts are UTF-8.
class StreamDescriptor {
public:
    enum class Text { name, destination, owner, group, commandLine };
    static constexpr int textCount = 5;

    /// A file of the archive owner, which must outlive it.
    explicit StreamDescriptor(StreamSequencer const& owner) : owner_(owner) {}

    String const& GetText(Text which) const { return texts_[static_cast<std::size_t>(which)]; }
    void SetText(Text which, String const& text) { texts_[static_cast<std::size_t>(which)] = text; }
    String const& GetName() const { return GetText(Text::name); }
    String const& GetDestination() const { return GetText(Text::destination); }

    /// Where the file was taken from; an archive does not keep it.
    String const& GetOriginalPath() const { return originalPath_; }
    void SetOriginalPath(String const& path) { originalPath_ = path; }

    /// See archive::FileFlag; the other bits are for the tools that install the archive.
    unsigned GetFlags() const { return flags_; }
    void SetFlags(unsigned flags) { flags_ = flags; }
    /// The permission bits.
    unsigned GetAttributes() const { return attributes_; }
    void SetAttributes(unsigned attributes) { attributes_ = attributes; }

    /// Where its data begin, counted from the start of all data, and their number, in bytes. Of an
    /// archive that was read they are what it claims.
    unsigned long long GetOffset() const { return offset_; }
    unsigned long long GetSize() const { return size_; }
    void SetExtent(unsigned long long offset, unsigned long long size) {
        offset_ = offset;
        size_ = size;
    }

    /// Whether its flags or the archive's mode ask for scrambled data. In mode None the data are
    /// plain all the same, because the archive carries no key.
    bool IsCryptEnabled() const;
    /// Scrambles or unscrambles, which is the same, length bytes of its data from position on.
    /// Does nothing in mode None or unless IsCryptEnabled.
    void CryptBlock(void* data, int length, unsigned long long position) const;

private:
    StreamSequencer const& owner_;
    std::array<String, textCount> texts_;
    String originalPath_;
    unsigned flags_ = 0;
    unsigned attributes_ = 0;
    unsigned long long offset_ = 0;
    unsigned long long size_ = 0;
};

}  // namespace core
