#pragma once

#include <QString>

class QPushButton;
class QWidget;

namespace Ostrel {

struct Theme;

/// What a push button looks like.
enum class ButtonKind { normal, suggested, destructive, quiet };

/// The look of the standard controls, as one style sheet for a window.
QString windowStyleSheet(const Theme& theme);
void setButtonKind(QPushButton& button, ButtonKind kind);

} // namespace Ostrel
