// Telling a key let go from a key held down under the X server's auto-repeat.
// While a key is held, X repeats it as a release and a press with the same
// time stamp; Qt marks such pairs as auto-repeat only when it sees the press
// already waiting behind the release, which it often does not. So a release
// is held back here for a few milliseconds: a press of the same key with the
// same time stamp cancels it (the key never went up), otherwise it is
// delivered. Releases without a time stamp (made by code) are delivered at
// once. User-interface thread only.
#pragma once

#include <QObject>
#include <QTimer>
#include <functional>
#include <map>

class KeyReleaseSettle : public QObject {
    Q_OBJECT
  public:
    // How long a release waits for its repeat press, milliseconds.
    static constexpr int kSettleMs = 15;

    explicit KeyReleaseSettle(QObject* parent = nullptr);

    // A release of key `key` at `timestamp` (ms, 0 = none): `deliver` runs
    // now or when the release has settled.
    void Release(int key, unsigned long long timestamp, std::function<void()> deliver);
    // A press of `key` at `timestamp`: true when it cancelled a waiting
    // release, that is the press is a repeat of a held key.
    bool Press(int key, unsigned long long timestamp);
    // Delivers every waiting release now.
    void Flush();

  private:
    struct Waiting {
        unsigned long long timestamp;
        std::function<void()> deliver;
    };
    std::map<int, Waiting> waiting_;
    QTimer timer_;
};
