#include "pack/Listing.h"

#include <algorithm>
#include <array>

#include "core/console/lines.h"
#include "core/text/json.h"
#include "core/text/message.h"
#include "core/text/printable.h"
#include "pack/textNames.h"
#include "program/usage.h"

namespace pack {

using core::hex;
using core::jsonMembers;
using core::JsonValue;
using core::message;
using core::printable;
using core::printLine;
using core::printText;
using core::StreamDescriptor;
using core::StreamSequencer;
using core::StreamSequencerReader;
using core::String;

namespace {

using Section = StreamSequencerReader::Section;
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

/// Returns permission bits in octal, as chmod accepts them.
String octal(unsigned bits) {
    return String::format("%1").argi(1, bits, 4, 8);
}

/// Returns the number of characters, by which the table aligns its columns.
int characterCount(String const& utf8) {
    auto const isFirstByte = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
    return static_cast<int>(std::ranges::count_if(utf8.View(), isFirstByte));
}

Row rowOf(StreamDescriptor const& file) {
    auto const text = [&file](Text which) { return printable(file.GetText(which)); };
    return {message("%1", file.GetSize()),
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
        // In characters: the alignment of String::format counts bytes.
        String const padding = String::OfChar(' ', widths[i] - characterCount(row[i]));
        line += columns[i].alignsRight ? padding + row[i] : row[i] + padding;
        line += "  ";
    }
    return line.TrimRight();
}

void print(char const* label, String const& value) {
    printLine(message("- %1: %2", label, value));
}

bool hasRead(StreamSequencerReader const& reader, Section section) {
    return reader.GetReadPosition().section > section;
}

bool hasReadKey(StreamSequencerReader const& reader) {
    return reader.GetCryptMode() != StreamSequencer::CryptMode::None &&
           hasRead(reader, Section::keyBlock);
}

void printHeaders(StreamSequencerReader const& archive) {
    unsigned const version = archive.GetVersion();
    print("Format version", message("%1.%2", version >> 16, version & 0xFFFF));
    print("Scrambled", hasReadKey(archive) ? message("%1, key %2", nameOf(archive.GetCryptMode()),
                                                     hex(archive.GetCryptKey(), 8))
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

String jsonOf(StreamDescriptor const& file) {
    String json("{");
    for (Text const text : allTexts) {
        json += jsonMembers({{nameOf(text), file.GetText(text)}}) + ",";
    }
    return json +
           jsonMembers({{"attributes", octal(file.GetAttributes())},
                        {"flags", hex(file.GetFlags(), 8)},
                        {"scrambled", file.IsScrambled()},
                        {"offset", file.GetOffset()},
                        {"size", file.GetSize()}}) +
           "}";
}

/// In parts: a list may be longer than a string can be.
void printJsonContent(StreamSequencerReader const& reader) {
    printText("," + jsonMembers({{"version", hex(reader.GetVersion(), 8)},
                                 {"crypt", nameOf(reader.GetCryptMode())}}));
    if (hasReadKey(reader)) {
        printText("," + jsonMembers({{"key", hex(reader.GetCryptKey(), 8)}}));
    }
    if (reader.uniqueId) {
        printText("," + jsonMembers({{"uniqueId", hex(*reader.uniqueId, 16)}}));
    }
    if (reader.sourceId) {
        printText("," + jsonMembers({{"sourceId", *reader.sourceId}}));
    }
    if (reader.targetId) {
        printText("," + jsonMembers({{"targetId", *reader.targetId}}));
    }
    printText(",\"attributes\":[");
    for (int i = 0; i < reader.Attributes().Count(); ++i) {
        printText((i > 0 ? "," : "") + core::jsonString(reader.Attributes()[i]));
    }
    printText("],\"files\":[");
    for (int i = 0; i < reader.FileCount(); ++i) {
        printText((i > 0 ? "," : "") + jsonOf(reader.File(i)));
    }
    printText("]");
}

}  // namespace

void printTable(StreamSequencerReader const& reader) {
    if (!hasRead(reader, Section::header)) {
        return;
    }
    printHeaders(reader);
    if (hasRead(reader, Section::fileCount)) {
        print("Files", message("%1", reader.FileCount()));
    }
    if (reader.FileCount() == 0) {
        return;
    }
    Row titles;
    std::array<int, columnCount> widths{};
    for (std::size_t i = 0; i < columnCount; ++i) {
        titles[i] = columns[i].title;
        widths[i] = characterCount(titles[i]);
    }
    for (int file = 0; file < reader.FileCount(); ++file) {
        Row const row = rowOf(reader.File(file));
        for (std::size_t i = 0; i < columnCount; ++i) {
            widths[i] = std::max(widths[i], characterCount(row[i]));
        }
    }
    printLine(program::usage::heading(lineOf(titles, widths)));
    for (int file = 0; file < reader.FileCount(); ++file) {
        printLine(lineOf(rowOf(reader.File(file)), widths));
    }
}

void printJson(String const& path, StreamSequencerReader const& reader, core::Fault const* error) {
    printText("{" + jsonMembers({{"archive", path}}));
    if (hasRead(reader, Section::header)) {
        printJsonContent(reader);
    }
    printLine("," +
              jsonMembers(
                  {error != nullptr
                       ? core::JsonMember{"error", JsonValue::Object({{"title", error->title},
                                                                      {"message", error->message}})}
                       : core::JsonMember{"crc", hex(reader.GetCRC(), 8)}}) +
              "}");
}

}  // namespace pack
