#include "OstrelCLI/HeadlessPlayer.h"

#include "OstrelCore/Text/Text.h"
#include "OstrelPlatform/Log.h"
#include "OstrelPlatform/Mac/AppleScriptCommands.h"
#include "OstrelPlatform/PlayerTransport.h"
#include "OstrelPlatform/VirtualSerialQueue.h"
#include "OstrelPlatform/VirtualTime.h"

#include <array>
#include <fstream>
#include <memory>
#include <optional>

namespace Ostrel {

class HeadlessPlayer::Transport final : public PlayerTransport {
public:
    explicit Transport(HeadlessPlayer& player)
        : player_(player) { }

    Poll poll(const PlayerTarget&) override {
        return [answer = player_.answer_] { return answer; };
    }

    /// Told at once, so that it stands in its order among the skin's other requests.
    Work perform(const PlayerTarget& target, const PlayerCommand& command) override {
        if (player_.onCommand)
            player_.onCommand(AppleScriptCommands::script(target.name, command));
        return nullptr;
    }

private:
    HeadlessPlayer& player_;
};

HeadlessPlayer::HeadlessPlayer(const VirtualTime& time)
    : time_(time)
    , bridges_({.makeTransport = [this] { return std::make_unique<Transport>(*this); },
          .makeQueue = [this](std::string_view) { return makeQueue(); },
          .clock = time,
          .log = logToStandardError}) { }

HeadlessPlayer::~HeadlessPlayer() = default;

bool HeadlessPlayer::setAnswerFromFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return false;
    std::string text;
    for (std::array<char, 65536> part; file.read(part.data(), part.size()), file.gcount() > 0;)
        text.append(part.data(), static_cast<std::size_t>(file.gcount()));
    if (file.bad())
        return false;
    answer_ = isValidUTF8(text) ? std::optional(std::move(text)) : std::nullopt;
    return true;
}

std::unique_ptr<SerialQueue> HeadlessPlayer::makeQueue() {
    auto queue = std::make_unique<VirtualSerialQueue>(time_);
    queues_.push_back(queue.get());
    return queue;
}

void HeadlessPlayer::deliver() {
    for (auto* queue : queues_)
        queue->runDue();
}

} // namespace Ostrel
