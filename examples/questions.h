#pragma once

#include "vexakit/vexakit.h"
#include "world.h"

#include <cstddef>
#include <cstdint>
#include <vector>

/// What is asked about the world: every yes-or-no question, each answered by the library.
namespace world {

// ---- Who is asked about -------------------------------------------------------------------------

struct Scene {
    std::vector<Geometry> countries;  // polygons and multipolygons
    std::vector<Geometry> cities;     // points
    std::vector<Geometry> flights;    // linestrings
};

Geometry pointGeometry(double longitude, double latitude);

/// Copies of everything, moved by the transform.
Scene moved(const Scene& scene, const Transform& transform);

// ---- The answers --------------------------------------------------------------------------------

/// A table of yes and no: a row for each asker, a column for each country.
class Answers {
public:
    template <class Ask>
    Answers(std::size_t rows, std::size_t columns, Ask ask) : columns_(columns) {
        yes_.reserve(rows * columns);
        for (std::size_t row = 0; row < rows; ++row) {
            for (std::size_t column = 0; column < columns; ++column) {
                yes_.push_back(ask(row, column));
            }
        }
    }

    bool operator()(std::size_t row, std::size_t column) const {
        return yes_[row * columns_ + column];
    }

    std::size_t size() const { return yes_.size(); }
    std::size_t yesCount() const;
    std::vector<std::size_t> columnsOfRow(std::size_t row) const;
    bool anyInColumn(std::size_t column) const;
    std::size_t differencesFrom(const Answers& other) const;
    /// Of a table of countries by countries: pairs that are answered otherwise in reverse order.
    std::size_t asymmetries() const;

private:
    std::size_t columns_;
    std::vector<bool> yes_;
};

struct AllAnswers {
    Answers cityInCountry;
    Answers flightOverCountry;
    Answers rangesOverlap;  // country by country
    Answers outlinesMeet;   // country by country

    std::size_t size() const;
    std::size_t differencesFrom(const AllAnswers& other) const;
};

AllAnswers askAll(const Scene& scene);

}  // namespace world
