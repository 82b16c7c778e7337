#include "settings/SettingsFile.h"

#include <QFile>

DiskSettingsFile::DiskSettingsFile(QString path, QString damagedCopyPath)
    : path_(std::move(path)), damagedPath_(std::move(damagedCopyPath)) {}

void DiskSettingsFile::Tidy() {
    RemoveStaleTemporaries(path_);
}

FileIdentity DiskSettingsFile::Stat() {
    return StatFile(path_);
}

FileStatus DiskSettingsFile::Read(qint64 maxBytes, QByteArray* bytes, FileIdentity* identity,
                                  QString* error) {
    return ReadWholeFile(path_, maxBytes, bytes, identity, error);
}

bool DiskSettingsFile::Write(const QByteArray& bytes, FileIdentity* written, QString* error) {
    return WriteFileAtomically(path_, bytes, written, error);
}

void DiskSettingsFile::KeepDamagedCopy(const QByteArray& bytes) {
    QString error;
    WriteFileAtomically(damagedPath_, bytes, nullptr, &error);
}

void DiskSettingsFile::SetAside() {
    QFile::remove(damagedPath_);
    QFile::rename(path_, damagedPath_);
}

MemorySettingsFile::MemorySettingsFile(QByteArray bytes, bool exists)
    : bytes_(std::move(bytes)), exists_(exists) {}

FileIdentity MemorySettingsFile::Stat() {
    FileIdentity id;
    id.exists = exists_;
    if (exists_) {
        id.inode = version_;
        id.size = bytes_.size();
    }
    return id;
}

FileStatus MemorySettingsFile::Read(qint64 maxBytes, QByteArray* bytes, FileIdentity* identity,
                                    QString* error) {
    if (!exists_)
        return FileStatus::Missing;
    *identity = Stat();
    if (bytes_.size() > maxBytes) {
        *error = QStringLiteral("too large");
        return FileStatus::Failed;
    }
    *bytes = bytes_;
    return FileStatus::Ok;
}

bool MemorySettingsFile::Write(const QByteArray& bytes, FileIdentity* written, QString*) {
    bytes_ = bytes;
    exists_ = true;
    ++version_;
    if (written)
        *written = Stat();
    return true;
}

void MemorySettingsFile::KeepDamagedCopy(const QByteArray& bytes) {
    damaged_ = bytes;
    hasDamaged_ = true;
}

void MemorySettingsFile::SetAside() {
    if (!exists_)
        return;
    damaged_ = bytes_;
    hasDamaged_ = true;
    bytes_.clear();
    exists_ = false;
    ++version_;
}
