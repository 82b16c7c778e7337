// TrackTempoService: measures the tempo of the tracks the decks load, on a
// worker thread of the lowest priority, so that neither the decks' readers
// nor the window thread ever wait for it.
//
// The window thread asks with Request(deck, path); the worker looks the file
// up in the TrackTempoCache (path, size, modification time) and, when it is
// not there, measures it (TrackTempo, a decoder of its own) and stores the
// result. The answer comes back on the window thread through onTempo. Each
// deck has one request slot: a newer request replaces one still waiting, and
// a measurement no deck wants any more is stopped. An answer for a track the
// deck no longer holds is dropped. A file that cannot be read gets no answer
// (and no cache entry); one without a steady beat is answered with 0.
//
// A file on an optical or removable drive waits while a deck plays from
// such a drive, so that the drive is left to play (holdOff; asked again every
// half second). Files on fixed disks are measured at once.
//
// Start runs the worker; Stop (also the destructor) ends it within a block's
// decoding.
#pragma once

#include <QObject>
#include <QString>
#include <array>
#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "deck/tempo/TrackTempoCache.h"
#include "platform/tempo/TempoEstimator.h"

class TrackTempoService : public QObject {
    Q_OBJECT
  public:
    // `cacheFile`: the cache's file ("" keeps it in memory only).
    TrackTempoService(std::unique_ptr<tempo::TempoEstimator> estimator, const QString& cacheFile,
                      QObject* parent = nullptr);
    ~TrackTempoService() override;

    void Start();
    void Stop();
    bool IsRunning() const { return thread_.joinable(); }

    // Deck `deck` (0 or 1) now holds `path` ("" for no file: nothing is
    // asked, and a waiting request of the deck is withdrawn).
    void Request(int deck, const std::string& path);
    // The tempo of the deck's track: bpm > 0, or 0 when it has no steady
    // beat. On the window thread.
    std::function<void(int deck, const std::string& path, double bpm)> onTempo;

    // Whether measuring `path` must wait now. Asked on the worker thread.
    // Unset: the file lies on a removable drive (RemovableDrive) and a deck
    // plays a file from one (the engine state's decks). Set it before Start.
    std::function<bool(const std::string& path)> holdOff;

    // Measurements run, and requests answered from the cache (tests, bench).
    int Analyses() const { return analyses_.load(); }
    int CacheHits() const { return cacheHits_.load(); }

  protected:
    // Takes the worker's answers on the window thread.
    bool event(QEvent* e) override;

  private:
    void Run();
    // Whether any deck still wants `path` (under mutex_).
    bool Wanted(const std::string& path) const;
    bool HoldOff(const std::string& path) const;
    void Deliver(int deck, const std::string& path, double bpm);

    std::unique_ptr<tempo::TempoEstimator> estimator_;
    TrackTempoCache cache_;  // the worker's only

    std::mutex mutex_;  // guards the slots and the wanted paths
    std::condition_variable wake_;
    std::array<std::string, 2> pending_;  // waiting requests, "" = none
    std::array<std::string, 2> wanted_;   // what each deck holds now
    std::string measuring_;               // the path being measured, "" = none
    bool quit_ = false;
    int lastDeck_ = 1;  // the deck whose request was taken last
    // Whether each deck's file lies on a removable drive (set by Request).
    std::array<std::atomic<bool>, 2> onRemovable_{};
    std::atomic<bool> stopMeasuring_{false};

    std::atomic<int> analyses_{0};
    std::atomic<int> cacheHits_{0};
    std::thread thread_;
};
