#include "core/net/IPv4Address.h"

#include <algorithm>

#include "core/net/Address.h"
#include "core/text/StringArray.h"
#include "core/text/cStrings.h"

namespace core {

namespace {

int const octetCount = 4;

/// Returns the item as an octet, or -1.
int octetOf(String const& item) {
    int const value = strToIntDef(item.getCString(), -1);
    return value >= 0 && value <= 255 ? value : -1;
}

}  // namespace

IPv4Address::IPv4Address(IPv4Address const& other, int port) {
    Set(other, port);
}

IPv4Address::IPv4Address(int a, int b, int c, int d) {
    Set(a, b, c, d);
}

IPv4Address::IPv4Address(int a, int b, int c, int d, int port) {
    Set(a, b, c, d, port);
}

IPv4Address::IPv4Address(unsigned int number) {
    Set(number);
}

IPv4Address::IPv4Address(unsigned int number, int port) {
    Set(number, port);
}

IPv4Address::IPv4Address(String const& text) {
    Set(text);
}

void IPv4Address::Set(IPv4Address const& other, int port) {
    *this = other;
    port_ = port;
}

void IPv4Address::Set(int a, int b, int c, int d) {
    Set(a, b, c, d, noPort);
}

void IPv4Address::Set(int a, int b, int c, int d, int port) {
    SetByte(3, a);
    SetByte(2, b);
    SetByte(1, c);
    SetByte(0, d);
    port_ = port;
}

void IPv4Address::Set(unsigned int number) {
    Set(number, noPort);
}

void IPv4Address::Set(unsigned int number, int port) {
    for (unsigned i = 0; i < octetCount; ++i) {
        octets_[i] = static_cast<unsigned char>(number >> (8 * i));
    }
    port_ = port;
}

bool IPv4Address::Set(String const& text) {
    String host(text);
    String port;
    Address::DecomposeAddress(text, host, port);
    port = port.Trim();

    StringArray items(16);
    host.Trim().Split(items, '.');
    if (items.Count() != octetCount) {
        VoidAddress();
        return false;
    }
    for (int i = 0; i < octetCount; ++i) {
        int const octet = octetOf(items[i]);
        if (octet < 0) {
            return false;
        }
        SetByte(octetCount - 1 - i, octet);
    }
    port_ = Address::PortOf(port);
    return true;
}

bool IPv4Address::IsValid(String const& text) {
    String rest = text.Trim();
    for (int i = 0; i < octetCount; ++i) {
        if (octetOf(rest.ExtractNextToken('.')) < 0) {
            return false;
        }
    }
    return true;
}

bool IPv4Address::IsNull() const {
    return GetAsUInt32() == 0;
}

void IPv4Address::SetByte(int index, int value) {
    if (index >= 0 && index < octetCount) {
        octets_[index] = static_cast<unsigned char>(value);
    }
}

void IPv4Address::VoidAddress() {
    std::fill(std::begin(octets_), std::end(octets_), static_cast<unsigned char>(0));
}

unsigned int IPv4Address::GetAsUInt32() const {
    unsigned int number = 0;
    for (int i = octetCount - 1; i >= 0; --i) {
        number = number << 8 | octets_[i];
    }
    return number;
}

unsigned int IPv4Address::GetAsUInt32Mask() const {
    // A number and its negative share the lowest set bit and differ in all bits above.
    unsigned int const number = GetAsUInt32();
    return number | (0U - number);
}

IPv4Address IPv4Address::GetNetwork(IPv4Address const& mask) const {
    return IPv4Address(GetAsUInt32() & mask.GetAsUInt32Mask());
}

IPv4Address IPv4Address::GetBroadcast(IPv4Address const& mask) const {
    return IPv4Address(GetAsUInt32() | ~mask.GetAsUInt32Mask());
}

IPv4Address IPv4Address::GetPreferredGateway(IPv4Address const& mask, bool first) const {
    return first ? IPv4Address(GetNetwork(mask).GetAsUInt32() + 1)
                 : IPv4Address(GetBroadcast(mask).GetAsUInt32() - 1);
}

bool IPv4Address::SameAs(IPv4Address const& other, bool withPort) const {
    return GetAsUInt32() == other.GetAsUInt32() && (!withPort || port_ == other.port_);
}

String IPv4Address::GetAsString(bool withPort) const {
    String host = String::format("%1.%2.%3.%4")
                      .argi(1, static_cast<int>(octets_[3]))
                      .argi(2, static_cast<int>(octets_[2]))
                      .argi(3, static_cast<int>(octets_[1]))
                      .argi(4, static_cast<int>(octets_[0]));
    if (!withPort || port_ == noPort) {
        return host;
    }
    return Address::ComposeAddress(host, String::format("%1").argi(1, port_));
}

String IPv4Address::ToString(int a, int b, int c, int d) {
    return IPv4Address(a, b, c, d).GetAsString(true);
}

String IPv4Address::ToString(int a, int b, int c, int d, int port) {
    return IPv4Address(a, b, c, d, port).GetAsString(true);
}

ClassRef<AddressInfo> IPv4Address::GetAddressInfo(bool flag) const {
    return Address::GetInfo(GetAsString(true), flag);
}

ClassRef<AddressInfo> IPv4Address::GetAddressInfo(SocketDomain domain, SocketType type,
                                                  bool flag) const {
    return Address::GetInfo(GetAsString(true), domain, type, flag);
}

}  // namespace core
