// The main mixer's graphs and meters: the drawing pass each
// UWM_GRAPHS_UPDATE asks for, the meters enable of each deck, the processor
// load (timer 2), the overload lamp and the exclusive graph of a double click.
#include <QTimer>

#include "controls/CNiGraph.h"
#include "core/EngineState.h"
#include "deck/CRynDeck.h"
#include "deck/graphs/DeckGraphs.h"
#include "deck/graphs/GraphValues.h"
#include "dsp/window/CRyn3DGraph.h"
#include "output/mixer/CRynHeadphonesMixer.h"
#include "output/mixer/CRynMainMixer.h"
#include "output/mixer/MixerMeters.h"
#include "settings/CRynSettings.h"

void CRynMainMixer::InitialiseMeters() {
    for (int d = 0; d < 2; ++d) {
        if (decks_[d])
            meters_->SetDeckColours(d, decks_[d]->Colour(0), decks_[d]->Colour(1));
    }
    meters_->onEnableMeters = [this](int deck, bool on) {
        Settings().SetMetersEnabled(deck, on);
        SetMetersEnabled(deck, on);
    };
    meters_->onGraphTypeChanged = [](int deck, const QString& type) {
        Settings().SetMainMixerGraphType(deck, type);
    };
    meters_->onGraphDoubleClicked = [this](int deck) {
        SendAppMessage(host_, UWM_GRAPH_DOUBLE_CLICK, kTemplateId, kBandGraphIds[deck]);
    };
    cpuLoad_.Read();  // the first reading only starts the count
    SetWindowTimer(kCpuTimer, kCpuMs);
}

void CRynMainMixer::ApplyStoredMeters() {
    const bool mixerGraphs = Settings().GetMainMixerGraphEnabledState();
    for (int d = 0; d < 2; ++d) {
        mixerGraphOn_[d] = mixerGraphs;
        meters_->SetGraphType(d, Settings().GetMainMixerGraphType(d));
        SetMetersEnabled(d, Settings().GetMetersEnabled(d));
    }
}

void CRynMainMixer::SetMetersEnabled(int deck, bool on) {
    Engine().decks[deck].metersOff.store(on ? 0 : 1);
    meters_->SetMetersEnabledLook(deck, on);
    // A graph hidden by another shown alone stays hidden.
    meters_->BandGraph(deck)->setVisible(on && mixerGraphOn_[deck]);
    if (decks_[deck])
        decks_[deck]->Graphs().SetGraphsOn(on);
    if (headphones_)
        headphones_->SetDeckGraphsOn(deck, on);
    lastDrawn_[deck] = -1;
    if (host_ != 0)
        SendAppMessage(host_, UWM_METERS_THREAD, on ? 1 : 0);
}

int CRynMainMixer::HeardSlot(int deck) const {
    const bool reverse = decks_[deck] && decks_[deck]->IsReverse();
    const CRynAudioOutput::Cursor c =
        reverse ? mainOutput_.ReversePlayCursor(deck) : mainOutput_.ForwardPlayCursor(deck);
    if (c.status != 0)
        return -1;
    return reverse ? 119 - c.blocks : c.blocks;
}

