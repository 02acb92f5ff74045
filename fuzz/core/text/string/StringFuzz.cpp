#include <algorithm>
#include <climits>
#include <compare>
#include <string>
#include <utility>
#include <vector>

#include "core/text/Buffer.h"
#include "core/text/String.h"
#include "core/text/StringArray.h"
#include "fuzz/Input.h"
#include "fuzz/require.h"

namespace {

using core::String;

/// Makes arguments of an input.
class Arguments {
public:
    Arguments(std::uint8_t const* data, std::size_t size) : input_(data, size) {}

    bool AreLeft() const { return !input_.IsEmpty(); }
    int Number(int from, int to) { return from + input_.Byte() % (to - from + 1); }

    /// Few different characters, so that patterns are found.
    std::string Text(int longest) {
        std::string result(static_cast<std::size_t>(Number(0, longest)), ' ');
        for (char& c : result) {
            c = "ab,\x80"[Number(0, 3)];
        }
        return result;
    }

    /// Mostly around a text of that length, sometimes at the ends of the range.
    int Position(std::string const& text) {
        int const choice = Number(0, 19);
        return choice == 0   ? INT_MAX
               : choice == 1 ? INT_MIN
                             : Number(-2, static_cast<int>(text.size()) + 2);
    }

private:
    Input input_;
};

int asPosition(std::size_t found) {
    return found == std::string::npos ? -1 : static_cast<int>(found);
}

std::size_t clipped(int start, std::string const& text) {
    return std::min(static_cast<std::size_t>(std::max(start, 0)), text.size());
}

/// std::string compares unsigned bytes.
std::vector<signed char> asSigned(std::string const& text) {
    return {text.begin(), text.end()};
}

/// What std::string finds is found, and in upper case where case is ignored: texts have none.
template <class Pattern, class Plain>
void searchFor(std::string const& whole, int start, Plain const& plain, Pattern const& pattern,
               Pattern const& upper, std::size_t length) {
    String const ours(whole.c_str());
    auto const from = static_cast<std::size_t>(std::max(start, 0));
    int const next = asPosition(whole.find(plain, from));
    int const before = start < 0 ? -1 : asPosition(whole.rfind(plain, from));
    require(ours.Find(pattern, start) == next && ours.FindIC(upper, start) == next);
    require(ours.RFind(pattern, start) == before && ours.RFindIC(upper, start) == before);

    std::size_t const first = whole.find(plain);
    std::size_t const last = whole.rfind(plain);
    require(ours.Find(pattern) == asPosition(first) && ours.FindIC(upper) == asPosition(first));
    require(ours.RFind(pattern) == asPosition(last) && ours.RFindIC(upper) == asPosition(last));
    bool const found = first != std::string::npos;
    String const left(found ? whole.substr(0, first).c_str() : "");
    String const right(found ? whole.substr(first + length).c_str() : "");
    String const tail(found ? whole.substr(last + length).c_str() : "");
    require(ours.LeftOf(pattern) == left && ours.LeftOfIC(upper) == left);
    require(ours.RightOf(pattern) == right && ours.RightOfIC(upper) == right);
    require(ours.RightBy(pattern) == tail && ours.RightByIC(upper) == tail);
}

void search(Arguments& arguments) {
    std::string const whole = arguments.Text(24);
    std::string const plain = arguments.Text(3) + "a";
    int const start = arguments.Position(whole);
    String const ours(whole.c_str());
    String const pattern(plain.c_str());
    String const upper = pattern.UpperCase();
    searchFor(whole, start, plain, pattern, upper, plain.size());
    searchFor(whole, start, plain[0], plain[0], String::ToUpper(plain[0]), 1);
    require(ours.StartsWith(pattern) == whole.starts_with(plain));
    require(ours.StartsWithIC(upper) == whole.starts_with(plain));
    require(ours.EndsWith(pattern) == whole.ends_with(plain));
    require(ours.EndsWithIC(upper) == whole.ends_with(plain));
    require((ours.Compare(plain.c_str()) <=> 0) == (asSigned(whole) <=> asSigned(plain)));

    auto const from = static_cast<std::size_t>(std::max(start, 0));
    require(ours.FindDelimiter(pattern, start) == asPosition(whole.find_first_of(plain, from)));
    require(ours.FindNotDelimiter(pattern, start) ==
            asPosition(whole.find_first_not_of(plain, from)));
    require(ours.FindDelimiter(pattern) == asPosition(whole.find_first_of(plain)));
    require(ours.FindNotDelimiter(pattern) == asPosition(whole.find_first_not_of(plain)));
    require(ours.LastDelimiter(pattern) == asPosition(whole.find_last_of(plain)));
    require(ours.LastNotDelimiter(pattern) == asPosition(whole.find_last_not_of(plain)));
    require(ours.CountChars(plain[0]) == std::count(whole.begin(), whole.end(), plain[0]));
}

/// A text comes back from units of any width, up to the room that it was given.
template <class Unit>
void throughUnits(String const& text, int room, core::Buffer const& units) {
    std::vector<Unit> out(static_cast<std::size_t>(room) + 1, 9);
    String const kept = text.Left(std::max(room - 1, 0));
    require(text.GetString(out.data(), room) == kept.GetLength());
    require(room == 0 || (out[static_cast<std::size_t>(room)] == 9));
    String back("before");
    back.SetString(out.data(), room);
    require(back == kept);
    auto const* const first = reinterpret_cast<Unit const*>(units.GetData());
    back.SetString(first, units.GetSize() / static_cast<int>(sizeof(Unit)));
    require(back == text);
}

/// One text that is edited on and on, and the copies that were made on the way.
struct Edited {
    String ours;
    std::string theirs;
    std::vector<std::pair<String, std::string>> copies;

