#pragma once

#include "OstrelGUI/WidgetLibrary.h"
#include "OstrelPlatform/UserDefaults.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

/// Items that a test sets; writes down what it is asked for.
class FakeWidgetLibrary final : public WidgetLibrary {
public:
    std::vector<WidgetLibraryItem> items;
    std::vector<std::string> asked;
    /// What a deletion answers.
    std::optional<std::string> failure;

    const std::vector<WidgetLibraryItem>& libraryItems() const override { return items; }
    void registerDiscovered(std::span<const std::string> paths) override {
        for (const auto& path : paths)
            asked.push_back("register " + path);
    }
    void renderWidget(const std::string& path) override { asked.push_back("render " + path); }
    void launchWidget(const std::string& path) override { asked.push_back("launch " + path); }
    void unrenderWidget(const std::string& path) override { asked.push_back("unrender " + path); }
    void deletePackage(
        std::span<const std::string> rootPaths, std::function<void(std::optional<std::string>)> done) override {
        for (const auto& path : rootPaths)
            asked.push_back("delete " + path);
        done(failure);
    }

    void notify() {
        if (onLibraryItemsChange)
            onLibraryItemsChange();
    }
};

/// Settings that live no longer than the test.
class FakeUserDefaults final : public UserDefaults {
public:
    std::map<std::string, std::string, std::less<>> texts;
    std::map<std::string, bool, std::less<>> switches;

    std::optional<std::string> data(std::string_view key) const override { return string(key); }
    bool setData(std::string_view, std::string_view) override { return false; }
    void setDataAside(std::string_view) override { }
    std::optional<std::string> string(std::string_view key) const override {
        const auto found = texts.find(key);
        return found == texts.end() ? std::nullopt : std::optional(found->second);
    }
    void setString(std::string_view key, std::string_view value) override { texts[std::string(key)] = value; }
    std::optional<bool> boolean(std::string_view key) const override {
        const auto found = switches.find(key);
        return found == switches.end() ? std::nullopt : std::optional(found->second);
    }
    void setBoolean(std::string_view key, bool value) override { switches[std::string(key)] = value; }
    std::optional<std::string> folder() const override { return std::nullopt; }
};

} // namespace Ostrel
