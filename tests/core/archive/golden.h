#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Archives built from the documented layout, without the library.
namespace golden {

struct File {
    std::u16string name, destination, owner, group, command;
    unsigned flags = 0;
    unsigned attributes = 0;
    std::string data;
};

struct Archive {
    unsigned version = 0x00020000;
    unsigned crypt = 0;  ///< 1: headers, 2: data, 3: both
    std::uint64_t keyBlock = 0;
    std::uint32_t key = 0;  ///< must be that of keyBlock
    std::optional<std::uint64_t> uniqueId;
    std::optional<std::u16string> sourceId, targetId;
    std::vector<std::u16string> attributes;
    std::vector<File> files;
};

std::string bytesOf(Archive const& archive);
/// Returns bytes with the trailer's CRC corrected.
std::string withValidCrc(std::string bytes);
/// Returns value in size bytes, least significant byte first.
std::string number(std::uint64_t value, unsigned size);
/// Returns a text slot of size bytes.
std::string slot(std::u16string const& text, unsigned size);

/// Returns an archive with four files, every optional section and non-ASCII texts.
Archive sample(unsigned version, unsigned crypt);

}  // namespace golden
