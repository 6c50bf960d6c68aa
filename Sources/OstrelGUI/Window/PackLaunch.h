#pragma once

#include "OstrelGUI/PackChoices.h"

#include <map>
#include <memory>
#include <string>
#include <vector>

class QString;
class QWidget;

namespace Ostrel {

class WidgetLibrary;
class WindowDialogs;

/// Opens widgets from the main window. A pack that is to run in the full dialect for the first time and wants more than
/// to draw is asked about first, once for all of its skins; without an answer it runs without what it wants.
class PackLaunch {
public:
    /// All of them outlive this.
    PackLaunch(QWidget& window, UserDefaults& defaults, WidgetLibrary& library, WindowDialogs& dialogs);
    ~PackLaunch();

    void launch(const std::string& path);
    /// The user wants the skin's pack to run in this dialect; its widget is opened.
    void choose(const std::string& path, Dialect dialect);

    const PackChoices& choices() const { return choices_; }

private:
    void ask(const std::string& root, const PackWants& wants);
    void answer(const std::string& root, std::optional<PackPermissions> permissions);

    QWidget& window_;
    PackChoices choices_;
    WidgetLibrary& library_;
    WindowDialogs& dialogs_;
    /// Skins that wait for the answer about their pack, by its root.
    std::map<std::string, std::vector<std::string>> waiting_;
};

/// "Demo" for a pack's root folder.
QString packTitle(const std::string& root);

} // namespace Ostrel
