// Whether two geometries intersect, in the plane, beside libraries of the plane: their geometries are
// built beforehand, their indices are not.
#include "bench/questions.h"
#include "bench/works.h"

namespace vexa::bench {

namespace {

constexpr std::size_t kLarge = 100000;

struct Case {
    const char* family;
    const char* name;
    MakePair make;
    bool isHit;
    double reach;
    /// Where all of it is large.
    double reachWhenLarge;
};

constexpr double kLines = 0.3;
constexpr double kPolygons = 0.4;
constexpr double kHundredth = 0.01;

constexpr Case kCases[] = {
    {"line and line", "lines side by side", linesSideBySide, false, kLines, kLines},
    {"line and line", "lines, interleaved spirals", interleavedSpirals, false, kLines, kLines},
    {"line and line", "lines crossing at the end", linesCrossingAtTheEnd, true, kLines, kLines},
    {"line and polygon", "line around polygon", polygonAndLineAround, false, kPolygons, kHundredth},
    {"line and polygon", "line entering polygon at its end", polygonAndLineEnteringAtTheEnd, true,
     kPolygons, kPolygons},
    {"polygon and polygon", "neighbour polygons", neighbourPolygons, false, kPolygons, kHundredth},
    {"polygon and polygon", "interlocked combs", interlockedCombs, false, kPolygons, kHundredth},
    {"polygon and polygon", "polygon entering neighbour at its end", neighbourEnteringAtTheEnd,
     true, kPolygons, kPolygons},
    {"points and polygon", "1,000 points around polygon", polygonAndThousandPointsAround, false,
     0.4, 0.4},
    {"points and polygon", "point beside polygon", polygonAndPointBeside, false, 0.9, 0.9},
};

void add(Works& works, const Case& row, std::size_t size) {
    works.add({row.family, row.name, size, !row.isHit}, [=](Contest& contest) {
        const Questions questions = question(row.make(size));
        enterQuestions(contest, questions, row.isHit ? 1 : 0,
                       size < kLarge ? row.reach : row.reachWhenLarge,
                       {geosPeers(questions), boostPeers(questions)});
    });
}

}  // namespace

void addPlanarIntersections(Works& works) {
    for (const Case& row : kCases) {
        for (const std::size_t size : {10UL, 100UL, 1000UL, 10000UL, kLarge}) {
            add(works, row, size);
        }
    }
}

}  // namespace vexa::bench
