#pragma once

#include <QStringList>
#include <QWidget>

#include <functional>

class QButtonGroup;

namespace Ostrel {

/// A few words of which one holds, side by side in one control.
class SegmentedPicker final : public QWidget {
public:
    /// The first holds.
    explicit SegmentedPicker(const QStringList& titles, QWidget* parent = nullptr);

    std::function<void(int index)> onPick;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QButtonGroup* group_;
};

} // namespace Ostrel
