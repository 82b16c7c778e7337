// The main mixer's window commands: where every working window goes in the
// high- and low-resolution layouts, reset positions (Home), full screen
// (End), the show buttons, the mode button, title bars and help buttons,
// minimise all and restore all, and the window records in the settings.
//
// Rectangles are frame rectangles in screen pixels (WindowRect: far edges
// exclusive). Every window the layout places takes its rectangle exactly;
// its controls scale with it (WindowScaler).
#include <QCheckBox>
#include <QEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWindowStateChangeEvent>
#include <algorithm>

#include "controls/CNiButton.h"
#include "controls/WindowScaler.h"
#include "core/EngineState.h"
#include "core/Trace.h"
#include "deck/CRynDeck.h"
#include "deck/CRynDeckInfo.h"
#include "dsp/window/CRyn3DGraph.h"
#include "dsp/window/CRynEqualizer.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"
#include "playlist/window/CRynPlayList.h"
#include "settings/CRynSettings.h"
#include "settings/SettingsStore.h"
#include "settings/WindowDefaults.h"
#include "settings/window/CRynConfigure.h"

namespace {

// The frame around the client area. A window not on screen has none yet:
// it will get the frame the last framed window had.
QMargins FrameMargins(const QWidget* w) {
    static QMargins lastFrame;
    if (w->windowFlags().testFlag(Qt::FramelessWindowHint))
        return {};
    if (!w->isVisible())
        return lastFrame;
    const QRect f = w->frameGeometry();
    const QRect g = w->geometry();
    lastFrame = {g.left() - f.left(), g.top() - f.top(), f.right() - g.right(),
                 f.bottom() - g.bottom()};
    return lastFrame;
}

WindowRect RectOf(const QWidget* w) {
    const QRect f = w->frameGeometry();
    return {f.left(), f.top(), f.left() + f.width(), f.top() + f.height()};
}

// The window with its frame on `r`.
void PlaceOn(QWidget* w, const WindowRect& r) {
    const QMargins m = FrameMargins(w);
    w->setGeometry(r.left + m.left(), r.top + m.top(),
                   std::max(0, r.right - r.left - m.left() - m.right()),
                   std::max(0, r.bottom - r.top - m.top() - m.bottom()));
}

bool IsDeckHelper(SettingsWindow kind) {
    return kind == SettingsWindow::DeckInfo || kind == SettingsWindow::Equalizer ||
           kind == SettingsWindow::PlayList;
}

}  // namespace

void CRynMainMixer::InitialiseWindowButtons() {
    MainMixerWindowButtons* b = windowButtons_;
    b->ShowMode(LowResolution());
    for (int d = 0; d < 2; ++d)
        b->ShowDeckButton(d)->SetValue(decks_[d] && decks_[d]->isVisible());
    b->Show3DGraphButton()->SetValue(graph3d_ && graph3d_->isVisible());
    b->onShowDeck = [this](int deck, bool on) { ShowDeck(deck, on); };
    b->onShow3DGraph = [this](bool on) { Show3DGraph(on); };
    b->onDeckToDefault = [this](int deck) { DeckToDefault(deck); };
    b->onReset = [this] { ResetWindowPositions(); };
    b->onFullScreen = [this] { ShowFullScreen(); };
    b->onSwitchMode = [this] { SwitchResolution(); };
    // A right click on a deck's show toggle of its equalizer, play list or
    // information window, while on, sends that window to its default place.
    for (int d = 0; d < 2; ++d) {
        CRynDeck* deck = decks_[d];
        if (!deck)
            continue;
        const std::pair<CNiButton*, SettingsWindow> toggles[] = {
            {deck->ShowEqualizerButton(), SettingsWindow::Equalizer},
            {deck->ShowPlayListButton(), SettingsWindow::PlayList},
            {deck->ShowInfoButton(), SettingsWindow::DeckInfo}};
        for (const auto& [toggle, kind] : toggles) {
            connect(toggle, &CNiControl::mouseUp, this,
                    [this, d, kind, toggle](int button, int, QPoint) {
                        if (button != CNiControl::kRightButton || !toggle->Value())
                            return;
                        for (const LayoutWindow& lw : LayoutWindows()) {
                            if (lw.kind == kind && lw.deck == d)
                                PlaceLayoutWindows({lw}, true);
                        }
                    });
        }
    }

    ComponentRegistry& r = Registry();
    r.Register(b->ShowDeckButton(0), this, QStringLiteral("Show/Hide Deck A:"),
               QStringLiteral("Shows or hides the window of deck A. A right click puts the deck "
                              "back at its default place on the screen."),
               QStringLiteral("show deck A"));
    r.Register(b->ShowDeckButton(1), this, QStringLiteral("Show/Hide Deck B:"),
               QStringLiteral("Shows or hides the window of deck B. A right click puts the deck "
                              "back at its default place on the screen."),
               QStringLiteral("show deck B"));
    r.Register(b->Show3DGraphButton(), this, QStringLiteral("Show 3D Graph:"),
               QStringLiteral("Shows the 3D graph of both decks' spectra at its default place "
                              "a moment after the button goes on, or hides it."),
               QStringLiteral("show 3D graph"));
    r.Register(b->ResetButton(), this, QStringLiteral("Reset To Default Window Positions:"),
               QStringLiteral("Puts the mixer, the decks and their equalizer, play list and "
                              "information windows back at their default places. The Home key "
                              "does the same."),
               QStringLiteral("reset window positions"));
    r.Register(b->FullScreenButton(), this, QStringLiteral("Full Screen:"),
               QStringLiteral("Tiles the screen with the windows: in high resolution every "
                              "window, in low resolution the decks and both mixers. The End key "
                              "does the same."),
               QStringLiteral("full screen"));
    r.Register(b->ModeButton(), this, QStringLiteral("Low/High Resolution Mode Button:"),
               QStringLiteral("Switches between the layout for large screens (Hi) and the one "
                              "for small screens (Lo). Each layout keeps its own window "
                              "positions."),
               QStringLiteral("screen layout"));
}

