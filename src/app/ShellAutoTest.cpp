#include "app/ShellAutoTest.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDateTime>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QTimer>
#include <array>
#include <memory>

#include "app/CMixoraApp.h"
#include "app/CMixoraDlg.h"
#include "app/LayoutAutoTest.h"
#include "app/ShellLog.h"
#include "controls/CNiButton.h"
#include "core/EngineState.h"
#include "deck/CRynDeck.h"
#include "deck/graphs/DeckGraphs.h"
#include "deck/source/DeckSource.h"
#include "dsp/window/CRynEqualizer.h"
#include "output/mixer/CRynMainMixer.h"
#include "output/mixer/MainMixerRecording.h"
#include "output/mixer/MixerMeters.h"
#include "platform/PlatformLayers.h"
#include "platform/sound/SoundDevice.h"

namespace {

class FailingLayers : public PlatformLayers {
  public:
    explicit FailingLayers(bool sound) : sound_(sound), real_(MakeSystemPlatformLayers()) {}
    bool InitialiseSound(QString* problem) override {
        if (!sound_)
            return real_->InitialiseSound(problem);
        *problem = QStringLiteral(
            "the PortAudio sound library (libportaudio2) could not start: "
            "simulated failure");
        return false;
    }
    void ReleaseSound() override { real_->ReleaseSound(); }
    bool CheckMedia(QString* problem) override {
        if (sound_)
            return real_->CheckMedia(problem);
        *problem = QStringLiteral(
            "the FFmpeg media library libavformat is missing "
            "(simulated failure)");
        return false;
    }

  private:
    bool sound_;
    std::unique_ptr<PlatformLayers> real_;
};

}  // namespace

std::unique_ptr<PlatformLayers> AutoTestPlatformLayers() {
    const QString fail = qEnvironmentVariable("MIXORA_AUTOTEST_FAIL");
    if (fail == QLatin1String("sound"))
        return std::make_unique<FailingLayers>(true);
    if (fail == QLatin1String("media"))
        return std::make_unique<FailingLayers>(false);
    return MakeSystemPlatformLayers();
}

bool AutoTestActive() {
    return !qEnvironmentVariableIsEmpty("MIXORA_AUTOTEST") ||
           !qEnvironmentVariableIsEmpty("MIXORA_AUTOTEST_FAIL");
}

