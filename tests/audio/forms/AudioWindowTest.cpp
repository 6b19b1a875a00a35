#include "audio/forms/frmAudioWallSetup.h"
#include "ui/style/FitForm.h"
#include "ui/style/ScrollPage.h"
#include <QTabBar>
#include <QAbstractButton>
#include <QCoreApplication>
#include <QTabWidget>
#include <gtest/gtest.h>
using namespace tolvex;
TEST(X, y) {
    Settings s;
    s.CartFontSize = 8;
    s.PlayerFadeSeconds = 2;
    frmAudioWallSetup f(s);
    FitForm(&f);
    auto* t = f.findChild<QTabWidget*>();
    for (auto* p : f.findChildren<ScrollPage*>())
        printf("%s page %dx%d content %dx%d\n", qPrintable(p->objectName()), p->sizeHint().width(),
               p->sizeHint().height(), p->widget()->sizeHint().width(), p->widget()->sizeHint().height());
    for (auto* b : f.findChildren<QAbstractButton*>())
        if (b->objectName().contains("SelectedCart") || b->objectName().contains("Drag"))
            printf("%s %d\n", qPrintable(b->objectName()), b->sizeHint().width());
    t->setCurrentIndex(2);
    f.show();
    QCoreApplication::processEvents();
    for (auto* b : f.findChildren<QAbstractButton*>())
        if (b->objectName().contains("SelectedCart") || b->objectName().contains("Drag"))
            printf("%s %d\n", qPrintable(b->objectName()), b->sizeHint().width());
    for (auto* p : f.findChildren<ScrollPage*>())
        printf("%s page %dx%d content %dx%d\n", qPrintable(p->objectName()), p->sizeHint().width(),
               p->sizeHint().height(), p->widget()->sizeHint().width(), p->widget()->sizeHint().height());
    printf("tabs %dx%d bar %d form %dx%d hint %dx%d\n", t->sizeHint().width(), t->sizeHint().height(),
           t->tabBar()->sizeHint().width(), f.width(), f.height(), f.sizeHint().width(),
           f.sizeHint().height());
}
