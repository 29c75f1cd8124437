#include "platform/kernel_objects.h"

#include "platform/security.h"
#include "tests/platform/kernel_objects_support.h"
#include "tests/support/wide_text.h"

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace vexa::test {

namespace {

using platform::closeHandle;
using platform::createEvent;
using platform::createMapping;
using platform::createMutex;
using platform::Handle;
using platform::isMapped;
using platform::kNoTimeLimit;
using platform::mapView;
using platform::releaseMutex;
using platform::Reset;
using platform::resetEvent;
using platform::setEvent;
using platform::unmapView;
using platform::waitFor;
using platform::WaitResult;

constexpr std::uint32_t kSize = 32;

// ---- Handles that are no object ----------------------------------------------------------------

void expectNothingWorksOn(Handle handle) {
    EXPECT_EQ(waitFor(handle, 0), WaitResult::Failed);
    EXPECT_EQ(waitFor(handle, kNoTimeLimit), WaitResult::Failed);
    EXPECT_FALSE(setEvent(handle));
    EXPECT_FALSE(resetEvent(handle));
    EXPECT_FALSE(releaseMutex(handle));
    EXPECT_EQ(mapView(handle), nullptr);
    EXPECT_FALSE(isMapped(handle, nullptr));
    unmapView(handle, nullptr);
    EXPECT_FALSE(closeHandle(handle));
}

TEST(ObjectHandle, FailsWhereItIsNull) {
    expectNothingWorksOn(nullptr);
}

struct GarbageCase {
    const char* name;
    std::uintptr_t value;
};

void PrintTo(const GarbageCase& row, std::ostream* out) {
    *out << row.name;
}

class GarbageHandle : public testing::TestWithParam<GarbageCase> {};
INSTANTIATE_TEST_SUITE_P(Table, GarbageHandle,
                         testing::Values(GarbageCase{"One", 1}, GarbageCase{"FarIndex", 0xABCDE0},
                                         GarbageCase{"LastIndex", 0xFFFFF0},
                                         GarbageCase{"HighBits", 0x0ABC000000000000},
                                         GarbageCase{"MostBits", 0x7FFFFFFFFFFFFFF0}),
                         [](const auto& row) { return row.param.name; });

TEST_P(GarbageHandle, FailsAndIsNotFollowed) {
    const OwnHandle open{
        createEvent(Reset::Manual, true, nullptr, nullptr)};  // so there is a table

    // NOLINTNEXTLINE(performance-no-int-to-ptr): a handle is a number
    expectNothingWorksOn(reinterpret_cast<Handle>(GetParam().value));
    EXPECT_EQ(waitFor(open.get(), 0), WaitResult::Signalled);
}

TEST(GarbageHandle, FailsWhereItLooksLikeAnOpenOne) {
    const OwnHandle open{createEvent(Reset::Automatic, true, nullptr, nullptr)};
    // Of another use of the same place.
    const std::uintptr_t other =
        reinterpret_cast<std::uintptr_t>(open.get()) + (std::uintptr_t{1} << 30);

    // NOLINTNEXTLINE(performance-no-int-to-ptr): a handle is a number
    expectNothingWorksOn(reinterpret_cast<Handle>(other));
    EXPECT_EQ(waitFor(open.get(), 0), WaitResult::Signalled);
}

struct KindCase {
    const char* name;
    Handle (*make)(const VexaWChar* name);
};

void PrintTo(const KindCase& row, std::ostream* out) {
    *out << row.name;
}

constexpr KindCase kKinds[] = {
    {"Event",
     [](const VexaWChar* name) { return createEvent(Reset::Automatic, true, name, nullptr); }},
    {"Mutex", [](const VexaWChar* name) { return createMutex(name, nullptr); }},
    {"Mapping", [](const VexaWChar* name) { return createMapping(kSize, name, nullptr); }},
};

class ObjectOfKind : public testing::TestWithParam<KindCase> {};
INSTANTIATE_TEST_SUITE_P(Table, ObjectOfKind, testing::ValuesIn(kKinds),
                         [](const auto& row) { return row.param.name; });

TEST_P(ObjectOfKind, FailsOnceItIsClosed) {
    const Handle handle = GetParam().make(newObjectName().c_str());
    ASSERT_NE(handle, nullptr);

    EXPECT_TRUE(closeHandle(handle));
    expectNothingWorksOn(handle);
}

TEST_P(ObjectOfKind, IsNotMadeWhereItsNameHasABackslash) {
    EXPECT_EQ(GetParam().make(wide("no such folder\\object").c_str()), nullptr);
    EXPECT_EQ(GetParam().make(wide("object\\").c_str()), nullptr);
}

TEST_P(ObjectOfKind, IsMadeWhateverElseItsNameHas) {
    const WideString own = newObjectName();
    const VexaWChar kLoneSurrogate = 0xD800;
    for (const WideString& name :
         {own + wide("/"), own + wide("/../x"), wide("%s%n") + own, own + wide("~\x01\x7F\xFF"),
          own + WideString(1, kLoneSurrogate), own + WideString(200, VexaWChar{0x20AC})}) {
        const OwnHandle handle{GetParam().make(name.c_str())};
        EXPECT_NE(handle, nullptr) << readable(name);
    }
}

// The library gives each kind names of its own; strangers may not.
TEST_P(ObjectOfKind, IsNotMadeWhereAnotherKindHasItsName) {
    for (const KindCase& other : kKinds) {
        if (other.name == std::string_view(GetParam().name)) continue;
        const WideString name = newObjectName();
        const OwnHandle first{other.make(name.c_str())};
        ASSERT_NE(first, nullptr);

        EXPECT_EQ(GetParam().make(name.c_str()), nullptr) << other.name;
    }
}

TEST_P(ObjectOfKind, StaysForOtherHandlesWhenOneIsClosed) {
    const WideString name = newObjectName();
    const Handle first = GetParam().make(name.c_str());
    const OwnHandle second{GetParam().make(name.c_str())};
    ASSERT_NE(second, nullptr);

    EXPECT_TRUE(closeHandle(first));

    EXPECT_EQ(waitFor(first, 0), WaitResult::Failed);
    const OwnHandle third{GetParam().make(name.c_str())};
    EXPECT_NE(third, nullptr);
    EXPECT_TRUE(closeHandle(GetParam().make(name.c_str())));
}

// ---- Names -------------------------------------------------------------------------------------

TEST(NamedEvent, IsTheSameForAllItsHandles) {
    const WideString name = newObjectName();
    const OwnHandle first{createEvent(Reset::Automatic, false, name.c_str(), nullptr)};
    const OwnHandle second{createEvent(Reset::Automatic, false, name.c_str(), nullptr)};

    EXPECT_TRUE(setEvent(first.get()));
    EXPECT_EQ(waitFor(second.get(), 0), WaitResult::Signalled);
    EXPECT_EQ(waitFor(first.get(), 0), WaitResult::TimedOut);
}

TEST(NamedEvent, IsAsItsMakerAskedFor) {
    const WideString name = newObjectName();
    const OwnHandle first{createEvent(Reset::Manual, true, name.c_str(), nullptr)};
    const OwnHandle second{createEvent(Reset::Automatic, false, name.c_str(), nullptr)};

    for (int i = 0; i < 2; ++i) EXPECT_EQ(waitFor(second.get(), 0), WaitResult::Signalled);
}

TEST(NamedEvent, StartsAnewAfterItsLastHandle) {
    const WideString name = newObjectName();
    EXPECT_TRUE(closeHandle(createEvent(Reset::Manual, true, name.c_str(), nullptr)));

    const OwnHandle next{createEvent(Reset::Automatic, false, name.c_str(), nullptr)};
    EXPECT_EQ(waitFor(next.get(), 0), WaitResult::TimedOut);
}

TEST(NamedEvent, OfAnotherNameIsAnother) {
    const WideString name = newObjectName();
    const OwnHandle lower{createEvent(Reset::Manual, true, (name + wide("a")).c_str(), nullptr)};
    const OwnHandle upper{createEvent(Reset::Manual, false, (name + wide("A")).c_str(), nullptr)};

    EXPECT_EQ(waitFor(lower.get(), 0), WaitResult::Signalled);
    EXPECT_EQ(waitFor(upper.get(), 0), WaitResult::TimedOut);
}

TEST(NamedMutex, OfAnotherNameIsAnother) {
    const WideString name = newObjectName();
    const OwnHandle one{createMutex((name + wide("1")).c_str(), nullptr)};
    const OwnHandle two{createMutex((name + wide("2")).c_str(), nullptr)};
    EXPECT_EQ(waitFor(one.get(), 0), WaitResult::Signalled);

    EXPECT_EQ(inAnotherThread([&] { return waitFor(two.get(), 0); }), WaitResult::Signalled);
    EXPECT_TRUE(releaseMutex(one.get()));
}

// ---- Shared memory -----------------------------------------------------------------------------

std::byte* bytesOf(Handle mapping) {
    return static_cast<std::byte*>(mapView(mapping));
}

TEST(Mapping, IsZerosAtFirst) {
    const OwnHandle mapping{createMapping(kSize, newObjectName().c_str(), nullptr)};
    const std::byte* const bytes = bytesOf(mapping.get());
    ASSERT_NE(bytes, nullptr);

    EXPECT_EQ(std::vector<std::byte>(bytes, bytes + kSize), std::vector<std::byte>(kSize));
}

TEST(Mapping, IsSharedByAllItsHandles) {
    const WideString name = newObjectName();
    const OwnHandle first{createMapping(kSize, name.c_str(), nullptr)};
    const OwnHandle second{createMapping(kSize, name.c_str(), nullptr)};
    std::byte* const here = bytesOf(first.get());
    std::byte* const there = bytesOf(second.get());
    ASSERT_TRUE(here && there);

    here[kSize - 1] = std::byte{0x5A};
    EXPECT_EQ(there[kSize - 1], std::byte{0x5A});
    EXPECT_TRUE(isMapped(first.get(), here));
    EXPECT_TRUE(isMapped(second.get(), there));
    EXPECT_FALSE(isMapped(first.get(), nullptr));
}

TEST(Mapping, StartsAnewAfterItsLastHandle) {
    const WideString name = newObjectName();
    OwnHandle mapping{createMapping(kSize, name.c_str(), nullptr)};
    std::byte* const view = bytesOf(mapping.get());
    ASSERT_NE(view, nullptr);
    view[0] = std::byte{1};
    unmapView(mapping.get(), view);
    mapping.reset();

    mapping.reset(createMapping(kSize, name.c_str(), nullptr));
    ASSERT_NE(mapping, nullptr);
    EXPECT_EQ(*bytesOf(mapping.get()), std::byte{0});
}

TEST(Mapping, IsNotMappedOnceItIsClosed) {
    const Handle mapping = createMapping(kSize, newObjectName().c_str(), nullptr);
    void* const view = mapView(mapping);
    EXPECT_TRUE(isMapped(mapping, view));

    unmapView(mapping, view);
    EXPECT_TRUE(closeHandle(mapping));
    EXPECT_FALSE(isMapped(mapping, view));
    unmapView(mapping, view);  // nothing to be given up
}

TEST(Mapping, CanBeMappedAgain) {
    const OwnHandle mapping{createMapping(kSize, newObjectName().c_str(), nullptr)};
    std::byte* const first = bytesOf(mapping.get());
    ASSERT_NE(first, nullptr);
    first[0] = std::byte{7};
    unmapView(mapping.get(), first);

    const std::byte* const again = bytesOf(mapping.get());
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again[0], std::byte{7});
}

TEST(Mapping, IsNoEventAndNoMutex) {
    const OwnHandle mapping{createMapping(kSize, newObjectName().c_str(), nullptr)};

    EXPECT_FALSE(setEvent(mapping.get()));
    EXPECT_FALSE(resetEvent(mapping.get()));
    EXPECT_FALSE(releaseMutex(mapping.get()));
    EXPECT_EQ(waitFor(mapping.get(), 0), WaitResult::Failed);
}

TEST(Mapping, IsNotMadeOfNothing) {
    const WideString name = newObjectName();

    EXPECT_EQ(createMapping(0, name.c_str(), nullptr), nullptr);
    const OwnHandle next{createMapping(kSize, name.c_str(), nullptr)};
    EXPECT_NE(next, nullptr);  // it left nothing behind
}

// ---- Security ----------------------------------------------------------------------------------

TEST(OpenSecurity, MakesObjectsOfEveryKind) {
    SECURITY_ATTRIBUTES* const sa = platform::makeOpenSecurity();
    ASSERT_NE(sa, nullptr);

    EXPECT_NE(OwnHandle{createEvent(Reset::Manual, true, newObjectName().c_str(), sa)}, nullptr);
    EXPECT_NE(OwnHandle{createMutex(newObjectName().c_str(), sa)}, nullptr);
    EXPECT_NE(OwnHandle{createMapping(kSize, newObjectName().c_str(), sa)}, nullptr);
    platform::freeSecurity(sa);
    platform::freeSecurity(nullptr);
}

}  // namespace

}  // namespace vexa::test
