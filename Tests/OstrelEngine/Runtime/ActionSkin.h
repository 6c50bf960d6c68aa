#pragma once

#include "OstrelCore/Documents/FileProvider.h"
#include "OstrelCore/Documents/SkinLoader.h"
#include "OstrelEngine/Runtime/SkinRuntime.h"
#include "OstrelPlatform/VirtualTime.h"
#include "Support/FakePlatform.h"
#include "Support/FakeSkinHost.h"
#include "Support/FakeWorkspace.h"
#include "Support/TemporaryFolder.h"

#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace Ostrel {

/// A skin in a pack of its own on disk that writes down what it asks of its host, one word or two for each request.
class ActionSkin {
public:
    explicit ActionSkin(std::string_view text) {
        folder.write("Pack/@Resources/x.txt", "");
        path = std::filesystem::canonical(folder.write("Pack/Skin/skin.ini", text)).string();
        pack = path.substr(0, path.size() - std::string_view("/Skin/skin.ini").size());
        DiskFileProvider files;
        DiagnosticCollector diagnostics;
        auto config = SkinLoader(files, diagnostics).load(path).value();
        auto platform = fakes.platform;
        platform.workspace = &workspace;
        runtime = SkinRuntime::create(std::move(config), platform, host);
    }

    /// What the action asked for, "handled" at its end when it was.
    std::vector<std::string> run(std::string_view action) {
        log.clear();
        if (runtime->executeActionString(action))
            log.emplace_back("handled");
        return log;
    }
    std::string variable(std::string_view name) const {
        const auto* value = runtime->variables().find(name);
        return value ? *value : "(none)";
    }
    std::string option(std::string_view meter, std::string_view key) const {
        for (const auto& candidate : runtime->meters()) {
            const auto* value = candidate->options().find(key);
            if (candidate->name() == meter && value)
                return *value;
        }
        return "(none)";
    }
    /// Names of the meters that are shown, in order.
    std::string shown() const {
        std::string names;
        for (const auto& meter : runtime->meters())
            names += runtime->isMeterVisible(meter->name()) ? meter->name() : "";
        return names;
    }
    std::string fileText() const { return DiskFileProvider().contentsOfFile(path).value_or("(none)"); }

    TemporaryFolder folder;
    std::string path;
    /// The pack's folder, in which the skin's own lies as "Skin".
    std::string pack;
    FakePlatform fakes;
    FakeSkinHost host;
    std::vector<std::string>& log = host.log;
    FakeWorkspace workspace{log};
    std::shared_ptr<SkinRuntime> runtime;
};

} // namespace Ostrel
