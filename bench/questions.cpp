#include "bench/questions.h"

#include "bench/samples.h"

#include <memory>

namespace vexa::bench {

namespace {

constexpr double kTolerance = 1e-9;

struct Asked {
    std::vector<Geometry> geometries;
    std::vector<std::pair<std::size_t, std::size_t>> pairs;
};

std::size_t countHits(const Asked& asked) {
    std::size_t hits = 0;
    for (const auto& [first, second] : asked.pairs) {
        std::uint32_t result = 0;
        vexaWKB_intersectGeometry(asked.geometries[first].get(), asked.geometries[second].get(),
                                  kTolerance, &result);
        hits += result;
    }
    return hits;
}

}  // namespace

void enterQuestions(Contest& contest, const Questions& questions, std::size_t expectedHits,
                    double reach, const std::vector<std::vector<Peer>>& peers) {
    const auto asked = std::make_shared<Asked>();
    asked->pairs = questions.pairs;
    for (const Shape& shape : questions.shapes) asked->geometries.push_back(geometryOf(shape));

    const auto hits = std::make_shared<std::size_t>(0);
    const auto isRight = [=] { return *hits == expectedHits; };
    const auto ours = [=] {
        *hits = countHits(*asked);
        benchmark::DoNotOptimize(hits.get());
    };
    contest.ours(ours, isRight);
    for (const std::vector<Peer>& library : peers) {
        for (const auto& [name, count] : library) {
            const auto theirs = [hits, count = count] {
                *hits = count();
                benchmark::DoNotOptimize(hits.get());
            };
            contest.peer(name, reach, theirs, isRight);
        }
    }
}

Questions question(ShapePair pair) {
    return {{std::move(pair.first), std::move(pair.second)}, {{0, 1}}};
}

}  // namespace vexa::bench
