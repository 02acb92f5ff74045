#include <gtest/gtest.h>

#include <cerrno>

#include "core/archive/archiveFormat.h"
#include "tests/core/archive/MemoryBuilder.h"
#include "tests/core/archive/golden.h"
#include "tests/support/CopyWatcher.h"
#include "tests/support/PrintText.h"

namespace {

using core::StreamSequencerBuilder;
using core::archive::SlotResult;
using support::memory;
using support::MemoryBuilder;
using Cause = StreamSequencerBuilder::Cause;
using Text = core::StreamDescriptor::Text;

TEST(TextSlot, EndsAtAZeroUnitAndReplacesUnpairedSurrogates) {
    std::string const odd = "\uFFFD";
    using Row = std::pair<std::u16string, std::string>;
    for (auto const& [units, text] :
         {Row{u"", ""}, Row{u"abcd", "abcd"}, Row{std::u16string(u"a\0bc", 4), "a"},
          Row{{0xD800}, odd}, Row{u"\u007F\u0080\u07FF\u0800", "\u007F\u0080\u07FF\u0800"},
          Row{{0xDC00}, odd}, Row{u"\U00010000\U0010FFFF", "\U00010000\U0010FFFF"},
          Row{u"\uD7FF\uE000\uFFFF\uFFFD", "\uD7FF\uE000\uFFFF\uFFFD"},
          Row{{0xDC00, 0xD800, u'x'}, odd + odd + "x"},
          Row{{u'a', u'b', u'c', 0xDBFF}, "abc" + odd},
          Row{{0xD800, 0xD83D, 0xDE80}, odd + "\U0001F680"}}) {
        std::string const bytes = golden::slot(units, 8);
        auto const* const slot = reinterpret_cast<unsigned char const*>(bytes.data());
        EXPECT_EQ(core::archive::readTextSlot(slot, 4), text.c_str());
    }
}

TEST(TextSlot, AcceptsValidUtf8ThatFits) {
    // Invalid: a surrogate, overlong forms, stray and missing continuation bytes, above 0x10FFFF.
    std::pair<SlotResult, std::vector<char const*>> const rows[] = {
        {SlotResult::written,
         {"", "abcd", "ab\U0001F680", "\uD7FF\uE000\uFFFF", "\U0010FFFF\uFFFD\u00FF"}},
        {SlotResult::tooLong, {"abcde", "abc\U0001F680"}},
        {SlotResult::notUtf8,
         {"\xED\xA0\x80", "\xC0\xAF", "\xE0\x80\xAF", "\xF0\x80\x80\xAF", "a\x80", "\xE2\x82",
          "\xC3(", "\xFF", "\xF4\x90\x80\x80"}}};
    for (auto const& [result, texts] : rows) {
        for (char const* const text : texts) {
            unsigned char slot[8] = {9, 9, 9, 9, 9, 9, 9, 9};
            ASSERT_EQ(core::archive::writeTextSlot(text, slot, 4), result) << text;
            if (result == SlotResult::written) {
                EXPECT_EQ(core::archive::readTextSlot(slot, 4), text);
            }
        }
    }
}

/// Expects this result of writing, the failure in question, and no output if it failed.
void expectResult(MemoryBuilder& builder, int expected, Cause cause, int index) {
    int result = 1;
    std::string const bytes = builder.Written(result);
    EXPECT_EQ(result, expected);
    EXPECT_EQ(bytes.empty(), result != 0);
    EXPECT_EQ(builder.GetFailure().cause, cause);
    EXPECT_EQ(builder.GetFailure().index, index);
}

TEST(Builder, WritesNothingUnlessAllTextsOfAFileFit) {
    using Row = std::tuple<unsigned, Text, int>;
    for (auto const& [version, text, capacity] :
         {Row{0x20000, Text::name, 256}, Row{0x20000, Text::destination, 1536},
          Row{0x20000, Text::owner, 64}, Row{0x20000, Text::group, 64},
          Row{0x20000, Text::commandLine, 64}, Row{0x10000, Text::name, 256},
          Row{0x1FFFF, Text::destination, 1536}, Row{0x1FFFF, Text::owner, 0},
          Row{0x1FFFF, Text::group, 0}, Row{0x10000, Text::commandLine, 0}}) {
        for (int const more : {0, 1}) {
            MemoryBuilder builder([](int) { return new core::MemoryStream; });
            builder.SetVersion(version);
            builder.AddFile("");
            builder.AddFile("").SetText(text, core::String::OfChar('x', capacity + more));
            expectResult(builder, more == 0 ? 0 : -ENAMETOOLONG,
                         more == 0 ? Cause::none : Cause::file, more);
        }
    }
}

TEST(Builder, WritesNothingUnlessTheMetadataFit) {
    MemoryBuilder builder([](int) { return nullptr; });
    for (unsigned const version : {0xFFFFu, 0x20001u}) {
        builder.SetVersion(version);
        expectResult(builder, -EINVAL, Cause::version, 0);
    }
    builder.SetVersion(0x20000);
    builder.sourceId = "\xFF";
    expectResult(builder, -EILSEQ, Cause::sourceId, 0);
    builder.sourceId = "";
    for (int i = 0; i < 1023; ++i) {
        builder.AddAttribute("a", "b");
    }
    expectResult(builder, 0, Cause::none, 0);
    builder.AddAttribute("a", "b");
    expectResult(builder, -E2BIG, Cause::attributeCount, 0);
}

/// A stream that returns a false size, is read byte by byte, and fails to write. If the size is
/// above 5, it fails to read, too.
class FaultyStream : public core::MemoryStream {
public:
    explicit FaultyStream(long long size) : MemoryStream(memory("data")->Content()), size_(size) {}
    long long Size() override { return size_; }
    int Read(void* buffer, int) override {
        return size_ > 5 ? -EIO : MemoryStream::Read(buffer, 1);
    }
    int Write(void const*, int) override { return -ENOSPC; }

private:
    long long const size_;
};

TEST(Builder, ReportsTheFileOrTargetThatFails) {
    std::size_t const headers = 16 + 8 + 2 * 4096;
    using Row = std::tuple<long long, int, std::size_t>;
    for (auto const& [size, expected, written] :
         {Row{-ESPIPE, -ESPIPE, 0}, Row{3, -EBUSY, headers + 3}, Row{5, -EBUSY, headers + 4},
          Row{4, -ECANCELED, headers + 6}, Row{6, -EIO, headers}, Row{LLONG_MAX, -EFBIG, 0}}) {
        MemoryBuilder builder([falseSize = size](int) { return new FaultyStream(falseSize); });
        builder.AddFile("");
        builder.AddFile("");
        int result = 1;
        support::CopyWatcher watcher;
        watcher.most = 5;
        EXPECT_EQ(builder.Written(result, &watcher).size(), written);
        EXPECT_EQ(result, expected);
        EXPECT_EQ(builder.GetFailure().cause, result == -ECANCELED ? Cause::none : Cause::file);
        EXPECT_FALSE(builder.GetFailure().text);
    }
    StreamSequencerBuilder builder;
    FaultyStream full(0);
    EXPECT_EQ(builder.Write(full, nullptr), -ENOSPC);
    EXPECT_EQ(builder.GetFailure().cause, Cause::target);
    builder.AddFile("no/such/file");
    EXPECT_EQ(builder.Write(full, nullptr), -ENOENT);
}

TEST(Builder, KeysChangeEveryByteAndAreRestoredFromTheirBlock) {
    StreamSequencerBuilder builder;
    EXPECT_STREQ(builder.ClassName(), "StreamSequencerBuilder");
    EXPECT_STREQ(core::StreamSequencer().ClassName(), "StreamSequencer");
    for (unsigned number = 0; number < 2000; ++number) {
        unsigned const key = StreamSequencerBuilder::CalculateCryptKey(number);
        EXPECT_TRUE((key & 0xFF) != 0 && (key & 0xFF00) != 0 && (key & 0xFF0000) != 0 &&
                    (key & 0xFF000000) != 0);
        builder.SetCryptKey(key);
        EXPECT_EQ(builder.GetCryptKey(), key);
    }
    builder.SetCryptKey(0x04030201);
    char block[] = "aaaaaaaaaaa";
    builder.CryptBlock(block, 11, 7);
    EXPECT_STREQ(block, "e`cbe`cbe`c") << "in mode None, too";
}

}  // namespace
