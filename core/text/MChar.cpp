#include "core/text/MChar.h"

namespace core {

namespace {

template <class Word>
String render(MChar<Word> const& tag, bool safe) {
    return safe ? tag.SafeDump() : static_cast<String>(tag);
}

}  // namespace

template <class Word>
String MChar<Word>::SafeDump() const {
    char dump[sizeof(Word)];
    for (std::size_t i = 0; i < sizeof(Word); ++i) {
        auto const byte = static_cast<unsigned char>(ptr()[i]);
        dump[i] = byte >= 0x20 && byte <= 0x7F ? ptr()[i] : '?';
    }
    return String(dump, Size);
}

template class MChar<unsigned int>;
template class MChar<unsigned long long>;

String String::FromMultiChar4(MChar4 const& tag, bool safe) {
    return render(tag, safe);
}

String String::FromMultiChar8(MChar8 const& tag, bool safe) {
    return render(tag, safe);
}

}  // namespace core
