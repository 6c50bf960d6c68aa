#pragma once

#include "OstrelEngine/Measures/MeasureProtocol.h"

#include <functional>
#include <memory>
#include <string>

namespace Ostrel {

class RecycleManagerBackend;

/// How many items, or how many bytes, lie in the trash; opens and empties it on command. Its range always ends at the
/// value itself. Its options are read once, when it is made.
class RecycleManagerMeasure final : public BaseMeasure {
public:
    /// Null where there is no trash: the value stays 0.
    using BackendFactory = std::function<std::shared_ptr<RecycleManagerBackend>(const Platform&)>;
    /// Gives every new measure its backend: the platform's, unless replaced; an empty function brings that back.
    static void setBackendFactory(BackendFactory factory);

    RecycleManagerMeasure(const MeasureDefinition& definition, std::string skinPath, const Platform& platform);
    ~RecycleManagerMeasure() override;

    void update() override;
    bool executeCommand(std::string_view text) override;

private:
    enum class RecycleType { count, size };

    RecycleType recycleType_;
    std::string drives_;
    std::shared_ptr<RecycleManagerBackend> backend_;
};

} // namespace Ostrel
