#include <gtest/gtest.h>

#include <cerrno>

#include "core/stream/FileStream.h"
#include "tests/core/archive/MemoryBuilder.h"
#include "tests/core/archive/golden.h"
#include "tests/support/CopyWatcher.h"
#include "tests/support/PrintText.h"

namespace {

using core::StreamSequencerReader;
using golden::sample;
using support::rest;

/// A stream that returns at most 1000 bytes at a time, as a file may do.
class ShortReads : public core::MemoryStream {
public:
    using MemoryStream::MemoryStream;
    int Read(void* buffer, int count) override {
        return MemoryStream::Read(buffer, std::min(count, 1000));
    }
};

/// A reader of bytes and its result.
struct Reading {
    explicit Reading(std::string const& bytes)
        : stream(new ShortReads(core::Buffer(bytes.data(), static_cast<int>(bytes.size())))) {
        reader.SetStream(stream.Get());
        code = reader.Read();
    }
    core::ClassRef<core::MemoryStream> stream;
    StreamSequencerReader reader;
    int code;
};

TEST(Reader, ReadsGoldenArchivesThatTheBuilderReproduces) {
    for (unsigned const version : {0x00010000u, 0x00010001u, 0x0001FFFFu, 0x00020000u}) {
        for (unsigned const crypt : {0u, 1u, 2u, 3u}) {
            golden::Archive const full = sample(version, crypt);
            golden::Archive const bare{version, crypt, full.keyBlock, full.key, {}, {},
                                       {},      {},    full.files};
            for (golden::Archive const& archive : {full, bare}) {
                std::string const bytes = bytesOf(archive);
                Reading read(bytes);
                ASSERT_EQ(read.code, 0) << version << ", " << crypt;
                int result = 1;
                EXPECT_EQ(support::rewritten(read.reader, result), bytes);
                EXPECT_EQ(result, 0);
                EXPECT_EQ(read.reader.GetCryptKey(), archive.key);
                ASSERT_EQ(read.reader.FileCount(), 4);
                for (int i = 0; i < 4; ++i) {
                    auto const data = read.reader.OpenData(i);
                    EXPECT_EQ(rest(*data), archive.files[static_cast<std::size_t>(i)].data);
                }
                EXPECT_EQ(read.reader.FindMisplacedFile(), -1);

                StreamSequencerReader check;
                check.SetStream(read.stream.Get());
                EXPECT_EQ(check.Check(), 0);
                EXPECT_EQ(check.FindMisplacedFile(), -1);
                EXPECT_TRUE(check.File(0).GetName().IsEmpty() && check.Attributes().Count() == 0);
                EXPECT_FALSE(check.OpenData(0)) << "a check stores no CRC to compare with";
            }
        }
    }
}

TEST(Reader, OpensIndependentStreams) {
    Reading read(bytesOf(sample(0x00020000, 3)));
    auto const data = read.reader.OpenData(0);
    auto const other = read.reader.OpenData(2);
    EXPECT_EQ(data->Seek(-5, core::Stream::SeekOrigin::end), 22);
    EXPECT_EQ(rest(*other).size(), 30000u);
    EXPECT_EQ(rest(*data), " more");
    EXPECT_LT(data->Write("x", 1), 0);
    EXPECT_EQ(data->Seek(-28, core::Stream::SeekOrigin::end), -EINVAL);
    char bytes[2];
    EXPECT_EQ(other->Seek(0) + other->Read(bytes, 0), 0);
    auto const odd = read.reader.OpenData(3);
    for (int reads = 0; reads < 2; ++reads, odd->Seek(0)) {
        EXPECT_EQ(rest(*odd), "odd");
    }
    read.stream->Seek(-17, core::Stream::SeekOrigin::end);
    read.stream->Write("!", 1);
    EXPECT_EQ(odd->Read(bytes, 1) + odd->Read(bytes, 1), 2);
    EXPECT_EQ(odd->Read(bytes, 2) + odd->Read(bytes, 2), -2 * EBUSY) << "and again";
    read.stream->Clear();
    EXPECT_EQ(other->Read(bytes, 1), -EIO) << "the archive was truncated meanwhile";
    core::FileStream closed;
    read.reader.SetStream(&closed);
    EXPECT_EQ(read.reader.OpenData(0)->Read(bytes, 1), -EBADF);
    StreamSequencerReader unreadable;
    EXPECT_EQ(unreadable.Read(), -1);
    unreadable.SetStream(&closed);
    EXPECT_EQ(unreadable.Read(), -2);
    EXPECT_EQ(unreadable.GetReadError(), -EBADF);
    EXPECT_STREQ(data->ClassName(), "ArchivedFileStream");
    EXPECT_STREQ(unreadable.ClassName(), "StreamSequencerReader");
}

TEST(Reader, RejectsTruncatedAndChangedArchives) {
    for (unsigned const crypt : {0u, 3u}) {
        golden::Archive archive = sample(0x00020000, crypt);
        archive.files.resize(1);
        std::string const bytes = bytesOf(archive);
        Reading whole(bytes);
        EXPECT_EQ(whole.reader.Read(), -999);
        StreamSequencerReader::ReadPosition last;
        for (std::size_t size = 0; size < bytes.size(); ++size) {
            Reading const read(bytes.substr(0, size));
            ASSERT_EQ(read.code, -2) << size;
            auto const& now = read.reader.GetReadPosition();
            ASSERT_EQ(now.end, static_cast<long long>(size));
            bool const inLast = size < static_cast<std::uint64_t>(last.begin) + last.size;
            ASSERT_EQ(now.begin, inLast ? last.begin : now.end) << size;
            last = now;
        }
        std::size_t const trailer = bytes.size() - 16;
        for (std::size_t at = 0; at < bytes.size(); ++at) {
            for (char const change : {'\x01', '\x80', '\xFF'}) {
                std::string changed = bytes;
                changed[at] = static_cast<char>(changed[at] ^ change);
                int const code = Reading(changed).code;
                ASSERT_TRUE(at < 8             ? code == -3
                            : at < trailer     ? code <= -2 && code >= -7
                            : at < trailer + 4 ? code == 0
                                               : code == (at < trailer + 8 ? -6 : -7))
                    << at << " gave " << code;
            }
        }
    }
}

TEST(Reader, HandlesFalseCountsAndSizes) {
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
        int misplaced;          ///< expected of a valid archive: the first file with a wrong offset
        char const* data = "";  ///< expected of the second file; empty if it cannot be opened
    };
    // In this order: versions; flags; file counts, which are negative, too high or have an ignored
    // high half; sizes beyond the end; offsets beyond the data and into the first file.
    for (Row const& row :
         {Row{8, 4, 0x0000FFFF, -4, 0}, Row{8, 4, 0x00020001, -5, 0}, Row{12, 4, 0x3FF, -2, 0},
          Row{12, 4, 0x13FFFC00, 0, -1, "second"}, Row{count, 8, all, -6, 0},
          Row{count, 8, 0x80000000, -6, 0}, Row{count, 8, 0x7FFFFFFF, -2, 0},
          Row{count, 8, 0xFFFFFFFF00000002, 0, -1, "second"}, Row{second + 8, 8, all, -2, 0},
          Row{second + 8, 8, 23, -2, 0}, Row{second, 8, all, 0, 1},
          Row{second, 8, 1ULL << 63, 0, 1}, Row{second, 8, 6, 0, 1},
          Row{second, 8, 0, 0, 1, "firsts"}}) {
        std::string const bad = golden::withValidCrc(
            std::string(bytes).replace(row.at, row.size, golden::number(row.value, row.size)));
        Reading read(bad);
        EXPECT_EQ(read.code, row.code) << row.at << ": " << row.value;
        EXPECT_EQ(row.code == 0 ? read.reader.FindMisplacedFile() : 0, row.misplaced) << row.value;
        auto const data = read.reader.OpenData(1);
        EXPECT_EQ(data ? rest(*data) : "", row.data) << row.at << ": " << row.value;
    }
    EXPECT_FALSE(Reading(bytes).reader.OpenData(-1));
    EXPECT_FALSE(Reading(bytes).reader.OpenData(2));

    archive = sample(0x00010000, 3);
    archive.files.clear();
    Reading again(bytesOf(archive) + "after the trailer");
    support::CopyWatcher watcher;
    again.reader.SetProgress(&watcher);
    EXPECT_EQ(again.reader.Read(), 0) << "an archive without files can be read again";
    EXPECT_EQ(again.reader.Attributes().Count(), 2);
    EXPECT_EQ(watcher.total - watcher.done, 17);
    watcher.most = 15;
    EXPECT_EQ(again.reader.Read(), -2);
    EXPECT_EQ(again.reader.GetReadError(), -ECANCELED);
    again.stream->Clear();
    int result = again.reader.Read();
    EXPECT_EQ(support::rewritten(again.reader, result), bytesOf(golden::Archive()));
    EXPECT_EQ(again.reader.GetCryptKeyBlock(), 0u);
}

}  // namespace
