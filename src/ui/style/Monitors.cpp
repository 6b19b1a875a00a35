#include "ui/style/Monitors.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>

namespace tolvex {

namespace {

enum Metric {
    VirtualLeft = 76,
    VirtualTop = 77,
    VirtualWidth = 78,
    VirtualHeight = 79,
    MonitorsOnDesktop = 80
};

// Cells of the scan over the virtual screen: a monitor without the middle of any cell is missed.
constexpr int CellWidth = 640;
constexpr int CellHeight = 480;

class ScreenSystem : public MonitorSystem {
public:
    int metric(int number) const override {
        const QScreen* primary = QGuiApplication::primaryScreen();
        const QRect desktop = primary ? primary->virtualGeometry() : QRect();
        switch (number) {
        case VirtualLeft:
            return desktop.left();
        case VirtualTop:
            return desktop.top();
        case VirtualWidth:
            return desktop.width();
        case VirtualHeight:
            return desktop.height();
        case MonitorsOnDesktop:
            return static_cast<int>(QGuiApplication::screens().size());
        default:
            return 0;
        }
    }

    qint32 monitorFromRect(const QRect& rect, bool nearest) const override {
        const QList<QScreen*> screens = QGuiApplication::screens();
        qint32 best = 0;
        qint64 bestArea = 0;
        qint64 bestDistance = -1;
        for (qsizetype i = 0; i < screens.size(); ++i) {
            const QRect whole = screens[i]->geometry();
            const QRect common = whole.intersected(rect);
            const qint64 area = qint64(std::max(0, common.width())) * std::max(0, common.height());
            if (area > bestArea) {
                best = static_cast<qint32>(i + 1);
                bestArea = area;
            } else if (nearest && bestArea == 0) {
                const qint64 distance = (whole.center() - rect.center()).manhattanLength();
                if (bestDistance < 0 || distance < bestDistance) {
                    best = static_cast<qint32>(i + 1);
                    bestDistance = distance;
                }
            }
        }
        return best;
    }

    std::optional<Areas> areas(qint32 handle) const override {
        const QList<QScreen*> screens = QGuiApplication::screens();
        if (handle < 1 || handle > screens.size())
            return std::nullopt;
        return Areas{screens[handle - 1]->geometry(), screens[handle - 1]->availableGeometry()};
    }

    QRect screen() const override {
        const QScreen* primary = QGuiApplication::primaryScreen();
        return primary ? primary->geometry() : QRect(0, 0, 800, 600);
    }
};

// Edges as the suite counts them: right and bottom are the first pixel outside.
clsMonitor fill(qint32 handle, const QRect& whole, const QRect& work) {
    clsMonitor monitor;
    monitor.Handle = handle;
    monitor.Left = whole.left();
    monitor.Top = whole.top();
    monitor.Right = whole.left() + whole.width();
    monitor.Bottom = whole.top() + whole.height();
    monitor.Width = monitor.Right - monitor.Left;
    monitor.Height = monitor.Bottom - monitor.Top;
    monitor.WorkLeft = work.left();
    monitor.WorkTop = work.top();
    monitor.WorkRight = work.left() + work.width();
    monitor.WorkBottom = work.top() + work.height();
    monitor.WorkWidth = monitor.WorkRight - monitor.WorkLeft;
    monitor.WorkHeight = monitor.WorkBottom - monitor.WorkTop;
    return monitor;
}

} // namespace

std::unique_ptr<MonitorSystem> RealMonitors() {
    return std::make_unique<ScreenSystem>();
}

clsMonitors::clsMonitors(std::unique_ptr<MonitorSystem> system)
    : system_(std::move(system)) {
    Refresh();
}

clsMonitors::~clsMonitors() = default;

int clsMonitors::GetMetric(int index, int fallback) const {
    return system_->metric(MonitorsOnDesktop) == 0 ? fallback : system_->metric(index);
}

int clsMonitors::DesktopLeft() const {
    return GetMetric(VirtualLeft, 0);
}

int clsMonitors::DesktopTop() const {
    return GetMetric(VirtualTop, 0);
}

int clsMonitors::DesktopWidth() const {
    return GetMetric(VirtualWidth, system_->screen().width());
}

int clsMonitors::DesktopHeight() const {
    return GetMetric(VirtualHeight, system_->screen().height());
}

qint32 clsMonitors::fromRect(const QRect& rect, MonitorDefault flags) const {
    const qint32 handle = system_->monitorFromRect(rect, flags == MonitorDefault::Nearest);
    return handle == 0 && flags == MonitorDefault::Primary ? system_->monitorFromRect(system_->screen(), true)
                                                           : handle;
}

qint32 clsMonitors::GetMonitorFromWindow(const QWidget* window, MonitorDefault flags) const {
    return fromRect(window->window()->frameGeometry(), flags);
}

qint32 clsMonitors::GetMonitorFromXYPoint(int x, int y, MonitorDefault flags) const {
    return fromRect(QRect(x, y, 1, 1), flags);
}

void clsMonitors::Refresh() {
    monitors_.clear();
    if (system_->metric(MonitorsOnDesktop) == 0) {
        monitors_.push_back(fill(0, QRect(QPoint(0, 0), system_->screen().size()),
                                 QRect(QPoint(0, 0), system_->screen().size())));
        return;
    }
    // The scan starts at the virtual screen's origin and covers its size, including negative origins.
    const int right = DesktopLeft() + DesktopWidth();
    const int bottom = DesktopTop() + DesktopHeight();
    for (int y = DesktopTop(); y < bottom; y += CellHeight) {
        for (int x = DesktopLeft(); x < right; x += CellWidth) {
            const qint32 handle =
                GetMonitorFromXYPoint(x + CellWidth / 2, y + CellHeight / 2, MonitorDefault::Null);
            const bool known = std::any_of(monitors_.begin(), monitors_.end(),
                                           [handle](const clsMonitor& m) { return m.Handle == handle; });
            if (handle == 0 || known)
                continue;
            if (const auto areas = system_->areas(handle))
                monitors_.push_back(fill(handle, areas->whole, areas->work));
        }
    }
}

std::optional<clsMonitor> clsMonitors::Monitor(qint16 index) const {
    if (index < 1 || index > Count())
        return std::nullopt;
    return monitors_[static_cast<std::size_t>(index - 1)];
}

void clsMonitors::CenterFormOnMonitor(QWidget* form, const QWidget* owner) const {
    QRect monitor(QPoint(0, 0), system_->screen().size());
    if (system_->metric(MonitorsOnDesktop) != 0) {
        const qint32 handle = GetMonitorFromWindow(owner ? owner : form, MonitorDefault::Nearest);
        if (const auto areas = system_->areas(handle))
            monitor = areas->whole;
    }
    // Truncation towards zero, as in the formula in twips,
    // even if the form is larger than the monitor.
    const QSize size = form->frameGeometry().size();
    form->move(monitor.left() + (monitor.width() - size.width()) / 2,
               monitor.top() + (monitor.height() - size.height()) / 2);
}

} // namespace tolvex
