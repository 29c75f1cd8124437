#include "wkt/geometry_builder.h"

#include <algorithm>
#include <cstring>

namespace vexa {

namespace {

constexpr std::size_t kFirstReservation = 256;

constexpr std::size_t kSizeWord = offsetof(GeometryBuffer, size);
constexpr std::size_t kCountWord = sizeof(GeometryBuffer);

bool isListOfParts(VexaGeometryType type) {
    return type == VEXA_POLYGON || type == VEXA_MULTILINESTRING || type == VEXA_MULTIPOLYGON;
}

}  // namespace

bool GeometryBuilder::beginCollection() {
    inCollection_ = true;
    return appendWords(1, 1) && appendWords(VEXA_GEOMETRYCOLLECTION, 0) && appendWords(0, 0);
}

void GeometryBuilder::endCollection() {
    setWord(kCountWord, memberCount_);
}

bool GeometryBuilder::beginGeometry(VexaGeometryType type) {
    geometryStart_ = used_;
    type_ = type;
    partCount_ = 0;
    vertexCount_ = 0;
    const bool hasCount = isListOfParts(type) || type == VEXA_MULTIPOINT;
    return appendWords(1, 1) && appendWords(type, 0) && (!hasCount || appendWords(0, 0));
}

void GeometryBuilder::endGeometry() {
    if (isListOfParts(type_)) setWord(geometryStart_ + kCountWord, partCount_);
    if (type_ == VEXA_MULTIPOINT) setWord(geometryStart_ + kCountWord, vertexCount_);

    const std::uint32_t size = sizeWord();
    setWord(geometryStart_ + kSizeWord, size);
    if (!inCollection_) return;

    // A collection takes as many bytes of a member as its size word tells.
    if (size != 0) used_ = geometryStart_ + size;
    ++memberCount_;
}

// The appends to polygons and multilinestrings leave the word as the constructor wrote it for the
// first part; that to multipolygons, which are made without a size, computes it.
std::uint32_t GeometryBuilder::sizeWord() const {
    if (type_ == VEXA_MULTIPOLYGON && partCount_ == 1) return 0;

    const bool isStale = type_ == VEXA_POLYGON || type_ == VEXA_MULTILINESTRING;
    return static_cast<std::uint32_t>((isStale ? firstPartEnd_ : used_) - geometryStart_);
}

bool GeometryBuilder::beginPart() {
    if (type_ == VEXA_MULTIPOLYGON && !appendWords(1, 0)) return false;
    if (!appendWords(1, 0)) return false;

    runStart_ = used_;
    vertexCount_ = 0;
    return appendWords(0, 0);
}

void GeometryBuilder::endPart() {
    setWord(runStart_ + offsetof(PointRun, pointCount), vertexCount_);
    if (++partCount_ == 1) firstPartEnd_ = used_;
}

bool GeometryBuilder::addVertex(const Point3d& vertex) {
    if (!reserve(sizeof vertex)) return false;

    std::memcpy(bytes_.get() + used_, &vertex, sizeof vertex);
    used_ += sizeof vertex;
    ++vertexCount_;
    return true;
}

void GeometryBuilder::addVerticesUpTo(const Point3d* end) {
    const auto count = static_cast<std::uint32_t>(end - vertexRoom());
    used_ += count * sizeof(Point3d);
    vertexCount_ += count;
}

Block GeometryBuilder::take() {
    auto* const block = reinterpret_cast<GeometryBuffer*>(bytes_.release());
    auto* const cut = static_cast<GeometryBuffer*>(std::realloc(block, used_));
    return Block{cut ? cut : block};
}

bool GeometryBuilder::reserve(std::size_t bytes) {
    const std::size_t needed = used_ + bytes;
    if (needed <= capacity_) return true;
    if (needed > UINT32_MAX) return false;

    const std::size_t capacity = std::max({kFirstReservation, 2 * capacity_, needed});
    auto* const grown = static_cast<std::byte*>(std::realloc(bytes_.get(), capacity));
    if (!grown) return false;

    static_cast<void>(bytes_.release());
    bytes_.reset(grown);
    capacity_ = capacity;
    return true;
}

bool GeometryBuilder::appendWords(std::uint32_t first, std::uint32_t second) {
    const std::uint32_t words[] = {first, second};
    if (!reserve(sizeof words)) return false;

    std::memcpy(bytes_.get() + used_, words, sizeof words);
    used_ += sizeof words;
    return true;
}

void GeometryBuilder::setWord(std::size_t offset, std::uint32_t value) {
    std::memcpy(bytes_.get() + offset, &value, sizeof value);
}

}  // namespace vexa
