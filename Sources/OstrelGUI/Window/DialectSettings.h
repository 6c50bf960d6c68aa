#pragma once

#include "OstrelGUI/PackChoices.h"

#include <QWidget>

#include <array>

class QVBoxLayout;

namespace Ostrel {

class Card;
class OptionRow;

/// The part of the settings that is about dialects: what new packs get, and what the user has said of packs, to be
/// taken back.
class DialectSettings final : public QWidget {
public:
    /// The settings outlive the view.
    explicit DialectSettings(UserDefaults& defaults);

    /// Shows what holds now.
    void refresh();

private:
    void addChoice(PackChoices::NewPacks choice, const QString& title, const QString& subtitle, QVBoxLayout& column);
    QWidget* makePackRow(const std::string& root, const PackChoice& choice);

    PackChoices choices_;
    std::array<OptionRow*, 3> newPacks_ = {};
    Card* packs_ = nullptr;
    QWidget* rows_ = nullptr;
};

} // namespace Ostrel
