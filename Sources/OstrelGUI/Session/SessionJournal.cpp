#include "OstrelGUI/Session/SessionJournal.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Numbers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace Ostrel {

namespace {

constexpr std::size_t DigitCount = 16;
constexpr std::string_view FoldedMark = "folded ";
/// Of all files together; we fold long before.
constexpr std::size_t MaxReadSize = 256U << 20;
constexpr int MaxNumber = 1'000'000'000;

std::string hexadecimal(std::uint64_t value) {
    std::string text(DigitCount, '0');
    for (std::size_t i = DigitCount; i-- > 0; value >>= 4)
        text[i] = "0123456789abcdef"[value & 15];
    return text;
}

std::string lineOf(std::string_view record) {
    std::string line = hexadecimal(checksum(record));
    line.reserve(line.size() + record.size() + 2);
    return line.append(" ").append(record).append("\n");
}

/// The whole records that the bytes begin with.
std::vector<std::string_view> recordsOf(std::string_view bytes) {
    std::vector<std::string_view> records;
    for (auto end = bytes.find('\n'); end != std::string_view::npos; end = bytes.find('\n')) {
        const auto line = bytes.substr(0, end);
        if (line.size() <= DigitCount || line[DigitCount] != ' ')
            break;
        const auto record = line.substr(DigitCount + 1);
        if (line.substr(0, DigitCount) != hexadecimal(checksum(record)))
            break;
        records.push_back(record);
        bytes.remove_prefix(end + 1);
    }
    return records;
}

bool isRemoved(int file) {
    struct stat status { };
    return ::fstat(file, &status) != 0 || status.st_nlink == 0;
}

/// The file is as it was when that fails.
bool appendLine(int file, std::string_view line) {
    const auto start = ::lseek(file, 0, SEEK_END);
    while (!line.empty()) {
        const auto count = ::write(file, line.data(), line.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0) {
            [[maybe_unused]] const int ignored = ::ftruncate(file, start);
            return false;
        }
        line.remove_prefix(static_cast<std::size_t>(count));
    }
    return true;
}

FileDescriptor openForAppending(const std::string& path) {
    return FileDescriptor(::open(path.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NOFOLLOW, 0600));
}

} // namespace

std::uint64_t checksum(std::string_view bytes) {
    std::uint64_t sum = bytes.size();
    const auto mix = [&sum](std::uint64_t word) {
        sum = (sum ^ word) * 0x9e3779b97f4a7c15;
        sum ^= std::rotl(sum, 29);
    };
    for (; bytes.size() >= sizeof(std::uint64_t); bytes.remove_prefix(sizeof(std::uint64_t))) {
        std::uint64_t word = 0;
        std::memcpy(&word, bytes.data(), sizeof word);
        mix(word);
    }
    for (const char c : bytes)
        mix(static_cast<unsigned char>(c));
    mix(sum >> 32);
    return sum;
}

SessionJournal::SessionJournal(std::string folder, std::string_view name)
    : folder_(std::move(folder))
    , prefix_(std::string(name).append(".journal.")) {
    // A new file for every start: what a kill left half written stays at the end of its own.
    if (const auto existing = files(); !existing.empty())
        number_ = existing.back().first + 1;
}

std::string SessionJournal::pathOf(int number) const {
    return appendingPathComponent(folder_, prefix_ + formatInteger(number));
}

std::vector<SessionJournal::File> SessionJournal::files() const {
    std::vector<File> result;
    std::error_code failed;
    for (std::filesystem::directory_iterator entry(folder_, failed), end; !failed && entry != end;
         entry.increment(failed)) {
        const auto name = entry->path().filename().string();
        const auto number = name.starts_with(prefix_) ? parseInteger(name.substr(prefix_.size())) : std::nullopt;
        if (number && *number > 0 && *number < MaxNumber)
            result.emplace_back(static_cast<int>(*number), entry->path().string());
    }
    std::ranges::sort(result);
    return result;
}

bool SessionJournal::isEmpty() const {
    return files().empty();
}

std::vector<std::string> SessionJournal::read(std::uint64_t base) {
    const auto foldedHere = std::string(FoldedMark) + hexadecimal(base);
    std::vector<std::string> result;
    std::size_t left = MaxReadSize;
    for (const auto& [number, path] : files()) {
        const auto bytes = contentsOf(openFile(path), left).value_or("");
        left -= bytes.size();
        for (const auto record : recordsOf(bytes)) {
            if (record == foldedHere)
                result.clear();
            else if (!record.starts_with(FoldedMark))
                result.emplace_back(record);
        }
    }
    return result;
}

bool SessionJournal::append(std::string_view record) {
    if (file_ && isRemoved(file_.get()))
        file_.reset();
    if (!file_)
        file_ = openForAppending(pathOf(number_));
    const auto line = lineOf(record);
    if (!file_ || !appendLine(file_.get(), line))
        return false;
    size_ += line.size();
    return true;
}

int SessionJournal::rotate() {
    file_.reset();
    size_ = 0;
    return number_++;
}

void SessionJournal::markFolded(int upTo, std::uint64_t base) const {
    if (const auto file = openForAppending(pathOf(upTo)))
        appendLine(file.get(), lineOf(std::string(FoldedMark) + hexadecimal(base)));
}

void SessionJournal::discard(int upTo) const {
    for (const auto& [number, path] : files())
        if (number <= upTo)
            ::unlink(path.c_str());
}

void SessionJournal::setAside() {
    rotate();
    for (const auto& [number, path] : files()) {
        auto aside = path + ".bak";
        std::error_code failed;
        while (std::filesystem::exists(std::filesystem::symlink_status(aside, failed)))
            aside += "+";
        std::rename(path.c_str(), aside.c_str());
    }
}

} // namespace Ostrel
