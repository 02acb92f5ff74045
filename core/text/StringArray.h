#pragma once

#include <memory>
#include <vector>

#include "core/object/BasicClass.h"
#include "core/text/String.h"
#include "core/text/StringPCharList.h"

namespace core {

class IStream;

/// An ordered list that owns its texts, also used as a list of pairs: an entry is then name,
/// separator ("=" at first), value, and the first separator splits it. A pair needs a name: in an
/// entry without a separator, or with it in front, name and value are both empty.
///
/// Lookups ignore case and answer -1 or the empty text when nothing matches. An index outside the
/// list changes nothing and gives the empty text; only Get and [] must be given a valid one. For
/// one thread at a time.
class StringArray : public BasicClass {
public:
    /// Empty; the capacity grows by step entries at a time (1 to MaxStep).
    explicit StringArray(int step = 16);
    StringArray(StringArray const& other);
    StringArray& operator=(StringArray const& other);
    ~StringArray() override;

    static constexpr int MaxStep = 0x10000;
    /// More entries are refused as memory that is not there: std::bad_alloc.
    static constexpr int MaxCapacity = 0x1FC00000;

    char const* ClassName() const override;

    int Count() const { return static_cast<int>(entries_.size()); }
    /// The slots, a multiple of the step: grows by the step whenever an entry does not fit. The
    /// memory grows geometrically, so appending takes constant time on average.
    int Capacity() const { return capacity_; }
    /// An entry stays where it is until it is deleted.
    String& Get(int index) { return *entries_[static_cast<std::size_t>(index)]; }
    String const& Get(int index) const { return *entries_[static_cast<std::size_t>(index)]; }
    String& operator[](int index) { return Get(index); }
    String const& operator[](int index) const { return Get(index); }

    /// Deletes all entries and frees the storage.
    void Clear();
    /// Appends a copy of text; returns its index.
    int Add(String const& text);
    /// Appends the pair; returns its index. The name may be there already.
    int Add(String const& name, String const& value);
    /// Appends copies of all entries of other, which may be this array.
    void Add(StringArray const& other);
    void Delete(int index);

    /// The first entry at or after start that equals text; an empty entry never does.
    int IndexOf(String const& text, int start = 0) const;
    /// The first pair at or after start with that name.
    int IndexOfName(String const& name, int start = 0) const;

    String const& GetSeparator() const { return separator_; }
    /// For all entries, those that are there included; empty means "=".
    void SetSeparator(String const& separator);

    String GetNameByIndex(int index) const;
    String GetValueByIndex(int index) const;
    String GetValueByName(String const& name) const;
    /// Replaces one part of the pair. An entry that is no pair becomes one of the given part and
    /// an empty other one.
    void SetNameByIndex(int index, String const& name);
    void SetValueByIndex(int index, String const& value);
    /// Sets the value of the first pair with that name, or appends one; returns its index.
    int SetValueByName(String const& name, String const& value);

    /// All entries, each followed by CR LF.
    String AsString() const;

    // Text in and out. Lines end at LF, CR or CR LF when they are read, with CR LF when they are
    // written. Loading takes the place of all entries; when a stream is null or fails, the result
    // is false and the list stays as it was. Streams are used, not owned.

    void LoadFrom(String const& text);
    bool LoadFrom(IStream* stream);
    /// Leaves out blank lines and those whose first character behind white space is "#" or ";",
    /// and takes the white space off around lines, names and values.
    void LoadAsConfFileFrom(String const& text);
    bool LoadAsConfFileFrom(IStream* stream);
    bool SaveTo(IStream* stream) const;

    /// Appends the values of name[0], name[1] ... to list, as many as the value of name.count
    /// says, but not more than there are entries here; a missing one is an empty text. Returns
    /// their number.
    int GetCountedList(String const& name, StringArray& list) const;
    /// Stores list in that form.
    void SetCountedList(String const& name, StringArray const& list);

    /// The entries, or one part of each, as C strings of their own.
    StringPCharList AsPCharList(StringPCharList::ListType type = StringPCharList::Entries) const;

private:
    bool has(int index) const { return index >= 0 && index < Count(); }
    void takeEntries(StringArray& other);
    void takeConfLines(StringArray const& lines);
    int append(std::unique_ptr<String> entry);

    std::vector<std::unique_ptr<String>> entries_;
    int capacity_ = 0;
    int step_;
    String separator_ = "=";
};

}  // namespace core