void ArmAutoTest(CMixoraDlg& host) {
    const QString script = qEnvironmentVariable("MIXORA_AUTOTEST");
    CMixoraDlg* h = &host;
    if (script == QLatin1String("close-mixer")) {
        QTimer::singleShot(50, h, [h] { h->MainMixer()->close(); });
    } else if (script == QLatin1String("escape")) {
        QTimer::singleShot(50, h, [h] {
            QCoreApplication::postEvent(
                h, new QKeyEvent(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier));
        });
    } else if (script == QLatin1String("play-file")) {
        // The file given on the command line plays on deck A for a while.
        // Read once a second of it has been heard, or 5 s after the drop on
        // a machine too slow for that: timers of a busy start-up may fall
        // due together, so the read waits for the drop, not for the clock.
        QTimer::singleShot(400, h, [h] {
            h->MainMixer()->Deck(0)->DropNeedle();
            auto* poll = new QTimer(h);
            auto* sinceDrop = new QElapsedTimer;
            sinceDrop->start();
            QObject::connect(poll, &QTimer::destroyed, [sinceDrop] { delete sinceDrop; });
            QObject::connect(poll, &QTimer::timeout, h, [h, poll, sinceDrop] {
                if (h->MainMixer()->Deck(0)->ElapsedSeconds() < 1.0 && sinceDrop->elapsed() < 5000)
                    return;
                poll->stop();
                poll->deleteLater();
                CRynDeck* deck = h->MainMixer()->Deck(0);
                ShellLog(QStringLiteral("deck A track %1 elapsed %2 needle %3")
                             .arg(deck->TrackNameText())
                             .arg(deck->ElapsedSeconds(), 0, 'f', 1)
                             .arg(deck->DropLiftButton()->Caption()));
                ShellLog(QStringLiteral("deck A graphs drawn %1 rms %2")
                             .arg(h->MainMixer()->MeterDraws(0))
                             .arg(h->MainMixer()->Meters().RmsText(0)));
                h->MainMixer()->close();
            });
            poll->start(100);
        });
    } else if (script == QLatin1String("record")) {
        // Deck A plays the file of the command line while the mixer's REC
        // button records two seconds of it.
        QTimer::singleShot(400, h, [h] {
            h->MainMixer()->Deck(0)->DropNeedle();
            h->MainMixer()->Recording().RecButton()->SetValue(true);
        });
        QTimer::singleShot(2400, h, [h] {
            MainMixerRecording& rec = h->MainMixer()->Recording();
            rec.RecButton()->SetValue(false);
            ShellLog(QStringLiteral("record %1 time %2 lost %3")
                         .arg(rec.FilePath(), rec.TimeText())
                         .arg(rec.Recorder().LostFrames()));
            ShellLog(QStringLiteral("record notice %1").arg(rec.NoticeText()));
            h->MainMixer()->close();
        });
    } else if (script == QLatin1String("play-both")) {
        auto* poll = new QTimer(h);
        auto* loaded = new bool(false);
        QObject::connect(poll, &QTimer::destroyed, [loaded] { delete loaded; });
        QObject::connect(poll, &QTimer::timeout, h, [h, poll, loaded] {
            CRynMainMixer* m = h->MainMixer();
            for (int d = 0; d < 2; ++d) {
                if (!m->Deck(d) || m->Deck(d)->TrackNameText() == DeckSource::kNoFile)
                    return;
            }
            if (!*loaded) {
                *loaded = true;
                ShellLog(QStringLiteral("both tracks loaded"));
                for (int d = 0; d < 2; ++d) {
                    CRynDeck* deck = m->Deck(d);
                    if (CRynEqualizer* eq = deck->Equalizer()) {
                        eq->ChooseBandCount(12);
                        if (!eq->IsOn())
                            eq->OnButton()->SetValue(true);
                    }
                    const QString graph = qEnvironmentVariable("MIXORA_AUTOTEST_GRAPH");
                    deck->Graphs().SetGraphType(graph.isEmpty() ? QStringLiteral("Scope") : graph);
                    m->SetMetersEnabled(d, true);
                }
            }
            // The needles go down once both outputs are primed.
            if (!m->Deck(0)->Primed() || !m->Deck(1)->Primed())
                return;
            poll->stop();
            m->Deck(0)->DropNeedle();
            m->Deck(1)->DropNeedle();
            // What plays and what is drawn, every 5 s.
            auto* status = new QTimer(h);
            QObject::connect(status, &QTimer::timeout, h, [m] {
                ShellLog(QStringLiteral("playing: elapsed A %1 s B %2 s, drawn A %3 B %4")
                             .arg(m->Deck(0)->ElapsedSeconds(), 0, 'f', 1)
                             .arg(m->Deck(1)->ElapsedSeconds(), 0, 'f', 1)
                             .arg(m->MeterDraws(0))
                             .arg(m->MeterDraws(1)));
            });
            status->start(5000);
        });
        poll->start(20);
    } else if (script == QLatin1String("device-watch")) {
        // Deck A plays the command line's file; ten times a second one line
        // tells what the main device and deck A do. When a lost device comes
        // back the needle is dropped again. The run ends by a signal.
        QTimer::singleShot(400, h, [h] { h->MainMixer()->Deck(0)->DropNeedle(); });
        auto* watch = new QTimer(h);
        auto returns = std::make_shared<int>(0);
        QObject::connect(watch, &QTimer::timeout, h, [h, returns] {
            if (h->ShuttingDown())
                return;  // the windows are going
            CRynMainMixer* mixer = h->MainMixer();
            CRynDeck* deck = mixer->Deck(0);
            sound::SoundDevice* device = mixer->MainOutput().Device();
            if (mixer->MainWatch().Returns() != *returns) {
                *returns = mixer->MainWatch().Returns();
                if (!deck->NeedleDown())
                    deck->DropNeedle();
            }
            ShellLog(QStringLiteral("watch %1 lost %2 device %3 frames %4 needle %5 elapsed %6 "
                                    "display %7")
                         .arg(QDateTime::currentMSecsSinceEpoch())
                         .arg(mixer->MainWatch().Lost() ? 1 : 0)
                         .arg(device ? QString::fromStdString(device->Identifier()) : "none")
                         .arg(device ? device->FramesRendered() : 0)
                         .arg(deck->DropLiftButton()->Caption())
                         .arg(deck->ElapsedSeconds(), 0, 'f', 2)
                         .arg(deck->TrackDisplayText()));
        });
        watch->start(100);
    } else if (script == QLatin1String("change-and-wait")) {
        // Deck A's time display moves on (a stored setting); then the run
        // waits for a signal.
        QTimer::singleShot(200, h, [h] {
            h->MainMixer()->Deck(0)->NextTimeDisplayMode();
            ShellLog(QStringLiteral("changed"));
        });
    } else if (script == QLatin1String("set-curve")) {
        // The cross-fader curve moves to 0.5 (a stored setting); then the
        // user closes the program.
        QTimer::singleShot(100, h, [h] {
            h->MainMixer()->Panel().SetCurveParameter(0.5f);
            h->MainMixer()->close();
        });
    } else if (script == QLatin1String("soak")) {
        // Both decks play their command-line files over and over: a deck
        // whose track ended takes its file again and its needle drops. Every
        // ten seconds a "soak" line counts the main device's underruns.
        const QStringList files = CMixoraApp::CommandLineFiles();
        // When each deck last took its file again: its needle drops once the
        // new first fill has primed the output (a second and a half later).
        auto reloaded = std::make_shared<std::array<qint64, 2>>();
        auto* loop = new QTimer(h);
        QObject::connect(loop, &QTimer::timeout, h, [h, files, reloaded] {
            if (h->ShuttingDown())
                return;
            const qint64 now = QDateTime::currentMSecsSinceEpoch();
            for (int d = 0; d < 2 && d < files.size(); ++d) {
                CRynDeck* deck = h->MainMixer()->Deck(d);
                if (deck->TrackEnded()) {
                    deck->OpenFiles({files[d]});
                    (*reloaded)[d] = now;
                } else if (deck->Rotating() && !deck->NeedleDown() && deck->Primed() &&
                           now - (*reloaded)[d] > 1500) {
                    deck->DropNeedle();
                }
            }
        });
        loop->start(250);
        auto* report = new QTimer(h);
        QObject::connect(report, &QTimer::timeout, h, [h] {
            if (h->ShuttingDown())
                return;
            sound::SoundDevice* device = h->MainMixer()->MainOutput().Device();
            ShellLog(QStringLiteral("soak %1 device %2 underruns %3 elapsed %4 %5")
                         .arg(QDateTime::currentMSecsSinceEpoch())
                         .arg(device ? QString::fromStdString(device->Identifier()) : "none")
                         .arg(device ? device->UnderrunCount() : 0)
                         .arg(h->MainMixer()->Deck(0)->ElapsedSeconds(), 0, 'f', 1)
                         .arg(h->MainMixer()->Deck(1)->ElapsedSeconds(), 0, 'f', 1));
        });
        report->start(10000);
    } else if (script == QLatin1String("play-close")) {
        for (int d = 0; d < 2; ++d) {
            PostAppMessageRetry(h->MainMixer()->Handle(), UWM_START_FORWARD_THREAD,
                                static_cast<WParam>(d), 0);
        }
        PostAppMessageRetry(h->Handle(), UWM_METERS_THREAD, 1, 0);
        // A device's block boundaries, every 27 ms on both decks.
        auto* device = new QTimer(h);
        QObject::connect(device, &QTimer::timeout, h, [] {
            for (DeckSharedState& d : Engine().decks)
                d.forwardNotifyEvent.Set();
        });
        device->start(27);
        QTimer::singleShot(400, h, [h] { h->MainMixer()->close(); });
    } else if (script == QLatin1String("eq-change")) {
        QTimer::singleShot(50, h, [h] {
            CRynEqualizer* a = h->MainMixer()->Deck(0)->Equalizer();
            a->ChooseBandCount(6);
            a->FilterTypeList()->setCurrentText(QStringLiteral("Blackman"));
            a->AntiClipButton()->SetValue(false);
            a->OnButton()->SetValue(true);
            CRynEqualizer* b = h->MainMixer()->Deck(1)->Equalizer();
            b->ChooseBandCount(12);
            b->FilterTypeList()->setCurrentText(QStringLiteral("Hamming"));
            ShellLog(QStringLiteral("equalizers changed"));
            h->MainMixer()->close();
        });
    } else if (script == QLatin1String("eq-report")) {
        QTimer::singleShot(1500, h, [h] {
            for (int d = 0; d < 2; ++d) {
                const CRynEqualizer* eq = h->MainMixer()->Deck(d)->Equalizer();
                ShellLog(QStringLiteral("equalizer %1 bands %2 designed %3 filter %4 %5 %6")
                             .arg(QChar('A' + d))
                             .arg(eq->BandCount())
                             .arg(eq->Engines().BandCount())
                             .arg(eq->FilterTypeList()->currentText())
                             .arg(eq->AntiClipButton()->Caption())
                             .arg(eq->OnButton()->Caption()));
            }
            h->MainMixer()->close();
        });
    }
    ArmLayoutAutoTest(host, script);
}
