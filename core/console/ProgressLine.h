#pragma once

#include "core/text/String.h"

namespace core {

/// A report on the console that overwrites the one before it in place.
class ProgressLine {
public:
    /// Writes text as a line, over the last one unless End was called since.
    void Show(String const& text);
    /// Lets the last report stand: something else is printed behind it.
    void End() { shown_ = false; }

private:
    bool shown_ = false;
};

}  // namespace core
