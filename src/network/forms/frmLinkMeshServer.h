// The LinkMesh server's window: it holds the server as long as it lives, sits in the notification area, and
// shows who is connected, the radio clock, and what happened lately.
#pragma once

#include "network/server/LinkMeshServer.h"

#include <QDialog>
#include <QMenu>
#include <QSystemTrayIcon>

#include <memory>

namespace Ui {
class frmLinkMeshServer;
}

namespace tolvex {

class EventModel;

class frmLinkMeshServer : public QDialog {
    Q_OBJECT

public:
    // Starts the server and stays out of sight: in the notification area, or minimised where the desktop has
    // none. Destroying the form closes everything; closing it by its user minimises it.
    explicit frmLinkMeshServer(LinkMeshServerSetup setup,
                               bool hasTray = QSystemTrayIcon::isSystemTrayAvailable());
    ~frmLinkMeshServer() override;

    LinkMeshServer& server() { return server_; }
    QSystemTrayIcon& tray() { return tray_; }
    // Each event, as the list shows it.
    std::function<void(const ServerEvent&)> onEvent;

    // Shows the form and brings it to the front.
    void restore();
    void minimise();

    // Escape.
    void reject() override { minimise(); }

protected:
    void closeEvent(QCloseEvent* event) override;
    void changeEvent(QEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    void addTrayIcon();
    void takeEvent(const ServerEvent& event);
    void showStatus();
    void showClock();
    void showButton();
    void showAccess();
    void changeAccess();

    std::unique_ptr<Ui::frmLinkMeshServer> ui_;
    EventModel* events_;
    bool hasTray_;
    QMenu mPopupSys_;
    QSystemTrayIcon tray_;
    LinkMeshServer server_;
};

} // namespace tolvex
