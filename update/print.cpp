#include "update/print.h"

#include "core/console/Console.h"
#include "core/console/ProgressLine.h"

namespace update {

using core::Console;
using core::String;

namespace {

core::ProgressLine progress;

}  // namespace

void printProgress(String const& text) {
    progress.Show(text);
}

void print(String const& text, bool lineEnd) {
    Console::write(text, lineEnd);
    progress.End();
}

void println(String const& text, bool lineEnd) {
    print(text, lineEnd);
}

void print(int indent, String const& text, bool lineEnd) {
    print(indent > 0 ? String::OfChar('\t', indent).AppendNew(text) : text, lineEnd);
}

void println(int indent, String const& text, bool lineEnd) {
    print(indent, text, lineEnd);
}

}  // namespace update
