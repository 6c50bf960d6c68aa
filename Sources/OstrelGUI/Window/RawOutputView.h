#pragma once

#include "OstrelGUI/Window/Controls.h"

#include <string>

class QPlainTextEdit;
class QPushButton;

namespace Ostrel {

/// In which form a report is read.
enum class OutputFormat { text, json };

/// The report as it is written to files, to be read and copied. What was chosen holds for all scans.
class RawOutputView final : public Card {
public:
    RawOutputView();

    void setTexts(const std::string& text, const std::string& json);
    OutputFormat outputFormat() const { return format_; }
    void setOutputFormat(OutputFormat format);

private:
    const QString& currentOutputText(const QString& text, const QString& json) const;
    void copyToPasteboard();
    void showText();

    OutputFormat format_ = OutputFormat::text;
    QString text_;
    QString json_;
    QPlainTextEdit* output_;
};

} // namespace Ostrel
