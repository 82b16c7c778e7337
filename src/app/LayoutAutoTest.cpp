#include "app/LayoutAutoTest.h"

#include <QAbstractScrollArea>
#include <QCheckBox>
#include <QCoreApplication>
#include <QKeyEvent>
#include <QTimer>

#include "app/CMixoraDlg.h"
#include "app/ShellLog.h"
#include "core/CRynWindow.h"
#include "deck/CRynDeck.h"
#include "output/mixer/CRynMainMixer.h"
#include "settings/window/CRynConfigure.h"

namespace {

void LogWindows(CRynMainMixer* mixer) {
    for (const CRynMainMixer::LayoutWindow& lw : mixer->LayoutWindows()) {
        const QRect f = lw.window->frameGeometry();
        const auto* w = static_cast<const CRynWindow*>(lw.window);
        ShellLog(
            QStringLiteral("layout window %1 %2 %3 %4 %5 %6 %7")
                .arg(QString::fromLatin1(w->ClassName()))
                .arg(lw.deck)
                .arg(f.left())
                .arg(f.top())
                .arg(f.left() + f.width())
                .arg(f.top() + f.height())
                .arg(lw.window->isVisible() ? QStringLiteral("shown") : QStringLiteral("hidden")));
    }
}

// Content scrolled inside a view may lie beyond the view: it is clipped there.
bool InsideScrolledView(const QWidget* w, const QWidget* window) {
    for (const QWidget* p = w->parentWidget(); p && p != window; p = p->parentWidget()) {
        if (const auto* area = qobject_cast<const QAbstractScrollArea*>(p)) {
            if (area->viewport()->isAncestorOf(w))
                return true;
        }
    }
    return false;
}

// Every shown control of every shown window wholly inside its window.
void CheckControls(CRynMainMixer* mixer) {
    int windows = 0, frames = 0, controls = 0, outside = 0;
    for (const CRynMainMixer::LayoutWindow& lw : mixer->LayoutWindows()) {
        QWidget* window = lw.window;
        if (!window->isVisible())
            continue;
        if (window->rect().isEmpty()) {
            ++frames;  // a frame without a client area (deck information at first)
            continue;
        }
        ++windows;
        const QRect client = window->rect();
        const auto children = window->findChildren<QWidget*>();
        for (QWidget* c : children) {
            // A control of a child window (the tip of the day over the mixer)
            // belongs to that window, not to this one.
            if (!c->isVisible() || c->isWindow() || c->window() != window || c->size().isEmpty() ||
                InsideScrolledView(c, window))
                continue;
            ++controls;
            const QRect r(c->mapTo(window, QPoint(0, 0)), c->size());
            if (client.contains(r))
                continue;
            ++outside;
            ShellLog(QStringLiteral("layout outside %1 %2 %3 %4 %5 %6 in %7 x %8")
                         .arg(window->windowTitle(),
                              c->objectName().isEmpty()
                                  ? QString::fromLatin1(c->metaObject()->className())
                                  : c->objectName())
                         .arg(r.x())
                         .arg(r.y())
                         .arg(r.width())
                         .arg(r.height())
                         .arg(client.width())
                         .arg(client.height()));
        }
    }
    ShellLog(QStringLiteral("layout check windows %1 frames %2 controls %3 outside %4")
                 .arg(windows)
                 .arg(frames)
                 .arg(controls)
                 .arg(outside));
}

// Deck A somewhere else, as a drag by the user leaves it.
void MoveDeckA(CMixoraDlg* h) {
    h->Deck(0)->setGeometry(101, 57, 400, 300);
    ShellLog(QStringLiteral("layout moved"));
}

}  // namespace

void ArmLayoutAutoTest(CMixoraDlg& host, const QString& script) {
    CMixoraDlg* h = &host;
    if (script == QLatin1String("layout-move")) {
        QTimer::singleShot(100, h, [h] {
            MoveDeckA(h);
            h->MainMixer()->close();
        });
    } else if (script == QLatin1String("layout-save-off")) {
        QTimer::singleShot(100, h, [h] {
            h->Configure()->SaveWindowPositionsBox()->setChecked(false);
            MoveDeckA(h);
            h->MainMixer()->close();
        });
    } else if (script == QLatin1String("layout-report")) {
        QTimer::singleShot(100, h, [h] {
            LogWindows(h->MainMixer());
            h->MainMixer()->close();
        });
    } else if (script == QLatin1String("layout-full-screen")) {
        QTimer::singleShot(300, h, [h] {
            QCoreApplication::postEvent(
                h->MainMixer(), new QKeyEvent(QEvent::KeyPress, Qt::Key_End, Qt::NoModifier));
            QCoreApplication::postEvent(
                h->MainMixer(), new QKeyEvent(QEvent::KeyRelease, Qt::Key_End, Qt::NoModifier));
        });
        QTimer::singleShot(1300, h, [h] {
            LogWindows(h->MainMixer());
            CheckControls(h->MainMixer());
            bool ok = false;
            int hold = qEnvironmentVariableIntValue("MIXORA_LAYOUT_HOLD_MS", &ok);
            QTimer::singleShot(ok ? hold : 3000, h, [h] { h->MainMixer()->close(); });
        });
    }
}
