#pragma once

#include <vector>

#include "core/text/String.h"

namespace core {

class StringArray;

/// A null-terminated list of C strings for C interfaces. It owns the strings: the pointers are
/// valid as long as the list.
class StringPCharList {
public:
    /// The part of a StringArray to list: its entries, or the names or values of its pairs.
    enum ListType { Entries, Names, Values };

    explicit StringPCharList(StringArray const& strings);

    int Count() const { return static_cast<int>(strings_.size()); }
    /// Returns Count() pointers and a null pointer.
    char const* const* GetList() const { return pointers_.data(); }

private:
    std::vector<String> strings_;
    std::vector<char const*> pointers_;
};

}  // namespace core
