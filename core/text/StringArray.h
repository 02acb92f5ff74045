#pragma once

#include <memory>
#include <vector>

#include "core/object/BasicClass.h"
#include "core/text/String.h"
#include "core/text/StringPCharList.h"

namespace core {

class IStream;

/// An ordered list of strings, also used for name-value pairs: an entry "name=value" is split at
/// the first "=". An entry without "=", or that begins with it, is not a pair: its name and value
/// are empty.
///
/// Lookups ignore case and return -1 or an empty string if nothing matches. With an index out of
/// range, functions do nothing or return an empty string; only Get and [] require a valid index.
/// Not thread-safe.
class StringArray : public BasicClass {
public:
    /// Creates an empty array whose capacity grows by step entries, clamped to 1 to MaxStep.
    explicit StringArray(int step = 16);
    StringArray(StringArray const& other);
    StringArray& operator=(StringArray const& other);
    ~StringArray() override;

    static constexpr char Separator = '=';
    static constexpr int MaxStep = 0x10000;
    /// Adding more entries throws std::bad_alloc.
    static constexpr int MaxCapacity = 0x1FC00000;

    char const* ClassName() const override;

    int Count() const { return count_; }
    /// Returns the number of slots: a multiple of the step, increased by it when an entry does not
    /// fit. Adding an entry takes amortised constant time.
    int Capacity() const { return static_cast<int>(slots_.size()); }
    /// Returns an entry; the reference is valid until the entry is deleted.
    String& Get(int index) { return *slots_[static_cast<std::size_t>(index)]; }
    String const& Get(int index) const { return *slots_[static_cast<std::size_t>(index)]; }
    String& operator[](int index) { return Get(index); }
    String const& operator[](int index) const { return Get(index); }

    /// Deletes all entries and frees the memory.
    void Clear();
    /// Appends a copy of text. Returns its index.
    int Add(String const& text);
    /// Appends a pair, even if there is one with that name. Returns its index.
    int Add(String const& name, String const& value);
    /// Appends copies of all entries of other, which may be this array.
    void Add(StringArray const& other);
    void Delete(int index);

    /// Returns the index of the first entry at or after start that equals text, which must not be
    /// empty, or -1.
    int IndexOf(String const& text, int start = 0) const;
    /// Returns the index of the first pair at or after start with that name, or -1.
    int IndexOfName(String const& name, int start = 0) const;

    String GetNameByIndex(int index) const;
    String GetValueByIndex(int index) const;
    String GetValueByName(String const& name) const;
    /// Replaces one part of a pair. An entry that is not a pair becomes one, with the other part
    /// empty.
    void SetNameByIndex(int index, String const& name);
    void SetValueByIndex(int index, String const& value);
    /// Sets the value of the first pair with that name, or appends a pair. Returns its index.
    int SetValueByName(String const& name, String const& value);

    /// Returns all entries, each followed by CR LF.
    String AsString() const;

    // Loading and saving. Lines end with LF, CR or CR LF when read, with CR LF when written.
    // Loading replaces all entries. If a stream is null or fails, the functions return false, and
    // loading leaves the entries unchanged.

    void LoadFrom(String const& text);
    bool LoadFrom(IStream* stream);
    /// Skips blank lines and comments, whose first character except white space is "#" or ";".
    /// Trims lines, names and values.
    void LoadAsConfFileFrom(String const& text);
    bool LoadAsConfFileFrom(IStream* stream);
    bool SaveTo(IStream* stream) const;

    /// Returns copies of the entries, or of one part of each, as C strings.
    StringPCharList AsPCharList(StringPCharList::ListType type = StringPCharList::Entries) const;

private:
    bool Has(int index) const { return index >= 0 && index < Count(); }
    void SwapEntries(StringArray& other);
    void SetConfLines(StringArray const& lines);
    void Grow();

    /// Blocks of step_ strings. They never move, as references to entries must stay valid.
    std::vector<std::unique_ptr<String[]>> blocks_;
    /// All strings of the blocks: first the entries in their order, then unused, empty ones.
    std::vector<String*> slots_;
    int count_ = 0;
    int step_;
};

}  // namespace core
