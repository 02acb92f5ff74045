#include "core/net/IPv6Address.h"

#include <algorithm>

#include "core/net/Address.h"
#include "core/net/IPv4Address.h"
#include "core/text/cStrings.h"

namespace core {

namespace {

int const groupCount = IPv6Address::groupCount;
int const longestGroup = 4;  ///< digits

enum class Part { beforeGap, end };

/// The groups of an address, or of the part before or after its "::".
struct Groups {
    unsigned short values[groupCount] = {};
    int count = 0;

    bool Add(unsigned value) {
        if (count == groupCount) {
            return false;
        }
        values[count++] = static_cast<unsigned short>(value);
        return true;
    }
};

bool addHex(String const& item, Groups& groups) {
    return item.IsHex() && item.GetLength() <= longestGroup && groups.Add(item.ToHex32());
}

/// Adds an IPv4 address as two groups. Rejects leading zeros, which some programs read as octal.
bool addIPv4(String const& item, Groups& groups) {
    IPv4Address address;
    bool const good = item.Find('|') < 0 && item.CountChars('.') == 3 && address.Set(item) &&
                      address.GetAsString(false) == item;
    unsigned const number = address.GetAsUInt32();
    return good && groups.Add(number >> 16) && groups.Add(number & 0xFFFF);
}

/// Reads groups separated by ":"; an empty text has none. Only in the part that ends the address,
/// and only as the last item, an IPv4 address is valid.
bool readGroups(String text, Part part, Groups& groups) {
    while (!text.IsEmpty()) {
        bool const isLast = text.Find(':') < 0;
        if (!isLast && text.LastChar() == ':') {
            return false;
        }
        String const item = text.ExtractNextToken(':');
        bool const dotted = item.Find('.') >= 0;
        if (dotted ? !(isLast && part == Part::end && addIPv4(item, groups))
                   : !addHex(item, groups)) {
            return false;
        }
    }
    return true;
}

bool readAddress(String const& host, unsigned short (&values)[groupCount]) {
    Groups left;
    Groups right;
    int const gap = host.Find("::");
    bool const good = gap < 0 ? readGroups(host, Part::end, left) && left.count == groupCount
                              : readGroups(host.Left(gap), Part::beforeGap, left) &&
                                    readGroups(host.Copy(gap + 2), Part::end, right) &&
                                    left.count + right.count < groupCount;
    if (!good) {
        return false;
    }
    std::fill(std::begin(values), std::end(values), static_cast<unsigned short>(0));
    std::copy_n(left.values, left.count, values);
    std::copy_n(right.values, right.count, std::end(values) - right.count);
    return true;
}

struct Run {
    int start = 0;
    int length = 0;
};

/// Returns the first longest run of zero groups among the first count; the empty one at count if
/// it is shorter than two groups.
Run longestZeros(unsigned short const* groups, int count) {
    Run longest;
    Run run;
    for (int i = 0; i < count; ++i) {
        run = groups[i] != 0 ? Run{i + 1, 0} : Run{run.start, run.length + 1};
        if (run.length > longest.length) {
            longest = run;
        }
    }
    return longest.length > 1 ? longest : Run{count, 0};
}

}  // namespace

void IPv6Address::Set(unsigned short const* groups) {
    std::copy_n(groups, groupCount, groups_);
}

bool IPv6Address::Set(String const& text) {
    String host(text);
    String port;
    Address::DecomposeAddress(text, host, port);
    unsigned short groups[groupCount];
    if (!readAddress(host.Trim(), groups)) {
        VoidAddress();
        return false;
    }
    Set(groups);
    port_ = Address::PortOf(port.Trim());
    return true;
}

bool IPv6Address::IsValid(String const& text) {
    return IPv6Address().Set(text);
}

bool IPv6Address::IsNull() const {
    return std::all_of(std::begin(groups_), std::end(groups_),
                       [](auto group) { return group == 0; });
}

void IPv6Address::VoidAddress() {
    std::fill(std::begin(groups_), std::end(groups_), static_cast<unsigned short>(0));
}

bool IPv6Address::SameAs(IPv6Address const& other, bool withPort) const {
    return std::equal(std::begin(groups_), std::end(groups_), std::begin(other.groups_)) &&
           (!withPort || port_ == other.port_);
}

String IPv6Address::GetAsString(bool withPort) const {
    bool const mapped = groups_[5] == 0xFFFF &&
                        std::all_of(groups_, groups_ + 5, [](auto group) { return group == 0; });
    int const hexCount = mapped ? groupCount - 2 : groupCount;
    Run const zeros = longestZeros(groups_, hexCount);
    String text;
    for (int i = 0; i < hexCount; ++i) {
        if (i == zeros.start) {
            text.Append(i == 0 ? "::" : ":");
        }
        if (i < zeros.start || i >= zeros.start + zeros.length) {
            text.Append(String::format("%1").argi(1, groups_[i], 0, 16).LowerCase());
            text.Append(i + 1 < groupCount ? ":" : "");
        }
    }
    if (mapped) {
        unsigned const number = static_cast<unsigned>(groups_[6]) << 16 | groups_[7];
        text.Append(IPv4Address(number).GetAsString(false));
    }
    if (!withPort || port_ == noPort) {
        return text;
    }
    return Address::ComposeAddress(text, String::format("%1").argi(1, port_));
}

}  // namespace core
