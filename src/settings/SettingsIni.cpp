#include "settings/SettingsIni.h"

#include <QStringDecoder>
#include <optional>

namespace {

constexpr int kMaxNameLength = 200;

bool IsBlank(QChar c) {
    return c == u' ' || c == u'\t';
}

QStringView Trimmed(QStringView s) {
    qsizetype begin = 0;
    qsizetype end = s.size();
    while (begin < end && IsBlank(s[begin]))
        ++begin;
    while (end > begin && IsBlank(s[end - 1]))
        --end;
    return s.sliced(begin, end - begin);
}

int HexDigit(QChar c) {
    const char16_t u = c.unicode();
    if (u >= u'0' && u <= u'9')
        return u - u'0';
    if (u >= u'a' && u <= u'f')
        return u - u'a' + 10;
    if (u >= u'A' && u <= u'F')
        return u - u'A' + 10;
    return -1;
}

// Decodes QSettings' escapes (\a \b \f \n \r \t \v \' \" \? \\, \x hex and
// \ octal, both greedy as QSettings reads them). Unknown escapes keep the
// character. Empty optional: a trailing lone backslash (QSettings' line
// continuation, which the store never writes) or a code above 0xFFFF.
std::optional<QString> Unescape(QStringView s) {
    QString out;
    out.reserve(s.size());
    for (qsizetype i = 0; i < s.size(); ++i) {
        const QChar c = s[i];
        if (c != u'\\') {
            out += c;
            continue;
        }
        if (++i >= s.size())
            return std::nullopt;
        const char16_t e = s[i].unicode();
        switch (e) {
            case u'a':
                out += QChar(0x07);
                break;
            case u'b':
                out += QChar(0x08);
                break;
            case u'f':
                out += QChar(0x0C);
                break;
            case u'n':
                out += QChar(0x0A);
                break;
            case u'r':
                out += QChar(0x0D);
                break;
            case u't':
                out += QChar(0x09);
                break;
            case u'v':
                out += QChar(0x0B);
                break;
            case u'x': {
                std::uint32_t code = 0;
                int digits = 0;
                while (i + 1 < s.size() && HexDigit(s[i + 1]) >= 0) {
                    code = code * 16 + static_cast<std::uint32_t>(HexDigit(s[++i]));
                    if (code > 0xFFFF)
                        return std::nullopt;
                    ++digits;
                }
                if (digits == 0)
                    return std::nullopt;
                out += QChar(static_cast<char16_t>(code));
                break;
            }
            default:
                if (e >= u'0' && e <= u'7') {
                    std::uint32_t code = e - u'0';
                    while (i + 1 < s.size() && s[i + 1] >= u'0' && s[i + 1] <= u'7') {
                        code = code * 8 + (s[++i].unicode() - u'0');
                        if (code > 0xFFFF)
                            return std::nullopt;
                    }
                    out += QChar(static_cast<char16_t>(code));
                } else {
                    out += s[i];  // \" \' \? \\ and unknown escapes
                }
        }
    }
    return out;
}

// An unquoted whole number from -2147483648 to 4294967295, as its 32-bit pattern.
std::optional<std::uint32_t> ParseNumber(QStringView s) {
    bool negative = false;
    qsizetype i = 0;
    if (!s.isEmpty() && s[0] == u'-') {
        negative = true;
        i = 1;
    }
    if (i >= s.size() || s.size() - i > 10)
        return std::nullopt;
    std::uint64_t value = 0;
    for (; i < s.size(); ++i) {
        if (s[i] < u'0' || s[i] > u'9')
            return std::nullopt;
        value = value * 10 + (s[i].unicode() - u'0');
    }
    if (negative) {
        if (value > 2147483648ULL)
            return std::nullopt;
        return static_cast<std::uint32_t>(0 - value);
    }
    if (value > 0xFFFFFFFFULL)
        return std::nullopt;
    return static_cast<std::uint32_t>(value);
}

// QSettings marks its typed values with a leading "@" and doubles a text's
// own leading "@", after unescaping, quoted or not.
SettingsValue TextOrOther(const QString& unescaped, QStringView raw) {
    if (unescaped.startsWith(u"@@"))
        return SettingsValue::OfText(unescaped.sliced(1));
    if (unescaped.startsWith(u'@'))
        return SettingsValue{SettingsValue::Kind::Other, 0, raw.toString()};
    return SettingsValue::OfText(unescaped);
}

// The value part of a line, already trimmed. Empty optional: malformed.
std::optional<SettingsValue> ParseValue(QStringView v) {
    if (!v.isEmpty() && v[0] == u'"') {
        // Find the closing quote, stepping over escapes.
        qsizetype close = -1;
        for (qsizetype i = 1; i < v.size(); ++i) {
            if (v[i] == u'\\') {
                ++i;
            } else if (v[i] == u'"') {
                close = i;
                break;
            }
        }
        if (close < 0)
            return std::nullopt;  // unterminated: typically a cut-off file
        if (!Trimmed(v.sliced(close + 1)).isEmpty())
            return SettingsValue{SettingsValue::Kind::Other, 0, v.toString()};  // a QSettings list
        std::optional<QString> text = Unescape(v.sliced(1, close - 1));
        if (!text)
            return std::nullopt;
        return TextOrOther(*text, v);
    }
    if (std::optional<std::uint32_t> n = ParseNumber(v))
        return SettingsValue::OfNumber(*n);
    std::optional<QString> text = Unescape(v);
    if (!text)
        return std::nullopt;
    return TextOrOther(*text, v);
}

bool HasRawControl(QStringView line) {
    for (QChar c : line) {
        if ((c.unicode() < 0x20 && c != u'\t') || c.unicode() == 0x7F)
            return true;
    }
    return false;
}

void AppendEscapedText(const QString& text, QString& out) {
    out += u'"';
    if (text.startsWith(u'@'))
        out += u'@';               // QSettings' rule: a text's leading "@" is doubled
    bool escapeNextIfHex = false;  // a \x escape swallows following hex digits
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar c = text[i];
        const char16_t u = c.unicode();
        const bool pairedSurrogate =
            (c.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate()) ||
            (c.isLowSurrogate() && i > 0 && text[i - 1].isHighSurrogate());
        const bool needsHex = u < 0x20 || u == 0x7F || (c.isSurrogate() && !pairedSurrogate) ||
                              (escapeNextIfHex && HexDigit(c) >= 0);
        escapeNextIfHex = false;
        if (u == u'"' || u == u'\\') {
            out += u'\\';
            out += c;
        } else if (u == u'\n') {
            out += u"\\n";
        } else if (u == u'\r') {
            out += u"\\r";
        } else if (u == u'\t') {
            out += u"\\t";
        } else if (needsHex) {
            out += u"\\x";
            out += QString::number(u, 16);
            escapeNextIfHex = true;
        } else {
            out += c;
        }
    }
    out += u'"';
}

}  // namespace

