// The commands of the station: lists them, opens the editor on one, and sends one as it is stored. The
// LinkMesh server lives as long as this form; its ports and sockets send the commands.
#pragma once

#include "network/commands/CommandFolder.h"
#include "network/commands/CommandUses.h"
#include "network/forms/frmLinkMeshServer.h"

namespace Ui {
class frmCommandSetup;
}

namespace tolvex {

class CommandModel;

class frmCommandSetup : public QDialog {
    Q_OBJECT

public:
    // `uses` finds what names a command.
    frmCommandSetup(const LinkMeshServerSetup& setup, CommandUseSource uses, QWidget* parent = nullptr);
    ~frmCommandSetup() override;

    frmLinkMeshServer& serverForm() { return *server_; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void fill(const QString& selected = {});
    void edit(const QString& name);
    void editSelected();
    void runSelected();
    void showRow();
    void showOutcome(const ServerEvent& event);

    std::unique_ptr<Ui::frmCommandSetup> ui_;
    CommandFolder folder_;
    CommandUseSource uses_;
    CommandModel* model_;
    QString sent_; // the command that was sent last
    std::unique_ptr<frmLinkMeshServer> server_;
};

} // namespace tolvex
