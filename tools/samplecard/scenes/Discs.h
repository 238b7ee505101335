#pragma once

#include "samplecard/Colour.h"

#include <vector>

namespace kelvara::samplecard {

/// Points of light out of focus. Asked row by row, so that only a few discs are looked at for each pixel.
class Discs {
public:
    struct Disc {
        float x = 0;
        float y = 0;
        float radius = 0;
        Colour light;
    };

    void add(const Disc& disc) { m_discs.push_back(disc); }
    void beginRow(float y) {
        m_row.clear();
        for (const Disc& disc : m_discs)
            if (std::fabs(disc.y - y) < disc.radius) m_row.push_back(&disc);
        m_y = y;
    }
    /// The light of all discs there together. A lens draws their rims a little brighter.
    [[nodiscard]] Colour at(float x) const {
        Colour sum;
        for (const Disc* disc : m_row) {
            const float square =
                squared((x - disc->x) / disc->radius) + squared((m_y - disc->y) / disc->radius);
            if (square >= 1) continue;
            sum += disc->light * (smoothStep(1, 0.9F, square) * (0.72F + 0.28F * square));
        }
        return sum;
    }

private:
    std::vector<Disc> m_discs;
    std::vector<const Disc*> m_row;
    float m_y = 0;
};

} // namespace kelvara::samplecard
