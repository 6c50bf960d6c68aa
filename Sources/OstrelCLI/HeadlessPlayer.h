#pragma once

#include "OstrelEngine/Players/MediaPlayerBridges.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

class VirtualSerialQueue;
class VirtualTime;

/// The music player where there is none: a text that is the answer to every poll, and a record of what it is told.
class HeadlessPlayer {
public:
    explicit HeadlessPlayer(const VirtualTime& time);
    ~HeadlessPlayer();

    MediaPlayerBridges& bridges() { return bridges_; }
    /// What a poll that begins from here on is answered with.
    void setAnswer(std::string answer) { answer_ = std::move(answer); }
    /// The same with a file's text; a file that is no text stands for a player that fails to answer. False when it
    /// cannot be read.
    bool setAnswerFromFile(const std::string& path);
    /// Delivers the answers to the polls that have begun.
    void deliver();

    /// Takes the script of each command.
    std::function<void(const std::string& script)> onCommand;

private:
    class Transport;
    std::unique_ptr<SerialQueue> makeQueue();

    const VirtualTime& time_;
    std::optional<std::string> answer_ = "NOT_RUNNING";
    /// Those of the bridges.
    std::vector<VirtualSerialQueue*> queues_;
    MediaPlayerBridges bridges_;
};

} // namespace Ostrel
