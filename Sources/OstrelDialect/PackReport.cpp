#include "OstrelDialect/PackReport.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/ActionText.h"
#include "OstrelDialect/FullTypes.h"
#include "OstrelDialect/PackReader.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <optional>
#include <utility>

namespace Ostrel {

namespace {

using Finding = CompatFinding;
using Severity = CompatFinding::Severity;
using Kind = PackSection::Kind;

/// The kind of a measure section: its own type, or its plugin's name.
struct MeasureKind {
    std::string name;
    const FullType* type = nullptr;
    bool isPlugin = false;
};

std::string_view value(const PackSection& section, const CaseKey& key) {
    return option(section.options, key).value_or("");
}

MeasureKind kindOfMeasure(const PackSection& section) {
    const auto written = trimmed(value(section, "Measure"_key));
    if (!equalsIgnoringCase(written, "PLUGIN"))
        return {std::string(written), FullTypes::find(FullTypes::measures(), written), false};
    const auto plugin = FullTypes::pluginName(value(section, "Plugin"_key));
    return {std::string(plugin), FullTypes::find(FullTypes::plugins(), plugin), true};
}

/// `Command` alone is what other plugins call what they show.
bool isActionKey(std::string_view key) {
    const std::string_view whole = key;
    while (!key.empty() && key.back() >= '0' && key.back() <= '9')
        key.remove_suffix(1);
    if (hasSuffixIgnoringCase(key, "ACTION") || equalsIgnoringCase(key, "BUTTONCOMMAND"))
        return true;
    return equalsIgnoringCase(key, "COMMAND") && key.size() < whole.size();
}

void sortUnique(std::vector<std::string>& items) {
    std::ranges::sort(items);
    items.erase(std::unique(items.begin(), items.end()), items.end());
}

bool isAddress(std::string_view text) {
    return text.find("://") != std::string_view::npos || hasPrefixIgnoringCase(text, "WWW.");
}

/// The host of an http or https address, lower-cased; absent for anything else and while a reference is in it.
std::optional<std::string> hostOf(std::string_view address) {
    for (const std::string_view scheme : {"HTTP://", "HTTPS://"}) {
        if (!hasPrefixIgnoringCase(address, scheme))
            continue;
        auto host = address.substr(scheme.size());
        host = host.substr(0, host.find_first_of("/?#"));
        if (const auto user = host.rfind('@'); user != std::string_view::npos)
            host.remove_prefix(user + 1);
        host = host.substr(0, host.find(':'));
        if (host.empty() || host.find_first_of("[]#%") != std::string_view::npos)
            return std::nullopt;
        return lowerCased(host);
    }
    return std::nullopt;
}

/// Walks a skin's text, what can be resolved at load resolved.
class Search {
public:
    explicit Search(const PackSkin& skin)
        : skin_(skin)
        , scope_(skin.variables, skin.folders) { }

    PackWants run() {
        for (const auto& section : skin_.sections) {
            if (section.kind == Kind::Measure)
                searchMeasure(section);
            for (const auto& [key, text, hash] : section.options) {
                if (isActionKey(key) || isActionList(section))
                    searchAction(resolved(section, text, ReferenceKinds::Signs));
            }
        }
        for (auto* items : {&wants_.scripts, &wants_.web, &wants_.programs, &wants_.files})
            sortUnique(*items);
        return std::move(wants_);
    }

private:
    bool isActionList(const PackSection& section) const {
        return section.kind == Kind::Measure && equalsIgnoringCase(kindOfMeasure(section).name, "ACTIONTIMER");
    }

    std::string resolved(const PackSection& section, std::string_view text, ReferenceKinds kinds) const {
        return resolveReferences(text, scope_, section.name, kinds);
    }

    std::string resolvedOption(const PackSection& section, const CaseKey& key) const {
        return resolved(section, value(section, key), ReferenceKinds::AtLoad);
    }

    void searchMeasure(const PackSection& section) {
        const auto kind = kindOfMeasure(section).name;
        if (equalsIgnoringCase(kind, "SCRIPT"))
            wantScript(resolvedOption(section, "ScriptFile"_key));
        else if (equalsIgnoringCase(kind, "WEBPARSER"))
            wantAddress(resolvedOption(section, "URL"_key));
        else if (equalsIgnoringCase(kind, "PINGPLUGIN"))
            wantHost(resolvedOption(section, "DestAddress"_key));
        else if (equalsIgnoringCase(kind, "RUNCOMMAND"))
            wantCommand(resolvedOption(section, "Program"_key), resolvedOption(section, "Parameter"_key));
        else if (equalsIgnoringCase(kind, "FILEVIEW"))
            wantFile(resolvedOption(section, "Path"_key));
        else if (equalsIgnoringCase(kind, "FOLDERINFO"))
            wantFile(resolvedOption(section, "Folder"_key));
        else if (equalsIgnoringCase(kind, "QUOTEPLUGIN"))
            wantFile(resolvedOption(section, "PathName"_key));
    }