QRect CRynMainMixer::LayoutArea() const {
    if (!layoutArea_.isEmpty())
        return layoutArea_;
    QScreen* s = QGuiApplication::primaryScreen();
    return s ? s->availableGeometry() : QRect(0, 0, 1024, 768);
}

bool CRynMainMixer::LowResolution() const {
    return Engine().lowResolution.load() != 0;
}

std::vector<CRynMainMixer::LayoutWindow> CRynMainMixer::LayoutWindows() const {
    std::vector<LayoutWindow> list;
    const auto add = [&list](QWidget* w, SettingsWindow kind, int deck) {
        if (w)
            list.push_back({w, kind, deck});
    };
    add(const_cast<CRynMainMixer*>(this), SettingsWindow::MainMixer, 0);
    add(headphones_, SettingsWindow::PhonesMixer, 0);
    add(graph3d_, SettingsWindow::ThreeDGraph, 0);
    for (int d = 0; d < 2; ++d) {
        CRynDeck* deck = decks_[d];
        if (!deck)
            continue;
        add(deck, SettingsWindow::Deck, d);
        add(deck->Info(), SettingsWindow::DeckInfo, d);
        add(deck->Equalizer(), SettingsWindow::Equalizer, d);
        add(deck->PlayListWindow(), SettingsWindow::PlayList, d);
    }
    return list;
}

void CRynMainMixer::PlaceLayoutWindows(const std::vector<LayoutWindow>& windows, bool toDefaults) {
    const bool low = LowResolution();
    const QRect area = LayoutArea();
    CRynSettings& s = Settings();
    SettingsStore::Batch batch(s.Store());
    for (const LayoutWindow& lw : windows) {
        WindowRect r;
        if (!toDefaults && s.ReadHasMoved(lw.kind, lw.deck)) {
            r = s.ReadWindowRect(lw.kind, lw.deck, low);
        } else {
            r = DefaultWindowRect(lw.kind, lw.deck, low, area.size());
            r = {r.left + area.left(), r.top + area.top(), r.right + area.left(),
                 r.bottom + area.top()};
            if (toDefaults)
                s.WriteHasMoved(lw.kind, lw.deck, false);
        }
        // Its controls follow its size from now on.
        WindowScaler::Attach(lw.window);
        PlaceOn(lw.window, r);
        placed_[lw.window] = RectOf(lw.window);
        s.WriteWindowRect(lw.kind, lw.deck, low, r);
    }
}

