#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Archives put together from the byte table alone, without a line of the library.
namespace golden {

struct File {
    std::u16string name, destination, owner, group, command;
    unsigned flags = 0;
    unsigned attributes = 0;
    std::string data;
};

struct Archive {
    unsigned version = 0x00020000;
    unsigned crypt = 0;  ///< 1 headers, 2 data, 3 both
    std::uint64_t keyBlock = 0;
    std::uint32_t key = 0;  ///< the one that keyBlock carries
    std::optional<std::uint64_t> uniqueId;
    std::optional<std::u16string> sourceId, targetId;
    std::vector<std::u16string> attributes;
    std::vector<File> files;
};

std::string bytesOf(Archive const& archive);
/// The same with a closing CRC that is right for what stands before it.
std::string withValidCrc(std::string bytes);
/// A number, least significant byte first.
std::string number(std::uint64_t value, unsigned size);
/// A text slot of size bytes.
std::string slot(std::u16string const& text, unsigned size);

/// Three files and all the headers there are, texts beyond ASCII included.
Archive sample(unsigned version, unsigned crypt);

}  // namespace golden