bool IsValidSettingsName(QStringView name) {
    if (name.isEmpty() || name.size() > kMaxNameLength)
        return false;
    for (QChar c : name) {
        const char16_t u = c.unicode();
        const bool ok = (u >= u'a' && u <= u'z') || (u >= u'A' && u <= u'Z') ||
                        (u >= u'0' && u <= u'9') || u == u'_' || u == u'-' || u == u'.' ||
                        u == u'%';
        if (!ok)
            return false;
    }
    return true;
}

SettingsParse ParseSettingsIni(const QByteArray& bytes) {
    SettingsParse result;
    QByteArrayView rest(bytes);
    if (rest.startsWith("\xEF\xBB\xBF"))
        rest = rest.sliced(3);

    bool inGeneral = true;  // lines before any section belong to [General]
    int lineNumber = 0;
    auto bad = [&] {
        if (!result.damaged)
            result.firstBadLine = lineNumber;
        result.damaged = true;
    };
    while (!rest.isEmpty()) {
        ++lineNumber;
        qsizetype end = rest.indexOf('\n');
        QByteArrayView raw = end < 0 ? rest : rest.first(end);
        rest = end < 0 ? QByteArrayView() : rest.sliced(end + 1);
        if (raw.endsWith('\r'))
            raw.chop(1);

        QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::ConvertInitialBom);
        const QString text = decoder.decode(raw);
        if (decoder.hasError() || HasRawControl(text)) {
            bad();
            continue;
        }
        const QStringView line = Trimmed(text);
        if (line.isEmpty() || line[0] == u';' || line[0] == u'#')
            continue;
        if (line[0] == u'[') {
            if (!line.endsWith(u']')) {
                bad();
                inGeneral = false;  // a cut-off header: its values are not ours
                continue;
            }
            inGeneral = Trimmed(line.sliced(1, line.size() - 2)) == u"General";
            continue;
        }
        const qsizetype eq = line.indexOf(u'=');
        if (eq < 0) {
            bad();
            continue;
        }
        const QStringView name = Trimmed(line.first(eq));
        if (!IsValidSettingsName(name)) {
            bad();
            continue;
        }
        std::optional<SettingsValue> value = ParseValue(Trimmed(line.sliced(eq + 1)));
        if (!value) {
            bad();
            continue;
        }
        if (inGeneral)
            result.values.insert(name.toString(), *value);
    }
    return result;
}

QByteArray SerializeSettingsIni(const SettingsMap& values) {
    QString out;
    out.reserve(64 + values.size() * 48);
    out +=
        u"; Mixora settings. Numbers are 32-bit; real values are stored as the bit\n"
        u"; pattern of a 32-bit float; texts are quoted.\n"
        u"[General]\n";
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        out += it.key();
        out += u'=';
        const SettingsValue& v = it.value();
        switch (v.kind) {
            case SettingsValue::Kind::Number:
                out += QString::number(v.number);
                break;
            case SettingsValue::Kind::Text:
                AppendEscapedText(v.text, out);
                break;
            case SettingsValue::Kind::Other:
                out += v.text;
                break;
        }
        out += u'\n';
    }
    return out.toUtf8();
}
