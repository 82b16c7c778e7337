#include "DeckRig.h"

#include <QFile>
#include <QSaveFile>
#include <QStringList>
#include <cstring>

#include "TestSupport.h"
#include "deck/CRynDeck.h"
#include "deck/disc/CRynDiscBuffer.h"
#include "dsp/window/CRynEqualizer.h"
#include "output/mixer/CRynMainMixer.h"
#include "platform/sound/SoundDevice.h"

namespace testsupport {

namespace {

void Put32(QByteArray& b, std::uint32_t v) {
    for (int i = 0; i < 4; ++i)
        b.append(char((v >> (8 * i)) & 0xff));
}

void Put16(QByteArray& b, std::uint16_t v) {
    b.append(char(v & 0xff));
    b.append(char(v >> 8));
}

}  // namespace

std::vector<std::int16_t> WriteWav(const QString& path, int rate, int frames,
                                   std::int16_t (*sample)(int, int)) {
    std::vector<std::int16_t> pcm(static_cast<std::size_t>(frames) * 2);
    for (int i = 0; i < frames; ++i) {
        pcm[2 * i] = sample(i, 0);
        pcm[2 * i + 1] = sample(i, 1);
    }
    const std::uint32_t dataBytes = static_cast<std::uint32_t>(pcm.size() * 2);
    QByteArray b;
    b.append("RIFF");
    Put32(b, 36 + dataBytes);
    b.append("WAVEfmt ");
    Put32(b, 16);
    Put16(b, 1);
    Put16(b, 2);
    Put32(b, static_cast<std::uint32_t>(rate));
    Put32(b, static_cast<std::uint32_t>(rate) * 4);
    Put16(b, 4);
    Put16(b, 16);
    b.append("data");
    Put32(b, dataBytes);
    b.append(reinterpret_cast<const char*>(pcm.data()), static_cast<qsizetype>(dataBytes));
    // Tests run in parallel processes share the fixture folder: a file is
    // replaced whole, never truncated under another test's reader.
    QSaveFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write(b) != b.size() || !f.commit())
        return {};
    return pcm;
}

std::int16_t NoiseSample(int frame, int channel) {
    std::uint32_t x = static_cast<std::uint32_t>(frame * 2 + channel) * 2654435761u + 12345u;
    x ^= x >> 13;
    x *= 0x5bd1e995u;
    x ^= x >> 15;
    const auto v = static_cast<std::int16_t>(x & 0xffff);
    return v == 0 ? std::int16_t(1) : v;
}

PlaybackRig::PlaybackRig(bool twoDecks, bool equalizers, CRynHeadphonesMixer* headphones,
                         CRyn3DGraph* graph3d) {
    ResetEngineStateForTest();
    Engine().mainDialogWindow = host_.Handle();
    mixer_ = std::make_unique<CRynMainMixer>();
    mixer_->MainOutput().OpenDevice(
        sound::SoundDevice::OpenNull(sound::SoundDevice::NullClock::Manual), mixer_->Handle());
    for (int d = 0; d < (twoDecks ? 2 : 1); ++d) {
        decks_[d] = std::make_unique<CRynDeck>();
        if (equalizers) {
            equalizers_[d] = std::make_unique<CRynEqualizer>();
            equalizers_[d]->Initialise(d, decks_[d]->Handle());
        }
        decks_[d]->Initialise(nullptr, equalizers_[d].get(), nullptr, mixer_->Handle(), d);
    }
    mixer_->Initialise(host_.Handle(), decks_[0].get(), decks_[1].get(), headphones, graph3d);
    // Unity for deck A: full levels, and the wedge curve gives the deck at
    // the fader's end all of its level.
    MainMixerPanel& panel = mixer_->Panel();
    panel.SetLevel(0, 1.0f);
    panel.SetLevel(1, 1.0f);
    panel.SetCurveParameter(1.0f);
    panel.SetCrossFader(-1.0f);
}

PlaybackRig::~PlaybackRig() {
    for (auto& d : decks_) {
        if (d)
            d->Shutdown();
    }
    mixer_->Notifications().JoinAll();
    decks_[0].reset();
    decks_[1].reset();
    equalizers_[0].reset();
    equalizers_[1].reset();
    mixer_.reset();
    ResetEngineStateForTest();
}

bool PlaybackRig::RenderBlocks(int blocks) {
    for (int i = 0; i < blocks; ++i) {
        // A deck playing backwards steps on its reverse notifications.
        auto steps = [&](int d) { return mixer_->MixSteps(d) + mixer_->ReverseSteps(d); };
        std::array<int, 2> before{steps(0), steps(1)};
        std::array<bool, 2> playing{};
        for (int d = 0; d < 2; ++d)
            playing[d] = decks_[d] && (mixer_->MainOutput().IsForwardPlaying(d) ||
                                       mixer_->MainOutput().IsReversePlaying(d));
        std::vector<std::int16_t> chunk(kBlockFrames * 2);
        if (!mixer_->MainOutput().Device()->Render(kBlockFrames, chunk.data()))
            return false;
        output_.insert(output_.end(), chunk.begin(), chunk.end());
        const bool stepped = WaitFor(
            [&] {
                for (int d = 0; d < 2; ++d) {
                    if (playing[d] && Engine().decks[d].isPlaying.load() != 0 &&
                        steps(d) == before[d])
                        return false;
                }
                return true;
            },
            2000);
        if (!stepped)
            return false;
    }
    return true;
}

bool PlaybackRig::RenderUntil(const std::function<bool()>& pred, int maxBlocks) {
    for (int i = 0; i < maxBlocks && !pred(); ++i) {
        if (!RenderBlocks(1))
            return false;
    }
    return pred();
}

bool PlaybackRig::RenderAndDraw(int blocks) {
    for (int i = 0; i < blocks; ++i) {
        if (!RenderBlocks(1))
            return false;
        WaitForReaders(2000);
        mixer_->DrawGraphsAndMeters();
    }
    return true;
}

void PlaybackRig::WaitForReaders(int timeoutMs) {
    WaitFor(
        [&] {
            for (int i = 0; i < 2; ++i) {
                DeckSharedState& d = Engine().decks[i];
                const bool shortOfData =
                    d.freshDataLow.load() != 0 || d.discBufferVeryLow.load() != 0;
                if (!decks_[i] || d.isPlaying.load() == 0 || !shortOfData)
                    continue;
                const CRynDiscBuffer& disc = decks_[i]->Disc();
                const bool reading = disc.ForwardReaderExists() && !disc.ReaderSuspended() &&
                                     d.forwardReaderRun.load() != 0;
                if (reading && (d.forwardReaderWaiting.load() == 0 || d.forwardWakeEvent.IsSet()))
                    return false;
            }
            return true;
        },
        timeoutMs);
}

bool PlaybackRig::LoadAndPrime(int d, const QStringList& files) {
    decks_[d]->OpenFiles(files);
    return WaitFor([&] { return decks_[d]->Primed(); }, 10000);
}

bool PlaybackRig::Drop(int d) {
    decks_[d]->DropNeedle();
    return WaitFor([&] { return mixer_->MainOutput().IsForwardPlaying(d); });
}

}  // namespace testsupport
