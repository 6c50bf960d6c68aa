#include "OstrelPlatform/Linux/Desktop/QSettingsUserDefaults.h"

#include "OstrelCore/Files/AtomicFile.h"
#include "OstrelCore/Files/FileDescriptor.h"
#include "OstrelCore/Files/Paths.h"
#include "OstrelCore/Text/Numbers.h"

#include <QSettings>

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>

namespace Ostrel {

namespace {

constexpr std::string_view ApplicationFolder = "dev.ostrel.gui";
constexpr std::string_view SettingsFile = "settings.ini";
constexpr std::string_view DataExtension = ".json";
constexpr std::string_view AsideExtension = ".bak";
constexpr int MaxAside = 100;

std::string configurationFolder() {
    // The rule of the desktops: a relative path there does not count.
    if (const char* folder = std::getenv("XDG_CONFIG_HOME"); folder && *folder == '/')
        return appendingPathComponent(folder, ApplicationFolder);
    return appendingPathComponent(expandingTilde("~/.config"), ApplicationFolder);
}

QString keyOf(std::string_view key) {
    return QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
}

} // namespace

QSettingsUserDefaults::QSettingsUserDefaults()
    : QSettingsUserDefaults(configurationFolder()) { }

QSettingsUserDefaults::QSettingsUserDefaults(std::string folder)
    : folder_(std::move(folder)) { }

QSettingsUserDefaults::~QSettingsUserDefaults() = default;

QSettings& QSettingsUserDefaults::settings() const {
    if (!settings_)
        settings_ = std::make_unique<QSettings>(
            QString::fromStdString(appendingPathComponent(folder_, SettingsFile)), QSettings::IniFormat);
    return *settings_;
}

std::string QSettingsUserDefaults::dataPath(std::string_view key) const {
    return appendingPathComponent(folder_, key).append(DataExtension);
}

bool QSettingsUserDefaults::makeFolder() const {
    std::error_code failed;
    if (std::filesystem::is_directory(folder_, failed))
        return true;
    std::filesystem::create_directories(deletingLastPathComponent(folder_), failed);
    return ::mkdir(folder_.c_str(), 0700) == 0;
}

std::optional<std::string> QSettingsUserDefaults::data(std::string_view key) const {
    const std::scoped_lock lock(mutex_);
    if (const auto found = unstored_.find(key); found != unstored_.end())
        return found->second;
    return contentsOf(openFile(dataPath(key)), MaxDataSize);
}

std::optional<std::string> QSettingsUserDefaults::dataFile(std::string_view key) const {
    const std::scoped_lock lock(mutex_);
    return unstored_.contains(key) ? std::nullopt : std::optional(dataPath(key));
}

bool QSettingsUserDefaults::setData(std::string_view key, std::string_view bytes) {
    const std::scoped_lock lock(mutex_);
    const bool isStored = makeFolder() && writeFileAtomically(dataPath(key), bytes);
    if (isStored)
        unstored_.erase(std::string(key));
    else
        unstored_.insert_or_assign(std::string(key), std::string(bytes));
    return isStored;
}

void QSettingsUserDefaults::setDataAside(std::string_view key) {
    const std::scoped_lock lock(mutex_);
    const auto path = dataPath(key);
    auto aside = path + std::string(AsideExtension);
    for (int number = 2; number < MaxAside; ++number) {
        struct stat taken { };
        if (::lstat(aside.c_str(), &taken) != 0) {
            std::rename(path.c_str(), aside.c_str());
            return;
        }
        aside = path + std::string(AsideExtension) + formatInteger(number);
    }
}

std::optional<std::string> QSettingsUserDefaults::string(std::string_view key) const {
    settings().sync();
    const auto value = settings().value(keyOf(key));
    return value.typeId() == QMetaType::QString ? std::optional(value.toString().toStdString()) : std::nullopt;
}

void QSettingsUserDefaults::setString(std::string_view key, std::string_view value) {
    makeFolder();
    settings().setValue(keyOf(key), keyOf(value));
    settings().sync();
}

std::optional<bool> QSettingsUserDefaults::boolean(std::string_view key) const {
    const auto text = string(key);
    if (text == "true")
        return true;
    return text == "false" ? std::optional(false) : std::nullopt;
}

void QSettingsUserDefaults::setBoolean(std::string_view key, bool value) {
    // As the file has it after the next start, when nothing tells it from a text.
    setString(key, value ? "true" : "false");
}

} // namespace Ostrel
