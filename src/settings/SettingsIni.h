// The settings file's text form: the [General] section of an INI file in the
// dialect QSettings reads and writes (UTF-8, one "name=value" a line, C-style
// escapes). Pure functions, no file access.
//
// Types: the store keeps two kinds of value apart in plain text.
//  - Number: a 32-bit value written as an unquoted unsigned decimal (the bit
//    pattern; a Real is the bit pattern of its float). On reading, an unquoted
//    whole number from -2147483648 to 4294967295 is a Number (negatives are
//    taken as their 32-bit two's-complement pattern).
//  - Text: always written in double quotes, so a text that looks like a number
//    stays a text. An unquoted value that is not a whole number (as QSettings
//    writes texts) reads as a Text too.
//  - Other: a value starting with a single "@" (QSettings' own typed values
//    such as "@ByteArray(...)"; a text's own leading "@" is written doubled),
//    or a quoted list. Kept and written back as found, but never read as a
//    Number or a Text.
//
// A line that cannot be understood (no "=", a bad name, an unterminated quote,
// a bad escape, raw control characters, invalid UTF-8) marks the parse as
// damaged; every well-formed line is still taken. Values of sections other
// than [General] are ignored; lines before any section belong to [General].
#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>
#include <QStringView>
#include <cstdint>

struct SettingsValue {
    enum class Kind { Number, Text, Other };
    Kind kind = Kind::Number;
    std::uint32_t number = 0;  // Number only
    QString text;              // Text: the text; Other: the raw value as found

    static SettingsValue OfNumber(std::uint32_t n) { return {Kind::Number, n, {}}; }
    static SettingsValue OfText(const QString& t) { return {Kind::Text, 0, t}; }
    bool operator==(const SettingsValue&) const = default;
};

using SettingsMap = QMap<QString, SettingsValue>;

struct SettingsParse {
    SettingsMap values;
    bool damaged = false;  // some part of the text could not be understood
    int firstBadLine = 0;  // 1-based line of the first problem; 0 when not damaged
};

// Parses the whole file. Never fails: problems only set `damaged`.
SettingsParse ParseSettingsIni(const QByteArray& bytes);

// The file text for `values`: a comment line, "[General]", then one line per
// value in name order, each ending in "\n". Parsing the result gives `values`
// back exactly, provided every name passes IsValidSettingsName.
QByteArray SerializeSettingsIni(const SettingsMap& values);

// Names the file can hold: 1 to 200 characters from A-Z a-z 0-9 _ - . %
// (QSettings writes other characters of a name as %XX escapes).
bool IsValidSettingsName(QStringView name);
