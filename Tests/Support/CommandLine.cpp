#include "Support/CommandLine.h"

#include "Support/TemporaryFolder.h"

#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <iterator>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Ostrel {

namespace {

std::string contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

CommandResult runOstrel(const std::vector<std::string>& arguments, std::string_view input) {
    // Files, not pipes: neither side waits for the other however much is written.
    const TemporaryFolder folder;
    const auto inputPath = folder.write("input", input);
    const auto outputPath = folder.write("output", "");
    const auto messagesPath = folder.write("messages", "");
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, inputPath.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, outputPath.c_str(), O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDERR_FILENO, messagesPath.c_str(), O_WRONLY, 0);

    const char* build = std::getenv("OSTREL_BUILD");
    std::vector<std::string> words = {std::string(build ? build : ".") + "/Sources/OstrelCLI/ostrel"};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (auto& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);

    CommandResult result;
    pid_t child = 0;
    int status = 0;
    if (posix_spawn(&child, pointers[0], &files, nullptr, pointers.data(), environ) == 0
        && waitpid(child, &status, 0) == child && WIFEXITED(status))
        result.status = WEXITSTATUS(status);
    posix_spawn_file_actions_destroy(&files);
    result.output = contents(outputPath);
    result.messages = contents(messagesPath);
    return result;
}

} // namespace Ostrel