    void searchAction(const std::string& text) {
        for (const auto& step : parseActionText(text)) {
            if (step.kind != ActionTextStep::Kind::Open || step.name.empty() || isAddress(step.name)
                || isForeignProgram(step.name))
                continue;
            if (step.name.find_first_of("[]#") == std::string::npos && isProgram(step) && !isReference(step.name))
                wants_.programs.push_back(step.name);
        }
    }

    /// A file is opened by the desktop and asks nothing; what has arguments or no ending is to be executed.
    static bool isProgram(const ActionTextStep& step) {
        return !step.arguments.empty() || pathExtension(normalizeSeparators(step.name)).empty();
    }

    /// `[Meter:X]` behind an action reads as a program.
    bool isReference(std::string_view name) const {
        const auto section = name.substr(0, name.find(':'));
        return std::ranges::any_of(
            skin_.sections, [&](const PackSection& other) { return equalsIgnoringCase(other.name, section); });
    }

    void wantScript(const std::string& path) {
        if (!path.empty())
            wants_.scripts.push_back(skin_.folders.absolutePath(path));
    }

    void wantAddress(const std::string& address) {
        if (auto host = hostOf(address))
            wants_.web.push_back(std::move(*host));
        else if (hasPrefixIgnoringCase(address, "FILE://"))
            wantFile(address.substr(7));
    }

    void wantHost(const std::string& host) {
        if (!host.empty() && host.find_first_of("[]#") == std::string::npos)
            wants_.web.push_back(lowerCased(host));
    }

    void wantCommand(const std::string& program, const std::string& parameter) {
        const auto first = program.empty() ? trimmed(parameter) : trimmed(program);
        if (first.empty() || isForeignProgram(first) || isForeignProgram(first.substr(0, first.find(' '))))
            return;
        wants_.programs.emplace_back(trimmed(program + " " + parameter));
    }

    void wantFile(std::string path) {
        // Behind three slashes stands an absolute path of this system, or a drive letter.
        if (path.empty() || path.find_first_of("[]#") != std::string::npos || path.find(':') == 1
            || path.find(':') == 2)
            return;
        path = skin_.folders.absolutePath(path);
        if (!skin_.folders.isInPack(path))
            wants_.files.push_back(std::move(path));
    }

