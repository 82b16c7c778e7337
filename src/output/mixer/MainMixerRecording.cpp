#include "output/mixer/MainMixerRecording.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "controls/CNiButton.h"
#include "controls/ControlLook.h"
#include "core/ComponentRegistry.h"
#include "output/engine/CRynAudioOutput.h"
#include "output/laws/RecordingName.h"
#include "settings/CRynSettings.h"

namespace {
// The stored file type: "WAV" (the default) or "FLAC".
const QString kFormatSetting = QStringLiteral("recordingFormat");
const QString kWav = QStringLiteral("WAV");
const QString kFlac = QStringLiteral("FLAC");
const QColor kRecOn(240, 40, 40);
const QColor kRecOff(60, 10, 10);
const QColor kLostColour(255, 90, 80);
}  // namespace

MainMixerRecording::MainMixerRecording(CRynAudioOutput* output, CRynSettings* settings,
                                       QWidget* parent)
    : QWidget(parent), output_(output), settings_(settings) {
    setObjectName(QStringLiteral("MainMixerRecording"));
    // The panel's dark face, so the strip reads as part of the mixer above.
    setAutoFillBackground(true);
    QPalette face = palette();
    face.setColor(QPalette::Window, control_look::PanelColor());
    setPalette(face);
    rec_ = new CNiButton(QStringLiteral("REC"), QStringLiteral("REC"), this);
    rec_->setObjectName(QStringLiteral("Main Mixer Record Button"));
    rec_->SetStyle(CNiButton::kLedButton);
    rec_->SetAction(CNiButton::kSwitchWhenPressed);
    rec_->SetColors(kRecOn, kRecOff);
    rec_->setFixedSize(64, 22);

    format_ = new CNiButton(kWav, kFlac, this);
    format_->setObjectName(QStringLiteral("Main Mixer Recording Format Button"));
    format_->SetAction(CNiButton::kSwitchWhenPressed);
    format_->setFixedSize(48, 22);

    time_ = new QLabel(recording::ElapsedText(0, 44100), this);
    time_->setObjectName(QStringLiteral("Main Mixer Recording Time"));
    QPalette pal = time_->palette();
    pal.setColor(QPalette::WindowText, control_look::TextColor());
    time_->setPalette(pal);
    lost_ = new QLabel(this);
    lost_->setObjectName(QStringLiteral("Main Mixer Recording Lost Frames"));
    pal.setColor(QPalette::WindowText, kLostColour);
    lost_->setPalette(pal);
    lost_->hide();
    notice_ = new QLabel(this);
    notice_->setObjectName(QStringLiteral("Main Mixer Recording Notice"));
    notice_->setWordWrap(true);
    notice_->hide();

    auto* row = new QHBoxLayout;
    row->setSpacing(6);
    row->addWidget(rec_);
    row->addWidget(format_);
    row->addWidget(time_);
    row->addWidget(lost_, 1);
    row->addStretch();
    auto* v = new QVBoxLayout(this);
    v->setContentsMargins(6, 2, 6, 4);
    v->setSpacing(2);
    v->addLayout(row);
    v->addWidget(notice_);

    // The stored choice; the default is written with the first recording.
    if (settings_ && settings_->Exists(kFormatSetting))
        format_->SetValue(settings_->ReadText(kFormatSetting).compare(kFlac, Qt::CaseInsensitive) ==
                          0);
    connect(format_, &CNiButton::valueChanged, this, [this](bool flac) {
        if (settings_)
            settings_->WriteText(kFormatSetting, flac ? kFlac : kWav);
    });
    connect(rec_, &CNiButton::valueChanged, this, [this](bool on) {
        if (on)
            Start();
        else
            Stop();
    });
    poll_.setInterval(kPollMs);
    connect(&poll_, &QTimer::timeout, this, &MainMixerRecording::Poll);
}

MainMixerRecording::~MainMixerRecording() {
    Stop();
}

void MainMixerRecording::Register(ComponentRegistry& registry, QWidget* window) {
    registry.Register(
        rec_, window, QStringLiteral("Record Mix Button:"),
        QStringLiteral("Records the main output, exactly as it goes to the main sound device, to a "
                       "sound file in your music folder named by the date and time the recording "
                       "starts. Press it again to stop: the file is then complete, and the line "
                       "under the button tells its name and folder. If the folder is missing or "
                       "the disk fills up, the recording stops with a message and what was "
                       "recorded so far is kept."),
        QStringLiteral("record the mix"));
    registry.Register(
        format_, window, QStringLiteral("Recording File Type Button:"),
        QStringLiteral("Chooses the file type of the next recording: WAV (uncompressed) or FLAC "
                       "(lossless, about half the size). It cannot change while a recording "
                       "runs, and it is remembered between runs."),
        QStringLiteral("WAV or FLAC"));
    registry.Register(
        time_, window, QStringLiteral("Recording Time:"),
        QStringLiteral("How long the recording has run, in hours, minutes and seconds of sound. "
                       "When the disk cannot keep up, the number of frames lost is shown after "
                       "it in red; a sound frame is 1/44100 of a second."),
        QStringLiteral("recording time"));
}

