#pragma once

#include "bench/contest.h"

#include <functional>
#include <utility>
#include <vector>

namespace vexa::bench {

/// A work, and how its data are made and its contenders entered once its turn has come.
struct Entry {
    Work work;
    std::function<void(Contest&)> enter;
};

class Works {
public:
    void add(Work work, std::function<void(Contest&)> enter) {
        entries_.push_back({std::move(work), std::move(enter)});
    }
    const std::vector<Entry>& entries() const { return entries_; }

private:
    std::vector<Entry> entries_;
};

// Each adds the works of one file. Smaller sizes stand before larger ones.
void addParsing(Works& works);
void addWriting(Works& works);
void addBuffers(Works& works);
void addRanges(Works& works);
void addTransforms(Works& works);
void addPlanarIntersections(Works& works);
void addMultiIntersections(Works& works);
void addSpaceIntersections(Works& works);
void addEncodings(Works& works);
void addStrings(Works& works);
void addLocks(Works& works);

}  // namespace vexa::bench
