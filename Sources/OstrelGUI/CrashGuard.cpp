#include "OstrelGUI/CrashGuard.h"

#include "OstrelCore/FatalError.h"
#include "OstrelCore/Text/Numbers.h"
#include "OstrelCore/Text/Text.h"
#include "OstrelEngine/Runtime/SkinAtWork.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string_view>
#include <vector>

#include <sys/syscall.h>
#include <unistd.h>

extern char** environ;

namespace Ostrel {

namespace {

constexpr int Caught[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP};
constexpr std::time_t RecentSeconds = 60;
constexpr std::size_t MostEnds = 8;
/// "OSTREL_EARLIER_END=<time>,<time>;<signal>;<message>\n<path>"
constexpr const char* Variable = "OSTREL_EARLIER_END";

/// All that the handler uses, made ready while the process is sound.
struct Prepared {
    std::array<std::time_t, MostEnds> ends{};
    std::array<char, 8192> record{};
    std::vector<char*> environment;
    std::array<char, 65536> stack{};
};
Prepared prepared;

/// Text in a buffer that is there already; cut off at its end.
class RecordWriter {
public:
    void add(const char* text) {
        for (; *text && size_ + 1 < prepared.record.size(); ++text)
            prepared.record[size_++] = *text;
        prepared.record[size_] = '\0';
    }
    void add(std::time_t number) {
        char digits[24];
        char* at = digits + sizeof digits;
        *--at = '\0';
        do {
            *--at = static_cast<char>('0' + number % 10);
            number /= 10;
        } while (number > 0);
        add(at);
    }

private:
    std::size_t size_ = 0;
};

void writeRecord(int signal) {
    RecordWriter record;
    record.add(Variable);
    record.add("=");
    const std::time_t now = std::time(nullptr);
    for (const auto end : prepared.ends)
        if (end > 0 && now - end < RecentSeconds) {
            record.add(end);
            record.add(",");
        }
    record.add(now);
    record.add(";");
    record.add(signal);
    record.add(";");
    record.add(fatalMessage());
    record.add("\n");
    // What another thread ends by is not the work of that skin.
    const char* skin = SkinAtWork::current();
    if (skin && syscall(SYS_gettid) == getpid())
        record.add(skin);
}

/// Calls nothing that a signal handler may not call.
void startAgain(int signal) {
    for (const int other : Caught)
        std::signal(other, SIG_DFL);
    writeRecord(signal);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    char name[] = "ostrel-gui";
    char* arguments[] = {name, nullptr};
    execve("/proc/self/exe", arguments, prepared.environment.data());
    std::raise(signal);
}

std::string sentence(std::string_view message, int signal) {
    if (!message.empty())
        return "It ended Ostrel: " + std::string(message);
    const char* name = strsignal(signal);
    return std::string("It ended Ostrel: ") + (name ? name : "unknown signal");
}

} // namespace

std::optional<EarlierEnd> CrashGuard::takeEarlierEnd() {
    const char* value = std::getenv(Variable);
    if (!value)
        return std::nullopt;
    const std::string record(value);
    unsetenv(Variable);
    const auto times = record.find(';');
    const auto signal = record.find(';', times + 1);
    const auto line = record.find('\n', signal);
    if (times == std::string::npos || signal == std::string::npos || line == std::string::npos)
        return std::nullopt;
    EarlierEnd end;
    for (const auto text : split(std::string_view(record).substr(0, times), ','))
        if (const auto time = parseInteger(text); time && end.recentEnds < MostEnds)
            prepared.ends[end.recentEnds++] = static_cast<std::time_t>(*time);
    const auto number = parseInteger(std::string_view(record).substr(times + 1, signal - times - 1)).value_or(0);
    end.message = sentence(std::string_view(record).substr(signal + 1, line - signal - 1), static_cast<int>(number));
    end.skin = record.substr(line + 1);
    return end;
}

CrashGuard::CrashGuard() {
    prepared.environment.clear();
    for (char** entry = environ; *entry; ++entry)
        prepared.environment.push_back(*entry);
    prepared.environment.push_back(prepared.record.data());
    prepared.environment.push_back(nullptr);
    // A stack that has run over cannot hold the handler.
    stack_t stack{};
    stack.ss_sp = prepared.stack.data();
    stack.ss_size = prepared.stack.size();
    sigaltstack(&stack, nullptr);
    struct sigaction action { };
    action.sa_handler = startAgain;
    action.sa_flags = SA_ONSTACK;
    sigfillset(&action.sa_mask);
    for (const int signal : Caught)
        sigaction(signal, &action, nullptr);
}

CrashGuard::~CrashGuard() {
    for (const int signal : Caught)
        std::signal(signal, SIG_DFL);
    stack_t none{};
    none.ss_flags = SS_DISABLE;
    sigaltstack(&none, nullptr);
}

} // namespace Ostrel
