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

/// Creates arguments from an input.
class Arguments {
public:
    Arguments(std::uint8_t const* data, std::size_t size) : input_(data, size) {}

    bool HasMore() const { return !input_.IsEmpty(); }
    int Number(int from, int to) { return from + input_.Byte() % (to - from + 1); }

    /// Returns a string of few different characters, so that patterns occur in it.
    std::string Text(int longest) {
        std::string result(static_cast<std::size_t>(Number(0, longest)), ' ');
        for (char& c : result) {
            c = "ab,\x80"[Number(0, 3)];
        }
        return result;
    }

    /// Returns a position in or near the string, sometimes the end of the range.
    int Position(std::string const& text) {
        int const choice = Number(0, 19);
        return choice == 0   ? INT_MAX
               : choice == 1 ? INT_MIN
                             : Number(-2, static_cast<int>(text.size()) + 2);
    }

private:
    Input input_;
};

int toPosition(std::size_t found) {
    return found == std::string::npos ? -1 : static_cast<int>(found);
}

std::size_t clipped(int start, std::string const& text) {
    return std::min(static_cast<std::size_t>(std::max(start, 0)), text.size());
}

/// Returns signed bytes: std::string compares unsigned ones.
std::vector<signed char> asSigned(std::string const& text) {
    return {text.begin(), text.end()};
}

/// Requires the results of std::string, also for the pattern in upper case if case is ignored:
/// whole has no upper case.
template <class Pattern, class Plain>
void searchFor(std::string const& whole, int start, Plain const& plain, Pattern const& pattern,
               Pattern const& upper, std::size_t length) {
    String const ours(whole.c_str());
    auto const from = static_cast<std::size_t>(std::max(start, 0));
    int const next = toPosition(whole.find(plain, from));
    int const before = start < 0 ? -1 : toPosition(whole.rfind(plain, from));
    require(ours.Find(pattern, start) == next && ours.FindIC(upper, start) == next);
    require(ours.RFind(pattern, start) == before && ours.RFindIC(upper, start) == before);

    std::size_t const first = whole.find(plain);
    std::size_t const last = whole.rfind(plain);
    require(ours.Find(pattern) == toPosition(first) && ours.FindIC(upper) == toPosition(first));
    require(ours.RFind(pattern) == toPosition(last) && ours.RFindIC(upper) == toPosition(last));
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
    require(ours.FindDelimiter(pattern, start) == toPosition(whole.find_first_of(plain, from)));
    require(ours.FindNotDelimiter(pattern, start) ==
            toPosition(whole.find_first_not_of(plain, from)));
    require(ours.FindDelimiter(pattern) == toPosition(whole.find_first_of(plain)));
    require(ours.FindNotDelimiter(pattern) == toPosition(whole.find_first_not_of(plain)));
    require(ours.LastDelimiter(pattern) == toPosition(whole.find_last_of(plain)));
    require(ours.LastNotDelimiter(pattern) == toPosition(whole.find_last_not_of(plain)));
    require(ours.CountChars(plain[0]) == std::count(whole.begin(), whole.end(), plain[0]));
}

/// Requires that a string survives conversion to units of any width, truncated to size.
template <class Unit>
void throughUnits(String const& text, int size, core::Buffer const& units) {
    std::vector<Unit> out(static_cast<std::size_t>(size) + 1, 9);
    String const kept = text.Left(std::max(size - 1, 0));
    require(text.GetString(out.data(), size) == kept.GetLength());
    require(size == 0 || (out[static_cast<std::size_t>(size)] == 9));
    String back("before");
    back.SetString(out.data(), size);
    require(back == kept);
    auto const* const first = reinterpret_cast<Unit const*>(units.GetData());
    back.SetString(first, units.GetSize() / static_cast<int>(sizeof(Unit)));
    require(back == text);
}

/// A string that is edited repeatedly, and copies of its earlier states.
struct Edited {
    String ours;
    std::string theirs;
    std::vector<std::pair<String, std::string>> copies;

    void Edit(Arguments& arguments) {
        int const start = arguments.Position(theirs);
        int const count = arguments.Position(theirs);
        // A negative count becomes npos or nearly so: all characters.
        auto const size = static_cast<std::size_t>(count);
        std::string const part = arguments.Text(4);
        require(ours.Copy(start, count) == theirs.substr(clipped(start, theirs), size).c_str());
        switch (theirs.size() > 60 ? 4 : arguments.Number(0, 3)) {
            case 0:
                ours.Insert(part.c_str(), start);
                theirs.insert(clipped(start, theirs), part);
                break;
            case 1:
                ours.Delete(start, count);
                theirs.erase(clipped(start, theirs), size);
                break;
            case 2:
                ours += part.c_str();
                theirs += part;
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

    /// Requires that changes of the original did not affect the copies.
    void RequireUnchangedCopies() const {
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

    core::StringArray parts(1);
    String(whole.c_str()).Split(parts, find.c_str());
    std::size_t start = 0;
    for (int i = 0; i < parts.Count(); ++i) {
        std::size_t const end = std::min(whole.find_first_of(find, start), whole.size());
        require(parts[i] == whole.substr(start, end - start).c_str());
        start = end + 1;
    }
    require(start >= whole.size());
}

/// Calls operations that std::string does not have with any argument, for the sanitizers.
void acceptAnyArgument(Arguments& arguments) {
    std::string const whole = arguments.Text(12);
    String text(whole.c_str());
    int const a = arguments.Position(whole);
    int const b = arguments.Position(whole);
    int const length = text.GetLength();
    require(text.Copy(a, b, b, a).GetLength() <= 2 * length);
    require(text.CopyRange(a, b, true).Right(a).GetLength() <= length);
    int const size = arguments.Number(0, 15);
    throughUnits<char>(text, size, text.GetAnsiBuffer());
    throughUnits<unsigned short>(text, size, text.GetUnicode16Buffer());
    throughUnits<unsigned int>(text, size, text.GetUnicode32Buffer());
    require((text.GetChar(a) == '\0') == (a < 0 || a >= length));
    require(text.GetProperty("a", a).GetLength() <= length);
    text.SetChar(a, 'x');
    text.SetChar(b, '\0');
    text.DeleteFromRight(a);
    text.DeleteFromLeft(b);
    require(text.GetLength() <= length);
}

}  // namespace

/// Input: operations, which are compared with those of std::string.
extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    Arguments arguments(data, size);
    Edited edited;
    while (arguments.HasMore()) {
        switch (arguments.Number(0, 7)) {
            case 0:
                search(arguments);
                break;
            case 1:
                replaceAndSplit(arguments);
                break;
            case 2:
                acceptAnyArgument(arguments);
                break;
            default:
                edited.Edit(arguments);
        }
    }
    edited.RequireUnchangedCopies();
    return 0;
}
