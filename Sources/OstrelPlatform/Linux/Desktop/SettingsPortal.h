#pragma once

#include "OstrelPlatform/DesktopAppearance.h"

#include <QDBusConnection>
#include <QDBusVariant>
#include <QObject>

#include <chrono>
#include <optional>
#include <string>

class QDeadlineTimer;

namespace Ostrel {

/// What the desktop tells about its looks over the session bus: org.freedesktop.portal.Settings, namespaces
/// org.freedesktop.appearance and, for the font, org.gnome.desktop.interface. Asked once when it is made, for a bounded
/// time; an answer that comes later, a portal that starts later and every change are followed by the event loop.
/// Without a bus nothing is known. One at a time.
class SettingsPortal final : public QObject, public DesktopAppearance {
    Q_OBJECT

public:
    static constexpr std::chrono::milliseconds Patience{250};

    explicit SettingsPortal(const std::string& busAddress, std::chrono::milliseconds patience = Patience);
    ~SettingsPortal() override;

    std::optional<RGBColor> accentColor() override { return accent_; }
    std::optional<bool> prefersDark() override { return prefersDark_; }
    std::optional<double> interfaceFontSize() override { return fontSize_; }

private slots:
    void settingChanged(const QString& space, const QString& key, const QDBusVariant& value);

private:
    /// False when the answer did not come in time.
    bool ask(const QString& key, const QDeadlineTimer& deadline);
    void askLater();
    void askLater(const QString& method, const QString& key);
    void take(const QString& key, QVariant value);

    QDBusConnection bus_;
    std::optional<RGBColor> accent_;
    std::optional<bool> prefersDark_;
    std::optional<double> fontSize_;
};

} // namespace Ostrel
