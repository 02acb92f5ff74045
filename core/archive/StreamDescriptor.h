#pragma once

#include <array>

#include "core/text/String.h"

namespace core {

class StreamSequencer;

/// The metadata of one file of an archive. Texts are UTF-8.
class StreamDescriptor {
public:
    enum class Text { name, destination, owner, group, commandLine };
    static constexpr int textCount = 5;

    /// Belongs to the archive owner, which must outlive it.
    explicit StreamDescriptor(StreamSequencer const& owner) : owner_(owner) {}

    String const& GetText(Text which) const { return texts_[static_cast<std::size_t>(which)]; }
    void SetText(Text which, String const& text) { texts_[static_cast<std::size_t>(which)] = text; }
    String const& GetName() const { return GetText(Text::name); }
    String const& GetDestination() const { return GetText(Text::destination); }

    /// The path of the file that is archived. An archive does not store it.
    String const& GetOriginalPath() const { return originalPath_; }
    void SetOriginalPath(String const& path) { originalPath_ = path; }

    /// Bits of archive::FileFlag, and bits for the program that installs the archive.
    unsigned GetFlags() const { return flags_; }
    void SetFlags(unsigned flags) { flags_ = flags; }
    /// Permission bits, such as 0755.
    unsigned GetAttributes() const { return attributes_; }
    void SetAttributes(unsigned attributes) { attributes_ = attributes; }

    /// Offset of the data from the start of all data, and their size, in bytes. Those of an archive
    /// read from a stream are not validated: see StreamSequencerReader::FindMisplacedFile.
    unsigned long long GetOffset() const { return offset_; }
    unsigned long long GetSize() const { return size_; }
    void SetExtent(unsigned long long offset, unsigned long long size) {
        offset_ = offset;
        size_ = size;
    }

    /// Whether the flags or the archive's mode ask for scrambled data. The flags can ask for it in
    /// mode None, too: only IsScrambled describes the data in the archive.
    bool IsCryptEnabled() const;
    /// Whether the data in the archive are scrambled: IsCryptEnabled, and the archive has a key,
    /// which it has in every mode but None.
    bool IsScrambled() const;
    /// Scrambles or unscrambles (the same operation) length bytes of the data, which start at
    /// position. Does nothing unless IsScrambled.
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
