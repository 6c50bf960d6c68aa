#include "OstrelPlatform/Linux/Players/LinuxPlayers.h"

#include "OstrelPlatform/Linux/Players/MprisTransport.h"
#include "OstrelPlatform/MainQueue.h"
#include "OstrelPlatform/Platform.h"
#include "OstrelPlatform/ThreadSerialQueue.h"
#include "OstrelPlatform/Workspace.h"

#include <pthread.h>
#include <string>
#include <vector>

namespace Ostrel::LinuxPlayers {

std::unique_ptr<PlayerTransport> makeTransport(const Platform& platform) {
    return std::make_unique<MprisTransport>(platform.clock,
        [&mainQueue = platform.mainQueue, workspace = platform.workspace](
            const std::string& program, const std::vector<std::string>& arguments) {
            mainQueue.post([workspace, program, arguments] {
                if (workspace)
                    workspace->launch(program, arguments);
            });
        });
}

std::unique_ptr<SerialQueue> makeQueue(std::string_view label) {
    constexpr std::size_t LongestName = 15;
    auto queue = std::make_unique<ThreadSerialQueue>();
    queue->post(
        [name = std::string(label.substr(0, LongestName))] { pthread_setname_np(pthread_self(), name.c_str()); });
    return queue;
}

} // namespace Ostrel::LinuxPlayers
