#pragma once

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "fuzz/require.h"
#include "sys/platform/Terminal.h"

/// A screen in memory that checks the promises of its callers.
class MemoryScreen : public sys::Screen {
public:
    MemoryScreen(std::int16_t width, std::int16_t height, std::int16_t shown, bool isClosed = false)
        : closed(isClosed), shown_(shown), info_{width, height, {0, 0}, 7, 0} {}

    /// Whether read() fails.
    bool closed;

    char TextAt(Position at) const { return text_[IndexOf(at)]; }
    std::uint16_t AttributeAt(Position at) const { return attributes_[IndexOf(at)]; }
    /// Returns the visible state, for comparison.
    auto Picture() const {
        return std::tuple(text_, attributes_, info_.cursor.column, info_.cursor.row,
                          info_.attribute, info_.windowTop);
    }
    std::string const& Written() const { return written_; }
    /// The text of the last write.
    std::string const& LastText() const { return lastText_; }
    /// The rows of the last move of the window.
    std::int16_t LastMove() const { return lastMove_; }

    bool Read(Info& info) override {
        info = info_;
        return !closed;
    }
    void SetCursor(Position at) override {
        if (IsInside(at)) {
            info_.cursor = at;
        }
    }
    void SetAttribute(std::uint16_t attribute) override {
        requireAttribute(attribute);
        info_.attribute = attribute;
    }
    void Write(std::string_view text) override {
        require(!text.empty());
        lastText_ = text;
        written_ += text;
        for (char const c : text) {
            if (c != '\n') {
                text_[IndexOf(info_.cursor)] = c;
                attributes_[IndexOf(info_.cursor)] = info_.attribute;
            }
            ++info_.cursor.column;
            if (c == '\n' || info_.cursor.column == info_.width) {
                StartLine();
            }
        }
    }
    void FillBlanks(Position from, int count) override { Fill(text_, from, count, ' '); }
    void FillAttribute(Position from, int count, std::uint16_t attribute) override {
        requireAttribute(attribute);
        Fill(attributes_, from, count, attribute);
    }
    void MoveWindow(std::int16_t rows) override {
        lastMove_ = rows;
        int const top = info_.windowTop + rows;
        if (top >= 0 && top + shown_ <= info_.height) {
            info_.windowTop = static_cast<std::int16_t>(top);
        }
    }

private:
    bool IsInside(Position at) const {
        return at.row >= 0 && at.row < info_.height && at.column >= 0 && at.column < info_.width;
    }
    std::size_t IndexOf(Position at) const {
        require(IsInside(at));
        return static_cast<std::size_t>(at.row * info_.width + at.column);
    }
    /// Only colours, reverse video and underscore exist.
    static void requireAttribute(std::uint16_t attribute) { require((attribute & ~0xC0FF) == 0); }

    template <class Cells, class Value>
    void Fill(Cells& all, Position from, int count, Value value) {
        require(count >= 0);
        std::size_t const available = all.size() - IndexOf(from);
        std::fill_n(&all[IndexOf(from)], std::min(static_cast<std::size_t>(count), available),
                    value);
    }
    void StartLine() {
        info_.cursor.column = 0;
        if (++info_.cursor.row < info_.height) {
            return;
        }
        --info_.cursor.row;
        text_ = text_.substr(Width()) + std::string(Width(), ' ');
        attributes_.erase(attributes_.begin(), attributes_.begin() + info_.width);
        attributes_.resize(text_.size(), info_.attribute);
    }
    std::size_t Width() const { return static_cast<std::size_t>(info_.width); }

    int const shown_;
    Info info_;
    std::string text_ = std::string(Width() * static_cast<std::size_t>(info_.height), ' ');
    std::vector<std::uint16_t> attributes_ = std::vector<std::uint16_t>(text_.size(), 7);
    std::string written_;
    std::string lastText_;
    std::int16_t lastMove_ = 0;
};
