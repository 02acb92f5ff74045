#include "core/net/SocketAddr.h"

#include <cstddef>
#include <cstring>

#include "core/net/Address.h"

namespace core {

SocketAddr::SocketAddr(void const* bytes, int length) {
    int const capacity = static_cast<int>(bytes_.size());
    if (length != 0 && length >= -capacity && length <= capacity) {
        length_ = length;
        std::memcpy(bytes_.data(), bytes, static_cast<std::size_t>(GetSize()));
    }
}

char const* SocketAddr::ClassName() const {
    return "SocketAddr";
}

SocketDomain SocketAddr::GetDomain() const {
    return sys::platform::domainOf(bytes_.data(), GetSize());
}

bool SocketAddr::IsTheSameOf(SocketAddr const& other) const {
    return GetSize() == other.GetSize() && std::memcmp(bytes_.data(), other.bytes_.data(),
                                                       static_cast<std::size_t>(GetSize())) == 0;
}

SocketResult SocketAddr::GetName(String& host, String& service, bool numeric) const {
    if (length_ == 0) {
        return socket_result::emptyAddress;
    }
    char hostText[3072] = {};
    char serviceText[1024] = {};
    int const error = sys::platform::nameOfAddress(bytes_.data(), GetSize(), hostText,
                                                   static_cast<int>(sizeof hostText), serviceText,
                                                   static_cast<int>(sizeof serviceText), numeric);
    if (error == 0) {
        host = hostText;
        service = serviceText;
    }
    return SocketResultFrom_EAI(error);
}

SocketResult SocketAddr::GetName(String& out, bool numeric) const {
    String host;
    String service;
    SocketResult const result = GetName(host, service, numeric);
    if (result == socket_result::success) {
        Address::ComposeAddress(host, service, out);
    }
    return result;
}

}  // namespace core
