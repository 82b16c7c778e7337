#include "deck/tempo/TrackTempoService.h"

#include <QCoreApplication>
#include <QEvent>
#include <chrono>

#include "core/EngineState.h"
#include "platform/media/RemovableDrive.h"
#include "sources/CRynFileDecoder.h"

#include "core/ThreadPriority.h"
#include "core/TsanAnnotations.h"
#include "sources/TrackTempo.h"

TrackTempoService::TrackTempoService(std::unique_ptr<tempo::TempoEstimator> estimator,
                                     const QString& cacheFile, QObject* parent)
    : QObject(parent), estimator_(std::move(estimator)), cache_(cacheFile) {}

TrackTempoService::~TrackTempoService() {
    Stop();
}

void TrackTempoService::Start() {
    if (thread_.joinable())
        return;
    {
        std::lock_guard lock(mutex_);
        quit_ = false;
    }
    thread_ = std::thread([this] { Run(); });
}

void TrackTempoService::Stop() {
    if (!thread_.joinable())
        return;
    {
        std::lock_guard lock(mutex_);
        quit_ = true;
    }
    stopMeasuring_.store(true);
    wake_.notify_all();
    thread_.join();
}

void TrackTempoService::Request(int deck, const std::string& path) {
    if (deck < 0 || deck > 1)
        return;
    // Whether the deck's file lies on a removable drive, found here on the
    // window thread: the worker never touches a deck's decoder.
    onRemovable_[deck].store(!path.empty() && media::IsPathOnRemovableDrive(path));
    {
        std::lock_guard lock(mutex_);
        wanted_[deck] = path;
        pending_[deck] = path;
        if (!measuring_.empty() && !Wanted(measuring_))
            stopMeasuring_.store(true);
    }
    wake_.notify_all();
}

bool TrackTempoService::Wanted(const std::string& path) const {
    return wanted_[0] == path || wanted_[1] == path;
}

bool TrackTempoService::HoldOff(const std::string& path) const {
    if (holdOff)
        return holdOff(path);
    bool drivePlays = false;
    for (int d = 0; d < 2; ++d) {
        const DeckSharedState& deck = Engine().decks[d];
        if (deck.isPlaying.load() != 0 && deck.sourceType.load() == 1 && onRemovable_[d].load())
            drivePlays = true;
    }
    return drivePlays && media::IsPathOnRemovableDrive(path);
}

void TrackTempoService::Run() {
    ApplyCurrentThreadPriority(ThreadPriority::Lowest);
    std::unique_lock lock(mutex_);
    for (;;) {
        wake_.wait(lock, [this] { return quit_ || !pending_[0].empty() || !pending_[1].empty(); });
        if (quit_)
            return;
        // The decks take turns, so that one held off cannot keep the other waiting.
        const int deck = pending_[1 - lastDeck_].empty() ? lastDeck_ : 1 - lastDeck_;
        lastDeck_ = deck;
        const std::string path = std::move(pending_[deck]);
        pending_[deck].clear();
        measuring_ = path;
        stopMeasuring_.store(false);
        lock.unlock();

        const std::optional<TrackTempoCache::Key> key = TrackTempoCache::KeyOf(path);
        std::optional<double> bpm;
        if (key && !cache_.Find(*key) && HoldOff(path)) {
            // Asked again in half a second, unless a newer request of the
            // deck took its slot meanwhile.
            lock.lock();
            measuring_.clear();
            if (pending_[deck].empty() && wanted_[deck] == path)
                pending_[deck] = path;
            wake_.wait_for(lock, std::chrono::milliseconds(500), [this] { return quit_; });
            continue;
        }
        if (key) {
            bpm = cache_.Find(*key);
            if (bpm) {
                cacheHits_.fetch_add(1);
            } else {
                analyses_.fetch_add(1);
                const TrackTempoResult r = MeasureTrackTempo(path, *estimator_, &stopMeasuring_);
                if (r.status == TrackTempoResult::Status::Measured) {
                    bpm = r.bpm;
                    cache_.Store(*key, r.bpm);
                }
            }
        }

        lock.lock();
        measuring_.clear();
        if (bpm) {
            // Both decks may hold the same track.
            for (int d = 0; d < 2; ++d)
                if (wanted_[d] == path)
                    Deliver(d, path, *bpm);
        }
    }
}

namespace {

// One answer on its way to the window thread.
const QEvent::Type kTempoEventType = static_cast<QEvent::Type>(QEvent::registerEventType());

struct TempoEvent : QEvent {
    TempoEvent(int d, std::string p, double b)
        : QEvent(kTempoEventType), deck(d), path(std::move(p)), bpm(b) {}
    int deck;
    std::string path;
    double bpm;
};

}  // namespace

void TrackTempoService::Deliver(int deck, const std::string& path, double bpm) {
    auto* event = new TempoEvent(deck, path, bpm);
    MIXORA_HANDOVER_RELEASE(event);
    QCoreApplication::postEvent(this, event);
}

bool TrackTempoService::event(QEvent* e) {
    MIXORA_HANDOVER_ACQUIRE(e);
    if (e->type() != kTempoEventType)
        return QObject::event(e);
    const auto* answer = static_cast<const TempoEvent*>(e);
    bool current = false;
    {
        std::lock_guard lock(mutex_);
        current = wanted_[answer->deck] == answer->path;
    }
    if (current && onTempo)
        onTempo(answer->deck, answer->path, answer->bpm);
    return true;
}
