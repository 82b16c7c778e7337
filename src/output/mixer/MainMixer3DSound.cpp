// The main mixer's side of the 3D graph: the band rows it feeds on every
// graphs pass, the decks' graph range pointers that set its normalising
// range (UWM_3D_GRAPH_VALUE), the 3D sound switch (UWM_CONFIG_REFRESH from
// the 3D graph) and the listener position (UWM_LISTENER_POSITION), spread
// over the speakers by the listener law.
#include <QTimer>

#include "controls/CNiSlide.h"
#include "core/Trace.h"
#include "deck/CRynDeck.h"
#include "deck/graphs/DeckGraphs.h"
#include "dsp/window/CRyn3DGraph.h"
#include "output/laws/ListenerLaw.h"
#include "output/mixer/CRynMainMixer.h"
#include "platform/sound/SoundDevice.h"

LResult CRynMainMixer::On3DGraphMessage(Uwm msg, WParam wParam, LParam lParam) {
    switch (msg) {
        case UWM_3D_GRAPH_VALUE: {
            // wParam the deck, lParam the range slide's pointer: 1 the
            // minimum, 2 the maximum (1/1000 dB).
            if (!ValidDeck(wParam) || !decks_[wParam] || !graph3d_)
                return 0;
            const int deck = static_cast<int>(wParam);
            const double v = decks_[deck]->Graphs().RangeSlide()->PointerValue(lParam == 1 ? 0 : 1);
            if (lParam == 1)
                graph3d_->SetLevelMinimum(deck, v);
            else if (lParam == 2)
                graph3d_->SetLevelRange(deck, v);
            return 0;
        }
        case UWM_LISTENER_POSITION:
            listenerX_ = CRyn3DGraph::ParamFloat(wParam);
            listenerY_ = CRyn3DGraph::ParamFloat(static_cast<std::uintptr_t>(lParam));
            ApplyListener();
            return 0;
        case UWM_CONFIG_REFRESH:
            if (graph3d_ && graph3d_->Sound3DOn() != sound3D_)
                Switch3DSound(graph3d_->Sound3DOn());
            // The configuration window reads the devices and the stored
            // choices again and shows the device as it is now.
            if (auto* configure = qobject_cast<CRynWindow*>(configure_))
                SendAppMessage(configure->Handle(), UWM_CONFIG_REFRESH, wParam, lParam);
            return 0;
        default:
            return 0;
    }
}

void CRynMainMixer::ApplyListener() {
    sound::SoundDevice* device = mainOutput_.Device();
    sound::SoundListener3D* listener = device ? device->Listener() : nullptr;
    if (!listener)
        return;
    const listener_law::Gains g = listener_law::GainsAt(listenerX_, listenerY_);
    listener->x.store(listenerX_, std::memory_order_relaxed);
    listener->y.store(listenerY_, std::memory_order_relaxed);
    listener->gainLeft.store(g.left, std::memory_order_relaxed);
    listener->gainRight.store(g.right, std::memory_order_relaxed);
}

void CRynMainMixer::Switch3DSound(bool on) {
    sound3D_ = on;
    // A device lost or missing is opened by the watch when it comes, and
    // the choice is applied then (Keep3DSound).
    if (mainWatch_.Lost())
        return;
    // The device the user chose, else the one playing.
    std::string id = mainWatch_.Watched();
    if (id.empty() && mainOutput_.Device())
        id = mainOutput_.Device()->Identifier();
    if (id.empty())
        return;  // no main device: the choice applies when one is opened
    qCDebug(lcTrace, "CRynMainMixer turns 3D sound %s", on ? "on" : "off");
    // The decks' buffers go with the old device: they are made again at
    // their rates on the new one, with their levels, pans and effects.
    std::array<int, 2> rates{};
    if (CRynSoundEngine* engine = mainOutput_.SoundEngine()) {
        for (int d = 0; d < 2; ++d) {
            if (engine->Deck(d).forward)
                rates[d] = engine->Deck(d).rate;
        }
    }
    ChooseMainDevice(id);
    for (int d = 0; d < 2; ++d) {
        if (rates[d] != 0)
            OnAppMessage(UWM_CREATE_DECK_BUFFERS, static_cast<WParam>(d), rates[d]);
    }
    ApplyListener();
}

void CRynMainMixer::Feed3DGraph(int deck, std::span<const double> current) {
    if (!graph3d_ || !graph3d_->WantsRows() || current.size() < 2)
        return;
    const int bands = static_cast<int>(current.size()) - 1;  // entry 0 is unused
    graph3d_->AddRow(deck, current.subspan(1), bands);
    surfaceFed_ = true;
}

void CRynMainMixer::Draw3DGraph() {
    // One surface for both decks: drawn once a pass, only when it is seen.
    if (!surfaceFed_ || !graph3d_)
        return;
    surfaceFed_ = false;
    graph3d_->PlotSurface(0);
}

void CRynMainMixer::Keep3DSound() {
    if (!sound3D_)
        return;
    QTimer::singleShot(0, this, [this] {
        sound::SoundDevice* device = mainOutput_.Device();
        if (sound3D_ && device && !device->Listener())
            Switch3DSound(true);
    });
}
