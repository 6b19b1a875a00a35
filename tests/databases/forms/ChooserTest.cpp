// The chooser as a user meets it: listing, views, sorting, and what its menu does, by mouse and keyboard.
#include "databases/DatabasesTest.h"

#include "core/system/Registry.h"
#include "databases/forms/frmChooseDatabase.h"
#include "databases/store/SuiteDatabase.h"

#include <QHeaderView>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QPushButton>
#include <QTest>
#include <QTreeView>

using namespace tolvex;
using namespace tolvex::tests;
using platform::Answer;

namespace {

const QString Folder = QStringLiteral("C:\\D");

class Caller : public DatabaseChooserCaller {
public:
    QStringList told;
    QString disabled;
    void DatabaseCopied(const QString& from, const QString& to, qint32 type) override {
        told += QStringLiteral("copied %1 %2 %3").arg(from, to).arg(type);
    }
    void DatabaseDeleted(const QString& name, qint32 type) override {
        told += QStringLiteral("deleted %1 %2").arg(name).arg(type);
    }
    void DatabaseRenamed(const QString& from, const QString& to, qint32 type) override {
        told += QStringLiteral("renamed %1 %2 %3").arg(from, to).arg(type);
    }
    QString DisabledDatabaseFName() const override { return disabled; }
};

class ChooserTest : public DatabasesTest {
protected:
    ChooserTest() {
        QDir().mkpath(machine.path() + "/share");
        qputenv("XDG_DATA_HOME", (machine.path() + "/share").toUtf8());
        make("C:\\D\\BETA.MDB", KOVAType, "Alpha log");
        make("C:\\D\\alpha.mdb", KOVAType, "Beta log");
        make("C:\\D\\ADS.MDB", AdvertsType, "Adverts");
    }
    void open(qint32 type = KOVAType, const QString& canEdit = "1") {
        form = std::make_unique<frmChooseDatabase>();
        form->setPath(Folder);
        form->setTag(QString::number(type));
        form->setCaller(&caller);
        form->setCanEdit(canEdit);
        form->show();
        form->activateWindow();
        EXPECT_TRUE(QTest::qWaitFor([this] {
            return (find<QLabel>("lblStatus")->text().size() > 0 || !form->isVisible()) &&
                   !find<QWidget>("pnlStatus")->isVisible();
        }));
    }
    template<class Widget>
    Widget* find(const char* name) const {
        return form->findChild<Widget*>(QLatin1String(name));
    }
    QTreeView* tree() const { return find<QTreeView>("lViewDetails"); }
    QStringList rowsShown() const {
        QStringList shown;
        for (int row = 0; row < tree()->model()->rowCount(); ++row)
            shown += tree()->model()->index(row, 0).data().toString() + "/" +
                     tree()->model()->index(row, 1).data().toString();
        return shown;
    }
    void clickRow(int row, bool twice = false) const {
        const QPoint at = tree()->visualRect(tree()->model()->index(row, 1)).center();
        QTest::mouseClick(tree()->viewport(), Qt::LeftButton, {}, at);
        if (twice)
            QTest::mouseDClick(tree()->viewport(), Qt::LeftButton, {}, at);
    }
    void choose(const char* action) const { find<QAction>(action)->trigger(); }
    QPushButton* okButton() const { return find<QPushButton>("cmdOK"); }
    QString status() const { return find<QLabel>("lblStatus")->text(); }

    Caller caller;
    std::unique_ptr<frmChooseDatabase> form;
};

} // namespace

TEST_F(ChooserTest, ListsOneKindSortsAndGivesTheChoice) {
    const auto held = OpenSuiteDatabase("C:\\D\\BETA.MDB");
    open();
    EXPECT_EQ(form->windowTitle(), "Select K-Ova V2.6 Database");
    EXPECT_EQ(rowsShown(), (QStringList{"Beta log/alpha", "Alpha log/BETA"}));
    EXPECT_TRUE(status().contains("alpha.mdb") && status().contains("version 2.6") &&
                status().contains("not open"))
        << status().toStdString();
    const auto clickHeader = [this](int column) {
        QHeaderView* header = tree()->header();
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          QPoint(header->sectionViewportPosition(column) + 8, header->height() / 2));
    };
    clickHeader(0);
    EXPECT_EQ(rowsShown(), (QStringList{"Alpha log/BETA", "Beta log/alpha"}));
    clickHeader(0);
    EXPECT_EQ(rowsShown(), (QStringList{"Beta log/alpha", "Alpha log/BETA"}));
    clickHeader(1); // keeps the order as it stood
    EXPECT_EQ(rowsShown(), (QStringList{"Alpha log/BETA", "Beta log/alpha"}));
    clickRow(0);
    EXPECT_TRUE(status().contains("open on")) << status().toStdString();
    clickRow(1, true);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(form->tag(), "alpha.MDB");

    open();
    clickRow(1);
    QTest::keyClick(tree(), Qt::Key_Escape);
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(form->tag(), "");
}

