#pragma once

#include "OstrelEngine/Actions/ActionProgram.h"

#include <memory>
#include <string_view>

namespace Ostrel {

class BangOperations;

/// Runs action strings. Actions run others, through commands and updates of measures, and may do so without end; a
/// nested run beyond the limits is dropped and everything around it goes on.
class ActionRunner {
public:
    /// The operations may be constructed later but must be there when the first action runs.
    explicit ActionRunner(BangOperations& operations)
        : operations_(operations) { }

    /// True when something was handled.
    bool executeActionString(std::string_view action);
    bool execute(const ActionProgram& program);
    std::shared_ptr<const ActionProgram> program(std::string_view action) { return programs_.program(action); }

    /// While one lives, actions ask for no publication of their own.
    class SuppressedPublishing {
    public:
        explicit SuppressedPublishing(ActionRunner& runner)
            : runner_(runner) {
            ++runner_.suppressPublishDepth_;
        }
        ~SuppressedPublishing() { --runner_.suppressPublishDepth_; }
        SuppressedPublishing(const SuppressedPublishing&) = delete;
        SuppressedPublishing& operator=(const SuppressedPublishing&) = delete;

    private:
        ActionRunner& runner_;
    };

private:
    class Nesting;
    bool run(const ActionProgram& program);

    BangOperations& operations_;
    ActionPrograms programs_;
    int suppressPublishDepth_ = 0;
    int depth_ = 0;
    /// Runs within the outermost one.
    int nestedRuns_ = 0;
};

} // namespace Ostrel
