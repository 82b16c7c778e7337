// Where the settings store keeps its file: DiskSettingsFile on the disk
// (AtomicFile.h: whole-file reads, atomic and durable replaces) or
// MemorySettingsFile in memory (the fuzzer's and tests' entry: the same
// parsing and repairing without a file system call).
//
// Both keep a second file beside the first, the damaged copy
// ("<file>.bad"). Identities tell the store whether the file changed since it
// last read or wrote it.
#pragma once

#include <QByteArray>
#include <QString>
#include <cstdint>

#include "settings/AtomicFile.h"

class SettingsFile {
  public:
    virtual ~SettingsFile() = default;
    // Clears what a killed writer may have left (temporaries).
    virtual void Tidy() = 0;
    virtual FileIdentity Stat() = 0;
    // As ReadWholeFile: at most maxBytes, else Failed with "too large".
    virtual FileStatus Read(qint64 maxBytes, QByteArray* bytes, FileIdentity* identity,
                            QString* error) = 0;
    // Replaces the whole file; as WriteFileAtomically.
    virtual bool Write(const QByteArray& bytes, FileIdentity* written, QString* error) = 0;
    // Replaces the damaged copy with `bytes`.
    virtual void KeepDamagedCopy(const QByteArray& bytes) = 0;
    // Moves the file whole to the damaged copy's place (the file is then missing).
    virtual void SetAside() = 0;
};

class DiskSettingsFile : public SettingsFile {
  public:
    DiskSettingsFile(QString path, QString damagedCopyPath);
    void Tidy() override;
    FileIdentity Stat() override;
    FileStatus Read(qint64 maxBytes, QByteArray* bytes, FileIdentity* identity,
                    QString* error) override;
    bool Write(const QByteArray& bytes, FileIdentity* written, QString* error) override;
    void KeepDamagedCopy(const QByteArray& bytes) override;
    void SetAside() override;

  private:
    const QString path_;
    const QString damagedPath_;
};

// Not thread-safe by itself: the store calls it under its lock.
class MemorySettingsFile : public SettingsFile {
  public:
    // A file holding `bytes`; none when `exists` is false.
    explicit MemorySettingsFile(QByteArray bytes = {}, bool exists = true);
    void Tidy() override {}
    FileIdentity Stat() override;
    FileStatus Read(qint64 maxBytes, QByteArray* bytes, FileIdentity* identity,
                    QString* error) override;
    bool Write(const QByteArray& bytes, FileIdentity* written, QString* error) override;
    void KeepDamagedCopy(const QByteArray& bytes) override;
    void SetAside() override;

    // What the file and the damaged copy hold now.
    const QByteArray& Contents() const { return bytes_; }
    bool Exists() const { return exists_; }
    const QByteArray& DamagedCopy() const { return damaged_; }
    bool HasDamagedCopy() const { return hasDamaged_; }

  private:
    QByteArray bytes_;
    bool exists_;
    QByteArray damaged_;
    bool hasDamaged_ = false;
    std::uint64_t version_ = 1;  // a new one for every write, as a new inode
};
