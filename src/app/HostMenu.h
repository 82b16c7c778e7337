// The host's menu, which on this desktop opens from the main mixer: a right
// click on the mixer's background (not on a control, whose right click is its
// own) offers "&AboutMixora ..." (the modal about box) and "Diagnostics" (the
// host's diagnostic texts, DiagnosticsPanel). User-interface thread only.
#pragma once

#include <QObject>
#include <functional>

class QMenu;
class QWidget;

class HostMenu : public QObject {
    Q_OBJECT
  public:
    static constexpr int kAboutCommand = 16;

    // Watches `window`'s context menu events; `showDiagnostics` opens the
    // diagnostics. Owned by `window`.
    HostMenu(QWidget* window, std::function<void()> showDiagnostics);

    // The menu as it is offered (tests).
    QMenu* Menu() const { return menu_; }
    // The command of a system-menu id: the about box for 16 (the low four
    // bits masked off); false for other ids.
    bool SystemCommand(int id);

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QWidget* window_;
    QMenu* menu_;
};
