// The settings store: named Number and Text values kept in one INI file,
// "Mixora.conf" in the settings folder (see SettingsIni.h for the format).
//
// Values live in memory; every access first checks (one stat) whether the
// file changed on disk and reloads it if so, so the file stays the truth even
// with a second Mixora running. Every write reaches the file at once through
// an atomic replace (AtomicFile.h), unless a Batch is open, in which case the
// file is written once when the outermost Batch ends. Writing a value equal
// to the stored one does not touch the file.
//
// Damage: a file that cannot be parsed keeps every value it could read; the
// rest read as missing (the getters' default rule repairs them). The damaged
// file is kept as "Mixora.conf.bad", the file is rewritten clean, and the
// user is told once. A value of the wrong type reads as missing. Reads never
// fail: a missing Number reads 0, a missing Text reads empty.
//
// Thread-safe (one lock); meant for the user-interface thread: reads are a
// stat and a map look-up, writes one small file write and one fsync (a few
// milliseconds on a disk).
// Never from the audio callback: every write and every file save starts
// with AssertNotAudioThread().
#pragma once

#include <QString>
#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "settings/AtomicFile.h"
#include "settings/SettingsFile.h"
#include "settings/SettingsIni.h"
#include "settings/SettingsNotifier.h"

class SettingsStore {
  public:
    // The settings file: ConfigDir() + "/Mixora.conf".
    static QString DefaultPath();
    static constexpr qint64 kMaxFileBytes = 4 * 1024 * 1024;

    explicit SettingsStore(QString filePath, SettingsNotifier notifier = DefaultSettingsNotifier());
    // Over another file (a MemorySettingsFile: the same reading and repairing
    // without the disk); `filePath` is the name its messages give.
    SettingsStore(std::unique_ptr<SettingsFile> file, QString filePath,
                  SettingsNotifier notifier = DefaultSettingsNotifier());
    SettingsStore(const SettingsStore&) = delete;
    SettingsStore& operator=(const SettingsStore&) = delete;

    const QString& FilePath() const { return path_; }
    QString DamagedCopyPath() const { return path_ + QStringLiteral(".bad"); }
    void SetNotifier(SettingsNotifier notifier);

    // Whether a value of any type is stored under `name`.
    bool Exists(const QString& name);
    // Whether a value of that type is stored (a wrong type counts as missing).
    bool HasNumber(const QString& name);
    bool HasText(const QString& name);

    // The value when stored with that type (one look-up for the getters).
    std::optional<std::uint32_t> FindNumber(const QString& name);
    std::optional<QString> FindText(const QString& name);

    std::uint32_t ReadNumber(const QString& name);  // 0 when missing or not a Number
    QString ReadText(const QString& name);          // empty when missing or not a Text
    // A Real: the float whose bit pattern the Number holds (bit-exact).
    float ReadReal(const QString& name);

    // False when the name is not a valid settings name (SettingsIni.h) or the
    // file could not be written; the value is still kept for this run.
    bool WriteNumber(const QString& name, std::uint32_t value);
    bool WriteText(const QString& name, const QString& text);
    bool WriteReal(const QString& name, float value);

    // Every stored value, as the file holds it now.
    SettingsMap Values();

    // Groups writes into one file update; nests.
    class Batch {
      public:
        explicit Batch(SettingsStore& store);
        ~Batch();  // commits if Commit was not called
        // Ends the batch now; true when the file holds every value (the
        // outermost batch writes it; an inner one answers true).
        bool Commit();
        Batch(const Batch&) = delete;
        Batch& operator=(const Batch&) = delete;

      private:
        SettingsStore& store_;
        bool open_ = true;
    };

  private:
    template <typename F>
    auto Locked(F&& f);  // runs f under the lock, then tells pending messages
    bool Write(const QString& name, const SettingsValue& value);
    const SettingsValue* FindLocked(const QString& name);
    void RefreshLocked();
    void LoadLocked();
    bool SaveLocked();
    void TellOnceLocked(bool& told, const QString& message);
    void FlushMessages();

    const QString path_;
    const std::unique_ptr<SettingsFile> file_;
    std::mutex mutex_;
    SettingsNotifier notifier_;
    SettingsMap values_;
    bool loaded_ = false;
    FileIdentity fileId_;  // of the file as last read or written
    int batchDepth_ = 0;
    bool dirty_ = false;  // values changed inside a batch, not yet written
    bool toldDamaged_ = false;
    bool toldUnreadable_ = false;
    bool toldUnsaved_ = false;
    std::vector<QString> pendingMessages_;  // told after the lock is released
    std::atomic<bool> hasPending_{false};
    bool lastSaveOk_ = true;
};
