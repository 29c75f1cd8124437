// Does one named work once, for a tool that counts its instructions. Without a name it lists them.
#include "bench/samples.h"
#include "bench/wide_text.h"
#include "vexakit/vexakit.h"

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

extern "C" {

void countedRound(const std::function<void()>& round);

/// Counting begins where it is entered and ends where it is left.
[[gnu::noinline]] void countedRound(const std::function<void()>& round) {
    round();
}
}

namespace vexa::bench {

namespace {

constexpr std::size_t kVertices = 10000;
constexpr std::size_t kParts = 1000;
constexpr std::size_t kPart = 10;
constexpr double kTolerance = 1e-9;

using Round = std::function<void()>;
/// Makes the data; the round is what is counted.
using Prepare = std::function<Round()>;
using Table = std::map<std::string, Prepare>;

void require(bool holds) {
    if (!holds) std::abort();
}

std::string textAs(std::uint32_t type, int digits) {
    const std::vector<Point3d> points = wanderingPoints(kVertices);
    const bool isOne = type == VEXA_LINESTRING || type == VEXA_MULTIPOINT;
    return textOf({type, inParts(points, isOne ? kVertices : kPart)}, digits);
}

Prepare parse(std::uint32_t type, int digits) {
    return [=]() -> Round {
        return [text = textAs(type, digits)] {
            GeometryBuffer* geometry = nullptr;
            require(vexaParse_string(text.c_str(), &geometry) == VEXA_SUCCESS);
            vexaWKB_destroyGeom(&geometry);
        };
    };
}

Prepare write(std::uint32_t type, int digits) {
    return [=]() -> Round {
        const std::string text = textAs(type, digits);
        const SharedGeometry geometry = parsed(text);
        const auto out = std::make_shared<std::vector<VexaWChar>>(text.size() + 64);
        vexaWKT_setPrecision(digits);
        return [=] {
            const auto capacity = static_cast<std::int64_t>(out->size()) - 1;
            require(vexaWKT_geometry(geometry.get(), out->data(), capacity) > 0);
        };
    };
}

Prepare onGeometry(std::uint32_t type, const std::function<void(GeometryBuffer&)>& use) {
    return [=]() -> Round {
        const SharedGeometry geometry = parsed(textAs(type, 6));
        return [=] { use(*geometry); };
    };
}

void range(GeometryBuffer& geometry) {
    Point3d low{};
    Point3d high{};
    require(vexaWKB_getRange(&geometry, &low, &high) == VEXA_SUCCESS && low.x <= high.x);
}

void transform(GeometryBuffer& geometry) {
    const Transform turn = {{0, -1, 0, 1, 1, 0, 0, 2, 0, 0, 1, 3}};
    require(vexaWKB_transformGeometry(&turn, &geometry) == VEXA_SUCCESS);
}

void readBack(GeometryBuffer& line) {
    std::vector<Point3d> points(kVertices);
    std::uint32_t count = 0;
    require(vexaWKB_lineGetPoints(&line, kVertices, points.data(), &count) == VEXA_SUCCESS);
}

Prepare intersect(MakePair make, std::size_t size, std::uint32_t expected) {
    return [=]() -> Round {
        const ShapePair pair = make(size);
        const SharedGeometry first = geometryOf(pair.first);
        const SharedGeometry second = geometryOf(pair.second);
        return [=] {
            std::uint32_t result = 0;
            vexaWKB_intersectGeometry(first.get(), second.get(), kTolerance, &result);
            require(result == expected);
        };
    };
}

/// Every fourth character outside ASCII, of the western page.
std::vector<VexaWChar> westernText() {
    std::vector<VexaWChar> text(kVertices);
    for (std::size_t i = 0; i < text.size(); ++i) {
        text[i] = static_cast<VexaWChar>(i % 4 == 3 ? 0xE0 + i % 31 : 'a' + i % 26);
    }
    text.back() = 0;
    return text;
}

Round wideToUtf8() {
    return [wide = westernText()] {
        std::vector<char> out(3 * wide.size());
        require(stringCnv_wcsToUTF8(wide.data(), out.data(), out.size()) == VEXA_SUCCESS);
        require(out.data() == utf8Of(wide.data()));
    };
}

Round utf8ToWide() {
    const std::vector<VexaWChar> wide = westernText();
    std::vector<char> utf8(3 * wide.size());
    require(stringCnv_wcsToUTF8(wide.data(), utf8.data(), utf8.size()) == VEXA_SUCCESS);
    return [=] {
        std::vector<VexaWChar> out(utf8.size());
        require(stringCnv_utf8ToWcs(utf8.data(), out.data(), out.size()) == VEXA_SUCCESS);
        require(out.data() == WideText{wide.data()});
    };
}

Round wideToPage() {
    return [wide = westernText()] {
        std::vector<char> out(wide.size());
        require(stringCnv_wcsToMbs(wide.data(), out.data(), out.size()) == VEXA_SUCCESS);
    };
}

Round pageToWide() {
    const std::vector<VexaWChar> wide = westernText();
    std::vector<char> page(wide.size());
    require(stringCnv_wcsToMbs(wide.data(), page.data(), page.size()) == VEXA_SUCCESS);
    return [=] {
        std::vector<VexaWChar> out(page.size());
        require(stringCnv_mbsToTcs(page.data(), out.data(), out.size()) == VEXA_SUCCESS);
    };
}

Prepare fractions(double step) {
    return [=]() -> Round {
        return [=] {
            char text[32];
            for (int i = 1; i <= 1000; ++i) {
                require(string_convertDoubleToFracA(i * step, text) == VEXA_SUCCESS);
            }
        };
    };
}

Round tokens() {
    std::string list;
    for (int i = 0; i < 1000; ++i) list += "token,";
    return [=] {
        char token[32];
        const char* source = list.c_str();
        for (char* next = nullptr; source && *source != 0; source = next) {
            require(string_getTokenA(source, ",;", token, &next) == VEXA_SUCCESS);
        }
    };
}

void addText(Table& table) {
    for (const int digits : {6, 17}) {
        const std::string behind = digits == 6 ? "-6" : "-17";
        table["parse-linestring" + behind] = parse(VEXA_LINESTRING, digits);
        table["parse-polygon" + behind] = parse(VEXA_POLYGON, digits);
        table["parse-multipolygon" + behind] = parse(VEXA_MULTIPOLYGON, digits);
        table["parse-multipoint" + behind] = parse(VEXA_MULTIPOINT, digits);
        table["write-linestring" + behind] = write(VEXA_LINESTRING, digits);
        table["write-polygon" + behind] = write(VEXA_POLYGON, digits);
    }
}

void addBuffers(Table& table) {
    table["range-linestring"] = onGeometry(VEXA_LINESTRING, range);
    table["range-polygon"] = onGeometry(VEXA_POLYGON, range);
    table["range-multipolygon"] = onGeometry(VEXA_MULTIPOLYGON, range);
    table["transform-linestring"] = onGeometry(VEXA_LINESTRING, transform);
    table["transform-polygon"] = onGeometry(VEXA_POLYGON, transform);
    table["transform-multipolygon"] = onGeometry(VEXA_MULTIPOLYGON, transform);
    table["read-back-linestring"] = onGeometry(VEXA_LINESTRING, readBack);
}

void addIntersections(Table& table) {
    table["lines-side-by-side"] = intersect(linesSideBySide, kVertices, 0);
    table["lines-interleaved-spirals"] = intersect(interleavedSpirals, kVertices, 0);
    table["lines-crossing-at-the-end"] = intersect(linesCrossingAtTheEnd, kVertices, 1);
    table["lines-of-ten-vertices"] = intersect(linesSideBySide, kPart, 0);
    table["line-around-polygon"] = intersect(polygonAndLineAround, kVertices, 0);
    table["line-entering-polygon"] = intersect(polygonAndLineEnteringAtTheEnd, kVertices, 1);
    table["neighbour-polygons"] = intersect(neighbourPolygons, kVertices, 0);
    table["interlocked-combs"] = intersect(interlockedCombs, kVertices, 0);
    table["polygon-entering-neighbour"] = intersect(neighbourEnteringAtTheEnd, kVertices, 1);
    table["points-around-polygon"] = intersect(polygonAndThousandPointsAround, kVertices, 0);
    table["point-beside-polygon"] = intersect(polygonAndPointBeside, kVertices, 0);
    table["multilinestrings"] = intersect(linesOnGrids, kParts, 0);
    table["multipolygons"] = intersect(polygonsOnGrids, kParts, 0);
    table["multipoints"] = intersect(multipointsApart, kVertices, 0);
}

void addStrings(Table& table) {
    table["wide-to-utf8"] = wideToUtf8;
    table["utf8-to-wide"] = utf8ToWide;
    table["wide-to-page"] = wideToPage;
    table["page-to-wide"] = pageToWide;
    table["fractions-steps"] = fractions(1.03125);
    table["fractions-decimals"] = fractions(1.000123);
    table["tokens"] = tokens;
}

Table allWorks() {
    Table table;
    addText(table);
    addBuffers(table);
    addIntersections(table);
    addStrings(table);
    return table;
}

}  // namespace

}  // namespace vexa::bench

int main(int argc, char** argv) {
    const auto works = vexa::bench::allWorks();
    if (argc < 2) {
        for (const auto& [name, prepare] : works) std::printf("%s\n", name.c_str());
        return 0;
    }
    const auto work = works.find(argv[1]);
    if (work == works.end()) {
        std::fprintf(stderr, "no work of that name: %s\n", argv[1]);
        return 2;
    }
    countedRound(work->second());
    return 0;
}
