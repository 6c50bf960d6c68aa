#pragma once

#include "OstrelGUI/ScannerViewModel.h"
#include "OstrelGUI/Window/ContentView.h"
#include "OstrelGUI/Window/SidebarView.h"
#include "OstrelGUI/Window/WindowDialogs.h"
#include "OstrelPlatform/DesktopAppearance.h"
#include "OstrelPlatform/InMemoryUserDefaults.h"
#include "OstrelPlatform/Linux/Host/LinuxHostStatistics.h"
#include "OstrelPlatform/Linux/Time/QtMainQueue.h"
#include "Support/EventLoop.h"
#include "Support/FakeWidgetLibrary.h"
#include "Support/TemporaryFolder.h"

#include <QAbstractButton>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Ostrel {

/// Questions that a test answers: at once with what it has prepared, or later by hand.
class FakeDialogs final : public WindowDialogs {
public:
    std::vector<std::string> asked;
    std::function<void(std::optional<std::vector<std::string>>)> openPanel;
    bool deletes = false;
    std::optional<QString> answer;
    std::optional<Prompt> lastPrompt;
    std::optional<PermissionQuestion> lastPermissions;
    std::optional<std::vector<bool>> permissions;

    void choosePaths(QWidget&, std::function<void(std::optional<std::vector<std::string>>)> done) override {
        asked.push_back("open");
        openPanel = std::move(done);
    }
    void confirmDelete(QWidget&, const QString& title, const QString& text, std::function<void(bool)> done) override {
        asked.push_back((title + "|" + text).toStdString());
        done(deletes);
    }
    void alert(QWidget&, const QString& title, const QString& text) override {
        asked.push_back((title + "|" + text).toStdString());
    }
    void askPermissions(QWidget&, const PermissionQuestion& question,
        std::function<void(std::optional<std::vector<bool>>)> done) override {
        lastPermissions = question;
        done(permissions);
    }
    void ask(QWidget&, const Prompt& prompt, std::function<void(std::optional<QString>)> done) override {
        lastPrompt = prompt;
        done(answer);
    }
};

class FakeAppearance final : public DesktopAppearance {
public:
    std::optional<bool> dark;
    std::optional<RGBColor> accent;
    std::optional<RGBColor> accentColor() override { return accent; }
    std::optional<bool> prefersDark() override { return dark; }
};

/// The widgets of a class of ours, of which Qt knows nothing.
template <typename Widget> std::vector<Widget*> childrenOf(const QWidget& window) {
    std::vector<Widget*> found;
    for (auto* child : window.findChildren<QWidget*>()) {
        if (auto* widget = dynamic_cast<Widget*>(child))
            found.push_back(widget);
    }
    return found;
}
template <typename Widget> Widget* childOf(const QWidget& window) {
    const auto found = childrenOf<Widget>(window);
    return found.empty() ? nullptr : found.front();
}

/// The real window over real scans and a library that notes what it is asked.
class WindowTest : public testing::Test {
protected:
    using Kind = SidebarSelection::Kind;
    using Overrides = std::vector<std::optional<std::string>>;

    TemporaryFolder folder;
    LinuxHostStatistics statistics;
    QtMainQueue queue{statistics};
    ScannerViewModel scans{queue};
    FakeWidgetLibrary library;
    InMemoryUserDefaults defaults;
    FakeAppearance appearance;
    Overrides overrides;
    FakeDialogs* dialogs = nullptr;
    std::unique_ptr<ContentView> window;

    void SetUp() override {
        auto fake = std::make_unique<FakeDialogs>();
        dialogs = fake.get();
        const auto note = [this](std::optional<std::string> player) { overrides.push_back(std::move(player)); };
        window = std::make_unique<ContentView>(
            ContentView::Dependencies{library, scans, defaults, &appearance, note, std::move(fake)});
        window->show();
        window->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window.get()));
    }

    std::string skin(const std::string& name) { return folder.write(name, "[Rainmeter]\nUpdate=1000\n"); }

    void open(const std::vector<std::string>& paths) {
        QTest::keyClick(window.get(), Qt::Key_O, Qt::ControlModifier);
        ASSERT_TRUE(dialogs->openPanel);
        std::exchange(dialogs->openPanel, nullptr)(paths);
    }
    /// The same, until all of it is listed and scanned.
    void openAndScan(const std::vector<std::string>& paths, std::size_t count) {
        open(paths);
        ASSERT_TRUE(runLoopUntil([&] { return scans.items().size() == count && !isScanning(); }));
    }
    bool isScanning() const {
        return std::any_of(scans.items().begin(), scans.items().end(),
            [](const auto& item) { return std::holds_alternative<ScannerViewModel::Scanning>(item.state); });
    }

    SidebarView& sidebar() { return *childOf<SidebarView>(*window); }
    void clickRow(const SidebarSelection& selection) {
        auto& model = static_cast<SidebarModel&>(*sidebar().model());
        const QRect row = sidebar().visualRect(model.index(model.row(selection)));
        QTest::mouseClick(sidebar().viewport(), Qt::LeftButton, {}, row.center());
    }
    void choose(Kind kind) { clickRow(SidebarSelection{kind}); }

    /// By its text, or where it paints itself by its name; null when none shows.
    QAbstractButton* button(const QString& title) {
        for (auto* candidate : window->findChildren<QAbstractButton*>()) {
            if (candidate->text() == title && candidate->isVisible())
                return candidate;
        }
        return nullptr;
    }
    void click(const QString& title) {
        auto* found = button(title);
        ASSERT_NE(found, nullptr) << title.toStdString();
        QTest::mouseClick(found, Qt::LeftButton);
    }
    bool showsText(const QString& text);
};

} // namespace Ostrel