MixRecorder::Format MainMixerRecording::ChosenFormat() const {
    return format_->Value() ? MixRecorder::Format::Flac : MixRecorder::Format::Wav;
}

bool MainMixerRecording::Start() {
    if (Recording())
        return true;
    QString problem;
    sound::SoundDevice* device = output_ ? output_->Device() : nullptr;
    const QString folder = recording::Folder();
    const QFileInfo dir(folder);
    if (device == nullptr) {
        problem = QStringLiteral("Recording not started: no main sound device is chosen.");
    } else if (!dir.exists()) {
        problem = QStringLiteral("Recording not started: the folder %1 does not exist.")
                      .arg(QDir::toNativeSeparators(folder));
    } else if (!dir.isDir() || !dir.isWritable()) {
        problem = QStringLiteral("Recording not started: the folder %1 cannot be written to.")
                      .arg(QDir::toNativeSeparators(folder));
    } else {
        const MixRecorder::Format format = ChosenFormat();
        if (settings_ && !settings_->Exists(kFormatSetting))
            settings_->WriteText(kFormatSetting,
                                 format == MixRecorder::Format::Flac ? kFlac : kWav);
        const QString path =
            recording::FreePath(folder, QDateTime::currentDateTime(),
                                QString::fromLatin1(MixRecorder::Extension(format)),
                                [](const QString& p) { return QFileInfo::exists(p); });
        std::string error;
        if (recorder_.Start(path.toStdString(), format, device->Format().rate, &error)) {
            output_->SetMixTap(&recorder_);
            format_->setEnabled(false);
            notice_->hide();
            ShowCounts();
            poll_.start();
            SetRecLook(true);
            return true;
        }
        problem = QStringLiteral("Recording not started: %1 cannot be created (%2).")
                      .arg(QDir::toNativeSeparators(path), QString::fromStdString(error));
    }
    ShowNotice(problem, true);
    SetRecLook(false);
    return false;
}

void MainMixerRecording::Stop() {
    Finish(QString());
}

void MainMixerRecording::Finish(const QString& problem) {
    if (!Recording())
        return;
    poll_.stop();
    if (output_)
        output_->SetMixTap(nullptr);
    recorder_.Stop();
    format_->setEnabled(true);
    SetRecLook(false);
    ShowCounts();
    const QFileInfo file(FilePath());
    if (!problem.isEmpty()) {
        ShowNotice(QStringLiteral("Recording stopped: %1 The recording so far is kept in %2.")
                       .arg(problem, QDir::toNativeSeparators(file.absoluteFilePath())),
                   true);
        return;
    }
    ShowNotice(QStringLiteral("Recorded %1 to \"%2\" in %3.")
                   .arg(TimeText(), file.fileName(), QDir::toNativeSeparators(file.absolutePath())),
               false);
}

void MainMixerRecording::Poll() {
    if (!Recording())
        return;
    ShowCounts();
    if (recorder_.Failed()) {
        Finish(QStringLiteral("the file could not be written (%1); the disk may be full.")
                   .arg(QString::fromStdString(recorder_.Error())));
        return;
    }
    sound::SoundDevice* device = output_ ? output_->Device() : nullptr;
    if (device == nullptr)
        Finish(QStringLiteral("the main sound device was turned off."));
    else if (device->Format().rate != recorder_.Rate())
        Finish(QStringLiteral("the main sound device was opened at another sample rate."));
}

QString MainMixerRecording::TimeText() const {
    return time_->text();
}

QString MainMixerRecording::LostText() const {
    return lost_->isHidden() ? QString() : lost_->text();
}

QString MainMixerRecording::NoticeText() const {
    return notice_->isHidden() ? QString() : notice_->text();
}

void MainMixerRecording::ShowCounts() {
    time_->setText(recording::ElapsedText(recorder_.FramesTaken(), recorder_.Rate()));
    const std::uint64_t lost = recorder_.LostFrames();
    if (lost > 0) {
        lost_->setText(QStringLiteral("%1 frames lost").arg(lost));
        lost_->show();
    } else {
        lost_->hide();
    }
}

void MainMixerRecording::ShowNotice(const QString& text, bool error) {
    QPalette pal = notice_->palette();
    pal.setColor(QPalette::WindowText, error ? kLostColour : control_look::DimTextColor());
    notice_->setPalette(pal);
    notice_->setText(text);
    notice_->setVisible(!text.isEmpty());
}

void MainMixerRecording::SetRecLook(bool on) {
    const QSignalBlocker block(rec_);
    rec_->SetValue(on);
}
