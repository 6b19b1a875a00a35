// Every form's design: usable by keyboard, readable by a screen reader, no duplicate access keys except in
// the system's own captions.
#include "TestPlaces.h"

#include <QDomDocument>
#include <QFile>

#include <gtest/gtest.h>

#include <filesystem>

namespace {

struct Control {
    QString name;
    QString type;
    QString text;
    QString buddy;
    QString accessibleName;
    bool hidden = false;
};

const QStringList inputs = {"QLineEdit",   "QComboBox", "QListWidget", "QTextEdit", "QTextBrowser",
                            "QTreeWidget", "QSpinBox",  "QTableView",  "QListView", "QPlainTextEdit"};

// Letters that the console's own captions mark twice.
const QStringList markedTwice = {"d", "o"};

QString propertyOf(const QDomElement& widget, const char* name) {
    for (QDomElement p = widget.firstChildElement("property"); !p.isNull();
         p = p.nextSiblingElement("property"))
        if (p.attribute("name") == QLatin1String(name))
            return p.text();
    return {};
}

// The controls of a form in reading order: layouts are written in this order, grids row by row.
void collect(const QDomElement& element, QList<Control>& controls) {
    for (QDomElement child = element.firstChildElement(); !child.isNull();
         child = child.nextSiblingElement()) {
        if (child.tagName() == "widget")
            controls.append({child.attribute("name"), child.attribute("class"), propertyOf(child, "text"),
                             propertyOf(child, "buddy"), propertyOf(child, "accessibleName"),
                             propertyOf(child, "visible") == "false"});
        if (child.tagName() == "widget" || child.tagName() == "layout" || child.tagName() == "item")
            collect(child, controls);
    }
}

class Design : public testing::TestWithParam<std::string> {};

} // namespace

TEST_P(Design, IsUsableByKeyboardAndScreenReader) {
    QFile file(QString::fromStdString(GetParam()));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    QDomDocument document;
    ASSERT_TRUE(document.setContent(&file));
    QList<Control> controls;
    collect(document.documentElement(), controls);
    ASSERT_FALSE(controls.isEmpty());

    QStringList order;
    for (const Control& control : controls)
        order += control.name;
    QStringList tabs;
    const QDomElement stops = document.documentElement().firstChildElement("tabstops");
    for (QDomElement stop = stops.firstChildElement(); !stop.isNull(); stop = stop.nextSiblingElement())
        tabs += stop.text();
    for (qsizetype i = 1; i < tabs.size(); ++i)
        EXPECT_LT(order.indexOf(tabs[i - 1]), order.indexOf(tabs[i]))
            << tabs[i].toStdString() << " is reached before it is read";

    QMap<QString, QStringList> keys;
    for (const Control& control : controls) {
        const bool labelled = std::any_of(controls.begin(), controls.end(),
                                          [&](const Control& label) { return label.buddy == control.name; });
        // The input box gives its controls their accessible name, the prompt, when it is shown.
        if (inputs.contains(control.type) && !GetParam().ends_with("frmGoodInputBox.ui")) {
            EXPECT_TRUE(labelled || !control.accessibleName.isEmpty())
                << control.name.toStdString() << " has no label and no accessible name";
        }
        if (control.type == "QLabel") {
            EXPECT_TRUE(!control.text.contains('&') || !control.buddy.isEmpty())
                << control.name.toStdString() << " marks an access key without a buddy";
        }
        const qsizetype mark = control.text.indexOf('&');
        if (mark >= 0 && !control.hidden)
            keys[control.text.mid(mark + 1, 1).toLower()] += control.name;
    }
    for (auto it = keys.begin(); it != keys.end(); ++it) {
        const bool allowed = GetParam().ends_with("frmConfigure.ui") && markedTwice.contains(it.key());
        EXPECT_TRUE(it->size() == 1 || allowed)
            << it.key().toStdString() << " stands on " << it->join(", ").toStdString();
    }
}

static std::vector<std::string> designs() {
    std::vector<std::string> files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(TOLVEX_SOURCE_DIR "/src"))
        if (entry.path().extension() == ".ui")
            files.push_back(entry.path().string());
    return files;
}

INSTANTIATE_TEST_SUITE_P(All, Design, testing::ValuesIn(designs()),
                         [](const auto& file) { return std::filesystem::path(file.param).stem().string(); });
