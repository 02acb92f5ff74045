#pragma once

#include <vector>

#include "core/text/String.h"

namespace core {

class StringArray;

/// A list of C strings with a null pointer behind the last one, as C interfaces take it. It owns
/// the texts: the pointers are valid as long as the list.
class StringPCharList {
public:
    /// What of a StringArray goes into the list: its entries, or one part of each pair.
    enum ListType { Entries, Names, Values };

    explicit StringPCharList(StringArray const& texts);

    int Count() const { return static_cast<int>(texts_.size()); }
    /// Count() pointers and a null pointer.
    char const* const* GetList() const { return pointers_.data(); }

private:
    std::vector<String> texts_;
    std::vector<char const*> pointers_;
};

}  // namespace core
