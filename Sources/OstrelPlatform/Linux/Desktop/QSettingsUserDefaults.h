#pragma once

#include "OstrelPlatform/UserDefaults.h"

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>

class QSettings;

namespace Ostrel {

/// The settings in the user's configuration folder: texts and truth values in one file of QSettings, the bytes of each
/// key in a file of their own beside it. QSettings would escape megabytes of bytes and keep them in memory for good.
/// Nothing is read before it is asked for.
class QSettingsUserDefaults final : public UserDefaults {
public:
    /// More bytes than that do not come from us.
    static constexpr std::size_t MaxDataSize = 128U << 20;

    /// Below `$XDG_CONFIG_HOME/dev.ostrel.gui`, which is "~/.config/dev.ostrel.gui" where that is not set.
    QSettingsUserDefaults();
    explicit QSettingsUserDefaults(std::string folder);
    ~QSettingsUserDefaults() override;

    std::optional<std::string> data(std::string_view key) const override;
    std::optional<std::string> dataFile(std::string_view key) const override;
    bool setData(std::string_view key, std::string_view bytes) override;
    void setDataAside(std::string_view key) override;
    std::optional<std::string> string(std::string_view key) const override;
    void setString(std::string_view key, std::string_view value) override;
    std::optional<bool> boolean(std::string_view key) const override;
    void setBoolean(std::string_view key, bool value) override;
    std::optional<std::string> folder() const override { return folder_; }

private:
    QSettings& settings() const;
    std::string dataPath(std::string_view key) const;
    bool makeFolder() const;

    std::string folder_;
    mutable std::unique_ptr<QSettings> settings_;
    mutable std::mutex mutex_;
    /// Guarded by `mutex_`: bytes that could not be stored.
    std::map<std::string, std::string, std::less<>> unstored_;
};

} // namespace Ostrel
