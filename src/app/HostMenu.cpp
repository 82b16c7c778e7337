#include "app/HostMenu.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QWidget>

#include "help/CAboutDlg.h"

namespace {

// Widgets that answer a right click of their own.
bool OwnsRightClick(const QWidget* w) {
    for (const char* kind : {"CNiControl", "QAbstractButton", "QAbstractSlider", "QComboBox",
                             "QLineEdit", "QAbstractScrollArea", "QAbstractSpinBox"}) {
        if (w->inherits(kind))
            return true;
    }
    return false;
}

}  // namespace

HostMenu::HostMenu(QWidget* window, std::function<void()> showDiagnostics)
    : QObject(window), window_(window), menu_(new QMenu(window)) {
    menu_->setObjectName(QStringLiteral("host menu"));
    QAction* about = menu_->addAction(QStringLiteral("&AboutMixora ..."));
    connect(about, &QAction::triggered, this, [this] { SystemCommand(kAboutCommand); });
    menu_->addSeparator();
    QAction* diagnostics = menu_->addAction(QStringLiteral("Diagnostics"));
    connect(diagnostics, &QAction::triggered, this, [show = std::move(showDiagnostics)] {
        if (show)
            show();
    });
    window->installEventFilter(this);
}

bool HostMenu::SystemCommand(int id) {
    if ((id & 0xFFF0) != kAboutCommand)
        return false;
    CAboutDlg about(window_);
    about.exec();
    return true;
}

bool HostMenu::eventFilter(QObject* watched, QEvent* event) {
    if (watched == window_ && event->type() == QEvent::ContextMenu) {
        auto* e = static_cast<QContextMenuEvent*>(event);
        for (QWidget* w = window_->childAt(e->pos()); w && w != window_; w = w->parentWidget()) {
            if (OwnsRightClick(w))
                return false;
        }
        menu_->popup(e->globalPos());
        return true;
    }
    return QObject::eventFilter(watched, event);
}
