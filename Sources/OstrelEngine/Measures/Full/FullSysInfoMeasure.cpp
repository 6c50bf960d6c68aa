#include "OstrelEngine/Measures/Full/FullSysInfoMeasure.h"

#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Measures/Full/FullNetMeasure.h"
#include "OstrelEngine/Measures/Full/TimeLocale.h"
#include "OstrelEngine/Measures/Full/WallTime.h"
#include "OstrelPlatform/Clock.h"
#include "OstrelPlatform/HostStatistics.h"
#include "OstrelPlatform/Platform.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>

namespace Ostrel {

namespace {

struct FactName {
    std::string_view type;
    MachineFact fact;
    bool isNumber = false;
};

constexpr FactName Facts[] = {{"COMPUTER_NAME", MachineFact::ComputerName}, {"HOST_NAME", MachineFact::FullHostName},
    {"USER_NAME", MachineFact::UserName}, {"USER_SID", MachineFact::UserID},
    {"OS_PRODUCT_NAME", MachineFact::SystemName}, {"OS_VERSION", MachineFact::SystemVersion},
    {"OS_BITS", MachineFact::SystemBits, true}, {"PAGESIZE", MachineFact::PageSize, true},
    {"DOMAIN_NAME", MachineFact::SearchDomain}, {"DOMAINNAME", MachineFact::SearchDomain},
    {"DNS_SERVER", MachineFact::NameServer}};

std::string_view withoutSuffix(std::string_view text, std::string_view suffix) {
    return text.ends_with(suffix) ? text.substr(0, text.size() - suffix.size()) : text;
}

/// The states of operstate, as the numbers of the manual.
struct StateName {
    std::string_view kernel;
    std::string_view text;
    int number;
};
constexpr StateName States[]
    = {{"notpresent", "Not Present", -3}, {"lowerlayerdown", "Lower Layer Down", -2}, {"down", "Down", -1},
        {"unknown", "Unknown", 0}, {"up", "Up", 1}, {"dormant", "Dormant", 2}, {"testing", "Testing", 3}};

} // namespace

void FullSysInfoMeasure::update() {
    if (optionsDidChange()) {
        type_ = upperCased(trimmed(text("SysInfoType"_key)));
        data_ = trimmed(text("SysInfoData"_key));
    }
    if (publishFact() || publishAdapter() || publishScreen() || publishTimeZone())
        return;
    host().log(LogLevel::Error, name(), "Unknown SysInfoType: " + type_);
    publishText("", 0);
}

bool FullSysInfoMeasure::publishFact() {
    auto* details = host().platform().hostStatistics.details();
    const auto fact = [details](MachineFact wanted) { return details ? details->fact(wanted) : std::string(); };
    const auto row = std::ranges::find(Facts, type_, &FactName::type);
    if (row != std::end(Facts)) {
        const auto text = fact(row->fact);
        const double number = parseDouble(text).value_or(0);
        row->isNumber ? publishNumber(number) : publishText(text, number);
        return true;
    }
    if (type_ == "DOMAIN_WORKGROUP") {
        const auto domain = fact(MachineFact::SearchDomain);
        publishText(domain.empty() ? "WORKGROUP" : domain, 0);
    } else if (type_ == "USER_LOGONTIME") {
        const auto seconds = parseInteger(fact(MachineFact::LogonTime));
        publishNumber(seconds ? static_cast<double>(*seconds + SecondsFrom1601To1970) : 0);
    } else if (type_ == "LAST_SLEEP_TIME" || type_ == "LAST_WAKE_TIME" || type_ == "IDLE_TIME") {
        publishNumber(0);
    } else {
        return false;
    }
    return true;
}

bool FullSysInfoMeasure::publishAdapter() {
    const auto type = withoutSuffix(withoutSuffix(type_, "_V4"), "_V6");
    const bool wantsIPv6 = type_.ends_with("_V6");
    auto* details = host().platform().hostStatistics.details();
    const auto* interface = details ? chosenInterface(details->networkInterfaces(), data_.empty() ? "Best" : data_)
                                    : nullptr;
    const bool isAlive = interface && (interface->hasCarrier || interface->state == "up");
    if (type == "LAN_CONNECTIVITY" || type == "INTERNET_CONNECTIVITY") {
        const auto facts = interface ? details->adapter(interface->name) : AdapterFacts();
        const bool isLAN = type == "LAN_CONNECTIVITY";
        const auto& way4 = isLAN ? facts.address4 : facts.gateway4;
        const auto& way6 = isLAN ? facts.address6 : facts.gateway6;
        const bool hasFamily = type_.ends_with("_V4") ? !way4.empty()
            : wantsIPv6                               ? !way6.empty()
                                                      : !way4.empty() || !way6.empty();
        publishNumber(isAlive && hasFamily ? 1 : -1);
        return true;
    }
    if (type == "ADAPTER_STATE") {
        publishText(isAlive ? "Connected" : "Disconnected", isAlive ? 1 : -1);
        return true;
    }
    if (type == "ADAPTER_STATUS") {
        const auto state = std::ranges::find(States, interface ? interface->state : "notpresent", &StateName::kernel);
        const auto& shown = state == std::end(States) ? States[3] : *state;
        publishText(shown.text, shown.number);
        return true;
    }
    if (type == "ADAPTER_ALIAS") {
        publishText(interface ? interface->name : "", 0);
        return true;
    }
    constexpr std::string_view Known[] = {"ADAPTER_DESCRIPTION", "ADAPTER_GUID", "ADAPTER_TYPE",
        "ADAPTER_TRANSMIT_SPEED", "ADAPTER_RECEIVE_SPEED", "MAC_ADDRESS", "NET_MASK", "IP_ADDRESS", "GATEWAY_ADDRESS"};
    if (std::ranges::find(Known, type) == std::end(Known))
        return false;
    const auto facts = interface ? details->adapter(interface->name) : AdapterFacts();
    if (type == "ADAPTER_TYPE") {
        constexpr int Ethernet = 1;
        const bool isWireless = interface && interface->isWireless;
        const bool isWired = !isWireless && facts.hardwareType == Ethernet;
        publishText(isWireless ? "Wireless" : isWired ? "Ethernet" : "Other", isWireless ? 71 : isWired ? 6 : 0);
    } else if (type.ends_with("_SPEED")) {
        publishNumber(facts.speed);
    } else {
        publishText(type == "ADAPTER_DESCRIPTION" ? facts.description
                : type == "MAC_ADDRESS"           ? facts.hardwareAddress
                : type == "NET_MASK"              ? facts.mask4
                : type == "IP_ADDRESS"            ? (wantsIPv6 ? facts.address6 : facts.address4)
                : type == "GATEWAY_ADDRESS"       ? (wantsIPv6 ? facts.gateway6 : facts.gateway4)
                                                  : "",
            0);
    }
    return true;
}

double FullSysInfoMeasure::variable(std::string_view name) const {
    return parseDouble(trimmed(host().resolved(*this, "#" + std::string(name) + "#"))).value_or(0);
}

bool FullSysInfoMeasure::publishScreen() {
    const bool hasMonitor = !data_.empty() && parseInteger(data_).value_or(0) > 0;
    const auto suffix = hasMonitor ? "@" + data_ : std::string();
    const auto pair = [&](std::string_view area) {
        const auto prefix = std::string(area);
        publishText(formatNumeric(variable(prefix + "WIDTH")) + " x " + formatNumeric(variable(prefix + "HEIGHT")), 0);
    };
    const struct {
        std::string_view type;
        std::string variable;
    } rows[] = {{"SCREEN_WIDTH", "SCREENAREAWIDTH" + suffix}, {"SCREEN_HEIGHT", "SCREENAREAHEIGHT" + suffix},
        {"WORK_AREA_TOP", "WORKAREAY" + suffix}, {"WORK_AREA_LEFT", "WORKAREAX" + suffix},
        {"WORK_AREA_WIDTH", "WORKAREAWIDTH" + suffix}, {"WORK_AREA_HEIGHT", "WORKAREAHEIGHT" + suffix},
        {"VIRTUAL_SCREEN_TOP", hasMonitor ? "SCREENAREAY" + suffix : "VSCREENAREAY"},
        {"VIRTUAL_SCREEN_LEFT", hasMonitor ? "SCREENAREAX" + suffix : "VSCREENAREAX"},
        {"VIRTUAL_SCREEN_WIDTH", "VSCREENAREAWIDTH"}, {"VIRTUAL_SCREEN_HEIGHT", "VSCREENAREAHEIGHT"}};
    for (const auto& row : rows) {
        if (row.type == type_) {
            publishNumber(variable(row.variable));
            return true;
        }
    }
    if (type_ == "SCREEN_SIZE") {
        pair("SCREENAREA");
    } else if (type_ == "WORK_AREA") {
        pair("WORKAREA");
    } else if (type_ == "NUM_MONITORS") {
        constexpr int MaximumMonitors = 64;
        int count = 0;
        while (count < MaximumMonitors && variable("SCREENAREAWIDTH@" + formatInteger(count + 1)) > 0)
            ++count;
        publishNumber(std::max(1, count));
    } else {
        return false;
    }
    return true;
}

bool FullSysInfoMeasure::publishTimeZone() {
    if (!type_.starts_with("TIMEZONE_"))
        return false;
    const auto now = static_cast<std::int64_t>(std::floor(host().platform().clock.wallSeconds()));
    const auto offset = LocalZone::offsetAt(now);
    const auto shift = LocalZone::summerShiftAt(now);
    const auto today = WallTime::fromSecondsSince1601(now + offset.seconds + SecondsFrom1601To1970);
    const bool hasSummer = offset.isSummer || (today && LocalZone::change(today->year, true));
    const auto item = std::string_view(type_).substr(9);
    if (item == "ISDST")
        publishNumber(!hasSummer ? -1 : offset.isSummer ? 1 : 0);
    else if (item == "BIAS")
        publishNumber(static_cast<double>(shift - offset.seconds) / 60);
    else if (item == "STANDARD_BIAS")
        publishNumber(0);
    else if (item == "DAYLIGHT_BIAS")
        publishNumber(!hasSummer ? 0 : shift == 0 ? -60 : -static_cast<double>(shift) / 60);
    else if (item == "STANDARD_NAME" || item == "DAYLIGHT_NAME")
        publishText(TimeLocale::zoneName(item == "DAYLIGHT_NAME"), 0);
    else
        return false;
    return true;
}

} // namespace Ostrel