    void Edit(Arguments& arguments) {
        int const start = arguments.Position(theirs);
        int const count = arguments.Position(theirs);
        // A negative count is all there is: npos and its neighbours.
        auto const size = static_cast<std::size_t>(count);
        std::string const piece = arguments.Text(4);
        require(ours.Copy(start, count) == theirs.substr(clipped(start, theirs), size).c_str());
        switch (theirs.size() > 60 ? 4 : arguments.Number(0, 3)) {
            case 0:
                ours.Insert(piece.c_str(), start);
                theirs.insert(clipped(start, theirs), piece);
                break;
            case 1:
                ours.Delete(start, count);
                theirs.erase(clipped(start, theirs), size);
                break;
            case 2:
                ours += piece.c_str();
                theirs += piece;
                break;
            case 3:
                copies.emplace_back(ours, theirs);
                break;
            default:
                ours.Clear();
                theirs.clear();
        }
        require(ours == theirs.c_str());
    }

    /// A copy must not see what happens to its original.
    void RequireSoundCopies() const {
        for (auto const& [copy, expected] : copies) {
            require(copy == expected.c_str());
        }
    }
};

void replaceAndSplit(Arguments& arguments) {
    std::string const whole = arguments.Text(24);
    std::string const find = arguments.Text(2) + ",";
    std::string const with = arguments.Text(3);
    std::string replaced(whole);
    for (std::size_t at = replaced.find(find); at != std::string::npos;
         at = replaced.find(find, at + with.size())) {
        replaced.replace(at, find.size(), with);
    }
    require(String(whole.c_str()).Replace(find.c_str(), with.c_str()) == replaced.c_str());

    core::StringArray pieces(1);
    String(whole.c_str()).Split(pieces, find.c_str());
    std::size_t start = 0;
    for (int i = 0; i < pieces.Count(); ++i) {
        std::size_t const end = std::min(whole.find_first_of(find, start), whole.size());
        require(pieces[i] == whole.substr(start, end - start).c_str());
        start = end + 1;
    }
    require(start >= whole.size());
}

/// What has no counterpart is at least called with everything; the sanitizers watch.
void takeAnyArgument(Arguments& arguments) {
    std::string const whole = arguments.Text(12);
    String text(whole.c_str());
    int const a = arguments.Position(whole);
    int const b = arguments.Position(whole);
    int const length = text.GetLength();
    require(text.Copy(a, b, b, a).GetLength() <= 2 * length);
    require(text.CopyRange(a, b, true).Right(a).GetLength() <= length);
    int const room = arguments.Number(0, 15);
    throughUnits<char>(text, room, text.GetAnsiBuffer());
    throughUnits<unsigned short>(text, room, text.GetUnicode16Buffer());
    throughUnits<unsigned int>(text, room, text.GetUnicode32Buffer());
    require((text.GetChar(a) == '\0') == (a < 0 || a >= length));
    require(text.GetProperty("a", a).GetLength() <= length);
    text.SetChar(a, 'x');
    text.SetChar(b, '\0');
    text.DeleteFromRight(a);
    text.DeleteFromLeft(b);
    require(text.GetLength() <= length);
}

}  // namespace

/// The operations that std::string has too, held against it, one after another.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Arguments arguments(data, size);
    Edited edited;
    while (arguments.AreLeft()) {
        switch (arguments.Number(0, 7)) {
            case 0:
                search(arguments);
                break;
            case 1:
                replaceAndSplit(arguments);
                break;
            case 2:
                takeAnyArgument(arguments);
                break;
            default:
                edited.Edit(arguments);
        }
    }
    edited.RequireSoundCopies();
    return 0;
}
