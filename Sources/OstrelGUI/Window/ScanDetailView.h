#pragma once

#include "OstrelGUI/PackChoices.h"
#include "OstrelGUI/ScannerViewModel.h"
#include "OstrelGUI/Window/Page.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

class QLabel;
class QPushButton;

namespace Ostrel {

class Card;
class ElidedLabel;
class Pill;
class RawOutputView;
class RowList;

/// What is known of one scan: its state, and when it has ended its report.
class ScanDetailView final : public Page {
public:
    ScanDetailView();

    /// In the dialect that the skin's pack runs in.
    void showItem(const ScannerViewModel::ScanItem& item, Dialect dialect);
    /// Whether the skin's widget is open; picks the button.
    void setRunning(bool isRunning);
    const std::string& path() const { return path_; }

    /// "Render Widget" and "Stop Widget", with the skin's path.
    std::function<void(const std::string& path)> onLaunch;
    std::function<void(const std::string& path)> onStop;
    /// The user wants the skin's pack to run in this dialect.
    std::function<void(const std::string& path, Dialect dialect)> onDialect;

private:
    void buildHeader();
    void buildSummary();
    void buildDialect();
    void showDialect(const ScannerViewModel::ScanSuccess& success);
    void showReport(const CompatReport& report);
    void showSuccess(const ScannerViewModel::ScanSuccess& success);
    void showFailure(const ScannerViewModel::ScanFailure& failure);
    void showDiagnostics(const std::vector<Diagnostic>& diagnostics);

    std::optional<ScannerViewModel::ScanID> id_;
    std::string path_;
    ScannerViewModel::ScanState state_;
    Dialect shownDialect_ = Dialect::Base;
    bool isRunning_ = false;
    QLabel* name_ = nullptr;
    ElidedLabel* pathLabel_ = nullptr;
    QWidget* scanning_ = nullptr;
    Card* error_ = nullptr;
    QLabel* errorMessage_ = nullptr;
    Card* summary_ = nullptr;
    Pill* verdict_ = nullptr;
    QLabel* incompatible_ = nullptr;
    QLabel* warnings_ = nullptr;
    QPushButton* toggle_ = nullptr;
    Card* dialect_ = nullptr;
    QLabel* dialectText_ = nullptr;
    QPushButton* dialectButton_ = nullptr;
    Card* findings_ = nullptr;
    RowList* findingRows_ = nullptr;
    Card* diagnostics_ = nullptr;
    RowList* diagnosticRows_ = nullptr;
    RawOutputView* rawOutput_ = nullptr;
};

} // namespace Ostrel