void CRynMainMixer::ResetWindowPositions() {
    std::vector<LayoutWindow> windows;
    for (const LayoutWindow& lw : LayoutWindows()) {
        const bool deckShown =
            lw.kind == SettingsWindow::Deck && windowButtons_->ShowDeckButton(lw.deck)->Value();
        if (lw.kind == SettingsWindow::MainMixer || deckShown || IsDeckHelper(lw.kind))
            windows.push_back(lw);
    }
    PlaceLayoutWindows(windows, true);
    show();
    for (int d = 0; d < 2; ++d) {
        if (decks_[d] && windowButtons_->ShowDeckButton(d)->Value())
            decks_[d]->show();
    }
    qCDebug(lcTrace) << "window positions reset";
}

void CRynMainMixer::ShowFullScreen() {
    const bool high = !LowResolution();
    for (int d = 0; d < 2; ++d) {
        windowButtons_->ShowDeckButton(d)->SetValue(false);
        windowButtons_->ShowDeckButton(d)->SetValue(true);
    }
    for (CRynDeck* deck : decks_) {
        if (!deck)
            continue;
        for (CNiButton* b :
             {deck->ShowEqualizerButton(), deck->ShowPlayListButton(), deck->ShowInfoButton()}) {
            b->SetValue(false);
            if (high)
                b->SetValue(true);
        }
    }
    panel_->ShowPhonesButton()->SetValue(false);
    panel_->ShowPhonesButton()->SetValue(true);
    windowButtons_->Show3DGraphButton()->SetValue(false);
    if (high) {
        windowButtons_->Show3DGraphButton()->SetValue(true);
        // Full screen tiles now, not after the button's delay.
        Show3DGraphNow();
    }
    ResetWindowPositions();
    // The headphones mixer and the 3D graph are not moved by Home; full
    // screen tiles them too.
    std::vector<LayoutWindow> rest;
    for (const LayoutWindow& lw : LayoutWindows()) {
        if (lw.kind == SettingsWindow::PhonesMixer || lw.kind == SettingsWindow::ThreeDGraph)
            rest.push_back(lw);
    }
    PlaceLayoutWindows(rest, true);
    RaiseControlsAboveDisplays();
}

void CRynMainMixer::ShowDeck(int deck, bool show) {
    if (!decks_[deck])
        return;
    decks_[deck]->setVisible(show);
    if (show)
        decks_[deck]->raise();
}

void CRynMainMixer::DeckToDefault(int deck) {
    for (const LayoutWindow& lw : LayoutWindows()) {
        if (lw.kind == SettingsWindow::Deck && lw.deck == deck)
            PlaceLayoutWindows({lw}, true);
    }
}

void CRynMainMixer::Show3DGraph(bool show) {
    if (!graph3d_)
        return;
    if (show) {
        SetWindowTimer(k3DGraphTimer, k3DGraphMs, true);
        return;
    }
    KillWindowTimer(k3DGraphTimer);
    graph3d_->hide();
}

void CRynMainMixer::Show3DGraphNow() {
    KillWindowTimer(k3DGraphTimer);
    if (!graph3d_ || !windowButtons_->Show3DGraphButton()->Value())
        return;
    PlaceLayoutWindows({{graph3d_, SettingsWindow::ThreeDGraph, 0}}, true);
    graph3d_->show();
    graph3d_->raise();
}

void CRynMainMixer::ShowAsStored() {
    const bool low = LowResolution();
    CRynSettings& s = Settings();
    for (const LayoutWindow& lw : LayoutWindows()) {
        if (lw.kind == SettingsWindow::MainMixer)
            continue;
        const QString name = ShowName(lw.kind, lw.deck, low);
        // A first run shows what full screen shows.
        const bool shown = s.Exists(name) ? s.ReadShow(lw.kind, lw.deck, low)
                                          : (lw.kind == SettingsWindow::Deck ||
                                             lw.kind == SettingsWindow::PhonesMixer || !low);
        switch (lw.kind) {
            case SettingsWindow::Deck:
                windowButtons_->ShowDeckButton(lw.deck)->SetValue(shown);
                break;
            case SettingsWindow::PhonesMixer:
                panel_->ShowPhonesButton()->SetValue(shown);
                break;
            case SettingsWindow::ThreeDGraph:
                // Shown at once where it was: the delay and the default
                // place are for the button.
                windowButtons_->Show3DGraphButton()->SetValue(shown);
                KillWindowTimer(k3DGraphTimer);
                graph3d_->setVisible(shown);
                break;
            case SettingsWindow::Equalizer:
                decks_[lw.deck]->ShowEqualizerButton()->SetValue(shown);
                break;
            case SettingsWindow::PlayList:
                decks_[lw.deck]->ShowPlayListButton()->SetValue(shown);
                break;
            case SettingsWindow::DeckInfo:
                decks_[lw.deck]->ShowInfoButton()->SetValue(shown);
                break;
            default:
                break;
        }
    }
}

