#include <codecvt>
#include <fstream>
#include <locale>

#include "sys/platform/Process.h"
#include "tests/core/archive/golden.h"

// Writes a golden archive for the tests of whole programs:
//   PATH sample VERSION CRYPT       the sample, with the key block that the builder writes
//   PATH hostile                    with texts that must not reach a terminal
//   PATH files DESTINATION...       each file contains its destination

int main(int argc, char** argv) {
    sys::platform::Arguments const arguments(argc, argv);
    std::vector<std::string> const words(arguments.Values(),
                                         arguments.Values() + arguments.Count());
    golden::Archive archive;
    if (words.at(2) == "sample") {
        archive = golden::sample(static_cast<unsigned>(std::stoul(words.at(3), nullptr, 0)),
                                 static_cast<unsigned>(std::stoul(words.at(4))));
        archive.keyBlock = archive.crypt != 0 ? 0x8080000000000082 : 0;
    } else if (words[2] == "hostile") {
        archive = golden::sample(0x00020000, 3);
        archive.files.resize(3);
        archive.files[1] = {
            u"\x1B[1m\"\\\u0085\u202E", u"etc/empty", {0xD800}, u"", u"", 0, 0644, ""};
    } else {
        std::wstring_convert<std::codecvt_utf8_utf16<char16_t>, char16_t> convert;
        for (std::size_t i = 3; i < words.size(); ++i) {
            archive.files.push_back(
                {u"", convert.from_bytes(words[i]), u"", u"", u"", 0, 0, words[i]});
        }
    }
    std::ofstream(words[1], std::ios::binary) << golden::bytesOf(archive);
}
