#include "OstrelGUI/PackChoices.h"

#include "OstrelCore/Packages/SkinPathResolver.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/PackReader.h"
#include "OstrelPlatform/UserDefaults.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <map>

namespace Ostrel {

namespace {

using nlohmann::json;
using Choices = std::vector<std::pair<std::string, PackChoice>>;

constexpr std::size_t MaxSkinsAsked = 300;

struct PermissionName {
    const char* name;
    bool PackPermissions::*member;
};
constexpr std::array<PermissionName, 4> PermissionNames = {{{"scripts", &PackPermissions::scripts},
    {"web", &PackPermissions::web}, {"programs", &PackPermissions::programs}, {"files", &PackPermissions::files}}};

json encode(const std::string& root, const PackChoice& choice) {
    json object = {{"root", root}};
    if (choice.dialect)
        object["dialect"] = *choice.dialect == Dialect::Full ? "full" : "base";
    if (choice.permissions) {
        for (const auto& [name, member] : PermissionNames)
            object["permissions"][name] = (*choice.permissions).*member;
    }
    return object;
}

/// Absent without a root. What is of another kind counts as not said.
std::optional<std::pair<std::string, PackChoice>> decode(const json& object) {
    if (!object.is_object() || !object.contains("root") || !object["root"].is_string())
        return std::nullopt;
    PackChoice choice;
    const auto dialect = object.value("dialect", json());
    if (dialect == "full" || dialect == "base")
        choice.dialect = dialect == "full" ? Dialect::Full : Dialect::Base;
    if (const auto granted = object.value("permissions", json()); granted.is_object()) {
        choice.permissions.emplace();
        for (const auto& [name, member] : PermissionNames)
            (*choice.permissions).*member = granted.value(name, json()) == true;
    }
    return std::pair(object["root"].get<std::string>(), choice);
}

bool declaresFullDialect(const std::string& skinPath) {
    const auto skin = readPackSkin(skinPath);
    if (!skin)
        return false;
    return std::ranges::any_of(skin->sections, [](const PackSection& section) {
        return section.kind == PackSection::Kind::Metadata
            && equalsIgnoringCase(option(section.options, "Dialect"_key).value_or(""), "FULL");
    });
}

} // namespace

std::string PackChoices::rootOf(const std::string& skinPath) {
    return PackFolders::find(skinPath, std::nullopt, std::nullopt, {}).root;
}

Choices PackChoices::all() const {
    Choices choices;
    const auto list = json::parse(defaults_.string(ChoicesKey).value_or("[]"), nullptr, false);
    if (!list.is_array())
        return choices;
    for (const auto& object : list) {
        if (auto choice = decode(object))
            choices.push_back(std::move(*choice));
    }
    return choices;
}

PackChoice PackChoices::of(std::string_view root) const {
    for (auto& [known, choice] : all()) {
        if (known == root)
            return choice;
    }
    return {};
}

void PackChoices::set(const std::string& root, const PackChoice& choice) {
    auto choices = all();
    const auto known = std::ranges::find(choices, root, &Choices::value_type::first);
    if (known != choices.end())
        known->second = choice;
    else
        choices.emplace_back(root, choice);
    if (choices.size() > MaxPacks)
        choices.erase(choices.begin());
    store(choices);
}

void PackChoices::forget(std::string_view root) {
    auto choices = all();
    std::erase_if(choices, [&](const auto& entry) { return entry.first == root; });
    store(choices);
}

void PackChoices::store(const Choices& choices) {
    auto list = json::array();
    for (const auto& [root, choice] : choices)
        list.push_back(encode(root, choice));
    defaults_.setString(ChoicesKey, list.dump(-1, ' ', false, json::error_handler_t::replace));
}

PackChoices::NewPacks PackChoices::newPacks() const {
    const auto text = defaults_.string(NewPacksKey).value_or("");
    if (text == "base")
        return NewPacks::Base;
    return text == "full" ? NewPacks::Full : NewPacks::Ask;
}

void PackChoices::setNewPacks(NewPacks choice) {
    constexpr std::array<const char*, 3> Texts = {"ask", "base", "full"};
    defaults_.setString(NewPacksKey, Texts[static_cast<std::size_t>(choice)]);
}

Dialect PackChoices::dialectOf(const std::string& skinPath) const {
    if (const auto choice = of(rootOf(skinPath)); choice.dialect)
        return *choice.dialect;
    switch (newPacks()) {
    case NewPacks::Base:
        return Dialect::Base;
    case NewPacks::Full:
        return Dialect::Full;
    case NewPacks::Ask:
        break;
    }
    return declaresFullDialect(skinPath) ? Dialect::Full : Dialect::Base;
}

PackWants wantsOfPack(const std::string& root) {
    PackWants wants;
    const std::array<std::string, 1> folder = {root};
    auto skins = SkinPathResolver::expand(folder);
    if (skins.size() > MaxSkinsAsked)
        skins.resize(MaxSkinsAsked);
    for (const auto& path : skins) {
        if (const auto skin = readPackSkin(path, std::nullopt, root))
            wants.merge(findWants(*skin));
    }
    return wants;
}

} // namespace Ostrel
