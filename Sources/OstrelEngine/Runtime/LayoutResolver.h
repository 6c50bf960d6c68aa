#pragma once

#include "OstrelCore/Text/CaseInsensitiveDictionary.h"
#include "OstrelEngine/Geometry.h"
#include "OstrelEngine/Meters/MeterProtocol.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class MeterBindings;
class MeterTable;
class RuntimeExpressions;
struct MonstercatBarLayout;

/// Gives every meter its frame and the widget its size, in one pass in file order, and knows when a new pass is due.
class LayoutResolver {
public:
    enum class WindowSize { Fixed, Dynamic };

    /// All must outlive this. A dynamic window may be narrower.
    LayoutResolver(const MeterTable& meters, MeterBindings& bindings, const RuntimeExpressions& expressions,
        const Options& variables, WindowSize windowSize);

    void resolveLayout();
    /// Of the last pass; 0 by 0 before the first.
    Size widgetSize() const { return widgetSize_; }

    void markLayoutDirty() { needsResolution_ = true; }
    /// An option that moves or sizes meters has another text.
    void layoutOptionsDidChange() {
        textsWithVariables_.reset();
        markLayoutDirty();
    }
    bool needsResolution() const { return needsResolution_; }
    /// Whether an image has been loaded since it was laid out without a size.
    bool hasImageWaitingForItsSize() const;

    /// Whether a change of this option moves or sizes meters.
    static bool shouldMeterOptionTriggerLayout(std::string_view key);
    /// Whether a change of this variable does: one that places fallback bars, or one that such an option names.
    bool shouldVariableTriggerLayout(std::string_view name) const;

private:
    /// Where relative positions are counted from.
    struct Previous {
        double x = 0;
        double y = 0;
        double right = 0;
        double bottom = 0;
    };

    MeterFrame frame(MeterRenderer& meter, MeasureValues values, const Previous& previous) const;
    double left(const MeterRenderer& meter, const Previous& previous) const;
    double top(const MeterRenderer& meter, const Previous& previous) const;
    Size writtenSize(const MeterRenderer& meter) const;
    void setFallbackFrame(MeterRenderer& meter, const MeterFrame& frame) const;
    std::vector<std::string> findTextsWithVariables() const;
    void fitWidget(double minX, double minY, double maxX, double maxY);

    const MeterTable& meters_;
    MeterBindings& bindings_;
    const RuntimeExpressions& expressions_;
    const Options& variables_;
    double minimumWidth_;
    Size widgetSize_;
    bool needsResolution_ = true;
    /// What the options that move or size meters say, upper-cased, where a variable may stand in it. Found when first
    /// asked for: a skin that sets a variable on every tick must not read all its options each time.
    mutable std::optional<std::vector<std::string>> textsWithVariables_;
};

} // namespace Ostrel
