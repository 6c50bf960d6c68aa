#pragma once

#include "OstrelEngine/Measures/Full/FullMeasure.h"
#include "OstrelEngine/Measures/InputTextPresentation.h"

#include <deque>
#include <optional>
#include <string>
#include <string_view>

namespace Ostrel {

/// Asks the user for lines of text. Commands run one after the other; one that holds `$UserInput$` waits for the
/// answer, and those behind it wait with it. Options behind a command count for its prompt alone. The value is the last
/// answer.
class FullInputTextMeasure final : public FullMeasure {
public:
    FullInputTextMeasure(const MeasureDefinition& definition, FullMeasureHost& host);

    bool executeCommand(std::string_view command) override;
    void submitInput(std::string_view answer) override;
    void dismissInput() override;

private:
    void enqueueBatch(std::string_view range);
    void runPending();
    InputTextPresentation presentation(const Options& overrides) const;

    std::deque<std::string> pending_;
    /// The command that waits, and the prompt that is shown for it.
    std::optional<std::string> waiting_;
    InputTextPresentation shown_;
};

} // namespace Ostrel
