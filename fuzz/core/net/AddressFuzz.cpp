#include "core/net/Address.h"
#include "core/net/EndPoint.h"
#include "fuzz/Input.h"
#include "fuzz/require.h"

namespace {

using core::EndPoint;
using core::IPv4Address;
using core::IPv6Address;
using core::SocketType;
using core::String;

/// Parses text and checks that the address survives being written and parsed again.
template <class Address>
Address readTwice(String const& text, bool& good) {
    Address address;
    good = address.Set(text);
    String const shown = address.GetAsString(true);
    Address again;
    require(again.Set(shown) && again.SameAs(address, true));
    require(again.GetAsString(true) == shown);
    require(Address(text).SameAs(address, true));
    return address;
}

/// The platform and the library write the same text, except for addresses with an IPv4 part.
void requireSameText(String const& library, String const& platform) {
    require(library == platform || platform.Find('.') >= 0);
}

/// A numeric address resolves to itself, without a name server.
template <class Address>
void requireEndPoint(Address const& address) {
    if (address.Port() != core::noPort && (address.Port() < 0 || address.Port() > 65535)) {
        return;
    }
    EndPoint const point(address, SocketType::stream);
    require(bool(point.GetSocketAddress()));
    require(point.GetComposedAddress() == address.GetAsString(true));
    require(point.GetPort() == (address.Port() == core::noPort ? 0 : address.Port()));
    EndPoint const again(point.GetSocketAddress(), SocketType::stream);
    require(again.SameAs(point));
    require(Address(again.GetAddress()).SameAs(address, false));
    requireSameText(address.GetAsString(false), again.GetAddress());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    String const text(Input(data, size).Line().c_str());
    String host(text);
    String service;
    bool const split =
        core::Address::DecomposeAddress(text, host, service) == core::socket_result::success;
    require(!split || core::Address::ComposeAddress(host, service) == text);

    bool good = false;
    auto const four = readTwice<IPv4Address>(text, good);
    require(!good || IPv4Address::IsValid(host));
    require(IPv4Address(four.GetAsUInt32(), four.Port()).SameAs(four, true));
    requireEndPoint(four);

    auto const six = readTwice<IPv6Address>(text, good);
    require(good == IPv6Address::IsValid(text) && (good || six.IsNull()));
    requireEndPoint(six);
    return 0;
}