void CRynMainMixer::PlaceWindowsAtStartUp() {
    windowButtons_->ShowMode(LowResolution());
    // The stored title bar state, before the frames are measured.
    if (!Settings().GetTitleBarsOnState())
        ShowTitleBars(false);
    show();
    ShowAsStored();
    PlaceLayoutWindows(LayoutWindows(), false);
    RaiseControlsAboveDisplays();
}

void CRynMainMixer::RaiseControlsAboveDisplays() {
    // The default rectangles overlap: the headphones mixer covers the top
    // of the 3D graph, each play list the top of its deck's equalizer.
    for (CRynDeck* deck : decks_) {
        if (deck && deck->PlayListWindow() && deck->PlayListWindow()->isVisible())
            deck->PlayListWindow()->raise();
    }
    if (headphones_ && headphones_->isVisible())
        headphones_->raise();
}

void CRynMainMixer::SwitchResolution() {
    StoreWindowPositions();
    SetLowResolution(!LowResolution());
    windowButtons_->ShowMode(LowResolution());
    ShowAsStored();
    PlaceLayoutWindows(LayoutWindows(), false);
}

void CRynMainMixer::StoreWindowPositions() {
    const bool low = LowResolution();
    auto* configure = qobject_cast<CRynConfigure*>(configure_);
    const bool save = !configure || configure->SaveWindowPositionsBox()->isChecked();
    CRynSettings& s = Settings();
    SettingsStore::Batch batch(s.Store());
    for (const LayoutWindow& lw : LayoutWindows()) {
        s.WriteShow(lw.kind, lw.deck, low, lw.window->isVisible());
        if (!save) {
            s.WriteHasMoved(lw.kind, lw.deck, false);
            continue;
        }
        const WindowRect r = RectOf(lw.window);
        const auto placed = placed_.find(lw.window);
        if (placed != placed_.end() && placed->second != r)
            s.WriteHasMoved(lw.kind, lw.deck, true);
        if (placed != placed_.end())
            s.WriteWindowRect(lw.kind, lw.deck, low, r);
    }
}

void CRynMainMixer::ShowHelpButtons(bool on) {
    std::vector<QWidget*> windows{this};
    for (CRynDeck* deck : decks_) {
        if (deck)
            windows.push_back(deck);
    }
    for (QWidget* w : windows) {
        if (w->windowFlags().testFlag(Qt::WindowContextHelpButtonHint) == on)
            continue;
        // A change of flags hides the window: its rectangle and visibility
        // are put back.
        const QRect rect = w->geometry();
        const bool shown = w->isVisible();
        Qt::WindowFlags f = w->windowFlags() | Qt::CustomizeWindowHint | Qt::WindowTitleHint |
                            Qt::WindowCloseButtonHint;
        f.setFlag(Qt::WindowContextHelpButtonHint, on);
        f.setFlag(Qt::WindowMinimizeButtonHint, !on);
        f.setFlag(Qt::WindowMaximizeButtonHint, !on);
        w->setWindowFlags(f);
        w->setGeometry(rect);
        if (shown)
            w->show();
    }
}

void CRynMainMixer::changeEvent(QEvent* event) {
    CRynWindow::changeEvent(event);
    if (event->type() != QEvent::WindowStateChange || Engine().appInitialised.load() == 0)
        return;
    if (isMinimized()) {
        // Minimise all in 750 ms; meanwhile the decks write as far ahead as they can.
        for (int d = 0; d < 2; ++d)
            ChangeLatency(d, WriteAheadTarget::Override::Maximum, true);
        SetWindowTimer(kMinimiseTimer, kMinimiseMs, true);
        return;
    }
    KillWindowTimer(kMinimiseTimer);
    for (int d = 0; d < 2; ++d)
        ChangeLatency(d, WriteAheadTarget::Override::Maximum, false);
    if (Engine().allMinimised.load() != 0 && host_ != 0)
        SendAppMessage(host_, UWM_RESTORE_ALL);
}

void CRynMainMixer::OnMinimiseTimer() {
    KillWindowTimer(kMinimiseTimer);
    // The taskbar keeps no button of its own for the mixer on this
    // platform: the host takes every window down with it.
    if (isMinimized() && host_ != 0)
        SendAppMessage(host_, UWM_MINIMISE_ALL);
}
