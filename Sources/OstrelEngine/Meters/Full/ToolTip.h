#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelEngine/Meters/MeterProtocol.h"

#include <string>

namespace Ostrel {

struct NumberFormat;

/// A note about a meter. Without a text there is none.
struct ToolTip {
    /// Lines broken by "\n".
    std::string text;
    /// One line; empty for none.
    std::string title;
    /// Beside a title: Info, Warning, Error, Question, Shield, or the name of a file; empty for none.
    std::string icon;
    bool isBalloon = false;
    /// Pixels at which the text wraps.
    double width = 1000;

    /// As written, with "%1" and its like; without a text when it is hidden.
    static ToolTip parse(const Options& options);
    bool hasPlaces() const { return text.find('%') != std::string::npos || title.find('%') != std::string::npos; }
    /// With values in their places.
    ToolTip filled(MeasureValues values, const NumberFormat& numbers) const;

    bool isEmpty() const { return text.empty(); }
    friend bool operator==(const ToolTip&, const ToolTip&) = default;
};

} // namespace Ostrel
