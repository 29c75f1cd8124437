#include "labels.h"

#include "world.h"

#include <algorithm>
#include <limits>

namespace world {
namespace {

// Of the font size, for the sans-serif fonts that a reader may have.
constexpr double kAdvance = 0.56;
constexpr double kAscent = 0.76;
constexpr double kDescent = 0.22;

constexpr double kGap = 6;  // from the dot's centre to the text

// A label upon another cannot be read; one upon a line can.
constexpr double kOutsideCost = 1000;
constexpr double kTakenCost = 100;
constexpr double kShunnedCost = 1;

struct Position {
    Anchor anchor;
    double right;  // of the dot, in gaps
    double down;   // from the dot to the middle of the text, in half font sizes and gaps
};

constexpr Position kPositions[] = {
    {Anchor::start, 1, 0},      {Anchor::end, -1, 0},        {Anchor::middle, 0, -1},
    {Anchor::middle, 0, 1},     {Anchor::start, 0.6, -0.75}, {Anchor::start, 0.6, 0.75},
    {Anchor::end, -0.6, -0.75}, {Anchor::end, -0.6, 0.75},
};

bool overlap(const Box& left, const Box& right) {
    return left.left < right.right && right.left < left.right && left.top < right.bottom &&
           right.top < left.bottom;
}

bool holds(const Box& box, const Pixel& pixel) {
    return box.left < pixel.x && pixel.x < box.right && box.top < pixel.y && pixel.y < box.bottom;
}

bool inside(const Box& box, const Box& frame) {
    return frame.left <= box.left && box.right <= frame.right && frame.top <= box.top &&
           box.bottom <= frame.bottom;
}

Label labelAt(const Position& position, const std::string& text, const Pixel& dot,
              double fontSize) {
    const double down = position.down * (fontSize / 2 + kGap);
    const double toBaseline = fontSize * (kAscent - kDescent) / 2;
    return {text, dot, {dot.x + position.right * kGap, dot.y + down + toBaseline}, position.anchor};
}

Box boxOf(const Label& label, double fontSize) {
    const double width = static_cast<double>(codePoints(label.text)) * fontSize * kAdvance;
    double left = label.baseline.x;
    if (label.anchor == Anchor::middle) left -= width / 2;
    if (label.anchor == Anchor::end) left -= width;
    return {left, label.baseline.y - fontSize * kAscent, left + width,
            label.baseline.y + fontSize * kDescent};
}

}  // namespace

LabelPlacer::LabelPlacer(const Box& frame, double fontSize) : frame_(frame), fontSize_(fontSize) {}

void LabelPlacer::avoid(const Box& box) {
    taken_.push_back(box);
}

void LabelPlacer::avoid(const Pixel& pixel) {
    shunned_.push_back(pixel);
}

double LabelPlacer::costOf(const Box& box) const {
    const auto covered =
        std::count_if(taken_.begin(), taken_.end(), [&](const Box& b) { return overlap(b, box); });
    const auto crossed = std::count_if(shunned_.begin(), shunned_.end(),
                                       [&](const Pixel& p) { return holds(box, p); });
    const double outside = inside(box, frame_) ? 0 : kOutsideCost;
    return outside + kTakenCost * static_cast<double>(covered) +
           kShunnedCost * static_cast<double>(crossed);
}

Label LabelPlacer::place(const std::string& text, const Pixel& dot) {
    Label best;
    double least = std::numeric_limits<double>::infinity();
    for (const Position& position : kPositions) {
        const Label label = labelAt(position, text, dot, fontSize_);
        const double cost = costOf(boxOf(label, fontSize_));
        if (cost < least) {
            least = cost;
            best = label;
        }
    }
    taken_.push_back(boxOf(best, fontSize_));
    return best;
}

}  // namespace world
