#include <gtest/gtest.h>

#include "tests/core/archive/MemoryBuilder.h"
#include "tests/core/archive/golden.h"
#include "tests/support/PrintText.h"

namespace {

using core::StreamDescriptor;
using core::StreamSequencerReader;
using golden::sample;
using support::memory;
using support::rest;
using Mode = core::StreamSequencer::CryptMode;
using Text = StreamDescriptor::Text;

/// A reader on bytes, and what it says of them.
struct Reading {
    explicit Reading(std::string const& bytes) : stream(memory(bytes)) {
        reader.SetStream(stream.Get());
        code = reader.Read();
    }
    core::ClassRef<core::MemoryStream> stream;
    StreamSequencerReader reader;
    int code;
};

int codeOf(std::string const& bytes) {
    return Reading(bytes).code;
}

std::string rewritten(StreamSequencerReader& from) {
    int result = 1;
    std::string bytes = support::rewritten(from, result);
    EXPECT_EQ(result, 0);
    return bytes;
}

TEST(Reader, TakesInGoldenArchivesAndTheyAreRewrittenToTheByte) {
    for (unsigned const version : {0x00010000u, 0x00010001u, 0x0001FFFFu, 0x00020000u}) {
        for (unsigned const crypt : {0u, 1u, 2u, 3u}) {
            for (bool const bare : {false, true}) {
                golden::Archive archive = sample(version, crypt);
                if (bare) {
                    archive.uniqueId.reset();
                    archive.sourceId.reset();
                    archive.targetId.reset();
                    archive.attributes.clear();
                }
                std::string const bytes = bytesOf(archive);
                Reading read(bytes);
                ASSERT_EQ(read.code, 0) << version << ", " << crypt;
                EXPECT_EQ(rewritten(read.reader), bytes) << version << ", " << crypt;
                EXPECT_EQ(read.reader.GetCryptKey(), archive.key);
                ASSERT_EQ(read.reader.FileCount(), 4);
                for (int i = 0; i < 4; ++i) {
                    auto const data = read.reader.OpenData(i);
                    EXPECT_EQ(rest(*data), archive.files[static_cast<std::size_t>(i)].data);
                }
                EXPECT_EQ(read.reader.FindMisplacedFile(), -1);
                EXPECT_EQ(read.reader.Read(), -999);
            }
        }
    }
}

TEST(Reader, GivesTheTextsAndNumbersOfAnArchive) {
    Reading read(bytesOf(sample(0x00020000, 3)));
    StreamSequencerReader const& reader = read.reader;
    EXPECT_EQ(reader.GetCryptMode(), Mode::All);
    EXPECT_EQ(reader.uniqueId, 0xFEDCBA9876543210);
    EXPECT_EQ(reader.sourceId, core::String("plant 7"));
    EXPECT_EQ(reader.targetId, core::String(""));
    EXPECT_EQ(reader.Attributes().GetValueByName("release"), "1.2=3");
    EXPECT_EQ(reader.Attributes()[1], "\u00FCber=\U0001F680");
    StreamDescriptor const& file = reader.File(0);
    EXPECT_EQ(file.GetName(), "app.bin");
    EXPECT_EQ(file.GetDestination(), "/opt/app/");
    EXPECT_EQ(file.GetText(Text::owner), "root");
    EXPECT_EQ(file.GetText(Text::group), "wheel");
    EXPECT_EQ(file.GetText(Text::commandLine), "restart app");
    EXPECT_EQ(file.GetFlags(), 0xABCD0100);
    EXPECT_EQ(file.GetAttributes(), 0755u);
    EXPECT_EQ(file.GetOriginalPath(), "");
    EXPECT_EQ(reader.File(2).GetName(), "caf\u00E9-\U0001F4E6");
    EXPECT_EQ(reader.File(3).GetOffset(), 3027u);

    auto const data = read.reader.OpenData(0);
    auto const other = read.reader.OpenData(2);
    EXPECT_EQ(data->Seek(-5, core::Stream::SeekOrigin::end), 22);
    EXPECT_EQ(rest(*other).size(), 3000u);
    EXPECT_EQ(rest(*data), " more") << "a stream keeps its place while others are read";
    EXPECT_LT(data->Write("x", 1), 0);
}

TEST(Reader, TellsTruncatedAndChangedArchives) {
    for (unsigned const crypt : {0u, 3u}) {
        golden::Archive archive = sample(0x00020000, crypt);
        archive.files.resize(1);
        std::string const bytes = bytesOf(archive);
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            Reading const read(bytes.substr(0, size));
            ASSERT_EQ(read.code, -2) << size;
            ASSERT_EQ(read.reader.GetPlace().end, static_cast<long long>(size));
        }
        std::size_t const trailer = bytes.size() - 16;
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            for (char const change : {'\x01', '\x80', '\xFF'}) {
                std::string changed = bytes;
                changed[at] = static_cast<char>(changed[at] ^ change);
                int const code = codeOf(changed);
                if (at < 8) {
                    ASSERT_EQ(code, -3) << at;
                } else if (at < trailer) {
                    ASSERT_TRUE(code <= -2 && code >= -7) << at << " gave " << code;
                } else {
                    ASSERT_EQ(code, at < trailer + 4 ? 0 : at < trailer + 8 ? -6 : -7) << at;
                }
            }
        }
    }
}

