#include "OstrelCLI/TraceCommand.h"

#include "OstrelCLI/DialectOptions.h"
#include "OstrelCLI/HeadlessSkin.h"
#include "OstrelCLI/Instant.h"
#include "OstrelCLI/Scenario.h"
#include "OstrelCLI/SkinStateJSON.h"
#include "OstrelCLI/TextInput.h"

#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Ostrel::TraceCommand {

namespace {

struct Request {
    DialectOptions dialect;
    std::string skin;
    std::optional<std::string> scenario;
    std::optional<double> wallSeconds;
};

std::optional<Request> parse(Arguments allArguments) {
    auto dialect = DialectOptions::parse(allArguments);
    if (!dialect)
        return std::nullopt;
    Request request;
    request.dialect = std::move(*dialect);
    const Arguments arguments = request.dialect.rest;
    std::vector<std::string> paths;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (arguments[i] == "--now") {
            request.wallSeconds = i + 1 < arguments.size() ? parseInstant(arguments[++i]) : std::nullopt;
            if (!request.wallSeconds)
                return std::nullopt;
        } else if (arguments[i].starts_with("--")) {
            return std::nullopt;
        } else {
            paths.emplace_back(arguments[i]);
        }
    }
    if (paths.empty() || paths.size() > 2)
        return std::nullopt;
    request.skin = paths[0];
    if (paths.size() == 2)
        request.scenario = paths[1];
    return request;
}

/// Prints the state of a skin after each step, with what it asked of its host since the step before.
class Trace final : private HeadlessWatcher {
public:
    explicit Trace(HeadlessSkin& skin)
        : skin_(skin) {
        skin.setWatcher(this);
        skin.workspace().onOpen = [this](const std::string& target) { record("open", {{"target", target}}); };
        skin.player().onCommand = [this](const std::string& script) { record("player", {{"script", script}}); };
        skin.workspace().onLaunch = [this](const std::string& program, const std::vector<std::string>& arguments) {
            record("launch", {{"program", program}, {"arguments", arguments}});
        };
    }

    ~Trace() override { skin_.setWatcher(nullptr); }
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

    void print(std::string_view step) {
        JSON json{{"step", step}, {"time", jsonNumber(skin_.elapsedSeconds())}, {"tick", skin_.skin().tickCount()},
            {"published", published_}};
        json.update(skinStateJSON(skin_.skin()));
        json["requests"] = std::exchange(requests_, JSON::array());
        std::cout << printed(json) << "\n";
    }

private:
    void skinDidPublish(const std::vector<Drawable>&) override { ++published_; }
    void deactivate() override { record("deactivate"); }
    void deactivateConfig(const std::string& path) override { record("deactivateConfig", {{"path", path}}); }
    void activateConfig(const std::string& path, bool toggle) override {
        record("activateConfig", {{"path", path}, {"toggle", toggle}});
    }
    void refresh() override { record("refresh"); }
    void refreshApp() override { record("refreshApp"); }
    void promptInput(const std::optional<InputTextPresentation>& presentation) override {
        if (!presentation)
            return record("dismissInput");
        record("input",
            {{"measure", presentation->measureName}, {"frame", rectJSON(presentation->frame)},
                {"default", presentation->defaultValue}, {"password", presentation->isPassword}});
    }

    void skinDidAsk(std::string_view kind, const JSON& members) override { record(kind, members); }

    void record(std::string_view kind, const JSON& members = JSON::object()) {
        JSON request{{"kind", kind}};
        request.update(members);
        requests_.push_back(std::move(request));
    }

    HeadlessSkin& skin_;
    int published_ = 0;
    JSON requests_ = JSON::array();
};

int runScenario(HeadlessSkin& skin, const std::vector<ScenarioStep>& steps) {
    Trace trace(skin);
    skin.start();
    trace.print("start");
    for (const auto& step : steps) {
        step.run(skin);
        trace.print(step.line);
    }
    skin.stop();
    trace.print("stop");
    return skin.lacksInput() ? InputFailed : Done;
}

} // namespace

int run(Arguments arguments) {
    const auto request = parse(arguments);
    if (!request)
        return wrongUsage(Usage);
    const auto text = request->scenario ? readTextInput(*request->scenario) : std::optional<std::string>("tick 1");
    if (!text) {
        printMessage("cannot read " + *request->scenario);
        return InputFailed;
    }
    const auto steps = parseScenario(*text, request->dialect.isFull);
    if (!steps)
        return wrongUsage(Usage);
    const auto skin = HeadlessSkin::load(request->skin, request->wallSeconds, request->dialect);
    return skin ? runScenario(*skin, *steps) : InputFailed;
}

} // namespace Ostrel::TraceCommand
