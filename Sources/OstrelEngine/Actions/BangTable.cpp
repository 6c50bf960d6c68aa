#include "OstrelEngine/Actions/BangTable.h"

namespace Ostrel {

namespace {

using enum BangEffect;

constexpr BangDescription Bangs[] = {
    {"SHOWMETER", Bang::showMeter, redrawsIfChanged, 1},
    {"SHOWMETERGROUP", Bang::showMeterGroup, redrawsIfChanged, 1},
    {"SHOWFADEGROUP", Bang::showMeterGroup, redrawsIfChanged, 1},
    {"HIDEMETER", Bang::hideMeter, redrawsIfChanged, 1},
    {"HIDEMETERGROUP", Bang::hideMeterGroup, redrawsIfChanged, 1},
    {"HIDEFADEGROUP", Bang::hideMeterGroup, redrawsIfChanged, 1},
    {"TOGGLEMETER", Bang::toggleMeter, redrawsIfChanged, 1},
    {"UPDATEMETER", Bang::redraw, redraws, 0},
    {"UPDATEMETERGROUP", Bang::redraw, redraws, 0},
    {"DEACTIVATECONFIG", Bang::deactivateConfig, handles, 0},
    {"ACTIVATECONFIG", Bang::activateConfig, handles, 1},
    {"TOGGLECONFIG", Bang::toggleConfig, handles, 1},
    {"COMMANDMEASURE", Bang::commandMeasure, handles, 0},
    {"PLUGINBANG", Bang::pluginBang, handles, 0},
    {"UPDATEMEASURE", Bang::updateMeasure, updates, 1},
    {"UPDATEMEASUREGROUP", Bang::updateMeasureGroup, updates, 1},
    {"ENABLEMEASURE", Bang::enableMeasure, handles, 1},
    {"DISABLEMEASURE", Bang::disableMeasure, handles, 1},
    {"PAUSEMEASURE", Bang::pauseMeasure, handles, 1},
    {"UNPAUSEMEASURE", Bang::unpauseMeasure, handles, 1},
    {"ENABLEMEASUREGROUP", Bang::enableMeasureGroup, handles, 1},
    {"DISABLEMEASUREGROUP", Bang::disableMeasureGroup, handles, 1},
    {"PAUSEMEASUREGROUP", Bang::pauseMeasureGroup, handles, 1},
    {"UNPAUSEMEASUREGROUP", Bang::unpauseMeasureGroup, handles, 1},
    {"WRITEKEYVALUE", Bang::writeKeyValue, acts, 3},
    {"SETVARIABLE", Bang::setVariable, acts, 2},
    {"SETOPTION", Bang::setOption, actsAndRedraws, 3},
    {"SETOPTIONGROUP", Bang::setOptionGroup, actsAndRedraws, 3},
    // Refreshing a group refreshes no skin: skins are not grouped here.
    {"REFRESHGROUP", Bang::redraw, redraws, 0},
    {"RAINMETERREFRESHAPP", Bang::refreshApp, handles, 0},
    {"REFRESH", Bang::refresh, handles, 0},
    {"UPDATE", Bang::redraw, redraws, 0},
    {"REDRAW", Bang::redraw, redraws, 0},
    {"LOG", Bang::ignore, handles, 0},
    {"SKINCUSTOMMENU", Bang::ignore, handles, 0},
};

} // namespace

const BangDescription* findBang(std::string_view name) {
    for (const auto& description : Bangs) {
        if (description.name == name)
            return &description;
    }
    return nullptr;
}

ActionFlags ActionFlags::after(BangEffect effect, std::optional<bool> result) const {
    ActionFlags flags = *this;
    const bool succeeded = result.value_or(false);
    flags.handled = handled || succeeded || (effect != acts && effect != actsAndRedraws);
    flags.changed = changed || effect == redraws || (succeeded && effect != handles && effect != acts);
    switch (effect) {
    case handles:
    case acts:
        break;
    case redraws:
    case updates:
        flags.redraw = true;
        break;
    case redrawsIfChanged:
        // An assignment: it also withdraws what an update without result has asked for.
        if (result)
            flags.redraw = flags.changed;
        break;
    case actsAndRedraws:
        flags.redraw = flags.handled;
        break;
    }
    return flags;
}

} // namespace Ostrel
