#pragma once

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelCore/Text/Numbers.h"
#include "OstrelEngine/Runtime/SkinRuntime.h"
#include "Support/FakePlatform.h"
#include "Support/FakeSkinHost.h"

#include <memory>
#include <string>
#include <vector>

namespace Ostrel {

/// A skin made of text, on a platform where nothing happens but what the test says. Nothing has ticked at first.
class RunningSkin {
public:
    explicit RunningSkin(std::string text, const std::string& path = "/skins/test/skin.ini") {
        InMemoryFileProvider files;
        files.addFile(path, std::move(text));
        DiagnosticCollector diagnostics;
        runtime = SkinRuntime::create(SkinLoader(files, diagnostics).load(path).value(),
            Platform{time, time, fakes.host, fakes.fonts, fakes.network}, host);
        host.onPublish = [this](const std::vector<Drawable>& drawables) {
            ++published;
            shown.clear();
            for (const auto& drawable : drawables)
                shown.push_back(drawable.meter->name());
        };
    }

    /// As the timer does, one update interval later.
    void tick(int count = 1) {
        for (int i = 0; i < count; ++i) {
            time.advance(runtime->updateIntervalSeconds());
            time.fireTimers();
        }
    }

    double number(std::string_view measure) const { return runtime->measure(measure)->value().numericValue; }

    /// "Name x y w h" of each meter.
    std::vector<std::string> frames() const {
        std::vector<std::string> lines;
        for (const auto& meter : runtime->meters()) {
            const auto& frame = meter->frame();
            std::string line = meter->name();
            for (const double value : {frame.x, frame.y, frame.w, frame.h})
                line += " " + formatNumeric(value);
            lines.push_back(line);
        }
        return lines;
    }

    FakePlatform fakes;
    VirtualTime& time = fakes.queue;
    FakeSkinHost host;
    std::shared_ptr<SkinRuntime> runtime;
    /// Publications so far, and the meters of the last one.
    int published = 0;
    std::vector<std::string> shown;
};

} // namespace Ostrel