TEST_F(ChooserTest, KnowsItsKindsAndItsOnlyRow) {
    open(RotaweaveV3Type);
    EXPECT_EQ(form->windowTitle(), "Select Rotaweave v3 Database");
    EXPECT_EQ(tree()->model()->columnCount(), 3);
    EXPECT_EQ(status(), "There is no Rotaweave v3 Database in C:\\D.");
    EXPECT_FALSE(okButton()->isEnabled());
    EXPECT_TRUE(find<QAction>("MnuNew")->isEnabled());
    EXPECT_FALSE(find<QAction>("mnuCopy")->isEnabled());
    open(99);
    EXPECT_EQ(form->windowTitle(), "Select Invalid Database 99");
    open(AdvertsType, ""); // cannot edit: the only row is the choice
    EXPECT_FALSE(form->isVisible());
    EXPECT_EQ(form->tag(), "ADS.MDB");
    open(AdvertsType);
    EXPECT_TRUE(form->isVisible());
    make("C:\\D\\V3.MDB", RotaweaveV3Type);
    open(RotaweaveV3Type);
    EXPECT_EQ(tree()->model()->index(0, 2).data().toString(), "<Not known>");
}

TEST_F(ChooserTest, ShowsButDoesNotGiveAGhostedRow) {
    caller.disabled = "Alpha.MDB";
    open();
    EXPECT_FALSE(okButton()->isEnabled()); // it is the first
    clickRow(0, true);
    EXPECT_TRUE(form->isVisible());
    QTest::keyClick(tree(), Qt::Key_Down);
    EXPECT_TRUE(okButton()->isEnabled());
    QTest::mouseClick(okButton(), Qt::LeftButton);
    EXPECT_EQ(form->tag(), "BETA.MDB");
}

TEST_F(ChooserTest, KeepsTheViewAndPopsUpTheMenu) {
    open();
    choose("mnuViewLarge");
    QTest::mouseClick(okButton(), Qt::LeftButton);
    EXPECT_EQ(ReadRegistryLong(LocalMachineHive, TolvexV2Key, "ChooseDatabaseViewType", 7), 0);
    open();
    auto* icons = find<QListView>("lViewDatabases");
    EXPECT_TRUE(icons->isVisible() && icons->viewMode() == QListView::IconMode);
    const QPoint at = icons->visualRect(icons->model()->index(1, 0)).center();
    QTest::mouseClick(icons->viewport(), Qt::RightButton, {}, at);
    auto* menu = find<QMenu>("mnuOptions");
    EXPECT_TRUE(menu->isVisible());
    menu->hide();
    EXPECT_EQ(icons->currentIndex().row(), 1); // the row under the mouse
    choose("mnuViewList");
    EXPECT_EQ(icons->viewMode(), QListView::ListMode);
    EXPECT_EQ(icons->flow(), QListView::TopToBottom);
    QTest::mouseClick(find<QPushButton>("cmdCancel"), Qt::LeftButton);
    EXPECT_EQ(ReadRegistryLong(LocalMachineHive, TolvexV2Key, "ChooseDatabaseViewType", 7), 2);
}

TEST_F(ChooserTest, MakesDatabasesByTheKeyAndRefusesNames) {
    open();
    const auto pressN = [this](const char* name) {
        prompts.typed = {QString(name)};
        QTest::keyClick(tree(), Qt::Key_N);
    };
    for (const char* name : {"", "A.B", "BackUp", "alpha"})
        pressN(name);
    EXPECT_EQ(texts(), (QStringList{"You must specify a valid reference name",
                                    "The name 'Backup' is reserved and cannot be used!",
                                    "A database with this name already exists"}));
    EXPECT_EQ(prompts.textPrompts.first(),
              "What filename do you want to use for this database:\n(This is a unique reference that can be "
              "up to 8 letters)");
    prompts.forget();
    prompts.answers = {Answer::No};
    pressN("NEW");
    EXPECT_EQ(texts(), QStringList{"Are you sure you want to create a new K-Ova V2.6 Database in: "
                                   "C:\\D\\NEW.MDB"});
    EXPECT_FALSE(machine.exists("C:\\D\\NEW.MDB"));
    prompts.answers = {Answer::Yes};
    pressN("NEW");
    EXPECT_EQ(rows("C:\\D\\NEW.MDB", "Description"), "You have to have a title!,2.5999999,14");
    EXPECT_TRUE(status().contains("NEW.MDB")); // it is selected
    prompts.typed = {QString("New log")};
    QTest::keyClick(tree(), Qt::Key_E);
    EXPECT_TRUE(rowsShown().contains("New log/NEW"));
    EXPECT_EQ(rows("C:\\D\\NEW.MDB", "Description"), "New log,2.5999999,14");
}

