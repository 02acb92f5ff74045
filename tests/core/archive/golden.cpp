#include "tests/core/archive/golden.h"

#include "tests/support/bitwiseCrc32.h"

namespace golden {

namespace {

std::string const magic = "QXRB5129";

std::string scrambled(std::string bytes, std::uint32_t key) {
    for (unsigned i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<char>(bytes[i] ^ static_cast<char>(key >> 8 * (i % 4)));
    }
    return bytes;
}

}  // namespace

std::string number(std::uint64_t value, unsigned size) {
    std::string bytes;
    for (unsigned i = 0; i < size; ++i) {
        bytes += static_cast<char>(value >> 8 * i);
    }
    return bytes;
}

std::string slot(std::u16string const& text, unsigned size) {
    std::string bytes;
    for (char16_t const unit : text) {
        bytes += number(unit, 2);
    }
    bytes.resize(size);
    return bytes;
}

std::string withValidCrc(std::string bytes) {
    std::size_t const size = bytes.size() - 16;
    return bytes.replace(size + 4, 4, number(bitwiseCrc32(bytes.data(), size), 4));
}

std::string bytesOf(Archive const& archive) {
    std::vector<std::string> headers;
    unsigned flags = archive.crypt % 2 << 27 | archive.crypt / 2 << 26;
    if (archive.uniqueId) {
        flags |= 0x80000000;
        headers.push_back(number(*archive.uniqueId, 8));
    }
    for (auto const& [id, flag] :
         {std::pair(archive.sourceId, 0x40000000u), std::pair(archive.targetId, 0x20000000u)}) {
        if (id) {
            flags |= flag;
            headers.push_back(slot(*id, 128));
        }
    }
    for (auto const& attribute : archive.attributes) {
        ++flags;
        headers.push_back(slot(attribute, 128));
    }
    headers.push_back(number(archive.files.size(), 8));

    std::string data;
    bool const newest = archive.version == 0x00020000;
    for (File const& file : archive.files) {
        std::string record = number(data.size(), 8) + number(file.data.size(), 8) +
                             number(file.flags, 4) + number(file.attributes, 4);
        record.resize(newest ? 128 : 256);
        record += slot(file.name, 512) + slot(file.destination, 3072);
        if (newest) {
            record += slot(file.owner, 128) + slot(file.group, 128) + slot(file.command, 128);
        }
        headers.push_back(record);
        bool const scrambles =
            (file.flags & 0x10) != 0 || ((file.flags & 0x20) == 0 && archive.crypt >= 2);
        data += scrambles ? scrambled(file.data, archive.key) : file.data;
    }

    std::string bytes = magic + number(archive.version, 4) + number(flags, 4);
    bytes += archive.crypt != 0 ? number(archive.keyBlock, 8) : "";
    for (std::string const& header : headers) {
        bytes += archive.crypt % 2 == 1 ? scrambled(header, archive.key) : header;
    }
    return withValidCrc(bytes + data + std::string(8, '\0') + magic);
}

Archive sample(unsigned version, unsigned crypt) {
    Archive archive;
    archive.version = version;
    archive.crypt = crypt;
    // Key bits 31, 28, 4 and 0 are stored bits 1, 7, 55 and 63. The second number is filler.
    archive.keyBlock = crypt != 0 ? 0x8080000000000082 | 0x5040000000001501 : 0;
    archive.key = crypt != 0 ? 0x90000011 : 0;
    archive.uniqueId = 0xFEDCBA9876543210;
    archive.sourceId = u"plant 7";
    archive.targetId = u"";
    archive.attributes = {u"release=1.2=3", u"\u00FCber=\U0001F680"};
    archive.files = {
        {u"app.bin", u"/opt/app/", u"root", u"wheel", u"restart app", 0xABCD01CF, 0755,
         "twelve bytes and a few more"},
        {u"empty", u"etc/empty", u"", u"", u"", 0, 0644, ""},
        {u"caf\u00E9-\U0001F4E6", u"", u"o", u"g", u"c", 0x20, 0777, std::string(30000, 'x')},
        {u"", u"always", u"", u"", u"", 0x10, 0, "odd"},
    };
    return archive;
}

}  // namespace golden
