// The main mixer's recorder: a "REC" button that records the main output,
// exactly as it goes to the main device, to a file in the user's music
// folder named by the date and time it starts (RecordingName.h); a
// "WAV"/"FLAC" button for the file type (stored as "recordingFormat"); the
// running time of the recording and, in red, the frames lost when the disk
// fell behind; and a notice line for where the file went or what went wrong.
//
//   REC pressed   -> folder checked, file created, the MixRecorder put on
//                    the main output as its mix tap; the time runs
//   REC released  -> tap taken off, the rest written, the file closed;
//                    the notice tells the file's name and folder
//   every 200 ms  -> time and lost frames shown; a write error (disk full),
//                    the main device turned off or opened at another rate
//                    stop the recording with a message; the file so far
//                    stays valid
// The tap follows the main output when its device is reopened (a lost
// device plays on the Null device meanwhile: the recording goes on).
//
// User-interface thread only. The main output must outlive the recording,
// or Stop() must be called while it still exists (the main mixer does that
// first in its destructor).
#pragma once

#include <QString>
#include <QTimer>
#include <QWidget>

#include "output/engine/MixRecorder.h"

class CNiButton;
class ComponentRegistry;
class CRynAudioOutput;
class CRynSettings;
class QLabel;

class MainMixerRecording : public QWidget {
    Q_OBJECT
  public:
    static constexpr int kPollMs = 200;

    // Neither pointer is owned; settings may be null (WAV then).
    MainMixerRecording(CRynAudioOutput* output, CRynSettings* settings, QWidget* parent = nullptr);
    ~MainMixerRecording() override;

    // Registers the controls, in the order they appear, in `window`'s registry.
    void Register(ComponentRegistry& registry, QWidget* window);

    // What the REC button does when pressed and released; code presses the
    // button (RecButton()->SetValue) and lets its event call these.
    bool Start();
    void Stop();
    bool Recording() const { return recorder_.Recording(); }

    // The timer's work: time, lost frames, and the checks that end a
    // recording.
    void Poll();

    MixRecorder::Format ChosenFormat() const;
    const MixRecorder& Recorder() const { return recorder_; }
    // The file of the current or last recording ("" before the first).
    QString FilePath() const { return QString::fromStdString(recorder_.Path()); }
    QString TimeText() const;
    QString LostText() const;
    QString NoticeText() const;

    CNiButton* RecButton() const { return rec_; }
    CNiButton* FormatButton() const { return format_; }

  private:
    // Ends the recording; `problem` (not empty) is shown as an error,
    // else the notice tells where the file went.
    void Finish(const QString& problem);
    void ShowNotice(const QString& text, bool error);
    void ShowCounts();
    // Moves the REC button without running its event.
    void SetRecLook(bool on);

    CRynAudioOutput* output_ = nullptr;
    CRynSettings* settings_ = nullptr;
    MixRecorder recorder_;
    CNiButton* rec_ = nullptr;
    CNiButton* format_ = nullptr;
    QLabel* time_ = nullptr;
    QLabel* lost_ = nullptr;
    QLabel* notice_ = nullptr;
    QTimer poll_;
};
