#include "ui/style/Monitors.h"

#include <QWidget>

#include <gtest/gtest.h>

using namespace tolvex;

namespace {

// Declared screens; handles are 1, 2, ... None declared: a system without support for several.
class DeclaredScreens : public MonitorSystem {
public:
    explicit DeclaredScreens(QList<QRect> screens)
        : screens_(std::move(screens)) {}
    int metric(int number) const override {
        QRect all;
        for (const QRect& screen : screens_)
            all = all.united(screen);
        const int values[] = {all.left(), all.top(), all.width(), all.height(), int(screens_.size())};
        return values[number - 76];
    }
    qint32 monitorFromRect(const QRect& rect, bool nearest) const override {
        for (int i = 0; i < screens_.size(); ++i)
            if (screens_[i].intersects(rect))
                return i + 1;
        return nearest && !screens_.isEmpty() ? 1 : 0;
    }
    std::optional<Areas> areas(qint32 handle) const override {
        const QRect whole = screens_[handle - 1];
        return Areas{whole, whole.adjusted(0, 0, 0, -30)};
    }
    QRect screen() const override { return screens_.isEmpty() ? QRect(0, 0, 800, 600) : screens_.front(); }

private:
    QList<QRect> screens_;
};

clsMonitors monitors(QList<QRect> screens) {
    return clsMonitors(std::make_unique<DeclaredScreens>(std::move(screens)));
}

} // namespace

TEST(Monitors, ListsEachMonitorOnceFromTheVirtualOrigin) {
    const clsMonitors two = monitors({QRect(0, 0, 1024, 768), QRect(1024, 0, 1024, 768)});
    ASSERT_EQ(two.Count(), 2);
    EXPECT_EQ(two.Monitor(1)->Left, 0);
    EXPECT_EQ(two.Monitor(2)->Left, 1024);
    EXPECT_EQ(two.Monitor(2)->Right, 2048);
    EXPECT_EQ(two.Monitor(2)->WorkHeight, 738);
    EXPECT_FALSE(two.Monitor(0));
    EXPECT_FALSE(two.Monitor(3));

    // A monitor left of and above the primary is found first.
    const clsMonitors left = monitors({QRect(0, 0, 1280, 1024), QRect(-1280, -200, 1280, 1024)});
    ASSERT_EQ(left.Count(), 2);
    EXPECT_EQ(left.Monitor(1)->Left, -1280);
    EXPECT_EQ(left.DesktopLeft(), -1280);
    EXPECT_EQ(left.DesktopWidth(), 2560);

    const clsMonitors none = monitors({});
    ASSERT_EQ(none.Count(), 1);
    EXPECT_EQ(none.Monitor(1)->Handle, 0);
    EXPECT_EQ(none.Monitor(1)->WorkWidth, 800);
    EXPECT_EQ(none.DesktopWidth(), 800);
}

TEST(Monitors, CentresAFormOnItsOwnersMonitor) {
    const clsMonitors screens = monitors({QRect(0, 0, 1024, 768), QRect(-1000, 0, 1000, 800)});
    QWidget owner;
    owner.setGeometry(-900, 100, 300, 300);
    QWidget form;
    form.resize(401, 300);
    screens.CenterFormOnMonitor(&form, &owner);
    EXPECT_EQ(form.pos(), QPoint(-1000 + 299, 250));
    // Larger than the monitor: truncates towards zero.
    form.resize(1003, 300);
    screens.CenterFormOnMonitor(&form, &owner);
    EXPECT_EQ(form.x(), -1000 - 1);
}
