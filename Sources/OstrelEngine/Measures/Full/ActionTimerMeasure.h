#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

/// Runs lists of actions with waits between them, off the skin's cycle: `ActionList1=Show | Wait 500 | Repeat Blink,
/// 50, 10`, where the other words name options that hold actions. Commands: `Execute n`, `Stop n`.
class ActionTimerMeasure final : public FullMeasure {
public:
    ActionTimerMeasure(const MeasureDefinition& definition, FullMeasureHost& host);
    ~ActionTimerMeasure() override;

    void update() override;
    bool executeCommand(std::string_view command) override;
    /// Ends all lists.
    void readAsZero() override;

private:
    struct List;

    void execute(int number);
    /// Runs what is due and waits for the next part.
    void advance(int number, const std::shared_ptr<List>& list);
    void wakeAt(double uptime, int number, const std::shared_ptr<List>& list);

    /// Lists that run, by number. One that is stopped is taken out, which its waiting wake finds.
    std::map<int, std::shared_ptr<List>> running_;
};

} // namespace Ostrel
