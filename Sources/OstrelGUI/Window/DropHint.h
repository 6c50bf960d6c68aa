#pragma once

#include <QWidget>

#include <string>
#include <vector>

class QMimeData;

namespace Ostrel {

/// Lies over the window while something is dragged that it would open.
class DropHint final : public QWidget {
public:
    explicit DropHint(QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
};

/// The files and folders of this machine among what is dragged.
std::vector<std::string> droppedPaths(const QMimeData& data);

} // namespace Ostrel
