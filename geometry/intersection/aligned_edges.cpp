#include "geometry/intersection/aligned_edges.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace vexa {

namespace {

using Key = LineCells::Key;

/// A set of keys that may hold some more.
class KeyFilter {
public:
    KeyFilter(std::size_t keys, std::pmr::memory_resource* memory)
        : shift_(64 - static_cast<int>(std::bit_width(keys * kBitsPerKey | kLeastBits))),
          words_((~Key{0} >> shift_) / 64 + 1, memory) {}

    void add(Key key) { words_[place(key) / 64] |= Key{1} << place(key) % 64; }
    bool mayHold(Key key) const { return (words_[place(key) / 64] >> place(key) % 64 & 1) != 0; }

private:
    static constexpr std::size_t kBitsPerKey = 16;
    static constexpr std::size_t kLeastBits = 64;

    // Multiplicative hashing: the odd number next to 2^64 over the golden ratio spreads keys evenly.
    std::size_t place(Key key) const { return key * 0x9E3779B97F4A7C15 >> shift_; }

    int shift_;
    std::pmr::vector<Key> words_;
};

/// Visits the edges of a polyline with what is known of their lines: a block, and a place in it.
template <class Visit>
void forEachLine(Points polyline, const LineCells& cells, const Visit& visit) {
    LineCells::Block block;  // not worth clearing
    for (std::size_t first = 0; first + 1 < polyline.size(); first += block.kMostEdges) {
        const std::size_t edges = std::min(block.kMostEdges, polyline.size() - 1 - first);
        cells.fill(block, &polyline[first], edges);
        for (std::size_t i = 0; i < edges; ++i) {
            if (block.own[i] != LineCells::kNone) visit(&polyline[first + i], block, i);
        }
    }
}

}  // namespace

AlignedEdges::AlignedEdges(Points first, Points second, double largest,
                           std::pmr::memory_resource* memory)
    : cells_(largest), edges_(memory), others_(memory) {
    findOthersAlong(first, second);
    if (!others_.empty()) findEdgesUnderOthers(first);
}

/// Those edges of the second polyline that lie along some edge of the first, and some more.
void AlignedEdges::findOthersAlong(Points first, Points second) {
    KeyFilter keys{first.size(), others_.get_allocator().resource()};
    forEachLine(first, cells_, [&](const Point3d*, const LineCells::Block& block, std::size_t i) {
        keys.add(block.own[i]);
    });
    const auto isHeld = [&](Key key) { return keys.mayHold(key); };
    forEachLine(second, cells_,
                [&](const Point3d* start, const LineCells::Block& block, std::size_t i) {
                    const bool isOneCell = block.first[i] == block.last[i];
                    if (isOneCell ? isHeld(block.first[i]) : cells_.anyNear(start, isHeld)) {
                        others_.push_back(start);
                    }
                });
}

/// Those edges along which some of the others lie, and some more.
void AlignedEdges::findEdgesUnderOthers(Points edges) {
    KeyFilter keys{others_.size(), others_.get_allocator().resource()};
    const auto note = [&](Key key) {
        keys.add(key);
        return false;
    };
    for (const Point3d* other : others_) cells_.anyNear(other, note);
    forEachLine(edges, cells_,
                [&](const Point3d* start, const LineCells::Block& block, std::size_t i) {
                    if (keys.mayHold(block.own[i])) edges_.push_back({block.own[i], start});
                });
    std::sort(edges_.begin(), edges_.end());
}

}  // namespace vexa
