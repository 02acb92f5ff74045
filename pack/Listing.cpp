#include "pack/Listing.h"

#include <algorithm>
#include <array>

#include "core/console/Console.h"
#include "core/console/UsageText.h"
#include "core/text/printable.h"
#include "pack/printable.h"
#include "pack/textNames.h"

namespace pack {

using core::Console;
using core::hex;
using core::printable;
using core::StreamDescriptor;
using core::StreamSequencer;
using core::StreamSequencerReader;
using core::String;

namespace {

using Text = StreamDescriptor::Text;

struct Column {
    char const* title;
    bool alignsRight;
};

constexpr Column columns[] = {
    {"Size", true},   {"Mode", true},  {"Flags", false},       {"Owner", false},
    {"Group", false}, {"Name", false}, {"Destination", false}, {"Command", false},
};
constexpr std::size_t columnCount = std::size(columns);
using Row = std::array<String, columnCount>;

Row rowOf(StreamDescriptor const& file) {
    auto const text = [&file](Text which) { return printable(file.GetText(which)); };
    return {String::format("%1").argi(1, file.GetSize()),
            octal(file.GetAttributes()),
            hex(file.GetFlags(), 8),
            text(Text::owner),
            text(Text::group),
            text(Text::name),
            text(Text::destination),
            text(Text::commandLine)};
}

String lineOf(Row const& row, std::array<int, columnCount> const& widths) {
    String line;
    for (std::size_t i = 0; i < columnCount; ++i) {
        // Counted in characters: the string's own alignment counts bytes.
        String const blanks = String::OfChar(' ', widths[i] - characters(row[i]));
        line += columns[i].alignsRight ? blanks + row[i] : row[i] + blanks;
        line += "  ";
    }
    return line.TrimRight();
}

void print(char const* label, String const& value) {
    Console::write(String::format("- %1: %2").argi(1, label).argi(2, value), true);
}

void printHeaders(StreamSequencer const& archive) {
    unsigned const version = archive.GetVersion();
    print("Format version",
          String::format("%1.%2").argi(1, version >> 16).argi(2, version & 0xFFFF));
    bool const scrambled = archive.GetCryptMode() != StreamSequencer::CryptMode::None;
    print("Scrambled", scrambled ? String::format("%1, key %2")
                                       .argi(1, nameOf(archive.GetCryptMode()))
                                       .argi(2, hex(archive.GetCryptKey(), 8))
                                 : String(nameOf(archive.GetCryptMode())));
    if (archive.uniqueId) {
        print("Unique ID", hex(*archive.uniqueId, 16));
    }
    if (archive.sourceId) {
        print("Source ID", printable(*archive.sourceId));
    }
    if (archive.targetId) {
        print("Target ID", printable(*archive.targetId));
    }
    for (int i = 0; i < archive.Attributes().Count(); ++i) {
        print("Attribute", printable(archive.Attributes()[i]));
    }
}

/// One member of a JSON object; value stands as it is.
String member(char const* name, String const& value) {
    return String::format("\"%1\":").argi(1, name).AppendNew(value);
}

String jsonNumber(unsigned long long value) {
    return String::format("%1").argi(1, value);
}

String jsonOf(StreamDescriptor const& file) {
    String json("{");
    for (Text const text : allTexts) {
        json += member(nameOf(text), quoted(file.GetText(text))) + ",";
    }
    json += member("attributes", quoted(octal(file.GetAttributes()))) + ",";
    json += member("flags", quoted(hex(file.GetFlags(), 8))) + ",";
    json += member("scrambled", file.IsCryptEnabled() ? "true" : "false") + ",";
    json += member("offset", jsonNumber(file.GetOffset())) + ",";
    return json + member("size", jsonNumber(file.GetSize())) + "}";
}

}  // namespace

void printTable(StreamSequencerReader const& reader) {
    printHeaders(reader);
    print("Files", String::format("%1").argi(1, reader.FileCount()));
    if (reader.FileCount() == 0) {
        return;
    }
    Row titles;
    std::array<int, columnCount> widths{};
    for (std::size_t i = 0; i < columnCount; ++i) {
        titles[i] = columns[i].title;
        widths[i] = characters(titles[i]);
    }
    for (int file = 0; file < reader.FileCount(); ++file) {
        Row const row = rowOf(reader.File(file));
        for (std::size_t i = 0; i < columnCount; ++i) {
            widths[i] = std::max(widths[i], characters(row[i]));
        }
    }
    Console::write(core::usage::heading(lineOf(titles, widths)), true);
    for (int file = 0; file < reader.FileCount(); ++file) {
        Console::write(lineOf(rowOf(reader.File(file)), widths), true);
    }
}

void printJson(String const& path, StreamSequencerReader const& reader) {
    // Written piece by piece: an archive may hold more than fits into a text.
    Console::write(String("{") + member("archive", quoted(path)) + "," +
                       member("version", quoted(hex(reader.GetVersion(), 8))) + "," +
                       member("crypt", quoted(nameOf(reader.GetCryptMode()))) + ",",
                   false);
    if (reader.GetCryptMode() != StreamSequencer::CryptMode::None) {
        Console::write(member("key", quoted(hex(reader.GetCryptKey(), 8))) + ",", false);
    }
    if (reader.uniqueId) {
        Console::write(member("uniqueId", quoted(hex(*reader.uniqueId, 16))) + ",", false);
    }
    if (reader.sourceId) {
        Console::write(member("sourceId", quoted(*reader.sourceId)) + ",", false);
    }
    if (reader.targetId) {
        Console::write(member("targetId", quoted(*reader.targetId)) + ",", false);
    }
    Console::write(member("attributes", "["), false);
    for (int i = 0; i < reader.Attributes().Count(); ++i) {
        Console::write((i > 0 ? "," : "") + quoted(reader.Attributes()[i]), false);
    }
    Console::write(String("],") + member("files", "["), false);
    for (int i = 0; i < reader.FileCount(); ++i) {
        Console::write((i > 0 ? "," : "") + jsonOf(reader.File(i)), false);
    }
    Console::write(String("],") + member("crc", quoted(hex(reader.GetCRC(), 8))) + "}", true);
}

void printJsonError(String const& path, core::Fault const& error) {
    Console::write(String("{") + member("archive", quoted(path)) + "," + member("error", "{") +
                       member("title", quoted(error.title)) + "," +
                       member("message", quoted(error.message)) + "}}",
                   true);
}

}  // namespace pack
