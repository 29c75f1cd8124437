#include "map.h"

#include "labels.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>
#include <string_view>
#include <utility>

namespace world {
namespace {

// ---- The plane of the picture -------------------------------------------------------------------

constexpr double kHalfTurn = 180;
constexpr double kWidth = 1200;
constexpr double kScale = kWidth / (2 * kHalfTurn);  // pixels a degree
constexpr double kTitleHeight = 62;
constexpr double kNorth = 84;
constexpr double kSouth = -57;
constexpr double kHeight = kTitleHeight + (kNorth - kSouth) * kScale;

constexpr double kNameSize = 14;
constexpr double kDotRadius = 3.5;

constexpr Box kLegend{22, 364, 264, 512};

Pixel pixelOf(const Point3d& place) {
    return {(place.x + kHalfTurn) * kScale, kTitleHeight + (kNorth - place.y) * kScale};
}

// ---- Text ---------------------------------------------------------------------------------------

std::string escaped(std::string_view text) {
    std::string result;
    for (const char c : text) {
        switch (c) {
            case '&': result += "&amp;"; break;
            case '<': result += "&lt;"; break;
            case '>': result += "&gt;"; break;
            default: result += c;
        }
    }
    return result;
}

const char* classOf(Shade shade) {
    switch (shade) {
        case Shade::holdsCity: return "city";
        case Shade::flownOver: return "flown";
        case Shade::both: return "both";
        default: return "plain";
    }
}

const char* classOf(Anchor anchor) {
    switch (anchor) {
        case Anchor::middle: return " class=\"middle\"";
        case Anchor::end: return " class=\"end\"";
        default: return "";
    }
}

// ---- Paths --------------------------------------------------------------------------------------

/// Writes a path in whole tenths of a pixel, each vertex as the step from the one before: half as
/// long as the coordinates, and rounding does not add up.
class Pen {
public:
    explicit Pen(std::ostream& svg) : svg_(svg) {}

    void moveTo(const Pixel& pixel) {
        jump(pixel);
        svg_ << 'M' << x_ << ' ' << y_;
    }

    /// A vertex that falls on the one before is left out.
    void lineTo(const Pixel& pixel) {
        const long fromX = x_;
        const long fromY = y_;
        jump(pixel);
        if (x_ == fromX && y_ == fromY) return;
        svg_ << 'l' << x_ - fromX << (y_ < fromY ? "" : " ") << y_ - fromY;
    }

private:
    void jump(const Pixel& pixel) {
        x_ = std::lround(pixel.x * kTenths);
        y_ = std::lround(pixel.y * kTenths);
    }

    static constexpr double kTenths = 10;

