#pragma once

#include "OstrelPlatform/Workspace.h"

#include <string>
#include <vector>

namespace Ostrel {

/// Opens and starts nothing, and writes what it was asked for into the test's log.
class FakeWorkspace final : public Workspace {
public:
    explicit FakeWorkspace(std::vector<std::string>& log)
        : log_(log) { }

    bool openURL(const std::string& url) override { return note("url " + url); }
    bool openFile(const std::string& path) override { return note("file " + path); }
    bool launch(const std::string& program, const std::vector<std::string>& arguments) override {
        std::string line = "launch " + program;
        for (const auto& argument : arguments)
            line += " <" + argument + ">";
        return note(line);
    }

    /// What every request is answered.
    bool answer = true;

private:
    bool note(const std::string& line) {
        log_.push_back(line);
        return answer;
    }

    std::vector<std::string>& log_;
};

} // namespace Ostrel
