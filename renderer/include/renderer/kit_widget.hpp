#pragma once

#include "uikit/window.hpp"

#include <QPointF>
#include <QTimer>
#include <QWidget>

#include <memory>

namespace renderer {

// Shows a kit window in a Qt window: paints its tree, sized as its environment, repaints while
// anything moves, and gives mouse clicks, the wheel and typed keys back to the kit. Install the
// Qt text measurer first, so the kit lays text out as it is drawn.
class KitWidget final : public QWidget {
public:
    explicit KitWidget(std::shared_ptr<uikit::Window> window, QWidget* parent = nullptr);

    uikit::Window& window() const { return *window_; }
    // Asks for a repaint; the host calls it after it changed the tree outside an event.
    void refresh() { update(); }

    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void tick();

    std::shared_ptr<uikit::Window> window_;
    QTimer frames_;
    QPointF pressedAt_;
    bool pressed_ = false;
    int idleTicks_ = 0;
};

} // namespace renderer
