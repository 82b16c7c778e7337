// A real audio server for tests: a private JACK server with the dummy driver
// (named after the test, stopped by its PID), and a JACK client with two
// inputs that records them into preallocated memory.
#pragma once

#include <jack/jack.h>

#include <QByteArray>
#include <QProcess>
#include <QString>
#include <atomic>
#include <cstddef>
#include <vector>

#include "JackTestServer.h"

namespace testsupport {

// The dummy-driver JACK server of the tests (tests/JackTestServer.h).
using JackTestServer = JackServer;

// The amplitude of the `hz` tone in `samples` recorded at `rate` frames a
// second (a Hann-windowed Goertzel filter; a full-scale sine gives 1).
double ToneAmplitude(const std::vector<float>& samples, double hz, double rate = 44100.0);

class JackRecorder {
  public:
    explicit JackRecorder(std::size_t frames) : left_(frames), right_(frames) {}
    ~JackRecorder() { Close(); }

    // A client `name` with inputs "in_l" and "in_r" on server `server`.
    bool Open(const char* name, const char* server);
    // Inputs from the two output ports named.
    bool Connect(const char* left, const char* right);
    // Inputs from the output ports that feed the two input ports named
    // (what a program plays into system:playback_1 and _2).
    bool ListenTo(const char* target0, const char* target1);
    bool Connected() const;
    bool PortExists(const char* name);

    void Begin() { recording_.store(true); }
    std::size_t Recorded() const { return count_.load(); }
    bool Full() const { return count_.load() >= left_.size(); }
    const std::vector<float>& Left() const { return left_; }
    const std::vector<float>& Right() const { return right_; }
    int Rate() const { return rate_; }
    void Close();

  private:
    static int Process(jack_nframes_t n, void* arg);

    jack_client_t* client_ = nullptr;
    jack_port_t* in_[2] = {nullptr, nullptr};
    int rate_ = 0;
    std::vector<float> left_, right_;
    std::atomic<bool> recording_{false};
    std::atomic<std::size_t> count_{0};
};

}  // namespace testsupport
