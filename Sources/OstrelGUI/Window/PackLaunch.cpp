#include "OstrelGUI/Window/PackLaunch.h"

#include "OstrelCore/Files/Paths.h"
#include "OstrelGUI/WidgetLibrary.h"
#include "OstrelGUI/Window/QtText.h"
#include "OstrelGUI/Window/WindowDialogs.h"

#include <QString>
#include <QStringList>

#include <array>
#include <optional>

namespace Ostrel {

namespace {

struct Kind {
    const char* title;
    std::vector<std::string> PackWants::*wanted;
    bool PackPermissions::*allowed;
    /// Whether it is on until the user says otherwise.
    bool isSuggested;
};

constexpr std::array<Kind, 4> Kinds = {{
    {"Run scripts in a sandbox", &PackWants::scripts, &PackPermissions::scripts, true},
    {"Read from the web", &PackWants::web, &PackPermissions::web, true},
    {"Start programs", &PackWants::programs, &PackPermissions::programs, false},
    {"Read files outside its folder", &PackWants::files, &PackPermissions::files, false},
}};

/// A script is told by its place in the pack.
QStringList shownItems(const std::vector<std::string>& items, const std::string& root) {
    QStringList shown;
    for (const auto& item : items)
        shown << textOf(item.starts_with(root) ? item.substr(root.size()) : item);
    return shown;
}

} // namespace

QString packTitle(const std::string& root) {
    return textOf(lastPathComponent(root));
}

PackLaunch::PackLaunch(QWidget& window, UserDefaults& defaults, WidgetLibrary& library, WindowDialogs& dialogs)
    : window_(window)
    , choices_(defaults)
    , library_(library)
    , dialogs_(dialogs) { }

PackLaunch::~PackLaunch() = default;

void PackLaunch::launch(const std::string& path) {
    const auto root = PackChoices::rootOf(path);
    if (choices_.of(root).permissions || choices_.dialectOf(path) == Dialect::Base) {
        library_.launchWidget(path);
        return;
    }
    auto& waiting = waiting_[root];
    waiting.push_back(path);
    if (waiting.size() > 1)
        return;
    if (const auto wants = wantsOfPack(root); !wants.isEmpty())
        ask(root, wants);
    else
        answer(root, std::nullopt);
}

void PackLaunch::choose(const std::string& path, Dialect dialect) {
    const auto root = PackChoices::rootOf(path);
    auto choice = choices_.of(root);
    choice.dialect = dialect;
    choices_.set(root, choice);
    launch(path);
}

void PackLaunch::ask(const std::string& root, const PackWants& wants) {
    WindowDialogs::PermissionQuestion question;
    question.title = QStringLiteral("What may “%1” do?").arg(packTitle(root));
    question.text = QStringLiteral("Its skins ask for more than to draw. What you do not allow does not happen; the "
                                   "rest works. You can change this in Settings.");
    std::vector<Kind> asked;
    for (const auto& kind : Kinds) {
        const auto& items = wants.*kind.wanted;
        if (items.empty())
            continue;
        question.kinds.push_back({QString::fromUtf8(kind.title), shownItems(items, root), kind.isSuggested});
        asked.push_back(kind);
    }
    dialogs_.askPermissions(window_, question, [this, root, asked](const std::optional<std::vector<bool>>& answers) {
        std::optional<PackPermissions> permissions;
        if (answers) {
            permissions.emplace();
            for (std::size_t i = 0; i < std::min(asked.size(), answers->size()); ++i)
                (*permissions).*asked[i].allowed = (*answers)[i];
        }
        answer(root, permissions);
    });
}

void PackLaunch::answer(const std::string& root, std::optional<PackPermissions> permissions) {
    if (permissions) {
        auto choice = choices_.of(root);
        choice.permissions = permissions;
        choices_.set(root, choice);
    }
    const auto paths = std::move(waiting_[root]);
    waiting_.erase(root);
    for (const auto& path : paths)
        library_.launchWidget(path);
}

} // namespace Ostrel
