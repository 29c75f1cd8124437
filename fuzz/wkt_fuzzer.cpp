// Any text to a buffer, back to text, and to a buffer again.
#include "fuzz/input.h"
#include "geometry/block.h"
#include "vexakit/geometry.h"
#include "vexakit/wkt.h"

#include <cstring>
#include <vector>

namespace vexa::fuzz {

namespace {

constexpr std::int32_t kFullPrecision = 17;

// Wide text of a buffer; empty where it cannot be written. Members of a parsed collection are cut to
// their first parts: they must not be walked.
std::vector<VexaWChar> written(const GeometryBuffer* geometry) {
    if (geometry->type == VEXA_GEOMETRYCOLLECTION) return {};

    std::uint32_t size = 0;
    vexaWKB_calculateSize(geometry, &size);
    // 24 bytes are a vertex, which has three numbers of up to 25 characters.
    std::vector<VexaWChar> text(std::size_t{size} * 5 + 200);
    const std::int64_t count =
        vexaWKT_geometry(geometry, text.data(), static_cast<std::int64_t>(text.size()) - 1);
    require(count >= 1 && count < static_cast<std::int64_t>(text.size()),
            "what was read is written");
    text.resize(static_cast<std::size_t>(count));
    return text;
}

std::string narrow(const std::vector<VexaWChar>& text) {
    std::string result;
    for (const VexaWChar unit : text) result += static_cast<char>(unit);
    return result;
}

// Numbers beyond what a double holds are written in a way that is no number of the dialect, and members
// of several runs have a parenthesis too many.
void checkSecondParse(const GeometryBuffer* first) {
    const std::vector<VexaWChar> text = written(first);
    if (text.empty()) return;

    GeometryBuffer* second = nullptr;
    if (vexaParse_string(narrow(text).c_str(), &second) != VEXA_SUCCESS) return;
    require(second->type == first->type, "the type survives the text");
    require(written(second) == text, "what was written is written again");
    vexaWKB_destroyGeom(&second);
}

}  // namespace

}  // namespace vexa::fuzz

// Characters of no token are echoed: not to where the fuzzer reports.
extern "C" int LLVMFuzzerInitialize(int* /*argc*/, char*** /*argv*/) {
    return std::freopen("/dev/null", "w", stdout) ? 0 : 1;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace vexa::fuzz;
    const std::string text(reinterpret_cast<const char*>(data), size);
    vexaWKT_setPrecision(kFullPrecision);

    GeometryBuffer* geometry = nullptr;
    const std::uint32_t status = vexaParse_string(text.c_str(), &geometry);
    require(std::strlen(vexaParse_errorString()) < 128, "the message is terminated");
    if (status != VEXA_SUCCESS) {
        require(geometry == nullptr, "a failure hands out nothing");
        return 0;
    }
    checkSecondParse(geometry);
    vexaWKB_destroyGeomCollection(&geometry);
    return 0;
}
