// The window program's prompts: real boxes and choosers, answered by mouse and keyboard.
#include "app/window/QtPrompts.h"
#include "app/window/ProgressBox.h"
#include "console/forms/Station.h"
#include "console/forms/frmSplash.h"
#include "platform/paths/DriveAsker.h"

#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QProgressDialog>
#include <QPushButton>
#include <QTextEdit>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace tolvex;
using namespace tolvex::tests;
using platform::Answer;
using platform::Buttons;

namespace {

struct Window : Station {
    Window() { platform::setPrompts(&qt); }
    ~Window() { platform::setPrompts(nullptr); }
    QtPrompts qt{settings};
};

Answer askPressing(QtPrompts& prompts, const platform::Message& message, Qt::Key key) {
    withNextForm([key](QWidget& box) { QTest::keyClick(&box, key); });
    return prompts.ask(message);
}

} // namespace

TEST(QtPrompts, AnswersByDefaultButtonEscapeAndMouse) {
    Window window;
    const platform::Message question{QString("Text & more"), platform::Icon::Question, Buttons::YesNo,
                                     Answer::No};
    EXPECT_EQ(askPressing(window.qt, question, Qt::Key_Return), Answer::No);
    EXPECT_EQ(askPressing(window.qt, question, Qt::Key_Escape), Answer::No);
    withNextForm([](QWidget& form) {
        auto* box = qobject_cast<QMessageBox*>(&form);
        EXPECT_EQ(box->text(), "Text & more");
        EXPECT_EQ(box->windowTitle(), "Tolvex Configuration");
        QTest::mouseClick(box->button(QMessageBox::Yes), Qt::LeftButton);
    });
    EXPECT_EQ(window.qt.ask(question), Answer::Yes);
    const platform::Message three{QString("?"), platform::Icon::Exclamation, Buttons::YesNoCancel};
    EXPECT_EQ(askPressing(window.qt, three, Qt::Key_Escape), Answer::Cancel);
    EXPECT_EQ(askPressing(window.qt, three, Qt::Key_Return), Answer::Yes);
}

TEST(QtPrompts, PicksFilesAndFoldersAsWindowsPaths) {
    Window window;
    window.machine.write("C:\\SOUND\\a.exe", "x");
    window.machine.addDrive(u'M');
    platform::FileQuestion question;
    question.title = "Select";
    question.filter = "Programs|*.EXE;*.COM";
    question.folder = "C:\\SOUND";
    withNextForm([](QWidget& chooser) {
        find<QLineEdit>(chooser, "fileNameEdit")->setText("a.exe");
        QTest::keyClick(find<QLineEdit>(chooser, "fileNameEdit"), Qt::Key_Return);
    });
    EXPECT_EQ(window.qt.pickFile(question), QString("C:\\SOUND\\a.exe"));
    withNextForm([](QWidget& chooser) { QTest::keyClick(&chooser, Qt::Key_Escape); });
    EXPECT_EQ(window.qt.pickFile(question), std::nullopt);
    withNextForm([&window](QWidget& chooser) {
        find<QLineEdit>(chooser, "fileNameEdit")->setText(window.machine.host("M:\\"));
        QTest::keyClick(find<QLineEdit>(chooser, "fileNameEdit"), Qt::Key_Return);
    });
    EXPECT_EQ(window.qt.pickFolder("Where", "C:\\"), QString("M:\\"));
    withNextForm([](QWidget& chooser) { QTest::keyClick(&chooser, Qt::Key_Escape); });
    EXPECT_EQ(window.qt.pickColour(0x0000FF), std::nullopt);
}

TEST(QtPrompts, ProgressCanBeStoppedAndTellsWhatIsDone) {
    Window window;
    ProgressBox progress("Copying", true, nullptr);
    EXPECT_TRUE(progress.step(0, 100, "first"));
    QProgressDialog* box = nullptr;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* found = qobject_cast<QProgressDialog*>(widget))
            box = found;
    ASSERT_NE(box, nullptr);
    QTest::qWait(60);
    EXPECT_TRUE(progress.step(50, 100, "second"));
    EXPECT_EQ(box->value(), 500);
    EXPECT_TRUE(box->labelText().startsWith("second"));
    box->cancel();
    EXPECT_FALSE(progress.step(51, 100, "third"));
}

// The form that began a job cannot be used before the box appears to say that it is busy.
TEST(QtPrompts, ProgressKeepsTheFormFromBeingUsed) {
    const Window window;
    QPushButton form("OK");
    int pressed = 0;
    QObject::connect(&form, &QPushButton::pressed, [&] { ++pressed; });
    form.show();
    const auto use = [&form] {
        QTest::mouseClick(&form, Qt::LeftButton);
        QTest::keyClick(&form, Qt::Key_Space);
    };
    {
        ProgressBox progress("Asking", true, nullptr);
        use();
        EXPECT_TRUE(progress.step(0, 0, "first"));
        EXPECT_EQ(pressed, 0);
    }
    use();
    EXPECT_EQ(pressed, 2);
}

// The window stays responsive while a drive blocks its asker, and its button ends the wait.
TEST(QtPrompts, StopsASearchWhileADriveHangs) {
    Window window;
    const QByteArray pipe = QFile::encodeName(window.machine.path() + "/pipe");
    ASSERT_EQ(::mkfifo(pipe.constData(), 0600), 0);
    withNextForm([](QWidget& box) {
        EXPECT_TRUE(dynamic_cast<QProgressDialog&>(box).labelText().startsWith("Looking at M:"));
        QTest::mouseClick(box.findChild<QPushButton*>(), Qt::LeftButton);
    });
    const auto hang = [pipe](const QString&) -> qint64 {
        return ::close(::open(pipe.constData(), O_RDONLY));
    };
    platform::DriveAsker asker(std::chrono::hours(1));
    EXPECT_FALSE(asker.ask({"M:\\TLVX_SYS.INI"}, hang, *window.qt.beginProgress("Search", true)));
    ::close(::open(pipe.constData(), O_RDWR));
}

TEST(QtPrompts, ShowsTheSplashTheNoticeAndTheSets) {
    Window window;
    window.qt.splash("Starting");
    window.qt.splash("Going on");
    QList<frmSplash*> splashes;
    for (QWidget* widget : QApplication::topLevelWidgets())
        if (auto* splash = qobject_cast<frmSplash*>(widget))
            splashes += splash;
    ASSERT_EQ(splashes.size(), 1);
    EXPECT_EQ(find<QLabel>(*splashes[0], "lblCurrentAction")->text(), "Going on");
    window.qt.hideSplash();

    window.machine.write("C:\\Updates.txt", "news");
    QTimer::singleShot(50, [] {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName() == "frmPrintPreview" && widget->isVisible()) {
                EXPECT_EQ(widget->windowTitle(), "Notice");
                EXPECT_EQ(find<QTextEdit>(*widget, "rtfFile")->toPlainText(), "news");
                click(*widget, "cmdDone");
            }
    });
    window.qt.showUpdateNotice("C:\\Updates.txt", "Notice");

    QTimer::singleShot(50, [] {
        for (QWidget* widget : QApplication::topLevelWidgets())
            if (widget->objectName() == "frmMultiConfig" && widget->isVisible())
                widget->close();
    });
    EXPECT_EQ(window.qt.chooseConfigurationSet("SOFTWARE\\Norvane\\Tolvex", "tolvex.ini"), "");
}
