#include "OstrelGUI/Window/RawOutputView.h"

#include "OstrelGUI/Window/QtText.h"
#include "OstrelGUI/Window/SegmentedPicker.h"
#include "OstrelGUI/Window/WindowStyle.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace Ostrel {

namespace {

constexpr int OutputHeight = 280;

} // namespace

RawOutputView::RawOutputView()
    : Card(QStringLiteral("Raw Output"))
    , output_(new QPlainTextEdit) {
    auto* row = new QHBoxLayout;
    auto* picker = new SegmentedPicker({QStringLiteral("Text"), QStringLiteral("JSON")});
    picker->setAccessibleName(QStringLiteral("Raw Output"));
    picker->onPick = [this](int index) { setOutputFormat(static_cast<OutputFormat>(index)); };
    row->addWidget(picker);
    row->addStretch();
    auto* copy = new QPushButton(QStringLiteral("Copy"));
    setButtonKind(*copy, ButtonKind::normal);
    connect(copy, &QPushButton::clicked, this, [this] { copyToPasteboard(); });
    row->addWidget(copy);
    column().addLayout(row);
    output_->setReadOnly(true);
    output_->setLineWrapMode(QPlainTextEdit::NoWrap);
    output_->setFont(Type::monospace(font()));
    output_->setFixedHeight(OutputHeight);
    output_->setTabChangesFocus(true);
    output_->setAccessibleName(QStringLiteral("Raw Output"));
    column().addWidget(output_);
}

void RawOutputView::setTexts(const std::string& text, const std::string& json) {
    text_ = textOf(text);
    json_ = textOf(json);
    showText();
}

void RawOutputView::setOutputFormat(OutputFormat format) {
    format_ = format;
    showText();
}

const QString& RawOutputView::currentOutputText(const QString& text, const QString& json) const {
    return format_ == OutputFormat::text ? text : json;
}

void RawOutputView::showText() {
    output_->setPlainText(currentOutputText(text_, json_));
}

void RawOutputView::copyToPasteboard() {
    QGuiApplication::clipboard()->setText(currentOutputText(text_, json_));
}

} // namespace Ostrel
