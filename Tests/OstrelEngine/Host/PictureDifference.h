#pragma once

#include <QImage>

#include <string>

namespace Ostrel {

/// Which pixels differ; empty when none does.
inline std::string pictureDifference(const QImage& actual, const QImage& expected) {
    if (actual.size() != expected.size())
        return "sizes differ";
    int count = 0;
    std::string first;
    for (int y = 0; y < expected.height(); ++y)
        for (int x = 0; x < expected.width(); ++x)
            if (actual.pixel(x, y) != expected.pixel(x, y) && ++count == 1)
                first = "at " + std::to_string(x) + "," + std::to_string(y) + " " + std::to_string(actual.pixel(x, y))
                    + " for " + std::to_string(expected.pixel(x, y));
    return count ? std::to_string(count) + " pixels differ, first " + first : "";
}

} // namespace Ostrel
