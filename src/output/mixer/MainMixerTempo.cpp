// The main mixer's beats-per-minute read-outs: each deck's track is measured
// by the tempo service when the deck takes it, and the read-out shows the
// tempo as heard, the track's tempo times the deck's playback rate, again
// whenever the deck's frequency changes (tempo slide, spindle, steps).
#include <QLabel>
#include <QPointer>

#include "core/Paths.h"
#include "deck/CRynDeck.h"
#include "deck/tempo/DeckTempoPanel.h"
#include "output/laws/HeardTempo.h"
#include "output/mixer/CRynMainMixer.h"
#include "output/mixer/MixerMeters.h"
#include "platform/tempo/TempoEstimator.h"
#include "playlist/window/CRynPlayList.h"

void CRynMainMixer::SetTempoService(std::unique_ptr<TrackTempoService> service) {
    tempo_ = std::move(service);
}

void CRynMainMixer::StopTempo() {
    if (!tempo_)
        return;
    tempo_->Stop();
    tempo_->onTempo = nullptr;
}

void CRynMainMixer::InitialiseTempo() {
    if (!tempo_) {
        tempo_ = std::make_unique<TrackTempoService>(
            tempo::CreateTempoEstimator(),
            DataDir() + QLatin1Char('/') + QLatin1String(TrackTempoCache::kFileName));
    }
    // Watched from now on: a deck (and its play list) may go at shutdown
    // while an answer is on its way.
    const std::array<QPointer<CRynDeck>, 2> owners{decks_[0], decks_[1]};
    tempo_->onTempo = [this, owners](int deck, const std::string& path, double bpm) {
        const QPointer<CRynDeck>& owner = owners[deck];
        if (closing_ || !owner)
            return;
        trackBpm_[deck] = bpm;
        ShowTempo(deck);
        if (const QPointer<CRynPlayList> list = owner->PlayListWindow())
            list->ShowTempo(path, static_cast<float>(bpm));
    };
    for (int d = 0; d < 2; ++d) {
        const QString name = d == 0 ? QStringLiteral("A") : QStringLiteral("B");
        Registry().Register(
            meters_->BpmLabel(d), this, QStringLiteral("Deck %1 Beats Per Minute:").arg(name),
            QStringLiteral("The tempo deck %1 is heard at, in beats per minute with one decimal: "
                           "the tempo measured in its track times the deck's playback rate, so "
                           "it follows the tempo slide, the spindle and the tempo steps. The "
                           "track is measured in the background when the deck loads it, once: "
                           "the result is kept, and also shown in the play list's BPM column. "
                           "\"--- BPM\" while no tempo is known (no file, a file without a "
                           "steady beat, or one that cannot be read).")
                .arg(name),
            QStringLiteral("deck %1 tempo (BPM)").arg(name.toLower()));
        if (!decks_[d])
            continue;
        decks_[d]->onTrackChanged = [this, d](const std::string& path) {
            trackBpm_[d] = 0;
            ShowTempo(d);
            tempo_->Request(d, path);
        };
        // A track the deck took before the mixer was ready.
        if (!decks_[d]->HeldFile().empty())
            tempo_->Request(d, decks_[d]->HeldFile());
    }
    tempo_->Start();
}

double CRynMainMixer::HeardTrackTempo(int deck) const {
    if (!decks_[deck])
        return trackBpm_[deck];
    DeckTempoPanel& panel = decks_[deck]->Tempo();
    const int base = panel.baseRate ? panel.baseRate() : 0;
    return HeardTempo(trackBpm_[deck], panel.OutputFrequency(), base);
}

void CRynMainMixer::ShowTempo(int deck) {
    if (meters_)
        meters_->SetBpmText(deck, TempoReadout(HeardTrackTempo(deck)));
}
