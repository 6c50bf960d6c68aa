#pragma once

#include "OstrelEngine/Meters/MeterFactory.h"
#include "Support/FakePlatform.h"

#include <QImage>
#include <QPainter>

#include <cmath>
#include <initializer_list>
#include <memory>
#include <ostream>
#include <string>
#include <utility>

namespace Ostrel {

using OptionPairs = std::initializer_list<std::pair<const char*, const char*>>;

inline Options optionsOf(const OptionPairs& pairs) {
    Options options;
    for (const auto& [key, value] : pairs)
        options.set(key, value);
    return options;
}

inline MeterDefinition meterOfType(const char* type) {
    MeterDefinition definition;
    definition.sectionName = "Meter";
    definition.meterType = type;
    return definition;
}

// For the messages of failed tests.
inline void PrintTo(const Size& size, std::ostream* out) {
    *out << size.width << 'x' << size.height;
}

inline void PrintTo(const Rect& rect, std::ostream* out) {
    *out << rect.x << ',' << rect.y << ' ' << rect.width << 'x' << rect.height;
}

inline MeasureValue numberValue(double value) {
    return {value, "", false, 0, 100};
}

inline MeasureValue textValue(std::string value) {
    return {0, std::move(value), true, 0, 100};
}

/// For a widget of that many points.
inline QImage transparentCanvas(double width, double height, double scale) {
    QImage canvas(static_cast<int>(std::ceil(width * scale)), static_cast<int>(std::ceil(height * scale)),
        QImage::Format_ARGB32_Premultiplied);
    canvas.fill(Qt::transparent);
    return canvas;
}

inline QImage drawn(MeterRenderer& meter, MeasureValues values, double width, double height, double scale = 1) {
    QImage canvas = transparentCanvas(width, height, scale);
    QPainter painter(&canvas);
    painter.scale(scale, scale);
    meter.draw(painter, values);
    return canvas;
}

/// Of the pixels that are not transparent; an empty rectangle without any.
inline QRect inkOf(const QImage& image) {
    QRect ink;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qAlpha(image.pixel(x, y)) != 0)
                ink |= QRect(x, y, 1, 1);
    return ink;
}

} // namespace Ostrel
