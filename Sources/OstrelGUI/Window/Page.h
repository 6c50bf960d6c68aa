#pragma once

#include <QScrollArea>

class QVBoxLayout;

namespace Ostrel {

/// A page that scrolls: a title, a sentence about it, and a column of what belongs to it. In a wide window the column
/// keeps a width that reads well, unless it is told to fill.
class Page : public QScrollArea {
public:
    /// An empty subtitle is left out.
    explicit Page(const QString& title, const QString& subtitle = {}, QWidget* parent = nullptr);

    QVBoxLayout& column() { return *column_; }
    void setFillsWidth(bool fills);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void adjustMargins();

    QVBoxLayout* column_;
    bool fillsWidth_ = false;
};

} // namespace Ostrel
