#include "core/text/StringPCharList.h"

#include "core/text/StringArray.h"

namespace core {

StringPCharList::StringPCharList(StringArray const& texts) {
    for (int i = 0; i < texts.Count(); ++i) {
        texts_.push_back(texts[i]);
        pointers_.push_back(texts_.back().getCString());
    }
    pointers_.push_back(nullptr);
}

}  // namespace core
