#pragma once

#include "OstrelDialect/Formula.h"
#include "OstrelEngine/Measures/Full/LuaEngine.h"
#include "OstrelEngine/Measures/Full/ScriptHost.h"
#include "Support/FakeFullHost.h"
#include "Support/TemporaryFolder.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace Ostrel {

/// A skin with a folder of its own, as scripts see it. It has one meter, "Label", and tells all that it is asked.
class ScriptedSkin : public FakeFullHost, public ScriptHost {
public:
    TemporaryFolder folder;
    LuaEngine engine;
    std::map<std::string, std::string, std::less<>> variables;
    /// Of the running calls into scripts.
    int depth = 0;

    ScriptedSkin() {
        packFolders.skins = folder.path() + "/Skins/";
        packFolders.root = packFolders.skins + "Pack/";
        packFolders.skinFolder = packFolders.root;
        packFolders.skinFile = packFolders.root + "Skin.ini";
        packFolders.settings = folder.path() + "/Settings/";
        folder.write("Skins/Pack/Skin.ini", "");
        ports.scripts = &engine;
    }
    const Platform& platform() const override { return ports; }
    /// The clock is the queue's: time passes only when a test lets it.
    Platform ports{fake.queue, fake.queue, fake.host, fake.fonts, fake.network};

    /// Lets other threads deliver until the condition holds; false when it never does.
    template <typename Condition> bool waitFor(const Condition& condition) {
        constexpr int Tries = 4000;
        for (int i = 0; i < Tries; ++i) {
            fake.queue.runQueued();
            if (condition())
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
        return false;
    }

    /// A script measure whose file has this text, loaded and initialized.
    BaseMeasure& script(std::string_view code, std::string name = "S", Pairs options = {}) {
        const auto file = name + ".lua";
        folder.write("Skins/Pack/" + file, code);
        auto& measure = add(name, "Script", options);
        measure.setOption("ScriptFile", file);
        measure.script()->initialize();
        return measure;
    }
    /// What an expression gives, as an inline call shows it.
    std::string lua(std::string_view expression) {
        auto& measure = script("function F() return " + std::string(expression) + " end");
        return measure.script()->callFunction("F", {});
    }
    std::string lastLine() const { return lines.empty() ? "" : lines.back(); }
    bool hasLine(std::string_view part) const {
        return std::ranges::any_of(lines, [&](const auto& line) { return line.find(part) != std::string::npos; });
    }

    ScriptHost& scriptHost() override { return *this; }
    std::string resolved(const BaseMeasure&, std::string_view raw) const override {
        return "<" + std::string(raw) + ">";
    }

    void scriptWillRun() override { ++depth; }
    void scriptDidRun() override { --depth; }
    void bang(const BaseMeasure&, std::string_view name, const std::vector<std::string>& arguments) override {
        std::string line = "bang " + std::string(name);
        for (const auto& argument : arguments)
            line += "|" + argument;
        lines.push_back(line);
    }
    void action(const BaseMeasure&, std::string_view text) override { lines.push_back("action " + std::string(text)); }
    std::optional<std::string_view> variable(std::string_view name) override {
        const auto found = variables.find(name);
        return found == variables.end() ? std::nullopt : std::optional<std::string_view>(found->second);
    }
    std::optional<double> formula(std::string_view text) override {
        const auto compiled = Formula::compile(text);
        return compiled ? compiled->evaluate() : std::nullopt;
    }
    std::optional<std::string> option(const BaseMeasure& measure, std::string_view name, bool withSections) override {
        const auto* found = measure.options().find(name);
        return found ? std::optional(*found + (withSections ? "" : "-")) : std::nullopt;
    }
    std::optional<std::string> option(std::size_t, std::string_view name, bool) override {
        return name == "Text" ? std::optional<std::string>("shown") : std::nullopt;
    }
    std::optional<std::size_t> meter(std::string_view name) const override {
        return name == "Label" ? std::optional<std::size_t>(0) : std::nullopt;
    }
    const std::string& meterName(std::size_t) const override { return meterName_; }
    Rect meterOptionFrame(std::size_t) const override { return {1, 2, 30, 40}; }
    Rect meterFrame(std::size_t) const override { return {11, 12, 30, 40}; }
    void setMeterSide(std::size_t, Side side, double value) override {
        lines.push_back("side " + std::to_string(static_cast<int>(side)) + " " + std::to_string(value));
    }
    Rect windowFrame() const override { return {100, 200, 300, 400}; }
    void moveWindow(double x, double y) override {
        lines.push_back("move " + std::to_string(x) + " " + std::to_string(y));
    }
    void fadeWindow(double from, double to) override {
        lines.push_back("fade " + std::to_string(from) + " " + std::to_string(to));
    }

private:
    std::string meterName_ = "Label";
};

} // namespace Ostrel
