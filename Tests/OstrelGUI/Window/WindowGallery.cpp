// For those who work on the main window: shows it alone, or takes a picture of each of its screens.
//
//     WindowGallery                          shows the window, with skins that are not there
//     WindowGallery FOLDER [PREVIEW.png...]  writes every screen, light and dark, at both scales that matter
#include "OstrelGUI/PackChoices.h"
#include "OstrelGUI/ScannerViewModel.h"
#include "OstrelGUI/Window/ContentView.h"
#include "OstrelGUI/Window/MediaPlayerMenuView.h"
#include "OstrelGUI/Window/WindowDialogs.h"
#include "OstrelPlatform/DesktopAppearance.h"
#include "OstrelPlatform/InMemoryUserDefaults.h"
#include "OstrelPlatform/Linux/Host/LinuxHostStatistics.h"
#include "OstrelPlatform/Linux/Time/QtMainQueue.h"
#include "Support/FakeWidgetLibrary.h"
#include "Support/TemporaryFolder.h"

#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QDragEnterEvent>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QMimeData>
#include <QPainter>

#include <filesystem>

namespace Ostrel {

namespace {

using Kind = SidebarSelection::Kind;

class Appearance final : public DesktopAppearance {
public:
    bool dark = false;
    std::optional<RGBColor> accentColor() override { return std::nullopt; }
    std::optional<bool> prefersDark() override { return dark; }
};

void settle(int milliseconds = 250) {
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
}

std::shared_ptr<const std::string> drawnPreview(const QString& text) {
    QImage image(320, 150, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setPen(Qt::white);
    QFont font = QApplication::font();
    font.setPixelSize(48);
    painter.setFont(font);
    painter.drawText(image.rect(), Qt::AlignCenter, text);
    painter.end();
    return pngOf(image);
}

std::vector<WidgetLibraryItem> exampleItems(const QStringList& previews) {
    std::vector<WidgetLibraryItem> items;
    for (const QString& file : previews) {
        WidgetLibraryItem item = libraryItem("Ostrel", QFileInfo(file).baseName().toStdString(), items.size() % 2 == 0);
        item.snapshotData = pngOf(QImage(file));
        items.push_back(std::move(item));
    }
    items.push_back(libraryItem("Starlight", "Agenda"));
    items.push_back(libraryItem("Starlight", "Weather", true));
    items.back().snapshotData = drawnPreview(QStringLiteral("21° ☀"));
    items.push_back(libraryItem("Starlight", "A widget with quite a long name of its own"));
    return items;
}

struct Gallery {
    TemporaryFolder folder;
    LinuxHostStatistics statistics;
    QtMainQueue queue{statistics};
    ScannerViewModel scans{queue};
    FakeWidgetLibrary library;
    InMemoryUserDefaults defaults;
    Appearance appearance;
    QString target;

    std::unique_ptr<ContentView> makeWindow() {
        return std::make_unique<ContentView>(ContentView::Dependencies{library, scans, defaults, &appearance, {}, {}});
    }

    void addScans() {
        PackChoices(defaults).set(
            "/home/ada/Skins/Starlight/", {.dialect = Dialect::Full, .permissions = PackPermissions{.web = true}});
        const std::string clock = folder.write(
            "Clock.ini", "[Rainmeter]\nUpdate=1000\n[T]\nMeasure=Time\n[M]\nMeter=String\nMeasureName=T\n");
        const std::string web = folder.write("Weather.ini",
            "[Rainmeter]\nUpdate=1000\n@Include=#@#missing.inc\n[W]\nMeasure=WebParser\nURL=https://"
            "x.org\n[P]\nMeasure=Plugin\n"
            "Plugin=SysInfo.dll\n[L]\nMeasure=Script\nScriptFile=C:\\a.lua\n[G]\nMeter=Roundline\nLeftMouseUpAction=!"
            "Zoom 2\n");
        const std::string bad = folder.write("Agenda.ini", "");
        // Too large to be read.
        const std::string large = folder.write("Photos.ini", "");
        std::filesystem::resize_file(large, std::uintmax_t{1} << 32);
        scans.scan(std::vector{clock, web, bad, large});
        settle(600);
    }

    void save(QWidget& widget, const QString& name) {
        settle();
        const QString mode = appearance.dark ? QStringLiteral("dark") : QStringLiteral("light");
        widget.grab().save(target + QStringLiteral("/%1-%2-%3x.png").arg(name, mode).arg(widget.devicePixelRatio()));
    }

    static void press(QWidget& window, int key) {
        QWidget* target = QApplication::focusWidget() ? QApplication::focusWidget() : &window;
        for (const QEvent::Type type : {QEvent::KeyPress, QEvent::KeyRelease}) {
            QKeyEvent event(type, key, {});
            QCoreApplication::sendEvent(target, &event);
        }
    }

    void saveDialog(ContentView& window, const QString& name) {
        settle();
        for (QDialog* dialog : window.findChildren<QDialog*>()) {
            if (!dialog->isVisible())
                continue;
            save(*dialog, name);
            dialog->reject();
        }
        settle();
    }

    void photograph(bool dark) {
        appearance.dark = dark;
        const auto window = makeWindow();
        window->show();
        window->setSidebarSelection(std::nullopt);
        save(*window, QStringLiteral("placeholder"));
        const std::pair<Kind, const char*> pages[] = {{Kind::widgetLibrary, "library"},
            {Kind::dllCompatibilityLayers, "layers"}, {Kind::mediaPlayer, "player"}, {Kind::settings, "settings"}};
        for (const auto& [kind, name] : pages) {
            window->setSidebarSelection(SidebarSelection{kind});
            save(*window, QString::fromUtf8(name));
        }
        int number = 0;
        for (const auto& item : std::vector(scans.items())) {
            window->setSidebarSelection(SidebarSelection::ofScan(item.id));
            save(*window, QStringLiteral("scan%1").arg(number++));
        }
        window->resize(720, 480);
        save(*window, QStringLiteral("scan-small"));
        window->resize(1400, 900);
        window->setSidebarSelection(SidebarSelection{Kind::widgetLibrary});
        save(*window, QStringLiteral("library-large"));
        window->resize(980, 680);
        const auto dialogs = makeWindowDialogs();
        dialogs->confirmDelete(*window, QStringLiteral("Remove Skin Pack?"),
            QStringLiteral(
                "This will permanently delete 3 widget(s) and the folder at /home/ada/Skins/Ostrel. This cannot "
                "be undone."),
            [](bool) {});
        saveDialog(*window, QStringLiteral("delete"));
        dialogs->ask(*window,
            {QStringLiteral("Custom Media Player"),
                QStringLiteral(
                    "Enter the exact application name (as it appears in /Applications).\nThe app must support "
                    "AppleScript media commands."),
                QStringLiteral("e.g. VLC"), {}},
            [](const auto&) {});
        saveDialog(*window, QStringLiteral("prompt"));
        dialogs->askPermissions(*window,
            {QStringLiteral("What may “Starlight” do?"),
                QStringLiteral("Its skins ask for more than to draw. What you do not allow does not happen; the rest "
                               "works. You can change this in Settings."),
                {{QStringLiteral("Run scripts in a sandbox"), {QStringLiteral("@Resources/Weather.lua")}, true},
                    {QStringLiteral("Read from the web"),
                        {QStringLiteral("api.example.org"), QStringLiteral("img.example.org")}, false}}},
            [](const auto&) {});
        saveDialog(*window, QStringLiteral("permissions"));
        dialogs->choosePaths(*window, [](const auto&) {});
        saveDialog(*window, QStringLiteral("open"));
        appearance.dark = !dark;
        window->setSidebarSelection(SidebarSelection::ofScan(scans.items().back().id));
        QEvent activation(QEvent::ActivationChange);
        QCoreApplication::sendEvent(window.get(), &activation);
        save(*window, QStringLiteral("switched"));
        appearance.dark = dark;
        QCoreApplication::sendEvent(window.get(), &activation);
        window->setSidebarSelection(SidebarSelection{Kind::widgetLibrary});
        window->activateWindow();
        settle();
        for (int i = 0; i < 5; ++i)
            press(*window, i < 4 ? Qt::Key_Tab : Qt::Key_Right);
        save(*window, QStringLiteral("focus"));
        window->setSidebarSelection(SidebarSelection{Kind::mediaPlayer});
        for (int i = 0; i < 6; ++i)
            press(*window, Qt::Key_Tab);
        save(*window, QStringLiteral("focus-player"));
        QMimeData dragged;
        dragged.setUrls({QUrl::fromLocalFile(QDir::tempPath())});
        QDragEnterEvent enter({5, 5}, Qt::CopyAction, &dragged, Qt::LeftButton, {});
        QCoreApplication::sendEvent(window.get(), &enter);
        save(*window, QStringLiteral("drop"));
        QDragLeaveEvent leave;
        QCoreApplication::sendEvent(window.get(), &leave);
        window->setSidebarSelection(SidebarSelection{Kind::widgetLibrary});
        const auto items = std::exchange(library.items, {});
        library.setItems({});
        save(*window, QStringLiteral("library-empty"));
        library.setItems(items);
    }
};

/// "Inter,11"
void setFont(const QString& description) {
    QFont font;
    if (font.fromString(description))
        QApplication::setFont(font);
}

int run(int count, char** values) {
    QApplication application(count, values);
    if (!qEnvironmentVariableIsEmpty("GALLERY_FONT"))
        setFont(qEnvironmentVariable("GALLERY_FONT"));
    const QStringList arguments = QApplication::arguments().mid(1);
    Gallery gallery;
    gallery.library.items = exampleItems(arguments.mid(1));
    gallery.defaults.setString(MediaPlayerMenuView::TargetKey, "Spotify");
    gallery.addScans();
    if (arguments.isEmpty()) {
        const auto window = gallery.makeWindow();
        window->show();
        return QApplication::exec();
    }
    gallery.target = arguments.front();
    gallery.photograph(false);
    gallery.photograph(true);
    return 0;
}

} // namespace

} // namespace Ostrel

int main(int count, char** values) {
    return Ostrel::run(count, values);
}
