#pragma once

#include "OstrelEngine/Measures/InputTextPresentation.h"
#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Ostrel {

class MeasureHost;

/// Asks the user for lines of text. Commands run one after the other; one that holds "$UserInput$" waits until the user
/// has answered, and those behind it wait with it. The value is the last answer.
class InputTextMeasure final : public BaseMeasure {
public:
    InputTextMeasure(const MeasureDefinition& definition, std::string skinPath, MeasureHost& host);

    const InputTextPresentation& presentation() const { return presentation_; }
    /// Whether a command waits for the user.
    bool isPrompting() const { return waitingForInputTemplate_.has_value(); }

    /// "ExecuteBatch" with a range runs the numbered commands of the options; one word alone is a variable to ask for.
    bool executeCommand(std::string_view text) override;
    void submitInput(std::string_view value) override;
    /// Drops the commands that wait, and all behind them.
    void dismissInput() override;

private:
    std::vector<std::string> commandsForBatchRange(std::string_view text) const;
    void enqueue(std::vector<std::string> commands);
    void processPendingCommands();
    std::string normalizedInput(std::string_view value) const;
    void publishAnswer(std::string_view text) { publish(0, text, true, 0, 0); }

    MeasureHost& host_;
    const InputTextPresentation presentation_;
    const std::string dismissAction_;
    const std::map<std::int64_t, std::string> commandTemplates_;
    std::deque<std::string> pendingCommands_;
    std::optional<std::string> waitingForInputTemplate_;
};

} // namespace Ostrel
