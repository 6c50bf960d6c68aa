#include "OstrelGUI/Window/PaintedParts.h"

#include <QAccessibleWidget>
#include <QPointer>
#include <QWidget>

#include <unordered_map>

namespace Ostrel {

namespace {

PaintedParts* partsOf(QObject* object) {
    return dynamic_cast<PaintedParts*>(object);
}

/// One part. It outlives neither the widget nor, in what it answers, the part: a number that is none any more is
/// invalid.
class PartInterface final : public QAccessibleInterface, public QAccessibleActionInterface {
public:
    PartInterface(QWidget* widget, int index)
        : widget_(widget)
        , index_(index) { }

    bool isValid() const override { return widget_ && index_ < partsOf(widget_)->partCount(); }
    QObject* object() const override { return nullptr; }
    QWindow* window() const override { return widget_ ? widget_->window()->windowHandle() : nullptr; }
    QAccessibleInterface* parent() const override { return QAccessible::queryAccessibleInterface(widget_); }
    QAccessibleInterface* child(int) const override { return nullptr; }
    QAccessibleInterface* childAt(int, int) const override { return nullptr; }
    int childCount() const override { return 0; }
    int indexOfChild(const QAccessibleInterface*) const override { return -1; }
    void setText(QAccessible::Text, const QString&) override { }

    QString text(QAccessible::Text kind) const override {
        const PaintedParts::Part part = this->part();
        if (kind == QAccessible::Name)
            return part.name;
        return kind == QAccessible::Description ? part.description : QString();
    }
    QRect rect() const override { return widget_ ? part().rect.translated(widget_->mapToGlobal(QPoint())) : QRect(); }
    QAccessible::Role role() const override { return part().role; }
    QAccessible::State state() const override {
        QAccessible::State state;
        state.invalid = !isValid();
        state.focusable = role() == QAccessible::Button;
        state.focused = part().isFocused && widget_->hasFocus();
        return state;
    }
    void* interface_cast(QAccessible::InterfaceType type) override {
        const bool acts = type == QAccessible::ActionInterface && role() == QAccessible::Button;
        return acts ? static_cast<QAccessibleActionInterface*>(this) : nullptr;
    }
    QStringList actionNames() const override { return {pressAction()}; }
    void doAction(const QString& name) override {
        if (isValid() && name == pressAction())
            partsOf(widget_)->pressPart(index_);
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

private:
    PaintedParts::Part part() const { return isValid() ? partsOf(widget_)->part(index_) : PaintedParts::Part(); }

    QPointer<QWidget> widget_;
    int index_;
};

class PartsInterface final : public QAccessibleWidget {
public:
    explicit PartsInterface(QWidget* widget)
        : QAccessibleWidget(widget, partsOf(widget)->partsRole()) { }
    ~PartsInterface() override {
        for (const auto& [index, id] : ids_)
            QAccessible::deleteAccessibleInterface(id);
    }

    int childCount() const override { return parts() ? parts()->partCount() : 0; }
    QAccessibleInterface* child(int index) const override {
        if (index < 0 || index >= childCount())
            return nullptr;
        const auto found = ids_.find(index);
        if (found != ids_.end())
            return QAccessible::accessibleInterface(found->second);
        auto* made = new PartInterface(widget(), index);
        ids_.emplace(index, QAccessible::registerAccessibleInterface(made));
        return made;
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        return parts() ? child(parts()->partAt(widget()->mapFromGlobal(QPoint(x, y)))) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* wanted) const override {
        for (const auto& [index, id] : ids_) {
            if (QAccessible::accessibleInterface(id) == wanted)
                return index;
        }
        return -1;
    }
    QAccessibleInterface* focusChild() const override {
        for (int i = 0; i < childCount() && widget()->hasFocus(); ++i) {
            if (parts()->part(i).isFocused)
                return child(i);
        }
        return nullptr;
    }

private:
    PaintedParts* parts() const { return partsOf(object()); }

    mutable std::unordered_map<int, QAccessible::Id> ids_;
};

QAccessibleInterface* makeInterface(const QString&, QObject* object) {
    if (!partsOf(object) || !object->isWidgetType())
        return nullptr;
    return new PartsInterface(static_cast<QWidget*>(object));
}

} // namespace

void installPaintedParts() {
    static const bool installed = [] {
        QAccessible::installFactory(makeInterface);
        return true;
    }();
    static_cast<void>(installed);
}

} // namespace Ostrel
