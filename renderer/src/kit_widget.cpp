#include "renderer/kit_widget.hpp"

#include "renderer/input.hpp"
#include "renderer/motion.hpp"
#include "renderer/view_painter.hpp"
#include "uikit/animation.hpp"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <cmath>

namespace renderer {

namespace {
constexpr int frameMilliseconds = 16;
// Changes made outside input and animations (the main queue's work) show within this many frames.
constexpr int framesBetweenRefreshes = 15;
// A press that moved further than this is a drag, not a click.
constexpr double clickSlop = 8;
// Points scrolled for one notch of a wheel (120 eighths of a degree).
constexpr double pointsPerNotch = 40;

uikit::Point toPoint(const QPointF& point) { return {point.x(), point.y()}; }
} // namespace

KitWidget::KitWidget(std::shared_ptr<uikit::Window> window, QWidget* parent)
    : QWidget(parent), window_(std::move(window)) {
    if (!window_) window_ = uikit::make<uikit::Window>();
    setFocusPolicy(Qt::StrongFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    const uikit::Size size = window_->environment().size;
    resize(static_cast<int>(std::ceil(size.width)), static_cast<int>(std::ceil(size.height)));
    connect(&frames_, &QTimer::timeout, this, [this] { tick(); });
    frames_.start(frameMilliseconds);
}

QSize KitWidget::sizeHint() const {
    const uikit::Size size = window_->environment().size;
    return {static_cast<int>(std::ceil(size.width)), static_cast<int>(std::ceil(size.height))};
}

void KitWidget::tick() {
    // The window follows its environment: a screen switched to tablet size grows the widget.
    if (const QSize wanted = sizeHint(); wanted != size() && !isMaximized() && !isFullScreen()) resize(wanted);
    if (isInMotion(*window_, uikit::Animation::now()) || ++idleTicks_ >= framesBetweenRefreshes) {
        idleTicks_ = 0;
        update();
    }
}

void KitWidget::paintEvent(QPaintEvent*) {
    window_->layoutTree();
    QPainter painter(this);
    painter.fillRect(rect(), Qt::white);
    ViewPainter(painter).paint(*window_);
}

void KitWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton) return;
    pressed_ = true;
    pressedAt_ = event->position();
    setFocus(Qt::MouseFocusReason);
}

void KitWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !pressed_) return;
    pressed_ = false;
    const QPointF moved = event->position() - pressedAt_;
    if (std::hypot(moved.x(), moved.y()) > clickSlop) return;
    window_->layoutTree();
    clickAt(*window_, toPoint(event->position()));
    update();
}

void KitWidget::wheelEvent(QWheelEvent* event) {
    // Touchpads give pixels; wheels give notches. Turning the wheel towards the user moves the
    // content up, which is a larger offset.
    const QPoint pixels = event->pixelDelta();
    const QPointF delta = !pixels.isNull() ? QPointF(pixels) : QPointF(event->angleDelta()) / 120.0 * pointsPerNotch;
    window_->layoutTree();
    if (scrollAt(*window_, toPoint(event->position()), -delta.x(), -delta.y())) {
        event->accept();
        update();
    } else {
        event->ignore();
    }
}

void KitWidget::keyPressEvent(QKeyEvent* event) {
    if (typeKey(*window_, event->key(), event->text())) {
        event->accept();
        update();
    } else {
        QWidget::keyPressEvent(event);
    }
}

} // namespace renderer
