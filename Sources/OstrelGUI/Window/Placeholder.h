#pragma once

#include "OstrelGUI/Window/SymbolIcons.h"

#include <QWidget>

namespace Ostrel {

/// What stands where there is nothing yet: a picture, a title and what to do about it.
class Placeholder final : public QWidget {
public:
    Placeholder(Symbol symbol, const QString& title, const QString& text, QWidget* parent = nullptr);
};

} // namespace Ostrel
