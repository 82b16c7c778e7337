// Helpers shared by the tests: fixture files made with sox/ffmpeg, temporary
// folders, and waiting on the Qt event loop.
#pragma once

#include <QString>
#include <QStringList>
#include <functional>
#include <vector>

#include "core/CRynWindow.h"

namespace testsupport {

// Runs a program; true when it exits 0. Output goes to the test log on failure.
bool Run(const QString& program, const QStringList& args, int timeoutMs = 60000);

// A folder for generated fixtures inside the build tree, made once per run.
// Tests in parallel processes share it: a fixture is made in a working file
// of this process and then replaces its path whole (rename), so no test
// reads another's half-written file.
QString FixtureDir();

// A working path next to `path` for this process, with the same suffix.
QString WorkingPath(const QString& path);

// Moves `working` over `path` in one step; true on success.
bool Publish(const QString& working, const QString& path);

// Runs `program` with `args`, in which `path` names the output: the program
// writes a working file that is then published at `path`.
bool RunInto(const QString& path, const QString& program, QStringList args);

// Generates (once) a file with ffmpeg's lavfi sine source:
// name, frequency Hz, seconds, sample rate, channels, and extra ffmpeg output
// arguments (codec, sample format). Returns its path, or empty on failure.
QString MakeTone(const QString& name, double frequency, double seconds, int rate = 44100,
                 int channels = 2, const QStringList& codecArgs = {});

// A receiver that records every application message it gets, on the thread
// it was created on, and answers with onMessage's result (0 when unset).
class MessageLog : public MessageSink {
  public:
    struct Message {
        Uwm msg;
        WParam w;
        LParam l;
    };
    LResult OnAppMessage(Uwm msg, WParam w, LParam l) override {
        got.push_back({msg, w, l});
        return onMessage ? onMessage(msg, w, l) : 0;
    }
    int Count(Uwm msg) const {
        int n = 0;
        for (const Message& m : got)
            n += m.msg == msg;
        return n;
    }
    std::vector<Message> got;
    std::function<LResult(Uwm, WParam, LParam)> onMessage;
};

// Pumps the Qt event loop until pred() or timeoutMs passes; returns pred().
bool WaitFor(const std::function<bool()>& pred, int timeoutMs = 5000);

}  // namespace testsupport
