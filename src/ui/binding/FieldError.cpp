#include "ui/binding/FieldError.h"

#include "ui/binding/Controls.h"
#include "ui/binding/ShowControl.h"
#include "ui/style/Style.h"
#include "ui/style/TextBoxes.h"

#include <QLineEdit>
#include <QPointer>
#include <QStyle>
#include <QTabBar>
#include <QTabWidget>

#include <utility>

namespace tolvex {

namespace {

constexpr const char* WrongProperty = "wrong"; // the style sheet's rules for it are in ui/style

void mark(QWidget* field, bool wrong) {
    field->setProperty(WrongProperty, wrong ? QVariant(true) : QVariant());
    field->style()->unpolish(field);
    field->style()->polish(field);
}

// Lives while its marks are visible.
class ErrorMark : public QObject {
public:
    ErrorMark(QWidget* field, const QString& message)
        : QObject(field->window())
        , field_(field)
        , description_(field->accessibleDescription()) {
        mark(field, true);
        field->setAccessibleDescription(message);
        for (const TabPlace& place : ShowTabsOf(field))
            markTab(place.tabs, place.tab);
        for (QWidget* input : InputsOf(field->window()))
            WhenChanged(input, this, [this] { take(); });
    }
    ~ErrorMark() override { take(); }
    ErrorMark(const ErrorMark&) = delete;
    ErrorMark& operator=(const ErrorMark&) = delete;

private:
    struct MarkedTab {
        QPointer<QTabWidget> tabs;
        int tab;
        QIcon icon;
        QString name;
    };
    void markTab(QTabWidget* tabs, int tab) {
        marked_.append({tabs, tab, tabs->tabIcon(tab), tabs->tabBar()->accessibleTabName(tab)});
        tabs->setTabIcon(tab, LineIcon(QStringLiteral("exclamation"), &Tokens::error));
        tabs->tabBar()->setAccessibleTabName(tab, tabs->tabText(tab).remove(u'&') +
                                                      QStringLiteral(", a field is wrong"));
    }
    void take() {
        if (QWidget* field = std::exchange(field_, nullptr)) {
            mark(field, false);
            field->setAccessibleDescription(description_);
        }
        for (const MarkedTab& marked : std::as_const(marked_))
            if (marked.tabs) {
                marked.tabs->setTabIcon(marked.tab, marked.icon);
                marked.tabs->tabBar()->setAccessibleTabName(marked.tab, marked.name);
            }
        marked_.clear();
        deleteLater();
    }

    QPointer<QWidget> field_;
    QString description_;
    QList<MarkedTab> marked_;
};

} // namespace

bool ShowFieldError(QWidget* field, const QString& message, platform::Icon icon) {
    for (QObject* child : field->window()->children())
        if (auto* old = dynamic_cast<ErrorMark*>(child)) {
            delete old;
            break;
        }
    new ErrorMark(field, message);
    platform::prompts().ask({message, icon, platform::Buttons::Ok});
    field->setFocus();
    if (auto* box = qobject_cast<QLineEdit*>(field))
        SelectAll(box);
    return false;
}

} // namespace tolvex