void CRynMainMixer::DrawGraphsAndMeters() {
    ++graphsUpdates_;
    if (graph3d_)
        graph3d_->NoteGraphsPass();
    const SharedEngineState& e = Engine();
    // Playback has priority: nothing is drawn while the interface lags.
    if (e.overload.load() != 0)
        return;
    const bool phonesShown = headphones_ && headphones_->isVisible();
    const bool phonesScope = phonesShown && headphones_->WantsScope();
    for (int d = 0; d < 2; ++d) {
        // The decks build scope traces only for the scopes on show.
        if (decks_[d]) {
            dsp::DeckAnalysis& a = decks_[d]->Graphs().Analysis();
            a.SetScopeWanted(dsp::DeckAnalysis::kMainMixerScope, meters_->WantsScope(d));
            a.SetScopeWanted(dsp::DeckAnalysis::kPhonesScope, phonesScope);
        }
    }
    for (int d = 0; d < 2; ++d) {
        const DeckSharedState& s = e.decks[d];
        if (s.isPlaying.load() == 0 || s.metersOff.load() != 0 || !decks_[d])
            continue;
        // A deck short of data stops the whole pass.
        if (s.freshDataLow.load() != 0 || s.discBufferVeryLow.load() != 0)
            return;
        const int slot = HeardSlot(d);
        if (slot < 0 || slot == lastDrawn_[d])
            continue;
        lastDrawn_[d] = slot;
        DeckGraphs& graphs = decks_[d]->Graphs();
        graphs.Draw(slot);
        const auto& ch = graphs.Analysis().At(slot).channels;
        const float rms = 0.5f * (ch[0].rmsDb + ch[1].rmsDb);
        meters_->ShowDeck(d, rms, graphs.BeatValue(), graphs.Analysis().CurrentValues());
        Feed3DGraph(d, graphs.Analysis().CurrentValues());
        if (meters_->WantsScope(d)) {
            const dsp::DeckAnalysis& a = graphs.Analysis();
            graph_values::ScopeTrace(a.At(slot), -1, 0, a.Groups().groups, ~0u, 1.0,
                                     a.IntegerValues(), scope_);
            meters_->ShowScope(d, scope_);
        }
        if (phonesShown)
            headphones_->DrawDeck(d, graphs.Analysis(), slot);
        ++meterDraws_[d];
    }
    Draw3DGraph();
}

void CRynMainMixer::ReadCpuLoad() {
    meters_->SetCpuLoad(cpuLoad_.Read());
}

void CRynMainMixer::OnOverloadLampChanged() {
    // The lamp answers one tick: the user interface has caught up with it.
    const int pending = Engine().pendingTicks.fetch_sub(1) - 1;
    meters_->SetOverloadLamp(overloadLampOn_, pending);
}

void CRynMainMixer::SelectGraphOnly(int templateId, int controlId) {
    // A second double click on the graph shown alone brings every graph back.
    const std::pair<int, int> clicked{templateId, controlId};
    const bool restore = exclusiveGraph_ == clicked;
    if (exclusiveGraph_ == std::make_pair(0, 0) && graph3d_)
        graph3dBefore_ = graph3d_->GraphEnabled();
    exclusiveGraph_ = restore ? std::make_pair(0, 0) : clicked;
    const auto alone = [&](int t, int id) { return restore || clicked == std::make_pair(t, id); };
    bool mixerGraphs = false;
    for (int d = 0; d < 2; ++d) {
        if (decks_[d]) {
            for (int g = 0; g < 2; ++g)
                decks_[d]->Graphs().SetGraphOn(
                    g, alone(CRynDeck::kTemplateId, CRynDeck::GraphControlId(d, g)));
        }
        const bool mixerGraph = alone(kTemplateId, kBandGraphIds[d]);
        mixerGraphOn_[d] = mixerGraph;
        // A deck whose meters are off keeps its graph hidden.
        meters_->BandGraph(d)->setVisible(mixerGraph && Engine().decks[d].metersOff.load() == 0);
        mixerGraphs |= mixerGraph;
    }
    Settings().SetMainMixerGraphEnabledState(mixerGraphs);
    if (graph3d_) {
        const bool on =
            restore ? graph3dBefore_
                    : clicked == std::make_pair(CRyn3DGraph::kTemplateId, CRyn3DGraph::kSurfaceId);
        graph3d_->SetGraphEnabled(on);
    }
    if (headphones_) {
        bool plots = false;
        for (int i = 0; i < 2; ++i) {
            const bool on =
                alone(CRynHeadphonesMixer::kTemplateId, CRynHeadphonesMixer::kPlotIds[i]);
            headphones_->SetPlotOn(i, on);
            plots |= on;
        }
        Settings().SetPhonesMixerGraphEnabledState(plots);
    }
}

void CRynMainMixer::SetGraphIntegers(bool on) {
    for (CRynDeck* deck : decks_)
        if (deck)
            deck->Graphs().SetIntegerValues(on);
}