TEST_F(ChooserTest, CopiesRenamesAndDeletesWithNotice) {
    open();
    clickRow(1);
    prompts.typed = {QString("COPY")};
    choose("mnuCopy");
    EXPECT_TRUE(rowsShown().contains("Copy of Alpha log/COPY"));
    prompts.typed = {QString("beta")};
    QTest::keyClick(tree(), Qt::Key_R, Qt::AltModifier);
    EXPECT_EQ(texts().takeLast(), "A database with that name already exists");
    prompts.forget();
    prompts.typed = {QString("GONE.DAT")};
    choose("mnuRename"); // keeps that extension, so that it is not listed any more
    EXPECT_EQ(rowsShown().size(), 2);
    EXPECT_TRUE(machine.exists("C:\\D\\GONE.DAT"));
    clickRow(1);
    prompts.answers = {Answer::Yes, Answer::No};
    QTest::keyClick(tree(), Qt::Key_D);
    EXPECT_EQ(rowsShown().size(), 2);
    prompts.answers = {Answer::Yes, Answer::Yes};
    QTest::keyClick(tree(), Qt::Key_D);
    EXPECT_EQ(rowsShown(), QStringList{"Beta log/alpha"});
    EXPECT_EQ(texts().mid(2), (QStringList{"Are you sure that you want to delete this K-Ova V2.6 Database "
                                           "(Alpha log)?",
                                           "Are you really sure that you want to delete this K-Ova V2.6 "
                                           "Database (Alpha log)?"}));
    EXPECT_EQ(prompts.asked.last().defaultAnswer, Answer::No);
    EXPECT_TRUE(prompts.asked.last().toolTip.contains("goes to the trash"));
    EXPECT_EQ(caller.told, (QStringList{"copied BETA.MDB COPY.MDB 14", "renamed COPY.MDB GONE.DAT 14",
                                        "deleted BETA.MDB 14"}));
    EXPECT_TRUE(QFile::exists(machine.path() + "/share/Trash/files/BETA.MDB"));
}

TEST_F(ChooserTest, LeavesAnOpenDatabaseAlone) {
    const auto held = OpenSuiteDatabase("C:\\D\\alpha.mdb");
    open();
    choose("mnuDelete");
    ASSERT_EQ(texts().size(), 1); // before any question
    EXPECT_TRUE(texts()[0].startsWith("alpha.mdb is open on "));
    prompts.typed = {QString("NEW"), QString("NEW")};
    choose("mnuRename");
    choose("mnuCopy");
    EXPECT_TRUE(texts()[1].contains("renaming : alpha.mdb"));
    EXPECT_TRUE(texts()[2].contains("copying : alpha.mdb") && texts()[2].contains("in use by"));
    EXPECT_TRUE(caller.told.isEmpty());
    EXPECT_EQ(rowsShown().size(), 2);
}

