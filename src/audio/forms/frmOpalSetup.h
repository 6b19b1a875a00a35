// Opal Transfer Setup: the folder of the transport lists, the lists in it, and which is the default. It shows
// a record of its own (audio/transfers/TransferSetup.h), which OK stores. Lists are made and deleted at once;
// those that other programs make or delete meanwhile appear and go.
#pragma once

#include "audio/transfers/TransferSetup.h"
#include "ui/binding/FormBinding.h"

#include <QDialog>
#include <QTimer>

#include <memory>

namespace Ui {
class frmOpalSetup;
}

namespace tolvex {

class EnableRules;

class frmOpalSetup : public QDialog {
    Q_OBJECT

public:
    explicit frmOpalSetup(QWidget* parent = nullptr);
    ~frmOpalSetup() override;

    // The two stores: the form shows what the one that was set last holds, and OK writes to all that were
    // set. The registry's root is set before its key.
    void setIniFile(const QString& file);
    void setRegistryRoot(quint32 root) { store_.registryRoot = root; }
    void setRegistryKey(const QString& key);

protected:
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void addRules();
    void showSetup();
    void refresh();
    void listNames(const QStringList& names);
    void select(const QString& name);
    void showDefault();
    QString selected() const;
    void browse();
    void add();
    void remove();
    void makeDefault();
    void ok();

    TransferStore store_;
    TransferSetup shown_; // as the ini file had it
    TransferSetup setup_;
    std::unique_ptr<Ui::frmOpalSetup> ui_;
    FormBinding binding_;
    EnableRules* rules_ = nullptr;
    QTimer refresh_;
    QString listed_;    // the folder whose lists are shown
    QStringList names_; // of these lists
    bool folderExists_ = false;
};

} // namespace tolvex
