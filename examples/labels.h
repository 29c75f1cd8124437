#pragma once

#include <cstddef>
#include <string>
#include <vector>

/// Finds room for the names beside the dots of a map. Lengths are pixels, y goes down.
namespace world {

struct Pixel {
    double x;
    double y;
};

struct Box {
    double left;
    double top;
    double right;
    double bottom;
};

enum class Anchor { start, middle, end };

struct Label {
    std::string text;
    Pixel dot;
    Pixel baseline;  // where the anchor of the text lies
    Anchor anchor = Anchor::start;
};

class LabelPlacer {
public:
    /// Labels stay inside the frame.
    LabelPlacer(const Box& frame, double fontSize);

    /// Keeps labels off a place, as far as another has room.
    void avoid(const Box& box);
    void avoid(const Pixel& pixel);

    /// The first of eight positions about the dot that covers least.
    Label place(const std::string& text, const Pixel& dot);

private:
    double costOf(const Box& box) const;

    Box frame_;
    double fontSize_;
    std::vector<Box> taken_;
    std::vector<Pixel> shunned_;
};

}  // namespace world
