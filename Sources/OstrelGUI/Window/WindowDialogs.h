#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class QWidget;

namespace Ostrel {

/// The questions that the main window asks in windows of their own. Each answers once, later, when the user has; none
/// waits. `window` is what the question hangs on and is modal to; it outlives the question.
class WindowDialogs {
public:
    virtual ~WindowDialogs() = default;

    /// Files and folders, as many as the user likes; absent when cancelled.
    virtual void choosePaths(QWidget& window, std::function<void(std::optional<std::vector<std::string>>)> done) = 0;
    /// Whether the user wants what cannot be undone.
    virtual void confirmDelete(
        QWidget& window, const QString& title, const QString& text, std::function<void(bool)> done)
        = 0;
    virtual void alert(QWidget& window, const QString& title, const QString& text) = 0;

    struct Prompt {
        QString title;
        QString text;
        QString placeholder;
        QString value;
    };
    /// What a pack may be allowed to do.
    struct PermissionQuestion {
        QString title;
        QString text;
        /// One for each kind that the pack wants.
        struct Kind {
            QString title;
            /// What it wants of this kind, a line each.
            QStringList items;
            /// Whether it is on until the user says otherwise.
            bool isSuggested = true;
        };
        std::vector<Kind> kinds;
    };
    /// For each kind whether it is allowed; absent when the user decides later.
    virtual void askPermissions(
        QWidget& window, const PermissionQuestion& question, std::function<void(std::optional<std::vector<bool>>)> done)
        = 0;

    /// A line of text as it was typed; absent when cancelled.
    virtual void ask(QWidget& window, const Prompt& prompt, std::function<void(std::optional<QString>)> done) = 0;
};

/// The ones that people see.
std::unique_ptr<WindowDialogs> makeWindowDialogs();

} // namespace Ostrel
