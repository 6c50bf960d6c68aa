#pragma once

#include "OstrelEngine/Runtime/SkinHost.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

/// Writes down what a skin asks of its host, one word or two for each request; a test may look closer at some.
class FakeSkinHost : public SkinHost {
public:
    void skinDidPublish(const std::vector<Drawable>& drawables) override {
        if (onPublish)
            onPublish(drawables);
        else
            log.emplace_back("publish");
    }
    void deactivate() override { log.emplace_back("deactivate"); }
    void deactivateConfig(const std::string& path) override { log.push_back("deactivate " + path); }
    void activateConfig(const std::string& path, bool toggle) override {
        log.push_back((toggle ? "toggle " : "activate ") + path);
    }
    void refresh() override { log.emplace_back("refresh"); }
    void refreshApp() override { log.emplace_back("refreshApp"); }
    void promptInput(const std::optional<InputTextPresentation>& presentation) override {
        log.push_back(presentation ? "input " + presentation->measureName : "dismiss");
        if (onPrompt)
            onPrompt();
    }
    void stateDidChange(const WidgetRuntimeState& state) override {
        if (onStateChange)
            onStateChange(state);
    }

    std::vector<std::string> log;
    std::function<void(const std::vector<Drawable>&)> onPublish;
    std::function<void()> onPrompt;
    std::function<void(const WidgetRuntimeState&)> onStateChange;
};

} // namespace Ostrel