    const PackSkin& skin_;
    PackVariables scope_;
    PackWants wants_;
};

std::vector<Finding> findings(const PackSkin& skin) {
    std::vector<Finding> result;
    const auto add = [&](Severity severity, std::string category, std::string message, const PackSection& section) {
        result.push_back({severity, std::move(category), std::move(message), section.name, std::nullopt});
    };
    const auto addType = [&](const FullType* type, const std::string& what, const PackSection& section) {
        if (!type)
            add(Severity::warning, "Unknown Type", what + " is not known", section);
        else if (type->support == FullType::Support::Nothing)
            add(Severity::incompatible, "Not Here", what + " " + std::string(type->note), section);
        else if (type->support == FullType::Support::Partly)
            add(Severity::warning, "Partial Support", what + " " + std::string(type->note), section);
    };
    for (const auto& section : skin.sections) {
        if (section.kind == Kind::Measure) {
            const auto kind = kindOfMeasure(section);
            addType(kind.type, (kind.isPlugin ? "Plugin '" : "Measure '") + kind.name + "'", section);
        } else if (section.kind == Kind::Meter) {
            const auto name = trimmed(value(section, "Meter"_key));
            addType(FullTypes::find(FullTypes::meters(), name), "Meter '" + std::string(name) + "'", section);
        }
    }
    const PackVariables scope(skin.variables, skin.folders);
    for (const auto& section : skin.sections) {
        for (const auto& [key, text, hash] : section.options) {
            if (!isActionKey(key))
                continue;
            for (const auto& step :
                parseActionText(resolveReferences(text, scope, section.name, ReferenceKinds::Signs))) {
                if (step.kind == ActionTextStep::Kind::Open && isForeignProgram(step.name))
                    add(Severity::warning, "Foreign Program", "Cannot start '" + step.name + "' on this system",
                        section);
            }
        }
    }
    return result;
}

} // namespace

void PackWants::merge(const PackWants& other) {
    const std::array<std::pair<std::vector<std::string>*, const std::vector<std::string>*>, 4> lists
        = {{{&scripts, &other.scripts}, {&web, &other.web}, {&programs, &other.programs}, {&files, &other.files}}};
    for (const auto& [own, added] : lists) {
        own->insert(own->end(), added->begin(), added->end());
        sortUnique(*own);
    }
}

PackWants findWants(const PackSkin& skin) {
    return Search(skin).run();
}

bool isForeignProgram(std::string_view program) {
    while (!program.empty() && (program.front() == '"' || program.front() == ' '))
        program.remove_prefix(1);
    program = program.substr(0, program.find('"'));
    const bool hasDrive = program.size() >= 3 && program[1] == ':' && (program[2] == '\\' || program[2] == '/');
    if (hasDrive || containsIgnoringCase(program, ".EXE "))
        return true;
    const std::string name = upperCased(lastPathComponent(normalizeSeparators(trimmed(program))));
    constexpr std::array<std::string_view, 12> Endings
        = {"EXE", "BAT", "CMD", "COM", "PS1", "VBS", "AHK", "LNK", "MSC", "CPL", "SCR", "DLL"};
    if (std::ranges::find(Endings, pathExtension(name)) != Endings.end())
        return true;
    // Their own tools are often named without an ending.
    constexpr std::array<std::string_view, 13> Tools = {"WMIC", "CMD", "POWERSHELL", "PWSH", "EXPLORER", "CONTROL",
        "RUNDLL32", "TASKMGR", "NOTEPAD", "CALC", "REGEDIT", "MSPAINT", "WSCRIPT"};
    if (std::ranges::find(Tools, name) != Tools.end())
        return true;
    const auto text = trimmed(program);
    const bool isShellFolder = hasPrefixIgnoringCase(text, "SHELL:") || text.starts_with("::{");
    return isShellFolder || hasPrefixIgnoringCase(text, "MS-SETTINGS:");
}

CompatReport reportOf(const PackSkin& skin) {
    CompatReport report;
    report.skinPath = skin.folders.skinFile;
    for (const auto& section : skin.sections) {
        if (section.kind != Kind::Metadata)
            continue;
        if (const auto name = option(section.options, "Name"_key))
            report.skinName = std::string(*name);
    }
    report.findings = findings(skin);
    if (report.incompatibleCount() > 0)
        report.verdict = CompatVerdict::incompatible;
    else if (report.warningCount() > 0)
        report.verdict = CompatVerdict::partiallyCompatible;
    return report;
}

std::vector<std::string> thingsBeyondBase(const PackSkin& skin) {
    std::vector<std::string> things;
    const auto add = [&](std::string_view thing) {
        if (!thing.empty() && std::ranges::find(things, thing) == things.end())
            things.emplace_back(thing);
    };
    bool hasReferences = false;
    bool hasOtherSkins = false;
    bool hasDynamic = false;
    for (const auto& section : skin.sections) {
        if (section.kind == Kind::Measure) {
            if (const auto* type = kindOfMeasure(section).type)
                add(type->beyondBase);
        } else if (section.kind == Kind::Meter) {
            if (const auto* type = FullTypes::find(FullTypes::meters(), trimmed(value(section, "Meter"_key))))
                add(type->beyondBase);
        }
        hasDynamic = hasDynamic || trimmed(value(section, "DynamicVariables"_key)) == "1";
        for (const auto& [key, text, hash] : section.options) {
            hasReferences = hasReferences || text.find("[&") != std::string::npos
                || text.find("[#") != std::string::npos || containsIgnoringCase(text, "#ROOTCONFIGPATH#")
                || containsIgnoringCase(text, "#CURRENTSECTION#");
            hasOtherSkins = hasOtherSkins || containsIgnoringCase(text, "GROUP \"")
                || containsIgnoringCase(text, "!ZPOS") || containsIgnoringCase(text, "!MOVE ");
            if (isActionKey(key) && !hasPrefixIgnoringCase(key, "LEFTMOUSE") && containsIgnoringCase(key, "MOUSE")
                && !containsIgnoringCase(key, "OVER") && !containsIgnoringCase(key, "LEAVE"))
                add("further mouse buttons and the wheel");
            if (hasPrefixIgnoringCase(key, "CONTEXTTITLE"))
                add("menu items of its own");
            if (hasPrefixIgnoringCase(key, "TOOLTIPTEXT"))
                add("tool tips");
            if (hasPrefixIgnoringCase(key, "INLINESETTING"))
                add("texts of several looks");
        }
    }
    if (hasReferences)
        add("nested variables");
    if (hasDynamic)
        add("options that follow their variables");
    if (hasOtherSkins)
        add("other skins and windows");
    return things;
}

} // namespace Ostrel