    std::ostream& svg_;
    long x_ = 0;
    long y_ = 0;
};

void drawLine(const std::vector<Point3d>& vertices, double shift, std::ostream& svg) {
    const auto pixelAt = [&](const Point3d& vertex) {
        return pixelOf({vertex.x + shift, vertex.y, vertex.z});
    };
    Pen pen(svg);
    pen.moveTo(pixelAt(vertices.front()));
    for (const Point3d& vertex : vertices) pen.lineTo(pixelAt(vertex));
}

bool isOnMap(const Ring& ring) {
    const auto isNorthEnough = [](const Point3d& vertex) { return vertex.y > kSouth; };
    return std::any_of(ring.begin(), ring.end(), isNorthEnough);
}

/// What goes on beyond 180 degrees comes in again on the other side.
bool goesBeyondDateLine(const Ring& ring) {
    const auto isBeyond = [](const Point3d& vertex) { return vertex.x > kHalfTurn; };
    return std::any_of(ring.begin(), ring.end(), isBeyond);
}

void drawCountry(const MapCountry& country, std::ostream& svg) {
    std::ostringstream path;
    for (const Ring& ring : country.rings) {
        if (!isOnMap(ring)) continue;
        drawLine(ring, 0, path);
        path << 'z';
        if (!goesBeyondDateLine(ring)) continue;
        drawLine(ring, -2 * kHalfTurn, path);
        path << 'z';
    }
    if (path.str().empty()) return;
    svg << "<path class=\"" << classOf(country.shade) << "\" d=\"" << path.str() << "\"><title>"
        << escaped(country.name) << "</title></path>\n";
}

// ---- The layers, from the ground up -------------------------------------------------------------

void drawStyle(std::ostream& svg) {
    svg << R"(<style>
text{font-family:system-ui,"Segoe UI","Helvetica Neue",Arial,"DejaVu Sans",sans-serif;fill:#26343f}
.title{font-size:24px;font-weight:600}
.subtitle,.key{font-size:14px;fill:#51626f}
.grid{stroke:#cbdce8;stroke-width:.8;fill:none}
.land{stroke:#fff;stroke-width:6;stroke-linejoin:round;fill-rule:evenodd}
.plain{fill:#d9ded7}.city{fill:#f5d491}.flown{fill:#a8d3bd}.both{fill:#eda77a}
.flight{fill:none;stroke:#b8325a;stroke-width:22;stroke-linecap:round;stroke-linejoin:round}
.dots{fill:#26343f;stroke:#fff;stroke-width:1.2}
.names{font-size:14px;paint-order:stroke;stroke:#fff;stroke-opacity:.85;stroke-width:3;stroke-linejoin:round}
.middle{text-anchor:middle}.end{text-anchor:end}
</style>
)";
}

void drawGround(const Map& map, std::ostream& svg) {
    svg << R"(<rect width=")" << kWidth << "\" height=\"" << kHeight << "\" fill=\"#e4eff7\"/>\n"
        << R"(<path class="grid" d=")";
    for (int longitude = -150; longitude < kHalfTurn; longitude += 30) {
        const Pixel top = pixelOf({static_cast<double>(longitude), kNorth, 0});
        svg << 'M' << top.x << ' ' << top.y << 'V' << kHeight;
    }
    for (int latitude = -30; latitude < kNorth; latitude += 30) {
        svg << "M0 " << pixelOf({0, static_cast<double>(latitude), 0}).y << 'H' << kWidth;
    }
    svg << "\"/>\n<text class=\"title\" x=\"24\" y=\"38\">" << escaped(map.title)
        << "</text>\n<text class=\"subtitle end\" x=\"" << kWidth - 24 << R"(" y="37">)"
        << escaped(map.subtitle) << "</text>\n";
}

void drawCountries(const Map& map, std::ostream& svg) {
    svg << "<g class=\"land\" transform=\"scale(.1)\">\n";
    for (const MapCountry& country : map.countries) drawCountry(country, svg);
    svg << "</g>\n";
}

void drawFlights(const Map& map, std::ostream& svg) {
    svg << "<path class=\"flight\" transform=\"scale(.1)\" d=\"";
    for (const std::vector<Point3d>& flight : map.flights) drawLine(flight, 0, svg);
    svg << "\"/>\n";
}

void drawDot(const Pixel& pixel, std::ostream& svg) {
    svg << "<circle cx=\"" << pixel.x << "\" cy=\"" << pixel.y << "\" r=\"" << kDotRadius
        << "\"/>\n";
}

std::vector<Label> placeNames(const Map& map) {
    LabelPlacer placer({0, kTitleHeight, kWidth, kHeight}, kNameSize);
    placer.avoid(kLegend);
    for (const std::vector<Point3d>& flight : map.flights) {
        for (const Point3d& vertex : flight) placer.avoid(pixelOf(vertex));
    }
    for (const MapCity& city : map.cities) {
        const Pixel dot = pixelOf(city.place);
        placer.avoid(
            Box{dot.x - kDotRadius, dot.y - kDotRadius, dot.x + kDotRadius, dot.y + kDotRadius});
    }

    std::vector<Label> labels;
    for (const MapCity& city : map.cities) {
        labels.push_back(placer.place(city.name, pixelOf(city.place)));
    }
    return labels;
}

void drawCities(const Map& map, std::ostream& svg) {
    const std::vector<Label> labels = placeNames(map);
    svg << "<g class=\"dots\">\n";
    for (const Label& label : labels) drawDot(label.dot, svg);
    svg << "</g>\n<g class=\"names\">\n";
    for (const Label& label : labels) {
        svg << "<text" << classOf(label.anchor) << " x=\"" << label.baseline.x << "\" y=\""
            << label.baseline.y << "\">" << escaped(label.text) << "</text>\n";
    }
    svg << "</g>\n";
}

// ---- The legend ---------------------------------------------------------------------------------

constexpr double kKeyLeft = kLegend.left + 14;
constexpr double kKeyWidth = 24;
constexpr double kKeyStep = 26;

void drawKeyText(double middle, const char* text, std::ostream& svg) {
    svg << R"(<text class="key" x=")" << kKeyLeft + kKeyWidth + 12 << "\" y=\"" << middle + 5
        << "\">" << text << "</text>\n";
}

void drawShadeKey(Shade shade, double middle, const char* text, std::ostream& svg) {
    svg << "<rect class=\"" << classOf(shade) << "\" x=\"" << kKeyLeft << "\" y=\"" << middle - 8
        << "\" width=\"" << kKeyWidth << "\" height=\"16\" rx=\"3\"/>\n";
    drawKeyText(middle, text, svg);
}

void drawLegend(std::ostream& svg) {
    svg << "<rect x=\"" << kLegend.left << "\" y=\"" << kLegend.top << "\" width=\""
        << kLegend.right - kLegend.left << "\" height=\"" << kLegend.bottom - kLegend.top
        << "\" rx=\"8\" fill=\"#fff\" fill-opacity=\".8\"/>\n";

    double middle = kLegend.top + 22;
    const auto next = [&middle] { return std::exchange(middle, middle + kKeyStep); };
    drawShadeKey(Shade::holdsCity, next(), "holds a city", svg);
    drawShadeKey(Shade::flownOver, next(), "lies under a flight", svg);
    drawShadeKey(Shade::both, next(), "both", svg);

    svg << "<path class=\"flight\" transform=\"scale(.1)\" d=\"M" << kKeyLeft * 10 << ' '
        << middle * 10 << 'h' << kKeyWidth * 10 << "\"/>\n";
    drawKeyText(next(), "flight, along a great circle", svg);

    svg << "<g class=\"dots\">";
    drawDot({kKeyLeft + kKeyWidth / 2, middle}, svg);
    svg << "</g>\n";
    drawKeyText(middle, "city", svg);
}

}  // namespace

void draw(const Map& map, std::ostream& svg) {
    svg << std::fixed << std::setprecision(1)
        << R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 )" << kWidth << ' ' << kHeight
        << "\" width=\"" << kWidth << "\" height=\"" << kHeight << "\" role=\"img\">\n<title>"
        << escaped(map.title) << "</title>\n";
    drawStyle(svg);
    svg << R"(<clipPath id="card"><rect width=")" << kWidth << "\" height=\"" << kHeight
        << "\" rx=\"14\"/></clipPath>\n<g clip-path=\"url(#card)\">\n";
    drawGround(map, svg);
    drawCountries(map, svg);
    drawFlights(map, svg);
    drawLegend(svg);
    drawCities(map, svg);
    svg << "</g>\n</svg>\n";
}

}  // namespace world
