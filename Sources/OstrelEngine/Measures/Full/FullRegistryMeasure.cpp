#include "OstrelEngine/Measures/Full/FullRegistryMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelDialect/OptionValues.h"
#include "OstrelEngine/Measures/DateFormatter.h"
#include "OstrelPlatform/DesktopAppearance.h"
#include "OstrelPlatform/HostDetails.h"
#include "OstrelPlatform/HostStatistics.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace Ostrel {

namespace {

/// Alpha, blue, green, red, as the desktop's accent is kept.
std::string accentNumber(const RGBColor& color, bool isBlueFirst) {
    const auto byte = [](double channel) { return std::lround(std::clamp(channel, 0.0, 1.0) * 255); };
    const auto red = byte(color.red);
    const auto blue = byte(color.blue);
    const std::int64_t high = isBlueFirst ? blue : red;
    const std::int64_t low = isBlueFirst ? red : blue;
    return formatInteger((std::int64_t{255} << 24) + (high << 16) + (byte(color.green) << 8) + low);
}

/// "de_DE.UTF-8" as "de-DE".
std::string localeName() {
    auto name = DateFormatter::hostLocaleName();
    name = name.substr(0, name.find_first_of(".@"));
    return name.empty() || name == "C" || name == "POSIX" ? "en-US" : replacingOccurrences(name, "_", "-");
}

} // namespace

void FullRegistryMeasure::update() {
    if (optionsDidChange()) {
        key_ = upperCased(replacingOccurrences(trimmed(text("RegKey"_key)), "/", "\\"));
        name_ = trimmed(text("RegValue"_key));
        const auto output = upperCased(trimmed(text("OutputType"_key, "Value")));
        listsValues_ = output == "VALUELIST";
        listsKeys_ = output == "SUBKEYLIST";
        delimiter_ = text("OutputDelimiter"_key, "\n");
    }
    if (listsKeys_)
        return publishText("", 0);
    std::string result;
    for (const auto& value : values(key_)) {
        if (listsValues_)
            result += (result.empty() ? "" : delimiter_) + value.name;
        else if (equalsIgnoringCase(value.name, name_))
            result = value.text;
    }
    publishText(result, listsValues_ ? 0 : parseDouble(result).value_or(0));
}

std::vector<FullRegistryMeasure::Value> FullRegistryMeasure::values(std::string_view key) const {
    while (key.ends_with('\\'))
        key.remove_suffix(1);
    auto* details = host().platform().hostStatistics.details();
    const auto fact = [details](MachineFact wanted) { return details ? details->fact(wanted) : std::string(); };
    auto* appearance = host().platform().appearance;
    if (key.ends_with("\\WINDOWS NT\\CURRENTVERSION")) {
        const auto kernel = fact(MachineFact::KernelRelease);
        return {{"ProductName", fact(MachineFact::SystemName)}, {"DisplayVersion", fact(MachineFact::VersionID)},
            {"ReleaseId", fact(MachineFact::VersionID)}, {"CurrentBuild", kernel}, {"CurrentBuildNumber", kernel},
            {"RegisteredOwner", fact(MachineFact::UserFullName)}, {"InstallDate", fact(MachineFact::InstallTime)}};
    }
    if (key.find("\\CENTRALPROCESSOR\\") != key.npos) {
        return {{"ProcessorNameString", fact(MachineFact::ProcessorName)}, {"~MHz", fact(MachineFact::ProcessorMHz)},
            {"VendorIdentifier", fact(MachineFact::ProcessorVendor)}};
    }
    if (key.ends_with("\\SYSTEM\\BIOS")) {
        return {{"SystemProductName", fact(MachineFact::ProductName)},
            {"SystemManufacturer", fact(MachineFact::ProductVendor)},
            {"BaseBoardProduct", fact(MachineFact::BoardName)}, {"BIOSVersion", fact(MachineFact::FirmwareVersion)}};
    }
    if (key.ends_with("\\THEMES\\PERSONALIZE")) {
        const auto dark = appearance ? appearance->prefersDark() : std::nullopt;
        const std::string isLight = dark.value_or(false) ? "0" : "1";
        return {{"AppsUseLightTheme", isLight}, {"SystemUsesLightTheme", isLight}};
    }
    if (key.ends_with("\\DWM")) {
        const auto accent = appearance ? appearance->accentColor() : std::nullopt;
        if (!accent)
            return {};
        return {{"AccentColor", accentNumber(*accent, true)}, {"ColorizationColor", accentNumber(*accent, false)}};
    }
    if (key.ends_with("CONTROL PANEL\\INTERNATIONAL")) {
        return {{"LocaleName", localeName()}, {"sShortDate", "M/d/yyyy"}, {"sTimeFormat", "HH:mm:ss"},
            {"iFirstDayOfWeek", "0"}};
    }
    if (key.ends_with("\\HWINFO64\\VSB"))
        return sensorValues();
    return {};
}

std::vector<FullRegistryMeasure::Value> FullRegistryMeasure::sensorValues() const {
    auto* details = host().platform().hostStatistics.details();
    std::vector<Value> result;
    std::int64_t number = 0;
    for (const auto& sensor : details ? details->sensors() : std::vector<Sensor>()) {
        const auto suffix = formatInteger(number++);
        const std::string_view unit = sensor.kind == Sensor::Kind::Temperature ? " \xC2\xB0"
                                                                                 "C"
            : sensor.kind == Sensor::Kind::Fan                                 ? " RPM"
                                                                               : " V";
        const auto raw = OptionValues::numberText(sensor.value, 3);
        result.push_back({"Sensor" + suffix, sensor.chip});
        result.push_back({"Label" + suffix, sensor.label});
        result.push_back({"Value" + suffix, raw + std::string(unit)});
        result.push_back({"ValueRaw" + suffix, raw});
    }
    return result;
}

} // namespace Ostrel
