#include "job/Address.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "core/net/AddressInfo.h"
#include "core/net/EndPoint.h"
#include "core/net/InfoSocketAddr.h"
#include "core/text/parseNumber.h"
#include "sys/platform/Sockets.h"
#include "update/protocol/records.h"

namespace job {

using core::fault;
using core::IPv4Address;
using core::String;

namespace {

int const maxLabelLength = 63;
int const maxNameLength = 253;
int const firstMulticast = 224;

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

bool isHexDigit(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool isNameCharacter(char c) {
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-';
}

/// Removes the text up to the next dot, and the dot, from rest and returns it.
std::string_view takeLabel(std::string_view& rest) {
    std::size_t const end = std::min(rest.find('.'), rest.size());
    std::string_view const label = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return label;
}

/// Reads a decimal number without sign, space or leading zero.
bool readDecimal(std::string_view text, int largest, int& value) {
    unsigned long long number = 0;
    if (text.empty() || !std::ranges::all_of(text, isDigit) ||
        (text.size() > 1 && text[0] == '0') ||
        !core::parseWhole(text, 10, static_cast<unsigned long long>(largest), number)) {
        return false;
    }
    value = static_cast<int>(number);
    return true;
}

/// Whether the operating system's resolver could read a host with this last label as a number.
bool isNumber(std::string_view label) {
    bool const isHex = label.starts_with("0x") || label.starts_with("0X");
    return isHex ? std::ranges::all_of(label.substr(2), isHexDigit)
                 : std::ranges::all_of(label, isDigit);
}

/// Reads four octets that name one device.
bool readOctets(std::string_view host) {
    int octets = 0;
    int first = 0;
    bool const endsWithDot = host.ends_with('.');
    for (; !host.empty(); ++octets) {
        int octet = 0;
        if (!readDecimal(takeLabel(host), 255, octet)) {
            return false;
        }
        first = octets == 0 ? octet : first;
    }
    return octets == 4 && !endsWithDot && first > 0 && first < firstMulticast;
}

bool isName(std::string_view host) {
    if (host.size() > maxNameLength || host.ends_with('.')) {
        return false;
    }
    while (!host.empty()) {
        std::string_view const label = takeLabel(host);
        if (label.empty() || label.size() > maxLabelLength ||
            !std::ranges::all_of(label, isNameCharacter)) {
            return false;
        }
    }
    return true;
}

Error nameError(char const* cause, core::Fault const& fault) {
    return {cause, fault, Step::connection};
}

/// Returns the different addresses of a resolver's chain, without those that are no device's:
/// 0.0.0.0 in a hosts file blocks a name, but would connect to this computer.
std::vector<String> addressesOf(core::ClassRef<core::AddressInfo> const& info) {
    std::vector<String> addresses;
    for (auto entry = info; entry; entry = entry->Next()) {
        core::ClassRef<core::SocketAddr> const address(entry->GetSocketAddress().Get());
        String const text = core::EndPoint(address, core::SocketType::stream).GetAddress();
        if (readOctets(text.View()) && std::ranges::find(addresses, text) == addresses.end()) {
            addresses.push_back(text);
        }
    }
    return addresses;
}

}  // namespace

bool Address::Parse(String const& text) {
    std::string_view host = text.View();
    port_ = update::defaultPort;
    if (std::size_t const colon = host.find(':'); colon != std::string_view::npos) {
        if (!readDecimal(host.substr(colon + 1), update::largestPort, port_) || port_ == 0) {
            return false;
        }
        host = host.substr(0, colon);
    }
    host_ = String(host);
    isName_ = !isNumber(host.substr(host.rfind('.') + 1));
    return !host.empty() && (isName_ ? isName(host) : readOctets(host));
}

std::optional<Error> Address::Resolve(IPv4Address& device) const {
    if (!isName_) {
        device = IPv4Address(host_);
        device.SetPortA(port_);
        return {};
    }
    sys::platform::ResolvedEntry* chain = nullptr;
    int const failed = sys::platform::resolve(host_.getCString(), nullptr, core::SocketDomain::IPv4,
                                              core::SocketType::stream, chain);
    if (failed != 0 &&
        sys::platform::resolverFailure(failed) == sys::platform::ResolverFailure::temporary) {
        Error error =
            nameError("nameTemporary",
                      fault("Name not resolved", "No name server could resolve \"%1\"", host_));
        error.isTransient = true;
        return error;
    }
    std::vector<String> addresses;
    if (failed == 0) {
        addresses = addressesOf(new core::AddressInfo(chain));
    }
    if (addresses.empty()) {
        return nameError("nameUnknown", fault("Name unknown", "\"%1\" has no IPv4 address", host_));
    }
    if (addresses.size() > 1) {
        String list = addresses[0];
        for (std::size_t i = 1; i < addresses.size(); ++i) {
            list = core::message("%1, %2", list, addresses[i]);
        }
        return nameError("nameAmbiguous",
                         fault("Name ambiguous", "\"%1\" has several addresses: %2", host_, list));
    }
    device = IPv4Address(addresses[0]);
    device.SetPortA(port_);
    return {};
}

}  // namespace job
