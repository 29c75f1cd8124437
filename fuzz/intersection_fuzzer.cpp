// Pairs of shapes through every entry of the intersection tests, beside the nested loops that take
// every segment and every edge in turn.
#include "fuzz/shapes.h"
#include "tests/support/intersection_asking.h"

namespace vexa::fuzz {

namespace {

double takeTolerance(Input& input) {
    static constexpr double kTolerances[] = {0, 1e-9, 0.5, 1, 3, -1, 1e300, test::kInf, test::kNaN};
    return kTolerances[input.ConsumeIntegral<unsigned char>() % std::size(kTolerances)];
}

void compare(const Shape& first, const Shape& second, double tolerance, std::uint32_t before) {
    const test::Asked expected = {VEXA_SUCCESS,
                                  test::model::intersect(first, second, tolerance, before)};
    require(test::ask(first, second, tolerance, before) == expected, "the general entry");

    // Of two geometries of one type the typed entry puts its own first, which may matter.
    const bool isTurned = first.type == second.type;
    const test::Asked turned = {VEXA_SUCCESS,
                                test::model::intersect(second, first, tolerance, before)};
    const auto typed = test::kTypedEntries[second.type - 1];
    require(test::ask(typed, first, second, tolerance, before) == (isTurned ? turned : expected),
            "the typed entry");

    for (const test::PairTest& pair : test::kPairTests) {
        if (pair.first != first.type || pair.second != second.type) continue;
        require(test::ask(pair.test, first, second, tolerance, before) == expected, pair.name);
    }
}

}  // namespace

}  // namespace vexa::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    Input input(data, size);
    const double tolerance = takeTolerance(input);
    const std::uint32_t before = input.ConsumeIntegralInRange<std::uint32_t>(0, 2);
    const Shape first = takeShape(input);
    const Shape second = takeShape(input);
    compare(first, second, tolerance, before);
    compare(second, first, tolerance, before);
    return 0;
}
