#pragma once

#include <deque>
#include <optional>

#include "core/archive/StreamDescriptor.h"
#include "core/archive/archiveFormat.h"
#include "core/object/BasicClass.h"
#include "core/text/StringArray.h"

namespace core {

/// The metadata of an archive (a stream sequence) and of its files, the CRC of its stream and the
/// scrambling. It does not contain the data of the files. Texts are UTF-8.
class StreamSequencer : public BasicClass {
public:
    /// The scrambled parts. The flags of a file may override the mode for its data.
    enum class CryptMode { None = 0, Headers = 1, Data = 2, All = 3 };

    /// Calls core::crc::init, so that programs without an Application can use archives.
    StreamSequencer();
    StreamSequencer(StreamSequencer const&) = delete;
    StreamSequencer& operator=(StreamSequencer const&) = delete;

    char const* ClassName() const override;

    /// Major version in the high 16 bits, from archive::oldestVersion to archive::newestVersion.
    unsigned GetVersion() const { return version_; }
    void SetVersion(unsigned version) { version_ = version; }

    CryptMode GetCryptMode() const { return cryptMode_; }
    void SetCryptMode(CryptMode mode) { cryptMode_ = mode; }
    bool IsCryptHeadersEnabled() const;
    bool IsCryptDataEnabled() const;

    /// The key as stored in the stream: bit 31 - i of the key is bit 2i + 1 of the block. The other
    /// bits are filler.
    unsigned long long GetCryptKeyBlock() const { return keyBlock_; }
    void SetCryptKeyBlock(unsigned long long block) { keyBlock_ = block; }
    /// Sets a block with this key, filled with 0 bits.
    void SetCryptKey(unsigned key);
    /// Returns the key in the block, even in mode None, in which the stream has no key.
    unsigned GetCryptKey() const;

    // Each may be missing, which differs from an empty text.
    std::optional<unsigned long long> uniqueId;
    std::optional<String> sourceId;
    std::optional<String> targetId;

    /// Texts "name=value" that apply to the whole archive.
    StringArray const& Attributes() const { return attributes_; }
    void AddAttribute(String const& text) { attributes_.Add(text); }
    void AddAttribute(String const& name, String const& value) { attributes_.Add(name, value); }

    int FileCount() const { return static_cast<int>(files_.size()); }
    /// The index must be valid. References remain valid when files are added.
    StreamDescriptor& File(int index) { return files_[static_cast<std::size_t>(index)]; }
    StreamDescriptor const& File(int index) const {
        return files_[static_cast<std::size_t>(index)];
    }

    // The CRC-32 of the stream so far.

    void ResetCRC() { crc_ = 0; }
    void UpdateCRC(void const* data, int length);
    unsigned GetCRC() const { return crc_; }

    /// Combines length bytes of a scrambled region, which start at position, with the key by
    /// exclusive or. Both functions do the same; neither regards the mode.
    void CryptBlock(void* data, int length, unsigned long long position) const;
    void UncryptBlock(void* data, int length, unsigned long long position) const {
        CryptBlock(data, length, position);
    }

protected:
    StreamDescriptor& AppendFile() { return files_.emplace_back(*this); }
    /// Resets everything except the files.
    void ClearHeaders();

private:
    unsigned version_ = archive::newestVersion;
    CryptMode cryptMode_ = CryptMode::None;
    unsigned long long keyBlock_ = 0;
    StringArray attributes_{16};
    std::deque<StreamDescriptor> files_;
    unsigned crc_ = 0;
};

}  // namespace core