TEST(Reader, IsNotLedAstrayByNumbersThatLie) {
    golden::Archive archive;
    archive.files = {{u"a", u"", u"", u"", u"", 0, 0, "first"},
                     {u"b", u"", u"", u"", u"", 0, 0, "second"}};
    std::string const bytes = bytesOf(archive);
    std::size_t const count = 16;
    std::size_t const second = 24 + 4096;
    std::uint64_t const all = ~0ULL;
    struct Row {
        std::size_t at;
        unsigned size;
        std::uint64_t value;
        int code;
        int misplaced;  ///< of a sound archive: the first file whose offset is wrong
        bool opens;     ///< whether its data can be had all the same
    };
    for (Row const& row : {
             Row{8, 4, 0x0000FFFF, -4, 0, false}, Row{8, 4, 0x00020001, -5, 0, false},
             Row{8, 4, all, -5, 0, false}, Row{12, 4, 0x3FF, -2, 0, false},
             Row{12, 4, 0x13FFFC00, 0, -1, true},  // bits that mean nothing
             Row{count, 8, all, -6, 0, false},     // -1: no files, a trailer in the first one
             Row{count, 8, 0x80000000, -6, 0, false}, Row{count, 8, 0x7FFFFFFF, -2, 0, false},
             Row{count, 8, 0xFFFFFFFF00000002, 0, -1, true},  // the high half does not count
             Row{second + 8, 8, all, -2, 0, false}, Row{second + 8, 8, 1ULL << 63, -2, 0, false},
             Row{second + 8, 8, 23, -2, 0, false},  // one byte into the end
             Row{second, 8, all, 0, 1, false}, Row{second, 8, 1ULL << 63, 0, 1, false},
             Row{second, 8, 6, 0, 1, false},  // one byte beyond the data
             Row{second, 8, 0, 0, 1, true},   // over the first
         }) {
        std::string const bad = golden::withSoundCrc(
            std::string(bytes).replace(row.at, row.size, golden::number(row.value, row.size)));
        Reading read(bad);
        EXPECT_EQ(read.code, row.code) << row.at << ": " << row.value;
        if (row.code == 0) {
            EXPECT_EQ(read.reader.FindMisplacedFile(), row.misplaced) << row.value;
        }
        EXPECT_EQ(bool(read.reader.OpenData(1)), row.opens) << row.at << ": " << row.value;
    }
    EXPECT_FALSE(Reading(bytes).reader.OpenData(-1));
    EXPECT_FALSE(Reading(bytes).reader.OpenData(2));
    StreamSequencerReader none;
    EXPECT_EQ(none.Read(), -1);
}

TEST(Reader, ReadsAnEmptyArchiveAgainAndForgetsWhatItSaid) {
    golden::Archive archive;
    archive.attributes = {u"a=b"};
    Reading read(bytesOf(archive) + "what follows the trailer");
    EXPECT_EQ(read.code, 0);
    EXPECT_EQ(read.reader.Read(), 0);
    EXPECT_EQ(read.reader.Attributes().Count(), 1);
}

}  // namespace
