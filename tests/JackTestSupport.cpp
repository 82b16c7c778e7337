#include "JackTestSupport.h"

#include <QProcessEnvironment>
#include <cmath>
#include <numbers>

#include "JackTestServer.h"
#include "TestSupport.h"

namespace testsupport {

double ToneAmplitude(const std::vector<float>& s, double hz, double rate) {
    const double w = 2.0 * std::numbers::pi * hz / rate;
    double re = 0, im = 0, windowSum = 0;
    const std::size_t n = s.size();
    for (std::size_t i = 0; i < n; ++i) {
        const double hann = 0.5 - 0.5 * std::cos(2.0 * std::numbers::pi * i / (n - 1));
        re += s[i] * hann * std::cos(w * i);
        im -= s[i] * hann * std::sin(w * i);
        windowSum += hann;
    }
    return 2.0 * std::hypot(re, im) / windowSum;
}

bool JackRecorder::Open(const char* name, const char* server) {
    jack_status_t status;
    client_ = jack_client_open(
        name, static_cast<jack_options_t>(JackNoStartServer | JackServerName), &status, server);
    if (client_ == nullptr)
        return false;
    in_[0] = jack_port_register(client_, "in_l", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
    in_[1] = jack_port_register(client_, "in_r", JACK_DEFAULT_AUDIO_TYPE, JackPortIsInput, 0);
    rate_ = static_cast<int>(jack_get_sample_rate(client_));
    jack_set_process_callback(client_, &JackRecorder::Process, this);
    return in_[0] && in_[1] && jack_activate(client_) == 0;
}

bool JackRecorder::Connect(const char* left, const char* right) {
    return jack_connect(client_, left, jack_port_name(in_[0])) == 0 &&
           jack_connect(client_, right, jack_port_name(in_[1])) == 0;
}

bool JackRecorder::ListenTo(const char* target0, const char* target1) {
    const char* targets[2] = {target0, target1};
    for (int k = 0; k < 2; ++k) {
        jack_port_t* port = jack_port_by_name(client_, targets[k]);
        if (port == nullptr)
            return false;
        const char** feeders = jack_port_get_all_connections(client_, port);
        if (feeders == nullptr)
            return false;
        const int r = feeders[0] ? jack_connect(client_, feeders[0], jack_port_name(in_[k])) : -1;
        jack_free(feeders);
        if (r != 0)
            return false;
    }
    return true;
}

bool JackRecorder::Connected() const {
    return jack_port_connected(in_[0]) > 0 && jack_port_connected(in_[1]) > 0;
}

bool JackRecorder::PortExists(const char* name) {
    return jack_port_by_name(client_, name) != nullptr;
}

void JackRecorder::Close() {
    if (client_) {
        jack_deactivate(client_);
        jack_client_close(client_);
        client_ = nullptr;
    }
}

int JackRecorder::Process(jack_nframes_t n, void* arg) {
    auto* self = static_cast<JackRecorder*>(arg);
    if (!self->recording_.load())
        return 0;
    const auto* l = static_cast<const float*>(jack_port_get_buffer(self->in_[0], n));
    const auto* r = static_cast<const float*>(jack_port_get_buffer(self->in_[1], n));
    std::size_t at = self->count_.load(std::memory_order_relaxed);
    for (jack_nframes_t i = 0; i < n && at < self->left_.size(); ++i, ++at) {
        self->left_[at] = l[i];
        self->right_[at] = r[i];
    }
    self->count_.store(at, std::memory_order_release);
    return 0;
}

}  // namespace testsupport
