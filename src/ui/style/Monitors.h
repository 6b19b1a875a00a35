// One view of the display, on one screen or several, and centring of windows on their monitor.
#pragma once

#include <QRect>
#include <QtGlobal>

#include <memory>
#include <optional>
#include <vector>

class QWidget;

namespace tolvex {

// One monitor; all in pixels.
struct clsMonitor {
    qint32 Handle = 0;
    qint32 Height = 0;
    qint32 Width = 0;
    qint32 Left = 0;
    qint32 Right = 0;
    qint32 Top = 0;
    qint32 Bottom = 0;
    qint32 WorkLeft = 0;
    qint32 WorkRight = 0;
    qint32 WorkTop = 0;
    qint32 WorkBottom = 0;
    qint32 WorkHeight = 0;
    qint32 WorkWidth = 0;
};

// Queries to the display. The real one uses the screens of the running program; tests declare screens.
// Rectangles hold the first pixel and the size, like QRect.
class MonitorSystem {
public:
    virtual ~MonitorSystem() = default;
    // System metrics by their numbers: 76 to 79 left, top, width and height of the virtual screen, 80 the
    // number of monitors (0: no support for several).
    virtual int metric(int number) const = 0;
    // The monitor of a rectangle; 0 if it lies on none and `nearest` is false.
    virtual qint32 monitorFromRect(const QRect& rect, bool nearest) const = 0;
    // Whole area and work area of a monitor; nothing for an unknown handle.
    struct Areas {
        QRect whole;
        QRect work;
    };
    virtual std::optional<Areas> areas(qint32 handle) const = 0;
    // The primary screen, for the fallback.
    virtual QRect screen() const = 0;
};

// The screens of the running program; monitor handles are 1, 2, ... in the system's order.
std::unique_ptr<MonitorSystem> RealMonitors();

// Flags of the look-ups: the answer for a place on no monitor.
enum class MonitorDefault { Null = 0, Primary = 1, Nearest = 2 };

inline constexpr int TwipsPerPixel = 15; // 1440 twips an inch, 96 pixels an inch

class clsMonitors {
public:
    // Uses the real screens if no system is given, and fills the collection.
    explicit clsMonitors(std::unique_ptr<MonitorSystem> system = RealMonitors());
    ~clsMonitors();

    int DesktopLeft() const;
    int DesktopTop() const;
    int DesktopWidth() const;
    int DesktopHeight() const;
    qint32 GetMonitorFromWindow(const QWidget* window, MonitorDefault flags) const;
    qint32 GetMonitorFromXYPoint(int x, int y, MonitorDefault flags) const;
    // Moves a form, which need not be visible yet, to the middle of the monitor of `owner`, else of its own.
    void CenterFormOnMonitor(QWidget* form, const QWidget* owner = nullptr) const;
    void Refresh();
    qint16 Count() const { return static_cast<qint16>(monitors_.size()); }
    // 1-based; nothing if out of range.
    std::optional<clsMonitor> Monitor(qint16 index) const;

private:
    int GetMetric(int index, int fallback) const;
    qint32 fromRect(const QRect& rect, MonitorDefault flags) const;

    std::unique_ptr<MonitorSystem> system_;
    std::vector<clsMonitor> monitors_;
};

} // namespace tolvex
