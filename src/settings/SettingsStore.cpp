#include "settings/SettingsStore.h"

#include <QDir>
#include <bit>

#include "core/Paths.h"
#include "core/ThreadRole.h"

QString SettingsStore::DefaultPath() {
    return ConfigDir() + QStringLiteral("/Mixora.conf");
}

SettingsStore::SettingsStore(QString filePath, SettingsNotifier notifier)
    : path_(std::move(filePath)),
      file_(std::make_unique<DiskSettingsFile>(path_, DamagedCopyPath())),
      notifier_(std::move(notifier)) {}

SettingsStore::SettingsStore(std::unique_ptr<SettingsFile> file, QString filePath,
                             SettingsNotifier notifier)
    : path_(std::move(filePath)), file_(std::move(file)), notifier_(std::move(notifier)) {}

void SettingsStore::SetNotifier(SettingsNotifier notifier) {
    std::lock_guard lock(mutex_);
    notifier_ = std::move(notifier);
}

template <typename F>
auto SettingsStore::Locked(F&& f) {
    decltype(f()) result;
    {
        std::lock_guard lock(mutex_);
        result = f();
    }
    if (hasPending_.load(std::memory_order_acquire))
        FlushMessages();
    return result;
}

bool SettingsStore::Exists(const QString& name) {
    return Locked([&] { return FindLocked(name) != nullptr; });
}

std::optional<std::uint32_t> SettingsStore::FindNumber(const QString& name) {
    return Locked([&]() -> std::optional<std::uint32_t> {
        const SettingsValue* v = FindLocked(name);
        if (v && v->kind == SettingsValue::Kind::Number)
            return v->number;
        return std::nullopt;
    });
}

std::optional<QString> SettingsStore::FindText(const QString& name) {
    return Locked([&]() -> std::optional<QString> {
        const SettingsValue* v = FindLocked(name);
        if (v && v->kind == SettingsValue::Kind::Text)
            return v->text;
        return std::nullopt;
    });
}

bool SettingsStore::HasNumber(const QString& name) {
    return FindNumber(name).has_value();
}

bool SettingsStore::HasText(const QString& name) {
    return FindText(name).has_value();
}

std::uint32_t SettingsStore::ReadNumber(const QString& name) {
    return FindNumber(name).value_or(0);
}

QString SettingsStore::ReadText(const QString& name) {
    return FindText(name).value_or(QString());
}

float SettingsStore::ReadReal(const QString& name) {
    return std::bit_cast<float>(ReadNumber(name));
}

bool SettingsStore::WriteNumber(const QString& name, std::uint32_t value) {
    AssertNotAudioThread("SettingsStore::WriteNumber");
    return Write(name, SettingsValue::OfNumber(value));
}

bool SettingsStore::WriteText(const QString& name, const QString& text) {
    AssertNotAudioThread("SettingsStore::WriteText");
    return Write(name, SettingsValue::OfText(text));
}

bool SettingsStore::WriteReal(const QString& name, float value) {
    AssertNotAudioThread("SettingsStore::WriteReal");
    return WriteNumber(name, std::bit_cast<std::uint32_t>(value));
}

SettingsMap SettingsStore::Values() {
    return Locked([&] {
        RefreshLocked();
        return values_;
    });
}

bool SettingsStore::Write(const QString& name, const SettingsValue& value) {
    if (!IsValidSettingsName(name))
        return false;
    return Locked([&] {
        const SettingsValue* old = FindLocked(name);
        // Unchanged: nothing to write, unless the last file write failed.
        if (old && *old == value && (batchDepth_ > 0 || lastSaveOk_))
            return true;
        values_.insert(name, value);
        if (batchDepth_ > 0) {
            dirty_ = true;
            return true;
        }
        return SaveLocked();
    });
}

SettingsStore::Batch::Batch(SettingsStore& store) : store_(store) {
    std::lock_guard lock(store_.mutex_);
    ++store_.batchDepth_;
}

SettingsStore::Batch::~Batch() {
    Commit();
}

