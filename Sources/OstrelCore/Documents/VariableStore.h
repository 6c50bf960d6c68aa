#pragma once

#include "OstrelCore/Documents/INIDocument.h"
#include "OstrelCore/Text/CaseInsensitiveDictionary.h"

#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// The variables of one load: the built-in ones, and those of the skin, which the built-in ones shadow.
class VariableStore {
public:
    /// Null when there is none of that name; lives until the next change of the store.
    const std::string* value(std::string_view name) const;
    bool hasVariable(std::string_view name) const { return value(name) != nullptr; }
    /// Upper-cased names of both kinds, without repeats; the order says nothing.
    std::vector<std::string> allVariableNames() const;

    const Options& builtIn() const { return builtIn_; }
    const Options& userDefined() const { return userDefined_; }

    void setBuiltIn(std::string_view name, std::string value) { builtIn_.set(name, std::move(value)); }
    void setUserVariable(std::string_view name, std::string value) { userDefined_.set(name, std::move(value)); }
    void setUserVariableIfAbsent(std::string_view name, std::string value) {
        userDefined_.insertIfAbsent(name, std::move(value));
    }
    /// The section's effective values, for names that are not there yet.
    void loadVariables(const INISection& section);

    /// What a skin knows of its place: "CURRENTPATH", "CURRENTFILE", "@" and their kin. Asks the disk for "@Resources".
    void configureBuiltIns(
        const std::string& skinFilePath, std::string_view skinsPath = {}, std::string_view settingsPath = {});

private:
    Options builtIn_;
    Options userDefined_;
};

} // namespace Ostrel