// Files that are none are offered for repair once a showing, and the others are reported together.
TEST_F(ChooserTest, PassesOverDamagedFilesAndCanBeStopped) {
    for (int n = 0; n < 40; ++n)
        CreateSuiteDatabase(QStringLiteral("C:\\D\\BARE%1.MDB").arg(n));
    machine.write("C:\\D\\BAD.MDB", "text");
    prompts.answers = {Answer::No};
    open();
    EXPECT_EQ(rowsShown().size(), 2);
    ASSERT_EQ(texts().size(), 2);
    EXPECT_TRUE(texts()[0].contains("Are you sure you want to continue compacting/repairing:"));
    EXPECT_TRUE(texts()[1].contains("getting the information from  : BARE0.MDB")) << texts()[1].toStdString();
    // With Yes it is repaired, and read again.
    form.reset();
    prompts.forget();
    machine.write("C:\\D\\BAD.MDB", QByteArray(4096, 'x') + machine.read("C:\\D\\BETA.MDB").mid(4096));
    prompts.answers = {Answer::Yes};
    open();
    EXPECT_TRUE(rowsShown().contains("Alpha log/BAD")) << texts().join('|').toStdString();
    platform::RemoveFile("C:\\D\\BAD.MDB");
    machine.write("C:\\D\\BAD.MDB", "text");
    form.reset();
    prompts.answers = {Answer::No};
    open();

    prompts.forget();
    prompts.typed = {QString("NEW")};
    prompts.answers = {Answer::Yes}; // to the new one, and none to a repair
    choose("MnuNew");
    EXPECT_EQ(rowsShown().size(), 3);

    form.reset();
    int seen = 0;
    prompts.answers = {Answer::No};
    prompts.whileWaiting = [&] {
        auto* stop = form->findChild<QPushButton*>("cmdStop");
        if (++seen == 5 && stop->isVisible())
            QTest::mouseClick(stop, Qt::LeftButton);
    };
    open();
    prompts.whileWaiting = {};
    EXPECT_TRUE(status().startsWith("Stopped")) << status().toStdString();
    EXPECT_LT(rowsShown().size(), 2);
}

// 300 files: each shows as what it is, the report is one, and the row that is selected stays in sight.
TEST_F(ChooserTest, ListsALargeFolder) {
    const QByteArray log = machine.read("C:\\D\\BETA.MDB");
    const QByteArray adverts = machine.read("C:\\D\\ADS.MDB");
    for (int n = 0; n < 60; ++n) {
        const auto write = [&](const char* name, const QByteArray& bytes) {
            machine.write(QStringLiteral("C:\\D\\%1%2.MDB").arg(QLatin1String(name)).arg(n), bytes);
        };
        write("SAME", log);
        write("FOREIGN", adverts);
        write("CUT", log + QByteArray(8192 - 1000, '\0')); // of the two pages that it grew by
        write("HALF", log.left(12 * 1024));
        write("EMPTY", {});
    }
    caller.disabled = "same0.mdb";
    prompts.answers = std::deque<Answer>(60, Answer::No); // to repairs of the empty files
    open();
    EXPECT_GE(prompts.processed, 300); // the window stays alive between the rows
    EXPECT_EQ(rowsShown().size(), 122);
    int ghosts = 0;
    int cut = 0;
    for (int row = 0; row < rowsShown().size(); ++row) {
        QTest::keyClick(tree(), row == 0 ? Qt::Key_Home : Qt::Key_Down);
        ghosts += okButton()->isEnabled() ? 0 : 1;
        cut += status().contains("The end of CUT") ? 1 : 0;
    }
    EXPECT_EQ(ghosts, 1);
    EXPECT_EQ(cut, 60);
    ASSERT_EQ(texts().size(), 61);
    EXPECT_TRUE(texts().last().contains("reading databases in C:\\D")) << texts().last().toStdString();
    QTest::keyClick(tree(), Qt::Key_Home);
    for (int turn = 0; turn < 2; ++turn) {
        find<QTreeView>("lViewDetails")->header()->sectionClicked(1);
        EXPECT_TRUE(tree()->viewport()->rect().intersects(tree()->visualRect(tree()->currentIndex())));
    }
    // Rows of the same description differ in the icon views by their file names.
    choose("mnuViewList");
    auto* icons = find<QListView>("lViewDatabases");
    EXPECT_TRUE(icons->viewport()->rect().intersects(icons->visualRect(icons->currentIndex())));
}

// A copy that is stopped leaves no file, and OK and Cancel wait for it.
TEST_F(ChooserTest, StopsACopy) {
    open();
    prompts.typed = {QString("HALF")};
    bool waited = false;
    prompts.whileWaiting = [&] {
        waited = !okButton()->isEnabled() && !find<QPushButton>("cmdCancel")->isEnabled() &&
                 find<QWidget>("pnlStatus")->isVisible();
        form->reject(); // the window's own close button
    };
    QTest::keyClick(tree(), Qt::Key_P, Qt::AltModifier);
    prompts.whileWaiting = {};
    EXPECT_TRUE(waited);
    EXPECT_TRUE(tree()->hasFocus()); // its keys work again
    EXPECT_TRUE(form->isVisible());
    EXPECT_FALSE(machine.exists("C:\\D\\HALF.MDB"));
    EXPECT_TRUE(caller.told.isEmpty());
}
