#include "Support/GoldenImage.h"

#include <QColor>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace Ostrel {

namespace {

std::string environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

int largestDifference(QRgb a, QRgb b) {
    return std::max({std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)), std::abs(qBlue(a) - qBlue(b)),
        std::abs(qAlpha(a) - qAlpha(b))});
}

std::string differenceOf(const QImage& actual, const QImage& golden, int tolerance) {
    if (golden.isNull())
        return "there is no such picture";
    if (actual.size() != golden.size())
        return "the size is " + std::to_string(actual.width()) + "x" + std::to_string(actual.height()) + ", not "
            + std::to_string(golden.width()) + "x" + std::to_string(golden.height());
    for (int y = 0; y < actual.height(); ++y)
        for (int x = 0; x < actual.width(); ++x)
            if (largestDifference(actual.pixel(x, y), golden.pixel(x, y)) > tolerance)
                return "at " + std::to_string(x) + "," + std::to_string(y) + " it is "
                    + QColor::fromRgba(actual.pixel(x, y)).name(QColor::HexArgb).toStdString() + ", not "
                    + QColor::fromRgba(golden.pixel(x, y)).name(QColor::HexArgb).toStdString();
    return {};
}

} // namespace

testing::AssertionResult matchesGolden(const QImage& actual, const std::string& path, int tolerance) {
    const auto committed = environment("OSTREL_SOURCE") + "/Tests/" + path;
    // Colors under no opacity say nothing; a PNG keeps them, a premultiplied picture does not.
    const QImage straight = actual.convertToFormat(QImage::Format_ARGB32);
    if (!environment("OSTREL_RENEW_GOLDENS").empty()) {
        straight.save(QString::fromStdString(committed));
        return testing::AssertionSuccess();
    }
    const QImage golden = QImage(QString::fromStdString(committed)).convertToFormat(QImage::Format_ARGB32);
    const auto difference = differenceOf(straight, golden, tolerance);
    if (difference.empty())
        return testing::AssertionSuccess();
    const auto kept = std::filesystem::path(environment("OSTREL_BUILD")) / "golden-failures" / path;
    std::filesystem::create_directories(kept.parent_path());
    straight.save(QString::fromStdString(kept.string()));
    return testing::AssertionFailure() << path << ": " << difference << "; the actual picture is " << kept.string();
}

} // namespace Ostrel
