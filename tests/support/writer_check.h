#pragma once

#include "tests/support/geometry_bytes.h"
#include "tests/support/wide_text.h"
#include "tests/support/writer_model.h"
#include "vexakit/wkt.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace vexa::test {

/// The writers' precision while this object lives.
class PrecisionScope {
public:
    explicit PrecisionScope(std::int32_t precision)
        : before_(static_cast<std::int32_t>(vexaWKT_setPrecision(precision))) {}
    PrecisionScope(const PrecisionScope&) = delete;
    PrecisionScope& operator=(const PrecisionScope&) = delete;
    ~PrecisionScope() { vexaWKT_setPrecision(before_); }

private:
    std::int32_t before_;
};

/// A writer of the library and its model, as functions of the address of what they write.
struct WriterPair {
    using Write = std::function<std::int64_t(const std::byte*, VexaWChar*, std::int64_t)>;

    template <class Structure>
    WriterPair(std::int64_t (*library)(const Structure*, VexaWChar*, std::int64_t),
               WriterModel::Writer plain)
        : write([library](const std::byte* source, VexaWChar* out, std::int64_t capacity) {
              return library(reinterpret_cast<const Structure*>(source), out, capacity);
          }),
          model(plain) {}

    /// The writer of a type code, 7 included.
    static WriterPair ofType(std::uint32_t type) {
        switch (type) {
            case VEXA_POINT: return {vexaWKT_point, &WriterModel::point};
            case VEXA_LINESTRING: return {vexaWKT_linestring, &WriterModel::linestring};
            case VEXA_POLYGON: return {vexaWKT_polygon, &WriterModel::polygon};
            case VEXA_MULTIPOINT: return {vexaWKT_multipoint, &WriterModel::multipoint};
            case VEXA_MULTILINESTRING:
                return {vexaWKT_multilinestring, &WriterModel::multilinestring};
            case VEXA_MULTIPOLYGON: return {vexaWKT_multipolygon, &WriterModel::multipolygon};
            default: return {vexaWKT_geometryCollection, &WriterModel::geometryCollection};
        }
    }
    static WriterPair of(const Bytes& buffer) { return ofType(buffer.geometry()->type); }

    Write write;
    WriterModel::Writer model;
};

/// Runs both on an array of so many cells, with a capacity of its own, and compares the results and
/// every cell.
inline testing::AssertionResult agree(const WriterPair& pair, const std::byte* source,
                                      std::int64_t capacity, std::size_t cells) {
    WriterModel model(static_cast<int>(vexaWKT_getPrecision()));
    const std::int64_t wanted = (model.*pair.model)(source, 0, capacity);
    GuardedText text(cells);
    const std::int64_t result = pair.write(source, text.data(), capacity);

    if (result != wanted) {
        return testing::AssertionFailure()
               << "capacity " << capacity << " gives " << result << ", not " << wanted
               << "; written \"" << readable(text.text()) << "\"";
    }
    const testing::AssertionResult cellsAgree = model.holdsIn(text);
    if (!cellsAgree) {
        return testing::AssertionFailure()
               << "capacity " << capacity << ": " << cellsAgree.message();
    }
    return testing::AssertionSuccess();
}

/// The same on an array that holds the capacity and one more cell, the one for a last terminator.
inline testing::AssertionResult agree(const WriterPair& pair, const std::byte* source,
                                      std::int64_t capacity) {
    const std::int64_t cells = std::max<std::int64_t>(capacity, 0) + 1;
    return agree(pair, source, capacity, static_cast<std::size_t>(cells));
}

/// What a writer of the library gives: the result, and the array with one cell beyond the capacity.
struct Written {
    std::int64_t result;
    GuardedText text;
};

template <class Structure>
Written writtenBy(std::int64_t (*write)(const Structure*, VexaWChar*, std::int64_t),
                  const Structure* source, std::int64_t capacity) {
    GuardedText text(static_cast<std::size_t>(std::max<std::int64_t>(capacity, 0)) + 1);
    const std::int64_t result = write(source, text.data(), capacity);
    return {result, std::move(text)};
}

}  // namespace vexa::test
