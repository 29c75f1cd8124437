// The text of any shape into arrays of any size, beside the writer's rules in their plainest form.
#include "fuzz/shapes.h"
#include "tests/support/writer_check.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa;
    fuzz::Input input(data, size);
    const test::PrecisionScope precision(fuzz::take(input, -2, 20));
    const fuzz::Shape shape = fuzz::takeShape(input);
    const test::Bytes buffer = bufferOf(shape);
    const auto agrees = [&](std::int64_t capacity) {
        return test::agree(test::WriterPair::of(buffer), buffer.data(), capacity);
    };
    const auto capacity = static_cast<std::int64_t>(input.ConsumeIntegralInRange<int>(-2, 3000));
    const testing::AssertionResult result = agrees(capacity);
    fuzz::require(static_cast<bool>(result), result.message());
    return 0;
}