bool SettingsStore::Batch::Commit() {
    if (!open_)
        return true;
    open_ = false;
    bool ok = true;
    {
        std::lock_guard lock(store_.mutex_);
        // The outermost batch writes what changed, or retries a failed write.
        if (--store_.batchDepth_ == 0 && (store_.dirty_ || !store_.lastSaveOk_))
            ok = store_.SaveLocked();
    }
    store_.FlushMessages();
    return ok;
}

const SettingsValue* SettingsStore::FindLocked(const QString& name) {
    RefreshLocked();
    auto it = values_.constFind(name);
    return it == values_.cend() ? nullptr : &it.value();
}

void SettingsStore::RefreshLocked() {
    if (!loaded_) {
        loaded_ = true;
        file_->Tidy();
        LoadLocked();
        return;
    }
    // Inside a batch the memory holds unwritten values: keep them.
    if (batchDepth_ > 0 && dirty_)
        return;
    if (file_->Stat() != fileId_)
        LoadLocked();
}

void SettingsStore::LoadLocked() {
    QByteArray bytes;
    QString error;
    const FileStatus status = file_->Read(kMaxFileBytes, &bytes, &fileId_, &error);
    if (status == FileStatus::Missing) {
        values_.clear();
        return;
    }
    if (status == FileStatus::Failed) {
        if (error == QLatin1String("too large")) {
            // Nothing in it can be trusted; move it aside whole and start clean.
            values_.clear();
            file_->SetAside();
            fileId_ = file_->Stat();
            TellOnceLocked(
                toldDamaged_,
                QStringLiteral("The settings file \"%1\" is damaged and was set aside as "
                               "\"%2\". Mixora starts with its default settings.")
                    .arg(QDir::toNativeSeparators(path_),
                         QDir::toNativeSeparators(DamagedCopyPath())));
            return;
        }
        // Unreadable (permissions, a folder in its place): keep this run's
        // values in memory and do not retry until the file changes.
        TellOnceLocked(toldUnreadable_,
                       QStringLiteral("The settings file \"%1\" cannot be read (%2). Mixora uses "
                                      "its default settings.")
                           .arg(QDir::toNativeSeparators(path_), error));
        return;
    }
    SettingsParse parse = ParseSettingsIni(bytes);
    values_ = std::move(parse.values);
    if (!parse.damaged)
        return;
    file_->KeepDamagedCopy(bytes);
    TellOnceLocked(
        toldDamaged_,
        QStringLiteral("The settings file \"%1\" was damaged (line %2 could not be read). A copy "
                       "was kept as \"%3\"; the settings that could not be read are back to "
                       "their defaults.")
            .arg(QDir::toNativeSeparators(path_))
            .arg(parse.firstBadLine)
            .arg(QDir::toNativeSeparators(DamagedCopyPath())));
    // Repair at once, so the damage is reported once and the file is clean.
    if (batchDepth_ > 0)
        dirty_ = true;
    else
        SaveLocked();
}

bool SettingsStore::SaveLocked() {
    AssertNotAudioThread("SettingsStore::Save");
    dirty_ = false;
    QString error;
    FileIdentity written;
    lastSaveOk_ = file_->Write(SerializeSettingsIni(values_), &written, &error);
    if (lastSaveOk_) {
        fileId_ = written;
    } else {
        TellOnceLocked(toldUnsaved_,
                       QStringLiteral("Mixora cannot save its settings to \"%1\" (%2). Changes "
                                      "made now are lost when Mixora closes.")
                           .arg(QDir::toNativeSeparators(path_), error));
    }
    return lastSaveOk_;
}

void SettingsStore::TellOnceLocked(bool& told, const QString& message) {
    if (told)
        return;
    told = true;
    pendingMessages_.push_back(message);
    hasPending_.store(true, std::memory_order_release);
}

void SettingsStore::FlushMessages() {
    std::vector<QString> messages;
    SettingsNotifier notifier;
    {
        std::lock_guard lock(mutex_);
        messages.swap(pendingMessages_);
        hasPending_.store(false, std::memory_order_release);
        notifier = notifier_;
    }
    if (notifier) {
        for (const QString& m : messages)
            notifier(m);
    }
}
