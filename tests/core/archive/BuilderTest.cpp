#include <gtest/gtest.h>

#include <cerrno>
#include <functional>

#include "core/archive/textSlot.h"
#include "core/archive/unicode.h"
#include "tests/core/archive/MemoryBuilder.h"
#include "tests/core/archive/golden.h"
#include "tests/support/PrintText.h"

namespace {

using core::StreamSequencerBuilder;
using core::String;
using support::memory;
using support::MemoryBuilder;
using Cause = StreamSequencerBuilder::Cause;
using Text = core::StreamDescriptor::Text;

/// What a slot of four units makes of units that come from outside.
std::string slotText(std::u16string const& units) {
    std::string bytes;
    for (char16_t const unit : units) {
        bytes += golden::number(unit, 2);
    }
    bytes.resize(8);
    auto const* const slot = reinterpret_cast<unsigned char const*>(bytes.data());
    return core::archive::readTextSlot(slot, 4).getCString();
}

TEST(TextSlot, IsReadUpToItsZeroOrItsEndAndLoneSurrogatesAreReplaced) {
    std::string const odd = "\uFFFD";
    struct Row {
        std::u16string units;
        std::string text;
    };
    for (Row const& row : {
             Row{u"", ""},
             Row{u"abcd", "abcd"},
             Row{std::u16string(u"a\0bc", 4), "a"},
             Row{u"\u007F\u0080\u07FF\u0800", "\u007F\u0080\u07FF\u0800"},
             Row{u"\U00010000\U0010FFFF", "\U00010000\U0010FFFF"},
             Row{{0xFFFF, 0xFFFD}, "\uFFFF\uFFFD"},
             Row{{0xD800}, odd},
             Row{{0xDC00}, odd},
             Row{{0xDC00, 0xD800, u'x'}, odd + odd + "x"},
             Row{{0xD800, 0xD83D, 0xDE80}, odd + "\U0001F680"},
             Row{{u'a', u'b', u'c', 0xDBFF}, "abc" + odd},
         }) {
        EXPECT_EQ(slotText(row.units), row.text);
    }
}

TEST(TextSlot, TakesSoundUtf8ThatFits) {
    using core::archive::SlotResult;
    struct Row {
        char const* text;
        SlotResult result;
    };
    for (Row const& row : {
             Row{"", SlotResult::written},
             Row{"abcd", SlotResult::written},
             Row{"abcde", SlotResult::tooLong},
             Row{"ab\U0001F680", SlotResult::written},
             Row{"abc\U0001F680", SlotResult::tooLong},
             Row{"\U0010FFFF\uFFFD\u00FF", SlotResult::written},
             Row{"\xF4\x90\x80\x80", SlotResult::notUtf8},  // past the last character
             Row{"\xED\xA0\x80", SlotResult::notUtf8},      // a surrogate
             Row{"\xC0\xAF", SlotResult::notUtf8},          // an overlong slash
             Row{"\xE0\x80\xAF", SlotResult::notUtf8},
             Row{"\xF0\x80\x80\xAF", SlotResult::notUtf8},
             Row{"a\x80", SlotResult::notUtf8},     // begins in the middle
             Row{"\xE2\x82", SlotResult::notUtf8},  // cut short
             Row{"\xC3(", SlotResult::notUtf8},
             Row{"\xFF", SlotResult::notUtf8},
         }) {
        unsigned char slot[8] = {9, 9, 9, 9, 9, 9, 9, 9};
        EXPECT_EQ(core::archive::writeTextSlot(row.text, slot, 4), row.result) << row.text;
        if (row.result == SlotResult::written) {
            EXPECT_EQ(core::archive::readTextSlot(slot, 4), row.text);
        }
    }
}

/// A stream that says another size than it has.
class LyingStream : public core::MemoryStream {
public:
    LyingStream(std::string const& bytes, long long size)
        : MemoryStream(memory(bytes)->Content()), size_(size) {}
    long long Size() override { return size_; }

private:
    long long const size_;
};

TEST(Builder, WritesNothingUnlessEveryTextFits) {
    std::string const text64(64, 'x');
    std::string const text65(65, 'x');
    struct Row {
        std::function<void(StreamSequencerBuilder&)> set;
        int result;
        Cause cause;
        int index;
    };
    auto const file = [](unsigned version, Text text, std::string const& value) {
        return [=](StreamSequencerBuilder& builder) {
            builder.SetVersion(version);
            builder.AddFile("");
            builder.AddFile("").SetText(text, value.c_str());
        };
    };
    unsigned const newest = 0x00020000;
    for (Row const& row : {
             Row{[](auto& b) { b.SetVersion(0xFFFF); }, -EINVAL, Cause::version, 0},
             Row{[](auto& b) { b.SetVersion(0x20001); }, -EINVAL, Cause::version, 0},
             Row{[&](auto& b) { b.sourceId = text64.c_str(); }, 0, Cause::none, 0},
             Row{[&](auto& b) { b.sourceId = text65.c_str(); }, -ENAMETOOLONG, Cause::sourceId, 0},
             Row{[&](auto& b) { b.targetId = "\xFF"; }, -EILSEQ, Cause::targetId, 0},
             Row{[&](auto& b) {
                     b.AddAttribute("a", "b");
                     b.AddAttribute("a", text65.c_str());
                 },
                 -ENAMETOOLONG, Cause::attribute, 1},
             Row{[](auto& b) {
                     for (int i = 0; i < 1024; ++i) {
                         b.AddAttribute("a=b");
                     }
                 },
                 -E2BIG, Cause::attributeCount, 0},
             Row{file(newest, Text::name, std::string(256, 'x')), 0, Cause::none, 0},
             Row{file(newest, Text::name, std::string(257, 'x')), -ENAMETOOLONG, Cause::file, 1},
             Row{file(newest, Text::destination, std::string(1536, 'x')), 0, Cause::none, 0},
             Row{file(0x10000, Text::destination, std::string(1537, 'x')), -ENAMETOOLONG,
                 Cause::file, 1},
             Row{file(newest, Text::owner, text65), -ENAMETOOLONG, Cause::file, 1},
             Row{file(newest, Text::group, text65), -ENAMETOOLONG, Cause::file, 1},
             Row{file(newest, Text::commandLine, text64), 0, Cause::none, 0},
             Row{file(0x1FFFF, Text::owner, "root"), -ENAMETOOLONG, Cause::file, 1},
         }) {
        MemoryBuilder builder([](int) { return new core::MemoryStream; });
        row.set(builder);
        int result = 1;
        std::string const bytes = builder.Written(result);
        EXPECT_EQ(result, row.result);
        EXPECT_EQ(bytes.empty(), result != 0);
        EXPECT_EQ(builder.GetFault().cause, row.cause);
        EXPECT_EQ(builder.GetFault().index, row.index);
    }
}

TEST(Builder, NamesTheFileOrTheTargetThatFails) {
    struct FullStream : core::MemoryStream {
        int Write(void const*, int) override { return -ENOSPC; }
    };
    struct Row {
        MemoryBuilder::Opener open;
        int result;
    };
    for (Row const& row : {
             Row{[](int) { return nullptr; }, -2},
             Row{[](int) { return new LyingStream("data", -ESPIPE); }, -ESPIPE},
             Row{[](int) { return new LyingStream("data", 3); }, -EBUSY},
             Row{[](int) { return new LyingStream("data", 5); }, -EBUSY},
             Row{[](int i) { return new LyingStream("", i == 0 ? LLONG_MAX : 1); }, -EFBIG},
         }) {
        MemoryBuilder builder(row.open);
        builder.AddFile("");
        builder.AddFile("");
        int result = 1;
        builder.Written(result);
        EXPECT_EQ(result, row.result);
        EXPECT_EQ(builder.GetFault().cause, Cause::file);
        EXPECT_FALSE(builder.GetFault().text);
    }
    StreamSequencerBuilder builder;
    FullStream full;
    EXPECT_EQ(builder.Write(full, nullptr), -ENOSPC);
    EXPECT_EQ(builder.GetFault().cause, Cause::target);
    builder.AddFile("no/such/file");
    EXPECT_EQ(builder.Write(full, nullptr), -ENOENT);
}

TEST(Builder, KeysLeaveNoByteAsItIsAndComeBackFromTheirBlock) {
    StreamSequencerBuilder builder;
    builder.SetCryptMode(StreamSequencerBuilder::CryptMode::Data);
    for (unsigned number = 0; number < 2000; ++number) {
        unsigned const key = StreamSequencerBuilder::CalculateCryptKey(number);
        EXPECT_TRUE((key & 0xFF) != 0 && (key & 0xFF00) != 0 && (key & 0xFF0000) != 0 &&
                    (key & 0xFF000000) != 0);
        builder.SetCryptKey(key);
        EXPECT_EQ(builder.GetCryptKey(), key);
    }
    builder.SetCryptKey(0x80000001);
    EXPECT_EQ(builder.GetCryptKeyBlock(), 0x8000000000000002);
}

}  // namespace
