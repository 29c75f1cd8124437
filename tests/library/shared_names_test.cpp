#include <utility>

#include <gtest/gtest.h>

#ifdef _WIN32
#include <windows.h>
#else
#include <dlfcn.h>
#endif

#include "vexakit/vexakit.h"

namespace {

// The address in the loaded library itself: a pointer that the program takes may be a stub's.
void* addressOf(const char* name) {
#ifdef _WIN32
    return reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"vexakit.dll"), name));
#else
    return dlsym(RTLD_DEFAULT, name);
#endif
}

class SharedName : public testing::TestWithParam<std::pair<const char*, const char*>> {};

TEST_P(SharedName, HasTheAddressOfItsTwin) {
    void* const address = addressOf(GetParam().first);

    ASSERT_NE(address, nullptr);
    EXPECT_EQ(address, addressOf(GetParam().second));
}

INSTANTIATE_TEST_SUITE_P(
    Table, SharedName,
    testing::Values(std::pair{"vexaWKB_destroyGeom", "vexaWKB_destroyGeomCollection"},
                    std::pair{"vexaParse_initialize", "vexaParse_uninitialize"},
                    std::pair{"string_freeA", "string_freeW"},
                    std::pair{"string_incrementW", "string_nextCharW"},
                    std::pair{"string_numCharsW", "string_safeLengthW"},
                    std::pair{"stringCnv_tcsToWcs", "stringCnv_wcsToTcs"},
                    std::pair{"stringCnv_tcsToWcsAlloc", "stringCnv_wcsToTcsAlloc"},
                    std::pair{"vexaWKB_transformPolygon", "vexaWKB_transformMultiLine"}),
    [](const auto& row) { return std::string{row.param.second}; });

// Keeps the program linked to the library, and shows that a call through it arrives.
TEST(Library, AnswersThroughItsExportedNames) {
    GeometryBuffer* point = nullptr;
    ASSERT_EQ(vexaParse_string("POINT(1 2 3)", &point), 0U);

    std::uint32_t size = 0;
    EXPECT_EQ(vexaWKB_getSize(point, &size), 0U);
    EXPECT_EQ(size, 40U);
    EXPECT_EQ(vexaWKB_destroyGeom(&point), 0U);
    EXPECT_EQ(point, nullptr);
}

}  // namespace
