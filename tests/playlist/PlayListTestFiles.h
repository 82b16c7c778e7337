// Small file helpers for the play list tests.
#pragma once

#include <QTemporaryDir>
#include <string>

namespace playlisttest {

// Writes `bytes` to `path` (creating or truncating it); false on failure.
bool WriteText(const std::string& path, const std::string& bytes);

// The whole file, or "" when it cannot be read.
std::string ReadText(const std::string& path);

// A fresh temporary folder's path as UTF-8.
inline std::string PathOf(const QTemporaryDir& dir) {
    return dir.path().toStdString();
}

}  // namespace playlisttest
