#include "core/text/StringArray.h"

#include <algorithm>
#include <new>

#include "core/text/TextBuilder.h"

namespace core {

StringArray::StringArray(int step) : step_(std::clamp(step, 1, MaxStep)) {}

StringArray::StringArray(StringArray const& other)
    : ReferenceCounted(other), BasicClass(other), step_(other.step_) {
    Add(other);
}

StringArray& StringArray::operator=(StringArray const& other) {
    if (this != &other) {
        Clear();
        step_ = other.step_;
        Add(other);
    }
    return *this;
}

StringArray::~StringArray() = default;

char const* StringArray::ClassName() const {
    return "StringArray";
}

void StringArray::Clear() {
    StringArray none(step_);
    SwapEntries(none);
}

int StringArray::Add(String const& text) {
    if (count_ == Capacity()) {
        Grow();
    }
    Get(count_) = text;
    return count_++;
}

int StringArray::Add(String const& name, String const& value) {
    TextBuilder pair;
    pair.Append(name.View());
    pair.Append(Separator);
    pair.Append(value.View());
    return Add(pair.AsString());
}

void StringArray::Add(StringArray const& other) {
    int const count = other.Count();
    for (int i = 0; i < count; ++i) {
        Add(other.Get(i));
    }
}

void StringArray::Delete(int index) {
    if (Has(index)) {
        Get(index).Clear();
        // The slot becomes the first unused one.
        auto const slot = slots_.begin() + index;
        std::rotate(slot, slot + 1, slots_.begin() + count_);
        --count_;
    }
}

int StringArray::IndexOf(String const& text, int start) const {
    for (int i = std::max(start, 0); i < Count(); ++i) {
        if (!Get(i).IsEmpty() && Get(i).CompareIC(text) == 0) {
            return i;
        }
    }
    return -1;
}

int StringArray::IndexOfName(String const& name, int start) const {
    for (int i = std::max(start, 0); i < Count(); ++i) {
        String const found = GetNameByIndex(i);
        if (!found.IsEmpty() && found.CompareIC(name) == 0) {
            return i;
        }
    }
    return -1;
}

String StringArray::GetNameByIndex(int index) const {
    return Has(index) ? Get(index).LeftOf(Separator) : String();
}

String StringArray::GetValueByIndex(int index) const {
    bool const pair = Has(index) && Get(index).Find(Separator) > 0;
    return pair ? Get(index).RightOf(Separator) : String();
}

String StringArray::GetValueByName(String const& name) const {
    int const index = IndexOfName(name);
    return index >= 0 ? GetValueByIndex(index) : String();
}

void StringArray::SetNameByIndex(int index, String const& name) {
    if (Has(index)) {
        Get(index) = name + Separator + GetValueByIndex(index);
    }
}

void StringArray::SetValueByIndex(int index, String const& value) {
    if (Has(index)) {
        Get(index) = GetNameByIndex(index) + Separator + value;
    }
}

int StringArray::SetValueByName(String const& name, String const& value) {
    int const index = IndexOfName(name);
    if (index < 0) {
        return Add(name, value);
    }
    SetValueByIndex(index, value);
    return index;
}

String StringArray::AsString() const {
    TextBuilder result;
    for (int i = 0; i < Count(); ++i) {
        result.Append(Get(i).View());
        result.Append("\r\n");
    }
    return result.AsString();
}

void StringArray::Grow() {
    if (Capacity() > MaxCapacity - step_) {
        throw std::bad_alloc();
    }
    auto const size = static_cast<std::size_t>(step_);
    String* block = blocks_.emplace_back(std::make_unique<String[]>(size)).get();
    slots_.resize(slots_.size() + size);
    std::generate(slots_.end() - step_, slots_.end(), [&block] { return block++; });
}

}  // namespace core
